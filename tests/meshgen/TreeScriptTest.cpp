// The script language: how often lines run, what they roll, what ends a script, and that damage ends in order.
#include "meshgen/TreeMeshGen.h"
#include "platform/Platform.h"
#include "support/GlFixture.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr const char* HEAD = "shade part=0 ps=M vs=M part=1 ps=F vs=F\ntrunk basepush=0;0\n";

// The random numbers of the system, told again: 15 bits of a linear congruential generator.
struct SReplay {
    UINT32 State = 1;
    float Roll(float Center, float Spread) {
        State = State * 214013u + 2531011u;
        const float Unit = static_cast<float>(static_cast<int>(State >> 16 & 0x7FFF) / 32767.0);
        return Center + Spread * (2 * Unit - 1);
    }
};

class TreeScript : public GlFixture {
protected:
    void SetUp() override {
        GlFixture::SetUp();
        setenv("ASAN_OPTIONS", "detect_leaks=0", 1); // a process that is expected to end takes nothing down
    }

    // The lines that growing commands log, joined; the blanks before each count the open loops.
    std::string Grow(const std::string& Script) {
        WriteText("Data/t.mgn", Script);
        PlatSeedRand(1);
        testing::internal::CaptureStdout();
        EXPECT_EQ(Tree.Generate("Data/t.mgn"), 1u);
        return testing::internal::GetCapturedStdout();
    }
    static int Count(const std::string& Log, const std::string& Word) {
        int Found = 0;
        for (std::size_t At = Log.find(Word); At != std::string::npos; At = Log.find(Word, At + 1)) {
            ++Found;
        }
        return Found;
    }

    STreeMeshGen Tree;
};

TEST_F(TreeScript, LoopsRunTheirLinesAndPopWhatTheyPushed) {
    const std::string Log = Grow(std::string(HEAD) + "# a comment\n"
                                                     "repeat count=2.1;0\n"            // 3 passes
                                                     "branch sub=1;0 repeat=2.5;0\r\n" // 2: ties to even
                                                     "leaf repeat=3.5;0\n"             // 4
                                                     "branch_end\n"
                                                     "repeat_end \n"
                                                     "branch repeat=3;0\n"
                                                     "branch_repend\n"
                                                     "leaf\n"
                                                     "branch sub=1;0\nbranch_end\n"
                                                     "branch_end\n"
                                                     "repeat count=-5;0\nleaf repeat=0;0\nrepeat_end\n"
                                                     "branch repeat=0;0\n"
                                                     "leaf depthq=1;0 heightq=1;0");
    EXPECT_EQ(Count(Log, "subbranch\n"), 3 + 1);
    EXPECT_EQ(Count(Log, " branch\n"), 3 + 3);
    EXPECT_EQ(Count(Log, "leaf\n"), 3 * 2 * 4 + 1 + 1);
    EXPECT_EQ(Log.substr(0, Log.find("branch\n", 10) + 7), " TRUNK\n   subbranch\n");
    EXPECT_EQ(Log.substr(Log.size() - 6), " leaf\n") << "all loops are closed";
    // Tubes of four sides and two rings, and a cap for each limb that ends alone.
    const UINT32 Tubes = 1 + 6 + 3 + 1;
    EXPECT_EQ(Tree.Mesh.Parts[0].TriangleCount[0], Tubes * 16 + (3 + 1 + 1) * 4);
    EXPECT_EQ(Tree.Mesh.Parts[1].TriangleCount[0], 26u * 4);
    // The last leaf hangs on the trunk, whose end is at 10, and stands on its anchor.
    const SMeshPart& Foliage = Tree.Mesh.Parts[1];
    const Vec3& Corner = Tree.Mesh.Vertices[Foliage.VertexStart + Foliage.VertexCount - 1].Position;
    EXPECT_TRUE(std::fabs(Corner.z - 10) < 1e-4f || std::fabs(Corner.z - 14) < 1e-4f) << Corner.z;
}

TEST_F(TreeScript, EveryFieldRollsOnceInTheOrderOfTheLine) {
    Grow("shade part=1 ps=F vs=F\n"
         "trunk height=60;5 basepush=3;4 subw=4.5;1 rad=4;0.5\n"
         "leaf repeat=2;0 extx=3;1 exty=6;2 heightq=0;0\n");
    SReplay Replay;
    Replay.Roll(60, 5);
    const int Sides = static_cast<int>(std::ceil(Replay.Roll(4.5f, 1)));
    Replay.Roll(4, 0.5f);
    for (int i = 0; i < 256; ++i) {
        Replay.Roll(0, 0); // the noise of the foot
    }
    EXPECT_EQ(Tree.Mesh.Parts[0].TriangleCount[0], static_cast<UINT32>(Sides * 2 * 2));
    for (UINT32 Leaf = 0; Leaf < 2; ++Leaf) {
        Replay.Roll(2, 0);
        const float HalfWidth = Replay.Roll(3, 1);
        const float HalfLength = Replay.Roll(6, 2);
        Replay.Roll(0, 0);
        const SMeshVertex& Vertex = Tree.Mesh.Vertices[Tree.Mesh.Parts[1].VertexStart + 8 * Leaf];
        EXPECT_NEAR(std::fabs(Vertex.Position.x), HalfWidth, 1e-4f);
        EXPECT_NEAR(std::fabs(Vertex.Position.z), HalfLength, 1e-4f);
    }
    EXPECT_EQ(PlatRand(), static_cast<int>((Replay.Roll(0, 0), Replay.State >> 16 & 0x7FFF)));
}

TEST_F(TreeScript, LimbsTurnAndMeasureAsTheirFieldsSay) {
    // A limb at a right angle, then one of half its length, then a turn half way between 170 and -170 degrees.
    Grow(std::string(HEAD) + "branch sub=1;0 heightq=1;0 rotabsx=90;0 rotabsy=90;0 rotqx=1;0 rotqy=1;0 height=8;0 "
                             "htlerp=0;0 subh=1;0 radscale0=1;0 radscale=1;0\n"
                             "branch htlerp=1;0 htscale=0.5;0 subh=1;0 radscale=1;0\nbranch_end\nbranch_end\n"
                             "leaf rotrely=170;0 rotabsy=-170;0 rotqy=0.5;0 heightq=0;0 exty=5;0 depthq=1;0\n");
    BBox Box;
    Tree.Mesh.Parts.Resize(2);
    ASSERT_EQ(Tree.Mesh.GetBounds(Box), 1u);
    EXPECT_NEAR(Box.Max.y, 8 + 4, 1e-3f) << "(90, 90, 0) points along +Y";
    EXPECT_NEAR(Box.Max.z, 10 + 4, 1e-3f) << "the trunk's length and the limb's radius";
    EXPECT_NEAR(Box.Min.z, -10, 1e-3f) << "180 degrees, the short way round: straight down";
}

// A line of fields, and where the box of what it grew must end on one side.
struct SFieldCase {
    const char* Fields;
    const char* Side;
    double Expected;
};

float SideOf(const BBox& Box, const std::string& Side) {
    return (Side[0] == '+' ? Box.Max : Box.Min)[Side[1] - 'x'];
}

constexpr double DIAGONAL = 0.70710678;

// The trunk is 10 high with radii 5 and 4 where its line says nothing else.
const SFieldCase TrunkCases[] = {
    {"height=30;0", "+z", 30},
    {"rad=7;0", "+x", 7},
    {"rad=2;0 radscale=4;0", "+x", 8},
    {"subw=2;0", "+y", 0},
    {"rotx=45;0 radscale=0;0", "+x", 5 * DIAGONAL},
    {"roty=90;0 radscale=0;0", "-x", -10},
    {"rotx=90;0 roty=90;0 radscale=0;0", "+y", 10},
    {"rotz=45;0 radscale=0;0", "+x", 5 * DIAGONAL},
    {"rot2y=90;0 radscale=2;0", "+z", 20},
    {"rot2x=90;0 rot2y=90;0 radscale=2;0", "+x", 10},
    {"rot2z=45;0 radscale=2;0", "+x", 10 * DIAGONAL},
    // The foot moves out by push * (1 - distance / reach); the noise is a half at whole places.
    {"basepush=4;0", "+x", 5 + 4 * 0.5},
    {"basepush=0;4", "+x", 5 + 0.5 * 4 * 0.5},
    {"basepush=0;4 ns_scale=4;0", "+x", 5 + 0.573242 * 4 * 0.5},
    {"basepush=4;0 ns_extx=20;0", "+x", 5 + 4 * 0.75},
    {"basepush=4;0 ns_exty=20;0", "+y", 5 + 4 * 0.75},
    {"basepush=4;0 ns_extz=40;0", "+z", 10 + 4 * (1 - std::hypot(0.4, 0.25)) * 0.25 / std::hypot(0.4, 0.25)},
};
// A side limb grows from the trunk's foot or end; its radii are 4 * radscale0 and 4 * radscale.
const SFieldCase BranchCases[] = {
    {"height=20;0 htlerp=0;0", "+z", 30},
    {"htscale=3;0 htlerp=1;0", "+z", 40},
    {"height=20;0 htscale=3;0 htlerp=0.5;0", "+z", 35},
    {"repeat=2;0\nbranch_end", "+z", 30},
    {"sub=1;0 heightq=0.25;0", "+z", 12.5},
    {"sub=1;0 radscale0=3;0", "+x", 12},
    {"radscale=3;0", "+x", 12},
    {"sub=1;0 radscale0=3;0 subw=2;0", "+y", 5},
    {"sub=1;0 heightq=1;0 rotabsy=90;0 rotqy=1;0 radscale=0;0", "-x", -10},
    {"sub=1;0 heightq=1;0 rotrely=90;0 radscale=0;0", "-x", -10},
    {"sub=1;0 heightq=1;0 rotrely=90;0 rotrelx=90;0 radscale=0;0", "+y", 10},
    {"sub=1;0 heightq=1;0 rotrely=90;0 rotabsx=90;0 rotqx=1;0 radscale=0;0", "+y", 10},
    {"sub=1;0 radscale0=3;0 rotrelz=45;0", "+x", 12 * DIAGONAL},
    {"sub=1;0 radscale0=3;0 rotabsz=90;0 rotqz=0.5;0", "+x", 12 * DIAGONAL},
};
// A card stands along the trunk, its face towards Y.
const SFieldCase LeafCases[] = {
    {"extx=7;0", "+x", 7},
    {"exty=5;0 heightq=1;0", "+z", 15},
    {"exty=5;0 heightq=0;0 depthq=1;0", "+z", 10},
    {"rotrelx=90;0 extx=7;0", "+y", 7},
    {"rotabsx=90;0 rotqx=1;0 extx=7;0", "+y", 7},
    {"rotrely=90;0 exty=7;0", "+x", 7},
    {"rotabsy=90;0 rotqy=0.5;0 extx=0;0 exty=7;0", "+x", 7 * DIAGONAL},
    {"rotrelz=90;0 extx=7;0", "+y", 7},
    {"rotabsz=90;0 rotqz=1;0 extx=7;0", "+y", 7},
};

TEST_F(TreeScript, EveryFieldSetsTheMeasureThatItIsNamedFor) {
    const auto Check = [&](const std::string& Before, const auto& Cases, UINT32 Part) {
        for (const SFieldCase& Case : Cases) {
            Grow(Before + Case.Fields + "\n");
            Tree.Mesh.Parts[1 - Part].Points.Clear();
            BBox Box;
            EXPECT_EQ(Tree.Mesh.GetBounds(Box), 1u);
            EXPECT_NEAR(SideOf(Box, Case.Side), Case.Expected, 1e-3) << Before << Case.Fields << " " << Case.Side;
        }
    };
    Check("shade\ntrunk basepush=0;0 ", TrunkCases, 0);
    Check("shade\ntrunk basepush=0;0\nbranch ", BranchCases, 0);
    Check("shade\ntrunk basepush=0;0\nleaf ", LeafCases, 1);
    Grow("shade\ntrunk subw=4.1;0 subh=2.1;0\nbranch sub=1;0 subw=5.1;0 subh=3.1;0\n");
    EXPECT_EQ(Tree.Mesh.Parts[0].TriangleCount[0], 2u * (5 * 3 + 6 * 4));
}

TEST_F(TreeScript, SameScriptSameBytesAndASecondRunStartsEmpty) {
    const std::string Script =
        std::string("shade part=0 part=1\ntrunk rad=4;2 rot2y=20;9\n") +
        "repeat count=5;2\nbranch sub=1;0 rotrely=60;30 height=9;4\nleaf repeat=3;2 rotrelx=0;180\n"
        "branch_end\nrepeat_end\n";
    Grow(Script);
    const GArray<SMeshVertex> Vertices = Tree.Mesh.Vertices;
    Grow(Script);
    ASSERT_EQ(Tree.Mesh.Vertices.count, Vertices.count);
    EXPECT_EQ(std::memcmp(Tree.Mesh.Vertices.Data, Vertices.Data, Vertices.count * sizeof(SMeshVertex)), 0);
    EXPECT_EQ(Grow("nonsense=1\nshade part=0 ps=A\n"), "");
    EXPECT_EQ(Tree.Mesh.Vertices.count, 0u);
    EXPECT_EQ(Tree.Mesh.GetPartCount(), 2u);
    EXPECT_EQ(Tree.Generate("Data/none.mgn"), 0u);
    EXPECT_EQ(Tree.Mesh.GetPartCount(), 2u);
}

TEST_F(TreeScript, WhatIsOutOfPlaceStopsWithTheFile) {
    const std::string Head = HEAD;
    const std::pair<std::string, const char*> Cases[] = {
        {Head + "shade part=0", "Tree generator: shading is defined more than once, file: Data/t.mgn"},
        {"trunk", "Tree generator: shading is not defined at beginning, file: Data/t.mgn"},
        {Head + "trunk", "Tree generator: trunk is defined more than once, file: Data/t.mgn"},
        {"shade part=0\ntrunk size=1;0", "Tree generator: unknown 'trunk' parameter 'size', file Data/t.mgn"},
        {"branch", "Tree generator: branch defined before trunk, file: Data/t.mgn"},
        {"leaf", "Tree generator: branch defined before trunk, file: Data/t.mgn"},
        {"repeat", "Tree generator: 'repeat' used before 'trunk', file: Data/t.mgn"},
        {Head + "branch x=1;0", "Tree generator: unknown 'branch' parameter 'x', file Data/t.mgn"},
        {Head + "leaf sub=1;0", "Tree generator: unknown 'leaf' parameter 'sub', file Data/t.mgn"},
        {Head + "repeat times=1;0", "Rock generator: unknown 'repeat' parameter, file Data/t.mgn"},
        {Head + "branch_end", "more repeat/branch ends than repeats/branches, file Data/t.mgn"},
        {Head + "repeat_end", "more repeat/branch ends than repeats/branches, file Data/t.mgn"},
        {Head + "branch\nbranch_repend\nbranch_repend", "more repeat/branch ends than repeats/branches"},
        {Head + "repeat\nbranch_end", "repeat.Top\\(\\).BranchRep == TRUE"},
        {Head + "branch\nrepeat_end", "repeat.Top\\(\\).BranchRep == FALSE"},
        {Head + "branch repeat=-1;0", "'repeat' is negative, file: Data/t.mgn"},
        {"shade ps=M part=0", "'part' must come before 'ps', file: Data/t.mgn"},
        {"shade part=2", "there is no part 2, file: Data/t.mgn"},
        {Head + "branch sub=1;0 subw=1;0", "xsub > 1 && ysub > 0"},
        {Head + "branch subh=0;0", "xsub > 1 && ysub > 0"},
        {Head + "leaf repeat=1000000000;0", "the tree has more than 100000 vertices, file: Data/t.mgn"},
        {Head + "repeat count=1000000000;0\nrepeat_end", "more than 1000000 commands were run, file: Data/t.mgn"},
    };
    for (const auto& [Script, Message] : Cases) {
        EXPECT_FATAL(Grow(Script), Message) << Script;
    }
}

// What a script ends with, in a process of its own: 0, or the code of a fatal error.
int EndOf(const std::string& Script) {
    std::ofstream("damaged.mgn") << Script;
    const pid_t Child = fork();
    if (Child == 0) {
        alarm(20); // a hang ends by this signal
        // Leaves at once, whatever else would run at an orderly end.
        GPlatform.ShowError = [](const char*, const char*) { _exit(FATAL_EXIT_STATUS); };
        std::freopen("/dev/null", "w", stdout);
        STreeMeshGen Tree;
        _exit(Tree.Generate("damaged.mgn") == 1 ? 0 : 1);
    }
    int Status = 0;
    waitpid(Child, &Status, 0);
    return WIFEXITED(Status) ? WEXITSTATUS(Status) : -WTERMSIG(Status);
}

TEST(DamagedTreeScript, EndsInOrder) {
    std::filesystem::current_path(testing::TempDir());
    const std::string Whole = std::string(HEAD) +
                              "repeat count=2;0\nbranch sub=1;0 repeat=2;0 rotqx=1;0\nleaf repeat=3;0 extx=1;0\n"
                              "branch_repend\nbranch_end\nrepeat_end\n";
    ASSERT_EQ(EndOf(Whole), 0);
    const auto IsOrdered = [](int End) { return End == 0 || End == FATAL_EXIT_STATUS; };
    for (std::size_t Length = 0; Length < Whole.size(); ++Length) {
        EXPECT_PRED1(IsOrdered, EndOf(Whole.substr(0, Length))) << Whole.substr(0, Length);
    }
}

} // namespace
