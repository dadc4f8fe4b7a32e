#include "scene/SpatialFixture.h"

#include <algorithm>

#include "foundation/Camera.h"

namespace {

using Planes = std::vector<Plane>;

// The six sides of a box.
Planes PlanesOf(const BBox& Box) {
    return {{{1, 0, 0}, Box.Max.x},   {{0, 1, 0}, Box.Max.y},   {{0, 0, 1}, Box.Max.z},
            {{-1, 0, 0}, -Box.Min.x}, {{0, -1, 0}, -Box.Min.y}, {{0, 0, -1}, -Box.Min.z}};
}

Vec3 CornerOf(const BBox& Box, int Corner) {
    return {Corner & 1 ? Box.Max.x : Box.Min.x, Corner & 2 ? Box.Max.y : Box.Min.y, Corner & 4 ? Box.Max.z : Box.Min.z};
}

// By all eight corners: how many of them lie at or beyond the plane, counted with the sign that the caller asks for.
template <class TEST>
int CountCorners(const BBox& Box, const Plane& Side, TEST Test) {
    int Count = 0;
    for (int Corner = 0; Corner < 8; ++Corner) {
        Count += Test(M_Dot(Side.Normal, CornerOf(Box, Corner)) - Side.D);
    }
    return Count;
}

bool IsRejected(const BBox& Box, const Planes& All) {
    return std::any_of(All.begin(), All.end(), [&](const Plane& Side) {
        return CountCorners(Box, Side, [](float Distance) { return Distance > 0; }) == 8;
    });
}

bool IsWithin(const BBox& Box, const Planes& All) {
    return std::all_of(All.begin(), All.end(), [&](const Plane& Side) {
        return CountCorners(Box, Side, [](float Distance) { return Distance < 0; }) == 8;
    });
}

// What a client's own nodes say: a leaf that is not rejected shows the client if its box passes, a node below the root
// that lies wholly within shows it untested.
bool IsVisible(const SSpatialClient& Client, const SSpatialNode* Root, const Planes& All) {
    return std::any_of(Client.ocp.begin(), Client.ocp.end(), [&](const SClientOccupation& Place) {
        const bool InLeaf = !Place.Node->HasChildren() && !IsRejected(Place.Node->Box, All);
        return (InLeaf && !IsRejected(Client.BBox, All)) || (Place.Node != Root && IsWithin(Place.Node->Box, All));
    });
}

class SpatialQueryTest : public SpatialFixture {
protected:
    GArray<SSpatialClient*> Query(const Planes& All) {
        GArray<SSpatialClient*> Found;
        ++GSpatialStamp;
        QueryClients(Grid.Root, &Found, All.data(), static_cast<UINT32>(All.size()));
        return Found;
    }

    ClientSet VisibleByOwnNodes(const Planes& All) {
        ClientSet Expected;
        for (const CTestMesh& Mesh : Meshes) {
            if (IsVisible(Mesh, Grid.Root, All)) {
                Expected.insert(&Mesh);
            }
        }
        return Expected;
    }

    void ExpectSameAsBruteForce(const Planes& All) {
        const GArray<SSpatialClient*> Found = Query(All);
        ASSERT_EQ(SetOf(Found), VisibleByOwnNodes(All));
        ASSERT_EQ(SetOf(Found).size(), Found.count) << "a client came twice";
    }

    Planes RandomFrustum() {
        CameraState Camera;
        Camera.Eye = {RandomFloat(-200, 200), RandomFloat(-200, 200), RandomFloat(-200, 200)};
        Camera.Target = {RandomFloat(-99, 99), RandomFloat(-99, 99), RandomFloat(-99, 99)};
        Camera.Up = {0, 0, 1};
        Camera.Fov = RandomFloat(10, 120);
        Camera.Near = 1;
        Camera.Far = RandomFloat(50, 500);
        Camera.Aspect = 1.333f;
        M_CameraSet(Camera);
        Frustum View;
        M_CameraFrustum(View);
        return Planes(View.Planes, View.Planes + 6);
    }
};

TEST_F(SpatialQueryTest, FindsWhatBruteForceOverTheClientsFinds) {
    for (int Count = 0; Count < 300; ++Count) {
        AddMesh(RandomBox());
    }
    size_t Seen = 0;
    for (int Round = 0; Round < 200; ++Round) {
        const Planes All = Round % 2 ? RandomFrustum() : PlanesOf(RandomBox());
        ASSERT_NO_FATAL_FAILURE(ExpectSameAsBruteForce(All));
        Seen += VisibleByOwnNodes(All).size();
    }
    EXPECT_GT(Seen, 1000u) << "the views are too small to prove anything";
}

// Small clients all sit in leaves, so that no client that passes the planes by itself can be missed on one plane.
TEST_F(SpatialQueryTest, OnePlaneFindsAllSmallClientsOnItsInnerSide) {
    for (int Count = 0; Count < 300; ++Count) {
        const Vec3 Low{RandomFloat(-127, 120), RandomFloat(-127, 120), RandomFloat(-127, 120)};
        AddMesh({Low, Low + Vec3{6, 6, 6}});
    }
    for (int Round = 0; Round < 50; ++Round) {
        const Planes One{RandomFrustum()[2]};
        ClientSet Expected;
        for (const CTestMesh& Mesh : Meshes) {
            if (!IsRejected(Mesh.BBox, One)) {
                Expected.insert(&Mesh);
            }
        }
        ASSERT_EQ(SetOf(Query(One)), Expected);
    }
}

TEST_F(SpatialQueryTest, ClientThatStoppedInANodeWithChildrenIsMissedWhileThePlanesCrossIt) {
    CTestMesh& Large = AddMesh({{4, 4, 4}, {124, 124, 124}});
    ASSERT_EQ(Large.ocp.count, 2u) << "the octant and the root";
    const BBox Half = {{0, 0, 0}, {64, 64, 64}};
    EXPECT_EQ(Query(PlanesOf(Half)).count, 1u) << "the octant has no children yet";
    AddMesh({{10, 10, 10}, {12, 12, 12}});
    EXPECT_EQ(SetOf(Query(PlanesOf(Half))), (ClientSet{&Meshes[1]}));
    EXPECT_EQ(Query(PlanesOf({{0, 0, 0}, {128, 128, 128}})).count, 1u) << "planes that touch the octant cross it";
    EXPECT_EQ(Query(PlanesOf({{-1, -1, -1}, {129, 129, 129}})).count, 2u) << "gathered whole";
}

TEST_F(SpatialQueryTest, TheRootsListIsReadOnlyWithoutChildren) {
    AddMesh({{-128, -128, -128}, {128, 128, 128}});
    const Planes Everything = PlanesOf({{-500, -500, -500}, {500, 500, 500}});
    EXPECT_EQ(Query(Everything).count, 1u);
    AddMesh({{10, 10, 10}, {12, 12, 12}});
    EXPECT_EQ(SetOf(Query(Everything)), (ClientSet{&Meshes[1]}));
}

TEST_F(SpatialQueryTest, ClientOnABoundaryComesOnce) {
    AddMesh({{-4, -4, -4}, {0, 0, 0}});
    EXPECT_EQ(Query(PlanesOf({{-20, -20, -20}, {20, 20, 20}})).count, 1u);
}

// The box that changes after AddClient shows whether the client itself was tested.
TEST_F(SpatialQueryTest, SceneWithinThePlanesIsGatheredUntested) {
    CTestMesh& Mesh = AddMesh({{10, 10, 10}, {12, 12, 12}});
    Mesh.BBox = {{900, 900, 900}, {901, 901, 901}};
    EXPECT_EQ(Query(PlanesOf({{-200, -200, -200}, {200, 200, 200}})).count, 1u);
    EXPECT_EQ(Query(PlanesOf({{0, 0, 0}, {20, 20, 20}})).count, 0u);
}

TEST_F(SpatialQueryTest, EachQueryKeepsItsKindAndMarksItByItsOwnStamp) {
    const BBox Box = {{10, 10, 10}, {12, 12, 12}};
    CTestMesh& Mesh = AddMesh(Box);
    SLightClient& Light = Enter(Lights, Box);
    SSpatialClient& Other = Enter(Others, Box);
    GArray<SSpatialClient*> All;
    GArray<IRenderable*> MeshesFound;
    GArray<SLightClient*> LightsFound;
    ++GSpatialStamp;
    for (int Round = 0; Round < 2; ++Round) { // the second finds all stamped
        QueryClients(Grid.Root, &All, nullptr, 0);
        QueryMeshClients(Grid.Root, &MeshesFound, nullptr, 0);
        QueryLightClients(Grid.Root, &LightsFound, nullptr, 0);
        EXPECT_EQ(All.count, 3u);
        EXPECT_EQ(SetOf(All), (ClientSet{&Mesh, &Light, &Other}));
        ASSERT_EQ(MeshesFound.count, 1u);
        EXPECT_EQ(MeshesFound[0], &Mesh);
        ASSERT_EQ(LightsFound.count, 1u);
        EXPECT_EQ(LightsFound[0], &Light);
    }
}

TEST_F(SpatialQueryTest, GridThatWasNotInitialisedShowsNothing) {
    Grid.Free();
    EXPECT_EQ(Query(PlanesOf({{-1, -1, -1}, {1, 1, 1}})).count, 0u);
}

} // namespace
