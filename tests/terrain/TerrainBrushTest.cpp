#include "terrain/TerrainFixture.h"

namespace {

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

} // namespace

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
