// A physics world for one case. The case gives back its bodies; the world checks that none is left.
#pragma once

#include <btBulletDynamicsCommon.h>
#include <gtest/gtest.h>

#include "physics/Physics.h"

// Seconds; a fixed step of the game.
constexpr float STEP = 1.0f / 60.0f;

class PhysicsFixture : public ::testing::Test {
protected:
    void SetUp() override { PhyInit(); }
    void TearDown() override {
        EXPECT_EQ(GPhyWorld->getNumCollisionObjects(), 0);
        GPhyCallbacks.Clear();
        PhyFree();
    }

    static void ExpectNear(const btVector3& Actual, const btVector3& Expected, float Tolerance) {
        EXPECT_NEAR(Actual.x(), Expected.x(), Tolerance);
        EXPECT_NEAR(Actual.y(), Expected.y(), Tolerance);
        EXPECT_NEAR(Actual.z(), Expected.z(), Tolerance);
    }

    // A dynamic sphere of 10 world units that nothing pulls until the case says so.
    static btRigidBody* AddBall(float x, float y, float z) {
        btRigidBody* Ball = PhyAddCapsuleBody(10, 0, x, y, z, true);
        Ball->setGravity(btVector3(0, 0, 0));
        return Ball;
    }
};
