# One folder, one module: its objects, one test program of its tests.
#
#   nx_module(NAME urString USES ur PACKAGES utf8cpp SOURCES CString.cpp)
#
# USES names the modules whose headers this one may include (scripts/check_layers checks it);
# PACKAGES are link targets that only this module's sources need; PUBLIC_PACKAGES those that its
# headers need as well; TEST_USES and TEST_PACKAGES those of its tests alone. Headers in the folder itself are
# public and installed, those in impl/ are not.
set_property(GLOBAL PROPERTY NX_OBJECTS "")
set_property(GLOBAL PROPERTY NX_PACKAGES "")
set_property(GLOBAL PROPERTY NX_PUBLIC_HEADERS "")
set_property(GLOBAL PROPERTY NX_MODULE_TABLE "# name, folder, uses, packages, public packages, uses of the tests\n")

# What the names of sources for some systems only end with.
set(NX_SYSTEM linux)
set(NX_SYSTEM_FAMILY posix)
if(WIN32)
  set(NX_SYSTEM windows)
  set(NX_SYSTEM_FAMILY windows)
endif()

# What every test includes, compiled once: a third of the whole build's time when each program has its own.
if(NX_TESTS)
  file(CONFIGURE OUTPUT test_headers.cpp CONTENT "")
  add_library(nx_test_headers OBJECT ${CMAKE_CURRENT_BINARY_DIR}/test_headers.cpp)
  target_link_libraries(nx_test_headers PRIVATE GTest::gmock_main)
  target_precompile_headers(nx_test_headers PRIVATE <gmock/gmock.h> <gtest/gtest.h> <string> <vector>)
  set_target_properties(nx_test_headers PROPERTIES POSITION_INDEPENDENT_CODE OFF)  # as the programs that share it
endif()

function(nx_module)
  cmake_parse_arguments(M "" "NAME" "USES;SOURCES;PACKAGES;PUBLIC_PACKAGES;TEST_USES;TEST_PACKAGES" ${ARGN})
  nx_add_to_module_table()
  file(GLOB headers CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
  set_property(GLOBAL APPEND PROPERTY NX_PUBLIC_HEADERS ${headers})

  set(target nx_${M_NAME})
  list(TRANSFORM M_USES PREPEND nx_ OUTPUT_VARIABLE used)
  if(M_SOURCES)
    # Compiled once: the objects go into the shared library and into the archive that the tests link.
    add_library(${target}_objects OBJECT ${M_SOURCES})
    target_include_directories(${target}_objects PRIVATE ${PROJECT_SOURCE_DIR})
    target_link_libraries(${target}_objects PRIVATE ${used} ${M_PACKAGES} ${M_PUBLIC_PACKAGES})
    add_library(${target} STATIC $<TARGET_OBJECTS:${target}_objects>)
    target_link_libraries(${target} PRIVATE ${M_PACKAGES})
    set_property(GLOBAL APPEND PROPERTY NX_OBJECTS $<TARGET_OBJECTS:${target}_objects>)
    set_property(GLOBAL APPEND PROPERTY NX_PACKAGES ${M_PACKAGES} ${M_PUBLIC_PACKAGES})
    set(scope PUBLIC)
  else()
    add_library(${target} INTERFACE)
    set(scope INTERFACE)
  endif()
  target_include_directories(${target} ${scope} ${PROJECT_SOURCE_DIR})
  target_link_libraries(${target} ${scope} ${used} ${M_PUBLIC_PACKAGES})

  file(GLOB tests CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/tests/*_test.cpp)
  if(NX_TESTS AND tests)
    add_executable(${M_NAME}_tests ${tests})
    list(TRANSFORM M_TEST_USES PREPEND nx_ OUTPUT_VARIABLE used)
    target_link_libraries(${M_NAME}_tests PRIVATE ${target} ${used} GTest::gmock_main ${M_TEST_PACKAGES})
    target_precompile_headers(${M_NAME}_tests REUSE_FROM nx_test_headers)
    add_test(NAME ${M_NAME} COMMAND ${M_NAME}_tests)
  endif()
endfunction()

# The table that the checks read, in the order in which the modules are entered; written by NxChecks.
macro(nx_add_to_module_table)
  file(RELATIVE_PATH row ${PROJECT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
  string(PREPEND row "${M_NAME}\t")
  foreach(column USES PACKAGES PUBLIC_PACKAGES TEST_USES)
    list(JOIN M_${column} " " names)
    string(APPEND row "\t${names}")
  endforeach()
  set_property(GLOBAL APPEND_STRING PROPERTY NX_MODULE_TABLE "${row}\n")
endmacro()

# libSupport: every module taken whole, yajl beside it, and only what is public exported.
function(nx_shared_library)
  get_property(objects GLOBAL PROPERTY NX_OBJECTS)
  get_property(packages GLOBAL PROPERTY NX_PACKAGES)
  list(REMOVE_DUPLICATES packages)
  list(REMOVE_ITEM packages nx_yajl)
  set(map ${PROJECT_SOURCE_DIR}/cmake/libSupport.map)
  add_library(Support SHARED ${objects})
  add_library(nxSupport::Support ALIAS Support)
  target_link_libraries(Support PRIVATE ${packages} "$<LINK_LIBRARY:WHOLE_ARCHIVE,nx_yajl>")
  target_link_options(Support PRIVATE LINKER:--version-script=${map} LINKER:-Bsymbolic-functions)
  if(NOT NX_SANITIZE)  # their run-time library may be in the program alone
    target_link_options(Support PRIVATE LINKER:-z,defs)
  endif()
  set_target_properties(Support PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${NX_SOVERSION}
                                           LINK_DEPENDS ${map})
  get_property(headers GLOBAL PROPERTY NX_PUBLIC_HEADERS)
  target_sources(Support PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${headers})
  target_compile_features(Support INTERFACE cxx_std_20)
endfunction()
