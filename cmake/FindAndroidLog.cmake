# Finds the Android log library: the platform's liblog, or Debian's build of it (package android-liblog-dev).
# Debian installs headers and library in non-default directories, so the library is linked with a run path.
find_path(AndroidLog_INCLUDE_DIR android/log.h PATH_SUFFIXES android)
find_library(AndroidLog_LIBRARY log
  PATH_SUFFIXES ${CMAKE_LIBRARY_ARCHITECTURE}/android android)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(AndroidLog
  REQUIRED_VARS AndroidLog_LIBRARY AndroidLog_INCLUDE_DIR
  REASON_FAILURE_MESSAGE "install Debian's android-liblog-dev (for this target's architecture)")

if(AndroidLog_FOUND AND NOT TARGET Android::log)
  add_library(Android::log UNKNOWN IMPORTED)
  set_target_properties(Android::log PROPERTIES
    IMPORTED_LOCATION "${AndroidLog_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${AndroidLog_INCLUDE_DIR}")
endif()
mark_as_advanced(AndroidLog_INCLUDE_DIR AndroidLog_LIBRARY)
