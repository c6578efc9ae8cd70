# Libraries, headers, the home directory, pkg-config and CMake package files.
include(CMakePackageConfigHelpers)

install(TARGETS kescomn64 kesintl64
    EXPORT kescomn64Targets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY siblings/kesintl/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY share/kestor/ DESTINATION ${CMAKE_INSTALL_DATADIR}/kestor)

install(EXPORT kescomn64Targets
    NAMESPACE kescomn64::
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/kescomn64)
configure_package_config_file(cmake/kescomn64Config.cmake.in
    ${PROJECT_BINARY_DIR}/kescomn64Config.cmake
    INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/kescomn64)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/kescomn64ConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/kescomn64Config.cmake
    ${PROJECT_BINARY_DIR}/kescomn64ConfigVersion.cmake
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/kescomn64)

configure_file(cmake/kescomn64.pc.in ${PROJECT_BINARY_DIR}/kescomn64.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kescomn64.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
