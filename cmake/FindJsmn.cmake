# Finds jsmn, the JSON tokenizer: a single header that is the same for every architecture.
find_path(Jsmn_INCLUDE_DIR jsmn.h)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Jsmn
  REQUIRED_VARS Jsmn_INCLUDE_DIR
  REASON_FAILURE_MESSAGE "install Debian's libjsmn-dev")

if(Jsmn_FOUND AND NOT TARGET Jsmn::jsmn)
  add_library(Jsmn::jsmn INTERFACE IMPORTED)
  set_target_properties(Jsmn::jsmn PROPERTIES INTERFACE_INCLUDE_DIRECTORIES "${Jsmn_INCLUDE_DIR}")
endif()
mark_as_advanced(Jsmn_INCLUDE_DIR)
