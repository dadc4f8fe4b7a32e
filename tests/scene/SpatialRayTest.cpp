#include "scene/SpatialFixture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>

namespace {

using Cell = std::array<int, 3>;
using Visits = std::vector<const SSpatialClient*>;

class SpatialRayTest : public SpatialFixture {
protected:
    // A client that lies in one cell only.
    CTestMesh& MeshIn(const Cell& At, float Answer = -1) {
        const Vec3 Low{CornerOf(At[0]) + 1, CornerOf(At[1]) + 1, CornerOf(At[2]) + 1};
        CTestMesh& Mesh = AddMesh({Low, Low + Vec3{1, 1, 1}});
        Mesh.Answer = Answer;
        Mesh.Asked = &Asked;
        Contents[At].push_back(&Mesh);
        return Mesh;
    }

    static float CornerOf(int CellNumber) { return static_cast<float>(CellNumber * CELL_SIZE - HALF); }
    static Vec3 CentreOf(const Cell& At) { return {CornerOf(At[0]) + 2, CornerOf(At[1]) + 2, CornerOf(At[2]) + 2}; }

    UINT32 Trace(const Vec3& Origin, const Vec3& Dir) {
        Asked.clear();
        Hits.Hits.Clear();
        return TraceGrid(&Grid, {Origin, Dir}, &Hits);
    }

    Visits HitClients() const {
        Visits Clients;
        for (GMap<float, SSpatialClient*>::Iterator It(Hits.Hits); It.Valid(); It.Next()) {
            Clients.push_back(It.Value());
        }
        return Clients;
    }

    // The slow form: where the ray enters each used cell, in the order of entry. False where the ray comes so near an
    // edge that the order is a matter of rounding.
    bool CellsAlong(const Ray& R, std::map<double, Cell>& Order) const {
        for (const auto& [At, Clients] : Contents) {
            double Enter = 0;
            double Leave = std::numeric_limits<double>::infinity();
            for (int Axis = 0; Axis < 3; ++Axis) {
                const double Low = (double{CornerOf(At[Axis])} - R.Origin[Axis]) / R.Dir[Axis];
                const double High = (double{CornerOf(At[Axis] + 1)} - R.Origin[Axis]) / R.Dir[Axis];
                Enter = std::max(Enter, std::min(Low, High));
                Leave = std::min(Leave, std::max(Low, High));
            }
            if (std::abs(Leave - Enter) < 1e-3) {
                return false;
            }
            if (Enter < Leave) {
                Order[Enter] = At;
            }
        }
        return true;
    }

    std::map<Cell, std::vector<CTestMesh*>> Contents;
    Visits Asked;
    SRayHits Hits;
};

TEST_F(SpatialRayTest, AsksTheClientsOfEveryCellOnTheRayInOrder) {
    for (int Count = 0; Count < 40000; ++Count) {
        MeshIn({Random(0, CELLS - 1), Random(0, CELLS - 1), Random(0, CELLS - 1)},
               Random(0, 30) ? -1 : RandomFloat(0, 9));
    }
    int Sure = 0;
    for (int Round = 0; Round < 150; ++Round) {
        Ray R{{RandomFloat(-120, 120), RandomFloat(-120, 120), RandomFloat(-120, 120)},
              {RandomFloat(-1, 1), RandomFloat(-1, 1), RandomFloat(-1, 1)}};
        std::map<double, Cell> Order;
        if (!CellsAlong(R, Order)) {
            continue;
        }
        ++Sure;
        Visits Expected;
        bool Hit = false;
        for (auto At = Order.begin(); At != Order.end() && !Hit; ++At) {
            for (const CTestMesh* Mesh : Contents[At->second]) {
                Expected.push_back(Mesh);
                Hit = Hit || Mesh->Answer >= 0;
            }
        }
        ASSERT_EQ(Trace(R.Origin, R.Dir), 1u);
        ASSERT_EQ(Asked, Expected);
        ASSERT_EQ(Hits.Hits.root != nullptr, Hit);
    }
    EXPECT_GT(Sure, 100);
}

TEST_F(SpatialRayTest, TiesStepAlongZThenYThenX) {
    Visits Expected;
    for (const Cell& At : {Cell{0, 0, 0}, {0, 0, 1}, {0, 1, 1}, {1, 1, 1}, {1, 1, 2}}) {
        Expected.push_back(&MeshIn(At));
    }
    MeshIn({1, 0, 0});
    MeshIn({0, 1, 0});
    EXPECT_EQ(Trace(CentreOf({0, 0, 0}), {1, 1, 1}), 1u);
    EXPECT_EQ(Asked, Expected);
}

// Cells of 10 by 1 by 1: along this ray y = 1 comes after 2 units, x = 10 after 5, y = 2 after 6, y = 3 after 10.
TEST_F(SpatialRayTest, OblongCellsAreCrossedInTheOrderOfTheRay) {
    Grid.Init({{0, 0, 0}, {80, 8, 8}}, {8, 8, 8});
    const Vec3 OnTheWay[] = {{5, 0.5f, 0.5f}, {5, 1.5f, 0.5f}, {15, 1.5f, 0.5f}, {15, 2.5f, 0.5f}, {15, 3.5f, 0.5f}};
    Visits Expected;
    for (const Vec3& Point : OnTheWay) {
        CTestMesh& Mesh = AddMesh({Point, Point});
        Mesh.Asked = &Asked;
        Expected.push_back(&Mesh);
    }
    Meshes.back().Answer = 1;
    EXPECT_EQ(Trace({5, 0.5f, 0.5f}, {1, 0.25f, 0}), 1u);
    EXPECT_EQ(Asked, Expected);
}

TEST_F(SpatialRayTest, ZeroComponentNeverSteps) {
    for (int X = 0; X < CELLS; ++X) {
        MeshIn({X, 9, 9});
        MeshIn({X, 9, 10});
        MeshIn({X, 10, 9});
    }
    EXPECT_EQ(Trace(CentreOf({CELLS - 1, 9, 9}), {-1, 0, -0.0f}), 1u);
    ASSERT_EQ(Asked.size(), size_t{CELLS});
    EXPECT_EQ(Asked.back(), Contents[(Cell{0, 9, 9})][0]);
}

TEST_F(SpatialRayTest, RaysWithoutAUsableDirectionEnd) {
    const CTestMesh& Mesh = MeshIn({9, 9, 9});
    const float NaN = std::numeric_limits<float>::quiet_NaN();
    const float Tiny = std::numeric_limits<float>::denorm_min();
    const float Infinite = std::numeric_limits<float>::infinity();
    for (const Vec3& Dir : {Vec3{0, 0, 0}, {NaN, NaN, NaN}, {Tiny, 0, 0}, {Infinite, -Infinite, 0}, {NaN, 1, 0}}) {
        EXPECT_EQ(Trace(CentreOf({9, 9, 9}), Dir), 1u);
        EXPECT_EQ(Asked, Visits{&Mesh});
    }
    EXPECT_EQ(Trace({NaN, 0, 0}, {1, 0, 0}), 0u);
}

TEST_F(SpatialRayTest, RayThatStartsOutsideFindsNothing) {
    MeshIn({0, 32, 32}, 1);
    EXPECT_EQ(Trace({-FHALF - 1, 2, 2}, {1, 0, 0}), 0u);
    EXPECT_EQ(Trace({FHALF, 2, 2}, {-1, 0, 0}), 0u) << "the upper side is outside";
    EXPECT_TRUE(Asked.empty());
    EXPECT_EQ(Trace({-FHALF, 2, 2}, {1, 0, 0}), 1u) << "the lower side is inside";
    EXPECT_EQ(HitClients().size(), 1u);
}

TEST_F(SpatialRayTest, FinishesTheCellOfTheFirstHitAndEndsThere) {
    MeshIn({2, 9, 9});
    CTestMesh& Far = MeshIn({5, 9, 9}, 8);
    CTestMesh& Near = MeshIn({5, 9, 9}, 7);
    CTestMesh& Farther = MeshIn({5, 9, 9}, 7.5f);
    MeshIn({6, 9, 9}, 1);
    Trace(CentreOf({0, 9, 9}), {1, 0, 0});
    EXPECT_EQ(Asked, (Visits{Contents[(Cell{2, 9, 9})][0], &Far, &Near, &Farther}));
    EXPECT_EQ(HitClients(), (Visits{&Near, &Far})) << "only what was nearest so far is kept";
    EXPECT_EQ(Hits.Hits.root ? Hits.Hits.Find(7)->value : nullptr, &Near);
}

TEST_F(SpatialRayTest, AllowanceGoesOnBehindAHit) {
    CTestMesh& First = MeshIn({0, 9, 9}, 4);
    CTestMesh& Second = MeshIn({1, 9, 9}, 3);
    CTestMesh& Third = MeshIn({2, 9, 9}, 2);
    for (const auto& [Allowance, Expected] :
         {std::pair<UINT32, Visits>{0, {&First}}, {1, {&First, &Second}}, {2, {&First, &Second, &Third}}}) {
        Hits.StepAllowance = Allowance;
        Trace(CentreOf({0, 9, 9}), {1, 0, 0});
        EXPECT_EQ(Asked, Expected);
    }
}

TEST_F(SpatialRayTest, LightIsABallThatCountsInFrontOnly) {
    const Vec3 Centre = CentreOf({9, 9, 9});
    SLightClient& Light = Enter(Lights, {Centre, Centre});
    Light.Pos = Centre;
    Trace(Centre - Vec3{20, 0, 0}, {1, 0, 0});
    ASSERT_EQ(HitClients(), Visits{&Light});
    EXPECT_NEAR(Hits.Hits.root->key, 15, 1e-3) << "a radius of 5 unless told otherwise";
    Hits.Radius = 2;
    Trace(Centre - Vec3{20, 0, 0}, {1, 0, 0});
    EXPECT_NEAR(Hits.Hits.root->key, 18, 1e-3);
    Trace(Centre, {1, 0, 0});
    EXPECT_TRUE(HitClients().empty()) << "a distance of 0 is no hit";
}

TEST_F(SpatialRayTest, ClientsOfNoKindAreNeverHit) {
    Enter(Others, {CentreOf({1, 9, 9}), CentreOf({1, 9, 9})});
    EXPECT_EQ(Trace(CentreOf({0, 9, 9}), {1, 0, 0}), 1u);
    EXPECT_TRUE(HitClients().empty());
}

} // namespace
