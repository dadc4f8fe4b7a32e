// The point of the ground under the mouse, by GCamera and GMousePos at the time of construction.
#pragma once

#include "foundation/Camera.h"
#include "terrain/Terrain.h"
#include "world/GameLevel.h"

struct SGroundPick {
    explicit SGroundPick(const CLevel& Level) {
        M_CameraPickRay(PickRay);
        Distance = Level.Terrain->TraceRay(PickRay, Level.Params.ClipDist);
    }

    bool IsHit() const { return Distance >= 0; }
    Vec3 Point() const { return PickRay.Origin + PickRay.Dir * Distance; } // only after a hit

    Ray PickRay;
    float Distance; // along the ray; negative without a hit
};
