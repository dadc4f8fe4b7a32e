// Terrains from files, and their picture.
#include "foundation/Screen.h"
#include "graphics/ShaderLib.h"
#include "graphics/TextureStorage.h"
#include "physics/Physics.h"
#include "support/GlFixture.h"
#include "terrain/TerrainFixture.h"

#include <GL/glew.h>
#include <btBulletDynamicsCommon.h>

namespace {

class TerrainLoadTest : public GlFixture {
protected:
    void Start() override {
        PhyInit();
        ShaderLibInit();
        WriteTga("a.tga", 1, 1, 1, {200});
    }
    void Finish() override {
        Terrain.Free();
        EXPECT_EQ(GTextureByName.Find("a.tga"), nullptr);
        EXPECT_EQ(GPhyWorld->getNumCollisionObjects(), 0);
        ShaderLibFree();
        PhyFree();
    }

    static UINT8 Sample(UINT32 x, UINT32 y) { return static_cast<UINT8>(255 * Hills(x, y)); }

    // What the load of a terrain file with this text prints.
    std::string Load(const std::string& Text) {
        WriteText("t.ter", Text);
        return PrintedBy([&] { Terrain.Load("t.ter"); });
    }
    std::string LoadPicture(UINT32 Width, UINT32 Height) {
        std::vector<UINT8> Pixels(std::size_t{Width} * Height);
        for (UINT32 i = 0; i < Pixels.size(); i++) {
            Pixels[i] = Sample(i % Width, i / Width);
        }
        WriteTga("h.tga", static_cast<int>(Width), static_cast<int>(Height), 1, Pixels);
        return Load("h.tga\na.tga\na.tga\na.tga a.tga\n");
    }

    // The terrain has this many samples along a side, and everything that a level does with it can be done.
    void ExpectUsable(UINT32 Side) {
        EXPECT_TRUE(Terrain.Width == Side && Terrain.Height == Side);
        EXPECT_EQ(Terrain.LeafColumns() * Terrain.LeafRows(), Side ? 256u : 0u);
        EXPECT_EQ(Terrain.Heights && Terrain.Body && Terrain.VertexBuffer && Terrain.NormalMap, Side > 0);
        Terrain.Raise({10, 20, 0}, 300, 1, 20, true);
        Terrain.Flatten({10, 20, 0}, 300, 1, 0.5f, false);
        Terrain.RebuildTree();
        Terrain.RebuildGeometry();
        Terrain.DrawBrush({0, 0, 0}, 100, 1, false);
        EXPECT_EQ(Terrain.TraceRay({{0, 0, 500}, {0, 0, -1}}, 1000) > 0, Side > 0);
        Terrain.Draw();
        PhyStep(1.0f / 60);
    }

    STerrain Terrain;
};

TEST_F(TerrainLoadTest, EverySizeLoadsWhatFitsAndStaysCallable) {
    const UINT32 Sizes[][3] = {{1, 1, 0},     {5, 3, 0},     {33, 32, 0},     {33, 33, 33},       {64, 64, 33},
                               {513, 40, 33}, {40, 513, 33}, {257, 257, 257}, {4097, 2050, 2049}, {65, 65, 65}};
    for (const auto& [Width, Height, Side] : Sizes) {
        const auto Text = [](UINT32 w, UINT32 h) { return std::to_string(w) + " x " + std::to_string(h); };
        const std::string Rest =
            Side ? ", only " + Text(Side, Side) + " of it can be used\n" : ", the least is 33 x 33\n";
        EXPECT_EQ(LoadPicture(Width, Height),
                  Width == Side && Height == Side ? "" : "Terrain picture \"h.tga\" is " + Text(Width, Height) + Rest);
        for (UINT32 i = 0; i < Side * Side; i += 17) {
            ASSERT_NEAR(Terrain.Heights[i], Sample(i % Side, i / Side) / 255.0, 1e-6);
        }
        ExpectUsable(Side);
    }
    std::vector<UINT32> Normals(64 * 64);
    Terrain.FillNormals(Normals.data());
    EXPECT_EQ(std::memcmp(ReadTexture(Terrain.NormalMap, 64, 64).data(), Normals.data(), 4 * 64 * 64), 0);
    Terrain.Load("missing.ter");
    ExpectUsable(0);
}

TEST_F(TerrainLoadTest, BadInputIsToldAndLeavesItEmptyAndCallable) {
    const std::string Long(1 << 20, 'x');
    WriteText("broken.png", "\x89PNG and no more");
    const std::pair<std::string, std::string> Files[] = {
        {"", "Terrain file \"t.ter\" has 0 words, it needs 5\n"},
        {"h a\n\t", "Terrain file \"t.ter\" has 2 words, it needs 5\n"},
        {"h a " + Long + " c d", "Terrain file \"t.ter\": word 3 is longer than 4095 characters\n"},
        {"missing.tga a b c d", "Texture \"missing.tga\" loading failed..\n"},
        {"broken.png a b c d", "Texture \"broken.png\" loading failed..\n"},
        {"Data a b c d", "Texture \"Data\" loading failed..\n"}};
    for (const auto& [Text, Line] : Files) {
        EXPECT_EQ(Load(Text), Line);
        ExpectUsable(0);
    }
    for (const Vec3& Extents : {Vec3{0, 9, 9}, Vec3{9, -1, 9}, Vec3{9, 9, -1}, Vec3{NAN, 9, 9}, Vec3{9, 3e38f, 9}}) {
        Terrain.Extents = Extents;
        EXPECT_EQ(LoadPicture(33, 33).rfind("Terrain \"t.ter\" cannot have the size ", 0), 0u);
        ExpectUsable(0);
    }
    Terrain.Extents = {100, 100, 10};
    EXPECT_EQ(Load("h.tga x a.tga y a.tga"), "Texture \"x\" loading failed..\nTexture \"y\" loading failed..\n");
    ExpectUsable(33);
}

TEST_F(TerrainLoadTest, DrawsTheGroundWhereItIsAndWithoutGaps) {
    // What the ground shows is its texture coordinate.
    WriteShaders("Terrain",
                 "uniform mat4 WorldMatrix; void main() { gl_TexCoord[0] = gl_MultiTexCoord0;"
                 "gl_Position = ProjectionMatrix * (ViewMatrix * (WorldMatrix * gl_Vertex)); }",
                 "Terrain", "void main() { gl_FragColor = vec4(0.0, gl_TexCoord[0].xy, 1.0); }");
    Terrain.Extents = {400, 400, 20};
    ASSERT_EQ(LoadPicture(257, 257), "");
    // From above the middle; the ground is larger than the picture.
    GCamera = {{0, 0, 300}, {0, 0, 0}, {0, 1, 0}, 60, 1.0f * WINDOW_WIDTH / WINDOW_HEIGHT, 1, 1000};
    M_CameraLookAt(GViewMatrix);
    M_Mat4Perspective(GProjectionMatrix, 60 * 3.14159265f / 180, GCamera.Aspect, GCamera.Near, GCamera.Far);
    Terrain.Visible(false);
    for (const float Range : {2000.0f, 900.0f, 700.0f, 0.0f}) {
        ClearWindow(1, 0, 0);
        Terrain.SetLods({-300, -200, 0}, Range);
        Terrain.Bind(false, false);
        Terrain.DrawLeaves();
        Terrain.Unbind();
        const SPicture Picture = ReadWindow();
        // The last level has no triangles.
        const int Background = Range > 0 ? 0 : 255;
        for (std::size_t i = 0; i < Picture.Rgb.size(); i += 3) {
            ASSERT_EQ(Picture.Rgb[i], Background) << Range;
        }
    }
    Terrain.Draw();
    for (int i = 0; i < 9; i++) {
        GMousePos = {100.5f + 400.0f * static_cast<float>(i % 3), 80.5f + 200.0f * static_cast<float>(i / 3)};
        Ray Pick;
        M_CameraPickRay(Pick);
        const Vec3 Ground = Pick.Origin + Pick.Dir * Terrain.TraceRay(Pick, 2000);
        const SRgb Found = ReadWindow().At(static_cast<int>(GMousePos.x), static_cast<int>(GMousePos.y));
        // Coarser levels of detail lie a little above or below what the ray hits.
        EXPECT_NEAR(Found.G, (Ground.x / 800 + 0.5f) * 257 / 256 * 255, 4);
        EXPECT_NEAR(Found.B, (Ground.y / 800 + 0.5f) * 257 / 256 * 255, 4);
    }
}

} // namespace
