#include <map>
#include <set>
#include <vector>

#include "terrain/TerrainFixture.h"

namespace {

struct SPoint {
    int x, y; // grid cells from the leaf's corner
    auto operator<=>(const SPoint&) const = default;
};

using FTriangle = std::array<SPoint, 3>;
using FEdge = std::pair<SPoint, SPoint>;

int DoubleArea(const FTriangle& t) {
    return (t[1].x - t[0].x) * (t[2].y - t[0].y) - (t[2].x - t[0].x) * (t[1].y - t[0].y);
}

class TerrainIndicesTest : public ::testing::TestWithParam<UINT32> {
protected:
    void SetUp() override {
        MakeGround(Terrain, GetParam(), [](UINT32, UINT32) { return 0.0f; });
        Terrain.BuildIndices(Indices);
        Part = static_cast<int>(Terrain.MinPartSize);
        while ((Part >> CoarsestLod) > 1) {
            CoarsestLod++;
        }
    }

    std::vector<FTriangle> List(UINT32 Lod, UINT32 Mask) const {
        const UINT32 Entry = Lod * TERRAIN_MASKS + Mask;
        std::vector<FTriangle> Out;
        for (UINT32 i = 0; i < Terrain.IndexCount[Entry]; i += 3) {
            FTriangle Triangle;
            for (UINT32 c = 0; c < 3; c++) {
                const UINT32 Vertex = Indices.Data[Terrain.IndexOffset[Entry] + i + c];
                Triangle[c] = {static_cast<int>(Vertex % Terrain.Width), static_cast<int>(Vertex / Terrain.Width)};
            }
            Out.push_back(Triangle);
        }
        return Out;
    }

    // Edges that only one triangle has, each from its owner's point of view.
    static std::set<FEdge> Border(const std::vector<FTriangle>& Triangles) {
        std::set<FEdge> Open;
        for (const FTriangle& t : Triangles) {
            for (int i = 0; i < 3; i++) {
                const FEdge Edge = {t[i], t[(i + 1) % 3]};
                if (Open.erase({Edge.second, Edge.first}) == 0) {
                    EXPECT_TRUE(Open.insert(Edge).second) << "two triangles lie over one another";
                }
            }
        }
        return Open;
    }

    // The places along one side of the leaf at which the list has vertices.
    std::set<int> Chain(UINT32 Lod, UINT32 Mask, UINT32 Side) const {
        std::set<int> Out;
        for (const auto& [From, To] : Border(List(Lod, Mask))) {
            for (const SPoint& p : {From, To}) {
                if (Side == TERRAIN_LOW_X && p.x == 0) {
                    Out.insert(p.y);
                } else if (Side == TERRAIN_HIGH_X && p.x == Part) {
                    Out.insert(p.y);
                } else if (Side == TERRAIN_LOW_Y && p.y == 0) {
                    Out.insert(p.x);
                } else if (Side == TERRAIN_HIGH_Y && p.y == Part) {
                    Out.insert(p.x);
                }
            }
        }
        return Out;
    }

    STerrain Terrain;
    GArray<UINT32> Indices;
    int Part = 0;
    UINT32 CoarsestLod = 0;
};

constexpr UINT32 SIDES[] = {TERRAIN_LOW_X, TERRAIN_LOW_Y, TERRAIN_HIGH_X, TERRAIN_HIGH_Y};

UINT32 Opposite(UINT32 Side) {
    return Side == TERRAIN_LOW_X    ? TERRAIN_HIGH_X
           : Side == TERRAIN_HIGH_X ? TERRAIN_LOW_X
           : Side == TERRAIN_LOW_Y  ? TERRAIN_HIGH_Y
                                    : TERRAIN_LOW_Y;
}

} // namespace

TEST_P(TerrainIndicesTest, EveryListCoversTheLeafOnceAndFacesUp) {
    for (UINT32 Lod = 0; Lod <= CoarsestLod; Lod++) {
        for (UINT32 Mask = 0; Mask < TERRAIN_MASKS; Mask++) {
            SCOPED_TRACE(testing::Message() << "lod " << Lod << " mask " << Mask);
            const std::vector<FTriangle> Triangles = List(Lod, Mask);
            int Area = 0;
            for (const FTriangle& t : Triangles) {
                // Clockwise from above, which is the front.
                EXPECT_LT(DoubleArea(t), 0);
                Area -= DoubleArea(t);
            }
            EXPECT_EQ(Area, 2 * Part * Part);
            // With triangles of one sense that share all inner edges, a border that is the leaf's own edge leaves
            // neither hole nor overlap.
            for (const auto& [From, To] : Border(Triangles)) {
                const bool AlongY = From.x == To.x && (From.x == 0 || From.x == Part);
                const bool AlongX = From.y == To.y && (From.y == 0 || From.y == Part);
                EXPECT_TRUE(AlongX || AlongY);
            }
        }
    }
}

TEST_P(TerrainIndicesTest, NeighboursShareTheVerticesOfTheirEdge) {
    for (UINT32 Lod = 0; Lod <= CoarsestLod; Lod++) {
        for (UINT32 Mask = 0; Mask < TERRAIN_MASKS; Mask++) {
            for (const UINT32 Side : SIDES) {
                SCOPED_TRACE(testing::Message() << "lod " << Lod << " mask " << Mask << " side " << Side);
                // The neighbour sees this leaf as equal or finer, so its own bit for the edge is not set.
                const bool Coarser = (Mask & Side) && Lod < CoarsestLod;
                EXPECT_EQ(Chain(Lod, Mask, Side), Chain(Lod + (Coarser ? 1 : 0), 0, Opposite(Side)));
            }
        }
    }
}

TEST_P(TerrainIndicesTest, EachLevelHasHalfTheVerticesAlongAnEdge) {
    for (UINT32 Lod = 0; Lod <= CoarsestLod; Lod++) {
        EXPECT_EQ(Chain(Lod, 0, TERRAIN_LOW_X).size(), static_cast<std::size_t>((Part >> Lod) + 1));
    }
}

TEST_P(TerrainIndicesTest, LevelsThatWereNotBuiltAreEmpty) {
    for (UINT32 Entry = (CoarsestLod + 1) * TERRAIN_MASKS; Entry < TERRAIN_LODS * TERRAIN_MASKS; Entry++) {
        EXPECT_EQ(Terrain.IndexCount[Entry], 0u);
        EXPECT_EQ(Terrain.IndexOffset[Entry], 0u);
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, TerrainIndicesTest, ::testing::Values(33u, 65u, 257u, 513u));

TEST(TerrainIndexCountTest, TrianglesOfAFullLeafOf16Cells) {
    STerrain Terrain;
    MakeGround(Terrain, 257, Hills);
    GArray<UINT32> Indices;
    Terrain.BuildIndices(Indices);
    const UINT32 Triangles[] = {512, 128, 32, 8, 2};
    for (UINT32 Lod = 0; Lod < 5; Lod++) {
        EXPECT_EQ(Terrain.IndexCount[Lod * TERRAIN_MASKS], 3 * Triangles[Lod]);
    }
    // The largest leaf, of 128 cells, fills the tables with seven levels of fans and the square.
    STerrain Largest;
    Largest.Width = Largest.Height = TERRAIN_MAX_SIDE;
    Largest.MinPartSize = 128;
    GArray<UINT32> Many;
    Largest.BuildIndices(Many);
    EXPECT_EQ(Largest.IndexCount[0], 3 * 2 * 128 * 128u);
    EXPECT_EQ(Largest.IndexCount[7 * TERRAIN_MASKS + 15], 6u);
}

TEST(TerrainIndexCountTest, AnEmptyTerrainHasNoLists) {
    STerrain Terrain;
    GArray<UINT32> Indices;
    Terrain.BuildIndices(Indices);
    EXPECT_EQ(Indices.count, 0u);
}
