#include <vector>

#include "physics/PhysicsFixture.h"

namespace {

class BodyTest : public PhysicsFixture {
protected:
    static void ExpectNear(const btVector3& Actual, const btVector3& Expected, float Tolerance = 1e-5f) {
        EXPECT_LE((Actual - Expected).length(), Tolerance) << Actual.x() << " " << Actual.y() << " " << Actual.z();
    }
    static btVector3 Origin(const btRigidBody* Body) { return Body->getWorldTransform().getOrigin(); }

    // The corners of a box of half sizes 50, 100, 400 in world units.
    static std::vector<Vec3> BoxCorners(float z) {
        std::vector<Vec3> Corners;
        for (int i = 0; i < 8; i++) {
            Corners.push_back({i & 1 ? 50.0f : -50.0f, i & 2 ? 100.0f : -100.0f, i & 4 ? z + 400 : z - 400});
        }
        return Corners;
    }
};

} // namespace

TEST_F(BodyTest, FallsByFourSubstepsOfTheGivenTime) {
    constexpr float GRAVITY = 9.0f;
    constexpr int SUBSTEPS = 120;
    btRigidBody* Ball = AddBall(0, 0, 1000);
    Ball->setGravity(btVector3(0, 0, -GRAVITY));
    for (int i = 0; i < SUBSTEPS / 4; i++) {
        PhyStep(STEP);
    }
    // Speed first, then place: n(n + 1) / 2 times the fall of one substep.
    ExpectNear(Ball->getLinearVelocity(), btVector3(0, 0, -GRAVITY * STEP * SUBSTEPS), 1e-3f);
    ExpectNear(Origin(Ball), btVector3(0, 0, 20 - GRAVITY * STEP * STEP * SUBSTEPS * (SUBSTEPS + 1) / 2), 1e-3f);
    PhyRemoveBody(Ball);
}

TEST_F(BodyTest, CapsulesStandUprightAndOnlyDynamicOnesMove) {
    EXPECT_EQ(PhyAddCapsuleBody(10, -1, 0, 0, 0, true), nullptr);
    for (int i = 0; i < 4; i++) {
        const bool Dynamic = i & 1;
        const float Height = i & 2 ? 100.0f : 0.0f;
        btRigidBody* Body = PhyAddCapsuleBody(3, Height, 50, -100, 150, Dynamic);
        ExpectNear(Origin(Body), btVector3(1, -2, 3));
        btVector3 Min, Max;
        Body->getCollisionShape()->getAabb(btTransform::getIdentity(), Min, Max);
        ExpectNear(Max, btVector3(0.06f, 0.06f, 0.06f + Height * 0.01f));
        EXPECT_EQ(Body->getActivationState() == DISABLE_DEACTIVATION, Dynamic);
        EXPECT_NEAR(Body->getInvMass(), Dynamic ? 0.1f : 0.0f, 1e-6f);
        Body->applyTorqueImpulse(btVector3(5, 5, 5));
        ExpectNear(Body->getAngularVelocity(), btVector3(0, 0, 0), 0);
        PhyRemoveBody(Body);
    }
}

TEST_F(BodyTest, HullKeepsItsPointsWhereTheyWereWhateverItsOrigin) {
    std::vector<Vec3> Points = BoxCorners(-25);
    // A ninth point pulls the centroid off the middle of the box.
    Points.push_back({0, 0, 20});
    Vec3 Centre = {1, 2, 3};
    EXPECT_EQ(PhyAddHullBody(&Centre, nullptr, 0), nullptr);
    EXPECT_EQ(Centre, (Vec3{1, 2, 3}));
    for (Vec3* Out : {&Centre, static_cast<Vec3*>(nullptr)}) {
        btRigidBody* Body = PhyAddHullBody(Out, Points.data(), 9);
        ExpectNear(Origin(Body) * 50, Out ? btVector3(0, 0, -20) : btVector3(0, 0, 0), 1e-3f);
        EXPECT_LT(M_Length(Centre - Vec3{0, 0, -20}), 1e-3f);
        const auto* Hull = static_cast<btConvexHullShape*>(Body->getCollisionShape());
        ASSERT_EQ(Hull->getNumPoints(), 9);
        for (int i = 0; i < 9; i++) {
            const btVector3 Kept(Points[i].x, Points[i].y, Points[i].z);
            ExpectNear(Body->getWorldTransform() * Hull->getUnscaledPoints()[i] * 50, Kept, 1e-3f);
        }
        PhyRemoveBody(Body);
    }
}

TEST_F(BodyTest, MassIsThatOfASolidBoxAndPositionKeepsTheRotation) {
    const std::vector<Vec3> Points = BoxCorners(0);
    btRigidBody* Body = PhyAddHullBody(nullptr, Points.data(), 8);
    ExpectNear(Body->getInvInertiaDiagLocal(), btVector3(0, 0, 0), 0);
    for (const float Scale : {1.0f, 10.0f}) {
        PhySetMass(70, Scale, Body);
        EXPECT_NEAR(Body->getMass(), 70.0f, 1e-4f);
        // Mass / 3 times the squares of the half sizes 1, 2, 8; Bullet widens the box by collision margins of 0.04.
        const float Solid[3] = {2 * 2 + 8 * 8, 8 * 8 + 1 * 1, 1 * 1 + 2 * 2};
        for (int Axis = 0; Axis < 3; Axis++) {
            const float Found = 3 / (70 * Scale * Body->getInvInertiaDiagLocal()[Axis]);
            EXPECT_TRUE(Found > Solid[Axis] && std::sqrt(Found) < std::sqrt(Solid[Axis]) + 4.3f * 0.04f) << Found;
        }
    }
    const btQuaternion Turned(btVector3(0, 0, 1), 0.5f);
    Body->getWorldTransform().setRotation(Turned);
    Body->forceActivationState(ISLAND_SLEEPING);
    PhySetPosition({500, -250, 25}, Body);
    ExpectNear(Origin(Body), btVector3(10, -5, 0.5f));
    EXPECT_NEAR(Body->getWorldTransform().getRotation().dot(Turned), 1.0f, 1e-5f);
    EXPECT_TRUE(Body->isActive());
    PhyRemoveBody(Body);
}
