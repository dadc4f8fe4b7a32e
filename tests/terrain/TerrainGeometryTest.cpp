#include <vector>

#include "scene/DrawHelpers.h"
#include "terrain/TerrainFixture.h"

namespace {

struct SNormal {
    double x, y, z;
};

SNormal Unpack(UINT32 Color) {
    const auto Component = [&](int Shift) { return (Color >> Shift & 255) / 255.0 * 2 - 1; };
    return {Component(0), Component(8), Component(16)};
}

} // namespace

TEST(TerrainGeometryTest, PointsLieOnTheGridOfTheBox) {
    STerrain Terrain;
    Terrain.Position = {10, -20, 5};
    Terrain.Extents = {330, 660, 40};
    MakeGround(Terrain, 33, [](UINT32 x, UINT32) { return static_cast<float>(x) / 32; });
    EXPECT_EQ(Terrain.GetPoint(0, 0), (Vec3{-320, -680, 5}));
    const Vec3 Last = Terrain.GetPoint(32, 16);
    // 20 world units a cell in X and 40 in Y; the last sample lies one cell short of the edge.
    EXPECT_NEAR(Last.x, 340 - 20, 1e-3f);
    EXPECT_NEAR(Last.y, -680 + 16 * 40, 1e-3f);
    EXPECT_NEAR(Last.z, 45, 1e-4f);
}

TEST(TerrainGeometryTest, VerticesAreThePointsInUnitSpace) {
    STerrain Terrain;
    MakeGround(Terrain, 65, Rough);
    std::vector<SVertex20> Vertices(65 * 65);
    Terrain.FillVertices(Vertices.data());
    for (UINT32 i = 0; i < Vertices.size(); i++) {
        const Vec3 World = Vertices[i].Pos * Terrain.Extents;
        const Vec3 Point = Terrain.GetPoint(i % 65, i / 65);
        ASSERT_LT(M_Length(World - Point), 1e-3f) << i;
        ASSERT_NEAR(Vertices[i].Tex.x, static_cast<float>(i % 65) / 64, 1e-6f);
        ASSERT_NEAR(Vertices[i].Tex.y, static_cast<float>(i / 65) / 64, 1e-6f);
    }
}

TEST(TerrainGeometryTest, NormalsOfAPlaneAreItsOwn) {
    // Heights per cell, so that the plane rises by 33 / 2 times that per unit of the square of 2 by 2.
    constexpr double RISE_X = 0.012;
    constexpr double RISE_Y = -0.009;
    STerrain Terrain;
    MakeGround(Terrain, 33, [](UINT32 x, UINT32 y) { return static_cast<float>(0.4 + RISE_X * x + RISE_Y * y); });
    std::vector<UINT32> Colors(32 * 32);
    Terrain.FillNormals(Colors.data());
    const double SlopeX = RISE_X * 33 / 2;
    const double SlopeY = RISE_Y * 33 / 2;
    const double Length = std::sqrt(SlopeX * SlopeX + SlopeY * SlopeY + 1);
    // The bytes cut off less than one step.
    constexpr double STEP = 2.0 / 255 + 1e-4;
    for (const UINT32 Color : Colors) {
        const SNormal n = Unpack(Color);
        ASSERT_NEAR(n.x, -SlopeX / Length, STEP);
        ASSERT_NEAR(n.y, -SlopeY / Length, STEP);
        ASSERT_NEAR(n.z, 1 / Length, STEP);
        ASSERT_EQ(Color >> 24, 255u);
    }
}

TEST(TerrainGeometryTest, NormalsOfRoughGroundAreThePackedCrossProducts) {
    STerrain Terrain;
    MakeGround(Terrain, 65, Rough);
    std::vector<UINT32> Colors(64 * 64);
    Terrain.FillNormals(Colors.data());
    for (UINT32 i = 0; i < Colors.size(); i++) {
        const UINT32 x = i % 64;
        const UINT32 y = i / 64;
        const auto At = [&](UINT32 dx, UINT32 dy) { return Terrain.Heights[(y + dy) * 65 + x + dx]; };
        const Vec3 a = {2 * (2 / 65.0f), 0, (At(1, 0) - At(0, 0)) + (At(1, 1) - At(0, 1))};
        const Vec3 b = {0, 2 * (2 / 65.0f), (At(0, 1) - At(0, 0)) + (At(1, 1) - At(1, 0))};
        const Vec3 n = M_Normalized(M_Cross(a, b)) * 0.5f + Vec3{0.5f, 0.5f, 0.5f};
        ASSERT_EQ(Colors[i], M_PackColor({n.x, n.y, n.z, 1})) << i;
    }
}

TEST(TerrainGeometryTest, AnEmptyTerrainIsHarmless) {
    STerrain Terrain;
    Terrain.RebuildGeometry();
    Terrain.RebuildTree();
    Terrain.Raise({0, 0, 0}, 100, 1, 10, true);
    Terrain.Flatten({0, 0, 0}, 100, 1, 10, true);
    Terrain.DrawBrush({0, 0, 0}, 100, 1, false);
    EXPECT_FALSE(Terrain.Visible(false));
    EXPECT_FALSE(Terrain.Visible(true));
    Terrain.SetLods({0, 0, 0}, 100);
    Terrain.Bind(false, true);
    Terrain.DrawLeaves();
    Terrain.Draw();
    Terrain.Free();
    Terrain.Free();
    EXPECT_EQ(Terrain.LeafColumns(), 0u);
    EXPECT_EQ(Terrain.Extents, (Vec3{2000, 2000, 200}));
}
