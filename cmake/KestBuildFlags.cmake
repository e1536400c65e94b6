# Compiler flags for all targets of this project.
add_library(kest_build_flags INTERFACE)
target_compile_options(kest_build_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wcast-align -Wformat=2
  $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast>
  # What debug/base/thread_safety.h marks.
  $<$<COMPILE_LANG_AND_ID:CXX,Clang>:-Wthread-safety>
  # The macros of the reports leave out the comma before no arguments, as both compilers allow.
  $<$<COMPILE_LANG_AND_ID:CXX,Clang>:-Wno-gnu-zero-variadic-macro-arguments>
  # -O3, CMake's choice for this build type, makes the library larger and no faster.
  $<$<CONFIG:Release>:-O2>)

if(KEST_SANITIZE)
  # Line numbers only, and no optimisation by g++: building and running the tests takes the least time so. What clang
  # builds are fuzzers, which run for long.
  target_compile_options(kest_build_flags INTERFACE
    -fsanitize=${KEST_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -g1
    $<IF:$<CXX_COMPILER_ID:Clang>,-O1,-O0>)
  target_link_options(kest_build_flags INTERFACE -fsanitize=${KEST_SANITIZE})
endif()
