#include "scene/DrawHelpers.h"

#include <GL/glew.h>
#include <array>
#include <cmath>
#include <random>
#include <set>

#include "foundation/Screen.h"
#include "graphics/TextureStorage.h"
#include "support/GlFixture.h"

namespace {

constexpr double PI = 3.14159265358979323846;
constexpr float TOLERANCE = 1e-4f;

// Plain vector arithmetic in double precision, apart from the system's own.
struct SVec {
    double x, y, z;
};
SVec operator+(SVec a, SVec b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
SVec operator*(double s, SVec a) {
    return {s * a.x, s * a.y, s * a.z};
}
SVec Cross(SVec a, SVec b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
SVec Unit(SVec a) {
    return 1.0 / std::sqrt(a.x * a.x + a.y * a.y + a.z * a.z) * a;
}
SVec Widen(const Vec3& v) {
    return {v.x, v.y, v.z};
}

void ExpectNear(const Vec3& Actual, SVec Expected, const char* What) {
    EXPECT_NEAR(Actual.x, Expected.x, TOLERANCE) << What;
    EXPECT_NEAR(Actual.y, Expected.y, TOLERANCE) << What;
    EXPECT_NEAR(Actual.z, Expected.z, TOLERANCE) << What;
}

// The sprite's corner in the plane that faces the camera: on a circle of radius size times the root of 2, the first at
// 135 degrees from the right, the others clockwise, and the sprite's angle turning them on clockwise.
SVec BillboardCorner(int Corner, SVec Centre, double Size, double Angle, double Stretch, SVec Up) {
    const SVec Right = Unit(Cross(Widen(GCamera.Target) + -1.0 * Widen(GCamera.Eye), Up));
    const SVec Above = Cross(Right, Unit(Widen(GCamera.Target) + -1.0 * Widen(GCamera.Eye)));
    const double Polar = 0.75 * PI - Corner * PI / 2 - Angle;
    const double Radius = Size * std::sqrt(2.0);
    return Centre + Radius * std::cos(Polar) * Stretch * Right + Radius * std::sin(Polar) * Above;
}

class BillboardTest : public ::testing::Test {
protected:
    void SetUp() override { GCamera = CameraState(); }
    void TearDown() override { GCamera = CameraState(); }

    Vec3 RandomVector(float Reach) {
        std::uniform_real_distribution<float> Unit(-Reach, Reach);
        return {Unit(Random), Unit(Random), Unit(Random)};
    }
    float RandomFloat(float Low, float High) { return std::uniform_real_distribution<float>(Low, High)(Random); }

    void RandomCamera() {
        GCamera.Eye = RandomVector(50.0f);
        GCamera.Target = GCamera.Eye + Vec3{RandomFloat(1.0f, 4.0f), RandomFloat(1.0f, 4.0f), RandomFloat(-1.0f, 1.0f)};
        GCamera.Up = Vec3{RandomFloat(-0.2f, 0.2f), RandomFloat(-0.2f, 0.2f), 3.0f};
    }

    std::mt19937 Random{20};
};

TEST_F(BillboardTest, TheWhiteSpriteStandsOnItsCircle) {
    for (int i = 0; i < 50; i++) {
        RandomCamera();
        const Vec3 Centre = RandomVector(10.0f);
        const float Size = RandomFloat(0.1f, 5.0f);
        const float Angle = RandomFloat(-7.0f, 7.0f);
        const float Stretch = RandomFloat(0.5f, 3.0f);
        SVertex24 Out[4];
        MakeBillboard24(Centre, Size, Angle, Stretch, Out);
        for (int Corner = 0; Corner < 4; Corner++) {
            ExpectNear(Out[Corner].Pos, BillboardCorner(Corner, Widen(Centre), Size, Angle, Stretch, Widen(GCamera.Up)),
                       "corner");
        }
    }
}

TEST_F(BillboardTest, TheColoredSpriteTakesItsOwnUp) {
    for (int i = 0; i < 50; i++) {
        RandomCamera();
        const Vec3 Centre = RandomVector(10.0f);
        const float Size = RandomFloat(0.1f, 5.0f);
        const float Angle = RandomFloat(-7.0f, 7.0f);
        const Vec3 Up = {RandomFloat(-0.2f, 0.2f), RandomFloat(5.0f, 6.0f), RandomFloat(-9.0f, -8.0f)};
        SVertex40 Out[4];
        MakeBillboard40(Centre, Size, Angle, Out, 0.0f, Up, 1.0f, 1.0f, 1.0f, 1.0f);
        for (int Corner = 0; Corner < 4; Corner++) {
            ExpectNear(Out[Corner].Pos, BillboardCorner(Corner, Widen(Centre), Size, Angle, 1.0, Widen(Up)), "corner");
        }
    }
}

TEST_F(BillboardTest, TheSpritesCarryTheirTextureAndColor) {
    SVertex24 White[4];
    SVertex40 Colored[4];
    MakeBillboard24({}, 1.0f, 0.0f, 1.0f, White);
    MakeBillboard40({}, 1.0f, 0.0f, Colored, 6.0f, {0.0f, 0.0f, 1.0f}, 0.1f, 0.2f, 0.3f, 0.4f);
    const float WhiteTex[4][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    const float ColoredTex[4][2] = {{0, 1}, {0, 0}, {1, 0}, {1, 1}};
    for (int Corner = 0; Corner < 4; Corner++) {
        SCOPED_TRACE(Corner);
        EXPECT_EQ(White[Corner].Color, 0xFFFFFFFFu);
        EXPECT_EQ(White[Corner].Tex.x, WhiteTex[Corner][0]);
        EXPECT_EQ(White[Corner].Tex.y, WhiteTex[Corner][1]);
        EXPECT_EQ(Colored[Corner].Tex.x, ColoredTex[Corner][0]);
        EXPECT_EQ(Colored[Corner].Tex.y, ColoredTex[Corner][1]);
        EXPECT_EQ(Colored[Corner].Tex.z, 6.0f);
        EXPECT_EQ(Colored[Corner].Color.x, 0.1f);
        EXPECT_EQ(Colored[Corner].Color.y, 0.2f);
        EXPECT_EQ(Colored[Corner].Color.z, 0.3f);
        EXPECT_EQ(Colored[Corner].Color.w, 0.4f);
    }
}

TEST_F(BillboardTest, AnUpAlongTheViewCollapsesTheSprite) {
    GCamera.Eye = {0.0f, 0.0f, 10.0f};
    GCamera.Target = {0.0f, 0.0f, 0.0f};
    SVertex24 White[4];
    SVertex40 Colored[4];
    MakeBillboard24({1.0f, 2.0f, 3.0f}, 5.0f, 0.3f, 1.0f, White);
    MakeBillboard40({1.0f, 2.0f, 3.0f}, 5.0f, 0.3f, Colored, 0.0f, {0.0f, 0.0f, 2.0f}, 1.0f, 1.0f, 1.0f, 1.0f);
    for (int Corner = 0; Corner < 4; Corner++) {
        ExpectNear(White[Corner].Pos, {1.0, 2.0, 3.0}, "white");
        ExpectNear(Colored[Corner].Pos, {1.0, 2.0, 3.0}, "colored");
    }
}

TEST_F(BillboardTest, AnAxisAndAnAngleMakeAQuaternion) {
    const Quat q = QuatFromAxisAngle({0.0f, 0.6f, 0.8f}, static_cast<float>(PI / 3));
    EXPECT_NEAR(q.x, 0.0f, 1e-6f);
    EXPECT_NEAR(q.y, 0.3f, 1e-6f);
    EXPECT_NEAR(q.z, 0.4f, 1e-6f);
    EXPECT_NEAR(q.w, std::sqrt(3.0f) / 2.0f, 1e-6f);
}

// One vertex as OpenGL's feedback mode returns it.
struct SDrawnVertex {
    SVec Pos; // back in clip space
    std::array<float, 4> Color;
    std::array<float, 4> Tex;
};

class DrawHelpersTest : public GlFixture {
protected:
    void TearDown() override {
        if (!IsSkipped()) {
            glMatrixMode(GL_PROJECTION);
            glLoadIdentity();
            glMatrixMode(GL_MODELVIEW);
            glLoadIdentity();
            glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
        }
        GlFixture::TearDown();
    }

    // What Draw sends, through the fixed pipeline with identity matrices, as lines or polygons; Token is theirs.
    template <typename T>
    static std::vector<std::vector<SDrawnVertex>> Feedback(T Draw) {
        constexpr int FLOATS = 4 + 4 + 4; // position, colour, texture
        std::vector<float> Buffer(4096);
        glFeedbackBuffer(static_cast<GLsizei>(Buffer.size()), GL_4D_COLOR_TEXTURE, Buffer.data());
        glRenderMode(GL_FEEDBACK);
        Draw();
        const int Count = glRenderMode(GL_RENDER);
        std::vector<std::vector<SDrawnVertex>> Primitives;
        for (int i = 0; i < Count;) {
            const auto Token = static_cast<GLenum>(Buffer[i++]);
            const int Vertices = Token == GL_POLYGON_TOKEN ? static_cast<int>(Buffer[i++]) : 2;
            Primitives.emplace_back();
            for (int v = 0; v < Vertices; v++, i += FLOATS) {
                Primitives.back().push_back(DrawnVertex(&Buffer[i]));
            }
        }
        return Primitives;
    }

    static SDrawnVertex DrawnVertex(const float* f) {
        const SVec Clip = {2.0 * f[0] / WINDOW_WIDTH - 1.0, 2.0 * f[1] / WINDOW_HEIGHT - 1.0, 2.0 * f[2] - 1.0};
        return {Clip, {f[4], f[5], f[6], f[7]}, {f[8], f[9], f[10], f[11]}};
    }

    // A point in thousandths, so that it can be a key.
    using Key = std::array<long, 3>;
    static Key KeyOf(SVec v) {
        return {std::lround(v.x * 1000.0), std::lround(v.y * 1000.0), std::lround(v.z * 1000.0)};
    }
    using Edges = std::multiset<std::set<Key>>;

    template <typename T>
    static Edges DrawnEdges(T Draw) {
        Edges Drawn;
        for (const auto& Line : Feedback(Draw)) {
            Drawn.insert({KeyOf(Line.at(0).Pos), KeyOf(Line.at(1).Pos)});
        }
        return Drawn;
    }

    // All pairs of the eight corners that differ in one coordinate, each corner moved by Place.
    template <typename T>
    static Edges ExpectedEdges(const BBox& Box, T Place) {
        std::vector<SVec> Corners;
        for (double x : {Box.Min.x, Box.Max.x}) {
            for (double y : {Box.Min.y, Box.Max.y}) {
                for (double z : {Box.Min.z, Box.Max.z}) {
                    Corners.push_back({x, y, z});
                }
            }
        }
        Edges Expected;
        for (std::size_t i = 0; i < Corners.size(); i++) {
            for (std::size_t j = 0; j < i; j++) {
                const SVec a = Corners[i];
                const SVec b = Corners[j];
                if ((a.x != b.x) + (a.y != b.y) + (a.z != b.z) == 1) {
                    Expected.insert({KeyOf(Place(a)), KeyOf(Place(b))});
                }
            }
        }
        return Expected;
    }

    static void ExpectOnlyTheVertexArray() {
        glClientActiveTexture(GL_TEXTURE0);
        EXPECT_TRUE(glIsEnabled(GL_VERTEX_ARRAY));
        EXPECT_FALSE(glIsEnabled(GL_COLOR_ARRAY));
        EXPECT_FALSE(glIsEnabled(GL_TEXTURE_COORD_ARRAY));
    }

    static void LoadOverlayProjection() {
        Mat4 Projection;
        M_Mat4Ortho(Projection, 0.0f, 1024.0f, 0.0f, 576.0f, -1.0f, 1.0f);
        glMatrixMode(GL_PROJECTION);
        glLoadMatrixf(Projection.M);
        glMatrixMode(GL_MODELVIEW);
    }
};

constexpr BBox BOX = {{-0.5f, -0.25f, -0.125f}, {0.25f, 0.5f, 0.75f}};
const UINT32 ORANGE = 0x800080FFu; // R 255, G 128, B 0, A 128

TEST_F(DrawHelpersTest, TheQuadFillsThePictureWithItsTextureUpright) {
    // The first row is at texture coordinate 0, which is at the bottom.
    const UINT8 Texels[] = {255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 255, 255, 255, 255};
    const UINT32 Texture = TextureFromPixels(2, 2, Texels);
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, Texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glEnable(GL_TEXTURE_2D);
    DrawQuad(-1.0f, 1.0f, 1.0f, -1.0f, 0.0f);
    const SPicture Picture = ReadWindow();
    EXPECT_EQ(Picture.At(0, 575), (SRgb{255, 0, 0}));
    EXPECT_EQ(Picture.At(1023, 575), (SRgb{0, 255, 0}));
    EXPECT_EQ(Picture.At(0, 0), (SRgb{0, 0, 255}));
    EXPECT_EQ(Picture.At(1023, 0), (SRgb{255, 255, 255}));
    ExpectOnlyTheVertexArray();
    glDeleteTextures(1, &Texture);
}

TEST_F(DrawHelpersTest, TheRectDarkensItsPartOfTheScreen) {
    ClearWindow(1.0f, 1.0f, 1.0f);
    LoadOverlayProjection();
    glEnable(GL_BLEND);
    DrawRect(100.0f, 300.0f, 50.0f, 200.0f, 0.0f);
    const SPicture Picture = ReadWindow();
    const int Veiled = 255 - 79;
    for (const auto& [X, Y] : {std::pair{100, 50}, {299, 50}, {100, 199}, {299, 199}}) {
        EXPECT_NEAR(Picture.At(X, Y).R, Veiled, 1) << X << ", " << Y;
        EXPECT_NEAR(Picture.At(X, Y).B, Veiled, 1) << X << ", " << Y;
    }
    for (const auto& [X, Y] : {std::pair{99, 100}, {300, 100}, {200, 49}, {200, 200}}) {
        EXPECT_EQ(Picture.At(X, Y), (SRgb{255, 255, 255})) << X << ", " << Y;
    }
    ExpectOnlyTheVertexArray();
}

TEST_F(DrawHelpersTest, ABoxHasItsTwelveEdgesInItsColor) {
    const auto Draw = [] { DrawBoxLines(BOX, ORANGE); };
    EXPECT_EQ(DrawnEdges(Draw), ExpectedEdges(BOX, [](SVec v) { return v; }));
    const auto Line = Feedback(Draw).at(7);
    EXPECT_NEAR(Line.at(1).Color[0], 1.0f, 0.005f);
    EXPECT_NEAR(Line.at(1).Color[1], 128.0f / 255.0f, 0.005f);
    EXPECT_NEAR(Line.at(1).Color[2], 0.0f, 0.005f);
    EXPECT_NEAR(Line.at(1).Color[3], 128.0f / 255.0f, 0.005f);
    ExpectOnlyTheVertexArray();
}

TEST_F(DrawHelpersTest, ABoxInsideOutHasTheSameEdges) {
    BBox Turned = BOX;
    std::swap(Turned.Min.x, Turned.Max.x);
    EXPECT_EQ(DrawnEdges([&] { DrawBoxLines(Turned, ORANGE); }), ExpectedEdges(BOX, [](SVec v) { return v; }));
}

TEST_F(DrawHelpersTest, ARotatedBoxTurnsAboutItsCentre) {
    const float Angle = 0.5f;
    const SVec Centre = 0.5 * (Widen(BOX.Min) + Widen(BOX.Max));
    // A turn about +Z takes x towards minus y, as every rotation of the system does.
    const auto Turn = [&](SVec v) {
        const SVec d = v + -1.0 * Centre;
        return Centre +
               SVec{d.x * std::cos(Angle) + d.y * std::sin(Angle), -d.x * std::sin(Angle) + d.y * std::cos(Angle), d.z};
    };
    EXPECT_EQ(DrawnEdges([&] {
                  DrawRotatedBoxLines(BOX, QuatFromAxisAngle({0.0f, 0.0f, 1.0f}, Angle), ORANGE);
              }),
              ExpectedEdges(BOX, Turn));
}

TEST_F(DrawHelpersTest, VerticesAreDrawnInTheGivenMode) {
    const SVertex20 Vertices[] = {
        {{0.0f, 0.0f, 0.0f}, {0.25f, 0.5f}}, {{0.5f, 0.0f, 0.0f}, {1.0f, 1.0f}}, {{0.5f, 0.5f, 0.5f}, {0.0f, 2.0f}}};
    const auto Lines = Feedback([&] { DrawVertices20(Vertices, 3, GL_LINE_LOOP); });
    ASSERT_EQ(Lines.size(), 3u);
    EXPECT_EQ(KeyOf(Lines[0][0].Pos), (Key{0, 0, 0}));
    EXPECT_EQ(KeyOf(Lines[1][1].Pos), (Key{500, 500, 500}));
    EXPECT_NEAR(Lines[0][0].Tex[0], 0.25f, TOLERANCE);
    EXPECT_NEAR(Lines[1][1].Tex[1], 2.0f, TOLERANCE);
    ExpectOnlyTheVertexArray();
}

TEST_F(DrawHelpersTest, QuadsOf24BytesCarryPackedColors) {
    SVertex24 Vertices[4];
    MakeBillboard24({0.0f, 0.0f, 0.0f}, 0.5f, 0.0f, 1.0f, Vertices);
    for (SVertex24& Vertex : Vertices) {
        std::swap(Vertex.Pos.y, Vertex.Pos.z); // the first camera looks along +Y, clip space along +Z
        Vertex.Color = ORANGE;
    }
    std::set<Key> Corners;
    for (const auto& Polygon : Feedback([&] { DrawQuads24(Vertices, 4); })) {
        for (const SDrawnVertex& Vertex : Polygon) {
            Corners.insert(KeyOf(Vertex.Pos));
            EXPECT_NEAR(Vertex.Color[1], 128.0f / 255.0f, 0.005f);
            EXPECT_NEAR(Vertex.Tex[0], Vertex.Pos.x + 0.5, TOLERANCE);
            EXPECT_NEAR(Vertex.Tex[1], 0.5 - Vertex.Pos.y, TOLERANCE);
        }
    }
    EXPECT_EQ(Corners, (std::set<Key>{{-500, -500, 0}, {-500, 500, 0}, {500, -500, 0}, {500, 500, 0}}));
    ExpectOnlyTheVertexArray();
}

TEST_F(DrawHelpersTest, ABillboardFacesTheCameraWithItsLayerAndColor) {
    GCamera.Eye = {3.0f, -4.0f, 5.0f};
    GCamera.Target = {0.0f, 0.0f, 1.0f};
    Mat4 View;
    Mat4 Projection;
    M_CameraLookAt(View);
    M_Mat4Perspective(Projection, 1.0f, 16.0f / 9.0f, 1.0f, 100.0f);
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixf(Projection.M);
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixf(View.M);
    const auto Draw = [] { DrawBillboard(GCamera.Target, 0.5f, 0.3f, 3.0f, GCamera.Up, 1.0f, 0.5f, 0.0f, 1.0f); };
    const auto Polygons = Feedback(Draw);
    ASSERT_FALSE(Polygons.empty()) << "culled if it does not face the camera";
    EXPECT_NEAR(Polygons[0].at(0).Tex[2], 3.0f, TOLERANCE);
    Draw();
    const SRgb Middle = ReadWindow().At(512, 288);
    EXPECT_NEAR(Middle.R, 255, 1);
    EXPECT_NEAR(Middle.G, 128, 1);
    EXPECT_NEAR(Middle.B, 0, 1);
    ExpectOnlyTheVertexArray();
}

} // namespace
