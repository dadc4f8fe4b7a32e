#include <GL/glew.h>

#include "terrain/TerrainGlFixture.h"

namespace {

class TerrainLoadTest : public TerrainGlFixture {
protected:
    void ExpectEmpty() const {
        EXPECT_EQ(Terrain.Width, 0u);
        EXPECT_EQ(Terrain.Height, 0u);
        EXPECT_EQ(Terrain.MinPartSize, 0u);
        EXPECT_EQ(Terrain.Heights, nullptr);
        EXPECT_EQ(Terrain.Leaves, nullptr);
        EXPECT_EQ(Terrain.Root, nullptr);
        EXPECT_EQ(Terrain.Body, nullptr);
        EXPECT_EQ(Terrain.NormalMap | Terrain.DetailMap | Terrain.VertexBuffer | Terrain.IndexBuffer, 0u);
        EXPECT_EQ(Terrain.IndexCount[0], 0u);
        EXPECT_TRUE(Terrain.FileName.Empty());
    }

    // Everything that a level does with its terrain.
    void UseAll() {
        Terrain.RebuildTree();
        Terrain.Raise({10, 20, 0}, 300, 1, 20, true);
        Terrain.Flatten({10, 20, 0}, 300, 1, 0.5f, false);
        Terrain.RebuildGeometry();
        Terrain.TraceRay({{0, 0, 500}, {0, 0, -1}}, 1000);
        Terrain.DrawBrush({0, 0, 0}, 100, 1, false);
        Terrain.Visible(true);
        Terrain.SetLods({0, 0, 0}, 100);
        Terrain.Draw();
        btRigidBody* Ball = PhyAddCapsuleBody(10, 0, 0, 0, 100, true);
        PhyStep(1.0f / 60);
        PhyRemoveBody(Ball);
    }

    static INT32 BufferSize(UINT32 Target, UINT32 Buffer) {
        INT32 Bytes = 0;
        glBindBuffer(Target, Buffer);
        glGetBufferParameteriv(Target, GL_BUFFER_SIZE, &Bytes);
        glBindBuffer(Target, 0);
        return Bytes;
    }
};

struct SSize {
    UINT32 Width, Height;
    UINT32 Side; // what is used of it
};

class TerrainSizeTest : public TerrainLoadTest, public ::testing::WithParamInterface<SSize> {};

std::string SizeText(UINT32 Width, UINT32 Height) {
    return std::to_string(Width) + " x " + std::to_string(Height);
}

} // namespace

TEST_P(TerrainSizeTest, LoadsWhatFitsAndNeverCrashes) {
    const SSize& Size = GetParam();
    WritePicture(Size.Width, Size.Height);
    std::string Expected;
    if (Size.Side == 0) {
        Expected = "Terrain picture \"h.tga\" is " + SizeText(Size.Width, Size.Height) + ", the least is 33 x 33\n";
    } else if (Size.Width != Size.Side || Size.Height != Size.Side) {
        Expected = "Terrain picture \"h.tga\" is " + SizeText(Size.Width, Size.Height) + ", only " +
                   SizeText(Size.Side, Size.Side) + " of it can be used\n";
    }
    EXPECT_EQ(Load("t.ter"), Expected);
    EXPECT_EQ(Terrain.Width, Size.Side);
    EXPECT_EQ(Terrain.Height, Size.Side);
    EXPECT_EQ(Terrain.MinPartSize, Size.Side / 16);
    EXPECT_EQ(Terrain.LeafColumns() * Terrain.LeafRows(), Size.Side ? 256u : 0u);
    for (UINT32 i = 0; i < Size.Side * Size.Side; i += 17) {
        ASSERT_NEAR(Terrain.Heights[i], Sample(i % Size.Side, i / Size.Side) / 255.0, 1e-6);
    }
    UseAll();
    Terrain.Free();
    ExpectEmpty();
    Terrain.Free();
    UseAll();
}

INSTANTIATE_TEST_SUITE_P(Sizes, TerrainSizeTest,
                         ::testing::Values(SSize{1, 1, 0}, SSize{5, 3, 0}, SSize{16, 16, 0}, SSize{17, 17, 0},
                                           SSize{33, 32, 0}, SSize{33, 33, 33}, SSize{64, 64, 33}, SSize{65, 65, 65},
                                           SSize{513, 40, 33}, SSize{40, 513, 33}, SSize{257, 257, 257},
                                           SSize{300, 300, 257}, SSize{513, 513, 513}, SSize{4097, 2050, 2049}));

TEST_F(TerrainLoadTest, FillsEverything) {
    WritePicture(257, 257);
    Terrain.Extents = {1000, 1000, 100};
    EXPECT_EQ(Load("t.ter"), "");
    EXPECT_EQ(Terrain.MinPartSize, 16u);
    EXPECT_TRUE(Terrain.FileName == "t.ter");
    ASSERT_NE(Terrain.Body, nullptr);
    EXPECT_EQ(GPhyWorld->getNumCollisionObjects(), 1);
    EXPECT_EQ(Terrain.DetailMap2N, GTextureByName.Find("d.tga")->value->Id);
    EXPECT_EQ(Terrain.LightMap, 0u);
    EXPECT_EQ(BufferSize(GL_ARRAY_BUFFER, Terrain.VertexBuffer), 257 * 257 * 20);
    EXPECT_EQ(BufferSize(GL_ELEMENT_ARRAY_BUFFER, Terrain.IndexBuffer),
              static_cast<INT32>(4 * (Terrain.IndexOffset[4 * TERRAIN_MASKS] + 6)));

    std::vector<UINT32> Normals(256 * 256);
    Terrain.FillNormals(Normals.data());
    const std::vector<UINT8> Bytes = ReadTexture(Terrain.NormalMap, 256, 256);
    EXPECT_EQ(std::memcmp(Bytes.data(), Normals.data(), Bytes.size()), 0);
}

TEST_F(TerrainLoadTest, LoadingAgainReplacesEverything) {
    WritePicture(257, 257);
    Load("t.ter");
    WritePicture(65, 65);
    EXPECT_EQ(Load("t.ter"), "");
    EXPECT_EQ(Terrain.Width, 65u);
    EXPECT_EQ(GPhyWorld->getNumCollisionObjects(), 1);
    EXPECT_EQ(GTextureByName.Find("a.tga")->value->RefCount, 1);
    EXPECT_EQ(Load("missing.ter"), "");
    ExpectEmpty();
    EXPECT_EQ(GPhyWorld->getNumCollisionObjects(), 0);
}

TEST_F(TerrainLoadTest, FilesThatCannotBeOpenedLeaveItEmptyWithoutALine) {
    EXPECT_EQ(Load("missing.ter"), "");
    EXPECT_EQ(Load(""), "");
    EXPECT_EQ(Load(nullptr), "");
    ExpectEmpty();
}

TEST_F(TerrainLoadTest, BadFilesAndPicturesAreToldAndLeaveItEmpty) {
    WriteText("few.ter", "h.tga a.tga\n");
    EXPECT_EQ(Load("few.ter"), "Terrain file \"few.ter\" has 2 words, it needs 5\n");
    WriteText("t.ter", "missing.tga a.tga b.tga c.tga d.tga");
    EXPECT_EQ(Load("t.ter"), "Texture \"missing.tga\" loading failed..\n");
    WriteText("broken.png", "\x89PNG and no more");
    WriteText("t.ter", "broken.png a.tga b.tga c.tga d.tga");
    EXPECT_EQ(Load("t.ter"), "Texture \"broken.png\" loading failed..\n");
    // A folder instead of a picture.
    WriteText("t.ter", "Data a.tga b.tga c.tga d.tga");
    EXPECT_EQ(Load("t.ter"), "Texture \"Data\" loading failed..\n");
    ExpectEmpty();
}

TEST_F(TerrainLoadTest, AFolderInsteadOfAFileEnds) {
    Load("Data");
    ExpectEmpty();
}

TEST_F(TerrainLoadTest, ExtentsThatAreNoSizeAreToldAndLeaveItEmpty) {
    WritePicture(33, 33);
    for (const Vec3& Extents : {Vec3{0, 100, 10}, Vec3{100, -1, 10}, Vec3{100, 100, -1}, Vec3{NAN, 100, 10},
                                Vec3{100, 3.4028235e38f, 10}, Vec3{0, 0, 0}}) {
        Terrain.Extents = Extents;
        EXPECT_EQ(Load("t.ter").rfind("Terrain \"t.ter\" cannot have the size ", 0), 0u);
        ExpectEmpty();
        UseAll();
    }
    Terrain.Extents = {100, 100, 0};
    EXPECT_EQ(Load("t.ter"), "");
    EXPECT_EQ(Terrain.Width, 33u);
}

TEST_F(TerrainLoadTest, MissingDetailTexturesAreToldAndGivenBack) {
    WritePicture(33, 33);
    WriteText("t.ter", "h.tga x y z d.tga");
    for (int i = 0; i < 2; i++) {
        EXPECT_EQ(Load("t.ter"), "Texture \"x\" loading failed..\nTexture \"y\" loading failed..\n"
                                 "Texture \"z\" loading failed..\n");
        EXPECT_EQ(Terrain.DetailMap, 0u);
        EXPECT_NE(Terrain.DetailMap2N, 0u);
        Terrain.Free();
    }
}

TEST_F(TerrainLoadTest, PointsBeyondTheGridStopTheProgram) {
    MakeGround(Terrain, 33, Hills);
    EXPECT_FATAL(Terrain.GetPoint(33, 0), "x < Width && y < Height");
    EXPECT_FATAL(Terrain.GetPoint(0, 33), "x < Width && y < Height");
    EXPECT_FATAL(STerrain().GetPoint(0, 0), "x < Width && y < Height");
}
