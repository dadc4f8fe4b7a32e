#include "physics/PhysicsFixture.h"

namespace {

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
class ContactTest : public PhysicsFixture {
protected:
    void SetUp() override {
        PhysicsFixture::SetUp();
        OnPole.Body = PhyAddCapsuleBody(10, 100, 0, 0, 0, false);
        OnBall.Body = AddBall(19, 0, 0);
        OnLonely.Body = AddBall(500, 0, 0);
        GPhyCallbacks.Append(&OnBall);
        GPhyCallbacks.Append(&OnPole);
        GPhyCallbacks.Append(&OnLonely);
    }
    void TearDown() override {
        PhyRemoveBody(OnBall.Body);
        PhyRemoveBody(OnPole.Body);
        PhyRemoveBody(OnLonely.Body);
        PhysicsFixture::TearDown();
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

} // namespace

TEST_F(ContactTest, ReachesTheListenersOfBothBodiesOnlyWithTheFlag) {
    Step(false);
    EXPECT_EQ(OnBall.Added + OnPole.Added, 0);
    Step(true);
    EXPECT_GT(OnBall.Added, 0);
    EXPECT_EQ(OnPole.Added, OnBall.Added);
    EXPECT_EQ(OnLonely.Added, 0);
}

TEST_F(ContactTest, ATrueAnswerEndsTheRoundAndLeavingDoesNot) {
    OnBall.Answer = true;
    Step(true);
    EXPECT_EQ(OnPole.Added, 0);
    OnBall.Answer = false;
    OnBall.LeavesWhenHit = true;
    const int Before = OnBall.Added;
    Step(true);
    EXPECT_EQ(OnBall.Added, Before + 1);
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
