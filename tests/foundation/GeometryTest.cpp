#include "DoubleMatrix.h"

namespace {

using Points = std::vector<Vec3>;

double Triple(const Vec3& a, const Vec3& b, const Vec3& c) {
    return Determinant({{{a.x, b.x, c.x, 0}, {a.y, b.y, c.y, 0}, {a.z, b.z, c.z, 0}, {0, 0, 0, 1}}});
}

GArray<Vec3> Ring(const Points& From) {
    GArray<Vec3> Result;
    std::for_each(From.begin(), From.end(), [&](const Vec3& p) { Result.Add(p); });
    return Result;
}

TEST(BBox, OnePointNeverMovesBothEnds) {
    BBox Inverted = {{10, 10, 10}, {-10, -10, -10}};
    M_BBoxAddPoint({0, 0, 0}, Inverted);
    EXPECT_TRUE((Inverted.Min == Vec3() && Inverted.Max == Vec3{-10, -10, -10}));
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

// The ray Origin + t * Dir against a + u * e1 + v * e2, solved by Cramer's rule.
TEST(Ray, HitsATriangleFromOneSideWhereBarycentricCoordinatesSay) {
    CRandom Random;
    int Hits = 0;
    for (int n = 0; n < 5000; ++n) {
        const Vec3 a = Random.Point(4), e1 = Random.Point(8), e2 = Random.Point(8), o = Random.Point(8);
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
    const struct {
        Ray R;
        int FrontOnly, AllowBehind, Hit;
        float t;
    } Cases[] = {
        {{{0, 0, 5}, {0.6f, 0, -0.8f}}, 1, 0, 1, 3.75f}, {{{0, 0, -1}, {0, 0, 1}}, 0, 0, 1, 3},
        {{{0, 0, -1}, {0, 0, 1}}, 1, 0, 0, 99},          {{{0, 0, 5}, {0, 0, 1}}, 0, 0, 0, 99},
        {{{0, 0, 5}, {0, 0, 1}}, 0, 1, 1, -3},           {{{0, 0, 1}, {0, 0, -1}}, 1, 1, 1, -1},
        {{{0, 0, 1}, {0, 0, -1}}, 1, 0, 0, 99},          {{{0, 0, 5}, {1, 0, -0.00009f}}, 0, 1, 0, 99},
    };
    for (const auto& Case : Cases) {
        for (const float Before : {99.0f, -99.0f}) {
            float t = Before;
            float* Out = Before > 0 ? &t : nullptr;
            EXPECT_EQ(M_RayPlane({{0, 0, 1}, 2}, Case.R, Case.FrontOnly, Case.AllowBehind, Out), Case.Hit);
            EXPECT_FLOAT_EQ(t, Out ? Case.t : Before);
        }
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
        if (Inside || std::fabs(b * b - c) > 1e-2) {
            float t = 0;
            const int Hit = M_RaySphere(R, Centre, Radius, &t);
            ASSERT_EQ(Hit, Inside || (b * b > c && b < 0));
            EXPECT_NEAR(t, !Hit ? 0 : Inside ? M_Length(o) : -b - std::sqrt(b * b - c), 2e-3);
            Hits += Hit;
        }
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
    EXPECT_TRUE((R.Origin == Vec3{1, 2, 3} && R.Dir == Vec3{0, 1, 0}));
}

TEST(Polygon, PlaneHoldsAllPointsOrIsNotWritten) {
    CRandom Random;
    Plane P;
    for (int n = 0; n < 20; ++n) {
        const Vec3 u = Random.Unit(), v = M_Normalized(M_Cross(u, Random.Unit())), Origin = Random.Point(3);
        ASSERT_EQ(M_PolygonPlane(Ring({Origin, Origin + u, Origin + v, Origin + u * 3 + v, Origin - u}), P), 1);
        ExpectNear(P.Normal, M_Cross(u, v), 1e-4f);
        EXPECT_NEAR(P.D, M_Dot(P.Normal, Origin), 1e-5);
    }
    P.D = 7;
    EXPECT_EQ(M_PolygonPlane(Ring({{0, 0, 0}, {1, 0, 0}}), P), 0);
    EXPECT_EQ(M_PolygonPlane(Ring({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0.0002f}}), P), 0);
    EXPECT_EQ(P.D, 7);
    EXPECT_EQ(M_PolygonPlane(Ring({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0.00009f}}), P), 1);
}

TEST(Polygon, CleanTakesOutTwinsStraightCornersAndSpikes) {
    const Points Square = {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}};
    const std::pair<Points, Points> Cases[] = {
        {Square, Square},
        {{{0, 0, 0}, {0.00005f, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 0, 0.00005f}}, {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}}},
        {{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}, {0, 1, 0}}, Square},
        {{{0, 0, 0}, {2, 0, 0}, {5, 0, 0}, {2, 0, 0}, {2, 2, 0}}, {{0, 0, 0}, {5, 0, 0}, {2, 2, 0}}}};
    for (const auto& [From, To] : Cases) {
        GArray<Vec3> Cleaned = Ring(From);
        EXPECT_EQ(M_PolygonClean(Cleaned), 1);
        EXPECT_EQ(Points(Cleaned.begin(), Cleaned.end()), To);
    }
    for (GArray<Vec3> Hopeless : {Ring({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}}), Ring({})}) {
        EXPECT_EQ(M_PolygonClean(Hopeless), 0);
    }
}

TEST(Polygon, ProjectReplacesTheOutputAndReturnsTheFirstDepth) {
    Mat4 Move;
    M_Mat4Translation(Move, {10, 20, 30});
    GArray<Vec2> Out;
    Out.Add({9, 9});
    EXPECT_EQ(M_PolygonProject(Out, Ring({{1, 2, 3}, {4, 5, 6}}), Move), 33);
    EXPECT_EQ(std::vector<Vec2>(Out.begin(), Out.end()), (std::vector<Vec2>{{11, 22}, {14, 25}}));
    EXPECT_EQ(M_PolygonProject(Out, {}, Move), 3.4028235e38f);
    EXPECT_EQ(Out.Size(), 0u);
}

} // namespace
