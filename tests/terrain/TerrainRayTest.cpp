#include <optional>

#include "terrain/TerrainFixture.h"

namespace {

class TerrainRayTest : public ::testing::Test {
protected:
    void SetUp() override {
        Terrain.Extents = {650, 650, 100};
        MakeGround(Terrain, 65, Hills);
    }

    // The ground's height at a place, from the triangles that split each cell from its low to its high corner.
    double GroundAt(double x, double y) const {
        const double gx = (x / 650 + 1) * 0.5 * 65;
        const double gy = (y / 650 + 1) * 0.5 * 65;
        const UINT32 Column = static_cast<UINT32>(gx);
        const UINT32 Row = static_cast<UINT32>(gy);
        const double fx = gx - Column;
        const double fy = gy - Row;
        const auto Sample = [&](UINT32 i, UINT32 j) { return 100.0 * Terrain.Heights[(Row + j) * 65 + Column + i]; };
        const double Diagonal = Sample(1, 1);
        return fx > fy ? Sample(0, 0) + fx * (Sample(1, 0) - Sample(0, 0)) + fy * (Diagonal - Sample(1, 0))
                       : Sample(0, 0) + fy * (Sample(0, 1) - Sample(0, 0)) + fx * (Diagonal - Sample(0, 1));
    }

    // Walks the ray in small steps until it is below the ground.
    std::optional<double> SlowHit(const Ray& r, double MaxDist) const {
        constexpr double STRIDE = 0.02;
        for (double t = 0; t <= MaxDist; t += STRIDE) {
            const double x = r.Origin.x + r.Dir.x * t;
            const double y = r.Origin.y + r.Dir.y * t;
            const double z = r.Origin.z + r.Dir.z * t;
            if (std::abs(x) > 615 || std::abs(y) > 615) {
                return std::nullopt;
            }
            if (z < GroundAt(x, y)) {
                return t;
            }
        }
        return std::nullopt;
    }

    STerrain Terrain;
    std::mt19937 Random{99};
};

} // namespace

TEST_F(TerrainRayTest, AgreesWithASlowWalk) {
    const auto Between = [this](float Min, float Max) {
        return std::uniform_real_distribution<float>(Min, Max)(Random);
    };
    int Hits = 0;
    for (int i = 0; i < 400; i++) {
        Ray r = {{Between(-600, 600), Between(-600, 600), Between(95, 140)},
                 {Between(-1, 1), Between(-1, 1), Between(-0.8f, -0.15f)}};
        M_Normalize(r.Dir);
        const std::optional<double> Expected = SlowHit(r, 700);
        if (!Expected) {
            continue;
        }
        const float Found = Terrain.TraceRay(r, 1000);
        // The slow walk sees the hit up to one stride late, and a crest thinner than a stride not at all.
        ASSERT_LE(Found, *Expected + 0.01) << i;
        const Vec3 At = r.Origin + r.Dir * Found;
        ASSERT_GE(Found, 0) << i;
        ASSERT_NEAR(At.z, GroundAt(At.x, At.y), 0.01) << i;
        if (*Expected - Found > 0.05) {
            continue;
        }
        Hits++;
    }
    EXPECT_GT(Hits, 250);
}

TEST_F(TerrainRayTest, StraightDownAndAlongTheAxes) {
    const Ray Down = {{100.3f, -77.7f, 300}, {0, 0, -1}};
    EXPECT_NEAR(Terrain.TraceRay(Down, 1000), 300 - GroundAt(100.3, -77.7), 0.01);
    for (const Vec3& Axis : {Vec3{1, 0, 0}, Vec3{-1, 0, 0}, Vec3{0, 1, 0}, Vec3{0, -1, 0}}) {
        Ray r = {{5, 5, 120}, Axis + Vec3{0, 0, -0.4f}};
        M_Normalize(r.Dir);
        EXPECT_NEAR(Terrain.TraceRay(r, 1000), *SlowHit(r, 1000), 0.05);
    }
}

TEST_F(TerrainRayTest, FarthestDistanceCutsHits) {
    const Ray Down = {{0, 0, 300}, {0, 0, -1}};
    const float Hit = Terrain.TraceRay(Down, 1000);
    EXPECT_GT(Hit, 0);
    EXPECT_EQ(Terrain.TraceRay(Down, Hit + 0.01f), Hit);
    EXPECT_EQ(Terrain.TraceRay(Down, Hit - 0.01f), TERRAIN_RAY_BEYOND);
    // A ray that ends in the air two cells on.
    const Ray Level = {{0, 0, 300}, {1, 0, 0}};
    EXPECT_EQ(Terrain.TraceRay(Level, 50), TERRAIN_RAY_MISS);
}

TEST_F(TerrainRayTest, MissesUpwardOverTheEdgeAndFromBelow) {
    EXPECT_EQ(Terrain.TraceRay({{0, 0, 200}, {0, 0, 1}}, 1000), TERRAIN_RAY_MISS);
    EXPECT_EQ(Terrain.TraceRay({{0, 0, 200}, {1, 0, 0}}, 10000), TERRAIN_RAY_MISS);
    EXPECT_EQ(Terrain.TraceRay({{0, 0, -50}, {0, 0, 1}}, 1000), TERRAIN_RAY_MISS);
    // The ground is behind this one.
    EXPECT_EQ(Terrain.TraceRay({{0, 0, -50}, {0, 0, -1}}, 1000), TERRAIN_RAY_MISS);
}

TEST_F(TerrainRayTest, StartOutsideTheGridIsToldAtOnce) {
    Ray Inward = {{-700, 0, 200}, {1, 0, -0.3f}};
    M_Normalize(Inward.Dir);
    EXPECT_EQ(Terrain.TraceRay(Inward, 5000), TERRAIN_RAY_OUTSIDE);
    // The last column ends one cell short of the box.
    EXPECT_EQ(Terrain.TraceRay({{640, 0, 200}, {0, 0, -1}}, 1000), TERRAIN_RAY_OUTSIDE);
    EXPECT_GE(Terrain.TraceRay({{620, 0, 200}, {0, 0, -1}}, 1000), 0);
}

TEST_F(TerrainRayTest, EveryRayEnds) {
    const float Huge = 3.4028235e38f;
    EXPECT_EQ(Terrain.TraceRay({{0, 0, 200}, {0, 0, 0}}, 1000), TERRAIN_RAY_MISS);
    EXPECT_EQ(Terrain.TraceRay({{NAN, 0, 200}, {0, 0, -1}}, 1000), TERRAIN_RAY_OUTSIDE);
    EXPECT_LT(Terrain.TraceRay({{0, 0, 200}, {NAN, NAN, NAN}}, 1000), 0);
    Ray r = {{0, 0, 120}, {0.5f, 0.3f, -0.3f}};
    M_Normalize(r.Dir);
    EXPECT_NEAR(Terrain.TraceRay(r, Huge), Terrain.TraceRay(r, 1000), 0.01f);
    EXPECT_EQ(STerrain().TraceRay(r, 1000), TERRAIN_RAY_OUTSIDE);
}
