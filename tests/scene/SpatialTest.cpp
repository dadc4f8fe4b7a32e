// The spatial grid: its index, plane queries and rays, against slow forms over all clients, nodes and cells.
//
// Coordinates are exact in single precision: whole numbers from -128 to 128, cells 4 wide. The tree splits nodes of
// 256, 128 and 64 units a side; leaves have 32.
#include "foundation/Camera.h"
#include "scene/LightClient.h"
#include "scene/Renderable.h"
#include "support/Common.h"

#include <deque>

namespace {

using Visits = std::vector<const SSpatialClient*>;
using Clients = std::multiset<const SSpatialClient*>;
using Planes = std::vector<Plane>;
using Cell = std::array<int, 3>;

constexpr float LARGEST = std::numeric_limits<float>::max();
constexpr int HALF = 128;
constexpr float CELLS = 64;
const BBox BOX = {{-HALF, -HALF, -HALF}, {HALF, HALF, HALF}};
const BBox EVERYTHING = {{-500, -500, -500}, {500, 500, 500}};

// Answers ray tests with what the test put in, and notes that it was asked.
class CTestMesh : public IRenderable {
public:
    CTestMesh() { Kind = CLIENT_MESH; }
    UINT32 GetPartCount(UINT32) override { return 0; }
    bool GetRenderData(UINT32, UINT32, SRenderData*) override { return false; }
    void SetupPart(UINT32, UINT32) override {}
    void GetBounds(::BBox* Out) override { *Out = BBox; }
    UINT32 GetWorldMatrices(Mat4*) override { return 0; }
    bool TraceRay(const Ray&, float* HitDistance, UINT32) override {
        Asked.push_back(this);
        *HitDistance = Answer;
        return Answer >= 0;
    }

    static inline Visits Asked;
    float Answer = -1; // below 0 is a miss
};

bool Touch(const BBox& A, const BBox& B) {
    bool Result = true;
    for (int Axis = 0; Axis < 3; ++Axis) {
        Result = Result && A.Min[Axis] <= B.Max[Axis] && B.Min[Axis] <= A.Max[Axis];
    }
    return Result;
}

class SpatialTest : public testing::Test {
protected:
    SpatialTest() { Grid.Init(BOX, {CELLS, CELLS, CELLS}); }

    CTestMesh& AddMesh(const BBox& Box) {
        Meshes.emplace_back().BBox = Box;
        AddClient(&Grid, &Meshes.back());
        return Meshes.back();
    }

    // Mostly small; some flat, some huge, some partly or wholly outside the grid.
    BBox RandomBox() {
        BBox Box;
        const int Largest = Random.Below(10) == 0 ? 300 : 24;
        for (int Axis = 0; Axis < 3; ++Axis) {
            Box.Min[Axis] = static_cast<float>(Random.Whole(-HALF - 20, HALF));
            Box.Max[Axis] = Box.Min[Axis] + static_cast<float>(Random.Whole(0, Largest));
        }
        return Box;
    }

    std::deque<CTestMesh> Meshes; // outlive the grid's lists, as do the two others
    SLightClient Light;
    SSpatialClient Other;
    SSpatialGrid Grid;
    CRandom Random;
};

double VolumeOf(const BBox& Box) {
    return (double{Box.Max.x} - Box.Min.x) * (double{Box.Max.y} - Box.Min.y) * (double{Box.Max.z} - Box.Min.z);
}

// Whether a client of this box goes no deeper than a node that it reached: it fills the node, the piece in it is a
// sliver, or the node is of the smallest. The root measures the whole box.
bool Stops(const SSpatialNode& Node, bool IsRoot, const BBox& Box) {
    BBox Part = Box;
    for (int Axis = 0; Axis < 3 && !IsRoot; ++Axis) {
        Part.Min[Axis] = std::max(Box.Min[Axis], Node.Box.Min[Axis]);
        Part.Max[Axis] = std::min(Box.Max[Axis], Node.Box.Max[Axis]);
    }
    const double Piece = VolumeOf(Part);
    return 2 * Piece >= VolumeOf(Node.Box) || VolumeOf(Box) > 64 * Piece ||
           VolumeOf(Node.Box) <= std::pow(double{Node.MinSize}, 3);
}

// Compares the whole tree with what the boxes of the clients in it ask for.
class SpatialGridTest : public SpatialTest {
protected:
    // Come are the clients that no node above has stopped.
    void CheckNode(const SSpatialNode& Node, const Clients& Come) {
        Clients Found, Here, Deeper;
        for (const auto* Item = Node.Clients.first; Item; Item = Item->next) {
            Found.insert(Item->obj);
        }
        for (const SSpatialClient* Client : Come) {
            if (Touch(Client->BBox, Node.Box)) {
                Here.insert(Client);
                if (!Stops(Node, &Node == Grid.Root, Client->BBox)) {
                    Deeper.insert(Client);
                }
            }
        }
        ASSERT_EQ(Found, Here);
        ASSERT_TRUE(Deeper.empty() || Node.HasChildren());
        for (int Child = 0; Child < 8 && Node.HasChildren(); ++Child) {
            CheckNode(*Node.Children[Child], Deeper);
        }
    }

    void CheckIndex(const Clients& In) {
        ASSERT_NO_FATAL_FAILURE(CheckNode(*Grid.Root, In));
        for (UINT32 At = 0; At < Grid.Cells.count && In.empty(); ++At) {
            ASSERT_EQ(Grid.Cells[At].count, 0u) << "cell " << At;
        }
        for (const SSpatialClient* Client : In) {
            const SSpatialNode* Last = Client->ocp.count ? Client->ocp[Client->ocp.count - 1].Node : Grid.Root;
            ASSERT_EQ(Last, Grid.Root) << "children come before parents";
        }
    }

    void TakeAllOut() {
        for (CTestMesh& Mesh : Meshes) {
            RemoveClient(&Grid, &Mesh);
        }
        CheckIndex({});
    }
};

TEST_F(SpatialGridTest, EveryClientIsInTheNodesAndCellsOfItsBoxThroughRandomMoves) {
    Meshes.resize(80);
    Clients In;
    for (int Change = 1; Change <= 400; ++Change) {
        CTestMesh& Mesh = Meshes[Random.Below(80)];
        Mesh.BBox = RandomBox(); // before RemoveClient: the stored range says where the client is
        RemoveClient(&Grid, &Mesh);
        In.erase(&Mesh);
        if (Random.Below(4) > 0) {
            AddClient(&Grid, &Mesh);
            In.insert(&Mesh);
        }
        if (Change % 50 == 0) {
            ASSERT_NO_FATAL_FAILURE(CheckIndex(In));
        }
    }
    TakeAllOut();
}

TEST_F(SpatialGridTest, BoxesAtTheLimitsOfTheRulesInAGridThatInitHasEmptied) {
    const BBox Cases[] = {
        {{0, 0, 0}, {128, 128, 64}},  // half of an octant fills it
        {{0, 0, 0}, {128, 128, 63}},  // less does not
        {{-1, 10, 10}, {64, 12, 12}}, // a 65th of it is in the octant on the left: a sliver
        {{-1, 10, 10}, {63, 12, 12}}, // a 64th goes on there
        {{10, 10, 10}, {10, 10, 10}}, // 0 / 0 is not above any ratio: down to a leaf
        EVERYTHING,                   // the root alone
        {{200, 0, 0}, {210, 10, 10}}, // nowhere
    };
    for (const BBox& Box : Cases) {
        CTestMesh& Mesh = AddMesh(Box);
        ASSERT_NO_FATAL_FAILURE(CheckIndex({&Mesh})) << &Box - Cases;
        Grid.Init(BOX, Grid.CellCounts);
        ASSERT_NO_FATAL_FAILURE(CheckIndex({}));
    }
}

TEST_F(SpatialGridTest, StrangeBoxesComeOutAsTheyWentIn) {
    const Vec3 Corners[] = {{NAN, 0, 0},          {NAN, NAN, NAN},          {LARGEST, LARGEST, LARGEST},
                            {-LARGEST, -1, -200}, {INFINITY, 5, -INFINITY}, {-90, -90, -90}};
    for (int Pair = 0; Pair < 36; ++Pair) {
        const CTestMesh& Mesh = AddMesh({Corners[Pair / 6], Corners[Pair % 6]});
        EXPECT_EQ(Mesh.InCells, Pair / 6 == 5 || Pair % 6 == 5 ? 1u : 0u) << "only the last corner lies inside";
    }
    TakeAllOut();
}

TEST_F(SpatialGridTest, GridsWithoutVolumeOrCellsHoldNothing) {
    const std::pair<BBox, Vec3> Cases[] = {
        {{{-1, -1, 0}, {1, 1, 0}}, {2, 2, 2}},
        {{{-1, -1, -1}, {1, 1, 1}}, {2, 0, 2}},
        {{{-1, -1, -1}, {1, 1, 1}}, {NAN, 2, 2}},
        {{{NAN, -1, -1}, {NAN, 1, 1}}, {2, 2, 2}},
        {{-Vec3{LARGEST, LARGEST, LARGEST}, {LARGEST, LARGEST, LARGEST}}, {20, 20, 20}}};
    for (const auto& [Box, Counts] : Cases) {
        const UINT32 Holds = Counts.x == 20;
        Grid.Init(Box, Counts);
        CTestMesh& Mesh = AddMesh({{0, 0, 0}, {0, 0, 0}});
        EXPECT_EQ(Mesh.ocp.count, Holds);
        SRayHits Hits;
        EXPECT_EQ(TraceGrid(&Grid, {{0, 0, 0}, {1, 0, 0}}, &Hits), Holds);
        RemoveClient(&Grid, &Mesh);
        EXPECT_EQ(Grid.Root->Clients.count, 0u);
    }
}

// The box must not wait for anybody, and error.log must not land among the test's files.
TEST_F(SpatialGridTest, WrongCallsAreFatal) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto EndQuietly = [] {
        GPlatform.ShowError = [](const char*, const char* Text) { std::fputs(Text, stderr); };
        fs::current_path(testing::TempDir());
    };
    CTestMesh& Mesh = AddMesh({{1, 1, 1}, {9, 9, 9}});
    EXPECT_FATAL((EndQuietly(), AddClient(&Grid, &Mesh)), "ocp.Node->Clients.last->obj != c");
    Grid.Cell(33, 32, 32).Clear();
    EXPECT_FATAL((EndQuietly(), RemoveClient(&Grid, &Mesh)),
                 "RemoveClient: Spatial client not found in grid node list!\n");
}

// The six sides of a box.
Planes PlanesOf(const BBox& Box) {
    return {{{1, 0, 0}, Box.Max.x},   {{0, 1, 0}, Box.Max.y},   {{0, 0, 1}, Box.Max.z},
            {{-1, 0, 0}, -Box.Min.x}, {{0, -1, 0}, -Box.Min.y}, {{0, 0, -1}, -Box.Min.z}};
}

// By all eight corners: 1 for a box that some plane rejects, -1 for one that lies within all, else 0.
int SideOf(const BBox& Box, const Planes& All) {
    std::size_t Within = 0;
    for (const Plane& P : All) {
        int Balance = 0;
        for (int i = 0; i < 8; ++i) {
            const auto End = [&](int Bit) { return i & Bit ? Box.Max : Box.Min; };
            const float Distance = M_Dot(P.Normal, {End(1).x, End(2).y, End(4).z}) - P.D;
            Balance += (Distance > 0) - (Distance < 0);
        }
        if (Balance == 8) {
            return 1;
        }
        Within += Balance == -8;
    }
    return Within == All.size() ? -1 : 0;
}

class SpatialQueryTest : public SpatialTest {
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
        M_CameraSet({Random.Point(200),
                     Random.Point(99),
                     {0, 0, 1},
                     Random.Between(10, 120),
                     1.333f,
                     1,
                     Random.Between(50, 500)});
        Frustum View;
        M_CameraFrustum(View);
        return Planes(View.Planes, View.Planes + 6);
    }
};

TEST_F(SpatialQueryTest, FindsOnceWhatBruteForceOverTheClientsFinds) {
    for (int Count = 0; Count < 300; ++Count) {
        AddMesh(RandomBox());
    }
    std::size_t Seen = 0;
    for (int Round = 0; Round < 200; ++Round) {
        const Planes All = Round % 2 ? RandomFrustum() : PlanesOf(RandomBox());
        const Visits Found = Query(All);
        Clients Expected;
        for (const CTestMesh& Mesh : Meshes) {
            if (IsVisible(Mesh, All)) {
                Expected.insert(&Mesh);
            }
        }
        ASSERT_EQ(Clients(Found.begin(), Found.end()), Expected);
        Seen += Found.size();
    }
    EXPECT_GT(Seen, 1000u) << "the views are too small to prove anything";
}

// The box that changes after AddClient shows whether the client itself was tested.
TEST_F(SpatialQueryTest, SceneWithinThePlanesIsGatheredUntested) {
    CTestMesh& Mesh = AddMesh({{10, 10, 10}, {12, 12, 12}});
    Mesh.BBox = {{900, 900, 900}, {901, 901, 901}};
    EXPECT_EQ(Query(PlanesOf(EVERYTHING)), Visits{&Mesh});
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

// Oblong cells of 10 by 1 by 2 units, a mesh in each.
class SpatialRayTest : public SpatialTest {
protected:
    const Vec3 SIZE = {10, 1, 2};
    const Vec3 EXTENT = {160, 8, 8};

    SpatialRayTest() {
        Grid.Init({{}, EXTENT}, {16, 8, 4});
        for (int At = 0; At < 16 * 8 * 4; ++At) {
            AllCells.push_back({At % 16, At / 16 % 8, At / 128});
            AddMesh({CentreOf(AllCells.back()), CentreOf(AllCells.back())});
        }
    }

    Vec3 CornerOf(const Cell& At) const { return Vec3{float(At[0]), float(At[1]), float(At[2])} * SIZE; }
    Vec3 CentreOf(const Cell& At) const { return CornerOf(At) + SIZE * 0.5f; }

    // By their boxes: a mesh is in the cells that its box touches, unless neither corner lies in the grid.
    Visits MeshesIn(const std::vector<Cell>& Path) const {
        Visits Result;
        for (const Cell& At : Path) {
            for (const CTestMesh& Mesh : Meshes) {
                const BBox& Box = Mesh.BBox;
                if (Touch(Box, {CornerOf(At), CornerOf(At) + SIZE}) &&
                    (Touch({Box.Min, Box.Min}, Grid.Box) || Touch({Box.Max, Box.Max}, Grid.Box))) {
                    Result.push_back(&Mesh);
                }
            }
        }
        return Result;
    }

    UINT32 Trace(const Vec3& Origin, const Vec3& Dir) {
        CTestMesh::Asked.clear();
        Hits.Hits.Clear();
        return TraceGrid(&Grid, {Origin, Dir}, &Hits);
    }
    Visits HitClients() const {
        Visits Found;
        for (GMap<float, SSpatialClient*>::Iterator It(Hits.Hits); It.Valid(); It.Next()) {
            Found.push_back(It.Value());
        }
        return Found;
    }

    // The slow form: where the ray enters each cell, in the order of entry. Empty where the ray comes so near an edge
    // that the order is a matter of rounding.
    std::map<double, Cell> CellsAlong(const Ray& R) const {
        std::map<double, Cell> Order;
        for (const Cell& At : AllCells) {
            double Enter = 0, Leave = INFINITY;
            for (int Axis = 0; Axis < 3; ++Axis) {
                const double Low = (double{CornerOf(At)[Axis]} - R.Origin[Axis]) / R.Dir[Axis];
                const double High = Low + double{SIZE[Axis]} / R.Dir[Axis];
                Enter = std::max(Enter, std::min(Low, High));
                Leave = std::min(Leave, std::max(Low, High));
            }
            if (std::abs(Leave - Enter) < 1e-4) {
                return {};
            }
            if (Enter < Leave) {
                Order[Enter] = At;
            }
        }
        return Order;
    }

    std::vector<Cell> AllCells;
    SRayHits Hits;
};

TEST_F(SpatialRayTest, AsksTheCellsOnTheRayToTheEndOfTheFirstHitsCellOrOfTheAllowance) {
    for (int Count = 0; Count < 200; ++Count) {
        const Vec3 Low = (Random.Point(0.6f) + Vec3{0.5f, 0.5f, 0.5f}) * EXTENT;
        AddMesh({Low, Low + (Random.Point(1) + Vec3{1, 1, 1}) * SIZE});
    }
    for (CTestMesh& Mesh : Meshes) {
        Mesh.Answer = Random.Below(10) ? -1 : Random.Between(0, 9);
    }
    int Sure = 0;
    for (int Round = 0; Round < 400; ++Round) {
        const Ray R = {(Random.Point(1) + Vec3{1, 1, 1}) * 0.5f * EXTENT, Random.Point(1) * SIZE};
        Hits.StepAllowance = Random.Below(5);
        Visits Expected, Kept; // what was nearest so far, the nearest first
        float Nearest = INFINITY;
        UINT32 Steps = 0;
        for (const auto& [Enter, At] : CellsAlong(R)) {
            for (const SSpatialClient* Client : MeshesIn({At})) {
                Expected.push_back(Client);
                const float Answer = static_cast<const CTestMesh*>(Client)->Answer;
                if (Answer >= 0 && Answer < Nearest) {
                    Nearest = Answer;
                    Kept.insert(Kept.begin(), Client);
                }
            }
            if (++Steps > Hits.StepAllowance && !Kept.empty()) {
                break;
            }
        }
        if (Steps > 0) {
            ++Sure;
            ASSERT_EQ(Trace(R.Origin, R.Dir), 1u);
            ASSERT_EQ(CTestMesh::Asked, Expected);
            ASSERT_EQ(HitClients(), Kept);
        }
    }
    EXPECT_GT(Sure, 300);
}

TEST_F(SpatialRayTest, TiesStepAlongZThenYThenXAndZeroNeverSteps) {
    Trace(CentreOf({0, 0, 2}), SIZE);
    EXPECT_EQ(CTestMesh::Asked, MeshesIn({{0, 0, 2}, {0, 0, 3}, {0, 1, 3}, {1, 1, 3}}));
    Trace(CentreOf({3, 7, 3}), {-1, 0, -0.0f});
    EXPECT_EQ(CTestMesh::Asked, MeshesIn({{3, 7, 3}, {2, 7, 3}, {1, 7, 3}, {0, 7, 3}}));
    const float Tiny = std::numeric_limits<float>::denorm_min();
    for (const Vec3& Dir : {Vec3{0, 0, 0}, {NAN, NAN, NAN}, {Tiny, 0, 0}, {INFINITY, INFINITY, 0}, {NAN, 1, 0}}) {
        EXPECT_EQ(Trace(CentreOf({15, 7, 3}), Dir), 1u);
        EXPECT_EQ(CTestMesh::Asked, MeshesIn({{15, 7, 3}})) << "no direction to go on in";
    }
}

TEST_F(SpatialRayTest, RayThatStartsOutsideFindsNothing) {
    for (const Vec3& Start : {Vec3{-1, 2, 2}, {160, 2, 2}, {NAN, 0, 0}}) { // the upper side is outside
        EXPECT_EQ(Trace(Start, {1, 0, 0}), 0u) << Start.x;
        EXPECT_EQ(CTestMesh::Asked, Visits{});
    }
    EXPECT_EQ(Trace({0, 2, 2}, {1, 0, 0}), 1u) << "the lower side is inside";
}

TEST_F(SpatialRayTest, LightIsABallThatCountsInFrontOnlyAndOtherKindsAreNeverHit) {
    Light.Pos = Light.BBox.Min = Light.BBox.Max = Other.BBox.Min = Other.BBox.Max = CentreOf({9, 7, 3});
    AddClient(&Grid, &Light);
    AddClient(&Grid, &Other);
    for (const float Radius : {5.0f, 2.0f}) {
        Trace(Light.Pos - Vec3{20, 0, 0}, {1, 0, 0});
        ASSERT_EQ(HitClients(), Visits{&Light});
        EXPECT_NEAR(Hits.Hits.root->key, 20 - Radius, 1e-3);
        Hits.Radius = 2;
    }
    Trace(Light.Pos, {1, 0, 0});
    EXPECT_EQ(HitClients(), Visits{}) << "a distance of 0 is no hit";
}

} // namespace
