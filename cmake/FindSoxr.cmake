# Finds libsoxr, with which the player converts sample rates. Without pkg-config, like FindSndFile.cmake.
find_path(Soxr_INCLUDE_DIR soxr.h)
find_library(Soxr_LIBRARY soxr)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Soxr
  REQUIRED_VARS Soxr_LIBRARY Soxr_INCLUDE_DIR
  REASON_FAILURE_MESSAGE "install Debian's libsoxr-dev (for this target's architecture)")

if(Soxr_FOUND AND NOT TARGET Soxr::soxr)
  add_library(Soxr::soxr UNKNOWN IMPORTED)
  set_target_properties(Soxr::soxr PROPERTIES
    IMPORTED_LOCATION "${Soxr_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${Soxr_INCLUDE_DIR}")
endif()
mark_as_advanced(Soxr_INCLUDE_DIR Soxr_LIBRARY)
