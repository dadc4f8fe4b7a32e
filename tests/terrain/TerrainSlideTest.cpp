// A ball let go on the terrain, against a closed formula on a plane and against Bullet's own triangle mesh on hills.
//
// Bullet's spheres bump a little against the edges between triangles, even in a plane, and how they do depends on the
// order in which a shape reports its triangles: over hundreds of substeps two orders part ways as two throws of dice
// do. So the path is compared in two ways: step by step from equal states with Bullet's mesh as it is, and over the
// whole ride with the same mesh that reports its triangles row by row.
#include <algorithm>
#include <btBulletDynamicsCommon.h>
#include <memory>
#include <vector>

#include "physics/Physics.h"
#include "terrain/TerrainFixture.h"
#include "terrain/TerrainShape.h"

namespace {

constexpr UINT32 SIDE = 129;
constexpr float STEP = 1.0f / 60.0f;
constexpr float SUBSTEP = STEP;  // of physics time; a step has four
constexpr float GRAVITY = 10.0f; // physics units per second squared
constexpr float RADIUS = 10.0f;  // world units

// Bullet's mesh, with the triangles of each query in the order in which they were added.
class COrderedMesh : public btBvhTriangleMeshShape, private btTriangleCallback {
public:
    explicit COrderedMesh(btTriangleMesh* Mesh) : btBvhTriangleMeshShape(Mesh, true) {}

    void processAllTriangles(btTriangleCallback* Callback, const btVector3& Min, const btVector3& Max) const override {
        Found.clear();
        btBvhTriangleMeshShape::processAllTriangles(const_cast<COrderedMesh*>(this), Min, Max);
        std::sort(Found.begin(), Found.end(), [](const STriangle& a, const STriangle& b) { return a.Index < b.Index; });
        for (STriangle& Triangle : Found) {
            Callback->processTriangle(Triangle.Corners, 0, Triangle.Index);
        }
    }

private:
    struct STriangle {
        btVector3 Corners[3];
        int Index;
    };

    void processTriangle(btVector3* Corners, int, int Index) override {
        Found.push_back({{Corners[0], Corners[1], Corners[2]}, Index});
    }

    mutable std::vector<STriangle> Found;
};

struct SState {
    btVector3 Place; // physics units
    btVector3 Speed;
};

class TerrainSlideTest : public ::testing::Test {
protected:
    void SetUp() override {
        PhyInit();
        Terrain.Extents = {1290, 1290, 400};
    }
    void TearDown() override {
        EXPECT_EQ(GPhyWorld->getNumCollisionObjects(), 0);
        PhyFree();
    }

    // Higher towards the top of Y, like the game's slopes.
    static float Slope(UINT32, UINT32 y) { return static_cast<float>(y) / (SIDE - 1); }
    static float HillySlope(UINT32 x, UINT32 y) {
        const float fx = static_cast<float>(x);
        const float fy = static_cast<float>(y);
        return 0.05f + 0.85f * fy / (SIDE - 1) + 0.03f * std::sin(fx * 0.3f) + 0.02f * std::cos(fy * 0.4f + fx * 0.1f);
    }

    // The same heights as a mesh of all triangles, which Bullet keeps in a tree of its own.
    btTriangleMesh* MakeMesh() {
        Mesh = std::make_unique<btTriangleMesh>();
        const btVector3 Max = btVector3(Terrain.Extents.x, Terrain.Extents.y, Terrain.Extents.z) * 0.02f;
        const auto At = [&](UINT32 x, UINT32 y) {
            const float u = static_cast<float>(x) / SIDE - 0.5f;
            const float v = static_cast<float>(y) / SIDE - 0.5f;
            return btVector3(2 * u * Max.x(), 2 * v * Max.y(), Max.z() * Terrain.Heights[y * SIDE + x]);
        };
        for (UINT32 y = 0; y + 1 < SIDE; y++) {
            for (UINT32 x = 0; x + 1 < SIDE; x++) {
                Mesh->addTriangle(At(x, y), At(x, y + 1), At(x + 1, y + 1));
                Mesh->addTriangle(At(x + 1, y + 1), At(x + 1, y), At(x, y));
            }
        }
        return Mesh.get();
    }

    static btRigidBody* AddMeshBody(btBvhTriangleMeshShape* Shape) {
        btRigidBody::btRigidBodyConstructionInfo Info(0, new btDefaultMotionState, Shape);
        Info.m_friction = 0;
        auto* Body = new btRigidBody(Info);
        GPhyWorld->addRigidBody(Body);
        return Body;
    }

    btRigidBody* AddTerrainBody() {
        return CreateTerrainBody(Terrain.Extents, Terrain.Heights, SIDE, SIDE, Terrain.Position);
    }

    static btRigidBody* AddBall(const SState& State) {
        const btVector3 World = State.Place * PhyWorldScale;
        btRigidBody* Ball = PhyAddCapsuleBody(RADIUS, 0, World.x(), World.y(), World.z(), true);
        Ball->setGravity(btVector3(0, 0, -GRAVITY));
        Ball->setLinearVelocity(State.Speed);
        return Ball;
    }

    static SState StateOf(const btRigidBody* Ball) {
        return {Ball->getWorldTransform().getOrigin(), Ball->getLinearVelocity()};
    }

    // The ball's states, one a step. Takes the ground away again.
    static std::vector<SState> LetGo(btRigidBody* Ground, const Vec3& From, int Steps) {
        btRigidBody* Ball = AddBall({btVector3(From.x, From.y, From.z) * PhyScale, btVector3(0, 0, 0)});
        std::vector<SState> Path;
        for (int i = 0; i < Steps; i++) {
            PhyStep(STEP);
            Path.push_back(StateOf(Ball));
        }
        PhyRemoveBody(Ball);
        PhyRemoveBody(Ground);
        return Path;
    }

    // Where one step leads a fresh ball from each of the states.
    static std::vector<SState> StepFromEach(btRigidBody* Ground, const std::vector<SState>& States) {
        std::vector<SState> After;
        for (const SState& State : States) {
            btRigidBody* Ball = AddBall(State);
            PhyStep(STEP);
            After.push_back(StateOf(Ball));
            PhyRemoveBody(Ball);
        }
        PhyRemoveBody(Ground);
        return After;
    }

    STerrain Terrain;
    std::unique_ptr<btTriangleMesh> Mesh;
};

} // namespace

TEST_F(TerrainSlideTest, ABallSlidesDownAPlane) {
    MakeGround(Terrain, SIDE, Slope);
    const float Tangent = Terrain.Extents.z / (2 * Terrain.Extents.y * (SIDE - 1) / SIDE);
    const float Sine = Tangent / std::sqrt(1 + Tangent * Tangent);
    const float Cosine = Sine / Tangent;
    // Just clear of the ground, whose plane passes through the first row at height 0.
    const auto PlaneHeight = [&](float y) { return (y + Terrain.Extents.y) * Tangent; };
    const Vec3 Start = {0, 900, PlaneHeight(900) + RADIUS / Cosine + 0.1f};

    constexpr int STEPS = 120;
    const std::vector<SState> Path = LetGo(AddTerrainBody(), Start, STEPS);
    const float Time = 4 * STEPS * SUBSTEP;
    const float Down = 0.5f * GRAVITY * Sine * Time * Time * Cosine;
    const btVector3 End = Path.back().Place;
    // Never faster than without friction; the bumps over the edges between triangles cost up to a quarter of the way.
    EXPECT_LT(Start.y / 50 - End.y(), Down * 1.005f);
    EXPECT_GT(Start.y / 50 - End.y(), Down * 0.75f);
    // The ball's middle stays a radius above the plane; the same bumps lift it by a quarter of that at most.
    for (const auto& [p, Speed] : Path) {
        const float Clearance = (p.z() * 50 - PlaneHeight(p.y() * 50)) * Cosine / 50;
        ASSERT_NEAR(Clearance, RADIUS / 50, RADIUS / 50 / 4);
    }
}

TEST_F(TerrainSlideTest, WholePathAgreesWithATriangleMeshOfTheSameHeights) {
    MakeGround(Terrain, SIDE, HillySlope);
    for (const float x : {-700.0f, 30.0f, 415.0f}) {
        const Vec3 Start = {x, 1000, 460};
        constexpr int STEPS = 150;
        const std::vector<SState> Own = LetGo(AddTerrainBody(), Start, STEPS);
        const std::vector<SState> Expected = LetGo(AddMeshBody(new COrderedMesh(MakeMesh())), Start, STEPS);
        // The same sums in the same order, so there is nothing to drift apart.
        for (int i = 0; i < STEPS; i++) {
            ASSERT_LT((Own[i].Place - Expected[i].Place).length(), 1e-4f) << "step " << i;
        }
        EXPECT_GT(Own.front().Place.y() - Own.back().Place.y(), 20) << "the ball did not slide";
    }
}

TEST_F(TerrainSlideTest, EveryStepAgreesWithBulletsOwnMesh) {
    MakeGround(Terrain, SIDE, HillySlope);
    const std::vector<SState> Path = LetGo(AddTerrainBody(), {30, 1000, 460}, 150);
    const std::vector<SState> Own = StepFromEach(AddTerrainBody(), Path);
    const std::vector<SState> Expected = StepFromEach(AddMeshBody(new btBvhTriangleMeshShape(MakeMesh(), true)), Path);
    // Where the ball meets several triangles at once, the order of the contacts moves it by up to a world unit.
    int Apart = 0;
    for (std::size_t i = 0; i < Path.size(); i++) {
        const float Difference = (Own[i].Place - Expected[i].Place).length();
        ASSERT_LT(Difference, 0.02f) << "step " << i;
        Apart += Difference > 1e-4f;
    }
    EXPECT_LT(Apart, static_cast<int>(Path.size()) / 5);
}
