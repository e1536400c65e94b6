# Install rules. Nothing installed contains the prefix, so the installed tree can be moved.
include(CMakePackageConfigHelpers)

# CMAKE_INSTALL_RPATH_USE_LINK_PATH adds liblog's directory if it is not a default one.
if(KEST_BUILD_PLAYER)
  file(RELATIVE_PATH kest_lib_from_bin "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
  set_target_properties(kest-player PROPERTIES INSTALL_RPATH "$ORIGIN/${kest_lib_from_bin}")
  install(TARGETS kest-player)
  install(FILES "${PROJECT_SOURCE_DIR}/player/example.json" DESTINATION "${CMAKE_INSTALL_DOCDIR}/player")
endif()

if(KEST_BUILD_CTL)
  install(TARGETS kestctl)
  set(kest_ctl_pages "${PROJECT_BINARY_DIR}/ctl")
  install(FILES "${kest_ctl_pages}/kestctl.1" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
  # Where the shells of Debian look.
  install(FILES "${kest_ctl_pages}/kestctl.bash" DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions"
    RENAME kestctl)
  install(FILES "${kest_ctl_pages}/_kestctl" DESTINATION "${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions")
  install(FILES "${kest_ctl_pages}/kestctl.fish" DESTINATION "${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d")
endif()

set(kest_cmake_dir "${CMAKE_INSTALL_LIBDIR}/cmake/kest")
install(TARGETS kest kest_harness EXPORT kest INCLUDES DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/include/ze_kest" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
install(FILES "${PROJECT_SOURCE_DIR}/README.md" "${PROJECT_SOURCE_DIR}/LICENSE"
  DESTINATION "${CMAKE_INSTALL_DOCDIR}")
# To copy and begin with.
foreach(example IN ITEMS starter starter-cpp ladspa host)
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/examples/${example}" DESTINATION "${CMAKE_INSTALL_DATADIR}/kest")
endforeach()
install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs" DESTINATION "${CMAKE_INSTALL_DOCDIR}")

# Users of the library do not need its dependencies, so the exported targets file serves as the package configuration.
install(EXPORT kest NAMESPACE kest:: FILE kestConfig.cmake DESTINATION "${kest_cmake_dir}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/kestConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/kestConfigVersion.cmake" DESTINATION "${kest_cmake_dir}")

file(RELATIVE_PATH kest_prefix_from_pc "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
string(REGEX REPLACE "/$" "" kest_prefix_from_pc "${kest_prefix_from_pc}")
configure_file("${CMAKE_CURRENT_LIST_DIR}/kest.pc.in" "${PROJECT_BINARY_DIR}/kest.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/kest.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
