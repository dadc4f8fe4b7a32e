// The state of OpenGL that all drawing code finds at the start of a picture and leaves behind: depth test "less or
// equal", front faces clockwise and back faces culled, blending off with source alpha set up, the vertex array on.
#pragma once

// For a new context; set once.
void SetDrawingState();
