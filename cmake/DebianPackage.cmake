# `make package`: one Debian package of the library and what is needed to build with it. It needs the
# platform libraries that the headers and the linker reach, and what dpkg-shlibdeps finds on Debian
# 12. CPack's own look-up is not used: it adds scripts that call ldconfig, which a trigger does.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME fp-utils-dev)
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_CONTACT "fp_utils developers <fp-utils@example.com>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "support library for a fingerprint HAL service")
set(CPACK_PACKAGE_DESCRIPTION "For an Android device with an under-display optical sensor: histories that
survive restarts, exposure control, coverage of the sensor by a touch, finger
and pipeline state, clients of the display, touch, sensor and thermal services.
The package has headers, library, stand-ins for libraries of the platform, a
CMake package and a pkg-config file.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_RESOURCE_FILE_LICENSE "${PROJECT_SOURCE_DIR}/LICENSE")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libc6 (>= 2.34), libgcc-s1 (>= 3.0), libstdc++6 (>= 12), android-liblog-dev, android-libbase-dev, android-libutils-dev, android-libcutils-dev, android-platform-frameworks-native-headers")
set(CPACK_STRIP_FILES ON)

# What Debian expects in every package.
set(debian_files "${PROJECT_BINARY_DIR}/debian")
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(cmake/debian/changelog.in "${debian_files}/changelog" @ONLY)
configure_file(cmake/debian/copyright "${debian_files}/doc/fp-utils-dev/copyright" COPYONLY)
configure_file(cmake/debian/lintian-overrides
  "${debian_files}/lintian/overrides/fp-utils-dev" COPYONLY)
execute_process(COMMAND gzip -9nc "${debian_files}/changelog"
  OUTPUT_FILE "${debian_files}/doc/fp-utils-dev/changelog.gz")
file(WRITE "${debian_files}/shlibs"
  "libfp_utils ${PROJECT_VERSION_MAJOR} fp-utils-dev (>= ${PROJECT_VERSION})\n")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
  "${PROJECT_SOURCE_DIR}/cmake/debian/triggers" "${debian_files}/shlibs")
set(CPACK_INSTALLED_DIRECTORIES
  "${debian_files}/doc" /usr/share/doc "${debian_files}/lintian" /usr/share/lintian)
include(CPack)
