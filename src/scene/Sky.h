// The sky: a textured sphere round the eye, drawn behind everything.
//
// Ownership: owns its vertices and one reference to its texture; the program belongs to the shader library.
// Life: Load (again at will), Draw, Free. An object that was never loaded, or whose texture can't be read, draws
// nothing. The texture's u runs once round the horizon, its v from the point under the feet (0) to the zenith (1).
// Cost: Load decodes a picture; Draw sends 1536 vertices.
#pragma once

#include "foundation/GTemplate.h"
#include "foundation/Maths.h"
#include "scene/DrawHelpers.h"

struct SSky {
    void Load(const GString& TextureName);
    void Free();

    // Draws with the camera's GViewMatrix without its translation, turned by Rotation, and GProjectionMatrix. The
    // caller has set the depth range in which the sky is to lie, and the program's fog.
    void Draw(const Quat& Rotation) const;

    UINT32 Program = 0;
    UINT32 Texture = 0;
    GArray<SVertex20> Vertices;

private:
    bool HoldsTexture = false; // a reference, also to a picture that can't be read and has id 0
};
