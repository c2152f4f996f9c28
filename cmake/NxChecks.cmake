# Checks of the tree itself, run by ctest beside the module tests under the label `check`.
find_program(NX_NM nm REQUIRED)
get_property(table GLOBAL PROPERTY NX_MODULE_TABLE)
file(WRITE ${PROJECT_BINARY_DIR}/modules.tsv "${table}")

# nx_check(NAME command...): a test of the whole tree; it runs at the top of the sources.
function(nx_check NAME)
  add_test(NAME ${NAME} COMMAND ${ARGN} WORKING_DIRECTORY ${PROJECT_SOURCE_DIR})
  set_tests_properties(${NAME} PROPERTIES LABELS check)
endfunction()

# Each public header in a source of its own, so that none counts on what others include.
get_property(headers GLOBAL PROPERTY NX_PUBLIC_HEADERS)
foreach(header IN LISTS headers)
  file(RELATIVE_PATH name ${PROJECT_SOURCE_DIR} ${header})
  file(CONFIGURE OUTPUT headers/${name}.cpp CONTENT "#include \"${name}\"\n")
  list(APPEND alone ${PROJECT_BINARY_DIR}/headers/${name}.cpp)
endforeach()
add_library(nx_headers OBJECT EXCLUDE_FROM_ALL ${alone})
target_include_directories(nx_headers PRIVATE ${PROJECT_SOURCE_DIR})
set_target_properties(nx_headers PROPERTIES EXPORT_COMPILE_COMMANDS OFF)
nx_check(check_headers ${CMAKE_COMMAND} --build ${PROJECT_BINARY_DIR} --target nx_headers)
set_tests_properties(check_headers PROPERTIES PROCESSORS 2 COST 500)

nx_check(check_words cmake/check_words)
nx_check(check_format cmake/check_format)
nx_check(check_layers cmake/check_layers ${PROJECT_BINARY_DIR}/modules.tsv)
nx_check(check_exports cmake/check_exports $<TARGET_FILE:Support> ${PROJECT_BINARY_DIR}/modules.tsv
         ${NX_YAJL_INCLUDE}/yajl)
nx_check(check_docs cmake/check_docs --path ${PROJECT_BINARY_DIR}/bin)
nx_check(check_selftest python3 -B tests/checks/selftest.py)
nx_check(consumer tests/consumer/run ${PROJECT_BINARY_DIR} ${CMAKE_CXX_COMPILER})
# The longest by far when nothing is cached: it starts first and takes both cores.
nx_check(check_tidy cmake/check_tidy ${PROJECT_BINARY_DIR})
set_tests_properties(check_tidy PROPERTIES PROCESSORS 2 COST 1000 TIMEOUT 3000)
