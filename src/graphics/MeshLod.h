// Levels of detail: a greedy collapse of the shortest edge, on index lists alone.
//
// Every level starts afresh from level 0. While the list holds more entries than its share, the shortest edge of all
// triangles goes: its second vertex disappears into the first, triangles that held both are taken out. Of equal edges
// the first in the list goes. No vertex changes, so a level is an index list and nothing else. Parts stay in their
// order. Cost: about n log n in the indices. Bad input: the caller sees to it that indices lie within their parts.
#pragma once

#include "foundation/GTemplate.h"
#include "foundation/Types.h"

struct SMesh;

// The shares of the level-0 indices that the levels keep at most.
extern const float MESH_LOD_SHARES[];

// Meshes with fewer indices are not reduced.
constexpr UINT32 MESH_LOD_MIN_INDICES = 100;

// Fills Out with the index list of the level (1 to 3) and writes IBOffset[Level] and TriangleCount[Level] of all parts.
void MeshBuildLod(SMesh& Mesh, UINT32 Level, float Share, GArray<UINT32>& Out);
