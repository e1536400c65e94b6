# For `cpack -G DEB` in a build directory: libkest1, libkest-dev and kest-tools, of the components of KestInstall.cmake.
# scripts/package.sh builds them where Debian wants them, below /usr with the library in the directory of its
# architecture.
set(CPACK_PACKAGE_NAME kest)
set(CPACK_PACKAGE_CONTACT "kest maintainers <kest@example.invalid>")
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
# Whatever the umask of the build.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_GENERATOR DEB)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_COMPONENTS_ALL lib dev tools)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}")
# Each names the others by their exact version.
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
# The summaries of the three are below.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(kest_description
"Pipelines of filters call the library on every processing cycle: how much can
be processed, reading and writing of ports, accounting. An engineer at a shell
debugs the running process through its levelled logs and its command pipe.
.")

set(CPACK_DEBIAN_LIB_PACKAGE_NAME "libkest${PROJECT_VERSION_MAJOR}")
set(CPACK_DEBIAN_LIB_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIB_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
file(WRITE "${PROJECT_BINARY_DIR}/triggers" "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_LIB_PACKAGE_CONTROL_EXTRA "${PROJECT_BINARY_DIR}/triggers")
set(CPACK_COMPONENT_LIB_DESCRIPTION
"utility and debug library of an audio post-processing framework
${kest_description}
This package holds the library.")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME libkest-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEV_DEPENDS lib)
set(CPACK_COMPONENT_DEV_DESCRIPTION
"utility and debug library of an audio post-processing framework: development
${kest_description}
This package holds what programs that use the library are built with: headers,
and the files for CMake and pkg-config.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME kest-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
set(CPACK_COMPONENT_TOOLS_DEPENDS lib)
set(CPACK_COMPONENT_TOOLS_DESCRIPTION
"player and command-line tool of an audio post-processing framework
${kest_description}
This package holds kest-player, a reference host that plays audio files, and
kestctl, which lists, watches and changes what runs in a process.")

# What Debian asks of every package; an installation without packages has no use for it.
set(kest_changelog "${PROJECT_BINARY_DIR}/changelog.gz")
execute_process(COMMAND "${GZIP_PROGRAM}" -9nc "${CMAKE_CURRENT_LIST_DIR}/package/changelog"
  OUTPUT_FILE "${kest_changelog}" COMMAND_ERROR_IS_FATAL ANY)
foreach(component IN ITEMS LIB DEV TOOLS)
  string(TOLOWER ${component} component_name)
  set(package "${CPACK_DEBIAN_${component}_PACKAGE_NAME}")
  install(FILES "${CMAKE_CURRENT_LIST_DIR}/package/copyright" "${kest_changelog}"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${package}" COMPONENT ${component_name} EXCLUDE_FROM_ALL)
  set(overrides "${CMAKE_CURRENT_LIST_DIR}/package/${component_name}.lintian-overrides")
  if(EXISTS "${overrides}")
    install(FILES "${overrides}" DESTINATION "${CMAKE_INSTALL_DATADIR}/lintian/overrides" RENAME "${package}"
      COMPONENT ${component_name} EXCLUDE_FROM_ALL)
  endif()
endforeach()

include(CPack)
