#include <GL/glew.h>
#include <set>

#include "terrain/TerrainGlFixture.h"

namespace {

constexpr int WIDTH = 1024;
constexpr int HEIGHT = 576;
constexpr float PI = 3.14159265f;

class TerrainDrawTest : public TerrainGlFixture {
protected:
    void SetUp() override {
        TerrainGlFixture::SetUp();
        if (!Ready) {
            return;
        }
        WritePicture(257, 257);
        Terrain.Extents = {400, 400, 20};
        ASSERT_EQ(Load("t.ter"), "");
        ClearWindow(1, 0, 0);
        LookDown();
    }

    // From above the middle, X to the right; the ground is larger than the picture.
    static void LookDown() {
        GCamera.Eye = {0, 0, 300};
        GCamera.Target = {0, 0, 0};
        GCamera.Up = {0, 1, 0};
        GCamera.Fov = 60;
        GCamera.Aspect = 1.0f * WIDTH / HEIGHT;
        GCamera.Far = 1000;
        M_CameraLookAt(GViewMatrix);
        M_Mat4Perspective(GProjectionMatrix, GCamera.Fov / 180 * PI, GCamera.Aspect, GCamera.Near, GCamera.Far);
    }

    static int Uncovered(const SPicture& Picture) {
        int Count = 0;
        for (int i = 0; i < WIDTH * HEIGHT; i++) {
            Count += Picture.Rgb[std::size_t{3} * i] > 128;
        }
        return Count;
    }
};

} // namespace

TEST_F(TerrainDrawTest, DrawsTheGroundWhereItIs) {
    Terrain.Draw();
    const SPicture Picture = ReadWindow();
    EXPECT_EQ(Uncovered(Picture), 0);
    for (const int x : {100, 512, 900}) {
        for (const int y : {80, 288, 500}) {
            GMousePos = {static_cast<float>(x) + 0.5f, static_cast<float>(y) + 0.5f};
            Ray Pick;
            M_CameraPickRay(Pick);
            const float Distance = Terrain.TraceRay(Pick, 2000);
            ASSERT_GT(Distance, 0);
            const Vec3 Ground = Pick.Origin + Pick.Dir * Distance;
            const float Stretch = 257.0f / 256;
            const SRgb Found = Picture.At(x, y);
            // Coarser levels of detail lie a little above or below what the ray hits.
            EXPECT_NEAR(Found.G, (Ground.x / 800 + 0.5f) * Stretch * 255, 4);
            EXPECT_NEAR(Found.B, (Ground.y / 800 + 0.5f) * Stretch * 255, 4);
        }
    }
}

TEST_F(TerrainDrawTest, LeavesOfUnequalLevelsLeaveNoGap) {
    ASSERT_TRUE(Terrain.Visible(false));
    for (const float Range : {2000.0f, 900.0f, 700.0f}) {
        ClearWindow(1, 0, 0);
        Terrain.SetLods({-300, -200, 0}, Range);
        std::set<UINT32> Levels;
        for (UINT32 i = 0; i < 256; i++) {
            if (Terrain.Leaves[i].IsVisible()) {
                Levels.insert(Terrain.Leaves[i].Lod());
            }
        }
        EXPECT_GT(Levels.size(), 1u);
        Terrain.Bind(false, false);
        Terrain.DrawLeaves();
        Terrain.Unbind();
        EXPECT_EQ(Uncovered(ReadWindow()), 0) << Range;
    }
}

TEST_F(TerrainDrawTest, ALevelWithoutListDrawsNothing) {
    ASSERT_TRUE(Terrain.Visible(false));
    for (UINT32 i = 0; i < 256; i++) {
        Terrain.Leaves[i].SetLod(5);
    }
    Terrain.Bind(false, false);
    Terrain.DrawLeaves();
    Terrain.Unbind();
    EXPECT_EQ(Uncovered(ReadWindow()), WIDTH * HEIGHT);
}

TEST_F(TerrainDrawTest, OutOfViewNothingIsDrawnOrBound) {
    GCamera.Target = {0, 0, 1000};
    Terrain.Draw();
    EXPECT_EQ(Uncovered(ReadWindow()), WIDTH * HEIGHT);
    INT32 Program = -1;
    glGetIntegerv(GL_CURRENT_PROGRAM, &Program);
    EXPECT_EQ(Program, 0);
}

TEST_F(TerrainDrawTest, DrawLeavesNoArraysBehind) {
    Terrain.Draw();
    INT32 Buffer = -1;
    glGetIntegerv(GL_ARRAY_BUFFER_BINDING, &Buffer);
    EXPECT_EQ(Buffer, 0);
    glGetIntegerv(GL_ELEMENT_ARRAY_BUFFER_BINDING, &Buffer);
    EXPECT_EQ(Buffer, 0);
    EXPECT_FALSE(glIsEnabled(GL_TEXTURE_COORD_ARRAY));
    EXPECT_TRUE(glIsEnabled(GL_VERTEX_ARRAY));
    for (GLenum Unit = 0; Unit < 4; Unit++) {
        glActiveTexture(GL_TEXTURE0 + Unit);
        EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D)) << Unit;
    }
}

TEST_F(TerrainDrawTest, BindPutsTheMapsOnTheirUnits) {
    Terrain.Bind(false, false);
    const UINT32 Expected[] = {Terrain.NormalMap,  Terrain.DetailMap,   Terrain.DetailMapN,
                               Terrain.DetailMap2, Terrain.DetailMap2N, 0};
    for (GLenum Unit = 0; Unit < 6; Unit++) {
        INT32 Bound = -1;
        glActiveTexture(GL_TEXTURE0 + Unit);
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &Bound);
        EXPECT_EQ(static_cast<UINT32>(Bound), Expected[Unit]) << Unit;
    }
    Terrain.Unbind();
    // A pass with a program of its own gets the detail's normals on unit 0 and keeps its program.
    glUseProgram(0);
    Terrain.Bind(true, true);
    INT32 Bound = -1;
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &Bound);
    EXPECT_EQ(static_cast<UINT32>(Bound), Terrain.DetailMapN);
    INT32 Program = -1;
    glGetIntegerv(GL_CURRENT_PROGRAM, &Program);
    EXPECT_EQ(Program, 0);
    Terrain.Unbind();
    EXPECT_EQ(GWorldMatrix[0], 400);
    EXPECT_EQ(GWorldMatrix[10], 20);
}

TEST_F(TerrainDrawTest, BrushShowsItsFootprintInRed) {
    WriteShaders("Plain",
                 "void main() { gl_Position = ProjectionMatrix * (ViewMatrix * gl_Vertex); gl_FrontColor = gl_Color; }",
                 "Plain", "void main() { gl_FragColor = gl_Color; }");
    const UINT32 Program = ShaderGetProgram("Plain", "Plain");
    glUseProgram(Program);
    ShaderSendViewMatrix(Program);
    ShaderSendProjectionMatrix(Program);
    ClearWindow(0, 1, 0);
    Terrain.DrawBrush({0, 0, 0}, 60, 1, false);
    const SPicture Picture = ReadWindow();
    int Red = 0;
    for (int y = 0; y < HEIGHT; y++) {
        for (int x = 0; x < WIDTH; x++) {
            const SRgb Pixel = Picture.At(x, y);
            // 60 units are about 105 pixels on ground level.
            if (std::abs(x - WIDTH / 2) > 125 || std::abs(y - HEIGHT / 2) > 125) {
                ASSERT_EQ(Pixel, (SRgb{0, 255, 0})) << x << " " << y;
            }
            Red += Pixel.R > 200;
        }
    }
    EXPECT_GT(Red, 100);
    INT32 Mode[2] = {0, 0};
    glGetIntegerv(GL_POLYGON_MODE, Mode);
    EXPECT_EQ(Mode[0], GL_FILL);
    EXPECT_FALSE(glIsEnabled(GL_POLYGON_OFFSET_FILL));
    EXPECT_FALSE(glIsEnabled(GL_COLOR_ARRAY));
    glUseProgram(0);
}

// Bullet's lines, in world space and only near the camera.
TEST_F(TerrainDrawTest, PhysicsLinesAreDrawnNearTheCamera) {
    WriteShaders("Plain",
                 "void main() { gl_Position = ProjectionMatrix * (ViewMatrix * gl_Vertex); gl_FrontColor = gl_Color; }",
                 "Plain", "void main() { gl_FragColor = gl_Color; }");
    const UINT32 Program = ShaderGetProgram("Plain", "Plain");
    glUseProgram(Program);
    ShaderSendViewMatrix(Program);
    ShaderSendProjectionMatrix(Program);
    const auto BluePixels = [] {
        const SPicture Picture = ReadWindow();
        int Count = 0;
        for (int i = 0; i < WIDTH * HEIGHT; i++) {
            Count += Picture.At(i % WIDTH, i / WIDTH) == SRgb{0, 0, 255};
        }
        return Count;
    };
    GLodCameraPos = {0, 0, 490};
    const btVector3 Left(-1, 0, 0);
    const btVector3 Blue(0, 0, 1);
    ClearWindow(0, 1, 0);
    GPhyDebugDraw.drawLine(Left, btVector3(1, 0, 0), Blue);
    // 100 world units at a distance of 300.
    EXPECT_NEAR(BluePixels(), 100 * (HEIGHT / 2) / (300 * std::tan(PI / 6)), 3);
    ClearWindow(0, 1, 0);
    GPhyDebugDraw.drawContactPoint(Left, btVector3(1, 0, 0), 0.5f, 0, Blue);
    EXPECT_NEAR(BluePixels(), 25 * (HEIGHT / 2) / (300 * std::tan(PI / 6)), 3);
    GLodCameraPos = {0, 0, 510};
    ClearWindow(0, 1, 0);
    GPhyDebugDraw.drawLine(Left, btVector3(1, 0, 0), Blue);
    EXPECT_EQ(BluePixels(), 0);
    GLodCameraPos = {};
    glUseProgram(0);
}
