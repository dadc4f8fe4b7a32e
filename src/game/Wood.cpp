#include "game/Wood.h"

#include "game/Tree.h"
#include "graphics/Mesh.h"
#include "meshgen/TreeMeshGen.h"
#include "platform/Platform.h"
#include "terrain/Terrain.h"
#include "world/GameLevel.h"

#include <algorithm>
#include <ctime>

namespace {

const char* const TREE_SCRIPT = "Data/Generators/PineTree0.mgn";

// Part of the terrain's extent that stays free on each side.
constexpr float MARGIN = 0.1f;

// How far a tree's base lies below the ground, so that no root hangs in the air on a slope.
constexpr float TREE_DEPTH = 30.0f;

// A random coordinate along one axis of the terrain's box.
float SowCoordinate(float Extent, float Centre) {
    const float Fraction = PlatRandUnit() * (1 - 2 * MARGIN) + MARGIN;
    return 2 * Extent * Fraction - Extent + Centre;
}

// One axis of a point in samples, from 0 to Last.
float GridCoordinate(float Value, float Centre, float Extent, UINT32 Last) {
    const float Grid = static_cast<float>(Last) * (((Value - Centre) / Extent) * 0.5f + 0.5f);
    return std::clamp(Grid, 0.0f, static_cast<float>(Last));
}

} // namespace

void GrowTrees() {
    STreeMeshGen Generator;
    Generator.Generate(TREE_SCRIPT);
    MeshAdd(TREE_MESH, Generator.Mesh);
}

void ReleaseTrees() {
    SMesh* Tree = MeshLoad(TREE_MESH);
    MeshRelease(Tree);
    MeshRelease(Tree);
}

float TerrainHeightAt(float x, float y) {
    const STerrain& Terrain = *GLevel->Terrain;
    if (!Terrain.Heights) {
        return Terrain.Position.z;
    }
    const float gx = GridCoordinate(x, Terrain.Position.x, Terrain.Extents.x, Terrain.Width - 1);
    const float gy = GridCoordinate(y, Terrain.Position.y, Terrain.Extents.y, Terrain.Height - 1);
    const float fx = gx - M_Floor(gx);
    const float fy = gy - M_Floor(gy);
    const auto Sample = [&](float Column, float Row) {
        const float Height = Terrain.Heights[static_cast<UINT32>(Row) * Terrain.Width + static_cast<UINT32>(Column)];
        return Height * Terrain.Extents.z + Terrain.Position.z;
    };
    const auto RowHeight = [&](float Row) {
        return Sample(M_Floor(gx), Row) * (1 - fx) + Sample(M_Ceil(gx), Row) * fx;
    };
    return RowHeight(M_Floor(gy)) * (1 - fy) + RowHeight(M_Ceil(gy)) * fy;
}

void SowTrees(UINT32 Count, UINT32 Seed) {
    constexpr UINT32 VEC3_LENGTH = 127;
    GProperties Props;
    Props["MeshName"] = TREE_MESH;
    PlatSeedRand(Seed);
    const STerrain& Terrain = *GLevel->Terrain;
    for (UINT32 i = 0; i < Count; ++i) {
        const float x = SowCoordinate(Terrain.Extents.x, Terrain.Position.x);
        const float y = SowCoordinate(Terrain.Extents.y, Terrain.Position.y);
        Props["_POS"].Format(VEC3_LENGTH, "%f;%f;%f", x, y, TerrainHeightAt(x, y) - TREE_DEPTH);
        GLevel->AddEntity(CreateEntity("Tree", Props));
    }
}

void PlaceTrees(UINT32 Count) {
    if (Count > 0) {
        SowTrees(Count, static_cast<UINT32>(std::time(nullptr)));
    }
}
