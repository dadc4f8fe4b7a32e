// The program for everything that is drawn on the virtual screen of 1024 by 576: pictures, letters, status text.
#pragma once

#include "foundation/Types.h"

// Makes the program GUI current with its sampler on unit 0, and sets the view and the projection to the screen, y
// downward. The caller switches blending on and binds a texture to unit 0. Cheap. Returns the program.
UINT32 UseScreenProgram();
