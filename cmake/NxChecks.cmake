# Checks of the tree, run by `make check`: ctest tests with the label `check`.
get_property(table GLOBAL PROPERTY NX_MODULE_TABLE)
file(WRITE ${PROJECT_BINARY_DIR}/modules.tsv "${table}")

# nx_check(NAME command...): a test of the whole tree; it runs at the top of the sources.
function(nx_check NAME)
  add_test(NAME ${NAME} COMMAND ${ARGN} WORKING_DIRECTORY ${PROJECT_SOURCE_DIR})
  set_tests_properties(${NAME} PROPERTIES LABELS check)
endfunction()

nx_check(check_format sh -c "git ls-files -z -- '*.h' '*.cpp' | xargs -0 clang-format --dry-run -Werror")
nx_check(check_layers scripts/check_layers ${PROJECT_BINARY_DIR}/modules.tsv)
nx_check(check_module_headers scripts/module_headers ${PROJECT_BINARY_DIR}/modules.tsv)
nx_check(check_pages scripts/check_docs --path ${PROJECT_BINARY_DIR}/bin)
nx_check(check_reference sh -c "mkdir -p build/reference && doxygen docs/Doxyfile")
nx_check(check_scripts python3 -B scripts/selftest.py)
nx_check(consumer tests/consumer/run ${PROJECT_BINARY_DIR} ${CMAKE_CXX_COMPILER})
nx_check(check_symbols scripts/check_symbols $<TARGET_FILE:Support>)
nx_check(check_gdb tests/gdb/run ${PROJECT_BINARY_DIR} ${CMAKE_CXX_COMPILER})
nx_check(check_mistakes tests/mistakes/run ${CMAKE_CXX_COMPILER} clang++)

# Each public header in a source of its own, so that none depends on what others include.
set_target_properties(Support PROPERTIES VERIFY_INTERFACE_HEADER_SETS ON)
nx_check(check_headers ${CMAKE_COMMAND} --build ${PROJECT_BINARY_DIR} --target Support_verify_interface_header_sets)

# Every source but the tests, each by itself. It is by far the longest, so it starts first and takes both cores.
nx_check(check_tidy sh -c "cmake --preset lint >/dev/null && exec run-clang-tidy -quiet -j 2 -p build/lint '^${PROJECT_SOURCE_DIR}/(?!build/|.*/tests/)'")
set_tests_properties(check_headers check_tidy PROPERTIES PROCESSORS 2)
set_tests_properties(check_tidy PROPERTIES COST 1000 TIMEOUT 3000)
