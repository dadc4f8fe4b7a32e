// The transform tool: its drags by rays, against places worked out by hand or in the cube's own space, and its rows,
// keys and picture in a running level.
#include "editor/TransformMenu.h"
#include "foundation/DoubleMatrix.h"
#include "gui/Gui.h"
#include "scene/DrawHelpers.h"
#include "world/LevelFixture.h"
#include "world/MeshEntity.h"

#include <numeric>

namespace {

constexpr Vec3 MIDDLE = {10, 20, 30};
constexpr float TOLERANCE = 2e-4f;
const float ROOT_HALF = std::sqrt(0.5f);

// A cube of half size 4 round MIDDLE, with one rock that stands on its bottom, or two.
class Cube : public testing::Test {
protected:
    void Start(UINT32 Count = 1, UINT32 Mode = TRANSFORM_MOVE) {
        Menu.Clients.Resize(0);
        for (UINT32 i = 0; i < Count; ++i) {
            Rocks[i].BBox = {{6, 16, 26}, {14, 24, 34}};
            Rocks[i].SetPosition(MIDDLE + (i ? Vec3{3, 0, 2} : Vec3{0, 0, -4}));
            Rocks[i].SetScale({2, 2, 2});
            Menu.Clients.Add(&Rocks[i]);
        }
        Menu.Mode = Mode;
        Menu.Prepare();
    }

    Ray RayTo(const Vec3& p) const { return {Eye, M_Normalized(p - Eye)}; }
    void Press(const Vec3& p, UINT32 Keys = 0, bool Alt = false) { Menu.Drag({RayTo(p), true, 0, 0, Keys, Alt}); }
    void Hold(const Vec3& p, bool Alt = false) { Menu.Drag({.Pick = RayTo(p), .Held = true, .Alt = Alt}); }

    // A whole drag between two points round MIDDLE: over a detour, seen from a slant.
    void DragFace(INT32 Face, const Vec3& From, const Vec3& To, UINT32 Keys = 0, bool Alt = false) {
        Eye = MIDDLE + From * 20;
        Press(MIDDLE + From, Keys, Alt);
        EXPECT_EQ(Menu.DragFace, Face);
        Hold(MIDDLE + From * 0.7f + To * 0.3f, Alt);
        Hold(MIDDLE + To, Alt);
        Menu.Drag({.Pick = RayTo(MIDDLE), .Released = true});
        Hold(MIDDLE);
        Menu.MoveClients();
    }

    void ExpectCube(const Vec3& Centre, const Vec3& HalfSize, float Tolerance = TOLERANCE) const {
        ExpectNear(Menu.Centre, Centre, Tolerance);
        ExpectNear(Menu.HalfSize, HalfSize, Tolerance);
    }

    SMeshClient Rocks[2];
    float Values[3][6] = {};
    SMenu_Transform Menu{nullptr, Values[0], Values[1], Values[2]};
    Vec3 Eye;
};

TEST_F(Cube, MovesInTheFaceAndWithShiftAgainstTheMouseAlongItsNormal) {
    Start();
    ExpectCube(MIDDLE, {4, 4, 4});
    DragFace(4, {1, 1, 4}, {6, -3, 4});
    ExpectCube({15, 16, 30}, {4, 4, 4});
    Start(); // the side x = 14 is where the mouse is followed, through the upper face
    Eye = {54, 20, 76};
    Press({14, 20, 36}, DRAG_SHIFT);
    Hold({14, 25, 39});
    ExpectCube({10, 20, 27}, {4, 4, 4});
    Start(); // the same side, behind the eye
    Eye = {13, 20, 40};
    Menu.Drag({.Pick = {Eye, {-ROOT_HALF, 0, -ROOT_HALF}}, .Pressed = true, .Keys = DRAG_SHIFT});
    Menu.Drag({.Pick = {Eye, M_Normalized({-1, 0, -0.5f})}, .Held = true});
    ExpectCube({10, 20, 30.5f}, {4, 4, 4});
}

TEST_F(Cube, TurnsWithTheMouseOnItsSidesAndAgainstItOnTopAndBottom) {
    CRandom Random;
    for (int i = 0; i < 48; ++i) {
        const INT32 Face = i % CUBE_FACES;
        Vec3 n;
        n[Face / 2] = Face % 2 ? -1.0f : 1.0f;
        const Vec3 u = {n.y, n.z, n.x}, v = M_Cross(n, u);
        const auto At = [&](float Angle, float r) { return n * 4 + (u * std::cos(Angle) + v * std::sin(Angle)) * r; };
        const float a = Random.Between(-PI, PI), Turn = Random.Between(-3, 3), r = Random.Between(1, 3.5f);
        Start(1, TRANSFORM_ROTATE);
        Menu.Items[0].RelPos = At(a, r) * 0.25f;
        DragFace(Face, At(a, r), At(a + Turn, Random.Between(1, 9)));
        ExpectNear(Rocks[0].Pos, MIDDLE + At(Face < 4 ? a + Turn : a - Turn, r), TOLERANCE);
    }
}

// The first turn takes the cube's x to -y and its y to x, the second would take z to -y; the first one comes last.
TEST_F(Cube, ALaterTurnComesBeforeTheEarlierOne) {
    Start(1, TRANSFORM_ROTATE);
    Menu.Items[0].RelPos = {0, 0, 0.75f};
    Menu.Items[0].Rotation = {0, 0, ROOT_HALF, ROOT_HALF};
    DragFace(4, {2, 0, 4}, {0, 3, 4});
    ExpectNear({Rocks[0].Rot.x, Rocks[0].Rot.y, Rocks[0].Rot.z}, {0, 0, 1}, TOLERANCE);
    DragFace(2, {4, 2, 0}, {4, 0, 3});
    ExpectNear(Rocks[0].Pos, MIDDLE + Vec3{-3, 0, 0}, TOLERANCE);
    ExpectNear({Rocks[0].Rot.x, Rocks[0].Rot.y, Rocks[0].Rot.z}, {0, ROOT_HALF, ROOT_HALF}, TOLERANCE);
}

TEST_F(Cube, ScalesOneRockByAxesAndFromTheSideThatWasNotGrabbed) {
    const std::tuple<INT32, UINT32, Vec3, Vec3, Vec3, Vec3> Cases[] = {
        // Each axis of the face by 1.5 and 2 of what lies on the mouse's side; the far sides stay.
        {4, 0, {2, -1, 4}, {3, -2, 4}, {6, 8, 4}, {2, -4, 0}},
        {2, 0, {-1, 4, -2}, {-2, 4, -1}, {8, 4, 2}, {-4, 0, 2}},
        {4, DRAG_CONTROL, {2, -1, 4}, {3, -2, 4}, {6, 8, 4}, {}},
        // Twice as far from the face's middle: the side under the mouse goes twice as far out, or both.
        {4, DRAG_SHIFT, {3, 0, 4}, {0, 6, 4}, {4, 4, 6}, {0, 0, 2}},
        {3, DRAG_SHIFT, {0, -4, 2}, {1, -4, 0}, {4, 3, 4}, {0, 1, 0}},
        {4, DRAG_SHIFT | DRAG_CONTROL, {3, 0, 4}, {0, 6, 4}, {4, 4, 8}, {}},
    };
    for (const auto& [Face, Keys, From, To, HalfSize, Way] : Cases) {
        Start(1, TRANSFORM_SCALE);
        DragFace(Face, From, To, Keys);
        ExpectCube(MIDDLE + Way, HalfSize);
        ExpectNear(Rocks[0].Scale, HalfSize * 0.5f, TOLERANCE);
        ExpectNear(Rocks[0].Pos, MIDDLE + Way - Vec3{0, 0, HalfSize.z}, TOLERANCE);
    }
}

TEST_F(Cube, ScalesUniformlyWithAltOrTheFlagOrSeveralRocks) {
    for (int Why = 0; Why < 3; ++Why) {
        Start(Why == 2 ? 2 : 1, TRANSFORM_SCALE);
        Menu.UniformScale = Why == 1;
        DragFace(5, {0, 2, -4}, {5, 0, -4}, DRAG_SHIFT * (Why > 0), Why == 0);
        ExpectCube(MIDDLE, {10, 10, 10});
        ExpectNear(Rocks[0].Pos, {10, 20, 20}, TOLERANCE);
    }
    ExpectNear(Rocks[1].Pos, MIDDLE + Vec3{7.5f, 0, 5}, TOLERANCE);
    // The form is chosen in each step: Alt let go stretches what was grabbed.
    Start(1, TRANSFORM_SCALE);
    Eye = MIDDLE + Vec3{5, 5, 60};
    Press(MIDDLE + Vec3{2, 1, 4}, 0, true);
    Hold(MIDDLE + Vec3{4, 2, 4}, true);
    Hold(MIDDLE + Vec3{4, 1, 4});
    ExpectCube(MIDDLE + Vec3{4, 0, 4}, {8, 4, 8});
}

// M_Mat4FromQuat turns against the right hand rule, so that rule the other way round leads out of the cube's own space.
TEST_F(Cube, TurnedAndStretchedItIsPickedAndScaledAsInItsOwnSpace) {
    CRandom Random;
    for (int i = 0; i < 600; ++i) {
        Start(1, TRANSFORM_SCALE);
        const Vec3 Axis = Random.Unit();
        const float Angle = Random.Between(-PI, PI);
        const auto World = [Out = RightHandRotation(Axis, -Angle)](const Vec3& v) {
            const auto w = Out * std::array<double, 4>{v.x, v.y, v.z, 0};
            return MIDDLE + Vec3{float(w[0]), float(w[1]), float(w[2])};
        };
        Menu.Rotation = QuatFromAxisAngle(Axis, Angle);
        const Vec3 Half = Menu.HalfSize = Vec3{3, 3, 3} + Random.Point(2);
        const int Across = i % 3;
        Vec3 From, To = Random.Point(9), Seen = Random.Point(9);
        for (int k = 0; k < 3; ++k) {
            From[k] = Half[k] * (k == Across ? 1 : Random.Between(0.3f, 0.9f)) * (Random() < 0.5f ? -1.0f : 1.0f);
        }
        To[Across] = From[Across];
        Seen[Across] = From[Across] * Random.Between(1.5f, 9);
        Eye = World(Seen);
        Press(World(From), DRAG_CONTROL);
        EXPECT_EQ(Menu.DragFace, 2 * Across + (From[Across] < 0));
        Hold(World(To));
        ExpectCube(MIDDLE, {Half.x * To.x / From.x, Half.y * To.y / From.y, Half.z * To.z / From.z}, 0.01f);
    }
}

// As far away as the corners of the largest levels are, where a coordinate is exact to some ten thousandths.
TEST_F(Cube, ItsFacesArePickedFarFromTheOriginToo) {
    CRandom Random;
    for (int i = 0; i < 600; ++i) {
        Start();
        Menu.Centre = Vec3{3900, -4300, 600} + Random.Point(60);
        Menu.Rotation = Random.Rotation();
        Mat4 Turn;
        M_Mat4FromQuat(Turn, Menu.Rotation);
        const auto World = [&](const Vec3& v) {
            Vec3 Turned;
            M_Mat4MulDir(Turn, v, Turned);
            return Menu.Centre + Turned;
        };
        const int Across = i % 3;
        Vec3 On = Random.Point(3.9f), Seen = Random.Point(99);
        On[Across] = Random() < 0.5f ? -4.0f : 4.0f;
        Seen[Across] = On[Across] * Random.Between(1.5f, 30);
        Eye = World(Seen);
        Press(World(On));
        EXPECT_EQ(Menu.DragFace, 2 * Across + (On[Across] < 0));
        Menu.DragFace = -1;
        Seen[(Across + 1) % 3] = On[(Across + 1) % 3] = 4.05f; // past the edge
        Eye = World(Seen);
        Press(World(On));
        EXPECT_EQ(Menu.DragFace, -1);
    }
}

TEST_F(Cube, WithoutExtentOnAnAxisOrAtAllItStaysANumber) {
    Start(1, TRANSFORM_SCALE);
    Menu.HalfSize.x = 0;
    DragFace(4, {0, 2, 4}, {1, 3, 4});
    ExpectCube(MIDDLE + Vec3{0, 2, 0}, {0, 6, 4});
    ExpectNear(Rocks[0].Scale, {0, 3, 2}, TOLERANCE);
    for (const UINT32 Keys : {0u, DRAG_SHIFT, DRAG_CONTROL}) {
        Start(1, TRANSFORM_SCALE); // grabbed in the middle, from where no distance can be a multiple
        DragFace(5, {0, 0, -4}, {1, 3, -4}, Keys);
        ExpectCube(MIDDLE, {4, 4, 4});
    }
    Rocks[0].BBox = {MIDDLE, MIDDLE};
    Rocks[0].SetPosition(MIDDLE);
    Menu.Prepare();
    Menu.Centre.x += 5;
    Menu.MoveClients();
    ExpectNear(Rocks[0].Pos, MIDDLE + Vec3{5, 0, 0}, TOLERANCE);
    ExpectNear(Rocks[0].Scale, {2, 2, 2}, TOLERANCE);
}

TEST_F(Cube, OnlyAPressOnAFaceStartsAndARayAlongThePlaneChangesNothing) {
    Start();
    Eye = {10, 20, 90};
    Press({15, 20, 34});
    Hold({11, 20, 34});
    Eye = MIDDLE; // inside, all faces look away
    Press({11, 20, 34});
    EXPECT_EQ(Menu.DragFace, -1);
    Eye = {10, 20, 90};
    Press({11, 20, 34});
    Hold({12, 20, 34});
    Menu.Drag({.Pick = {Eye, {1, 0, 0}}, .Held = true});
    ExpectCube({11, 20, 30}, {4, 4, 4});
}

class TransformMenu : public LevelFixture {
protected:
    static SMeshClient& Rock(UINT32 i) { return static_cast<CMeshEntity*>(GLevel->Entities[i])->Client; }

    // Over level ground 10 high, with rocks at (0, 0, 40) and 60 farther in turns, seen from Eye along y.
    SMenu_Transform& Open(UINT32 Rocks, const Vec3& Eye) {
        std::string Text = "WLMF\n" + FlatGround(10) + "scene fdist=5000\n";
        for (UINT32 i = 0; i < Rocks; ++i) {
            Text += "entity StaticMesh MeshName=Data/Models/Boulder.mdd z=40 x=" + std::to_string(i % 2 * 60) + "\n";
        }
        LoadText(Text);
        GuiFree();
        LookFrom(Eye, Eye + Vec3{0, 1, 0});
        GLevel->ToggleEditor();
        auto* Menu = new SMenu_Transform(GLevel, Place, Place + 6, Place + 12);
        for (UINT32 i = 0; i < Rocks; ++i) {
            Menu->Clients.Add(&Rock(i));
        }
        Menu->Prepare();
        GLevel->PushMenu(Menu);
        return *Menu;
    }

    static void Step(const Vec2& Mouse, bool Left) {
        InputBeginStep();
        GMousePos = Mouse;
        GMouseLeft = Left;
        GLevel->Update(STEP);
    }
    static void Pull(const Vec2& From, const Vec2& Way) {
        Step(From, true);
        Step(From + Way, true);
        Step(From + Way, false);
    }
    static void PullRow(int Row, float Way) { Pull({950, 110 + 20 * static_cast<float>(Row)}, {Way, 0}); }
    static Vec2 PixelOf(const Vec3& p) {
        const Vec3 v = (p - GCamera.Eye) * (288 / (p.y - GCamera.Eye.y));
        return {512 + v.x, 288 - v.z};
    }

    float Place[18] = {};
};

TEST_F(TransformMenu, RowsStandInTheirOrderAndChangeOneValueEach) {
    SMenu_Transform& Menu = Open(0, {0, -100, 60});
    EXPECT_EQ(Menu.GetOpCount(), 2u);
    float *S = Place, *R = Place + 6, *M = Place + 12;
    float* const Rows[] = {S,     S + 1, S + 2, S + 3, S + 4, S + 5, R + 1, R,     R + 2,
                           R + 4, R + 3, R + 5, M,     M + 1, M + 2, M + 3, M + 4, M + 5};
    for (int Row = 0; Row < 18; ++Row) {
        PullRow(Row, 10);
        EXPECT_EQ(*Rows[Row], 10);
        EXPECT_EQ(std::accumulate(Place, Place + 18, 0.0f), 10 * static_cast<float>(Row + 1));
    }
    M[0] = R[1] = S[3] = 1.3f;
    M[4] = 1.125f;
    M[5] = -1.375f;
    Step({}, false);
    EXPECT_EQ(M[0], 1.3f);
    PullRow(18, std::sqrt(37.0f)); // to 3.7, which is 4
    EXPECT_TRUE(M[0] == 1.25f && R[1] == 1.25f && S[3] == 1.25f && M[4] == 1 && M[5] == -1.5f);
    S[0] = 1;
    S[3] = 40;
    Step({950, 110}, true);
    Menu.DoOp(2);
    EXPECT_FALSE((*GButtons)[1234].Pressed) << "its row is gone";
    Step({950, 110}, false);
    EXPECT_TRUE(S[0] == 7 && S[1] == 7 && S[2] == 7 && S[3] == 20 && S[4] == 20) << "means";
    PullRow(1, 10);
    EXPECT_TRUE(S[3] == 30 && S[4] == 30 && S[5] == 30);
    PullRow(0, 10);
    EXPECT_TRUE(S[0] == 17 && S[1] == 17 && S[2] == 17 && GLevel->MenuRow == 15);
    Menu.DoOp(1);
    EXPECT_TRUE(std::accumulate(Place, Place + 18, 0.0f) == 3 && S[0] == 1 && S[2] == 1);
}

TEST_F(TransformMenu, ARockFollowsTheCubeWithItsBoundsAndComesBackWithReset) {
    SMenu_Transform& Menu = Open(1, {0, -100, 40});
    Step({}, false);
    const Vec3 Before = Rock(0).BBox.Min, Start = Menu.Centre, Way = {-30, 0, 20};
    const float Half = Menu.HalfSize.x;
    const Vec3 Grab = {2, Start.y - Half, Start.z};
    Pull(PixelOf(Grab), PixelOf(Grab + Way) - PixelOf(Grab));
    Steps(3);
    ExpectNear(Menu.Centre, Start + Way, 0.01f);
    ExpectNear(Rock(0).BBox.Min, Before + Way, 0.02f);
    GLevel->TraceClients({{-30, 0, 150}, {0, 0, -1}});
    EXPECT_NE(GLevel->PickHits.Hits.root, nullptr);
    // A row changes its value alone, though the cube lies behind it; those of a rotation only show.
    const Vec3 Behind = Menu.Centre = {438 / 288.0f * 60, Half - 40, 40 + 38 / 288.0f * 60};
    PullRow(7, 10);
    ExpectNear(Menu.Centre, Behind + Vec3{0, 10, 0}, 0);
    PullRow(5, 10);
    EXPECT_TRUE(Menu.Rotation == Quat());
    Menu.Rotation = {0, 0, 1, 0};
    Menu.HalfSize = {1, 2, 3};
    Menu.DoOp(1);
    Steps(3);
    ExpectNear(Rock(0).BBox.Min, Before, 0.001f);
    EXPECT_TRUE(Rock(0).Rot == Quat());
    Menu.DoOp(5);
    GKeys[SDLK_LSHIFT] = GKeys[SDLK_LCTRL] = 1;
    Pull(PixelOf(Grab), PixelOf(Grab + Vec3{2 - Start.x, 0, 0}) - PixelOf(Grab));
    ExpectNear(Menu.HalfSize, {Half, 2 * Half, Half}, 0.01f);
}

TEST_F(TransformMenu, TheCubeIsBrightInSightAndDimBehindTheGround) {
    SMenu_Transform& Menu = Open(2, {30, -120, 30});
    Menu.DoOp(2);
    Menu.DoOp(5);
    ExpectNear(Menu.Centre, {30, 0, 40}, 3);
    const char* Names[] = {"Reset", "UForm Scale: OFF", "Move", "Rotate", "> Scale", NO_OP_NAME};
    for (INT32 Op = 1; Op <= 6; ++Op) {
        GString Name;
        Menu.GetOpName(&Name, Op);
        EXPECT_EQ(Name, GString(Names[Op - 1]));
    }
    Menu.Centre = {30, 0, 10};
    Menu.HalfSize = {20, 20, 10};
    Step({}, false);
    GLevel->Render(1);
    const auto Redness = [Picture = ReadWindow()](const Vec3& p) {
        const int X = static_cast<int>(PixelOf(p).x), Y = static_cast<int>(PixelOf(p).y);
        const SRgb Left = Picture.At(X - 1, Y), Right = Picture.At(X, Y);
        return std::max(Left.R - Left.B, Right.R - Right.B);
    };
    EXPECT_NEAR(Redness({10, -20, 15}), 102, 3) << "0.7 - 0.3 of 255";
    EXPECT_LT(Redness({10, -20, 5}), 0);
}

TEST_F(TransformMenu, FiveThousandRocksComeBackByteForByte) {
    CRandom Random;
    SMenu_Transform& Menu = Open(5000, {0, -100, 60});
    Menu.HalfSize = {5, 5, 5};
    for (STransformItem& Item : Menu.Items) {
        Item = {Random.Rotation(), Random.Point(20), Random.Point(0.1f)};
    }
    Steps(3);
    const char* const Path = "Data/Levels/_TmpSlopeRush.wlm";
    ASSERT_EQ(GLevel->SaveTemporaryLevel(), 1u);
    const std::string First = ReadText(Path);
    EXPECT_EQ(LoadLevel(Path).SaveTemporaryLevel(), 1u);
    EXPECT_EQ(GLevel->Entities.count, 5000u);
    EXPECT_TRUE(ReadText(Path) == First);
}

} // namespace
