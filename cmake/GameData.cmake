# The game's data folder beside the executable, bin/SlopeRush/Data: text files are copied from data/, binary files are made
# by assetgen. One command per file, so that only what changed is done again and files are made in parallel.
set(GAME_FOLDER ${CMAKE_BINARY_DIR}/bin/SlopeRush)
set(DATA_FOLDER ${GAME_FOLDER}/Data)
set(data_files)

file(GLOB_RECURSE texts CONFIGURE_DEPENDS RELATIVE ${CMAKE_SOURCE_DIR}/data ${CMAKE_SOURCE_DIR}/data/*)
foreach(text IN LISTS texts)
  add_custom_command(OUTPUT ${DATA_FOLDER}/${text}
    COMMAND ${CMAKE_COMMAND} -E copy ${CMAKE_SOURCE_DIR}/data/${text} ${DATA_FOLDER}/${text}
    DEPENDS ${CMAKE_SOURCE_DIR}/data/${text} VERBATIM)
  list(APPEND data_files ${DATA_FOLDER}/${text})
endforeach()

# The table is read by the program and here. An asset is made again when its kind's source or a shared one changes; on the
# program itself it only waits, since a new kind must not renew all the others.
set(assetgen_folder ${CMAKE_SOURCE_DIR}/tools/assetgen)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${assetgen_folder}/Assets.def)
file(STRINGS ${assetgen_folder}/Assets.def assets REGEX "^ASSET\\(")
set(assetgen_shared Noise.h Noise.cpp Picture.h Picture.cpp Shape.h Shape.cpp RiderBones.h BinaryFile.h Canvas.h Canvas.cpp
  Lettering.h Lettering.cpp)
list(TRANSFORM assetgen_shared PREPEND ${assetgen_folder}/)
file(GLOB assetgen_sound CONFIGURE_DEPENDS ${assetgen_folder}/sound/*)
list(APPEND assetgen_sound ${assetgen_folder}/Noise.h ${assetgen_folder}/Noise.cpp)
foreach(asset IN LISTS assets)
  string(REGEX MATCH "^ASSET\\(([A-Za-z]+), *[A-Za-z0-9]+, *\"([^\"]+)\"\\)" matched "${asset}")
  if(NOT matched)
    message(FATAL_ERROR "Assets.def: no asset in the line: ${asset}")
  endif()
  set(kind ${CMAKE_MATCH_1})
  set(file ${CMAKE_MATCH_2})
  if(file MATCHES "\\.(wav|ogg)$")
    set(shared ${assetgen_sound})
  else()
    set(shared ${assetgen_shared})
  endif()
  add_custom_command(OUTPUT ${DATA_FOLDER}/${file}
    COMMAND assetgen ${DATA_FOLDER} ${file}
    DEPENDS ${assetgen_folder}/${kind}.cpp ${shared}
    COMMENT "Making ${file}" VERBATIM)
  list(APPEND data_files ${DATA_FOLDER}/${file})
endforeach()

add_custom_target(data ALL DEPENDS ${data_files})

# For the tests of what ships: where it is, and who made it.
add_library(assets INTERFACE)
target_link_libraries(assets INTERFACE world)
target_compile_definitions(assets INTERFACE
  SLOPERUSH_GAME_DIR="${GAME_FOLDER}" SLOPERUSH_ASSETGEN="$<TARGET_FILE:assetgen>")

if(TARGET sloperush)
  add_dependencies(sloperush data)
  install(TARGETS sloperush RUNTIME DESTINATION bin)
endif()
install(DIRECTORY ${GAME_FOLDER} DESTINATION bin
  PATTERN "error.log" EXCLUDE PATTERN "_Tmp*" EXCLUDE PATTERN "*.part" EXCLUDE)
