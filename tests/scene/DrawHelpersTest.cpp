#include "scene/DrawHelpers.h"

#include "foundation/Screen.h"
#include "support/GlFixture.h"

#include <GL/glew.h>

namespace {

using DrawTest = GlFixture;

const UINT32 ORANGE = 0x800080FFu; // R 255, G 128, B 0, A 128

// x, y, z; red, green, blue, alpha; texture coordinates s, t, r; all in hundredths.
using Vertex = std::array<long, 10>;

Vertex Rounded(const std::array<float, 10>& v) {
    Vertex Out;
    std::transform(v.begin(), v.end(), Out.begin(), [](float x) { return std::lround(100 * x); });
    return Out;
}

// The vertices that Draw sends in clip space, polygon by polygon or line by line.
std::vector<Vertex> Drawn(const std::function<void()>& Draw) {
    std::vector<float> Buffer(4096);
    glFeedbackBuffer(4096, GL_4D_COLOR_TEXTURE, Buffer.data());
    glRenderMode(GL_FEEDBACK);
    Draw();
    const float* End = Buffer.data() + glRenderMode(GL_RENDER);
    std::vector<Vertex> Vertices;
    for (const float* f = Buffer.data(); f < End;) {
        const bool IsPolygon = *f++ == GL_POLYGON_TOKEN;
        for (int Count = IsPolygon ? static_cast<int>(*f++) : 2; Count > 0; Count--, f += 12) {
            Vertices.push_back(Rounded({2 * f[0] / WINDOW_WIDTH - 1, 2 * f[1] / WINDOW_HEIGHT - 1, 2 * f[2] - 1, f[4],
                                        f[5], f[6], f[7], f[8], f[9], f[10]}));
        }
    }
    EXPECT_TRUE(glIsEnabled(GL_VERTEX_ARRAY));
    EXPECT_FALSE(glIsEnabled(GL_COLOR_ARRAY) || glIsEnabled(GL_TEXTURE_COORD_ARRAY));
    return Vertices;
}

// On a circle of radius size times the root of 2, the first corner at 135 degrees from the right, the others
// clockwise, and the sprite's angle turning them on clockwise.
Vec3 BillboardCorner(int Corner, const Vec3& Centre, float Size, float Angle, float Stretch, const Vec3& Up) {
    const Vec3 Forward = M_Normalized(GCamera.Target - GCamera.Eye);
    const Vec3 Right = M_Normalized(M_Cross(Forward, Up));
    const float Polar = 0.75f * PI - static_cast<float>(Corner) * PI / 2 - Angle;
    const float Radius = Size * std::sqrt(2.0f);
    return Centre + Right * (Radius * std::cos(Polar) * Stretch) + M_Cross(Right, Forward) * (Radius * std::sin(Polar));
}

TEST(BillboardTest, CornersStandOnTheirCircleAndAnUpAlongTheViewCollapsesThem) {
    CRandom Random;
    for (int i = 0; i < 50; i++) {
        const Vec3 Centre = Random.Point(9);
        const float Size = Random.Between(0.1f, 5), Angle = Random.Between(-7, 7), Stretch = Random.Between(0.5f, 3);
        GCamera.Eye = Random.Point(9);
        GCamera.Target = GCamera.Eye + Vec3{2.5f, 2.5f, 0} + Random.Point(1);
        GCamera.Up = Vec3{0, 0, 3} + Random.Point(0.2f);
        const Vec3 Up = i % 2 ? GCamera.Target - GCamera.Eye : Vec3{Random.Between(-0.2f, 0.2f), 5, -8};
        SVertex24 White[4];
        SVertex40 Colored[4];
        MakeBillboard24(Centre, Size, Angle, Stretch, White);
        MakeBillboard40(Centre, Size, Angle, Colored, 0, Up, 1, 1, 1, 1);
        for (int k = 0; k < 4; k++) {
            const Vec3 Expected = i % 2 ? Centre : BillboardCorner(k, Centre, Size, Angle, 1, Up);
            EXPECT_LT(M_Length(White[k].Pos - BillboardCorner(k, Centre, Size, Angle, Stretch, GCamera.Up)), 1e-4f);
            EXPECT_LT(M_Length(Colored[k].Pos - Expected), 1e-4f);
        }
    }
    GCamera = CameraState();
}

TEST_F(DrawTest, ARectIsAVeilOverItsPartOfTheScreen) {
    ClearWindow(1, 1, 1);
    glEnable(GL_BLEND);
    DrawRect(-0.5f, 0.25f, 0.5f, -0.25f, 0);
    const SPicture Picture = ReadWindow();
    for (int i = 0; i < WINDOW_WIDTH * WINDOW_HEIGHT; i++) {
        const int X = i % WINDOW_WIDTH, Y = i / WINDOW_WIDTH;
        const int Grey = X >= 256 && X < 640 && Y >= 144 && Y < 360 ? 255 - 79 : 255;
        ASSERT_EQ(Picture.At(X, Y), (SRgb{Grey, Grey, Grey})) << X << " " << Y;
    }
}

TEST_F(DrawTest, BoxesHaveTheirTwelveEdgesTurnedAboutTheirCentre) {
    const BBox Box = {{0.25f, -0.25f, -0.125f}, {-0.5f, 0.5f, 0.5f}}; // inside out in x
    const Vec3 Axis = {0, 0.6f, 0.8f}, Centre = (Box.Min + Box.Max) * 0.5f;
    for (const float Angle : {0.0f, 0.5f}) {
        std::set<std::set<Vertex>> Edges, DrawnEdges;
        // Rodrigues' formula, backwards as all rotations of the system.
        const auto Corner = [&](int i) {
            const Vec3 v =
                Vec3{i & 1 ? Box.Max.x : Box.Min.x, i & 2 ? Box.Max.y : Box.Min.y, i & 4 ? Box.Max.z : Box.Min.z} -
                Centre;
            const Vec3 p = Centre + v * std::cos(Angle) - M_Cross(Axis, v) * std::sin(Angle) +
                           Axis * (M_Dot(Axis, v) * (1 - std::cos(Angle)));
            return Rounded({p.x, p.y, p.z, 1, 0.5f, 0, 0.5f});
        };
        const std::vector<Vertex> Ends = Drawn([&] {
            Angle == 0 ? DrawBoxLines(Box, ORANGE) : DrawRotatedBoxLines(Box, QuatFromAxisAngle(Axis, Angle), ORANGE);
        });
        ASSERT_EQ(Ends.size(), 24u);
        for (int i = 0; i < 24; i++) {
            Edges.insert({Corner(i / 3), Corner(i / 3 ^ 1 << i % 3)});
            DrawnEdges.insert({Ends[i / 2 * 2], Ends[i / 2 * 2 + 1]});
        }
        EXPECT_EQ(DrawnEdges, Edges);
    }
}

} // namespace
