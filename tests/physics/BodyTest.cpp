#include <vector>

#include "physics/PhysicsFixture.h"

namespace {

// Physics units.
constexpr float ROUNDING = 1e-5f;

class BodyTest : public PhysicsFixture {
protected:
    // The corners of a box in world units.
    static std::vector<Vec3> BoxCorners(const Vec3& Centre, const Vec3& Half) {
        std::vector<Vec3> Corners;
        for (int i = 0; i < 8; i++) {
            Corners.push_back(Centre +
                              Vec3{i & 1 ? Half.x : -Half.x, i & 2 ? Half.y : -Half.y, i & 4 ? Half.z : -Half.z});
        }
        return Corners;
    }

    static btVector3 InverseInertia(btRigidBody* Body, float Mass, float Scale) {
        PhySetMass(Mass, Scale, Body);
        return Body->getInvInertiaDiagLocal();
    }
};

} // namespace

TEST_F(BodyTest, FallsByFourSubstepsOfTheGivenTime) {
    constexpr float GRAVITY = 9.0f;
    constexpr int STEPS = 30;
    btRigidBody* Ball = AddBall(0, 0, 1000);
    Ball->setGravity(btVector3(0, 0, -GRAVITY));
    for (int i = 0; i < STEPS; i++) {
        PhyStep(STEP);
    }
    // Speed first, then place: n(n + 1) / 2 times the fall of one substep.
    constexpr float SUBSTEPS = 4 * STEPS;
    EXPECT_NEAR(Ball->getLinearVelocity().z(), -GRAVITY * STEP * SUBSTEPS, 1e-3f);
    const float Fallen = GRAVITY * STEP * STEP * SUBSTEPS * (SUBSTEPS + 1) / 2;
    EXPECT_NEAR(Ball->getWorldTransform().getOrigin().z(), 20.0f - Fallen, 1e-3f);
    PhyRemoveBody(Ball);
}

TEST_F(BodyTest, CapsuleHasPhysicsScaleAndStandsUpright) {
    btRigidBody* Body = PhyAddCapsuleBody(3, 100, 50, -100, 150, false);
    const auto* Capsule = static_cast<btCapsuleShape*>(Body->getCollisionShape());
    ASSERT_EQ(Capsule->getShapeType(), CAPSULE_SHAPE_PROXYTYPE);
    EXPECT_EQ(Capsule->getUpAxis(), 2);
    EXPECT_NEAR(Capsule->getRadius(), 0.06f, ROUNDING);
    EXPECT_NEAR(Capsule->getHalfHeight(), 1.0f, ROUNDING);
    ExpectNear(Body->getWorldTransform().getOrigin(), btVector3(1, -2, 3), ROUNDING);
    EXPECT_TRUE(Body->isStaticObject());
    PhyRemoveBody(Body);
}

TEST_F(BodyTest, CapsuleWithoutHeightIsASphere) {
    btRigidBody* Body = PhyAddCapsuleBody(10, 0, 0, 0, 0, true);
    ASSERT_EQ(Body->getCollisionShape()->getShapeType(), SPHERE_SHAPE_PROXYTYPE);
    EXPECT_NEAR(static_cast<btSphereShape*>(Body->getCollisionShape())->getRadius(), 0.2f, ROUNDING);
    PhyRemoveBody(Body);
}

TEST_F(BodyTest, CapsuleOfNegativeHeightAndHullWithoutPointsAreNone) {
    EXPECT_EQ(PhyAddCapsuleBody(10, -1, 0, 0, 0, true), nullptr);
    Vec3 Centre = {1, 2, 3};
    EXPECT_EQ(PhyAddHullBody(&Centre, nullptr, 0), nullptr);
    EXPECT_EQ(Centre, (Vec3{1, 2, 3}));
}

TEST_F(BodyTest, DynamicCapsuleHasMassNeverSleepsAndCannotRotate) {
    btRigidBody* Body = PhyAddCapsuleBody(10, 20, 0, 0, 0, true);
    EXPECT_NEAR(Body->getMass(), 10.0f, ROUNDING);
    EXPECT_EQ(Body->getActivationState(), DISABLE_DEACTIVATION);
    Body->setGravity(btVector3(0, 0, 0));
    Body->applyTorqueImpulse(btVector3(5, 5, 5));
    PhyStep(STEP);
    ExpectNear(Body->getAngularVelocity(), btVector3(0, 0, 0), 0);
    PhyRemoveBody(Body);
}

TEST_F(BodyTest, HullStandsOnTheCentroidOfItsPoints) {
    std::vector<Vec3> Points = BoxCorners({100, 50, -25}, {10, 20, 30});
    // A ninth point pulls the centroid off the middle of the box.
    Points.push_back({100, 50, 20});
    const Vec3 Expected = {100, 50, (8 * -25.0f + 20) / 9};
    Vec3 Centre;
    btRigidBody* Body = PhyAddHullBody(&Centre, Points.data(), static_cast<UINT32>(Points.size()));
    ASSERT_NE(Body, nullptr);
    EXPECT_NEAR(Centre.x, Expected.x, 1e-4f);
    EXPECT_NEAR(Centre.y, Expected.y, 1e-4f);
    EXPECT_NEAR(Centre.z, Expected.z, 1e-4f);
    ExpectNear(Body->getWorldTransform().getOrigin(), btVector3(2, 1, Expected.z * 0.02f), ROUNDING);
    EXPECT_NEAR(Body->getMass(), 1.0f, ROUNDING);

    // The points themselves stay where they were in the world.
    const auto* Hull = static_cast<btConvexHullShape*>(Body->getCollisionShape());
    ASSERT_EQ(Hull->getNumPoints(), 9);
    for (int i = 0; i < 9; i++) {
        const btVector3 World = Body->getWorldTransform() * Hull->getUnscaledPoints()[i];
        ExpectNear(World * 50, btVector3(Points[i].x, Points[i].y, Points[i].z), 1e-3f);
    }
    PhyRemoveBody(Body);
}

TEST_F(BodyTest, HullWithoutCentreKeepsTheOriginOfItsPoints) {
    const std::vector<Vec3> Points = BoxCorners({100, 50, -25}, {10, 20, 30});
    btRigidBody* Body = PhyAddHullBody(nullptr, Points.data(), 8);
    ExpectNear(Body->getWorldTransform().getOrigin(), btVector3(0, 0, 0), 0);
    btVector3 Min, Max;
    Body->getAabb(Min, Max);
    ExpectNear((Min + Max) * 0.5f, btVector3(2, 1, -0.5f), ROUNDING);
    PhyRemoveBody(Body);
}

TEST_F(BodyTest, MassCarriesTheShapesInertiaTimesItsScale) {
    const std::vector<Vec3> Points = BoxCorners({0, 0, 0}, {50, 100, 400});
    btRigidBody* Body = PhyAddHullBody(nullptr, Points.data(), 8);
    ExpectNear(Body->getInvInertiaDiagLocal(), btVector3(0, 0, 0), 0);

    const btVector3 Plain = InverseInertia(Body, 70, 1);
    const btVector3 TenTimes = InverseInertia(Body, 70, 10);
    EXPECT_NEAR(Body->getMass(), 70.0f, 1e-4f);
    ExpectNear(TenTimes * 10 / Plain, btVector3(1, 1, 1), 1e-4f);

    // A solid box of half sizes 1, 2, 8 in physics units, which Bullet widens by a few collision margins of 0.04.
    constexpr float MARGINS = 3 * 0.04f;
    const float Half[3] = {1, 2, 8};
    for (int Axis = 0; Axis < 3; Axis++) {
        const auto Solid = [&](float Wider) {
            const float a = Half[(Axis + 1) % 3] + Wider;
            const float b = Half[(Axis + 2) % 3] + Wider;
            return 70.0f / 3 * (a * a + b * b);
        };
        EXPECT_GT(1 / Plain[Axis], Solid(0));
        EXPECT_LT(1 / Plain[Axis], Solid(MARGINS) * 1.001f);
    }
    PhyRemoveBody(Body);
}

TEST_F(BodyTest, SetPositionMovesAndWakesAndKeepsTheRotation) {
    const std::vector<Vec3> Points = BoxCorners({0, 0, 0}, {10, 10, 10});
    btRigidBody* Body = PhyAddHullBody(nullptr, Points.data(), 8);
    const btQuaternion Turned(btVector3(0, 0, 1), 0.5f);
    Body->getWorldTransform().setRotation(Turned);
    Body->forceActivationState(ISLAND_SLEEPING);
    PhySetPosition({500, -250, 25}, Body);
    ExpectNear(Body->getWorldTransform().getOrigin(), btVector3(10, -5, 0.5f), ROUNDING);
    EXPECT_NEAR(Body->getWorldTransform().getRotation().dot(Turned), 1.0f, ROUNDING);
    EXPECT_TRUE(Body->isActive());
    PhyRemoveBody(Body);
}

TEST(PhysicsWorldTest, FreeingNothingIsHarmlessAndTheWorldComesBack) {
    PhyFree();
    for (int i = 0; i < 2; i++) {
        PhyInit();
        ASSERT_NE(GPhyWorld, nullptr);
        EXPECT_EQ(GPhyWorld->getDebugDrawer(), &GPhyDebugDraw);
        PhyStep(STEP);
        PhyFree();
        PhyFree();
        EXPECT_EQ(GPhyWorld, nullptr);
        EXPECT_EQ(GPhySolver, nullptr);
        EXPECT_EQ(GPhyDispatcher, nullptr);
        EXPECT_EQ(GPhyConfig, nullptr);
        EXPECT_EQ(GPhyBroadphase, nullptr);
    }
}
