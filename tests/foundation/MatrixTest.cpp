#include "DoubleMatrix.h"
#include "FoundationFixture.h"

#include <cstring>

namespace {

Mat4 RandomMatrix(CRandom& Random) {
    Mat4 m;
    for (float& Element : m.M) {
        Element = Random.Between(-3, 3);
    }
    return m;
}

Vec3 PointThrough(const Mat4& m, const Vec3& p) {
    const auto Out = DoubleOf(m) * std::array<double, 4>{p.x, p.y, p.z, 1};
    return Vec3{float(Out[0]), float(Out[1]), float(Out[2])} / float(Out[3]);
}

} // namespace

TEST(Matrix, ProductsDeterminantAndInverseAgreeWithDoublesEvenInPlace) {
    CRandom Random;
    for (int n = 0; n < 200; ++n) {
        const Mat4 a = RandomMatrix(Random);
        const Mat4 b = RandomMatrix(Random);
        Mat4 InPlace = a;
        M_Mat4Mul(InPlace, InPlace, b);
        ExpectNear(InPlace, DoubleOf(a) * DoubleOf(b), 1e-4);
        Vec4 v = {1, 2, 3, Random.Between(-1, 1)};
        const auto Expected = DoubleOf(a) * std::array<double, 4>{1, 2, 3, v.w};
        M_Mat4MulVec4(a, v, v);
        EXPECT_NEAR(std::fabs(v.x - Expected[0]) + std::fabs(v.y - Expected[1]), 0, 1e-4);
        EXPECT_NEAR(std::fabs(v.z - Expected[2]) + std::fabs(v.w - Expected[3]), 0, 1e-4);
        EXPECT_NEAR(M_Mat4Determinant(b), Determinant(DoubleOf(b)), 1e-3);
        if (std::fabs(Determinant(DoubleOf(b))) > 1) {
            InPlace = b;
            EXPECT_EQ(M_Mat4Inverse(InPlace, InPlace), M_Mat4Determinant(b));
            ExpectNear({{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}}, DoubleOf(InPlace) * DoubleOf(b), 1e-3);
        }
    }
}

TEST(Matrix, SingularMatrixHasNoInverseAndLeavesTheOutput) {
    const Mat4 Singular = {{1, 2, 3, 4, 2, 4, 6, 8, 0, 1, 0, 1, 5, 0, 0, 1}};
    Mat4 Out = {{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}};
    const Mat4 Before = Out;
    EXPECT_EQ(M_Mat4Inverse(Singular, Out), 0.0f);
    EXPECT_EQ(std::memcmp(Out.M, Before.M, sizeof(Out.M)), 0);
}

TEST(Matrix, AxisAngleAndQuaternionTurnTheOtherWayRoundThanBooksDo) {
    CRandom Random;
    for (int n = 0; n < 100; ++n) {
        const Vec3 Axis = Random.Unit();
        const float Angle = Random.Between(-6, 6);
        const SDouble4 Expected = RightHandRotation(Axis, -Angle);
        Mat4 m;
        M_Mat4AxisAngle(m, Axis * 7, Angle);
        ExpectNear(m, Expected, 1e-5);
        const float s = M_Sin(Angle / 2);
        const Quat q = {Axis.x * s, Axis.y * s, Axis.z * s, M_Cos(Angle / 2)};
        M_Mat4FromQuat(m, q);
        ExpectNear(m, Expected, 1e-5);
        const Vec3 p = Random.Point(5);
        Vec3 Turned;
        M_QuatRotate(q, p, Turned);
        ExpectNear(Turned, PointThrough(m, p), 1e-5f);
        const Vec3 Scale = Random.Point(3);
        M_Mat4Compose(Scale, {10, 20, 30}, m, q);
        M_QuatRotate(q, p * Scale, Turned);
        Vec3 Dir;
        M_Mat4MulDir(m, p, Dir);
        ExpectNear(Dir, Turned, 1e-4f);
        ExpectNear(PointThrough(m, p), Turned + Vec3{10, 20, 30}, 1e-4f);
        M_Mat4RotationX(m, Angle);
        ExpectNear(m, RightHandRotation({1, 0, 0}, Angle), 1e-6);
    }
}

TEST(Matrix, AlignZTurnsZIntoTheDirection) {
    CRandom Random;
    for (const Vec3& Direction : {Vec3{0, 0, 1},
                                  {0, 0, -1},
                                  {1, 0, 0},
                                  {0, -1, 0},
                                  {0.0005f, 0, 1},
                                  Random.Unit(),
                                  Random.Unit(),
                                  {1e-5f, 0, 1.0000001f}}) {
        Mat4 m;
        M_Mat4AlignZ(m, Direction);
        ExpectNear(PointThrough(m, {0, 0, 1}), Direction, 0.0005f);
        EXPECT_NEAR(M_Mat4Determinant(m), 1, 1e-4);
    }
}

TEST(Matrix, ProjectionsMapTheirVolumesToTheUnitCube) {
    Mat4 Lens, Screen, Box;
    M_Mat4Perspective(Lens, 2 * std::atan(0.5f), 1.5f, 2, 50);
    M_Mat4Ortho(Screen, 0, 1024, 0, 576, -1, 1);
    M_Mat4Ortho(Box, -4, 2, 10, -30, 3, 13);
    const struct {
        const Mat4& m;
        Vec3 From, To;
    } Cases[] = {{Lens, {1.5f, 1, -2}, {1, 1, -1}}, {Lens, {-37.5f, -25, -50}, {-1, -1, 1}},
                 {Screen, {0, 0, 0}, {-1, 1, 0}},   {Screen, {1024, 576, 1}, {1, -1, -1}},
                 {Box, {-4, 10, -3}, {-1, 1, -1}},  {Box, {2, -30, -13}, {1, -1, 1}}};
    for (const auto& Case : Cases) {
        ExpectNear(PointThrough(Case.m, Case.From), Case.To, 1e-5f);
    }
}
