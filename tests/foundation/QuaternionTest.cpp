#include "DoubleMatrix.h"
#include "FoundationFixture.h"

namespace {

Quat Times(Quat a, const Quat& b) {
    M_QuatMul(a, a, b); // the output may be an argument
    return a;
}

Quat RoundZ(float Angle) {
    return {0, 0, M_Sin(Angle / 2), M_Cos(Angle / 2)};
}

Quat Minus(const Quat& q) {
    return {-q.x, -q.y, -q.z, -q.w};
}

void ExpectNear(const Quat& Actual, const Quat& Expected, float Tolerance) {
    ExpectNear(Vec3{Actual.x, Actual.y, Actual.z}, {Expected.x, Expected.y, Expected.z}, Tolerance);
    EXPECT_NEAR(Actual.w, Expected.w, Tolerance);
}

} // namespace

TEST(Quaternion, ProductIsHamiltonsWhoseMatricesMultiplyTheOtherWayRound) {
    EXPECT_EQ(Times({1, 0, 0, 0}, {0, 1, 0, 0}), (Quat{0, 0, 1, 0}));
    CRandom Random;
    for (int n = 0; n < 50; ++n) {
        const Quat a = Random.Rotation();
        const Quat b = Random.Rotation();
        Mat4 A, B, Product;
        M_Mat4FromQuat(A, a);
        M_Mat4FromQuat(B, b);
        M_Mat4FromQuat(Product, Times(a, b));
        ExpectNear(Product, DoubleOf(B) * DoubleOf(A), 1e-5);
    }
}

TEST(Quaternion, NormalizeGuardsAgainstZeroAndNormalizedDoesNot) {
    Quat q = {0, 3, 0, 4};
    ExpectNear(M_QuatNormalized(q), {0, 0.6f, 0, 0.8f}, 1e-6f);
    M_QuatNormalize(q);
    ExpectNear(q, {0, 0.6f, 0, 0.8f}, 1e-6f);
    Quat Zero = {0, 0, 0, 0};
    EXPECT_TRUE(std::isnan(M_QuatNormalized(Zero).w));
    M_QuatNormalize(Zero);
    EXPECT_EQ(Zero, (Quat{0, 0, 0, 0}));
}

// The negative of a quaternion is the same rotation, so it must not change the way.
TEST(Quaternion, SlerpTurnsAtAnEvenRateAlongTheShorterArcAndKeepsEqualsExactly) {
    CRandom Random;
    for (int n = 0; n < 200; ++n) {
        const Quat From = Random.Rotation();
        const float Turn = Random.Between(0.05f, 3.0f);
        const float t = n % 3 == 2 ? Random.Between(0, 1) : static_cast<float>(n % 3);
        const Quat To = Times(From, RoundZ(Turn));
        for (const Quat& Same : {To, Minus(To)}) {
            ExpectNear(M_QuatSlerp(From, Same, t), Times(From, RoundZ(Turn * t)), 1e-4f);
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
        const Quat x = {M_Sin(Angles.x / 2), 0, 0, M_Cos(Angles.x / 2)};
        const Quat y = {0, M_Sin(Angles.y / 2), 0, M_Cos(Angles.y / 2)};
        M_QuatToEuler(Times(Times(RoundZ(Angles.z), y), x), Euler);
        ExpectNear(Euler, Angles, 1e-3f);
    }
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
        ExpectNear(Actual,
                   RightHandRotation({0, 0, 1}, -Angles.x) * RightHandRotation({0, 1, 0}, -Angles.y) *
                       RightHandRotation({0, 0, 1}, -Angles.z),
                   1e-5);
    }
}
