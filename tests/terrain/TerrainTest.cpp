// Grounds made from a formula, without picture, GL or physics: indices, normals, boxes, brushes and rays against slow
// forms.
#include "terrain/TerrainFixture.h"

namespace {

using SPoint = std::pair<int, int>; // x and y in grid cells from the leaf's corner
using FEdge = std::pair<SPoint, SPoint>;

// The edges that only one triangle of a list has. All triangles face up, none lies over another, and together they
// are as large as the leaf: with a border on the leaf's own edge, that leaves neither hole nor overlap.
std::set<FEdge> Border(const STerrain& Terrain, const GArray<UINT32>& Indices, UINT32 Entry) {
    std::set<FEdge> Open;
    int DoubleArea = 0;
    for (UINT32 i = 0; i < Terrain.IndexCount[Entry]; i += 3) {
        SPoint p[3];
        for (UINT32 c = 0; c < 3; c++) {
            const int Vertex = static_cast<int>(Indices.Data[Terrain.IndexOffset[Entry] + i + c]);
            p[c] = {Vertex % static_cast<int>(Terrain.Width), Vertex / static_cast<int>(Terrain.Width)};
        }
        // Clockwise from above, which is the front.
        const int Area = (p[2].first - p[0].first) * (p[1].second - p[0].second) -
                         (p[1].first - p[0].first) * (p[2].second - p[0].second);
        EXPECT_GT(Area, 0);
        DoubleArea += Area;
        for (int c = 0; c < 3; c++) {
            if (Open.erase({p[(c + 1) % 3], p[c]}) == 0) {
                EXPECT_TRUE(Open.insert({p[c], p[(c + 1) % 3]}).second) << "two triangles lie over one another";
            }
        }
    }
    EXPECT_EQ(DoubleArea, static_cast<int>(2 * Terrain.MinPartSize * Terrain.MinPartSize));
    return Open;
}

TEST(TerrainTest, NoListHasAGapAndNeighboursShareTheVerticesOfTheirEdge) {
    for (const UINT32 Side : {33u, 65u, 257u, TERRAIN_MAX_SIDE}) {
        STerrain Terrain;
        Terrain.Width = Terrain.Height = Side;
        Terrain.MinPartSize = (Side - 1) / 16;
        const int Part = static_cast<int>(Terrain.MinPartSize);
        const UINT32 Coarsest = static_cast<UINT32>(std::log2(Part));
        GArray<UINT32> Indices;
        std::size_t Places = 0;
        Terrain.BuildIndices(Indices);
        // The places of the vertices along each side, by list and side; sides in the order of their bits.
        std::map<std::pair<UINT32, UINT32>, std::set<int>> Chains;
        for (UINT32 Entry = 0; Entry < (Coarsest + 1) * TERRAIN_MASKS; Entry++) {
            for (const FEdge& Edge : Border(Terrain, Indices, Entry)) {
                const std::size_t Before = Places;
                for (UINT32 s = 0; s < 4; s++) {
                    const int At = s < 2 ? 0 : Part;
                    const auto [Along, Across] =
                        s % 2 ? std::pair(&SPoint::first, &SPoint::second) : std::pair(&SPoint::second, &SPoint::first);
                    if (Edge.first.*Across == At && Edge.second.*Across == At) {
                        Chains[{Entry, s}].insert({Edge.first.*Along, Edge.second.*Along});
                        Places++;
                    }
                }
                EXPECT_GT(Places, Before) << "a hole in list " << Entry;
            }
        }
        for (auto& [List, Chain] : Chains) {
            const auto [Entry, s] = List;
            // The neighbour sees this leaf as equal or finer, so its own bit for the edge is not set.
            const UINT32 Lod = Entry / TERRAIN_MASKS;
            const UINT32 Theirs = Lod + (Lod < Coarsest && (Entry >> s & 1));
            EXPECT_EQ(Chain, (Chains[{Theirs * TERRAIN_MASKS, s ^ 2}])) << Side << " " << Entry;
            EXPECT_EQ(Chain.size(), static_cast<std::size_t>((Part >> Theirs) + 1));
        }
        EXPECT_EQ(Chains.size(), 4 * (Coarsest + 1) * TERRAIN_MASKS);
        EXPECT_EQ(Terrain.IndexCount[(Coarsest + 1) * TERRAIN_MASKS], 0u);
    }
}

TEST(TerrainTest, NormalsOfATwistedGround) {
    // As fractions a cell: along X, along Y, and the twist, which adds to either slope along the other axis.
    constexpr double X = 0.006, Y = -0.004, TWIST = 0.0004;
    STerrain Terrain;
    MakeGround(Terrain, 33, [](double x, double y) { return 0.4 + X * x + Y * y + TWIST * x * y; }, {330, 660, 40});
    UINT32 Normals[32 * 32];
    Terrain.FillNormals(Normals);
    for (UINT32 i = 0; i < 32 * 32; i++) {
        // Of the middle of the cell, in a square of 2 by 2. The bytes cut off less than one step.
        const double SlopeX = (X + TWIST * (i / 32 + 0.5)) * 33 / 2;
        const double SlopeY = (Y + TWIST * (i % 32 + 0.5)) * 33 / 2;
        const double n[3] = {-SlopeX, -SlopeY, 1};
        for (int c = 0; c < 3; c++) {
            EXPECT_NEAR((Normals[i] >> 8 * c & 255) / 255.0 * 2 - 1, n[c] / std::hypot(SlopeX, SlopeY, 1), 2.0 / 255);
        }
    }
}

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

void SetCamera(CRandom& Random, float Size, bool Ortho) {
    GCamera.Eye = Random.Point(1) * Vec3{1.2f, 1.2f, 0.3f} * Size;
    GCamera.Target = GCamera.Eye + Random.Point(1) * Size;
    GCamera.Near = 1e-4f * Size;
    GCamera.Far = Random.Between(0.15f, 1.5f) * Size;
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

// Extents of which the halves of halves are not exact in single precision are as good as others.
TEST(TerrainTest, VisibleSetAndLevelsAgreeWithATestOfEveryLeaf) {
    CRandom Random;
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

constexpr UINT32 SAMPLES = 33 * 33;

struct SBrush {
    Vec3 Centre;
    float Radius, Curve;
    bool Use3D;
};

class TerrainBrushTest : public ::testing::Test {
protected:
    TerrainBrushTest() {
        MakeGround(Terrain, 33, Hills, {400, 300, 50});
        Before.assign(Terrain.Heights, Terrain.Heights + SAMPLES);
    }

    // From the distance in world units to the sample's point; none in the last column and row.
    double Weight(UINT32 i, const SBrush& Brush) const {
        const double dx = (i % 33 / 33.0 * 2 - 1) * 400 - Brush.Centre.x;
        const double dy = (i / 33 / 33.0 * 2 - 1) * 300 - Brush.Centre.y;
        const double dz = Brush.Use3D ? Before[i] * 50.0 - Brush.Centre.z : 0;
        const double d = std::sqrt(dx * dx + dy * dy + dz * dz) / Brush.Radius;
        return d < 1 && i % 33 < 32 && i / 33 < 32 ? std::pow(1 - d, Brush.Curve) : 0;
    }

    STerrain Terrain;
    std::vector<float> Before;
};

TEST_F(TerrainBrushTest, StrokesFollowTheFormulas) {
    const SBrush Brushes[] = {{{0, 0, 20}, 100, 1, false},        {{37, -51, 30}, 150, 2.5f, true},
                              {{-390, 280, 0}, 120, 0.5f, false}, {{600, 0, 0}, 250, 1, false},
                              {{388, 291, 0}, 2000, 0.1f, false}, {{10, 10, 500}, 100, 1, true},
                              {{5000, 5000, 0}, 100, 1, false}};
    for (const SBrush& b : Brushes) {
        std::vector<double> Weights;
        double All = 1e-30, Mean = 0;
        for (UINT32 i = 0; i < SAMPLES; i++) {
            Weights.push_back(Weight(i, b));
            All += Weights[i];
            Mean += Weights[i] * Before[i];
        }
        Mean /= All;
        for (const float Amount : {20.0f, -35.0f, 0.7f}) {
            std::copy(Before.begin(), Before.end(), Terrain.Heights);
            const bool Flat = Amount == 0.7f;
            (Terrain.*(Flat ? &STerrain::Flatten : &STerrain::Raise))(b.Centre, b.Radius, b.Curve, Amount, b.Use3D);
            for (UINT32 i = 0; i < SAMPLES; i++) {
                const double Change = Weights[i] * Amount * (Flat ? Mean - Before[i] : 0.02);
                ASSERT_NEAR(Terrain.Heights[i], std::clamp(Before[i] + Change, 0.0, 1.0), 1e-4) << i;
            }
        }
    }
}

TEST_F(TerrainBrushTest, StrangeStrokesChangeNothingOrLeaveFractions) {
    const Vec3 BetweenSamples = {6, 4.5f, 0};
    for (const float Radius : {0.0f, -100.0f, NAN}) {
        for (const Vec3& Centre : {BetweenSamples, Vec3{NAN, 0, 0}, Terrain.GetPoint(16, 16)}) {
            Terrain.Raise(Centre, Radius, 1, 10, true);
            Terrain.Flatten(Centre, Radius, 1, 1, true);
        }
    }
    EXPECT_TRUE(std::equal(Before.begin(), Before.end(), Terrain.Heights));
    Terrain.Raise({200, 0, 0}, 300, -3, -1e6f, false);
    Terrain.Flatten({0, 0, 0}, 300, 0.2f, 50, false);
    EXPECT_TRUE(std::all_of(Terrain.Heights, Terrain.Heights + SAMPLES, [](float h) { return h >= 0 && h <= 1; }));
}

class TerrainRayTest : public ::testing::Test {
protected:
    TerrainRayTest() { MakeGround(Terrain, 65, Hills, {650, 650, 100}); }

    // How far a point stands over the triangles, which split each cell from its low to its high corner.
    double Above(const Ray& r, double t) const {
        const double gx = ((r.Origin.x + r.Dir.x * t) / 650 + 1) * 0.5 * 65;
        const double gy = ((r.Origin.y + r.Dir.y * t) / 650 + 1) * 0.5 * 65;
        const int x = static_cast<int>(gx);
        const int y = static_cast<int>(gy);
        const auto Sample = [&](int i, int j) { return 100.0 * Terrain.Heights[(y + j) * 65 + x + i]; };
        const double Along = std::max(gx - x, gy - y);
        const double Both = std::min(gx - x, gy - y);
        const double Middle = gx - x > gy - y ? Sample(1, 0) : Sample(0, 1);
        return r.Origin.z + r.Dir.z * t - Sample(0, 0) * (1 - Along) - Middle * (Along - Both) - Sample(1, 1) * Both;
    }

    // Walks the ray in small steps until it is below the ground; below 0 if it leaves the ground before.
    double SlowHit(const Ray& r) const {
        const auto Inside = [&](double t) {
            return std::abs(r.Origin.x + r.Dir.x * t) < 615 && std::abs(r.Origin.y + r.Dir.y * t) < 615;
        };
        double t = 0;
        while (t < 700 && Inside(t) && Above(r, t) >= 0) {
            t += 0.02;
        }
        return t < 700 && Inside(t) ? t : -1;
    }

    STerrain Terrain;
};

TEST_F(TerrainRayTest, AgreesWithASlowWalk) {
    CRandom Random;
    int Hits = 0;
    for (int i = 0; i < 400; i++) {
        Ray r = {{Random.Between(-600, 600), Random.Between(-600, 600), Random.Between(95, 140)},
                 {Random.Between(-1, 1), Random.Between(-1, 1), Random.Between(-0.8f, -0.15f)}};
        // Also straight down and along each axis.
        r.Dir.x *= static_cast<float>(i % 3 > 0);
        r.Dir.y *= static_cast<float>(i % 4 > 0);
        M_Normalize(r.Dir);
        const double Expected = SlowHit(r);
        if (Expected >= 0) {
            const float Found = Terrain.TraceRay(r, 1000);
            // The slow walk sees the hit up to one stride late, and a crest thinner than a stride not at all.
            ASSERT_TRUE(Found >= 0 && Found <= Expected + 0.01) << i << " " << Found << " " << Expected;
            ASSERT_NEAR(Above(r, Found), 0, 0.01) << i;
            ASSERT_LT(Terrain.TraceRay(r, Found * 0.999f), 0);
            ASSERT_NEAR(Terrain.TraceRay(r, 3.4e38f), Found, 0.01);
            Hits++;
        }
    }
    EXPECT_GT(Hits, 250);
}

TEST_F(TerrainRayTest, RaysThatHitNothingHaveTheirAnswers) {
    const Vec3 Down = {0, 0, -1};
    const std::pair<Ray, float> Rays[] = {
        {{{0, 0, 300}, {1, 0, 0}}, TERRAIN_RAY_MISS}, {{{0, 0, 200}, {0, 0, 1}}, TERRAIN_RAY_MISS},
        {{{0, 0, -50}, {0, 0, 1}}, TERRAIN_RAY_MISS}, {{{0, 0, -50}, Down}, TERRAIN_RAY_MISS},
        {{{0, 0, 200}, {0, 0, 0}}, TERRAIN_RAY_MISS}, {{{640, 0, 200}, Down}, TERRAIN_RAY_OUTSIDE},
        {{{NAN, 0, 9}, Down}, TERRAIN_RAY_OUTSIDE},   {{{-700, 0, 99}, {1, 0, 0}}, TERRAIN_RAY_OUTSIDE},
        {{{0, 0, 2000}, Down}, TERRAIN_RAY_BEYOND}};
    for (const auto& [TheRay, Expected] : Rays) {
        EXPECT_EQ(Terrain.TraceRay(TheRay, 1000), Expected);
    }
    EXPECT_LT(Terrain.TraceRay({{0, 0, 200}, {NAN, NAN, NAN}}, 1000), 0);
}

} // namespace
