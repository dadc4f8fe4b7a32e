#include "graphics/MeshFile.h"

#include "graphics/Mesh.h"
#include "graphics/TextureStorage.h"
#include "support/GlFixture.h"

#include <bit>

namespace {

// Bytes of a binary skinned mesh, most significant byte first. Each float is one quarter more than that before it.
struct SFileBytes : std::string {
    float Last = 0;

    void Words(std::initializer_list<UINT32> Values) {
        for (const UINT32 Value : Values) {
            append({static_cast<char>(Value >> 24), static_cast<char>(Value >> 16), static_cast<char>(Value >> 8),
                    static_cast<char>(Value)});
        }
    }
    void Text(const std::string& Value) {
        Words({static_cast<UINT32>(Value.size())});
        append(Value);
    }
    void Floats(int Count) {
        while (Count-- > 0) {
            Words({std::bit_cast<UINT32>(Last += 0.25f)});
        }
    }
};

using CBones = std::vector<std::pair<std::string, std::string>>; // name and parent's name
const CBones FAMILY = {{"hip", ""}, {"spine", "hip"}, {"head", "spine"}, {"leg", "hip"}};

constexpr std::size_t VERTEX_BYTES = 72;
constexpr std::size_t INDICES_AT = 12 + 7 * VERTEX_BYTES;
constexpr std::size_t BOARD_AT = INDICES_AT + 9 * 4 + 4 + 4 + 5; // the numbers of the first part

SFileBytes SkinnedFile(const CBones& Bones = FAMILY) {
    SFileBytes Out;
    Out.append("WLAM");
    Out.Words({7});
    for (int Vertex = 0; Vertex < 7; ++Vertex) {
        Out.Floats(12);
        Out.Words({0x01020304});
        Out.Floats(4);
        Out.append({0, 3, 2, 1});
    }
    Out.Words({9, 0, 1, 2, 2, 1, 3, 0, 2, 1, 2});
    Out.Text("board");
    Out.Words({0, 0, 4, 2});
    Out.Text("body");
    Out.Words({4, 6, 3, 1});
    Out.Words({static_cast<UINT32>(Bones.size())});
    for (const auto& [Name, Parent] : Bones) {
        Out.Text(Name);
        Out.Text(Parent);
        Out.Floats(16);
    }
    return Out;
}

struct SRead {
    SMesh Mesh;
    SMeshPartTable Parts;
    ESkinnedFile Result;

    explicit SRead(const std::string& File) {
        GArray<UINT8> Bytes;
        Bytes.Resize(static_cast<UINT32>(File.size()));
        std::copy(File.begin(), File.end(), Bytes.begin());
        PrintedBy([&] { Result = MeshReadSkinned(Parts, Mesh, Bytes, "test"); });
    }
};

TEST(MeshSkinned, EveryFieldArrivesInTheOrderOfTheFile) {
    SRead Read(SkinnedFile() + "more");
    ASSERT_EQ(Read.Result, ESkinnedFile::Good);
    const SMesh& Mesh = Read.Mesh;
    float Expected = 0;
    for (UINT32 i = 0; i < 7; ++i) {
        float Fields[16]; // of both records
        std::memcpy(Fields, &Mesh.Vertices[i], 48);
        std::memcpy(Fields + 12, Mesh.SkinVertices[i].Weights, 16);
        for (const float Field : Fields) {
            ASSERT_EQ(Field, Expected += 0.25f) << "vertex " << i;
        }
        EXPECT_EQ(Mesh.Vertices[i].Bone, 16909060);
        EXPECT_EQ(std::memcmp(Mesh.SkinVertices[i].BoneIndices, "\0\3\2\1", 4), 0);
    }
    EXPECT_EQ(std::vector(Mesh.Indices.begin(), Mesh.Indices.end()), (std::vector<UINT32>{0, 1, 2, 2, 1, 3, 0, 2, 1}));
    const SMeshFilePart& Body = Read.Parts["body"];
    EXPECT_EQ((std::vector{Body.VertexStart, Body.IndexStart, Body.VertexCount, Body.TriangleCount}),
              (std::vector<UINT32>{4, 6, 3, 1}));
    for (const SBone& Bone : Mesh.Bones) {
        for (const float Element : Bone.Bind.M) {
            EXPECT_EQ(Element, Expected += 0.25f);
        }
    }
    const SBone* Bones = Mesh.Bones.Data;
    EXPECT_EQ(Bones[0].Child, Bones + 1);
    EXPECT_EQ(Bones[1].Next, Bones + 3) << "siblings in file order";
    EXPECT_EQ(Bones[2].Parent, Bones + 1);
}

TEST(MeshSkinned, WhatWouldReadOutOfRangeIsRefused) {
    const std::string Whole = SkinnedFile();
    for (std::size_t Size = 0; Size < Whole.size(); ++Size) {
        ASSERT_EQ(SRead(Whole.substr(0, Size)).Result, ESkinnedFile::Damaged) << Size << " of " << Whole.size();
    }
    // The last byte of a number, and the smallest value there that is too much; the one below it is good.
    for (const auto& [At, Bad] :
         {std::pair<std::size_t, char>{BOARD_AT + 3, 4}, // first vertex, of 7 with 4 in the part
          {BOARD_AT + 7, 4},                             // first index, of 9
          {BOARD_AT + 11, 8},                            // vertices
          {BOARD_AT + 15, 4},                            // triangles
          {INDICES_AT + 3, 4},                           // index in a part of four
          {8 + VERTEX_BYTES - 4, 4}}) {                  // bone
        std::string File = Whole;
        File[At] = Bad;
        EXPECT_EQ(SRead(File).Result, ESkinnedFile::Damaged) << At;
        File[At] = static_cast<char>(Bad - 1);
        EXPECT_EQ(SRead(File).Result, ESkinnedFile::Good) << At;
    }
    CBones Bones = FAMILY;
    Bones.resize(64, {"toe", "leg"});
    EXPECT_EQ(SRead(SkinnedFile(Bones)).Result, ESkinnedFile::Good);
    Bones.resize(65, {"toe", "leg"});
    EXPECT_EQ(SRead(SkinnedFile(Bones)).Result, ESkinnedFile::Damaged);
}

class MeshFileTest : public GlFixture {
protected:
    static constexpr const char* MDD = "Data/Models/Test.mdd";

    void Start() override {
        WriteText("a.obj", "v 1 0 0\nv 2 0 0\nv 1 3 0\nvt 0 0\nvt 1 0\nvt 0 1\nvn 0 0 1\nf 1/1/1 2/2/1 3/3/1\n");
        WriteText("bare.obj", "v 0 0 0\nv 1 0 0\nv 3 1 0\nv 0 1 2\nf 1 2 3\nf 1 3 4\n");
    }

    // What is said on standard output; Result is that of the load.
    std::string Load(const std::string& Descriptor) {
        WriteText(MDD, Descriptor);
        return PrintedBy([&] { Result = MeshLoadDescriptor(MDD, Mesh); });
    }

    SMesh Mesh;
    INT32 Result = 0;
};

TEST_F(MeshFileTest, EachModelIsAPartWithItsSlots) {
    WriteTga("Data/Textures/Red.tga", 1, 1, 3, {255, 0, 0});
    EXPECT_EQ(Load("\n \n model vs=V0  ps=P0 ps=P1 file=a.obj\t\r\ntexture name=Diffuse\n\n\tanother line=1\n"
                   "texture type=normalmap file= Data/Textures/Red.tga name=Normal \nmodel file=bare.obj"),
              "");
    ASSERT_EQ(Mesh.GetPartCount(), 2u);
    const SMeshPart& First = Mesh.Parts[0];
    EXPECT_EQ(First.PS, "P1");
    EXPECT_EQ(First.VS, "V0");
    ASSERT_EQ(First.Textures.count, 2u);
    EXPECT_STREQ(First.Textures[0].Name, "Diffuse");
    EXPECT_TRUE(!First.Textures[0].Texture && !First.Textures[0].Owned);
    EXPECT_TRUE(First.Textures[1].Texture && First.Textures[1].Owned);
    EXPECT_EQ(Mesh.Vertices[0].Normal.z, 1);
    EXPECT_EQ(std::fabs(Mesh.Vertices[0].Tangent.y), 1) << "along V";
    const SMeshPart& Second = Mesh.Parts[1];
    EXPECT_EQ(Second.VertexStart, First.VertexCount);
    EXPECT_EQ(Second.TriangleCount[0], 2u);
    EXPECT_LT(Mesh.Indices[Second.IBOffset[0]], Second.VertexCount);
    EXPECT_EQ(Mesh.Vertices[Second.VertexStart].UV.x, 0) << "a model without UVs";
}

TEST_F(MeshFileTest, WhatCannotBeLoadedIsLeftOutOrRefused) {
    WriteText("lines.obj", "v 1 0 0\nv 2 0 0\nv 1 3 0\nl 1 2\nl 2 3\n");
    WriteText("two.mtl", "newmtl a\nnewmtl b\n");
    WriteText("two.obj", "mtllib two.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl a\nf 1 2 3\nusemtl b\nf 1 3 2\n");
    WriteText("magic.bin", "WLAN");
    EXPECT_EQ(Load("model file=two.obj\nmodel file=missing.obj\nmodel file=a.obj\nmodel file=lines.obj\nmodel\n"),
              "two.obj holds 2 meshes; a model is one mesh of one material\nFailed to load mesh: two.obj\n"
              "Failed to load mesh: missing.obj\nFailed to load mesh: lines.obj\nFailed to load mesh: \n");
    EXPECT_EQ(Result, 1);
    EXPECT_EQ(Mesh.GetPartCount(), 1u);
    for (const char* Text : {"", "model file=missing.obj\n", "texture file=a.obj\nmodel file=a.obj\n",
                             "animmesh=missing.bin\nmodel file=a\n", "animmesh=magic.bin\nmodel file=a\n"}) {
        Load(Text);
        EXPECT_EQ(Result, 0) << Text;
    }
}

TEST_F(MeshFileTest, ADescriptorLinksPartsOfASkinnedFile) {
    WriteText("rider.bin", SkinnedFile());
    WriteText("orphan.bin", SkinnedFile({{"child", "hip"}, {"hip", ""}}));
    EXPECT_EQ(Load("animmesh=rider.bin and more\nmodel file=body\nmodel file=board\n"), "");
    ASSERT_EQ(Mesh.GetPartCount(), 2u);
    EXPECT_EQ(Mesh.Parts[0].IBOffset[0], 6u);
    EXPECT_EQ(Mesh.Parts[0].Points[0], Mesh.Vertices[4].Position);
    WriteText(MDD, "animmesh=rider.bin\nmodel file=sword\n");
    EXPECT_FATAL(MeshLoadDescriptor(MDD, Mesh), "Animated Mesh Loader: Could not link parts by names...\n");
    WriteText(MDD, "animmesh=orphan.bin\nmodel file=body\n");
    EXPECT_FATAL(MeshLoadDescriptor(MDD, Mesh),
                 "Mesh Loader: Could not link bones, file orphan.bin is probably damaged\n");
}

} // namespace
