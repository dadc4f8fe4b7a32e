// Levels of detail: a greedy collapse of the shortest edge, on index lists alone.
//
// While the list holds more entries than a level's share, the shortest edge of all triangles goes: its second vertex
// disappears into the first, and triangles that held both are taken out. Of equal edges the first in the list goes. No
// vertex changes, so a level is an index list and nothing else. Every part keeps its own triangles in a range of its
// own; ranges stand in the order of level 0. What no part names is left out, also when the shares are counted. Parts
// that name the same triangles get each a copy of them, and collapse apart. Cost: about n log n in the indices for all
// levels together, since each goes on where the one before ended. Bad input: a part with an index beyond its vertices,
// or a range beyond the arrays, fails an assertion. Edges without a finite length never go.
#pragma once

#include "graphics/Mesh.h"

// The shares of the level-0 indices that the levels keep at most.
constexpr float MESH_LOD_SHARES[MESH_LOD_COUNT] = {1.0f, 0.8f, 0.6f, 0.4f};

// Meshes with fewer indices are not reduced.
constexpr UINT32 MESH_LOD_MIN_INDICES = 100;

// Fills Out with the index lists of levels 1 to 3 and writes their IBOffset and TriangleCount into the parts.
void MeshBuildLods(SMesh& Mesh, GArray<UINT32> (&Out)[MESH_LOD_COUNT - 1]);
