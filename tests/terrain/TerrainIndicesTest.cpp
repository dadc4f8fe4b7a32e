#include <map>
#include <set>

#include "terrain/TerrainFixture.h"

namespace {

using SPoint = std::pair<int, int>; // x and y in grid cells from the leaf's corner
using FEdge = std::pair<SPoint, SPoint>;

SPoint Swapped(const SPoint& p) {
    return {p.second, p.first};
}

// The edges that only one triangle of a list has. All triangles face up, none lies over another, and together they
// are as large as the leaf: with a border on the leaf's own edge, that leaves neither hole nor overlap.
std::set<FEdge> Border(const STerrain& Terrain, const GArray<UINT32>& Indices, UINT32 Entry) {
    std::set<FEdge> Open;
    int DoubleArea = 0;
    for (UINT32 i = 0; i < Terrain.IndexCount[Entry]; i += 3) {
        SPoint p[3];
        for (UINT32 c = 0; c < 3; c++) {
            const int Vertex = static_cast<int>(Indices.Data[Terrain.IndexOffset[Entry] + i + c]);
            p[c] = {Vertex % static_cast<int>(Terrain.Width), Vertex / static_cast<int>(Terrain.Width)};
        }
        // Clockwise from above, which is the front.
        const int Area = (p[2].first - p[0].first) * (p[1].second - p[0].second) -
                         (p[1].first - p[0].first) * (p[2].second - p[0].second);
        EXPECT_GT(Area, 0);
        DoubleArea += Area;
        for (int c = 0; c < 3; c++) {
            if (Open.erase({p[(c + 1) % 3], p[c]}) == 0) {
                EXPECT_TRUE(Open.insert({p[c], p[(c + 1) % 3]}).second) << "two triangles lie over one another";
            }
        }
    }
    EXPECT_EQ(DoubleArea, static_cast<int>(2 * Terrain.MinPartSize * Terrain.MinPartSize));
    return Open;
}

} // namespace

TEST(TerrainIndicesTest, NoListHasAGapAndNeighboursShareTheVerticesOfTheirEdge) {
    for (const UINT32 Side : {33u, 65u, 257u, TERRAIN_MAX_SIDE}) {
        STerrain Terrain;
        Terrain.Width = Terrain.Height = Side;
        Terrain.MinPartSize = (Side - 1) / 16;
        const int Part = static_cast<int>(Terrain.MinPartSize);
        const UINT32 Coarsest = static_cast<UINT32>(std::log2(Part));
        GArray<UINT32> Indices;
        std::size_t Places = 0;
        Terrain.BuildIndices(Indices);
        // The places of the vertices along each side, by list and side; sides in the order of their bits.
        std::map<std::pair<UINT32, UINT32>, std::set<int>> Chains;
        for (UINT32 Entry = 0; Entry < (Coarsest + 1) * TERRAIN_MASKS; Entry++) {
            for (const FEdge& Edge : Border(Terrain, Indices, Entry)) {
                const std::size_t Before = Places;
                for (UINT32 s = 0; s < 4; s++) {
                    const int At = s < 2 ? 0 : Part;
                    const auto [From, To] = s % 2 ? Edge : FEdge{Swapped(Edge.first), Swapped(Edge.second)};
                    if (From.second == At && To.second == At) {
                        Chains[{Entry, s}].insert({From.first, To.first});
                        Places++;
                    }
                }
                EXPECT_GT(Places, Before) << "a hole in list " << Entry;
            }
        }
        for (auto& [List, Chain] : Chains) {
            const auto [Entry, s] = List;
            // The neighbour sees this leaf as equal or finer, so its own bit for the edge is not set.
            const UINT32 Lod = Entry / TERRAIN_MASKS;
            const UINT32 Theirs = Lod + (Lod < Coarsest && (Entry >> s & 1));
            EXPECT_EQ(Chain, (Chains[{Theirs * TERRAIN_MASKS, s ^ 2}])) << Side << " " << Entry;
            EXPECT_EQ(Chain.size(), static_cast<std::size_t>((Part >> Theirs) + 1));
        }
        EXPECT_EQ(Chains.size(), 4 * (Coarsest + 1) * TERRAIN_MASKS);
        EXPECT_EQ(Terrain.IndexCount[(Coarsest + 1) * TERRAIN_MASKS], 0u);
    }
}
