#include "DoubleMatrix.h"
#include "FoundationFixture.h"

namespace {

Vec3 Corner(const BBox& Box, int i) {
    return {(i & 1 ? Box.Max : Box.Min).x, (i & 2 ? Box.Max : Box.Min).y, (i & 4 ? Box.Max : Box.Min).z};
}

double Triple(const Vec3& a, const Vec3& b, const Vec3& c) {
    return Determinant({{{a.x, b.x, c.x, 0}, {a.y, b.y, c.y, 0}, {a.z, b.z, c.z, 0}, {0, 0, 0, 1}}});
}

} // namespace

TEST(BBox, OnePointNeverMovesBothEnds) {
    BBox Inverted = {{10, 10, 10}, {-10, -10, -10}};
    M_BBoxAddPoint({0, 0, 0}, Inverted);
    EXPECT_EQ(Inverted.Min, Vec3());
    EXPECT_EQ(Inverted.Max, (Vec3{-10, -10, -10}));
}

TEST(BBox, TransformHoldsTheTurnedCornersTightly) {
    const float Root = 1.4142135f;
    BBox Box = {{-1, -1, -1}, {1, 1, 1}};
    Mat4 MirrorAndTurn;
    M_Mat4Compose({-1, 1, 2}, {10, 0, 0}, MirrorAndTurn, {0, 0, M_Sin(0.39269908f), M_Cos(0.39269908f)});
    M_BBoxTransform(Box, MirrorAndTurn, Box);
    ExpectNear(Box.Min, {10 - Root, -Root, -2}, 1e-5f);
    ExpectNear(Box.Max, {10 + Root, Root, 2}, 1e-5f);
}

TEST(BBox, IsOutsideAPlaneIfAllEightCornersAre) {
    CRandom Random;
    int Outside = 0;
    for (int n = 0; n < 2000; ++n) {
        const Vec3 Low = Random.Point(5);
        const BBox Box = {Low, Low + (Random.Point(2) + Vec3{2, 2, 2})};
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
    EXPECT_TRUE(M_BBoxOverlap(Box, {{1, 1, 1}, {2, 2, 2}}));
    for (int Axis = 0; Axis < 3; ++Axis) {
        BBox Apart = Box;
        Apart.Min[Axis] = 1.001f;
        Apart.Max[Axis] = 2;
        EXPECT_FALSE(M_BBoxOverlap(Box, Apart) || M_BBoxOverlap(Apart, Box));
    }
}

TEST(BBox, DistanceIsThatToTheNearestPoint) {
    CRandom Random;
    for (int n = 0; n < 100; ++n) {
        const Vec3 p = Random.Point(5);
        const Vec3 Nearest = {std::clamp(p.x, -1.0f, 1.0f), std::clamp(p.y, -2.0f, 2.0f), std::clamp(p.z, -3.0f, 3.0f)};
        EXPECT_FLOAT_EQ(M_BBoxDistance({{-1, -2, -3}, {1, 2, 3}}, p), M_Length(p - Nearest));
    }
}

// The ray Origin + t * Dir against a + u * e1 + v * e2, solved by Cramer's rule.
TEST(Ray, HitsATriangleFromOneSideWhereBarycentricCoordinatesSay) {
    CRandom Random;
    int Hits = 0;
    for (int n = 0; n < 5000; ++n) {
        const Vec3 a = Random.Point(4);
        const Vec3 e1 = Random.Point(8);
        const Vec3 e2 = Random.Point(8);
        const Vec3 o = Random.Point(8);
        const Ray R = {a + o, Random.Unit()};
        const double Facing = Triple(R.Dir, e1, e2);
        const double u = Triple(R.Dir, o, e2) / Facing;
        const double v = Triple(R.Dir, e1, o) / Facing;
        const double Margin = std::min({u, v, 1 - u - v});
        if (std::fabs(Facing) < 0.01 || std::fabs(Margin) < 1e-3) {
            continue;
        }
        const double Expected = -Triple(o, e1, e2) / Facing; // below 0 behind the origin, which counts
        float t = 12345;
        const int Hit = M_RayTriangle(a, a + e1, a + e2, R, &t);
        ASSERT_EQ(Hit, Facing > 0 && Margin > 0);
        EXPECT_NEAR(t, Hit ? Expected : 12345, 1e-3 * (1 + std::fabs(Expected)));
        EXPECT_EQ(M_RayTriangle(a, a + e1, a + e2, R, nullptr), Hit);
        Hits += Hit;
    }
    EXPECT_GT(Hits, 100);
    EXPECT_EQ(M_RayTriangle({}, {4, 0, 0}, {8, 0, 0}, {{1, 0, -3}, {0, 0, 1}}, nullptr), 0) << "a flat one";
}

TEST(Ray, MeetsAPlaneBySideAndDirection) {
    const Plane P = {{0, 0, 1}, 2};
    struct {
        Ray R;
        int FrontOnly, AllowBehind, Hit;
        float t;
    } const Cases[] = {
        {{{0, 0, 5}, {0.6f, 0, -0.8f}}, 1, 0, 1, 3.75f}, {{{0, 0, -1}, {0, 0, 1}}, 0, 0, 1, 3},
        {{{0, 0, -1}, {0, 0, 1}}, 1, 0, 0, 99},          {{{0, 0, 5}, {0, 0, 1}}, 0, 0, 0, 99},
        {{{0, 0, 5}, {0, 0, 1}}, 0, 1, 1, -3},           {{{0, 0, 1}, {0, 0, -1}}, 1, 1, 1, -1},
        {{{0, 0, 1}, {0, 0, -1}}, 1, 0, 0, 99},          {{{0, 0, 5}, {1, 0, -0.00009f}}, 0, 1, 0, 99},
    };
    for (const auto& Case : Cases) {
        float t = 99;
        EXPECT_EQ(M_RayPlane(P, Case.R, Case.FrontOnly, Case.AllowBehind, &t), Case.Hit);
        EXPECT_FLOAT_EQ(t, Case.t);
        EXPECT_EQ(M_RayPlane(P, Case.R, Case.FrontOnly, Case.AllowBehind, nullptr), Case.Hit);
    }
}

// From outside at the nearer root of the sphere's equation, from inside at the distance of the centre.
TEST(Ray, MeetsASphere) {
    CRandom Random;
    int Hits = 0;
    for (int n = 0; n < 2000; ++n) {
        const Ray R = {Random.Point(5), Random.Unit()};
        const Vec3 Centre = Random.Point(5);
        const float Radius = Random.Between(0.2f, 3);
        const Vec3 o = R.Origin - Centre;
        const double b = M_Dot(o, R.Dir);
        const double c = M_Dot(o, o) - double{Radius} * Radius;
        const bool Inside = c <= 0;
        if (!Inside && std::fabs(b * b - c) < 1e-2) {
            continue;
        }
        float t = 0;
        const int Hit = M_RaySphere(R, Centre, Radius, &t);
        ASSERT_EQ(Hit, Inside || (b * b > c && b < 0));
        EXPECT_NEAR(t, !Hit ? 0 : Inside ? M_Length(o) : -b - std::sqrt(b * b - c), 2e-3);
        Hits += Hit;
    }
    EXPECT_GT(Hits, 100);
    EXPECT_EQ(M_RaySphere({{0, 1, 0}, {0, 0, 1}}, {}, 5, nullptr), 1);
    EXPECT_EQ(M_RaySphere({{-4, 0, 0}, {1, 0, 0}}, {}, 0, nullptr), 0) << "0 / 0 is no hit";
}

TEST(Ray, ToLocalMeetsTheSamePointsUnlessTheObjectIsFlat) {
    CRandom Random;
    Mat4 World;
    for (int n = 0; n < 50; ++n) {
        M_Mat4Compose({2, 3, 0.5f}, Random.Point(100), World, Random.Rotation());
        const Ray Outer = {Random.Point(50), Random.Unit()};
        Ray Local = Outer;
        M_RayToLocal(World, Local);
        EXPECT_NEAR(M_Length(Local.Dir), 1, 1e-5);
        Vec3 Back;
        M_Mat4MulPoint(World, Local.Origin + Local.Dir * 10, Back);
        ExpectNear(M_Normalized(Back - Outer.Origin), Outer.Dir, 2e-3f);
    }
    M_Mat4Compose({1, 0, 1}, {5, 5, 5}, World, {});
    Ray R = {{1, 2, 3}, {0, 1, 0}};
    M_RayToLocal(World, R);
    EXPECT_EQ(R.Origin, (Vec3{1, 2, 3}));
    EXPECT_EQ(R.Dir, (Vec3{0, 1, 0}));
}
