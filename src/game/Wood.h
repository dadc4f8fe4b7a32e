// The wood of a level: the one tree mesh that all trees share, and the sowing of thousands of them.
//
// GrowTrees and ReleaseTrees frame the game's life; every level and its trees lie between them.
// Units: world units. Cost: growing runs the tree's script once; sowing makes one entity per tree and draws from
// PlatRand. Bad input: a script that is missing or broken is fatal.
#pragma once

#include "foundation/Types.h"

// The name of the mesh in the store.
constexpr const char* TREE_MESH = "[tree00]";

// Grows the tree by its script and stores it under TREE_MESH; ReleaseTrees gives it back.
void GrowTrees();
void ReleaseTrees();

// Sows Count trees over the level's terrain, but for its outer tenth. Seeds PlatRand with the time, so that each start
// of a level has another wood. Nothing keeps trees apart from each other or from the track.
void PlaceTrees(UINT32 Count);

// The same from a seed of the caller's.
void SowTrees(UINT32 Count, UINT32 Seed);

// Height of the level's ground at a point, bilinear between the four samples around it; points beyond the terrain take
// its edge. The grid is stretched over the whole box here, so up to one cell beside the ground that is drawn.
float TerrainHeightAt(float x, float y);
