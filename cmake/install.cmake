# `cmake --install`: the header, the libraries, the tool, the CMake package (corvex::corvex)
# and the pkg-config file; `cpack -G DEB` packs the same files into a Debian package.
include(CMakePackageConfigHelpers)

set(corvex_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/corvex)
set(corvex_pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(DIRECTORY include/corvex DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS corvex corvex_release corvex_release_static EXPORT corvexTargets)
if(TARGET corvex_cli)
  install(TARGETS corvex_cli)
endif()

install(EXPORT corvexTargets NAMESPACE corvex:: DESTINATION ${corvex_cmake_dir})
# The SONAME carries the major number, so any version of the same major number will do.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/corvexConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES cmake/corvexConfig.cmake ${PROJECT_BINARY_DIR}/corvexConfigVersion.cmake
        DESTINATION ${corvex_cmake_dir})

# The pkg-config file finds the prefix from its own place, so the install prefix may still
# change after configuring (`cmake --install build --prefix P`, the package's /usr).
file(RELATIVE_PATH corvex_pkgconfig_to_prefix /prefix/${corvex_pkgconfig_dir} /prefix)
string(REGEX REPLACE "/$" "" corvex_pkgconfig_to_prefix ${corvex_pkgconfig_to_prefix})
configure_file(cmake/corvex.pc.in ${PROJECT_BINARY_DIR}/corvex.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/corvex.pc DESTINATION ${corvex_pkgconfig_dir})

# Debian keeps a package's license in doc/<package>/copyright.
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/corvex RENAME copyright)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME corvex)
set(CPACK_PACKAGE_CONTACT "The corvex developers")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
string(CONCAT CPACK_PACKAGE_DESCRIPTION
    "The libcorvex shared library (one C entry point, GetAggregateLocation), its release "
    "library, headers, CMake and pkg-config files, and the corvex command-line tool. "
    "License: Apache-2.0.")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
include(CPack)
