#include "scene/SpatialFixture.h"

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <map>

#include "platform/Platform.h"

namespace {

constexpr float HUGE_VALUE = std::numeric_limits<float>::max();
constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();
constexpr int FATAL_STATUS = 222; // what a shell sees of FATAL_EXIT_CODE

double VolumeOf(const BBox& Box) {
    return (double{Box.Max.x} - Box.Min.x) * (double{Box.Max.y} - Box.Min.y) * (double{Box.Max.z} - Box.Min.z);
}

bool Touch(const BBox& A, const BBox& B) {
    return A.Min.x <= B.Max.x && B.Min.x <= A.Max.x && A.Min.y <= B.Max.y && B.Min.y <= A.Max.y && A.Min.z <= B.Max.z &&
           B.Min.z <= A.Max.z;
}

// Whether a client of this box goes no deeper than a node that it reached. The root measures the box as it is, the
// nodes below the piece within them.
bool Stops(const SSpatialNode& Node, bool IsRoot, const BBox& Box) {
    BBox Piece = Box;
    for (int Axis = 0; Axis < 3 && !IsRoot; ++Axis) {
        Piece.Min[Axis] = std::max(Box.Min[Axis], Node.Box.Min[Axis]);
        Piece.Max[Axis] = std::min(Box.Max[Axis], Node.Box.Max[Axis]);
    }
    const bool Fills = 2 * VolumeOf(Piece) >= VolumeOf(Node.Box);
    const bool Sliver = VolumeOf(Box) > 64 * VolumeOf(Piece);
    const bool Smallest = VolumeOf(Node.Box) <= std::pow(double{Node.MinSize}, 3);
    return Fills || Sliver || Smallest;
}

template <class T>
std::multiset<const SSpatialClient*> ValuesOf(const GList<T>& List) {
    std::multiset<const SSpatialClient*> Values;
    for (const auto* Item = List.first; Item; Item = Item->next) {
        Values.insert(Item->obj);
    }
    return Values;
}

// Compares the whole index with what the boxes of the clients in it ask for.
class SpatialGridTest : public SpatialFixture {
protected:
    using Clients = std::multiset<const SSpatialClient*>;

    // Come are the clients that no node above has stopped.
    void CheckNode(const SSpatialNode& Node, const Clients& Come) {
        Clients Here;
        Clients Deeper;
        for (const SSpatialClient* Client : Come) {
            if (Touch(Client->BBox, Node.Box)) {
                Here.insert(Client);
                NodesOf[Client].insert(&Node);
                if (!Stops(Node, &Node == Grid.Root, Client->BBox)) {
                    Deeper.insert(Client);
                }
            }
        }
        ASSERT_EQ(ValuesOf(Node.Clients), Here);
        ASSERT_EQ(Node.Clients.count, Here.size());
        ASSERT_TRUE(Deeper.empty() || Node.HasChildren());
        for (int Child = 0; Child < 8 && Node.HasChildren(); ++Child) {
            CheckNode(*Node.Children[Child], Deeper);
        }
    }

    // The cell of a coordinate by whole numbers, not yet clamped.
    static int CellOf(float Coordinate) {
        return static_cast<int>(std::floor((double{Coordinate} + HALF) / CELL_SIZE));
    }
    static int Clamped(int Cell) { return std::clamp(Cell, 0, CELLS - 1); }
    static bool IsInside(const Vec3& Corner) {
        return Clamped(CellOf(Corner.x)) == CellOf(Corner.x) && Clamped(CellOf(Corner.y)) == CellOf(Corner.y) &&
               Clamped(CellOf(Corner.z)) == CellOf(Corner.z);
    }

    void CheckCells(const Clients& In) {
        std::map<int, Clients> Expected;
        for (const SSpatialClient* Client : In) {
            const BBox& Box = Client->BBox;
            if (!IsInside(Box.Min) && !IsInside(Box.Max)) {
                continue;
            }
            for (int Z = Clamped(CellOf(Box.Min.z)); Z <= Clamped(CellOf(Box.Max.z)); ++Z) {
                for (int Y = Clamped(CellOf(Box.Min.y)); Y <= Clamped(CellOf(Box.Max.y)); ++Y) {
                    for (int X = Clamped(CellOf(Box.Min.x)); X <= Clamped(CellOf(Box.Max.x)); ++X) {
                        Expected[(Z * CELLS + Y) * CELLS + X].insert(Client);
                    }
                }
            }
        }
        for (int At = 0; At < CELLS * CELLS * CELLS; ++At) {
            const SClientList& List = Grid.Cells[static_cast<UINT32>(At)];
            const auto Wanted = Expected.find(At);
            if (Wanted == Expected.end()) {
                ASSERT_EQ(List.count, 0u) << "cell " << At;
            } else {
                ASSERT_EQ(ValuesOf(List), Wanted->second) << "cell " << At;
            }
        }
    }

    void CheckIndex(const Clients& In) {
        NodesOf.clear();
        ASSERT_NO_FATAL_FAILURE(CheckNode(*Grid.Root, In));
        ASSERT_NO_FATAL_FAILURE(CheckCells(In));
        for (const SSpatialClient* Client : In) {
            std::set<const SSpatialNode*> Listed;
            for (const SClientOccupation& Place : Client->ocp) {
                Listed.insert(Place.Node);
                ASSERT_EQ(Place.Item->obj, Client);
            }
            ASSERT_EQ(Listed, NodesOf[Client]);
            ASSERT_EQ(Listed.size(), Client->ocp.count);
        }
    }

    std::map<const SSpatialClient*, std::set<const SSpatialNode*>> NodesOf;
};

TEST_F(SpatialGridTest, EveryClientIsInTheNodesAndCellsOfItsBoxThroughRandomMoves) {
    Meshes.resize(80);
    ClientSet In;
    for (int Change = 1; Change <= 400; ++Change) {
        CTestMesh& Mesh = Meshes[static_cast<size_t>(Random(0, 79))];
        Mesh.BBox = RandomBox(); // before RemoveClient: the stored range says where the client is
        RemoveClient(&Grid, &Mesh);
        In.erase(&Mesh);
        if (Random(0, 3) > 0) {
            AddClient(&Grid, &Mesh);
            In.insert(&Mesh);
        }
        if (Change % 50 == 0) {
            ASSERT_NO_FATAL_FAILURE(CheckIndex(Clients(In.begin(), In.end())));
        }
    }
    for (CTestMesh& Mesh : Meshes) {
        RemoveClient(&Grid, &Mesh);
    }
    CheckIndex({});
}

TEST_F(SpatialGridTest, BoxOutsideIsNowhereAndLeavesWithoutATrace) {
    CTestMesh& Mesh = AddMesh({{200, 0, 0}, {210, 10, 10}});
    EXPECT_EQ(Mesh.ocp.count, 0u);
    EXPECT_EQ(Mesh.InCells, 0u);
    RemoveClient(&Grid, &Mesh);
    CheckIndex({});
}

TEST_F(SpatialGridTest, BoxWithOneCornerInsideIsEnteredInTheClampedRange) {
    const CTestMesh& Mesh = AddMesh({{120, 126, -300}, {500, 130, -126}});
    EXPECT_EQ(Mesh.InCells, 0u) << "both corners are outside on some axis";
    const CTestMesh& Half = AddMesh({{120, 126, -128}, {500, 130, -126}});
    EXPECT_EQ(Half.InCells, 1u);
    EXPECT_EQ(Half.CellLow, (Vec3{62, 63, 0}));
    EXPECT_EQ(Half.CellHigh, (Vec3{63, 63, 0}));
    CheckIndex({&Mesh, &Half});
}

TEST_F(SpatialGridTest, BoxAroundTheWholeGridIsInTheRootOnly) {
    const CTestMesh& Mesh = AddMesh({{-500, -500, -500}, {500, 500, 500}});
    ASSERT_EQ(Mesh.ocp.count, 1u);
    EXPECT_EQ(Mesh.ocp[0].Node, Grid.Root);
    EXPECT_EQ(Mesh.InCells, 0u);
}

TEST_F(SpatialGridTest, NodesAreListedChildrenBeforeParents) {
    const CTestMesh& Mesh = AddMesh({{-2, -2, -2}, {2, 2, 2}});
    ASSERT_EQ(Mesh.ocp.count, 8u * 3 + 1) << "a leaf, its parent and its grandparent in each octant, and the root";
    EXPECT_EQ(Mesh.ocp[24].Node, Grid.Root);
    for (UINT32 At = 0; At < 24; At += 3) {
        EXPECT_FALSE(Mesh.ocp[At].Node->HasChildren());
        EXPECT_EQ(Mesh.ocp[At].Node->Box.Max.x - Mesh.ocp[At].Node->Box.Min.x, 32);
        EXPECT_EQ(Mesh.ocp[At + 2].Node->Box.Max.x - Mesh.ocp[At + 2].Node->Box.Min.x, 128);
    }
}

TEST_F(SpatialGridTest, BoxOfHalfANodeFillsIt) {
    AddMesh({{0, 0, 0}, {128, 128, 63}});
    EXPECT_TRUE(Grid.Root->Children[7]->HasChildren());
    Grid.Init(Grid.Box, Grid.CellCounts);
    AddMesh({{0, 0, 0}, {128, 128, 64}});
    EXPECT_FALSE(Grid.Root->Children[7]->HasChildren());
}

TEST_F(SpatialGridTest, PieceBelowA64thOfItsClientStops) {
    AddMesh({{-1, 10, 10}, {64, 12, 12}});
    EXPECT_FALSE(Grid.Root->Children[6]->HasChildren());
    AddMesh({{-1, 10, 10}, {63, 12, 12}});
    EXPECT_TRUE(Grid.Root->Children[6]->HasChildren()) << "exactly a 64th goes on";
}

// A box without volume divides 0 by 0, which is not above any ratio: it goes down to a leaf.
TEST_F(SpatialGridTest, BoxWithoutVolumeReachesALeaf) {
    const CTestMesh& Point = AddMesh({{10, 10, 10}, {10, 10, 10}});
    EXPECT_EQ(Point.ocp.count, 4u);
    CheckIndex({&Point});
}

TEST_F(SpatialGridTest, StrangeBoxesComeOutAsTheyWentIn) {
    const Vec3 Corners[] = {{NOT_A_NUMBER, 0, 0},
                            {NOT_A_NUMBER, NOT_A_NUMBER, NOT_A_NUMBER},
                            {HUGE_VALUE, HUGE_VALUE, HUGE_VALUE},
                            {-HUGE_VALUE, -HUGE_VALUE, -HUGE_VALUE},
                            {INFINITY, 5, -INFINITY},
                            {-90, -90, -90}};
    for (const Vec3& Low : Corners) {
        for (const Vec3& High : Corners) {
            const CTestMesh& Mesh = AddMesh({Low, High});
            EXPECT_EQ(Mesh.InCells, Low == Corners[5] || High == Corners[5] ? 1u : 0u);
        }
    }
    for (CTestMesh& Mesh : Meshes) {
        RemoveClient(&Grid, &Mesh);
    }
    CheckIndex({});
}

TEST_F(SpatialGridTest, InitForgetsTreeAndCells) {
    AddMesh({{0, 0, 0}, {60, 60, 60}});
    Grid.Init(Grid.Box, Grid.CellCounts);
    EXPECT_FALSE(Grid.Root->HasChildren());
    CheckIndex({});
}

TEST_F(SpatialGridTest, CellNumbersRunAlongXThenYThenZ) {
    Grid.Init({{0, 0, 0}, {5, 3, 2}}, {5, 3, 2});
    ASSERT_EQ(Grid.Cells.count, 30u);
    AddMesh({{4.5f, 1.5f, 1.5f}, {4.5f, 1.5f, 1.5f}});
    EXPECT_EQ(Grid.Cells[1 * 15 + 1 * 5 + 4].count, 1u);
}

class EmptyGridTest : public SpatialFixture, public ::testing::WithParamInterface<std::pair<BBox, Vec3>> {};

TEST_P(EmptyGridTest, HoldsNothing) {
    Grid.Init(GetParam().first, GetParam().second);
    CTestMesh& Mesh = AddMesh({{0, 0, 0}, {0, 0, 0}});
    EXPECT_EQ(Mesh.ocp.count, 0u);
    GArray<SSpatialClient*> Found;
    ++GSpatialStamp;
    QueryClients(Grid.Root, &Found, nullptr, 0);
    EXPECT_EQ(Found.count, 0u);
    SRayHits Hits;
    EXPECT_EQ(TraceGrid(&Grid, {{0, 0, 0}, {1, 0, 0}}, &Hits), 0u);
    RemoveClient(&Grid, &Mesh);
}

INSTANTIATE_TEST_SUITE_P(Sizes, EmptyGridTest,
                         ::testing::Values(std::pair<BBox, Vec3>{{{0, 0, 0}, {0, 0, 0}}, {200, 200, 200}},
                                           std::pair<BBox, Vec3>{{{-1, -1, 0}, {1, 1, 0}}, {2, 2, 2}},
                                           std::pair<BBox, Vec3>{{{-1, -1, -1}, {1, 1, 1}}, {2, 0, 2}},
                                           std::pair<BBox, Vec3>{{{-1, -1, -1}, {1, 1, 1}}, {NOT_A_NUMBER, 2, 2}},
                                           std::pair<BBox, Vec3>{{{NOT_A_NUMBER, -1, -1}, {NOT_A_NUMBER, 1, 1}},
                                                                 {2, 2, 2}}));

TEST_F(SpatialGridTest, GridOfTheLargestSizeTakesClientsAndRays) {
    Grid.Init({{-HUGE_VALUE, -HUGE_VALUE, -HUGE_VALUE}, {HUGE_VALUE, HUGE_VALUE, HUGE_VALUE}}, {20, 20, 20});
    CTestMesh& Mesh = AddMesh({{0, 0, 0}, {1, 1, 1}});
    EXPECT_EQ(Mesh.ocp.count, 1u);
    SRayHits Hits;
    EXPECT_EQ(TraceGrid(&Grid, {{0, 0, 0}, {1, 0, 0}}, &Hits), 1u);
    RemoveClient(&Grid, &Mesh);
    EXPECT_EQ(Grid.Root->Clients.count, 0u);
}

// Death tests: the box must not wait for anybody, and error.log must not land among the test's files.
void EndQuietly() {
    GPlatform.ShowError = [](const char*, const char* Text) { std::fputs(Text, stderr); };
    std::filesystem::current_path(::testing::TempDir());
}

TEST_F(SpatialGridTest, MissingItemInACellIsFatal) {
    CTestMesh& Mesh = AddMesh({{1, 1, 1}, {9, 9, 9}});
    Grid.Cell(33, 32, 32).Clear();
    EXPECT_EXIT((EndQuietly(), RemoveClient(&Grid, &Mesh)), ::testing::ExitedWithCode(FATAL_STATUS),
                "RemoveClient: Spatial client not found in grid node list!\n");
}

TEST_F(SpatialGridTest, AddingTwiceIsAnAssertion) {
    CTestMesh& Mesh = AddMesh({{1, 1, 1}, {9, 9, 9}});
    EXPECT_EXIT((EndQuietly(), AddClient(&Grid, &Mesh)), ::testing::ExitedWithCode(FATAL_STATUS),
                "!ocp.Node->Clients.last \\|\\| ocp.Node->Clients.last->obj != c");
}

TEST_F(SpatialGridTest, SettersOfARenderableLeaveNothingToBlend) {
    CTestMesh Mesh;
    EXPECT_EQ(Mesh.PrevScale, (Vec3{1, 1, 1}));
    IRenderable& Slots = Mesh;
    Slots.SetPosition({1, 2, 3});
    Slots.SetScale({4, 5, 6});
    Slots.SetRotation({0.6f, 0, 0.8f, 0});
    EXPECT_EQ(Mesh.PrevPos, (Vec3{1, 2, 3}));
    EXPECT_EQ(Mesh.PrevScale, (Vec3{4, 5, 6}));
    EXPECT_EQ(Mesh.PrevRot.z, 0.8f);
    Vec3 Pos, Scale;
    Quat Rot;
    EXPECT_EQ(*Slots.GetPosition(&Pos), Mesh.Pos);
    EXPECT_EQ(*Slots.GetScale(&Scale), Mesh.Scale);
    EXPECT_EQ(Slots.GetRotation(&Rot)->x, 0.6f);
}

} // namespace
