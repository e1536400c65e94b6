# Finds libsndfile, with which the player reads and writes audio files. Does not use pkg-config, so that a cross build
# finds the target's library without a pkg-config for the target.
find_path(SndFile_INCLUDE_DIR sndfile.h)
find_library(SndFile_LIBRARY sndfile)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(SndFile
  REQUIRED_VARS SndFile_LIBRARY SndFile_INCLUDE_DIR
  REASON_FAILURE_MESSAGE "install Debian's libsndfile1-dev (for this target's architecture)")

if(SndFile_FOUND AND NOT TARGET SndFile::sndfile)
  add_library(SndFile::sndfile UNKNOWN IMPORTED)
  set_target_properties(SndFile::sndfile PROPERTIES
    IMPORTED_LOCATION "${SndFile_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${SndFile_INCLUDE_DIR}")
endif()
mark_as_advanced(SndFile_INCLUDE_DIR SndFile_LIBRARY)
