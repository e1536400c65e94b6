# The sources are compiled once, for both libkest.so and the archive that the tests link.
file(GLOB_RECURSE kest_sources CONFIGURE_DEPENDS
  "${PROJECT_SOURCE_DIR}/utility/*.cpp" "${PROJECT_SOURCE_DIR}/debug/*.cpp")

add_library(kest_objects OBJECT ${kest_sources})
set_target_properties(kest_objects PROPERTIES
  CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
target_compile_options(kest_objects PRIVATE
  -fno-exceptions -fno-rtti -fno-threadsafe-statics -ffunction-sections -fdata-sections)
target_compile_definitions(kest_objects PRIVATE KEST_DEBUG_DIR="${KEST_DEBUG_DIR}")
if(CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64")
  # Loops over single samples are so short that one that straddles two cache lines takes twice as long.
  set_source_files_properties("${PROJECT_SOURCE_DIR}/utility/port/channel_move.cpp"
    PROPERTIES COMPILE_OPTIONS -falign-loops=32)
endif()
# What no cycle runs is optimised for size: commands, start-up, the registry and its listings, the test threads.
# Android.bp lists the same files.
file(GLOB kest_cold_sources CONFIGURE_DEPENDS
  "${PROJECT_SOURCE_DIR}/debug/control/*.cpp" "${PROJECT_SOURCE_DIR}/debug/registry/*.cpp"
  "${PROJECT_SOURCE_DIR}/debug/requests/*.cpp" "${PROJECT_SOURCE_DIR}/debug/thread/*_test.cpp"
  "${PROJECT_SOURCE_DIR}/debug/thread/*_commands.cpp" "${PROJECT_SOURCE_DIR}/debug/datapath/*_command.cpp"
  "${PROJECT_SOURCE_DIR}/utility/shm/*.cpp")
set_source_files_properties(${kest_cold_sources} PROPERTIES COMPILE_OPTIONS "$<$<CONFIG:Release>:-Os>")
target_include_directories(kest_objects
  PUBLIC "${PROJECT_SOURCE_DIR}/include"
  PRIVATE "${PROJECT_SOURCE_DIR}")
target_link_libraries(kest_objects PRIVATE kest_build_flags Android::log Jsmn::jsmn Threads::Threads)

# Linked as C, because the library must not need a C++ run-time.
add_library(kest SHARED)
target_link_libraries(kest PRIVATE kest_objects kest_build_flags Android::log Threads::Threads)
target_include_directories(kest PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>)
set_target_properties(kest PROPERTIES
  LINKER_LANGUAGE C VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
target_link_options(kest PRIVATE -Wl,--gc-sections "-Wl,--version-script=${PROJECT_SOURCE_DIR}/cmake/kest.map")
set_target_properties(kest PROPERTIES LINK_DEPENDS "${PROJECT_SOURCE_DIR}/cmake/kest.map")
if(NOT KEST_SANITIZE)
  target_link_options(kest PRIVATE -Wl,--no-undefined)
endif()
add_library(kest::kest ALIAS kest)

# For tests, fuzzers and benchmarks only: unlike the shared library, the archive gives access to the internals.
add_library(kest_static STATIC)
target_link_libraries(kest_static PRIVATE kest_objects PUBLIC Android::log Threads::Threads)
target_include_directories(kest_static PUBLIC "${PROJECT_SOURCE_DIR}/include" "${PROJECT_SOURCE_DIR}")
target_compile_definitions(kest_static PUBLIC KEST_DEBUG_DIR="${KEST_DEBUG_DIR}")
