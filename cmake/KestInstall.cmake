# Install rules. Nothing installed contains the prefix, so the installed tree can be moved. The components are the
# packages of KestPackage.cmake: lib, dev (what names none) and tools; "plain" is what no package holds.
include(CMakePackageConfigHelpers)
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME dev)

# CMAKE_INSTALL_RPATH_USE_LINK_PATH adds liblog's directory if it is not a default one. The loader looks into those
# of a package by itself.
if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  file(RELATIVE_PATH kest_lib_from_bin "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
  set(kest_bin_rpath "$ORIGIN/${kest_lib_from_bin}")
endif()

# Makes a compressed page of PAGE, which the custom target TARGET makes, and installs it.
find_program(GZIP_PROGRAM gzip REQUIRED)
mark_as_advanced(GZIP_PROGRAM)
function(kest_install_page page target)
  add_custom_command(OUTPUT "${page}.gz" COMMAND "${GZIP_PROGRAM}" -9nc "${page}" > "${page}.gz"
    DEPENDS "${page}" ${target} VERBATIM)
  add_custom_target(${target}-compressed ALL DEPENDS "${page}.gz")
  install(FILES "${page}.gz" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT tools)
endfunction()

set(kest_tools_docs "${CMAKE_INSTALL_DATADIR}/doc/kest-tools")
if(KEST_BUILD_PLAYER)
  set_target_properties(kest-player PROPERTIES INSTALL_RPATH "${kest_bin_rpath}")
  install(TARGETS kest-player COMPONENT tools)
  kest_install_page("${PROJECT_BINARY_DIR}/player/kest-player.1" kest-player-page)
  install(FILES "${PROJECT_SOURCE_DIR}/player/example.json" DESTINATION "${kest_tools_docs}/examples"
    COMPONENT tools)
endif()

if(KEST_BUILD_CTL)
  install(TARGETS kestctl COMPONENT tools)
  set(kest_ctl_pages "${PROJECT_BINARY_DIR}/ctl")
  kest_install_page("${kest_ctl_pages}/kestctl.1" kestctl-pages)
  # Where the shells of Debian look.
  install(FILES "${kest_ctl_pages}/kestctl.bash" DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions"
    COMPONENT tools RENAME kestctl)
  install(FILES "${kest_ctl_pages}/_kestctl" DESTINATION "${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions"
    COMPONENT tools)
  install(FILES "${kest_ctl_pages}/kestctl.fish" DESTINATION "${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d"
    COMPONENT tools)
endif()

set(kest_cmake_dir "${CMAKE_INSTALL_LIBDIR}/cmake/kest")
install(TARGETS kest kest_harness EXPORT kest
  LIBRARY COMPONENT lib NAMELINK_COMPONENT dev
  INCLUDES DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/include/ze_kest" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")

# To copy and begin with.
foreach(example IN ITEMS starter starter-cpp ladspa host)
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/examples/${example}" DESTINATION "${CMAKE_INSTALL_DATADIR}/kest")
endforeach()

# The documents for users of what is installed; those that name the source tree stay in it.
foreach(document IN ITEMS
    commands.md glossary.md kestctl.md kestctl.schema.json log-lines.md player.md troubleshooting.md)
  install(FILES "${PROJECT_SOURCE_DIR}/docs/${document}" DESTINATION "${kest_tools_docs}" COMPONENT tools)
endforeach()
foreach(document IN ITEMS write-a-filter.md write-a-host.md)
  install(FILES "${PROJECT_SOURCE_DIR}/docs/${document}" DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/libkest-dev")
endforeach()
install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs/monitoring" DESTINATION "${kest_tools_docs}" COMPONENT tools)
install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT plain)

# Users of the library do not need its dependencies, so the exported targets file serves as the package configuration.
install(EXPORT kest NAMESPACE kest:: FILE kestConfig.cmake DESTINATION "${kest_cmake_dir}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/kestConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/kestConfigVersion.cmake" DESTINATION "${kest_cmake_dir}")

file(RELATIVE_PATH kest_prefix_from_pc "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
string(REGEX REPLACE "/$" "" kest_prefix_from_pc "${kest_prefix_from_pc}")
configure_file("${CMAKE_CURRENT_LIST_DIR}/kest.pc.in" "${PROJECT_BINARY_DIR}/kest.pc" @ONLY)
configure_file("${CMAKE_CURRENT_LIST_DIR}/kest-harness.pc.in" "${PROJECT_BINARY_DIR}/kest-harness.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/kest.pc" "${PROJECT_BINARY_DIR}/kest-harness.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
