// Bodies and contacts, each case in a world of its own.
#include "physics/Physics.h"
#include "support/Common.h"

#include <btBulletDynamicsCommon.h>

namespace {

constexpr float STEP = 1.0f / 60.0f; // seconds, a fixed step of the game

class PhysicsTest : public testing::Test {
protected:
    PhysicsTest() { PhyInit(); }
    ~PhysicsTest() override {
        EXPECT_EQ(GPhyWorld->getNumCollisionObjects(), 0);
        GPhyCallbacks.Clear();
        PhyFree();
        PhyFree();
        EXPECT_EQ(GPhyWorld, nullptr);
    }

    // Under no gravity until the case says so.
    static btRigidBody* AddBall(float x, float y, float z) {
        btRigidBody* Ball = PhyAddCapsuleBody(10, 0, x, y, z, true);
        Ball->setGravity(btVector3(0, 0, 0));
        return Ball;
    }
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

TEST_F(PhysicsTest, ABallFallsByFourSubstepsOfTheGivenTime) {
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

TEST_F(PhysicsTest, CapsulesStandUprightAndOnlyDynamicOnesMove) {
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

TEST_F(PhysicsTest, AHullKeepsItsPointsWhereTheyWereWhateverItsOrigin) {
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

TEST_F(PhysicsTest, MassIsThatOfASolidBoxAndPositionKeepsTheRotation) {
    btRigidBody* Body = PhyAddHullBody(nullptr, BoxCorners(0).data(), 8);
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

// Counts what it hears.
class CListener : public PhyContactCallback {
public:
    bool ContactAdded(btManifoldPoint&, const btCollisionObject*, int, int, const btCollisionObject*, int,
                      int) override {
        Added++;
        if (LeavesWhenHit) {
            GPhyCallbacks.Unlink(GPhyCallbacks.first);
        }
        return Answer;
    }
    bool ContactFound(btManifoldPoint&, btCollisionObject* Body0, btCollisionObject* Body1) override {
        Found += Body0 != Body1 && (Body0 == Body || Body1 == Body);
        return Answer;
    }

    int Added = 0, Found = 0;
    bool Answer = false, LeavesWhenHit = false;
};

// A ball that overlaps a pole, and one that touches nothing.
class ContactTest : public PhysicsTest {
protected:
    ContactTest() {
        OnPole.Body = PhyAddCapsuleBody(10, 100, 0, 0, 0, false);
        OnBall.Body = AddBall(19, 0, 0);
        OnLonely.Body = AddBall(500, 0, 0);
        for (CListener* Listener : {&OnBall, &OnPole, &OnLonely}) {
            GPhyCallbacks.Append(Listener);
        }
    }
    ~ContactTest() override {
        for (const CListener* Listener : {&OnBall, &OnPole, &OnLonely}) {
            PhyRemoveBody(Listener->Body);
        }
    }
    // The two meet anew.
    void Step(bool WithFlag) {
        PhyRemoveBody(OnBall.Body);
        OnBall.Body = AddBall(19, 0, 0);
        OnBall.Body->setCollisionFlags(WithFlag ? btCollisionObject::CF_CUSTOM_MATERIAL_CALLBACK : 0);
        PhyStep(STEP);
    }

    CListener OnBall, OnPole, OnLonely;
};

TEST_F(ContactTest, ReachesTheListenersOfBothBodiesOnlyWithTheFlagUntilOneAnswersTrue) {
    Step(false);
    EXPECT_EQ(OnBall.Added + OnPole.Added, 0);
    Step(true);
    EXPECT_GT(OnBall.Added, 0);
    EXPECT_EQ(OnPole.Added, OnBall.Added);
    EXPECT_EQ(OnLonely.Added, 0);
    const int Before = OnBall.Added;
    OnBall.Answer = true;
    Step(true);
    EXPECT_GT(OnBall.Added, Before);
    EXPECT_EQ(OnPole.Added, Before);
}

TEST_F(ContactTest, AListenerMayLeaveWhileItIsCalled) {
    OnBall.LeavesWhenHit = true;
    Step(true);
    EXPECT_EQ(OnBall.Added, 1);
    EXPECT_GT(OnPole.Added, 0);
}

TEST_F(ContactTest, WalkGoesOverAllPointsAndARemovedBodyLeavesNone) {
    Step(false);
    ASSERT_EQ(GPhyDispatcher->getNumManifolds(), 1);
    const int Points = GPhyDispatcher->getManifoldByIndexInternal(0)->getNumContacts();
    EXPECT_EQ(PhyForEachContact(OnPole.Body, &OnPole), 0);
    EXPECT_EQ(OnPole.Found, Points);
    OnBall.Answer = true;
    EXPECT_EQ(PhyForEachContact(OnBall.Body, &OnBall), 1);
    EXPECT_EQ(OnBall.Found, 1);
    EXPECT_EQ(PhyForEachContact(OnLonely.Body, &OnLonely), 0);
    PhyRemoveBody(OnBall.Body);
    EXPECT_EQ(GPhyDispatcher->getNumManifolds(), 0);
    OnBall.Body = AddBall(0, 500, 0);
}

} // namespace
