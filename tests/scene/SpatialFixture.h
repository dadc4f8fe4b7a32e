// A grid whose coordinates are exact in single precision: whole numbers from -128 to 128, cells 4 wide. Its tree splits
// nodes of 256, 128 and 64 units a side; leaves have 32.
#pragma once

#include "scene/LightClient.h"
#include "scene/Renderable.h"

#include <cmath>
#include <deque>
#include <gtest/gtest.h>
#include <random>
#include <vector>

using Visits = std::vector<const SSpatialClient*>;

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
        Asked.push_back(this);
        *HitDistance = Answer;
        return Answer >= 0;
    }

    static inline Visits Asked;
    float Answer = -1; // below 0 is a miss
};

inline bool Touch(const BBox& A, const BBox& B) {
    return A.Min.x <= B.Max.x && B.Min.x <= A.Max.x && A.Min.y <= B.Max.y && B.Min.y <= A.Max.y && A.Min.z <= B.Max.z &&
           B.Min.z <= A.Max.z;
}

class SpatialFixture : public ::testing::Test {
protected:
    static constexpr int HALF = 128;
    static constexpr int CELLS = 64;
    const BBox BOX = {{-HALF, -HALF, -HALF}, {HALF, HALF, HALF}};

    SpatialFixture() { Grid.Init(BOX, {CELLS, CELLS, CELLS}); }

    CTestMesh& AddMesh(const BBox& Box) {
        Meshes.emplace_back().BBox = Box;
        AddClient(&Grid, &Meshes.back());
        return Meshes.back();
    }

    int Random(int Low, int High) { return std::uniform_int_distribution<int>(Low, High)(Engine); }
    float RandomFloat(float Low, float High) { return std::uniform_real_distribution<float>(Low, High)(Engine); }
    Vec3 RandomPoint(float Reach) {
        return {RandomFloat(-Reach, Reach), RandomFloat(-Reach, Reach), RandomFloat(-Reach, Reach)};
    }

    // Mostly small; some flat, some huge, some partly or wholly outside the grid.
    BBox RandomBox() {
        BBox Box;
        const int Largest = Random(0, 9) == 0 ? 300 : 24;
        for (int Axis = 0; Axis < 3; ++Axis) {
            Box.Min[Axis] = static_cast<float>(Random(-HALF - 20, HALF));
            Box.Max[Axis] = Box.Min[Axis] + static_cast<float>(Random(0, Largest));
        }
        return Box;
    }

    std::deque<CTestMesh> Meshes; // outlive the grid's lists, as do the two others
    SLightClient Light;
    SSpatialClient Other;
    SSpatialGrid Grid;
    std::mt19937 Engine{20};
};
