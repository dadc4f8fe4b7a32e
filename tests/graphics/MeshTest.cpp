// Meshes in memory: levels of detail and rays against the plain forms, bounds, bones, copies and the store.
#include "graphics/Mesh.h"
#include "graphics/MeshLod.h"
#include "graphics/TextureStorage.h"
#include "support/GlFixture.h"
#include "support/PlainMesh.h"

namespace {

// Sheets with vertices on a coarse lattice, so that many lengths are equal, triangles that use a corner
// twice, and now and then a position that is no number.
void MakeAwkward(SMesh& Mesh, CRandom& Random) {
    const UINT32 PartCount = 1 + Random.Below(3);
    for (UINT32 i = 0; i < PartCount; ++i) {
        AddSheetPart(Mesh, 3 + Random.Below(5), Random);
        Mesh.Parts[i].LodScale = Random.Below(2) ? 1.0f : 0.5f + Random();
    }
    for (SMeshVertex& Vertex : Mesh.Vertices) {
        if (Random.Below(3)) {
            Vertex.Position = {std::floor(Vertex.Position.x), std::floor(Vertex.Position.y), 0};
        }
    }
    for (UINT32 i = 0; i + 1 < Mesh.Indices.count; i += 3) {
        if (Random.Below(20) == 0) {
            Mesh.Indices[i] = Mesh.Indices[i + 1];
        }
    }
    if (Random.Below(4) == 0) {
        Mesh.Vertices[Random.Below(Mesh.Vertices.count)].Position.x = NAN;
    }
}

TEST(MeshLod, GivesTheListsOfThePlainCollapse) {
    CRandom Random;
    for (int Round = 0; Round < 60; ++Round) {
        SMesh Mesh;
        MakeAwkward(Mesh, Random);
        GArray<SMeshPart> Parts = Mesh.Parts;
        GArray<UINT32> Lods[MESH_LOD_COUNT - 1];
        MeshBuildLods(Mesh, Lods);
        for (UINT32 Level = 1; Level < MESH_LOD_COUNT && Mesh.Indices.count >= MESH_LOD_MIN_INDICES; ++Level) {
            const std::vector<UINT32> Plain = PlainLod(Mesh, Level, MESH_LOD_SHARES[Level], Parts);
            ASSERT_EQ(std::vector<UINT32>(Lods[Level - 1].begin(), Lods[Level - 1].end()), Plain) << Round;
            for (UINT32 p = 0; p < Parts.count; ++p) {
                EXPECT_EQ(Mesh.Parts[p].IBOffset[Level], Parts[p].IBOffset[Level]) << Round;
                EXPECT_EQ(Mesh.Parts[p].TriangleCount[Level], Parts[p].TriangleCount[Level]) << Round;
            }
        }
    }
}

TEST(MeshLod, KeepsPartsInAnyOrderAndLeavesOutWhatNoneNames) {
    CRandom Random;
    SMesh Mesh;
    for (int i = 0; i < 3; ++i) {
        AddSheetPart(Mesh, 8, Random);
    }
    std::swap(Mesh.Parts[0], Mesh.Parts[2]);
    Mesh.Parts.Remove(1, 1);
    GArray<UINT32> Lods[MESH_LOD_COUNT - 1];
    MeshBuildLods(Mesh, Lods);
    for (UINT32 Level = 1; Level < MESH_LOD_COUNT; ++Level) {
        const GArray<UINT32>& List = Lods[Level - 1];
        EXPECT_EQ(Mesh.Parts[1].IBOffset[Level], 0u);
        EXPECT_EQ(Mesh.Parts[0].IBOffset[Level], 3 * Mesh.Parts[1].TriangleCount[Level]);
        EXPECT_EQ(List.count, 3 * (Mesh.Parts[0].TriangleCount[Level] + Mesh.Parts[1].TriangleCount[Level]));
        EXPECT_LE(List.count, 2 * 8 * 8 * 6 * MESH_LOD_SHARES[Level]);
        for (UINT32 i = 0; i < List.count; i += 3) {
            EXPECT_TRUE(List[i] != List[i + 1] && List[i + 1] != List[i + 2] && List[i] != List[i + 2]);
        }
    }
}

TEST(MeshTrace, FindsWhatTheWalkOverAllTrianglesFinds) {
    CRandom Random;
    SMesh Mesh;
    AddSheetPart(Mesh, 20, Random);
    AddSheetPart(Mesh, 12, Random);
    Mat4 World;
    M_Mat4Compose({2, 1, 3}, {5, -4, 1}, World, M_QuatFromEuler({0.3f, 0.7f, 0.2f}));
    int Hits = 0;
    for (int i = 0; i < 2000; ++i) {
        Vec3 From, To;
        M_Mat4MulPoint(World, {25 * Random() - 2, 25 * Random() - 2, 12 * Random() - 4}, From);
        M_Mat4MulPoint(World, {22 * Random(), 22 * Random(), 3 * Random()}, To);
        // Some run along an axis of the mesh.
        const Ray R = {From, M_Normalized(i % 7 ? To - From : Vec3{0, 0, -1})};
        const float Distance = Mesh.TraceRay(R, World);
        ASSERT_EQ(Distance, PlainTrace(Mesh, R, World)) << i;
        Hits += Distance >= 0;
    }
    EXPECT_GT(Hits, 300);
    EXPECT_LT(Hits, 1700);
}

TEST(MeshBounds, BoxAllPointsOfAllParts) {
    CRandom Random;
    SMesh Mesh;
    BBox Box;
    EXPECT_EQ(Mesh.GetBounds(Box), 0u);
    Mesh.Parts.Resize(1); // a part without points
    AddSheetPart(Mesh, 3, Random);
    AddSheetPart(Mesh, 5, Random);
    Mesh.UpdatePoints();
    Mat4 World;
    M_Mat4Compose({-1, 2, 1}, {7, 8, 9}, World, M_QuatFromEuler({1, 2, 3}));
    ASSERT_EQ(Mesh.GetBounds(Box, World), 1u);
    for (int Axis = 0; Axis < 3; ++Axis) {
        float Low = FLT_MAX, High = -FLT_MAX;
        for (const SMeshVertex& Vertex : Mesh.Vertices) {
            Vec3 p;
            M_Mat4MulPoint(World, Vertex.Position, p);
            Low = std::min(Low, p[Axis]);
            High = std::max(High, p[Axis]);
        }
        EXPECT_EQ(Box.Min[Axis], Low);
        EXPECT_EQ(Box.Max[Axis], High);
    }
}

// A skeleton of random parents, linked by hand.
void AddBones(SMesh& Mesh, CRandom& Random, UINT32 Count) {
    Mesh.Animated = 1;
    Mesh.Bones.Resize(Count);
    for (UINT32 i = 0; i < Count; ++i) {
        SBone& Bone = Mesh.Bones[i];
        Bone.Index = i;
        M_Mat4Compose({1, 1, 1}, {Random(), Random(), Random()}, Bone.Bind,
                      M_QuatFromEuler({Random(), Random(), Random()}));
        M_Mat4Inverse(Bone.Bind, Bone.InvBind);
        Bone.ToParent = Bone.Bind;
        if (i > 0) {
            Bone.Parent = &Mesh.Bones[Random.Below(i)];
            M_Mat4Mul(Bone.ToParent, Bone.Parent->InvBind, Bone.Bind);
            Bone.Next = Bone.Parent->Child;
            Bone.Parent->Child = &Bone;
        }
    }
}

// From the bone up to the root.
Mat4 PlainPose(const SBone& Bone, const Mat4& World, const Quat* Rotations) {
    Mat4 Pose = Bone.Parent ? PlainPose(*Bone.Parent, World, Rotations) : World;
    Mat4 Turn;
    M_Mat4FromQuat(Turn, Rotations[Bone.Index]);
    M_Mat4Mul(Turn, Bone.ToParent, Turn);
    M_Mat4Mul(Pose, Pose, Turn);
    return Pose;
}

using MeshStore = GlFixture;

TEST_F(MeshStore, SmallMeshesStayWholeAndIndicesBeyondTheirPartAreFatal) {
    CRandom Random;
    SMesh Mesh;
    AddSheetPart(Mesh, 4, Random); // 96 indices
    GArray<UINT32> Lods[MESH_LOD_COUNT - 1];
    MeshBuildLods(Mesh, Lods);
    EXPECT_EQ(Lods[2].count, Mesh.Indices.count);
    EXPECT_EQ(Mesh.Parts[0].TriangleCount[3], 32u);
    AddSheetPart(Mesh, 4, Random);
    Mesh.Indices[100] = 25;
    EXPECT_FATAL(MeshBuildLods(Mesh, Lods), "TriangleCount. lod . \\* 3 ==");
}

TEST_F(MeshStore, ACopyHasBonesOfItsOwnThatEvaluateAlike) {
    CRandom Random;
    SMesh Copy;
    Quat Rotations[20];
    Mat4 World;
    M_Mat4Compose({1, 2, 1}, {3, 2, 1}, World, M_QuatFromEuler({0.1f, 0.2f, 0.3f}));
    Mat4 Expected[20];
    {
        SMesh Mesh;
        AddSheetPart(Mesh, 3, Random);
        Mesh.SkinVertices.Resize(Mesh.Vertices.count);
        AddBones(Mesh, Random, 20);
        for (UINT32 i = 0; i < 20; ++i) {
            Rotations[i] = M_QuatFromEuler({Random(), Random(), Random()});
        }
        for (UINT32 i = 0; i < 20; ++i) {
            M_Mat4Mul(Expected[i], PlainPose(Mesh.Bones[i], World, Rotations), Mesh.Bones[i].InvBind);
        }
        Copy.Copy(Mesh);
    }
    Mat4 Out[20];
    Copy.Bones[0].Evaluate(Out, World, Rotations);
    for (UINT32 i = 0; i < 20; ++i) {
        for (int k = 0; k < 16; ++k) {
            EXPECT_NEAR(Out[i][k], Expected[i][k], 1e-4f) << i;
        }
    }
}

TEST_F(MeshStore, SharesByNameAndCountsOwners) {
    WriteTga("Data/Textures/a.tga", 1, 1, 3, {1, 2, 3});
    CRandom Random;
    SMesh Source;
    AddSheetPart(Source, 6, Random);
    Source.AddTexture(0, std::string(100, 'n').c_str(), TextureLoad("Data/Textures/a.tga"), 1);
    MeshAdd("[one]", Source);
    SMesh* Stored = MeshLoad("[one]");
    EXPECT_NE(Stored, &Source);
    EXPECT_EQ(Stored->Name, GString("[one]"));
    EXPECT_EQ(std::strlen(Stored->Parts[0].Textures[0].Name), 63u);
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1); // the process that is expected to end takes nothing down
    EXPECT_FATAL(MeshAdd("[one]", Source), "Mesh already exists at \"\\[one\\]\"");
    EXPECT_FATAL(MeshRelease(&Source), "Mesh 0x[0-9a-f]{8} with name:  is not found in the storage");
    EXPECT_FATAL(MeshLoad("Data/Models/No.mdd"), "Mesh failed to load: Data/Models/No.mdd");
    Source.Clear();
    MeshRelease(Stored);
    EXPECT_NE(GTextureByName.root, nullptr);
    MeshRelease(Stored);
    EXPECT_EQ(GTextureByName.root, nullptr);
    EXPECT_EQ(GMeshByName.root, nullptr);
    EXPECT_EQ(GMeshByPtr.root, nullptr);
}

} // namespace
