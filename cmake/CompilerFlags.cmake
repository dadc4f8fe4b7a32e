# Flags for our own code, carried by one interface target so that a folder needs no flags of its own.
add_library(project_flags INTERFACE)
target_compile_options(project_flags INTERFACE
  -Wall -Wextra -Wpedantic
  # The same sum on every machine: no fused multiply-add that one processor has and another lacks.
  -ffp-contract=off)
target_include_directories(project_flags INTERFACE ${CMAKE_SOURCE_DIR}/src)

if(SLOPERUSH_WERROR)
  target_compile_options(project_flags INTERFACE -Werror)
endif()
if(SLOPERUSH_SANITIZE)
  target_compile_options(project_flags INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(project_flags INTERFACE -fsanitize=address,undefined)
endif()
if(SLOPERUSH_COVERAGE)
  target_compile_options(project_flags INTERFACE --coverage)
  target_link_options(project_flags INTERFACE --coverage)
endif()
if(SLOPERUSH_FUZZ)
  target_compile_options(project_flags INTERFACE -fsanitize=fuzzer-no-link,address,undefined)
  target_link_options(project_flags INTERFACE -fsanitize=address,undefined)
endif()
