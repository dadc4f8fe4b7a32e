#include "DoubleMatrix.h"
#include "FoundationFixture.h"

#include <algorithm>

namespace {

BBox BoxAround(const Vec3& a, const Vec3& b) {
    return {{std::min(a.x, b.x), std::min(a.y, b.y), std::min(a.z, b.z)},
            {std::max(a.x, b.x), std::max(a.y, b.y), std::max(a.z, b.z)}};
}

Vec3 Corner(const BBox& Box, int i) {
    return {i & 1 ? Box.Max.x : Box.Min.x, i & 2 ? Box.Max.y : Box.Min.y, i & 4 ? Box.Max.z : Box.Min.z};
}

double Triple(const Vec3& a, const Vec3& b, const Vec3& c) {
    return Determinant({{{{a.x, b.x, c.x, 0}, {a.y, b.y, c.y, 0}, {a.z, b.z, c.z, 0}, {0, 0, 0, 1}}}});
}

// The ray Origin + t * Dir against a + u * (b - a) + v * (c - a), solved by Cramer's rule.
struct SBarycentric {
    double t, u, v;

    SBarycentric(const Vec3& a, const Vec3& b, const Vec3& c, const Ray& R) {
        const Vec3 e1 = b - a;
        const Vec3 e2 = c - a;
        const double Whole = Triple(-R.Dir, e1, e2);
        t = Triple(R.Origin - a, e1, e2) / Whole;
        u = Triple(-R.Dir, R.Origin - a, e2) / Whole;
        v = Triple(-R.Dir, e1, R.Origin - a) / Whole;
    }

    double Margin() const { return std::min({u, v, 1 - u - v}); }
};

} // namespace

TEST(BBox, GrowsFromItsFirstPointToHoldAll) {
    CRandom Random;
    BBox Box = {{1, 2, 3}, {1, 2, 3}};
    BBox Expected = Box;
    for (int i = 0; i < 100; ++i) {
        const Vec3 p = Random.Point(50);
        M_BBoxAddPoint(p, Box);
        Expected = BoxAround(Expected.Min, Expected.Max);
        const BBox Low = BoxAround(Expected.Min, p);
        const BBox High = BoxAround(Expected.Max, p);
        Expected = {Low.Min, High.Max};
        ASSERT_EQ(Box.Min, Expected.Min);
        ASSERT_EQ(Box.Max, Expected.Max);
    }
}

TEST(BBox, OnePointNeverMovesBothEnds) {
    BBox Inverted = {{10, 10, 10}, {-10, -10, -10}};
    M_BBoxAddPoint({0, 0, 0}, Inverted);
    EXPECT_EQ(Inverted.Min, Vec3());
    EXPECT_EQ(Inverted.Max, (Vec3{-10, -10, -10}));
}

TEST(BBox, TransformHoldsTheTurnedBoxTightly) {
    Mat4 Turn;
    M_Mat4AxisAngle(Turn, {0, 0, 1}, 0.78539816f);
    BBox Out;
    M_BBoxTransform({{-1, -1, -1}, {1, 1, 1}}, Turn, Out);
    const float Root = 1.4142135f;
    ExpectNear(Out.Min, {-Root, -Root, -1}, 1e-5f);
    ExpectNear(Out.Max, {Root, Root, 1}, 1e-5f);

    Mat4 Mirror;
    M_Mat4Compose({-1, 2, 1}, {10, 0, 0}, Mirror, {});
    BBox InPlace = {{0, 0, 0}, {1, 2, 3}};
    M_BBoxTransform(InPlace, Mirror, InPlace);
    EXPECT_EQ(InPlace.Min, (Vec3{9, 0, 0}));
    EXPECT_EQ(InPlace.Max, (Vec3{10, 4, 3}));
}

TEST(BBox, IsOutsideAPlaneIfAllEightCornersAre) {
    CRandom Random;
    int Outside = 0;
    for (int n = 0; n < 2000; ++n) {
        const BBox Box = BoxAround(Random.Point(5), Random.Point(5));
        const Plane P = {Random.Unit(), Random.Between(-5, 5)};
        float Nearest = INFINITY;
        float Farthest = -INFINITY;
        for (int i = 0; i < 8; ++i) {
            Nearest = std::min(Nearest, M_Dot(P.Normal, Corner(Box, i)));
            Farthest = std::max(Farthest, M_Dot(P.Normal, Corner(Box, i)));
        }
        EXPECT_EQ(M_BBoxOutsidePlane(Box, P), Nearest > P.D);
        EXPECT_EQ(M_Dot(P.Normal, M_BBoxFarCorner(Box, P.Normal)), Farthest);
        Outside += Nearest > P.D;
    }
    EXPECT_GT(Outside, 200);
}

TEST(BBox, TouchingIsNotOutsideAndOverlaps) {
    const BBox Box = {{0, 0, 0}, {1, 1, 1}};
    EXPECT_FALSE(M_BBoxOutsidePlane(Box, {{-1, 0, 0}, -1}));
    EXPECT_TRUE(M_BBoxOutsidePlane(Box, {{-1, 0, 0}, -1.001f}));
    EXPECT_TRUE(M_BBoxOverlap(Box, {{1, 1, 1}, {2, 2, 2}}));
    for (int Axis = 0; Axis < 3; ++Axis) {
        BBox Apart = Box;
        Apart.Min[Axis] = 1.001f;
        Apart.Max[Axis] = 2;
        EXPECT_FALSE(M_BBoxOverlap(Box, Apart));
        EXPECT_FALSE(M_BBoxOverlap(Apart, Box));
    }
}

TEST(BBox, DistanceIsThatToTheNearestPoint) {
    const BBox Box = {{-1, -2, -3}, {1, 2, 3}};
    EXPECT_EQ(M_BBoxDistance(Box, {0.5f, -1.5f, 3}), 0);
    EXPECT_EQ(M_BBoxDistance(Box, {0, 0, -8}), 5);
    EXPECT_EQ(M_BBoxDistance(Box, {4, 6, 0}), 5);
    EXPECT_EQ(M_BBoxDistance(Box, {-3, -3, 5}), 3);
}

TEST(Ray, HitsATriangleFromOneSideWhereBarycentricCoordinatesSay) {
    CRandom Random;
    int Hits = 0;
    for (int n = 0; n < 5000; ++n) {
        const Vec3 a = Random.Point(4);
        const Vec3 b = Random.Point(4);
        const Vec3 c = Random.Point(4);
        const Vec3 Origin = Random.Point(8);
        const Ray R = {Origin, M_Normalized(Random.Point(3) - Origin)};
        const double Facing = M_Dot(R.Dir, M_Cross(b - a, c - a));
        const SBarycentric Place(a, b, c, R);
        if (std::fabs(Facing) < 0.01 || std::fabs(Place.Margin()) < 1e-3) {
            continue;
        }
        float t = 12345;
        const int Hit = M_RayTriangle(a, b, c, R, &t);
        ASSERT_EQ(Hit, Facing > 0 && Place.Margin() > 0);
        if (Hit) {
            EXPECT_NEAR(t, Place.t, 1e-3 * (1 + std::fabs(Place.t)));
            ++Hits;
        } else {
            EXPECT_EQ(t, 12345);
        }
        EXPECT_EQ(M_RayTriangle(a, b, c, R, nullptr), Hit);
    }
    EXPECT_GT(Hits, 100);
}

TEST(Ray, HitsATriangleBehindItsOriginAndNoFlatOne) {
    const Vec3 a = {0, 0, 0};
    const Vec3 b = {4, 0, 0};
    const Vec3 c = {0, 4, 0};
    float t = 0;
    ASSERT_EQ(M_RayTriangle(a, b, c, {{1, 1, 3}, {0, 0, 1}}, &t), 1);
    EXPECT_FLOAT_EQ(t, -3);
    EXPECT_EQ(M_RayTriangle(a, b, c, {{1, 1, 3}, {0, 0, -1}}, &t), 0);
    EXPECT_EQ(M_RayTriangle(a, b, c, {{-1, 1, 0}, {1, 0, 0}}, &t), 0);
    EXPECT_EQ(M_RayTriangle(a, b, {8, 0, 0}, {{1, 0, -3}, {0, 0, 1}}, &t), 0);
}

TEST(Ray, MeetsAPlaneBySideAndDirection) {
    const Plane P = {{0, 0, 1}, 2};
    struct {
        Ray R;
        int FrontOnly, AllowBehind, Hit;
        float t;
    } const Cases[] = {
        {{{7, 0, 5}, {0, 0, -1}}, 1, 0, 1, 3},  {{{0, 0, 5}, {0.6f, 0, -0.8f}}, 1, 0, 1, 3.75f},
        {{{0, 0, -1}, {0, 0, 1}}, 0, 0, 1, 3},  {{{0, 0, -1}, {0, 0, 1}}, 1, 0, 0, 99},
        {{{0, 0, 5}, {0, 0, 1}}, 0, 0, 0, 99},  {{{0, 0, 5}, {0, 0, 1}}, 0, 1, 1, -3},
        {{{0, 0, 1}, {0, 0, -1}}, 1, 1, 1, -1}, {{{0, 0, 1}, {0, 0, -1}}, 1, 0, 0, 99},
        {{{0, 0, 5}, {1, 0, 0}}, 0, 1, 0, 99},  {{{0, 0, 5}, {1, 0, -0.00009f}}, 0, 1, 0, 99},
    };
    for (const auto& Case : Cases) {
        float t = 99;
        EXPECT_EQ(M_RayPlane(P, Case.R, Case.FrontOnly, Case.AllowBehind, &t), Case.Hit);
        EXPECT_FLOAT_EQ(t, Case.t);
        EXPECT_EQ(M_RayPlane(P, Case.R, Case.FrontOnly, Case.AllowBehind, nullptr), Case.Hit);
    }
}

TEST(Ray, MeetsASphereAtTheNearerRootOfItsEquation) {
    CRandom Random;
    int Hits = 0;
    for (int n = 0; n < 2000; ++n) {
        const Ray R = {Random.Point(5), Random.Unit()};
        const Vec3 Centre = Random.Point(5);
        const float Radius = Random.Between(0.2f, 3);
        const Vec3 o = R.Origin - Centre;
        const double b = M_Dot(o, R.Dir);
        const double c = M_Dot(o, o) - static_cast<double>(Radius) * Radius;
        if (c <= 0 || std::fabs(b * b - c) < 1e-2) {
            continue;
        }
        float t = 0;
        const int Hit = M_RaySphere(R, Centre, Radius, &t);
        ASSERT_EQ(Hit, b * b > c && b < 0);
        if (Hit) {
            EXPECT_NEAR(t, -b - std::sqrt(b * b - c), 2e-3);
            ++Hits;
        }
    }
    EXPECT_GT(Hits, 50);
}

TEST(Ray, InsideASphereHitsAtTheDistanceOfItsCentre) {
    float t = 0;
    EXPECT_EQ(M_RaySphere({{1, 2, 2}, {1, 0, 0}}, {0, 0, 0}, 3, &t), 1);
    EXPECT_FLOAT_EQ(t, 3);
    EXPECT_EQ(M_RaySphere({{0, 1, 0}, {0, 0, 1}}, {0, 0, 0}, 5, &t), 1);
    EXPECT_FLOAT_EQ(t, 1);
    EXPECT_EQ(M_RaySphere({{0, 1, 0}, {0, 0, 1}}, {0, 0, 0}, 5, nullptr), 1);
    EXPECT_EQ(M_RaySphere({{-4, 0, 0}, {1, 0, 0}}, {0, 0, 0}, 0, &t), 0);
}

TEST(Ray, ToLocalMeetsTheSamePointInTheObjectsUnits) {
    CRandom Random;
    for (int n = 0; n < 50; ++n) {
        Mat4 World;
        M_Mat4Compose({2, 3, 0.5f}, Random.Point(100), World, Random.Rotation());
        const Ray Outer = {Random.Point(50), Random.Unit()};
        Ray Local = Outer;
        M_RayToLocal(World, Local);
        EXPECT_NEAR(M_Length(Local.Dir), 1, 1e-5);
        Vec3 Back;
        M_Mat4MulPoint(World, Local.Origin + Local.Dir * 10, Back);
        EXPECT_NEAR(M_Length(M_Cross(Back - Outer.Origin, Outer.Dir)), 0, 2e-2);
        EXPECT_GT(M_Dot(Back - Outer.Origin, Outer.Dir), 0);
    }
}

TEST(Ray, ToLocalOfAFlatObjectLeavesTheRay) {
    Mat4 Flat;
    M_Mat4Compose({1, 0, 1}, {5, 5, 5}, Flat, {});
    Ray R = {{1, 2, 3}, {0, 1, 0}};
    M_RayToLocal(Flat, R);
    EXPECT_EQ(R.Origin, (Vec3{1, 2, 3}));
    EXPECT_EQ(R.Dir, (Vec3{0, 1, 0}));
}
