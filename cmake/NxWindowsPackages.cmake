# The packages for a build for Windows: headers alone from the system, libraries from packaging/build-windows-packages.
find_package(Threads REQUIRED)

set(NX_WINDOWS_PACKAGES ${PROJECT_SOURCE_DIR}/build/windows-packages CACHE PATH "What that script made")
function(nx_windows_package target library include)
  add_library(${target} STATIC IMPORTED GLOBAL)
  set_target_properties(${target} PROPERTIES
    IMPORTED_LOCATION ${NX_WINDOWS_PACKAGES}/lib/${library}
    INTERFACE_INCLUDE_DIRECTORIES ${NX_WINDOWS_PACKAGES}/include${include})
endfunction()
nx_windows_package(nx_yajl libyajl_s.a "")
nx_windows_package(PkgConfig::LUA liblua5.1.a /lua)
nx_windows_package(PkgConfig::LUA_CXX liblua5.1-c++.a /lua)

# Linked one by one, since /usr/include as a whole is for another system.
set(headers ${PROJECT_BINARY_DIR}/headers_of_packages)
file(MAKE_DIRECTORY ${headers})
foreach(name utf8.h utf8 eigen3 xxhash.h)
  file(CREATE_LINK /usr/include/${name} ${headers}/${name} SYMBOLIC)
endforeach()
add_library(utf8cpp INTERFACE IMPORTED GLOBAL)
target_include_directories(utf8cpp SYSTEM INTERFACE ${headers})
add_library(Eigen3::Eigen INTERFACE IMPORTED GLOBAL)
target_include_directories(Eigen3::Eigen SYSTEM INTERFACE ${headers}/eigen3)

if(NX_TESTS)
  add_subdirectory(/usr/src/googletest ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
  foreach(target gtest gmock gmock_main)
    target_compile_options(${target} PRIVATE -w)
  endforeach()
endif()
