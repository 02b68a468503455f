# Debian's builds of the Android platform libraries, as the target fp_utils_android. They have no
# pkg-config files, and their headers and libraries are in separate folders. This file is also
# installed beside the CMake packages, which need the same target.
if(TARGET fp_utils_android)  # a project may look for packages several times
  return()
endif()
find_path(ANDROID_INCLUDE_DIR android-base/properties.h
  PATHS /usr/include/android NO_DEFAULT_PATH REQUIRED)
add_library(fp_utils_android INTERFACE IMPORTED)
target_include_directories(fp_utils_android SYSTEM INTERFACE "${ANDROID_INCLUDE_DIR}")
if(NOT FP_UTILS_OBJECTS_ONLY)
  foreach(library IN ITEMS base utils cutils log)
    find_library(ANDROID_${library}_LIBRARY ${library}
      PATHS /usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}/android NO_DEFAULT_PATH REQUIRED)
    target_link_libraries(fp_utils_android INTERFACE "${ANDROID_${library}_LIBRARY}")
  endforeach()
  get_filename_component(ANDROID_LIBRARY_DIR "${ANDROID_log_LIBRARY}" DIRECTORY)
endif()
