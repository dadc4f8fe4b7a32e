#include "DoubleMatrix.h"
#include "FoundationFixture.h"

namespace {

Quat Times(const Quat& a, const Quat& b) {
    Quat Out;
    M_QuatMul(Out, a, b);
    return Out;
}

double Length(const Quat& q) {
    return std::sqrt(static_cast<double>(q.x) * q.x + q.y * q.y + q.z * q.z + q.w * q.w);
}

Quat RoundZ(double Angle) {
    return {0, 0, static_cast<float>(std::sin(Angle / 2)), static_cast<float>(std::cos(Angle / 2))};
}

void ExpectNear(const Quat& Actual, const Quat& Expected, double Tolerance) {
    EXPECT_NEAR(Actual.x, Expected.x, Tolerance);
    EXPECT_NEAR(Actual.y, Expected.y, Tolerance);
    EXPECT_NEAR(Actual.z, Expected.z, Tolerance);
    EXPECT_NEAR(Actual.w, Expected.w, Tolerance);
}

} // namespace

TEST(Quaternion, UnitsMultiplyAsHamiltonSaid) {
    const Quat i = {1, 0, 0, 0};
    const Quat j = {0, 1, 0, 0};
    const Quat k = {0, 0, 1, 0};
    const Quat MinusOne = {0, 0, 0, -1};
    EXPECT_EQ(Times(i, j), k);
    EXPECT_EQ(Times(j, k), i);
    EXPECT_EQ(Times(k, i), j);
    EXPECT_EQ(Times(j, i), (Quat{0, 0, -1, 0}));
    EXPECT_EQ(Times(i, i), MinusOne);
    EXPECT_EQ(Times(Times(i, j), k), MinusOne);
}

TEST(Quaternion, MulMayWriteIntoItsArgument) {
    CRandom Random;
    const Quat a = Random.Rotation();
    const Quat b = Random.Rotation();
    const Quat Expected = Times(a, b);
    Quat InPlace = a;
    M_QuatMul(InPlace, InPlace, b);
    EXPECT_EQ(InPlace, Expected);
    InPlace = b;
    M_QuatMul(InPlace, a, InPlace);
    EXPECT_EQ(InPlace, Expected);
}

TEST(Quaternion, NormalizeGuardsAgainstZeroAndNormalizedDoesNot) {
    Quat q = {0, 3, 0, 4};
    ExpectNear(M_QuatNormalized(q), {0, 0.6f, 0, 0.8f}, 1e-6);
    M_QuatNormalize(q);
    ExpectNear(q, {0, 0.6f, 0, 0.8f}, 1e-6);
    Quat Zero = {0, 0, 0, 0};
    EXPECT_TRUE(std::isnan(M_QuatNormalized(Zero).w));
    M_QuatNormalize(Zero);
    EXPECT_EQ(Zero, (Quat{0, 0, 0, 0}));
}

TEST(Quaternion, RotatesTheOtherWayRoundThanBooksDo) {
    Vec3 v;
    M_QuatRotate(RoundZ(1.5707963), {1, 0, 0}, v);
    ExpectNear(v, {0, -1, 0}, 1e-6f);

    CRandom Random;
    for (int n = 0; n < 100; ++n) {
        const Vec3 Axis = Random.Unit();
        const double Angle = Random.Between(-6, 6);
        const float s = static_cast<float>(std::sin(Angle / 2));
        const Vec3 p = Random.Point(10);
        M_QuatRotate({Axis.x * s, Axis.y * s, Axis.z * s, static_cast<float>(std::cos(Angle / 2))}, p, v);
        const auto Expected = RightHandRotation(Axis, -Angle) * std::array<double, 4>{p.x, p.y, p.z, 0};
        for (int i = 0; i < 3; ++i) {
            EXPECT_NEAR(v[i], Expected[i], 1e-5);
        }
    }
}

TEST(Quaternion, SlerpTurnsAtAnEvenRateAlongTheShorterArc) {
    CRandom Random;
    for (int n = 0; n < 200; ++n) {
        const Quat From = Random.Rotation();
        const double Turn = Random.Between(0.05f, 3.0f);
        const float t = Random.Between(0, 1);
        const Quat To = Times(From, RoundZ(Turn));
        const Quat Expected = Times(From, RoundZ(Turn * t));
        ExpectNear(M_QuatSlerp(From, To, t), Expected, 1e-4);
        // The negative of a quaternion is the same rotation, so it must not change the way.
        ExpectNear(M_QuatSlerp(From, {-To.x, -To.y, -To.z, -To.w}, t), Expected, 1e-4);
        EXPECT_NEAR(Length(M_QuatSlerp(From, To, t)), 1, 1e-5);
    }
}

TEST(Quaternion, SlerpEndsAtItsArguments) {
    CRandom Random;
    const Quat From = Random.Rotation();
    const Quat To = Times(From, RoundZ(1));
    ExpectNear(M_QuatSlerp(From, To, 0), From, 1e-6);
    ExpectNear(M_QuatSlerp(From, To, 1), To, 1e-6);
}

TEST(Quaternion, SlerpOfEqualsIsExactlyTheFirst) {
    CRandom Random;
    for (int n = 0; n < 200; ++n) {
        const Quat q = Random.Rotation();
        EXPECT_EQ(M_QuatSlerp(q, q, Random.Between(0, 1)), q);
        EXPECT_EQ(M_QuatSlerp(q, {-q.x, -q.y, -q.z, -q.w}, Random.Between(0, 1)), q);
    }
}

TEST(Quaternion, ToEulerReadsRollPitchAndYaw) {
    CRandom Random;
    for (int n = 0; n < 100; ++n) {
        const double Roll = Random.Between(-3, 3);
        const double Pitch = Random.Between(-1.5f, 1.5f);
        const double Yaw = Random.Between(-3, 3);
        const Quat x = {static_cast<float>(std::sin(Roll / 2)), 0, 0, static_cast<float>(std::cos(Roll / 2))};
        const Quat y = {0, static_cast<float>(std::sin(Pitch / 2)), 0, static_cast<float>(std::cos(Pitch / 2))};
        Vec3 Euler;
        M_QuatToEuler(Times(Times(RoundZ(Yaw), y), x), Euler);
        // Close to straight up the two other angles run into one another.
        ExpectNear(Euler, {static_cast<float>(Roll), static_cast<float>(Pitch), static_cast<float>(Yaw)}, 1e-3f);
    }
}

TEST(Quaternion, ToEulerStandsStraightUpWithoutNaN) {
    Vec3 Euler;
    for (const float Half : {0.70710671f, 0.70710678f, 0.70710683f}) {
        M_QuatToEuler({0, Half, 0, Half}, Euler);
        EXPECT_NEAR(Euler.y, 1.5707963, 1e-3);
    }
}

TEST(Quaternion, FromEulerTurnsRoundZThenYThenZAgain) {
    CRandom Random;
    for (int n = 0; n < 100; ++n) {
        const Vec3 Angles = Random.Point(4);
        Mat4 Actual;
        M_Mat4FromQuat(Actual, M_QuatFromEuler(Angles));
        // The matrix of a product of quaternions in the books' sense, transposed: the factors swap and turn back.
        const SDouble4 Expected = RightHandRotation({0, 0, 1}, -Angles.x) * RightHandRotation({0, 1, 0}, -Angles.y) *
                                  RightHandRotation({0, 0, 1}, -Angles.z);
        ExpectNear(Actual, Expected, 1e-5);
    }
    EXPECT_EQ(M_QuatFromEuler({}), Quat());
}
