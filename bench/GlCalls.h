// A recording of the OpenGL calls that a picture takes: their number, the programs and textures that were set to what
// they were, and for each clear and draw the state that OpenGL itself tells of. Records while it lives, one at a time.
// Calls through GLEW are caught by swapping its pointers, those that the library exports by functions of the same
// names.
#pragma once

#include "foundation/Types.h"

#include <map>
#include <string>
#include <vector>

struct SGlStep {
    INT32 Clears = 0;              // mask of a clear, 0 for a draw
    INT32 Vertices = 0;            // of a draw
    std::map<UINT32, INT32> State; // by OpenGL's names: target, program and so on; GL_VIEWPORT is the width
};

struct SGlRecording {
    SGlRecording();
    ~SGlRecording();
    SGlRecording(const SGlRecording&) = delete;
    SGlRecording& operator=(const SGlRecording&) = delete;

    int Calls = 0;
    std::vector<SGlStep> Steps;
    std::vector<std::string> Repeats; // names of the calls
};
