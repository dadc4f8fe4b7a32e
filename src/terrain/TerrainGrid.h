// From world space to the grid of a terrain, for its brushes and its picking ray. Internal to this folder.
//
// The terrain is not empty, so its width, height and extents in X and Y are above 0.
#pragma once

#include "terrain/Terrain.h"

// The place of a world position in grid units; whole numbers are grid points.
inline Vec2 GridPosition(const STerrain& Terrain, const Vec3& World) {
    const float u = (World.x - Terrain.Position.x) / Terrain.Extents.x * 0.5f + 0.5f;
    const float v = (World.y - Terrain.Position.y) / Terrain.Extents.y * 0.5f + 0.5f;
    return {static_cast<float>(Terrain.Width) * u, static_cast<float>(Terrain.Height) * v};
}

// From 0 to Samples - 1; what is not a number becomes 0.
inline UINT32 ClampToGrid(float Whole, UINT32 Samples) {
    if (!(Whole > 0)) {
        return 0;
    }
    const float Last = static_cast<float>(Samples - 1);
    return static_cast<UINT32>(Whole < Last ? Whole : Last);
}
