#include "FoundationFixture.h"

#include <vector>

using Points = std::vector<Vec3>;

namespace {

GArray<Vec3> Ring(const Points& From) {
    GArray<Vec3> Result;
    for (const Vec3& p : From) {
        Result.Add(p);
    }
    return Result;
}

} // namespace

TEST(Polygon, PlaneHoldsAllPointsOrIsNotWritten) {
    CRandom Random;
    for (int n = 0; n < 20; ++n) {
        const Vec3 u = Random.Unit();
        const Vec3 v = M_Normalized(M_Cross(u, Random.Unit()));
        const Vec3 Origin = Random.Point(3);
        Plane P;
        ASSERT_EQ(M_PolygonPlane(Ring({Origin, Origin + u, Origin + v, Origin + u * 3 + v, Origin - u}), P), 1);
        ExpectNear(P.Normal, M_Cross(u, v), 1e-4f);
        EXPECT_NEAR(P.D, M_Dot(P.Normal, Origin), 1e-5);
    }
    Plane P = {{7, 7, 7}, 7};
    EXPECT_EQ(M_PolygonPlane(Ring({{0, 0, 0}, {1, 0, 0}}), P), 0);
    EXPECT_EQ(M_PolygonPlane(Ring({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0.0002f}}), P), 0);
    EXPECT_EQ(P.D, 7);
    EXPECT_EQ(M_PolygonPlane(Ring({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0.00009f}}), P), 1);
}

TEST(Polygon, CleanTakesOutTwinsStraightCornersAndSpikes) {
    const struct {
        Points From, To;
    } Cases[] = {
        {{{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}}, {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}}},
        {{{0, 0, 0}, {0.00005f, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 0, 0.00005f}}, {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}}},
        {{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}, {0, 1, 0}},
         {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}}},
        {{{0, 0, 0}, {2, 0, 0}, {5, 0, 0}, {2, 0, 0}, {2, 2, 0}}, {{0, 0, 0}, {5, 0, 0}, {2, 2, 0}}},
    };
    for (const auto& Case : Cases) {
        GArray<Vec3> Cleaned = Ring(Case.From);
        EXPECT_EQ(M_PolygonClean(Cleaned), 1);
        EXPECT_EQ(Points(Cleaned.begin(), Cleaned.end()), Case.To);
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
    ASSERT_EQ(Out.Size(), 2u);
    EXPECT_EQ(Out[0], (Vec2{11, 22}));
    EXPECT_EQ(Out[1], (Vec2{14, 25}));
    EXPECT_EQ(M_PolygonProject(Out, {}, Move), 3.4028235e38f);
    EXPECT_EQ(Out.Size(), 0u);
}
