// Grounds made from a formula, without picture, GL or physics.
#pragma once

#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <random>

#include "terrain/Terrain.h"

// A fraction from 0 to 1 for grid point (x, y).
using FHeight = std::function<float(UINT32 x, UINT32 y)>;

// Fills an empty terrain as a picture of Side by Side samples would.
inline void MakeGround(STerrain& Terrain, UINT32 Side, const FHeight& HeightAt) {
    Terrain.Width = Terrain.Height = Side;
    Terrain.Heights = new float[Side * Side];
    for (UINT32 i = 0; i < Side * Side; i++) {
        Terrain.Heights[i] = HeightAt(i % Side, i / Side);
    }
    Terrain.MinPartSize = (Side - 1) / 16;
    Terrain.RebuildTree();
}

// Smooth hills between 0.1 and 0.9.
inline float Hills(UINT32 x, UINT32 y) {
    return 0.5f + 0.25f * std::sin(static_cast<float>(x) * 0.31f) + 0.15f * std::cos(static_cast<float>(y) * 0.23f);
}

// Single samples of any height, the same ones every time.
inline float Rough(UINT32 x, UINT32 y) {
    std::minstd_rand Random(x * 7919 + y * 104729 + 1);
    Random.discard(5);
    return std::uniform_real_distribution<float>(0, 1)(Random);
}
