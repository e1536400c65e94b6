# For `cpack -G DEB` in a build directory: one package with the library, its development files, the player and kestctl.
set(CPACK_PACKAGE_NAME kest)
set(CPACK_PACKAGE_CONTACT "kest maintainers <kest@example.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)

set(CPACK_GENERATOR DEB)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Pipelines of filters call it on every processing cycle: how much can be
processed, reading and writing of ports, accounting. An engineer at a shell
debugs the running process through its levelled logs and its command pipe.
.
This package holds the library, its headers and development files,
kest-player, a reference host, and kestctl, which asks and changes a running
process through its command pipe and says what came of it.")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}")
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)

include(CPack)
