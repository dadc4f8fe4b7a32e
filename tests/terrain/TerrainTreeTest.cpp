#include "terrain/TerrainFixture.h"

namespace {

// How far the box reaches out of the planes: above 0 if one plane has all eight corners outside.
double Outside(const BBox& Box, const Frustum& View) {
    double Worst = -1e30;
    for (const Plane& p : View.Planes) {
        const auto Least = [](double n, double Min, double Max) { return std::min(n * Min, n * Max); };
        Worst = std::max(Worst, Least(p.Normal.x, Box.Min.x, Box.Max.x) + Least(p.Normal.y, Box.Min.y, Box.Max.y) +
                                    Least(p.Normal.z, Box.Min.z, Box.Max.z) - p.D);
    }
    return Worst;
}

double Distance(const Vec3& p, const BBox& Box) {
    const auto Gap = [](double v, double Min, double Max) { return std::max({Min - v, v - Max, 0.0}); };
    return std::hypot(Gap(p.x, Box.Min.x, Box.Max.x), Gap(p.y, Box.Min.y, Box.Max.y), Gap(p.z, Box.Min.z, Box.Max.z));
}

void SetCamera(SRandom& Random, float Size, bool Ortho) {
    GCamera.Eye = Vec3{Random(-1.2f, 1.2f), Random(-1.2f, 1.2f), Random(-0.1f, 0.4f)} * Size;
    GCamera.Target = GCamera.Eye + Vec3{Random(-1, 1), Random(-1, 1), Random(-1, 0.5f)} * Size;
    GCamera.Near = 1e-4f * Size;
    GCamera.Far = Random(0.15f, 1.5f) * Size;
    GCamera.Fov = Ortho ? Size / 2 : 60;
    GCamera.Aspect = Ortho ? Size / 2 : 1.5f;
}

// Around the points of a leaf.
BBox TightBox(const STerrain& Terrain, UINT32 Leaf) {
    const UINT32 Part = Terrain.MinPartSize;
    const auto Point = [&](UINT32 i, UINT32 j) { return Terrain.GetPoint(Leaf % 16 * Part + i, Leaf / 16 * Part + j); };
    BBox Box = {Point(0, 0), Point(0, 0)};
    for (UINT32 i = 0; i < (Part + 1) * (Part + 1); i++) {
        M_BBoxAddPoint(Point(i % (Part + 1), i / (Part + 1)), Box);
    }
    return Box;
}

} // namespace

// Extents of which the halves of halves are not exact in single precision are as good as others.
TEST(TerrainTreeTest, VisibleSetAndLevelsAgreeWithATestOfEveryLeaf) {
    SRandom Random;
    STerrain Terrain;
    int Seen = 0;
    for (int Case = 0; Case < 720; Case++) {
        const float Size = std::array{2000.0f, 1600.3f, 0.7f, TERRAIN_MAX_EXTENT}[Case % 4];
        const bool Ortho = Case % 3 == 0;
        if (Case % 10 == 0) {
            MakeGround(Terrain, std::array{33u, 65u, 257u}[Case / 10 % 3], Hills, {Size, Size, Size / 10});
        }
        SetCamera(Random, Terrain.Extents.x, Ortho);
        const std::vector<STerrainLeaf> Before(Terrain.Leaves, Terrain.Leaves + 256);
        const bool Any = Terrain.Visible(Ortho);
        Frustum View;
        Ortho ? M_CameraOrthoFrustum(View) : M_CameraFrustum(View);
        bool Expected = false;
        for (UINT32 i = 0; i < 256; i++) {
            const STerrainLeaf& Leaf = Terrain.Leaves[i];
            const BBox Box = TightBox(Terrain, i);
            ASSERT_TRUE(Leaf.Box.Min == Box.Min && Leaf.Box.Max == Box.Max) << "case " << Case << " leaf " << i;
            const double Out = Outside(Box, View);
            // Neither is told where it is too close to a border.
            ASSERT_TRUE(Leaf.IsVisible() == (Out < 0) || std::abs(Out) < 5e-6 * Terrain.Extents.x) << Case << " " << i;
            const double Lod = std::min(Distance(GCamera.Eye, Box) / GCamera.Far * 4, 5.0);
            const double Found = Leaf.Lod();
            ASSERT_TRUE(Leaf.IsVisible() ? Found < Lod + 1e-4 && Lod < Found + 1 + 1e-4 : Found == Before[i].Lod());
            Expected = Expected || Leaf.IsVisible();
        }
        ASSERT_EQ(Any, Expected);
        Seen += Any;
    }
    EXPECT_TRUE(Seen > 100 && Seen < 700) << Seen;
    GCamera = CameraState();
}
