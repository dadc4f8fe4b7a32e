# add_folder(NAME [libraries...]): one static library for the folder src/NAME, made of all its .cpp files.
# The libraries named are the folders and packages that it stands on.
function(add_folder name)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.cpp)
  add_library(${name} STATIC ${sources})
  target_link_libraries(${name} PUBLIC project_flags ${ARGN})
endfunction()
