// Grounds made from a formula.
#pragma once

#include "support/Common.h"
#include "terrain/Terrain.h"

// Fills a terrain as a picture would. HeightAt gives the fraction for grid point (x, y).
template <class FHeight>
void MakeGround(STerrain& Terrain, UINT32 Side, FHeight HeightAt, const Vec3& Extents) {
    Terrain.Free();
    Terrain.Extents = Extents;
    Terrain.Width = Terrain.Height = Side;
    Terrain.MinPartSize = (Side - 1) / 16;
    Terrain.Heights = new float[Side * Side];
    for (UINT32 i = 0; i < Side * Side; i++) {
        Terrain.Heights[i] = static_cast<float>(HeightAt(i % Side, i / Side));
    }
    Terrain.RebuildTree();
}

// Smooth hills between 0.1 and 0.9.
inline double Hills(double x, double y) {
    return 0.5 + 0.25 * std::sin(x * 0.31) + 0.15 * std::cos(y * 0.23);
}
