#include <btBulletDynamicsCommon.h>
#include <map>
#include <vector>

#include "physics/Physics.h"
#include "terrain/TerrainFixture.h"
#include "terrain/TerrainShape.h"

namespace {

struct STriangle {
    Vec3 Corners[3]; // world units
    int Part, Index;
};

class CCollector : public btTriangleCallback {
public:
    void processTriangle(btVector3* Triangle, int Part, int Index) override {
        STriangle t;
        for (int i = 0; i < 3; i++) {
            t.Corners[i] = Vec3{Triangle[i].x(), Triangle[i].y(), Triangle[i].z()} * PhyWorldScale;
        }
        t.Part = Part;
        t.Index = Index;
        Triangles.push_back(t);
    }

    std::vector<STriangle> Triangles;
};

class TerrainShapeTest : public ::testing::Test {
protected:
    void SetUp() override {
        Terrain.Extents = {330, 660, 50};
        MakeGround(Terrain, 33, Rough);
    }

    btCustomHeightfieldTerrainShape MakeShape() const { return {33, 33, Terrain.Heights, Terrain.Extents}; }

    // A query in world units.
    std::vector<STriangle> Query(const Vec3& Min, const Vec3& Max) const {
        CCollector Collector;
        MakeShape().processAllTriangles(&Collector, btVector3(Min.x, Min.y, Min.z) * PhyScale,
                                        btVector3(Max.x, Max.y, Max.z) * PhyScale);
        return Collector.Triangles;
    }

    static bool Has(const std::vector<STriangle>& Triangles, int x, int y) {
        for (const STriangle& t : Triangles) {
            if (t.Part == x && t.Index == y) {
                return true;
            }
        }
        return false;
    }

    STerrain Terrain;
};

constexpr float EVERYWHERE = 1e18f;

} // namespace

TEST_F(TerrainShapeTest, TrianglesLieOnTheDrawnGrid) {
    const std::vector<STriangle> All =
        Query({-EVERYWHERE, -EVERYWHERE, -EVERYWHERE}, {EVERYWHERE, EVERYWHERE, EVERYWHERE});
    ASSERT_EQ(All.size(), 2 * 32 * 32u);
    for (std::size_t i = 0; i < All.size(); i++) {
        // Row by row, two a cell, split from the low to the high corner.
        const UINT32 x = static_cast<UINT32>(i / 2 % 32);
        const UINT32 y = static_cast<UINT32>(i / 2 / 32);
        ASSERT_EQ(All[i].Part, static_cast<int>(x));
        ASSERT_EQ(All[i].Index, static_cast<int>(y));
        const Vec3 Low = Terrain.GetPoint(x, y);
        const Vec3 High = Terrain.GetPoint(x + 1, y + 1);
        const Vec3 Expected[2][3] = {{Low, Terrain.GetPoint(x, y + 1), High}, {High, Terrain.GetPoint(x + 1, y), Low}};
        for (int c = 0; c < 3; c++) {
            ASSERT_LT(M_Length(All[i].Corners[c] - Expected[i % 2][c]), 1e-3f) << i;
        }
    }
}

TEST_F(TerrainShapeTest, AQueryYieldsAllCellsThatItTouchesAndFewMore) {
    std::mt19937 Random(5);
    for (int i = 0; i < 200; i++) {
        const auto Between = [&](float Min, float Max) {
            return std::uniform_real_distribution<float>(Min, Max)(Random);
        };
        const Vec3 Min = {Between(-325, 250), Between(-650, 500), 0};
        const Vec3 Max = Min + Vec3{Between(0, 50), Between(0, 100), 50};
        const std::vector<STriangle> Found = Query(Min, Max);
        std::size_t Touched = 0;
        for (UINT32 c = 0; c < 32 * 32; c++) {
            const Vec3 Low = Terrain.GetPoint(c % 32, c / 32);
            const Vec3 High = Terrain.GetPoint(c % 32 + 1, c / 32 + 1);
            if (Low.x <= Max.x && High.x >= Min.x && Low.y <= Max.y && High.y >= Min.y) {
                ASSERT_TRUE(Has(Found, static_cast<int>(c % 32), static_cast<int>(c / 32)));
                Touched++;
            }
        }
        // One cell wider on each side, at most.
        const double Columns = (Max.x - Min.x) / 20 + 4;
        const double Rows = (Max.y - Min.y) / 40 + 4;
        ASSERT_LE(static_cast<double>(Found.size()), 2 * Columns * Rows);
        ASSERT_GE(Found.size(), 2 * Touched);
    }
}

TEST_F(TerrainShapeTest, QueriesOutsideYieldTheCellsAtTheEdge) {
    EXPECT_TRUE(Has(Query({-900, 0, 0}, {-800, 10, 10}), 0, 16));
    EXPECT_TRUE(Has(Query({900, 900, 0}, {950, 950, 10}), 31, 31));
    EXPECT_FALSE(Query({NAN, NAN, NAN}, {NAN, NAN, NAN}).empty());
}

TEST_F(TerrainShapeTest, SculptingShowsAtOnce) {
    const btCustomHeightfieldTerrainShape Shape = MakeShape();
    Terrain.Heights[3 * 33 + 2] = 0.75f;
    EXPECT_EQ(Shape.getRawHeight(2, 3), 0.75f);
    CCollector Collector;
    Shape.processAllTriangles(&Collector, btVector3(-100, -100, 0), btVector3(100, 100, 1));
    EXPECT_NEAR(Collector.Triangles[2 * (3 * 32 + 2)].Corners[0].z, 0.75f * 50, 1e-3f);
}

TEST_F(TerrainShapeTest, BoxStandsOnTheOriginAndTurnsWithTheBasis) {
    btCustomHeightfieldTerrainShape Shape = MakeShape();
    Shape.setMargin(0.5f);
    btVector3 Min, Max;
    Shape.getAabb(btTransform(btQuaternion::getIdentity(), btVector3(1, 2, 3)), Min, Max);
    EXPECT_LT((Min - btVector3(1 - 6.6f - 0.5f, 2 - 13.2f - 0.5f, 3 - 0.5f)).length(), 1e-4f);
    EXPECT_LT((Max - btVector3(1 + 6.6f + 0.5f, 2 + 13.2f + 0.5f, 4 + 0.5f)).length(), 1e-4f);
    // A quarter turn round Z exchanges X and Y.
    Shape.getAabb(btTransform(btQuaternion(btVector3(0, 0, 1), SIMD_HALF_PI)), Min, Max);
    EXPECT_NEAR(Max.x(), 13.7f, 1e-4f);
    EXPECT_NEAR(Max.y(), 7.1f, 1e-4f);
    EXPECT_EQ(Min.w(), 0);
    EXPECT_EQ(Max.w(), 0);
}

TEST_F(TerrainShapeTest, ShapeTellsWhatItIs) {
    btCustomHeightfieldTerrainShape Shape = MakeShape();
    EXPECT_EQ(Shape.getShapeType(), 24);
    EXPECT_TRUE(Shape.isConcave());
    EXPECT_STREQ(Shape.getName(), "C_HEIGHTFIELD");
    const btVector3 Scale = Shape.getLocalScaling();
    EXPECT_LT((Scale - btVector3(2 * 6.6f / 33, 2 * 13.2f / 33, 1)).length(), 1e-5f);
    Shape.setLocalScaling(btVector3(7, 7, 7));
    EXPECT_EQ(Shape.getLocalScaling(), Scale);
    btVector3 Inertia(1, 2, 3);
    Shape.calculateLocalInertia(5, Inertia);
    EXPECT_EQ(Inertia, btVector3(0, 0, 0));
}

TEST_F(TerrainShapeTest, BodyIsStaticAndSmoothAndStandsAtThePosition) {
    PhyInit();
    btRigidBody* Body = CreateTerrainBody(Terrain.Extents, Terrain.Heights, 33, 33, {50, 100, -150});
    EXPECT_TRUE(Body->isStaticObject());
    EXPECT_EQ(Body->getFriction(), 0);
    EXPECT_EQ(Body->getRestitution(), 0);
    EXPECT_LT((Body->getWorldTransform().getOrigin() - btVector3(1, 2, -3)).length(), 1e-5f);
    EXPECT_EQ(GPhyWorld->getNumCollisionObjects(), 1);
    PhyRemoveBody(Body);
    PhyFree();
}
