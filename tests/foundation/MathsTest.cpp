#include "DoubleMatrix.h"

namespace {

Vec3 PointThrough(const Mat4& m, const Vec3& p) {
    const auto Out = DoubleOf(m) * std::array<double, 4>{p.x, p.y, p.z, 1};
    return Vec3{float(Out[0]), float(Out[1]), float(Out[2])} / float(Out[3]);
}

Quat Times(Quat a, const Quat& b) {
    M_QuatMul(a, a, b); // the output may be an argument
    return a;
}

Quat Around(const Vec3& Axis, float Angle) {
    const Vec3 v = Axis * M_Sin(Angle / 2);
    return {v.x, v.y, v.z, M_Cos(Angle / 2)};
}

Quat Minus(const Quat& q) {
    return {-q.x, -q.y, -q.z, -q.w};
}

using ::ExpectNear;

void ExpectNear(const Quat& Actual, const Quat& Expected, float Tolerance) {
    ExpectNear(Vec3{Actual.x, Actual.y, Actual.z}, {Expected.x, Expected.y, Expected.z}, Tolerance);
    EXPECT_NEAR(Actual.w, Expected.w, Tolerance);
}

TEST(Vector, LerpStartsAtTheSecondArgument) {
    EXPECT_EQ(M_Lerp3({1, 2, 3}, {5, -2, 0}, 0.25f), (Vec3{4, -1, 0.75f}));
    EXPECT_EQ(M_Lerp4({1, 2, 3, 4}, {5, 2, 3, 8}, 0.25f), (Vec4{4, 2, 3, 7}));
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
        const Vec3 From = At(Start), To = At(Start + Turn);
        const Vec2 Mid = M_CircleSlerp({From.x, From.y}, {To.x, To.y}, t);
        return Vec3{Mid.x, Mid.y, 0};
    };
    for (int n = 0; n < 200; ++n) {
        const float Start = Random.Between(-3, 3), Turn = Random.Between(-3, 3), t = Random();
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

TEST(Matrix, ProductsDeterminantAndInverseAgreeWithDoublesEvenInPlace) {
    CRandom Random;
    for (int n = 0; n < 200; ++n) {
        Mat4 a, b;
        for (int i = 0; i < 16; ++i) {
            a[i] = Random.Between(-3, 3);
            b[i] = Random.Between(-3, 3);
        }
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
    const Mat4 Before = {{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}};
    Mat4 Out = Before;
    EXPECT_EQ(M_Mat4Inverse({{1, 2, 3, 4, 2, 4, 6, 8, 0, 1, 0, 1, 5, 0, 0, 1}}, Out), 0.0f);
    EXPECT_EQ(std::memcmp(Out.M, Before.M, sizeof(Out.M)), 0);
}

TEST(Matrix, AxisAngleAndQuaternionTurnTheOtherWayRoundThanBooksDo) {
    CRandom Random;
    for (int n = 0; n < 100; ++n) {
        const Vec3 Axis = Random.Unit(), p = Random.Point(5), Scale = Random.Point(3);
        const float Angle = Random.Between(-6, 6);
        const SDouble4 Expected = RightHandRotation(Axis, -Angle);
        Mat4 m;
        M_Mat4AxisAngle(m, Axis * 7, Angle);
        ExpectNear(m, Expected, 1e-5);
        const Quat q = Around(Axis, Angle);
        M_Mat4FromQuat(m, q);
        ExpectNear(m, Expected, 1e-5);
        Vec3 Turned, Dir;
        M_QuatRotate(q, p, Turned);
        ExpectNear(Turned, PointThrough(m, p), 1e-5f);
        M_Mat4Compose(Scale, {10, 20, 30}, m, q);
        M_QuatRotate(q, p * Scale, Turned);
        M_Mat4MulDir(m, p, Dir);
        ExpectNear(Dir, Turned, 1e-4f);
        ExpectNear(PointThrough(m, p), Turned + Vec3{10, 20, 30}, 1e-4f);
        M_Mat4RotationX(m, Angle);
        ExpectNear(m, RightHandRotation({1, 0, 0}, Angle), 1e-6);
    }
}

TEST(Matrix, AlignZTurnsZIntoTheDirection) {
    const Vec3 Directions[] = {{0, 0, 1},
                               {0, 0, -1},
                               {1, 0, 0},
                               {0, -1, 0},
                               {0.0005f, 0, 1},
                               {0.6f, 0.8f, 0.0f},
                               {1e-5f, 0, 1.0000001f},
                               {-0.48f, 0.64f, -0.6f}};
    for (const Vec3& Direction : Directions) {
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

TEST(Quaternion, ProductIsHamiltonsWhoseMatricesMultiplyTheOtherWayRound) {
    EXPECT_EQ(Times({1, 0, 0, 0}, {0, 1, 0, 0}), (Quat{0, 0, 1, 0}));
    CRandom Random;
    for (int n = 0; n < 50; ++n) {
        const Quat a = Random.Rotation(), b = Random.Rotation();
        Mat4 A, B, Product;
        M_Mat4FromQuat(A, a);
        M_Mat4FromQuat(B, b);
        M_Mat4FromQuat(Product, Times(a, b));
        ExpectNear(Product, DoubleOf(B) * DoubleOf(A), 1e-5);
    }
}

TEST(Quaternion, NormalizeGuardsAgainstZeroAndNormalizedDoesNot) {
    Quat q = {0, 3, 0, 4}, Zero = {0, 0, 0, 0};
    ExpectNear(M_QuatNormalized(q), {0, 0.6f, 0, 0.8f}, 1e-6f);
    M_QuatNormalize(q);
    ExpectNear(q, {0, 0.6f, 0, 0.8f}, 1e-6f);
    EXPECT_TRUE(std::isnan(M_QuatNormalized(Zero).w));
    M_QuatNormalize(Zero);
    EXPECT_EQ(Zero, (Quat{0, 0, 0, 0}));
    EXPECT_EQ(M_Normalized(Vec3()), Vec3()) << "a vector is guarded";
}

// The negative of a quaternion is the same rotation, so it must not change the way.
TEST(Quaternion, SlerpTurnsAtAnEvenRateAlongTheShorterArcAndKeepsEqualsExactly) {
    CRandom Random;
    for (int n = 0; n < 200; ++n) {
        const Quat From = Random.Rotation();
        const float Turn = Random.Between(0.05f, 3.0f);
        const float t = n % 3 == 2 ? Random() : static_cast<float>(n % 3);
        const Quat To = Times(From, Around({0, 0, 1}, Turn));
        for (const Quat& Same : {To, Minus(To)}) {
            ExpectNear(M_QuatSlerp(From, Same, t), Times(From, Around({0, 0, 1}, Turn * t)), 1e-4f);
        }
        EXPECT_EQ(M_QuatSlerp(From, From, t), From);
        EXPECT_EQ(M_QuatSlerp(From, Minus(From), t), From);
    }
}

TEST(Quaternion, ToEulerReadsRollPitchAndYawAndStandsStraightUp) {
    CRandom Random;
    Vec3 Euler;
    for (int n = 0; n < 100; ++n) {
        // Close to straight up the two other angles run into one another.
        const Vec3 Angles = {Random.Between(-3, 3), Random.Between(-1.5f, 1.5f), Random.Between(-3, 3)};
        const Quat YawAndPitch = Times(Around({0, 0, 1}, Angles.z), Around({0, 1, 0}, Angles.y));
        M_QuatToEuler(Times(YawAndPitch, Around({1, 0, 0}, Angles.x)), Euler);
        ExpectNear(Euler, Angles, 1e-3f);
    }
    for (const float Half : {0.70710671f, 0.70710678f, 0.70710683f}) {
        M_QuatToEuler({0, Half, 0, Half}, Euler);
        EXPECT_NEAR(Euler.y, 1.5707963, 1e-3);
    }
}

// The matrix of a product of quaternions in the books' sense, transposed: the factors swap and turn back.
TEST(Quaternion, FromEulerTurnsRoundZThenYThenZAgain) {
    CRandom Random;
    const auto Back = [](const Vec3& Axis, float Angle) { return RightHandRotation(Axis, -Angle); };
    for (int n = 0; n < 100; ++n) {
        const Vec3 Angles = Random.Point(4);
        Mat4 m;
        M_Mat4FromQuat(m, M_QuatFromEuler(Angles));
        ExpectNear(m, Back({0, 0, 1}, Angles.x) * Back({0, 1, 0}, Angles.y) * Back({0, 0, 1}, Angles.z), 1e-5);
    }
}

} // namespace
