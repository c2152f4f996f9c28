# The packages that the library itself stands on; tools, tests and benches find their own.
if(WIN32)
  include(NxWindowsPackages)
  return()
endif()
find_package(Threads REQUIRED)
find_package(Eigen3 REQUIRED NO_MODULE)
find_package(utf8cpp REQUIRED)

# yajl is taken whole from its static archive, so that its public functions are exported again.
find_library(NX_YAJL_ARCHIVE NAMES libyajl_s.a REQUIRED)
find_path(NX_YAJL_INCLUDE NAMES yajl/yajl_parse.h REQUIRED)
add_library(nx_yajl STATIC IMPORTED GLOBAL)
set_target_properties(nx_yajl PROPERTIES IMPORTED_LOCATION ${NX_YAJL_ARCHIVE}
                                         INTERFACE_INCLUDE_DIRECTORIES ${NX_YAJL_INCLUDE})

# The plain C library of Lua. What comes before it at run time takes its place: a program linked with the C++ build,
# say, so that the binding is tested with both.
find_package(PkgConfig REQUIRED)
pkg_check_modules(LUA REQUIRED IMPORTED_TARGET GLOBAL lua5.1)

if(NX_TESTS)
  pkg_check_modules(LUA_CXX REQUIRED IMPORTED_TARGET GLOBAL lua5.1-c++)
  find_package(GTest REQUIRED)
endif()
