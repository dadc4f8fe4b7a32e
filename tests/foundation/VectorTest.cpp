#include "FoundationFixture.h"

#include <cmath>
#include <cstring>

TEST(Vector, LiesInMemoryWithoutGaps) {
    const Vec3 Points[2] = {{1, 2, 3}, {4, 5, 6}};
    float Floats[6];
    static_assert(sizeof(Points) == sizeof(Floats) && sizeof(Vec2) == 8 && sizeof(Vec4) == 16);
    std::memcpy(Floats, Points, sizeof(Floats));
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(Floats[i], i + 1);
        EXPECT_EQ(Points[i / 3][i % 3], i + 1);
    }
}

TEST(Vector, CrossIsRightHandedAndAcross) {
    EXPECT_EQ(M_Cross({1, 0, 0}, {0, 1, 0}), (Vec3{0, 0, 1}));
    CRandom Random;
    for (int i = 0; i < 100; ++i) {
        const Vec3 a = Random.Point(10);
        const Vec3 b = Random.Point(10);
        const Vec3 c = M_Cross(a, b);
        EXPECT_NEAR(M_Dot(a, c), 0, 1e-3);
        EXPECT_NEAR(M_Dot(b, c), 0, 1e-3);
        // |a x b|² + (a . b)² = |a|² |b|²
        const float Product = M_Dot(a, a) * M_Dot(b, b);
        EXPECT_NEAR(M_Dot(c, c) + M_Dot(a, b) * M_Dot(a, b), Product, 1e-5f * Product);
    }
}

TEST(Vector, NormalizeKeepsDirectionAndLeavesZeroAlone) {
    Vec3 v = {3, 0, -4};
    M_Normalize(v);
    ExpectNear(v, {0.6f, 0, -0.8f}, 1e-6f);
    Vec3 Zero;
    M_Normalize(Zero);
    EXPECT_EQ(Zero, Vec3());
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
    ExpectNear(M_Spherical({0, 2 * Quarter, 3}), {0, 0, -3}, 1e-6f);
}

TEST(Vector, Vec4NearIsStrictInEveryComponent) {
    const Vec4 a = {};
    EXPECT_EQ(M_Vec4Near(a, {0.00009f, -0.00009f, 0.00009f, -0.00009f}), 1);
    const float Limit = 0.0001f;
    EXPECT_EQ(M_Vec4Near(a, {Limit, 0, 0, 0}), 0);
    EXPECT_EQ(M_Vec4Near(a, {0, -Limit, 0, 0}), 0);
    EXPECT_EQ(M_Vec4Near(a, {0, 0, Limit, 0}), 0);
    EXPECT_EQ(M_Vec4Near(a, {0, 0, 0, -Limit}), 0);
}

TEST(Vector, CircleSlerpTurnsAtAnEvenRate) {
    CRandom Random;
    for (int i = 0; i < 200; ++i) {
        const double Start = Random.Between(-3, 3);
        const double Turn = Random.Between(-3, 3);
        const float t = Random.Between(0, 1);
        const auto At = [](double Angle) {
            return Vec2{static_cast<float>(std::cos(Angle)), static_cast<float>(std::sin(Angle))};
        };
        const Vec2 Mid = M_CircleSlerp(At(Start), At(Start + Turn), t);
        // Within the straight stretch of small arcs the error is below a thousandth of the arc.
        EXPECT_NEAR(Mid.x, std::cos(Start + Turn * t), 2e-4) << Turn;
        EXPECT_NEAR(Mid.y, std::sin(Start + Turn * t), 2e-4) << Turn;
    }
}

TEST(Vector, CircleSlerpOfOppositesIsZeroAndOfNeighboursALine) {
    EXPECT_EQ(M_CircleSlerp({1, 0}, {-1, 0}, 0.5f), Vec2());
    const Vec2 To = {std::cos(0.03f), std::sin(0.03f)};
    const Vec2 Mid = M_CircleSlerp({1, 0}, To, 0.5f);
    EXPECT_FLOAT_EQ(Mid.x, (1 + To.x) / 2);
    EXPECT_FLOAT_EQ(Mid.y, To.y / 2);
}

TEST(Vector, PackColorClampsTruncatesAndOrdersBytes) {
    EXPECT_EQ(M_PackColor({2.0f, -1.0f, 0.5f, 1.0f}), 0xFF7F00FFu);
    const UINT32 Packed = M_PackColor({1 / 255.0f, 2 / 255.0f, 3.5f / 255.0f, 4.99f / 255.0f});
    UINT8 Bytes[4];
    std::memcpy(Bytes, &Packed, 4);
    EXPECT_EQ(Bytes[1], 2);
    EXPECT_EQ(Bytes[2], 3);
    EXPECT_EQ(Bytes[3], 4);
    EXPECT_EQ(M_PackColor({NAN, INFINITY, -INFINITY, 0}), 0x0000FF00u);
}
