# How everything is compiled: language level, visibility, warnings, sanitizers, compiler cache.
include(GNUInstallDirs)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Dev or Release" FORCE)
endif()
# Dev: quick to build, assertions on. Sanitizers need some optimisation to be fast enough for the large tests.
set(optimisation 0)
if(NX_SANITIZE)
  set(optimisation 1)
endif()
set(CMAKE_CXX_FLAGS_DEV "-O${optimisation} -g1 -D_GLIBCXX_ASSERTIONS")
set(CMAKE_C_FLAGS_DEV "-O${optimisation} -g1")
set(CMAKE_CXX_FLAGS_RELEASE "-O3 -DNDEBUG -fno-semantic-interposition")

option(NX_WARNINGS_ARE_ERRORS "Stop at warnings; off for compilers and flags that the tree is not tried with" ON)
if(WIN32)
  # Positions in files of 64 bits, and the printf of the C standard in place of the system's own.
  add_compile_definitions(_FILE_OFFSET_BITS=64 __USE_MINGW_ANSI_STDIO=1)
  add_compile_options(-Wno-format)  # would check for the system's own; other builds check the formats
endif()
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion
                    -Wnon-virtual-dtor -Woverloaded-virtual $<$<BOOL:${NX_WARNINGS_ARE_ERRORS}>:-Werror>)
# At -O3 g++ 12 warns of its own `"text" + std::string()`; the linter, which knows no such option, sees Dev builds.
if(CMAKE_BUILD_TYPE STREQUAL Release AND CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  add_compile_options(-Wno-restrict)
endif()

if(NX_SANITIZE)
  # The checks that it inserts hide from the compiler what has been initialized.
  add_compile_options(-fsanitize=${NX_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
                      $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  add_link_options(-fsanitize=${NX_SANITIZE})
endif()

# The cache also serves other clones of this tree, and sources that use the precompiled headers of the tests.
find_program(NX_CCACHE ccache)
if(NX_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_NOHASHDIR=1
                                  CCACHE_SLOPPINESS=pch_defines,time_macros ${NX_CCACHE})
  add_compile_options($<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>)
endif()
