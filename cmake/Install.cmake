# What `cmake --install` lays down: headers, the library, a CMake package, a pkg-config file; CPack makes a Debian package of it.
include(CMakePackageConfigHelpers)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/Trelmix)
set_target_properties(trelmix PROPERTIES EXPORT_NAME Trelmix)
install(TARGETS trelmix EXPORT TrelmixTargets
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/Trelmix DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
install(EXPORT TrelmixTargets NAMESPACE Trelmix:: DESTINATION ${package_folder})
configure_package_config_file(cmake/TrelmixConfig.cmake.in TrelmixConfig.cmake INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(TrelmixConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/TrelmixConfig.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/TrelmixConfigVersion.cmake DESTINATION ${package_folder})

# A static library's users link what it was built with; a shared one brings that itself.
set(TRELMIX_PC_REQUIRES "egl glesv2 glu spng libturbojpeg libwebp cairo sqlite3 libcurl lapack")
if(BUILD_SHARED_LIBS)
    set(TRELMIX_PC_REQUIRES_LINE "Requires.private: ${TRELMIX_PC_REQUIRES}")
else()
    set(TRELMIX_PC_REQUIRES_LINE "Requires: ${TRELMIX_PC_REQUIRES}")
endif()
# Relative, so that the tree may be installed anywhere.
file(RELATIVE_PATH TRELMIX_PC_TO_PREFIX /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(cmake/trelmix.pc.in trelmix.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/trelmix.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME libtrelmix-dev)
set(CPACK_PACKAGE_CONTACT "The Trelmix developers <trelmix@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Embeddable map engine: outdoor tiles, indoor plans, overlays, a side view")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libegl1, libgles2, libgl1-mesa-dri, fonts-dejavu-core")
set(CPACK_STRIP_FILES ON)
include(CPack)
