# What the system calls, all from the distribution's packages. SYSTEM keeps their headers out of our warnings.
find_package(PkgConfig REQUIRED)
pkg_check_modules(SDL REQUIRED IMPORTED_TARGET sdl)
pkg_check_modules(GLEW REQUIRED IMPORTED_TARGET glew glu)
pkg_check_modules(DEVIL REQUIRED IMPORTED_TARGET IL ILU)
pkg_check_modules(BULLET REQUIRED IMPORTED_TARGET bullet)
pkg_check_modules(ASSIMP REQUIRED IMPORTED_TARGET assimp)
pkg_check_modules(OPENAL REQUIRED IMPORTED_TARGET openal freealut)
pkg_check_modules(VORBISFILE REQUIRED IMPORTED_TARGET vorbisfile)
pkg_check_modules(VORBISENC REQUIRED IMPORTED_TARGET vorbisenc vorbis ogg)
pkg_check_modules(FREETYPE REQUIRED IMPORTED_TARGET freetype2)
# All lettering is drawn from it while the data is made; the game itself does not need it.
find_file(TYPEFACE DejaVuSans-Bold.ttf REQUIRED PATHS /usr/share/fonts
  PATH_SUFFIXES truetype/dejavu dejavu dejavu-sans-fonts TTF)
