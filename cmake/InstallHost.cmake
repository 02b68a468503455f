# The simulated phone for tests of other services: device, controls and GoogleTest fixtures. It is a
# component of its own and uses the stand-ins that are installed with the library.
set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/fp_host")

set_target_properties(fp_device PROPERTIES EXPORT_NAME device)
set_target_properties(fp_host_services PROPERTIES EXPORT_NAME controls
  INSTALL_RPATH "$ORIGIN;${ANDROID_LIBRARY_DIR}")
set_target_properties(fp_host_testing PROPERTIES EXPORT_NAME testing)
set_target_properties(fp_device fp_host_services PROPERTIES
  VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
foreach(target IN ITEMS fp_device fp_host_services fp_host_testing)
  target_compile_features(${target} PUBLIC cxx_std_20)
endforeach()
# CPack does not strip a static library, whose debug information must not name this machine's folders.
target_compile_options(fp_host_testing PRIVATE "-ffile-prefix-map=${PROJECT_SOURCE_DIR}/=")
install(TARGETS fp_device fp_host_services fp_host_testing EXPORT fp_host-targets
  LIBRARY DESTINATION "${host_libdir}" COMPONENT host
  ARCHIVE DESTINATION "${host_libdir}" COMPONENT host
  INCLUDES DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/platform/host/control/fp_host" COMPONENT host
  DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
install(EXPORT fp_host-targets NAMESPACE fp_host:: DESTINATION "${package_dir}" COMPONENT host)

configure_package_config_file("${CMAKE_CURRENT_LIST_DIR}/fp_host-config.cmake.in"
  "${PROJECT_BINARY_DIR}/fp_host-config.cmake" INSTALL_DESTINATION "${package_dir}")
configure_file("${PROJECT_BINARY_DIR}/fp_utils-config-version.cmake"
  "${PROJECT_BINARY_DIR}/fp_host-config-version.cmake" COPYONLY)
install(FILES
  "${PROJECT_BINARY_DIR}/fp_host-config.cmake"
  "${PROJECT_BINARY_DIR}/fp_host-config-version.cmake"
  DESTINATION "${package_dir}" COMPONENT host)

set(platform_libs)
foreach(library IN LISTS fp_host_libraries)
  get_target_property(name ${library} OUTPUT_NAME)
  string(APPEND platform_libs " -l${name}")
endforeach()
foreach(pc IN ITEMS fp_host.pc fp_host-testing.pc)
  configure_file("${CMAKE_CURRENT_LIST_DIR}/${pc}.in" "${PROJECT_BINARY_DIR}/${pc}" @ONLY)
  install(FILES "${PROJECT_BINARY_DIR}/${pc}"
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT host)
endforeach()

# Complete projects to begin with. Only the Debian package has a place for them.
install(DIRECTORY "${PROJECT_SOURCE_DIR}/examples/outside/"
  DESTINATION share/doc/libfp-utils-host-dev/examples COMPONENT host EXCLUDE_FROM_ALL)
