# Compiler flags for all targets of this project.
add_library(kest_build_flags INTERFACE)
target_compile_options(kest_build_flags INTERFACE
  -Wall -Wextra -Wconversion -Wshadow -Wcast-align -Wformat=2)

if(KEST_SANITIZE)
  target_compile_options(kest_build_flags INTERFACE
    -fsanitize=${KEST_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(kest_build_flags INTERFACE -fsanitize=${KEST_SANITIZE})
endif()
