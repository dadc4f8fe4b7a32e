#include "scene/SpatialFixture.h"

#include <cstdio>
#include <filesystem>
#include <set>

#include "platform/Platform.h"

namespace {

constexpr float LARGEST = std::numeric_limits<float>::max();

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
class SpatialGridTest : public SpatialFixture {
protected:
    using Clients = std::multiset<const SSpatialClient*>;

    static Clients ValuesOf(const SClientList& List) {
        Clients Values;
        for (const auto* Item = List.first; Item; Item = Item->next) {
            Values.insert(Item->obj);
        }
        return Values;
    }

    // Come are the clients that no node above has stopped.
    void CheckNode(const SSpatialNode& Node, const Clients& Come) {
        Clients Here, Deeper;
        for (const SSpatialClient* Client : Come) {
            if (Touch(Client->BBox, Node.Box)) {
                Here.insert(Client);
                if (!Stops(Node, &Node == Grid.Root, Client->BBox)) {
                    Deeper.insert(Client);
                }
            }
        }
        ASSERT_EQ(ValuesOf(Node.Clients), Here);
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
};

TEST_F(SpatialGridTest, EveryClientIsInTheNodesAndCellsOfItsBoxThroughRandomMoves) {
    Meshes.resize(80);
    Clients In;
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
            ASSERT_NO_FATAL_FAILURE(CheckIndex(In));
        }
    }
    for (CTestMesh& Mesh : Meshes) {
        RemoveClient(&Grid, &Mesh);
    }
    CheckIndex({});
}

TEST_F(SpatialGridTest, BoxesAtTheLimitsOfTheRulesInAGridThatInitHasEmptied) {
    const BBox Cases[] = {
        {{0, 0, 0}, {128, 128, 64}},           // half of an octant fills it
        {{0, 0, 0}, {128, 128, 63}},           // less does not
        {{-1, 10, 10}, {64, 12, 12}},          // a 65th of it is in the octant on the left: a sliver
        {{-1, 10, 10}, {63, 12, 12}},          // a 64th goes on there
        {{10, 10, 10}, {10, 10, 10}},          // 0 / 0 is not above any ratio: down to a leaf
        {{-500, -500, -500}, {500, 500, 500}}, // the root alone
        {{200, 0, 0}, {210, 10, 10}},          // nowhere
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
    for (CTestMesh& Mesh : Meshes) {
        RemoveClient(&Grid, &Mesh);
    }
    CheckIndex({});
}

TEST_F(SpatialGridTest, GridsWithoutVolumeOrCellsHoldNothing) {
    const struct {
        BBox Box;
        Vec3 Counts;
        UINT32 Holds;
    } Cases[] = {{{{-1, -1, 0}, {1, 1, 0}}, {2, 2, 2}, 0},
                 {{{-1, -1, -1}, {1, 1, 1}}, {2, 0, 2}, 0},
                 {{{-1, -1, -1}, {1, 1, 1}}, {NAN, 2, 2}, 0},
                 {{{NAN, -1, -1}, {NAN, 1, 1}}, {2, 2, 2}, 0},
                 {{{-LARGEST, -LARGEST, -LARGEST}, {LARGEST, LARGEST, LARGEST}}, {20, 20, 20}, 1}};
    for (const auto& Case : Cases) {
        Grid.Init(Case.Box, Case.Counts);
        CTestMesh& Mesh = AddMesh({{0, 0, 0}, {0, 0, 0}});
        EXPECT_EQ(Mesh.ocp.count, Case.Holds);
        SRayHits Hits;
        EXPECT_EQ(TraceGrid(&Grid, {{0, 0, 0}, {1, 0, 0}}, &Hits), Case.Holds);
        RemoveClient(&Grid, &Mesh);
        EXPECT_EQ(Grid.Root->Clients.count, 0u);
    }
}

// The box must not wait for anybody, and error.log must not land among the test's files.
TEST_F(SpatialGridTest, WrongCallsAreFatal) {
    const auto EndQuietly = [] {
        GPlatform.ShowError = [](const char*, const char* Text) { std::fputs(Text, stderr); };
        std::filesystem::current_path(::testing::TempDir());
    };
    const ::testing::ExitedWithCode Fatal(222); // what a shell sees of FATAL_EXIT_CODE
    CTestMesh& Mesh = AddMesh({{1, 1, 1}, {9, 9, 9}});
    EXPECT_EXIT((EndQuietly(), AddClient(&Grid, &Mesh)), Fatal, "ocp.Node->Clients.last->obj != c");
    Grid.Cell(33, 32, 32).Clear();
    EXPECT_EXIT((EndQuietly(), RemoveClient(&Grid, &Mesh)), Fatal,
                "RemoveClient: Spatial client not found in grid node list!\n");
}

} // namespace
