# Builds for the target's instruction set with Debian's cross compiler; the tests run under qemu-arm.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)

set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_C_FLAGS_INIT "-mthumb -march=armv7-a -mfpu=neon")
set(CMAKE_CXX_FLAGS_INIT "-mthumb -march=armv7-a -mfpu=neon -Wno-psabi")

set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)
set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE armhf)
# Programs run with the loader and libraries of the installed armhf packages. The cross compiler's own copies are a
# different build, and mixing the two makes threads crash.
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm)

set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(ENV{PKG_CONFIG_LIBDIR} /usr/lib/arm-linux-gnueabihf/pkgconfig:/usr/share/pkgconfig)
