// SLightClient: a spot light in the spatial index, with its own shadow map.
//
// Ownership: whoever makes the light owns it, creates its ShadowTarget (depth only, as a texture) before it is drawn,
// enters it with CLevel::AddLight and takes it out before it dies. ShadowTarget's destructor frees OpenGL objects, so a
// light dies while the context lives. To move a light: Pos, Dir and their former values, then RemoveLight and AddLight.
// Position and direction are kept for the last fixed step and the one before, and blended per picture.
// Units: world space; Angle is the full cone in degrees, below 180; Range the reach in world units.
// Cost: each visible light is a shadow pass and a full additive pass over the ground and what it reaches.
// Bad input: a direction of zero, or one with three equal components, gives a degenerate view that lights nothing;
// such a light should be off.
#pragma once

#include "graphics/RenderTarget.h"
#include "scene/SpatialGrid.h"

// Bit of SLightClient::Flags: the light is left out of the frame.
constexpr UINT8 LIGHT_FLAG_OFF = 1;

struct SLightClient : SSpatialClient {
    SLightClient() { Kind = CLIENT_LIGHT; }

    // The box of the cone at its present place, for the spatial index.
    void GetBounds(::BBox* Out) const;

    UINT64 RenderStamp = STAMP_NEVER; // written by QueryLightClients
    UINT8 Flags = 0;
    Vec3 PrevPos;
    Vec3 Pos;
    Vec3 PrevDir;
    Vec3 Dir;
    float Range = 0; // far distance of the light's camera
    float Angle = 0;
    Vec3 Color;
    UINT32 ProjTexture = 0; // 0 is none
    GameRT ShadowTarget;
};
