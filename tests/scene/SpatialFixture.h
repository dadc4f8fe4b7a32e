// A grid whose coordinates are exact in single precision: whole numbers from -128 to 128, cells 4 wide. Its tree splits
// nodes of 256, 128 and 64 units a side; leaves have 32.
#pragma once

#include "scene/LightClient.h"
#include "scene/Renderable.h"

#include <deque>
#include <gtest/gtest.h>
#include <random>
#include <set>
#include <vector>

// Answers ray tests with what the test put in, and notes that it was asked.
class CTestMesh : public IRenderable {
public:
    CTestMesh() { Kind = CLIENT_MESH; }
    UINT32 GetPartCount(UINT32) override { return 0; }
    bool GetRenderData(UINT32, UINT32, SRenderData*) override { return false; }
    void SetupPart(UINT32, UINT32) override {}
    void GetBounds(::BBox* Out) override { *Out = BBox; }
    UINT32 GetWorldMatrices(Mat4*) override { return 0; }
    bool TraceRay(const Ray&, float* HitDistance, UINT32) override {
        if (Asked) {
            Asked->push_back(this);
        }
        *HitDistance = Answer;
        return Answer >= 0;
    }

    std::vector<const SSpatialClient*>* Asked = nullptr;
    float Answer = -1; // below 0 is a miss
};

using ClientSet = std::set<const SSpatialClient*>;

class SpatialFixture : public ::testing::Test {
protected:
    static constexpr int HALF = 128;
    static constexpr int CELLS = 64;
    static constexpr int CELL_SIZE = 2 * HALF / CELLS;
    static constexpr float FHALF = HALF;

    SpatialFixture() { Grid.Init({{-FHALF, -FHALF, -FHALF}, {FHALF, FHALF, FHALF}}, {CELLS, CELLS, CELLS}); }

    template <class CLIENT>
    CLIENT& Enter(std::deque<CLIENT>& Store, const BBox& Box) {
        CLIENT& Added = Store.emplace_back();
        Added.BBox = Box;
        AddClient(&Grid, &Added);
        return Added;
    }
    CTestMesh& AddMesh(const BBox& Box) { return Enter(Meshes, Box); }

    int Random(int Low, int High) { return std::uniform_int_distribution<int>(Low, High)(Engine); }
    float RandomFloat(float Low, float High) { return std::uniform_real_distribution<float>(Low, High)(Engine); }

    // Mostly small; some flat, some huge, some partly or wholly outside the grid.
    BBox RandomBox() {
        BBox Box;
        const int Largest = Random(0, 9) == 0 ? 300 : 24;
        for (int Axis = 0; Axis < 3; ++Axis) {
            const int Low = Random(-HALF - 20, HALF);
            Box.Min[Axis] = static_cast<float>(Low);
            Box.Max[Axis] = static_cast<float>(Low + Random(0, Largest));
        }
        return Box;
    }

    // Clients first: they outlive the grid's lists.
    std::deque<CTestMesh> Meshes;
    std::deque<SLightClient> Lights;
    std::deque<SSpatialClient> Others;
    SSpatialGrid Grid;
    std::mt19937 Engine{20};
};

template <class CLIENT>
ClientSet SetOf(const GArray<CLIENT*>& Found) {
    return ClientSet(Found.begin(), Found.end());
}
