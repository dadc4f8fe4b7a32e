#include "scene/SpatialFixture.h"

#include <algorithm>
#include <array>
#include <map>

namespace {

using Cell = std::array<int, 3>;

// Oblong cells of 10 by 1 by 2 units, a mesh in each.
class SpatialRayTest : public SpatialFixture {
protected:
    const Vec3 SIZE = {10, 1, 2};
    const Vec3 EXTENT = {160, 8, 8};

    SpatialRayTest() {
        Grid.Init({{}, EXTENT}, {16, 8, 4});
        for (const Cell& At : AllCells()) {
            AddMesh({CentreOf(At), CentreOf(At)});
        }
    }

    static std::vector<Cell> AllCells() {
        std::vector<Cell> All;
        for (int At = 0; At < 16 * 8 * 4; ++At) {
            All.push_back({At % 16, At / 16 % 8, At / 128});
        }
        return All;
    }
    Vec3 CornerOf(const Cell& At) const { return Vec3{float(At[0]), float(At[1]), float(At[2])} * SIZE; }
    Vec3 CentreOf(const Cell& At) const { return CornerOf(At) + SIZE * 0.5f; }

    // By their boxes: a mesh is in the cells that its box touches, unless neither corner lies in the grid.
    Visits MeshesIn(const std::vector<Cell>& Path) const {
        Visits Result;
        for (const Cell& At : Path) {
            for (const CTestMesh& Mesh : Meshes) {
                const BBox& Box = Mesh.BBox;
                if (Touch(Box, {CornerOf(At), CornerOf(At) + SIZE}) &&
                    (Touch({Box.Min, Box.Min}, Grid.Box) || Touch({Box.Max, Box.Max}, Grid.Box))) {
                    Result.push_back(&Mesh);
                }
            }
        }
        return Result;
    }

    UINT32 Trace(const Vec3& Origin, const Vec3& Dir) {
        CTestMesh::Asked.clear();
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

    // The slow form: where the ray enters each cell, in the order of entry. Empty where the ray comes so near an edge
    // that the order is a matter of rounding.
    std::map<double, Cell> CellsAlong(const Ray& R) const {
        std::map<double, Cell> Order;
        for (const Cell& At : AllCells()) {
            double Enter = 0;
            double Leave = INFINITY;
            for (int Axis = 0; Axis < 3; ++Axis) {
                const double Low = (double{CornerOf(At)[Axis]} - R.Origin[Axis]) / R.Dir[Axis];
                const double High = Low + double{SIZE[Axis]} / R.Dir[Axis];
                Enter = std::max(Enter, std::min(Low, High));
                Leave = std::min(Leave, std::max(Low, High));
            }
            if (std::abs(Leave - Enter) < 1e-4) {
                return {};
            }
            if (Enter < Leave) {
                Order[Enter] = At;
            }
        }
        return Order;
    }

    SRayHits Hits;
};

TEST_F(SpatialRayTest, AsksTheCellsOnTheRayToTheEndOfTheFirstHitsCellOrOfTheAllowance) {
    for (int Count = 0; Count < 200; ++Count) {
        const Vec3 Low = (RandomPoint(0.6f) + Vec3{0.5f, 0.5f, 0.5f}) * EXTENT;
        AddMesh({Low, Low + (RandomPoint(1) + Vec3{1, 1, 1}) * SIZE});
    }
    for (CTestMesh& Mesh : Meshes) {
        Mesh.Answer = Random(0, 9) ? -1 : RandomFloat(0, 9);
    }
    int Sure = 0;
    for (int Round = 0; Round < 400; ++Round) {
        const Ray R = {(RandomPoint(1) + Vec3{1, 1, 1}) * 0.5f * EXTENT, RandomPoint(1) * SIZE};
        Hits.StepAllowance = static_cast<UINT32>(Random(0, 4));
        Visits Expected, Kept; // what was nearest so far, the nearest first
        float Nearest = INFINITY;
        UINT32 Steps = 0;
        for (const auto& [Enter, At] : CellsAlong(R)) {
            for (const SSpatialClient* Client : MeshesIn({At})) {
                Expected.push_back(Client);
                const float Answer = static_cast<const CTestMesh*>(Client)->Answer;
                if (Answer >= 0 && Answer < Nearest) {
                    Nearest = Answer;
                    Kept.insert(Kept.begin(), Client);
                }
            }
            if (++Steps > Hits.StepAllowance && !Kept.empty()) {
                break;
            }
        }
        if (Steps > 0) {
            ++Sure;
            ASSERT_EQ(Trace(R.Origin, R.Dir), 1u);
            ASSERT_EQ(CTestMesh::Asked, Expected);
            ASSERT_EQ(HitClients(), Kept);
        }
    }
    EXPECT_GT(Sure, 300);
}

TEST_F(SpatialRayTest, TiesStepAlongZThenYThenXAndZeroNeverSteps) {
    Trace(CentreOf({0, 0, 2}), SIZE);
    EXPECT_EQ(CTestMesh::Asked, MeshesIn({{0, 0, 2}, {0, 0, 3}, {0, 1, 3}, {1, 1, 3}}));
    Trace(CentreOf({3, 7, 3}), {-1, 0, -0.0f});
    EXPECT_EQ(CTestMesh::Asked, MeshesIn({{3, 7, 3}, {2, 7, 3}, {1, 7, 3}, {0, 7, 3}}));
    const float Tiny = std::numeric_limits<float>::denorm_min();
    for (const Vec3& Dir : {Vec3{0, 0, 0}, {NAN, NAN, NAN}, {Tiny, 0, 0}, {INFINITY, INFINITY, 0}, {NAN, 1, 0}}) {
        EXPECT_EQ(Trace(CentreOf({15, 7, 3}), Dir), 1u);
        EXPECT_EQ(CTestMesh::Asked, MeshesIn({{15, 7, 3}})) << "no direction to go on in";
    }
}

TEST_F(SpatialRayTest, RayThatStartsOutsideFindsNothing) {
    EXPECT_EQ(Trace({-1, 2, 2}, {1, 0, 0}), 0u);
    EXPECT_EQ(Trace({160, 2, 2}, {-1, 0, 0}), 0u) << "the upper side is outside";
    EXPECT_EQ(Trace({NAN, 0, 0}, {1, 0, 0}), 0u);
    EXPECT_EQ(CTestMesh::Asked, Visits{});
    EXPECT_EQ(Trace({0, 2, 2}, {1, 0, 0}), 1u) << "the lower side is inside";
}

TEST_F(SpatialRayTest, LightIsABallThatCountsInFrontOnlyAndOtherKindsAreNeverHit) {
    Light.Pos = Light.BBox.Min = Light.BBox.Max = Other.BBox.Min = Other.BBox.Max = CentreOf({9, 7, 3});
    AddClient(&Grid, &Light);
    AddClient(&Grid, &Other);
    for (const float Radius : {5.0f, 2.0f}) {
        Trace(Light.Pos - Vec3{20, 0, 0}, {1, 0, 0});
        ASSERT_EQ(HitClients(), Visits{&Light});
        EXPECT_NEAR(Hits.Hits.root->key, 20 - Radius, 1e-3);
        Hits.Radius = 2;
    }
    Trace(Light.Pos, {1, 0, 0});
    EXPECT_EQ(HitClients(), Visits{}) << "a distance of 0 is no hit";
}

} // namespace
