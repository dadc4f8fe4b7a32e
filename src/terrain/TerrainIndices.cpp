#include "terrain/Terrain.h"

namespace {

// One level of detail of one leaf: square fans of 2 by 2 steps, each around its centre.
struct SFanGrid {
    UINT32 Fans;     // along a side
    UINT32 Step;     // grid cells
    UINT32 RowWidth; // vertices in a row of the terrain

    UINT32 Vertex(UINT32 i, UINT32 j) const { return j * Step * RowWidth + i * Step; }
};

// The corners and middles of a fan's edge, counter-clockwise seen from above, the first one again at the end. The
// middle of an edge that a coarser leaf shares is left out, since that leaf has no vertex there.
struct SRing {
    UINT32 Points[9];
    UINT32 Count = 0;

    SRing(const SFanGrid& Grid, UINT32 x, UINT32 y, UINT32 Mask) {
        const UINT32 Last = Grid.Fans - 1;
        Add(Grid.Vertex(2 * x, 2 * y));
        AddUnless((Mask & TERRAIN_LOW_Y) && y == 0, Grid.Vertex(2 * x + 1, 2 * y));
        Add(Grid.Vertex(2 * x + 2, 2 * y));
        AddUnless((Mask & TERRAIN_HIGH_X) && x == Last, Grid.Vertex(2 * x + 2, 2 * y + 1));
        Add(Grid.Vertex(2 * x + 2, 2 * y + 2));
        AddUnless((Mask & TERRAIN_HIGH_Y) && y == Last, Grid.Vertex(2 * x + 1, 2 * y + 2));
        Add(Grid.Vertex(2 * x, 2 * y + 2));
        AddUnless((Mask & TERRAIN_LOW_X) && x == 0, Grid.Vertex(2 * x, 2 * y + 1));
        Add(Points[0]);
    }

    void Add(UINT32 Vertex) { Points[Count++] = Vertex; }
    void AddUnless(bool LeftOut, UINT32 Vertex) {
        if (!LeftOut) {
            Add(Vertex);
        }
    }
};

void AddTriangle(GArray<UINT32>& Out, UINT32 a, UINT32 b, UINT32 c) {
    Out.Add(a);
    Out.Add(b);
    Out.Add(c);
}

void AddFans(GArray<UINT32>& Out, const SFanGrid& Grid, UINT32 Mask) {
    for (UINT32 y = 0; y < Grid.Fans; y++) {
        for (UINT32 x = 0; x < Grid.Fans; x++) {
            const SRing Ring(Grid, x, y, Mask);
            const UINT32 Centre = Grid.Vertex(2 * x + 1, 2 * y + 1);
            for (UINT32 i = 0; i + 1 < Ring.Count; i++) {
                AddTriangle(Out, Centre, Ring.Points[i + 1], Ring.Points[i]);
            }
        }
    }
}

} // namespace

void STerrain::BuildIndices(GArray<UINT32>& Out) {
    if (MinPartSize == 0) {
        return;
    }
    UINT32 Lod = 0;
    for (UINT32 Size = MinPartSize; Size > 1; Size /= 2, Lod++) {
        const SFanGrid Grid = {Size / 2, MinPartSize / Size, Width};
        for (UINT32 Mask = 0; Mask < TERRAIN_MASKS; Mask++) {
            const UINT32 Entry = Lod * TERRAIN_MASKS + Mask;
            IndexOffset[Entry] = Out.count;
            AddFans(Out, Grid, Mask);
            IndexCount[Entry] = Out.count - IndexOffset[Entry];
        }
    }
    // The coarsest level is the leaf's own square; a coarser neighbour than that does not exist.
    const UINT32 P = MinPartSize;
    for (UINT32 Mask = 0; Mask < TERRAIN_MASKS; Mask++) {
        IndexOffset[Lod * TERRAIN_MASKS + Mask] = Out.count;
        IndexCount[Lod * TERRAIN_MASKS + Mask] = 6;
    }
    AddTriangle(Out, 0, (Width + 1) * P, P);
    AddTriangle(Out, (Width + 1) * P, 0, Width * P);
}
