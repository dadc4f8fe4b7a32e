#include <algorithm>
#include <vector>

#include "terrain/TerrainFixture.h"

namespace {

class TerrainTreeTest : public ::testing::Test {
protected:
    void SetUp() override {
        MakeGround(Terrain, 257, Hills);
        GCamera = CameraState();
    }
    void TearDown() override { GCamera = CameraState(); }

    UINT32 LeafCount() const { return Terrain.LeafColumns() * Terrain.LeafRows(); }

    static void CollectLeaves(const STerrainNode& Node, std::vector<UINT32>& Out) {
        if (!Node.Child[0]) {
            Out.push_back(Node.LeafID);
            return;
        }
        EXPECT_EQ(Node.LeafID, TERRAIN_NO_LEAF);
        for (const STerrainNode* Child : Node.Child) {
            CollectLeaves(*Child, Out);
        }
    }

    // How far the box reaches out of the planes: above 0 if one plane has all eight corners outside.
    static double Outside(const BBox& Box, const Frustum& View) {
        double Worst = -1e30;
        for (const Plane& p : View.Planes) {
            double Nearest = 1e30;
            for (int i = 0; i < 8; i++) {
                const double x = i & 1 ? Box.Max.x : Box.Min.x;
                const double y = i & 2 ? Box.Max.y : Box.Min.y;
                const double z = i & 4 ? Box.Max.z : Box.Min.z;
                Nearest = std::min(Nearest, p.Normal.x * x + p.Normal.y * y + p.Normal.z * z - p.D);
            }
            Worst = std::max(Worst, Nearest);
        }
        return Worst;
    }

    static double Distance(const Vec3& p, const BBox& Box) {
        const auto Gap = [](double v, double Min, double Max) { return std::max({Min - v, v - Max, 0.0}); };
        return std::hypot(Gap(p.x, Box.Min.x, Box.Max.x), Gap(p.y, Box.Min.y, Box.Max.y),
                          Gap(p.z, Box.Min.z, Box.Max.z));
    }

    // By the rule, or the leaf's own where the distance is too close to a border to tell.
    static UINT32 ExpectedLod(const STerrainLeaf& Leaf, const Vec3& From, double Range) {
        const double Lod = Distance(From, Leaf.Box) / Range * 4;
        return std::abs(Lod - std::round(Lod)) < 1e-4 ? Leaf.Lod() : static_cast<UINT32>(std::min(Lod, 5.0));
    }

    void SetRandomCamera() {
        const auto Between = [this](float Min, float Max) {
            return std::uniform_real_distribution<float>(Min, Max)(Random);
        };
        GCamera.Eye = {Between(-2500, 2500), Between(-2500, 2500), Between(-100, 800)};
        GCamera.Target = GCamera.Eye + Vec3{Between(-1, 1), Between(-1, 1), Between(-1, 0.5f)};
        GCamera.Far = Between(300, 3000);
    }

    STerrain Terrain;
    std::mt19937 Random{4711};
};

} // namespace

TEST_F(TerrainTreeTest, LeavesBoundTheirPointsTightly) {
    ASSERT_EQ(LeafCount(), 256u);
    for (UINT32 i = 0; i < LeafCount(); i++) {
        const UINT32 x = i % 16 * 16;
        const UINT32 y = i / 16 * 16;
        BBox Expected = {Terrain.GetPoint(x, y), Terrain.GetPoint(x, y)};
        for (UINT32 j = 0; j <= 16 * 17 + 16; j++) {
            M_BBoxAddPoint(Terrain.GetPoint(x + j % 17, y + j / 17), Expected);
        }
        EXPECT_EQ(Terrain.Leaves[i].Box.Min, Expected.Min);
        EXPECT_EQ(Terrain.Leaves[i].Box.Max, Expected.Max);
        EXPECT_EQ(Terrain.Leaves[i].State, 0u);
    }
}

TEST_F(TerrainTreeTest, TreeHoldsEveryLeafOnce) {
    // Extents of which the halves of halves are not exact in single precision are as good.
    for (const float Extent : {2000.0f, 1600.3f, 0.7f, TERRAIN_MAX_EXTENT}) {
        for (const UINT32 Side : {33u, 65u, 257u, 513u}) {
            STerrain Other;
            Other.Extents = {Extent, Extent, 100};
            MakeGround(Other, Side, Hills);
            std::vector<UINT32> Found;
            CollectLeaves(*Other.Root, Found);
            std::sort(Found.begin(), Found.end());
            ASSERT_EQ(Found.size(), 256u) << Extent << " " << Side;
            for (UINT32 i = 0; i < Found.size(); i++) {
                ASSERT_EQ(Found[i], i);
            }
        }
    }
}

TEST_F(TerrainTreeTest, NodesAreTheUnionOfTheirChildren) {
    BBox All = Terrain.Leaves[0].Box;
    for (UINT32 i = 0; i < LeafCount(); i++) {
        M_BBoxAddPoint(Terrain.Leaves[i].Box.Min, All);
        M_BBoxAddPoint(Terrain.Leaves[i].Box.Max, All);
    }
    EXPECT_EQ(Terrain.Root->Box.Min, All.Min);
    EXPECT_EQ(Terrain.Root->Box.Max, All.Max);
}

TEST_F(TerrainTreeTest, VisibleSetAgreesWithATestOfEveryLeaf) {
    int Some = 0;
    for (int i = 0; i < 300; i++) {
        SetRandomCamera();
        const bool Ortho = i % 3 == 0;
        if (Ortho) {
            GCamera.Fov = GCamera.Aspect = 900;
        } else {
            GCamera.Fov = 60;
            GCamera.Aspect = 1.5f;
        }
        const bool Any = Terrain.Visible(Ortho);
        Frustum View;
        Ortho ? M_CameraOrthoFrustum(View) : M_CameraFrustum(View);
        bool Expected = false;
        for (UINT32 l = 0; l < LeafCount(); l++) {
            const double Out = Outside(Terrain.Leaves[l].Box, View);
            if (std::abs(Out) > 0.01) {
                ASSERT_EQ(Terrain.Leaves[l].IsVisible(), Out < 0) << "camera " << i << " leaf " << l;
            }
            Expected = Expected || Terrain.Leaves[l].IsVisible();
        }
        EXPECT_EQ(Any, Expected);
        Some += Any;
    }
    EXPECT_GT(Some, 50);
    EXPECT_LT(Some, 300);
}

TEST_F(TerrainTreeTest, LevelsFollowTheDistanceAndStayOutOfView) {
    for (int i = 0; i < 50; i++) {
        SetRandomCamera();
        std::vector<UINT32> Before;
        for (UINT32 l = 0; l < LeafCount(); l++) {
            Before.push_back(Terrain.Leaves[l].Lod());
        }
        Terrain.Visible(false);
        for (UINT32 l = 0; l < LeafCount(); l++) {
            const STerrainLeaf& Leaf = Terrain.Leaves[l];
            ASSERT_EQ(Leaf.Lod(), Leaf.IsVisible() ? ExpectedLod(Leaf, GCamera.Eye, GCamera.Far) : Before[l]);
        }
    }
}

TEST_F(TerrainTreeTest, SecondRuleReachesLevel5AndTouchesVisibleLeavesOnly) {
    GCamera.Eye = {0, 0, 3000};
    GCamera.Target = {0, 0, 0};
    GCamera.Up = {0, 1, 0};
    GCamera.Fov = GCamera.Aspect = 2000;
    GCamera.Far = 4000;
    ASSERT_TRUE(Terrain.Visible(true));
    const Vec3 From = {-900, -900, 100};
    Terrain.SetLods(From, 800);
    UINT32 Highest = 0;
    for (UINT32 l = 0; l < LeafCount(); l++) {
        const STerrainLeaf& Leaf = Terrain.Leaves[l];
        ASSERT_EQ(Leaf.Lod(), Leaf.IsVisible() ? ExpectedLod(Leaf, From, 800) : 0);
        Highest = std::max(Highest, Leaf.Lod());
    }
    EXPECT_EQ(Highest, 5u);
}

TEST_F(TerrainTreeTest, ARangeOfZeroIsTheCoarsestLevel) {
    GCamera.Target = {0, 1, 0};
    ASSERT_TRUE(Terrain.Visible(false));
    Terrain.SetLods({0, 0, 5000}, 0);
    for (UINT32 l = 0; l < LeafCount(); l++) {
        if (Terrain.Leaves[l].IsVisible()) {
            ASSERT_EQ(Terrain.Leaves[l].Lod(), 5u);
        }
    }
}

TEST_F(TerrainTreeTest, RebuildFollowsTheHeightsAndForgetsLevels) {
    Terrain.Leaves[0].SetLod(3);
    Terrain.Heights[0] = 1.0f;
    Terrain.RebuildTree();
    EXPECT_EQ(Terrain.Leaves[0].Box.Max.z, 200.0f);
    EXPECT_EQ(Terrain.Root->Box.Max.z, 200.0f);
    EXPECT_EQ(Terrain.Leaves[0].Lod(), 0u);
}

TEST_F(TerrainTreeTest, ExtentsThatAreNoSizeMakeNoTree) {
    for (const float Extent : {0.0f, -5.0f, NAN, INFINITY, 3.4028235e38f}) {
        Terrain.Extents.x = Extent;
        Terrain.RebuildTree();
        EXPECT_EQ(Terrain.Root, nullptr) << Extent;
        EXPECT_FALSE(Terrain.Visible(false));
    }
}
