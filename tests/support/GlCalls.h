// A recording of the OpenGL calls that drawing makes: how often each function was called, which calls set what was set
// already, and for each clear and each draw the state that OpenGL itself tells of.
//
// Records while it lives, one at a time. Calls through GLEW are caught by swapping its pointers; those that the library
// exports are caught by functions of the same names, which a program gets that links this. Only the functions that a
// picture calls are known; loading is not recorded. Asking OpenGL for its state before each call makes it slow.
#pragma once

#include "foundation/Types.h"

#include <map>
#include <string>
#include <vector>

struct SGlStep {
    UINT32 Clears = 0; // mask of a clear, 0 for a draw
    INT32 Vertices = 0;
    INT32 Target = 0; // framebuffer
    INT32 Width = 0;  // of the viewport
    INT32 Program = 0;
    INT32 IndexBuffer = 0;
    bool Blend = false;
    INT32 BlendFrom = 0, BlendTo = 0;
    bool DepthTest = false, DepthWrite = false, Culls = false;
    float DepthNear = 0, DepthFar = 0;
};

struct SGlRecording {
    SGlRecording();
    ~SGlRecording();
    SGlRecording(const SGlRecording&) = delete;
    SGlRecording& operator=(const SGlRecording&) = delete;

    int Total() const;

    std::vector<SGlStep> Steps;
    std::map<std::string, int> Calls;
    // Programs, textures and uniforms that were set to what they were, and uniforms that the program lacks.
    std::vector<std::string> Repeats;
};
