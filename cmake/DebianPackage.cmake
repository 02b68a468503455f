# `make package`: a Debian package for each component. Files without a component belong to the
# development package of the library. The dependencies are the platform's libraries that programs
# compile and link against, and what dpkg-shlibdeps finds on Debian 12. CPack's own look-up is not
# used, because it adds scripts that call ldconfig; a trigger does that.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_CONTACT "fp_utils developers <fp-utils@example.com>")
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL "")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_RESOURCE_FILE_LICENSE "${PROJECT_SOURCE_DIR}/LICENSE")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # CPack puts it above each description

# What Debian expects in every package. DESCRIPTION begins with its one-line summary.
set(debian_files "${PROJECT_BINARY_DIR}/debian")
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
macro(fp_utils_debian_package component package section depends description)
  list(APPEND CPACK_COMPONENTS_ALL ${component})
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${package})
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section})
  set(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS "${depends}")
  set(CPACK_COMPONENT_${upper}_DESCRIPTION "${description}")
  set(package ${package})
  configure_file(cmake/debian/changelog.in "${debian_files}/${package}/changelog" @ONLY)
  execute_process(COMMAND gzip -9nf "${debian_files}/${package}/changelog")
  configure_file(cmake/debian/lintian-overrides.in "${debian_files}/${package}/${package}" @ONLY)
  install(FILES cmake/debian/copyright "${debian_files}/${package}/changelog.gz"
    DESTINATION share/doc/${package} COMPONENT ${component} EXCLUDE_FROM_ALL)
  install(FILES "${debian_files}/${package}/${package}"
    DESTINATION share/lintian/overrides COMPONENT ${component} EXCLUDE_FROM_ALL)
endmacro()

fp_utils_debian_package(Unspecified fp-utils-dev libdevel
  "libc6 (>= 2.34), libgcc-s1 (>= 3.0), libstdc++6 (>= 12), android-liblog-dev, android-libbase-dev, android-libutils-dev, android-libcutils-dev, android-platform-frameworks-native-headers"
  "support library for a fingerprint HAL service
For an Android device with an under-display optical sensor: histories that
survive restarts, exposure control, coverage of the sensor by a touch, finger
and pipeline state, clients of the display, touch, sensor and thermal services.
The package has headers, library, stand-ins for libraries of the platform, a
CMake package and a pkg-config file.")
file(WRITE "${debian_files}/shlibs"
  "libfp_utils ${PROJECT_VERSION_MAJOR} fp-utils-dev (>= ${PROJECT_VERSION})\n")
set(CPACK_DEBIAN_UNSPECIFIED_PACKAGE_CONTROL_EXTRA
  "${PROJECT_SOURCE_DIR}/cmake/debian/triggers" "${debian_files}/shlibs")

if(FP_UTILS_BUILD_TESTS)
  fp_utils_debian_package(host libfp-utils-host-dev libdevel
    "fp-utils-dev (= ${PROJECT_VERSION}), libc6 (>= 2.34), libgcc-s1 (>= 3.0), libstdc++6 (>= 12), libfmt9, libgtest-dev"
    "simulated phone for tests of Android services
On it a service of an Android device runs on a Linux machine: a file tree, a
touch node, sensors, display and thermal services that a test can kill, delay
and restart, system calls that fail, and a wall clock that a test sets.
The package has headers, libraries, a GoogleTest fixture, a CMake package,
pkg-config files, and fp_phone, which runs any program on the phone.")
  fp_utils_debian_package(tools fp-utils-tools utils
    "fp-utils-dev (= ${PROJECT_VERSION}), libc6 (>= 2.34), libgcc-s1 (>= 3.0), libstdc++6 (>= 12), libfmt9"
    "reader of fingerprint dumps and histories
fp_inspect reads bug reports, dumps and backup files of a fingerprint HAL
service, says why unlocks fail, finds damage, and compares many devices.")
endif()
include(CPack)
