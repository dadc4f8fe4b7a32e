// Trees: their bodies near the camera, their flight, and the sowing of a wood.
#include "game/GameFixture.h"
#include "game/MenuCam.h"
#include "terrain/Terrain.h"

namespace {

class Wood : public GameFixture {
protected:
    CTree& OneTree() {
        LoadText("WLMF\n" + FlatGround(51) + "entity Tree _POS=100;0;21\n");
        GCamera.Eye = {100, 0, 2000};
        return *static_cast<CTree*>(GLevel->Entities[0]);
    }
};

TEST_F(Wood, ATreeHasABodyOnlyNearTheEye) {
    CTree& Tree = OneTree();
    const auto HasBodyAt = [&](float Distance) {
        GCamera.Eye = {100 + Distance, 0, 21};
        GLevel->Update(STEP);
        return Tree.Body != nullptr;
    };
    EXPECT_FALSE(HasBodyAt(500));
    EXPECT_FALSE(HasBodyAt(400));
    ASSERT_TRUE(HasBodyAt(399.9f));
    const btVector3 Half(3 * PhyScale, 3 * PhyScale, (50 + 3) * PhyScale);
    btVector3 Low, High;
    Tree.Body->getAabb(Low, High);
    EXPECT_NEAR((High - Low).z(), 2 * Half.z(), 0.1f);
    EXPECT_NEAR((High - Low).x(), 2 * Half.x(), 0.1f);
    EXPECT_EQ(Tree.Body->getRestitution(), 3.0f);
    EXPECT_TRUE(Tree.Body->isStaticObject());
    const btRigidBody* Same = Tree.Body;
    EXPECT_TRUE(HasBodyAt(10));
    EXPECT_EQ(Tree.Body, Same);
    EXPECT_FALSE(HasBodyAt(401));
}

TEST_F(Wood, ACutTreeCountsOnceLosesItsBodyAndFliesStraight) {
    CTree& Tree = OneTree();
    GCamera.Eye = {100, 0, 21};
    GLevel->Update(STEP);
    ASSERT_TRUE(Tree.Body);
    Tree.CutBy({100, 40, -9});
    Tree.CutBy({0, 0, 0});
    EXPECT_EQ(GTreesCut, 1u);
    ExpectNear(Tree.CutDir, {0, -0.8f, 0.6f}, 1e-6f);
    const auto SeenAt = [&](float y, float z) {
        GArray<IRenderable*> Found;
        ++GSpatialStamp;
        const Plane Planes[] = {{{0, 1, 0}, y + 1}, {{0, -1, 0}, 1 - y}, {{0, 0, 1}, z + 61}, {{0, 0, -1}, -z}};
        QueryMeshClients(GLevel->Grid->Root, &Found, Planes, 4);
        return Found.count;
    };
    for (int i = 0; i < 60; ++i) {
        GLevel->Update(STEP);
        EXPECT_EQ(Tree.Body, nullptr);
    }
    ExpectNear(Tree.Position, {100, -240, 201}, 0.1f);
    EXPECT_EQ(Tree.Client.PrevPos, Tree.Position) << "nothing between the steps is shown";
    EXPECT_LT(Tree.Client.WorldBox.Max.y, -180);
    EXPECT_EQ(SeenAt(0, 21), 0u) << "the grid knows that it is gone";
}

TEST_F(Wood, SownTreesStandOnTheInnerGroundAndFollowTheSeed) {
    LoadLevel("Data/Levels/Level1.wlm");
    const UINT32 Others = GLevel->Entities.count;
    SowTrees(500, 7);
    ASSERT_EQ(GLevel->Entities.count, Others + 500);
    EXPECT_EQ(GLevel->ActiveEntities.count, Others + 500);
    const STerrain& Ground = *GLevel->Terrain;
    std::vector<Vec3> First;
    for (UINT32 i = 0; i < 500; ++i) {
        const Vec3 p = GLevel->Entities[Others + i]->Position;
        First.push_back(p);
        EXPECT_LE(std::fabs(p.x), 0.8f * Ground.Extents.x + 0.01f);
        EXPECT_LE(std::fabs(p.y), 0.8f * Ground.Extents.y + 0.01f);
        // Bilinear in double, over samples that span the whole box.
        const double gx = (p.x / Ground.Extents.x * 0.5 + 0.5) * (Ground.Width - 1);
        const double gy = (p.y / Ground.Extents.y * 0.5 + 0.5) * (Ground.Width - 1);
        const auto At = [&](int x, int y) { return double(Ground.Heights[y * Ground.Width + x]) * Ground.Extents.z; };
        const int x = static_cast<int>(gx), y = static_cast<int>(gy);
        const double Low = std::lerp(At(x, y), At(x + 1, y), gx - x);
        const double High = std::lerp(At(x, y + 1), At(x + 1, y + 1), gx - x);
        EXPECT_NEAR(p.z, std::lerp(Low, High, gy - y) - 30, 0.05);
    }
    SowTrees(500, 7);
    SowTrees(500, 8);
    const auto Place = [&](UINT32 i) { return GLevel->Entities[Others + i]->Position; };
    for (UINT32 i = 0; i < 500; ++i) {
        EXPECT_EQ(Place(500 + i), First[i]);
        EXPECT_FALSE(Place(1000 + i) == First[i]);
    }
    PlatSeedRand(1);
    const int Next = PlatRand();
    PlatSeedRand(1);
    PlaceTrees(0);
    EXPECT_EQ(PlatRand(), Next);
}

TEST_F(Wood, TheMenuCameraLooksAtItsTarget) {
    CLevel& Level = LoadText("WLMF\n" + FlatGround(0) +
                             "scene grava=0 gravp=2.1415927 gravr=10\n"
                             "entity MenuCam _POS=1;2;3 Target=4;5;6\n");
    Level.Update(STEP);
    for (const CameraState& Camera : {GCamera, GCameraPrev, GCameraNow}) {
        ExpectNear(Camera.Eye, {1, 2, 3}, 0);
        ExpectNear(Camera.Target, {4, 5, 6}, 0);
        ExpectNear(Camera.Up, {-std::sin(1.0f), 0, std::cos(1.0f)}, 1e-5f);
    }
    GProperties Props;
    Level.Entities[0]->SaveProperties(Props);
    EXPECT_STREQ(Props["Target"].CStr(), "4.000000;5.000000;6.000000");
}

} // namespace
