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

// By all eight corners: 1 for a box that some plane rejects, -1 for one that lies within all, else 0.
int SideOf(const BBox& Box, const Planes& All) {
    size_t Within = 0;
    for (const Plane& P : All) {
        int Balance = 0;
        for (int i = 0; i < 8; ++i) {
            const Vec3 Corner{(i & 1 ? Box.Max : Box.Min).x, (i & 2 ? Box.Max : Box.Min).y,
                              (i & 4 ? Box.Max : Box.Min).z};
            const float Distance = M_Dot(P.Normal, Corner) - P.D;
            Balance += (Distance > 0) - (Distance < 0);
        }
        if (Balance == 8) {
            return 1;
        }
        Within += Balance == -8;
    }
    return Within == All.size() ? -1 : 0;
}

class SpatialQueryTest : public SpatialFixture {
protected:
    Visits Query(const Planes& All) {
        GArray<SSpatialClient*> Found;
        ++GSpatialStamp;
        QueryClients(Grid.Root, &Found, All.data(), static_cast<UINT32>(All.size()));
        return Visits(Found.begin(), Found.end());
    }

    // What a client's own nodes say: a leaf that is not rejected shows the client if its box passes, a node below the
    // root that lies wholly within shows it untested.
    bool IsVisible(const SSpatialClient& Client, const Planes& All) {
        return std::any_of(Client.ocp.begin(), Client.ocp.end(), [&](const SClientOccupation& Place) {
            const int Side = SideOf(Place.Node->Box, All);
            const bool InLeaf = !Place.Node->HasChildren() && Side < 1 && SideOf(Client.BBox, All) < 1;
            return InLeaf || (Place.Node != Grid.Root && Side == -1);
        });
    }

    Planes RandomFrustum() {
        M_CameraSet(
            {RandomPoint(200), RandomPoint(99), {0, 0, 1}, RandomFloat(10, 120), 1.333f, 1, RandomFloat(50, 500)});
        Frustum View;
        M_CameraFrustum(View);
        return Planes(View.Planes, View.Planes + 6);
    }
};

TEST_F(SpatialQueryTest, FindsOnceWhatBruteForceOverTheClientsFinds) {
    for (int Count = 0; Count < 300; ++Count) {
        AddMesh(RandomBox());
    }
    size_t Seen = 0;
    for (int Round = 0; Round < 200; ++Round) {
        const Planes All = Round % 2 ? RandomFrustum() : PlanesOf(RandomBox());
        Visits Found = Query(All);
        std::sort(Found.begin(), Found.end());
        Visits Expected;
        for (const CTestMesh& Mesh : Meshes) {
            if (IsVisible(Mesh, All)) {
                Expected.push_back(&Mesh);
            }
        }
        std::sort(Expected.begin(), Expected.end());
        ASSERT_EQ(Found, Expected);
        Seen += Found.size();
    }
    EXPECT_GT(Seen, 1000u) << "the views are too small to prove anything";
}

TEST_F(SpatialQueryTest, ClientThatStoppedInANodeWithChildrenIsMissedUnlessTheNodeIsGatheredWhole) {
    const BBox Half = {{0, 0, 0}, {64, 64, 64}};
    const BBox Everything = {{-500, -500, -500}, {500, 500, 500}};
    const CTestMesh& InRoot = AddMesh(BOX);
    EXPECT_EQ(Query(PlanesOf(Everything)), Visits{&InRoot}) << "the root has no children yet";
    const CTestMesh& Large = AddMesh({{4, 4, 4}, {124, 124, 124}});
    EXPECT_EQ(Query(PlanesOf(Half)), Visits{&Large}) << "the octant has no children yet";
    const CTestMesh& Small = AddMesh({{10, 10, 10}, {12, 12, 12}});
    EXPECT_EQ(Query(PlanesOf(Half)), Visits{&Small});
    EXPECT_EQ(Query(PlanesOf({{0, 0, 0}, {128, 128, 128}})), Visits{&Small}) << "planes that touch it cross it";
    EXPECT_EQ(Query(PlanesOf(Everything)), (Visits{&Large, &Small})) << "the root is never gathered whole";
}

// The box that changes after AddClient shows whether the client itself was tested.
TEST_F(SpatialQueryTest, SceneWithinThePlanesIsGatheredUntested) {
    CTestMesh& Mesh = AddMesh({{10, 10, 10}, {12, 12, 12}});
    Mesh.BBox = {{900, 900, 900}, {901, 901, 901}};
    EXPECT_EQ(Query(PlanesOf({{-200, -200, -200}, {200, 200, 200}})), Visits{&Mesh});
    EXPECT_EQ(Query(PlanesOf({{0, 0, 0}, {20, 20, 20}})), Visits{});
    Grid.Free();
    EXPECT_EQ(Query({}), Visits{});
}

TEST_F(SpatialQueryTest, EachQueryKeepsItsKindAndMarksItByItsOwnStamp) {
    IRenderable* Mesh = &AddMesh({});
    AddClient(&Grid, &Light);
    AddClient(&Grid, &Other);
    GArray<SSpatialClient*> All;
    GArray<IRenderable*> MeshesFound;
    GArray<SLightClient*> LightsFound;
    ++GSpatialStamp;
    for (int Round = 0; Round < 2; ++Round) { // the second finds all stamped
        QueryClients(Grid.Root, &All, nullptr, 0);
        QueryMeshClients(Grid.Root, &MeshesFound, nullptr, 0);
        QueryLightClients(Grid.Root, &LightsFound, nullptr, 0);
        EXPECT_EQ(Visits(All.begin(), All.end()), (Visits{Mesh, &Light, &Other}));
        EXPECT_EQ(Visits(MeshesFound.begin(), MeshesFound.end()), Visits{Mesh});
        EXPECT_EQ(Visits(LightsFound.begin(), LightsFound.end()), Visits{&Light});
    }
}

} // namespace
