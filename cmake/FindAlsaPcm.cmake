# Finds libasound, with which the player plays to sound cards. Without pkg-config, like FindSndFile.cmake.
find_path(AlsaPcm_INCLUDE_DIR alsa/asoundlib.h)
find_library(AlsaPcm_LIBRARY asound)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(AlsaPcm
  REQUIRED_VARS AlsaPcm_LIBRARY AlsaPcm_INCLUDE_DIR
  REASON_FAILURE_MESSAGE "install Debian's libasound2-dev (for this target's architecture)")

if(AlsaPcm_FOUND AND NOT TARGET AlsaPcm::asound)
  add_library(AlsaPcm::asound UNKNOWN IMPORTED)
  set_target_properties(AlsaPcm::asound PROPERTIES
    IMPORTED_LOCATION "${AlsaPcm_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${AlsaPcm_INCLUDE_DIR}")
endif()
mark_as_advanced(AlsaPcm_INCLUDE_DIR AlsaPcm_LIBRARY)
