#include "FoundationFixture.h"

#include <initializer_list>
#include <vector>

namespace {

GArray<Vec3> Ring(std::initializer_list<Vec3> Points) {
    GArray<Vec3> Result;
    for (const Vec3& p : Points) {
        Result.Add(p);
    }
    return Result;
}

void ExpectRing(const GArray<Vec3>& Actual, std::initializer_list<Vec3> Expected) {
    EXPECT_EQ(std::vector<Vec3>(Actual.begin(), Actual.end()), std::vector<Vec3>(Expected));
}

} // namespace

TEST(Polygon, PlaneHoldsAllPoints) {
    CRandom Random;
    for (int n = 0; n < 20; ++n) {
        const Vec3 u = Random.Unit();
        const Vec3 v = M_Normalized(M_Cross(u, Random.Unit()));
        const Vec3 Origin = Random.Point(3);
        GArray<Vec3> Points = Ring({Origin, Origin + u, Origin + v});
        for (int i = 0; i < 5; ++i) {
            Points.Add(Origin + u * Random.Between(-3, 3) + v * Random.Between(-3, 3));
        }
        Plane P;
        ASSERT_EQ(M_PolygonPlane(Points, P), 1);
        ExpectNear(P.Normal, M_Cross(u, v), 1e-4f);
        EXPECT_NEAR(P.D, M_Dot(P.Normal, Origin), 1e-5);
    }
}

TEST(Polygon, PlaneOfTooFewOrCrookedPointsIsNotWritten) {
    Plane P = {{7, 7, 7}, 7};
    EXPECT_EQ(M_PolygonPlane(Ring({{0, 0, 0}, {1, 0, 0}}), P), 0);
    EXPECT_EQ(M_PolygonPlane(Ring({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0.0002f}}), P), 0);
    EXPECT_EQ(P.D, 7);
    EXPECT_EQ(M_PolygonPlane(Ring({{0, 0, 3}, {1, 0, 3}, {0, 1, 3}}), P), 1);
    EXPECT_EQ(P.D, 3);
    EXPECT_EQ(M_PolygonPlane(Ring({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0.00009f}}), P), 1);
    EXPECT_EQ(P.D, 0);
}

TEST(Polygon, CleanLeavesAGoodRingAlone) {
    GArray<Vec3> Square = Ring({{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}});
    EXPECT_EQ(M_PolygonClean(Square), 1);
    ExpectRing(Square, {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}});
}

TEST(Polygon, CleanTakesOutTheLaterOfTwins) {
    GArray<Vec3> Points = Ring({{0, 0, 0}, {0.00005f, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}, {0, 0, 0.00005f}});
    EXPECT_EQ(M_PolygonClean(Points), 1);
    ExpectRing(Points, {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}});
}

TEST(Polygon, CleanTakesOutStraightCornersAndSpikes) {
    GArray<Vec3> Straight = Ring({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}, {0, 1, 0}});
    EXPECT_EQ(M_PolygonClean(Straight), 1);
    ExpectRing(Straight, {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}});

    GArray<Vec3> Overlap = Ring({{0, 0, 0}, {4, 0, 0}, {1, 0, 0}, {1, 3, 0}, {0, 3, 0}});
    EXPECT_EQ(M_PolygonClean(Overlap), 1);
    ExpectRing(Overlap, {{0, 0, 0}, {1, 0, 0}, {1, 3, 0}, {0, 3, 0}});

    GArray<Vec3> Spike = Ring({{0, 0, 0}, {2, 0, 0}, {5, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}});
    EXPECT_EQ(M_PolygonClean(Spike), 1);
    ExpectRing(Spike, {{0, 0, 0}, {5, 0, 0}, {2, 2, 0}, {0, 2, 0}});
}

TEST(Polygon, CleanGivesUpBelowThreePoints) {
    GArray<Vec3> Line = Ring({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}});
    EXPECT_EQ(M_PolygonClean(Line), 0);
    EXPECT_LT(Line.Size(), 3u);
    GArray<Vec3> Empty;
    EXPECT_EQ(M_PolygonClean(Empty), 0);
}

TEST(Polygon, ProjectReplacesTheOutputAndReturnsTheFirstDepth) {
    Mat4 Move;
    M_Mat4Translation(Move, {10, 20, 30});
    GArray<Vec2> Out;
    Out.Add({9, 9});
    EXPECT_EQ(M_PolygonProject(Out, Ring({{1, 2, 3}, {4, 5, 6}}), Move), 33);
    ASSERT_EQ(Out.Size(), 2u);
    EXPECT_EQ(Out[0], (Vec2{11, 22}));
    EXPECT_EQ(Out[1], (Vec2{14, 25}));
    EXPECT_EQ(M_PolygonProject(Out, {}, Move), 3.4028235e38f);
    EXPECT_EQ(Out.Size(), 0u);
}
