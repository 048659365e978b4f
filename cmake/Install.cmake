# What `cmake --install` lays down: headers, the library both ways, a CMake package, a pkg-config file and the programs;
# CPack makes Debian packages of them.
include(CMakePackageConfigHelpers)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/Trelmix)
set_target_properties(trelmix PROPERTIES EXPORT_NAME Static)
set_target_properties(trelmix_shared PROPERTIES EXPORT_NAME Trelmix)
install(TARGETS trelmix EXPORT TrelmixStaticTargets
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
install(TARGETS trelmix_shared EXPORT TrelmixTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development)
install(DIRECTORY include/Trelmix DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    COMPONENT development FILES_MATCHING PATTERN "*.h")
foreach(targets TrelmixTargets TrelmixStaticTargets)
    install(EXPORT ${targets} NAMESPACE Trelmix:: DESTINATION ${package_folder} COMPONENT development)
endforeach()
configure_package_config_file(cmake/TrelmixConfig.cmake.in TrelmixConfig.cmake INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(TrelmixConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/TrelmixConfig.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/TrelmixConfigVersion.cmake DESTINATION ${package_folder} COMPONENT development)

# Only who links the static library needs what it was built with, so no Requires.private, which is looked up always.
set(private ${EGL_LDFLAGS} ${GLES_LDFLAGS} ${GLU_LDFLAGS} ${SPNG_LDFLAGS} ${DEFLATE_LDFLAGS}
    ${JPEG_LDFLAGS} ${WEBP_LDFLAGS}
    ${CAIRO_LDFLAGS} ${SQLITE_LDFLAGS} ${CURL_LDFLAGS} ${LAPACK_LIBRARIES} ${CMAKE_THREAD_LIBS_INIT})
list(REMOVE_DUPLICATES private)
list(JOIN private " " TRELMIX_PC_PRIVATE)
# Relative, so that the tree may be installed anywhere.
file(RELATIVE_PATH TRELMIX_PC_TO_PREFIX /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(cmake/trelmix.pc.in trelmix.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/trelmix.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

# The loader finds a library in /usr/local only after this, which takes root; packages bring their own trigger.
install(CODE [[
    if(CMAKE_INSTALL_PREFIX MATCHES "^/usr(/local)?/?$" AND "$ENV{DESTDIR}" STREQUAL "")
        find_program(TRELMIX_LDCONFIG ldconfig PATHS /sbin /usr/sbin)
        if(TRELMIX_LDCONFIG)
            execute_process(COMMAND ${TRELMIX_LDCONFIG} ERROR_QUIET)
        endif()
    endif()
]] COMPONENT library)

# One text for each package: our licence and those of what is compiled in or linked.
file(READ LICENSE licence)
file(READ docs/licences.md others)
file(CONFIGURE OUTPUT copyright CONTENT "${licence}\n\n${others}" @ONLY)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS LICENSE docs/licences.md)
foreach(entry "library:libtrelmix${TRELMIX_ABI}" "development:libtrelmix-dev" "programs:trelmix")
    string(REPLACE ":" ";" pair ${entry})
    list(GET pair 0 component)
    list(GET pair 1 package)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/copyright
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component})
endforeach()

set(CPACK_GENERATOR DEB)
set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_SOURCE_DIR}/cmake/PackageDate.cmake)
set(CPACK_TRELMIX_SOURCE ${PROJECT_SOURCE_DIR})
set(CPACK_PACKAGE_CONTACT "The Trelmix developers <trelmix@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Embeddable map engine: outdoor tiles, indoor plans, overlays, a side view")
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL library development programs)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libtrelmix${TRELMIX_ABI})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_DEPENDS "libgl1-mesa-dri, fonts-dejavu-core")
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "The shared library.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libtrelmix-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libtrelmix${TRELMIX_ABI} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS "libegl-dev, libgles-dev, libglu1-mesa-dev, libspng-dev, \
libdeflate-dev, libturbojpeg0-dev, libwebp-dev, libcairo2-dev, libsqlite3-dev, libcurl4-openssl-dev, liblapack-dev")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
    "Headers, the CMake package, the pkg-config file and the static library, which needs what the package suggests.")
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_NAME trelmix)
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_DEPENDS "libgl1-mesa-dri, fonts-dejavu-core")
set(CPACK_COMPONENT_PROGRAMS_DESCRIPTION "The programs trelmix and trelmix-view.")
include(CPack)
