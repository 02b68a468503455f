# Headers, library, CMake package and pkg-config file. The stand-ins for the platform's libraries are
# installed with the library, which links them. Their targets are called fp_host::binder_ndk etc., and
# fp_host::platform links them all.
include(CMakePackageConfigHelpers)
set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/fp_utils")
set(host_libdir "${CMAKE_INSTALL_LIBDIR}/fp_utils_host")

get_property(fp_host_libraries GLOBAL PROPERTY FP_HOST_LIBRARIES)
install(TARGETS fp_utils EXPORT fp_utils-targets LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}")
# In a separate folder, so that they are not mistaken for the platform's libraries.
install(TARGETS ${fp_host_libraries} fp_host_platform EXPORT fp_host_platform-targets
  LIBRARY DESTINATION "${host_libdir}")
set_target_properties(fp_host_platform PROPERTIES EXPORT_NAME platform)
set_target_properties(fp_host_ipc PROPERTIES EXPORT_NAME ipc)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/platform/host/include/"
  DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/fp_utils_host")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/include/fp_utils" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
install(EXPORT fp_utils-targets NAMESPACE fp_utils:: DESTINATION "${package_dir}")
install(EXPORT fp_host_platform-targets NAMESPACE fp_host:: DESTINATION "${package_dir}")

configure_package_config_file("${CMAKE_CURRENT_LIST_DIR}/fp_utils-config.cmake.in"
  "${PROJECT_BINARY_DIR}/fp_utils-config.cmake" INSTALL_DESTINATION "${package_dir}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/fp_utils-config-version.cmake"
  COMPATIBILITY SameMajorVersion)
install(FILES
  "${PROJECT_BINARY_DIR}/fp_utils-config.cmake"
  "${PROJECT_BINARY_DIR}/fp_utils-config-version.cmake"
  "${CMAKE_CURRENT_LIST_DIR}/AndroidPlatform.cmake"
  DESTINATION "${package_dir}")

# Paths in pkg-config files are relative to the file, so an installation can be moved.
file(RELATIVE_PATH prefix_from_pc "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
string(REGEX REPLACE "/$" "" prefix_from_pc "${prefix_from_pc}")
configure_file("${CMAKE_CURRENT_LIST_DIR}/fp_utils.pc.in" "${PROJECT_BINARY_DIR}/fp_utils.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/fp_utils.pc"
  DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
