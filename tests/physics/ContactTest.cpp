#include <vector>

#include "physics/PhysicsFixture.h"

namespace {

constexpr int CUSTOM_MATERIAL = btCollisionObject::CF_CUSTOM_MATERIAL_CALLBACK;

// Writes down what it hears.
class CListener : public PhyContactCallback {
public:
    explicit CListener(btRigidBody* Listened) { Body = Listened; }

    bool ContactAdded(btManifoldPoint&, const btCollisionObject* Obj0, int, int, const btCollisionObject* Obj1, int,
                      int) override {
        Added.push_back({Obj0, Obj1});
        if (LeavesWhenHit) {
            Leave();
        }
        return Answer;
    }

    bool ContactFound(btManifoldPoint&, btCollisionObject* Body0, btCollisionObject* Body1) override {
        Found.push_back({Body0, Body1});
        return Answer;
    }

    void Leave() {
        for (auto* Node = GPhyCallbacks.first; Node; Node = Node->next) {
            if (Node->obj == this) {
                GPhyCallbacks.Unlink(Node);
                return;
            }
        }
    }

    struct SPair {
        const btCollisionObject* First;
        const btCollisionObject* Second;

        bool Is(const btCollisionObject* a, const btCollisionObject* b) const {
            return (First == a && Second == b) || (First == b && Second == a);
        }
    };

    std::vector<SPair> Added;
    std::vector<SPair> Found;
    bool Answer = false;
    bool LeavesWhenHit = false;
};

// A ball that overlaps a pole, and a second ball that touches nothing.
class ContactTest : public PhysicsFixture {
protected:
    void SetUp() override {
        PhysicsFixture::SetUp();
        Pole = PhyAddCapsuleBody(10, 100, 0, 0, 0, false);
        Ball = AddBall(19, 0, 0);
        Lonely = AddBall(500, 0, 0);
    }
    void TearDown() override {
        for (btRigidBody* Body : {Pole, Ball, Lonely}) {
            if (Body) {
                PhyRemoveBody(Body);
            }
        }
        PhysicsFixture::TearDown();
    }

    static void SetCustomMaterial(btRigidBody* Body) {
        Body->setCollisionFlags(Body->getCollisionFlags() | CUSTOM_MATERIAL);
    }

    btRigidBody* Pole = nullptr;
    btRigidBody* Ball = nullptr;
    btRigidBody* Lonely = nullptr;
};

} // namespace

TEST_F(ContactTest, ReachesTheCallbackOfEitherBodyButNotOfOthers) {
    CListener OnBall(Ball), OnPole(Pole), OnLonely(Lonely);
    for (CListener* Listener : {&OnBall, &OnPole, &OnLonely}) {
        GPhyCallbacks.Append(Listener);
    }
    SetCustomMaterial(Ball);
    PhyStep(STEP);
    ASSERT_FALSE(OnBall.Added.empty());
    EXPECT_TRUE(OnBall.Added[0].Is(Ball, Pole));
    EXPECT_EQ(OnPole.Added.size(), OnBall.Added.size());
    EXPECT_TRUE(OnLonely.Added.empty());
}

TEST_F(ContactTest, WithoutTheFlagOnlyTheWalkSeesTheContact) {
    CListener OnBall(Ball);
    GPhyCallbacks.Append(&OnBall);
    PhyStep(STEP);
    EXPECT_TRUE(OnBall.Added.empty());
    OnBall.Answer = true;
    EXPECT_EQ(PhyForEachContact(Ball, &OnBall), 1);
    ASSERT_EQ(OnBall.Found.size(), 1u);
    EXPECT_TRUE(OnBall.Found[0].Is(Ball, Pole));
}

TEST_F(ContactTest, TheFirstTrueAnswerEndsTheRound) {
    CListener First(Ball), Second(Ball);
    First.Answer = true;
    GPhyCallbacks.Append(&First);
    GPhyCallbacks.Append(&Second);
    SetCustomMaterial(Ball);
    PhyStep(STEP);
    EXPECT_FALSE(First.Added.empty());
    EXPECT_TRUE(Second.Added.empty());
}

TEST_F(ContactTest, ACallbackMayLeaveDuringItsRound) {
    CListener First(Ball), Second(Ball);
    First.LeavesWhenHit = true;
    GPhyCallbacks.Append(&First);
    GPhyCallbacks.Append(&Second);
    SetCustomMaterial(Ball);
    PhyStep(STEP);
    EXPECT_EQ(First.Added.size(), 1u);
    EXPECT_FALSE(Second.Added.empty());
    EXPECT_EQ(GPhyCallbacks.count, 1u);
}

TEST_F(ContactTest, WalkGoesOverAllPointsUntilTheAnswerIsTrue) {
    PhyStep(STEP);
    int Points = 0;
    for (int i = 0; i < GPhyDispatcher->getNumManifolds(); i++) {
        Points += GPhyDispatcher->getManifoldByIndexInternal(i)->getNumContacts();
    }
    ASSERT_GT(Points, 0);
    CListener Listener(nullptr);
    EXPECT_EQ(PhyForEachContact(Pole, &Listener), 0);
    EXPECT_EQ(Listener.Found.size(), static_cast<std::size_t>(Points));
    EXPECT_EQ(PhyForEachContact(Lonely, &Listener), 0);
    EXPECT_EQ(Listener.Found.size(), static_cast<std::size_t>(Points));
}

TEST_F(ContactTest, ARemovedBodyLeavesNoManifold) {
    PhyStep(STEP);
    ASSERT_EQ(GPhyDispatcher->getNumManifolds(), 1);
    PhyRemoveBody(Ball);
    Ball = nullptr;
    EXPECT_EQ(GPhyDispatcher->getNumManifolds(), 0);
    CListener Listener(nullptr);
    EXPECT_EQ(PhyForEachContact(Pole, &Listener), 0);
    PhyStep(STEP);
}

TEST_F(ContactTest, DefaultCallbackHearsNothing) {
    PhyContactCallback Plain;
    Plain.Body = Ball;
    GPhyCallbacks.Append(&Plain);
    SetCustomMaterial(Ball);
    PhyStep(STEP);
    EXPECT_EQ(PhyForEachContact(Ball, &Plain), 0);
}
