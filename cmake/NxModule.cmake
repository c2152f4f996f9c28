# One folder, one module: a static library of its sources, one test program of its tests.
#
#   nx_module(NAME urString USES ur PACKAGES utf8cpp SOURCES CString.cpp)
#
# USES names the modules whose headers this one may include (cmake/check_layers holds it to that);
# PACKAGES are link targets that only this module's sources need; PUBLIC_PACKAGES those that its
# headers need as well. Headers in the folder itself are public and installed, those in impl/ are not.
set_property(GLOBAL PROPERTY NX_MODULES "")
set_property(GLOBAL PROPERTY NX_PUBLIC_HEADERS "")

function(nx_module)
  cmake_parse_arguments(M "" "NAME" "USES;SOURCES;PACKAGES;PUBLIC_PACKAGES;TEST_PACKAGES" ${ARGN})
  file(GLOB headers CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
  set_property(GLOBAL APPEND PROPERTY NX_PUBLIC_HEADERS ${headers})

  set(target nx_${M_NAME})
  if(M_SOURCES)
    add_library(${target} STATIC ${M_SOURCES})
    set(scope PUBLIC)
    set_property(GLOBAL APPEND PROPERTY NX_MODULES ${target})
    target_link_libraries(${target} PRIVATE ${M_PACKAGES})
  else()
    add_library(${target} INTERFACE)
    set(scope INTERFACE)
  endif()
  target_include_directories(${target} ${scope} ${PROJECT_SOURCE_DIR})
  target_link_libraries(${target} ${scope} ${M_PUBLIC_PACKAGES})
  foreach(used ${M_USES})
    target_link_libraries(${target} ${scope} nx_${used})
  endforeach()

  file(GLOB tests CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/tests/*_test.cpp)
  if(NX_TESTS AND tests)
    add_executable(${M_NAME}_tests ${tests})
    target_link_libraries(${M_NAME}_tests PRIVATE ${target} GTest::gmock_main ${M_TEST_PACKAGES})
    target_precompile_headers(${M_NAME}_tests PRIVATE <gmock/gmock.h> <gtest/gtest.h> <string> <vector>)
    add_test(NAME ${M_NAME} COMMAND ${M_NAME}_tests)
  endif()
endfunction()

# libSupport: every module taken whole, yajl beside it, and only what is public exported.
function(nx_shared_library)
  get_property(modules GLOBAL PROPERTY NX_MODULES)
  set(map ${PROJECT_SOURCE_DIR}/cmake/libSupport.map)
  file(WRITE ${CMAKE_BINARY_DIR}/anchor.cpp "")
  add_library(Support SHARED ${CMAKE_BINARY_DIR}/anchor.cpp)
  add_library(nxSupport::Support ALIAS Support)
  target_link_libraries(Support PRIVATE "$<LINK_LIBRARY:WHOLE_ARCHIVE,${modules},nx_yajl>" Threads::Threads)
  target_link_options(Support PRIVATE LINKER:--version-script=${map} LINKER:-Bsymbolic-functions LINKER:-z,defs)
  set_target_properties(Support PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
                                           EXPORT_NAME Support LINK_DEPENDS ${map})
  target_include_directories(Support INTERFACE $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
                                               $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/nxSupport>)
  target_link_libraries(Support INTERFACE absl::btree)
  target_compile_features(Support INTERFACE cxx_std_20)
endfunction()
