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
    Vec4 Out;
    M_Mat4MulVec4(m, {p.x, p.y, p.z, 1}, Out);
    return Vec3{Out.x, Out.y, Out.z} / Out.w;
}

} // namespace

TEST(Matrix, ProductAppliesTheRightFactorFirst) {
    CRandom Random;
    for (int i = 0; i < 50; ++i) {
        const Mat4 a = RandomMatrix(Random);
        const Mat4 b = RandomMatrix(Random);
        Mat4 Product;
        M_Mat4Mul(Product, a, b);
        ExpectNear(Product, SDouble4::Of(a) * SDouble4::Of(b), 1e-4);
        Mat4 InPlace = a;
        M_Mat4Mul(InPlace, InPlace, b);
        EXPECT_EQ(std::memcmp(InPlace.M, Product.M, sizeof(Product.M)), 0);
    }
}

TEST(Matrix, VectorsAreColumnsAndTranslationMovesPointsOnly) {
    const Mat4 m = {{0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 10, 20, 30, 1}};
    Vec4 Point = {1, 2, 3, 1};
    M_Mat4MulVec4(m, Point, Point);
    EXPECT_EQ(Point, (Vec4{8, 21, 33, 1}));
    Vec3 Dir = {1, 2, 3};
    M_Mat4MulDir(m, Dir, Dir);
    EXPECT_EQ(Dir, (Vec3{-2, 1, 3}));
}

TEST(Matrix, DeterminantAgreesWithElimination) {
    CRandom Random;
    for (int i = 0; i < 100; ++i) {
        const Mat4 m = RandomMatrix(Random);
        EXPECT_NEAR(M_Mat4Determinant(m), Determinant(SDouble4::Of(m)), 1e-3);
    }
}

TEST(Matrix, InverseTimesMatrixIsTheIdentity) {
    CRandom Random;
    for (int i = 0; i < 200; ++i) {
        const Mat4 m = RandomMatrix(Random);
        const double Expected = Determinant(SDouble4::Of(m));
        if (std::fabs(Expected) < 1) {
            continue;
        }
        Mat4 Inverse;
        EXPECT_NEAR(M_Mat4Inverse(m, Inverse), Expected, 1e-3);
        Mat4 Product;
        M_Mat4Mul(Product, Inverse, m);
        ExpectNear(Product, SDouble4::Identity(), 1e-3);
    }
}

TEST(Matrix, InverseTakesScaledWorldMatricesInPlace) {
    CRandom Random;
    Mat4 World;
    M_Mat4Compose({2, 0.5f, 30}, {1000, -2000, 50}, World, Random.Rotation());
    Mat4 Product;
    Mat4 Inverse = World;
    M_Mat4Inverse(Inverse, Inverse);
    M_Mat4Mul(Product, Inverse, World);
    ExpectNear(Product, SDouble4::Identity(), 2e-3);
}

TEST(Matrix, SingularMatrixHasNoInverseAndLeavesTheOutput) {
    const Mat4 Singular = {{1, 2, 3, 4, 2, 4, 6, 8, 0, 1, 0, 1, 5, 0, 0, 1}};
    const Mat4 Before = {{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}};
    Mat4 Out = Before;
    EXPECT_EQ(M_Mat4Inverse(Singular, Out), 0.0f);
    EXPECT_EQ(std::memcmp(Out.M, Before.M, sizeof(Out.M)), 0);
}

TEST(Matrix, AxisAngleAndQuaternionTurnTheSameWay) {
    CRandom Random;
    for (int i = 0; i < 100; ++i) {
        const Vec3 Axis = Random.Unit();
        const float Angle = Random.Between(-6, 6);
        const SDouble4 Expected = RightHandRotation(Axis, -Angle);
        Mat4 m;
        M_Mat4AxisAngle(m, Axis * 7, Angle);
        ExpectNear(m, Expected, 1e-5);
        const float s = M_Sin(Angle / 2);
        M_Mat4FromQuat(m, {Axis.x * s, Axis.y * s, Axis.z * s, M_Cos(Angle / 2)});
        ExpectNear(m, Expected, 1e-5);
    }
}

TEST(Matrix, RotationXTurnsByTheRightHandRule) {
    Mat4 m;
    M_Mat4RotationX(m, 0.6f);
    ExpectNear(m, RightHandRotation({1, 0, 0}, 0.6f), 1e-6);
}

TEST(Matrix, AlignZTurnsZIntoTheDirection) {
    CRandom Random;
    const float Tilt = 0.0005f;
    Vec3 Directions[] = {{0, 0, 1}, {0, 0, -1}, {1, 0, 0}, {0, -1, 0}, M_Normalized({Tilt, 0, 1}), {}, {}, {}, {}};
    for (int i = 5; i < 9; ++i) {
        Directions[i] = Random.Unit();
    }
    for (const Vec3& Direction : Directions) {
        Mat4 m;
        M_Mat4AlignZ(m, Direction);
        Vec3 z;
        M_Mat4MulDir(m, {0, 0, 1}, z);
        ExpectNear(z, Direction, Tilt);
        EXPECT_NEAR(M_Mat4Determinant(m), 1, 1e-4);
    }
    Mat4 TooLong;
    M_Mat4AlignZ(TooLong, {1e-5f, 0, 1.0000001f});
    ExpectNear(TooLong, SDouble4::Identity(), 1e-4);
}

TEST(Matrix, ComposeScalesThenTurnsThenMoves) {
    CRandom Random;
    for (int i = 0; i < 50; ++i) {
        const Vec3 Scale = Random.Point(3);
        const Vec3 Position = Random.Point(100);
        const Quat Rotation = Random.Rotation();
        const Vec3 p = Random.Point(5);
        Mat4 m;
        M_Mat4Compose(Scale, Position, m, Rotation);
        Vec3 Turned;
        M_QuatRotate(Rotation, p * Scale, Turned);
        ExpectNear(PointThrough(m, p), Turned + Position, 1e-4f);
    }
}

TEST(Matrix, PerspectiveMapsTheViewVolumeToTheUnitCube) {
    const double Fov = 1.2;
    Mat4 m;
    M_Mat4Perspective(m, static_cast<float>(Fov), 1.5f, 2, 50);
    const float h = static_cast<float>(std::tan(Fov / 2));
    ExpectNear(PointThrough(m, {2 * h * 1.5f, 2 * h, -2}), {1, 1, -1}, 1e-5f);
    ExpectNear(PointThrough(m, {-50 * h * 1.5f, -50 * h, -50}), {-1, -1, 1}, 1e-5f);
    ExpectNear(PointThrough(m, {0, 0, -2}), {0, 0, -1}, 1e-5f);
    EXPECT_EQ(m[15], 0);
    EXPECT_EQ(m[11], -1);
}

TEST(Matrix, OrthoPutsTheOriginOfTheScreenAtTheUpperLeft) {
    Mat4 m;
    M_Mat4Ortho(m, 0, 1024, 0, 576, -1, 1);
    ExpectNear(PointThrough(m, {0, 0, 0}), {-1, 1, 0}, 1e-6f);
    ExpectNear(PointThrough(m, {1024, 576, 1}), {1, -1, -1}, 1e-6f);
    M_Mat4Ortho(m, -4, 2, 10, -30, 3, 13);
    ExpectNear(PointThrough(m, {-4, 10, -3}), {-1, 1, -1}, 1e-6f);
    ExpectNear(PointThrough(m, {2, -30, -13}), {1, -1, 1}, 1e-6f);
}
