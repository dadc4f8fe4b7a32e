#include <algorithm>
#include <vector>

#include "terrain/TerrainFixture.h"

namespace {

struct SBrush {
    Vec3 Centre;
    float Radius;
    float Curve;
    bool Use3D;
};

class TerrainBrushTest : public ::testing::Test {
protected:
    void SetUp() override {
        Terrain.Extents = {400, 300, 50};
        MakeGround(Terrain, 33, Hills);
        Before.assign(Terrain.Heights, Terrain.Heights + 33 * 33);
    }

    // From the distance in world units to the sample's point, which makes the same ellipse.
    double Weight(UINT32 x, UINT32 y, const SBrush& Brush) const {
        if (x == 32 || y == 32) {
            return 0;
        }
        const double dx = (x / 33.0 * 2 - 1) * 400 - Brush.Centre.x;
        const double dy = (y / 33.0 * 2 - 1) * 300 - Brush.Centre.y;
        const double dz = Brush.Use3D ? Before[y * 33 + x] * 50.0 - Brush.Centre.z : 0;
        const double d = std::sqrt(dx * dx + dy * dy + dz * dz) / Brush.Radius;
        return d < 1 ? std::pow(1 - d, Brush.Curve) : 0;
    }

    STerrain Terrain;
    std::vector<float> Before;
};

class TerrainBrushPlaceTest : public TerrainBrushTest, public ::testing::WithParamInterface<SBrush> {};

const SBrush BRUSHES[] = {
    {{0, 0, 20}, 100, 1, false},      {{37, -51, 30}, 150, 2.5f, true}, {{-390, 280, 0}, 120, 0.5f, false},
    {{600, 0, 0}, 250, 1, false},     {{0, 0, 0}, 2000, 1, false},      {{10, 10, 500}, 100, 1, true},
    {{5000, 5000, 0}, 100, 1, false},
};

} // namespace

TEST_P(TerrainBrushPlaceTest, RaiseFollowsTheFormula) {
    const SBrush& Brush = GetParam();
    for (const float Amount : {20.0f, -35.0f}) {
        std::copy(Before.begin(), Before.end(), Terrain.Heights);
        Terrain.Raise(Brush.Centre, Brush.Radius, Brush.Curve, Amount, Brush.Use3D);
        for (UINT32 i = 0; i < 33 * 33; i++) {
            const double Raised = Before[i] + Weight(i % 33, i / 33, Brush) * Amount / 50;
            ASSERT_NEAR(Terrain.Heights[i], std::clamp(Raised, 0.0, 1.0), 1e-4) << i;
        }
    }
}

TEST_P(TerrainBrushPlaceTest, FlattenPullsTowardsTheWeightedMean) {
    const SBrush& Brush = GetParam();
    Terrain.Flatten(Brush.Centre, Brush.Radius, Brush.Curve, 0.7f, Brush.Use3D);
    double Weights = 0;
    double Sum = 0;
    for (UINT32 i = 0; i < 33 * 33; i++) {
        Weights += Weight(i % 33, i / 33, Brush);
        Sum += Weight(i % 33, i / 33, Brush) * Before[i];
    }
    for (UINT32 i = 0; i < 33 * 33; i++) {
        const double Pull = Weights > 0 ? (Sum / Weights - Before[i]) * Weight(i % 33, i / 33, Brush) * 0.7 : 0;
        ASSERT_NEAR(Terrain.Heights[i], Before[i] + Pull, 1e-4) << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Places, TerrainBrushPlaceTest, ::testing::ValuesIn(BRUSHES));

TEST_F(TerrainBrushTest, LastColumnAndRowAreNeverTouched) {
    Terrain.Raise({388, 291, 0}, 1000, 0.1f, 30, false);
    EXPECT_GT(Terrain.Heights[31 * 33 + 31], Before[31 * 33 + 31]);
    for (UINT32 i = 0; i < 33; i++) {
        EXPECT_EQ(Terrain.Heights[i * 33 + 32], Before[i * 33 + 32]);
        EXPECT_EQ(Terrain.Heights[32 * 33 + i], Before[32 * 33 + i]);
    }
}

TEST_F(TerrainBrushTest, StrokesThatCanChangeNothingChangeNothing) {
    const Vec3 BetweenSamples = {6, 4.5f, 0};
    Terrain.Flatten(BetweenSamples, 0.01f, 1, 1, false);
    Terrain.Flatten({0, 0, 0}, 100, 1, 0, false);
    Terrain.Flatten({0, 0, 0}, 100, -1, 1, false);
    for (const float Radius : {0.0f, -100.0f, NAN}) {
        for (const Vec3& Centre : {Vec3{0, 0, 0}, BetweenSamples, Vec3{NAN, 0, 0}, Terrain.GetPoint(16, 16)}) {
            Terrain.Raise(Centre, Radius, 1, 10, true);
            Terrain.Flatten(Centre, Radius, 1, 1, true);
        }
    }
    Terrain.Extents.z = 0;
    Terrain.Raise({0, 0, 0}, 100, 1, 0, false);
    for (UINT32 i = 0; i < 33 * 33; i++) {
        ASSERT_EQ(Terrain.Heights[i], Before[i]) << i;
    }
}

TEST_F(TerrainBrushTest, HeightsStayFractions) {
    Terrain.Raise({0, 0, 0}, 300, 0.2f, 1e6f, false);
    Terrain.Raise({200, 0, 0}, 300, -3, -1e6f, false);
    Terrain.Flatten({0, 0, 0}, 300, 0.2f, 50, false);
    for (UINT32 i = 0; i < 33 * 33; i++) {
        ASSERT_TRUE(Terrain.Heights[i] >= 0 && Terrain.Heights[i] <= 1) << i;
    }
}
