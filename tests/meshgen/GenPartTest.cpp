// A growing part: shapes against closed forms, welding and grouping against the plain loops, normals on known solids.
#include "meshgen/GenPart.h"
#include "support/PlainWeld.h"

#include <cstring>
#include <gtest/gtest.h>
#include <random>

namespace {

Vec3 FaceNormal(const SGenPart& Part, UINT32 First) {
    const auto p = [&](UINT32 k) { return Part.Vertices[Part.Indices[First + k]].Position; };
    return M_Normalized(M_Cross(p(1) - p(0), p(2) - p(0)));
}

TEST(GenPart, ATubeWrapsItsTextureOnceAndFacesOutClockwise) {
    SGenPart Tube;
    Tube.AddTube({1, 2, 3, 2}, Quat(), {1, 2, 7, 1}, Quat(), 6, 4);
    ASSERT_EQ(Tube.Vertices.count, 96u);
    ASSERT_EQ(Tube.Indices.count, 144u);
    for (const SMeshVertex& Vertex : Tube.Vertices) {
        const float v = (Vertex.Position.z - 3) / 4;
        EXPECT_NEAR(Vertex.UV.y, v, 1e-5f);
        const float dx = Vertex.Position.x - 1;
        const float dy = Vertex.Position.y - 2;
        EXPECT_NEAR(std::hypot(dx, dy), 2 - v, 1e-5f);
        EXPECT_NEAR(std::cos(6.2831853f * Vertex.UV.x) * (2 - v), dx, 1e-4f);
        EXPECT_EQ(Vertex.Bone, -1);
    }
    for (UINT32 i = 0; i < Tube.Indices.count; i += 3) {
        const Vec3 Out =
            Tube.Vertices[Tube.Indices[i]].Position - Vec3{1, 2, Tube.Vertices[Tube.Indices[i]].Position.z};
        EXPECT_LT(M_Dot(FaceNormal(Tube, i), Out), 0);
    }
}

TEST(GenPart, CapsAndCardsHaveTheirCornersAndNormals) {
    SGenPart Cap;
    Cap.AddCap({0, 0, 5, 2}, Quat(), 5);
    EXPECT_EQ(Cap.Vertices.count, 6u);
    EXPECT_EQ(Cap.Indices.count, 15u);
    Cap.ComputeNormals();
    for (const SMeshVertex& Vertex : Cap.Vertices) {
        EXPECT_NEAR(Vertex.Normal.z, 1, 1e-5f);
    }
    SGenPart Card;
    Card.AddLeaf({0, 0, 0}, {0, 1, 0}, {0, 0, 1}, 1, 3);
    Card.Weld(true);
    EXPECT_EQ(Card.Vertices.count, 8u) << "both sides keep their corners";
    Card.ComputeNormals();
    for (const SMeshVertex& Vertex : Card.Vertices) {
        EXPECT_NEAR(std::fabs(Vertex.Normal.z), 1, 1e-5f);
        EXPECT_NEAR(std::fabs(Vertex.Position.y), 3, 1e-5f);
        EXPECT_NEAR(Vertex.Tangent.y, 1, 1e-5f) << "along V";
    }
    Card.Unweld();
    EXPECT_EQ(Card.Vertices.count, Card.Indices.count);
}

TEST(GenPart, SeamsAreSmoothAndTrianglesWithoutAreaCountForNothing) {
    SGenPart Tube;
    Tube.AddTube({0, 0, 0, 1}, Quat(), {0, 0, 4, 1}, Quat(), 16, 2);
    Tube.Weld(true);
    EXPECT_EQ(Tube.Vertices.count, 17u * 3);
    Tube.Indices.Add(0);
    Tube.Indices.Add(0);
    Tube.Indices.Add(1);
    Tube.ComputeNormals();
    for (const SMeshVertex& Vertex : Tube.Vertices) {
        // Every triangle weighs the same, so an end ring, where two meet on one side and one on the other, leans.
        const float Lean = Vertex.Position.z == 2 ? 1e-3f : 0.08f;
        EXPECT_NEAR(Vertex.Normal.x, Vertex.Position.x, Lean);
        EXPECT_NEAR(Vertex.Normal.y, Vertex.Position.y, Lean);
        EXPECT_NEAR(Vertex.Tangent.z, 1, 1e-4f);
    }
}

TEST(GenPart, WeldsAndGroupsAsThePlainLoopsDo) {
    for (unsigned Seed = 0; Seed < 40; ++Seed) {
        std::mt19937 Random(Seed);
        const auto Below = [&](UINT32 End) { return static_cast<UINT32>(Random() % End); };
        SGenPart Plain;
        AddTangle(Plain, 16, Below);
        SGenPart Fast = Plain;
        GArray<GArray<UINT32>> Groups;
        Fast.GroupVertices(Groups);
        const auto Expected = PlainGroups(Plain);
        for (UINT32 i = 0; i < Groups.count; ++i) {
            ASSERT_EQ(std::vector<UINT32>(Groups[i].begin(), Groups[i].end()), Expected[i]) << Seed;
        }
        const bool CheckUV = Seed % 2 != 0;
        PlainWeld(Plain, CheckUV);
        Fast.Weld(CheckUV);
        ASSERT_LT(Plain.Vertices.count, Expected.size());
        ASSERT_EQ(Fast.Vertices.count, Plain.Vertices.count) << Seed;
        ASSERT_EQ(std::memcmp(Fast.Vertices.Data, Plain.Vertices.Data, Plain.Vertices.count * sizeof(SMeshVertex)), 0);
        ASSERT_EQ(std::memcmp(Fast.Indices.Data, Plain.Indices.Data, Plain.Indices.count * sizeof(UINT32)), 0) << Seed;
    }
}

} // namespace
