# What `cmake --install` lays down: the library, the public headers under include/nxSupport as they lie in the tree,
# and the two descriptions by which programs outside this tree find them.
include(CMakePackageConfigHelpers)

install(TARGETS Support EXPORT nxSupport
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/nxSupport)

set(folder ${CMAKE_INSTALL_LIBDIR}/cmake/nxSupport)
install(EXPORT nxSupport NAMESPACE nxSupport:: FILE nxSupportTargets.cmake DESTINATION ${folder})
configure_package_config_file(packaging/nxSupportConfig.cmake.in nxSupportConfig.cmake INSTALL_DESTINATION ${folder})
write_basic_package_version_file(nxSupportConfigVersion.cmake COMPATIBILITY ${NX_COMPATIBILITY})
install(FILES ${PROJECT_BINARY_DIR}/nxSupportConfig.cmake ${PROJECT_BINARY_DIR}/nxSupportConfigVersion.cmake
        DESTINATION ${folder})

# The pages and the programs that they show, in the folders of the tree, since the pages link to each other.
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR} FILES_MATCHING PATTERN *.md PATTERN *.png)
install(FILES README.md CHANGELOG.md CONTRIBUTING.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY packaging/host DESTINATION ${CMAKE_INSTALL_DOCDIR}/packaging)
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR}
        PATTERN CMakeLists.txt EXCLUDE PATTERN *.expected EXCLUDE PATTERN tests EXCLUDE)

# gdb loads it together with the library.
install(FILES packaging/gdb/libSupport-gdb.py RENAME libSupport.so.${PROJECT_VERSION}-gdb.py
        DESTINATION ${CMAKE_INSTALL_DATADIR}/gdb/auto-load/${CMAKE_INSTALL_FULL_LIBDIR})

# The prefix is told from where the file lies, so that an installed tree may be moved.
file(RELATIVE_PATH NX_PC_TO_PREFIX ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" NX_PC_TO_PREFIX ${NX_PC_TO_PREFIX})
configure_file(packaging/nxsupport.pc.in nxsupport.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/nxsupport.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
