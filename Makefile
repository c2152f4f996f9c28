# The short road to everything; each line is thin over a CMake preset and first installs the packages that are missing.
PREFIX ?= /usr/local
DESTDIR ?=
FUZZ_SECONDS ?= 60
SOAK_SECONDS ?= 600
export DESTDIR

preset = cmake --preset $(1) $(2) && cmake --build --preset $(1)

.PHONY: run test check scene scene-program scene-test picture bench count asan tsan clang windows valgrind fuzz soak coverage docs reference ratios install debian try-debian abi format clean packages
.DEFAULT_GOAL := run

packages:
	@packaging/install-packages build

run: packages
	$(call preset,dev) --target nxhost
	PATH="$(CURDIR)/build/dev/bin:$$PATH" examples/tour.sh

test: packages
	$(call preset,dev)
	ctest --preset dev

# Lint, format, layers, headers, pages, the reference, seeds of the fuzzers, an outside user of the installed library.
check: packages
	@packaging/install-packages check
	$(call preset,dev) --target all fuzzers
	ctest --preset check

# The scene editor: on a sample scene, its tests, and the picture of the first page.
scene-program: packages
	@packaging/install-packages scene
	$(call preset,scene)

scene: scene-program
	mkdir -p build/scene/session
	build/scene/bin/nxscene --folder build/scene/session --run examples/scene/scripts/sample.lua

scene-test: scene-program
	ctest --preset scene

picture: scene-program
	folder=$$(mktemp -d) && QT_QPA_PLATFORM=offscreen build/scene/bin/nxscene --folder $$folder \
	    --run examples/scene/scripts/sample.lua --run examples/scene/scripts/tidy.lua --picture docs/images/nxscene.png

# QUICK=1: smaller inputs, under a minute. JSON=FOLDER: the files in it as well.
bench: packages
	@packaging/install-packages bench
	$(call preset,bench)
	build/bench/bin/nxbench $(if $(filter-out 0,$(QUICK)),--quick) $(if $(JSON),--files $(JSON)) \
		--json build/bench/ratios.json

# The instructions of rows with a name such as json-read, counted by callgrind: make count ROWS="json-read tree-copy".
count: packages
	@packaging/install-packages bench valgrind
	$(call preset,bench)
	bench/count $(if $(JSON),--files $(JSON)) build/bench/bin/nxbench $(ROWS)

asan tsan: packages
	$(call preset,$@) --target all fuzzers
	ctest --preset $@

# The other compiler, with its own warnings.
clang: packages
	@packaging/install-packages check fuzz
	$(call preset,clang)
	ctest --preset clang

# The modules for Windows; their tests under wine.
windows: packages
	@packaging/install-packages windows
	packaging/build-windows-packages build/windows-packages
	$(call preset,$@)
	ctest --preset $@

valgrind: packages
	@packaging/install-packages valgrind
	$(call preset,dev) --target nxLC_tests nxLC_cxx_tests script_tests
	tests/valgrind build/dev/foundation/nxLC/nxLC_tests build/dev/foundation/nxLC/nxLC_cxx_tests \
	    build/dev/script/script_tests

coverage: packages
	@packaging/install-packages check fuzz coverage
	$(call preset,coverage)
	tests/coverage build/coverage

# Everything together, for ten minutes: nothing may grow.
soak: packages
	$(call preset,dev) --target nxhost
	tools/nxhost/tests/soak.py --seconds $(SOAK_SECONDS) build/dev/bin/nxhost

fuzz: packages
	@packaging/install-packages check fuzz
	$(call preset,fuzz)
	fuzz/run build/fuzz/bin $(FUZZ_SECONDS)

# Writes the current listings, outputs and tables into the pages, then checks them.
docs: packages
	$(call preset,dev)
	scripts/check_docs --update --path build/dev/bin

# Reference of the public names, in build/reference/html.
reference: packages
	@packaging/install-packages check
	mkdir -p build/reference && doxygen docs/Doxyfile

# The tables of README.md and docs/performance.md, from what `make bench` measured.
ratios:
	scripts/write_ratios

install: packages
	$(call preset,release,-DCMAKE_INSTALL_PREFIX="$(PREFIX)")
	cmake --install build/release

# The packages of what is committed, in build/debian.
debian: packages
	@packaging/install-packages debian
	packaging/build-debian

# Those packages in a clean Debian, where a host is built with them; for root or sudo.
try-debian: debian
	packaging/try-debian

# The interface beside that of the last tag.
abi: packages
	@packaging/install-packages abi
	scripts/check_abi

format:
	@packaging/install-packages check
	git ls-files -z -- '*.h' '*.cpp' | xargs -0 clang-format -i

clean:
	rm -rf build
