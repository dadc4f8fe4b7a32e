#include "FoundationFixture.h"

TEST(Vector, NormalizeKeepsDirectionAndLeavesZeroAlone) {
    ExpectNear(M_Normalized({3, 0, -4}), {0.6f, 0, -0.8f}, 1e-6f);
    EXPECT_EQ(M_Normalized({}), Vec3());
}

TEST(Vector, LerpStartsAtTheSecondArgument) {
    const Vec3 a = {1, 2, 3};
    const Vec3 b = {5, -2, 0};
    EXPECT_EQ(M_Lerp3(a, b, 0), b);
    EXPECT_EQ(M_Lerp3(a, b, 1), a);
    EXPECT_EQ(M_Lerp4({1, 2, 3, 4}, {5, 2, 3, 8}, 0.25f), (Vec4{4, 2, 3, 7}));
}

TEST(Vector, SphericalTurnsRoundZAndTiltsFromZ) {
    const float Quarter = 1.5707964f;
    ExpectNear(M_Spherical({0.7f, 0, 2}), {0, 0, 2}, 1e-6f);
    ExpectNear(M_Spherical({0, Quarter, 2}), {2, 0, 0}, 1e-6f);
    ExpectNear(M_Spherical({Quarter, Quarter, 2}), {0, 2, 0}, 1e-6f);
}

TEST(Vector, Vec4NearIsStrictInEveryComponent) {
    EXPECT_EQ(M_Vec4Near({}, {0.00009f, -0.00009f, 0.00009f, -0.00009f}), 1);
    for (const Vec4& Far : {Vec4{0.0001f, 0, 0, 0}, {0, -0.0001f, 0, 0}, {0, 0, 0.0001f, 0}, {0, 0, 0, -0.0001f}}) {
        EXPECT_EQ(M_Vec4Near({}, Far), 0);
    }
}

TEST(Vector, CircleSlerpTurnsAtAnEvenRateExceptBetweenOppositesAndNeighbours) {
    CRandom Random;
    const auto At = [](float Angle) { return Vec3{M_Cos(Angle), M_Sin(Angle), 0}; };
    const auto Slerp = [&](float Start, float Turn, float t) {
        const Vec3 From = At(Start);
        const Vec3 To = At(Start + Turn);
        const Vec2 Mid = M_CircleSlerp({From.x, From.y}, {To.x, To.y}, t);
        return Vec3{Mid.x, Mid.y, 0};
    };
    for (int n = 0; n < 200; ++n) {
        const float Start = Random.Between(-3, 3);
        const float Turn = Random.Between(-3, 3);
        const float t = Random.Between(0, 1);
        // Within the straight stretch of small arcs the error is below a thousandth of the arc.
        ExpectNear(Slerp(Start, Turn, t), At(Start + Turn * t), 2e-4f);
    }
    EXPECT_EQ(Slerp(0, 3.1415927f, 0.5f), Vec3());
    ExpectNear(Slerp(0, 0.03f, 0.25f), At(0) * 0.75f + At(0.03f) * 0.25f, 1e-7f);
}

TEST(Vector, PackColorClampsTruncatesAndOrdersBytes) {
    EXPECT_EQ(M_PackColor({2.0f, -1.0f, 0.5f, 1.0f}), 0xFF7F00FFu);
    EXPECT_EQ(M_PackColor({0, 2.5f / 255, 3.5f / 255, 4.99f / 255}), 0x04030200u);
    EXPECT_EQ(M_PackColor({NAN, INFINITY, -INFINITY, 0}), 0x0000FF00u);
}
