# Headers, library, CMake package and pkg-config file.
include(CMakePackageConfigHelpers)
set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/fp_utils")

get_property(fp_host_libraries GLOBAL PROPERTY FP_HOST_LIBRARIES)
install(TARGETS fp_utils fp_host_platform EXPORT fp_utils-targets
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}")
# In a separate folder, so that they are not mistaken for the platform's libraries.
install(TARGETS ${fp_host_libraries} EXPORT fp_utils-targets
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}/fp_utils_host")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/platform/host/include/"
  DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/fp_utils_host")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/include/fp_utils" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
install(EXPORT fp_utils-targets NAMESPACE fp_utils:: DESTINATION "${package_dir}")

configure_package_config_file("${CMAKE_CURRENT_LIST_DIR}/fp_utils-config.cmake.in"
  "${PROJECT_BINARY_DIR}/fp_utils-config.cmake" INSTALL_DESTINATION "${package_dir}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/fp_utils-config-version.cmake"
  COMPATIBILITY SameMajorVersion)
install(FILES
  "${PROJECT_BINARY_DIR}/fp_utils-config.cmake"
  "${PROJECT_BINARY_DIR}/fp_utils-config-version.cmake"
  "${CMAKE_CURRENT_LIST_DIR}/AndroidPlatform.cmake"
  DESTINATION "${package_dir}")

# The prefix is only known to `cmake --install`, so the file is generated then.
install(CODE "set(version ${PROJECT_VERSION})
set(description [[${PROJECT_DESCRIPTION}]])
set(libdir ${CMAKE_INSTALL_LIBDIR})
set(includedir ${CMAKE_INSTALL_INCLUDEDIR})
set(android_include_dir ${ANDROID_INCLUDE_DIR})
configure_file([[${CMAKE_CURRENT_LIST_DIR}/fp_utils.pc.in]] [[${PROJECT_BINARY_DIR}/fp_utils.pc]] @ONLY)
file(INSTALL [[${PROJECT_BINARY_DIR}/fp_utils.pc]]
  DESTINATION \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/pkgconfig\")")
