# What the system calls, all from the distribution's packages. SYSTEM keeps their headers out of our warnings.
find_package(PkgConfig REQUIRED)
pkg_check_modules(SDL REQUIRED IMPORTED_TARGET sdl)
pkg_check_modules(GLEW REQUIRED IMPORTED_TARGET glew glu)
pkg_check_modules(DEVIL REQUIRED IMPORTED_TARGET IL ILU)
pkg_check_modules(BULLET REQUIRED IMPORTED_TARGET bullet)
pkg_check_modules(ASSIMP REQUIRED IMPORTED_TARGET assimp)
pkg_check_modules(VORBISFILE REQUIRED IMPORTED_TARGET vorbisfile)
pkg_check_modules(VORBISENC REQUIRED IMPORTED_TARGET vorbisenc vorbis ogg)
