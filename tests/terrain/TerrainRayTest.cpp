#include "terrain/TerrainFixture.h"

namespace {

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

} // namespace

TEST_F(TerrainRayTest, AgreesWithASlowWalk) {
    SRandom Random;
    int Hits = 0;
    for (int i = 0; i < 400; i++) {
        Ray r = {{Random(-600, 600), Random(-600, 600), Random(95, 140)},
                 {Random(-1, 1), Random(-1, 1), Random(-0.8f, -0.15f)}};
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
