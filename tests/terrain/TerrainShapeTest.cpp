#include "terrain/TerrainShape.h"
#include "physics/Physics.h"
#include "terrain/TerrainFixture.h"

#include <btBulletDynamicsCommon.h>

namespace {

constexpr UINT32 SIDE = 129;

// Bullet's mesh, but the triangles of a query come in the order in which they were added, and exactly those whose box
// it touches. Balls bump a little against the edges between triangles, and how they do depends on that order: over
// hundreds of substeps two orders part ways as two throws of dice do.
class COrderedMesh : public btBvhTriangleMeshShape {
public:
    using btBvhTriangleMeshShape::btBvhTriangleMeshShape;
    void processAllTriangles(btTriangleCallback* Callback, const btVector3& Min, const btVector3& Max) const override {
        btTriangleMeshShape::processAllTriangles(Callback, Min, Max);
    }
};

struct CCollector : public btTriangleCallback {
    void processTriangle(btVector3* t, int, int) override { Corners.insert(Corners.end(), t, t + 3); }
    std::vector<btVector3> Corners;
};

class TerrainShapeTest : public ::testing::Test {
protected:
    TerrainShapeTest() {
        const auto Slope = [](double x, double y) {
            return 0.05 + 0.85 * y / (SIDE - 1) + 0.03 * std::sin(x * 0.3) + 0.02 * std::cos(y * 0.4 + x * 0.1);
        };
        MakeGround(Terrain, SIDE, Slope, {1290, 1290, 400});
        const auto At = [&](UINT32 x, UINT32 y) {
            const auto Place = [](UINT32 i) { return 2 * (static_cast<float>(i) / SIDE - 0.5f) * 25.8f; };
            return btVector3(Place(x), Place(y), 8 * Terrain.Heights[y * SIDE + x]);
        };
        for (UINT32 i = 0; i < (SIDE - 1) * (SIDE - 1); i++) {
            const UINT32 x = i % (SIDE - 1), y = i / (SIDE - 1);
            Mesh.addTriangle(At(x, y), At(x, y + 1), At(x + 1, y + 1));
            Mesh.addTriangle(At(x + 1, y + 1), At(x + 1, y), At(x, y));
        }
        PhyInit();
    }
    ~TerrainShapeTest() override { PhyFree(); }

    STerrain Terrain;
    btTriangleMesh Mesh;
};

TEST_F(TerrainShapeTest, QueriesYieldTheTrianglesOfTheMeshAndFewMore) {
    const btCustomHeightfieldTerrainShape Shape(SIDE, SIDE, Terrain.Heights, Terrain.Extents);
    CRandom Random;
    for (int i = 0; i < 200; i++) {
        // Some lie outside, and yield cells at the edge.
        const btVector3 Min = {Random.Between(-30, 28), Random.Between(-30, 28), -1};
        const btVector3 Max = Min + btVector3(Random.Between(0, 4), Random.Between(0, 2), 11);
        CCollector Found, Expected;
        Shape.processAllTriangles(&Found, Min, Max);
        COrderedMesh(&Mesh, true, false).processAllTriangles(&Expected, Min, Max);
        std::size_t Matches = 0;
        for (std::size_t c = 0; c < Found.Corners.size() && Matches < Expected.Corners.size(); c++) {
            Matches += (Found.Corners[c] - Expected.Corners[Matches]).length() < 1e-4f;
        }
        ASSERT_EQ(Matches, Expected.Corners.size()) << i;
        // Cells of 0.4; one more on each side, at most.
        const float Cells = ((Max - Min).x() / 0.4f + 4) * ((Max - Min).y() / 0.4f + 4);
        ASSERT_TRUE(!Found.Corners.empty() && static_cast<float>(Found.Corners.size()) <= 6 * Cells) << i;
    }
}

} // namespace
