// A physics world for one case. The case gives back its bodies; the world checks that none is left.
#pragma once

#include <btBulletDynamicsCommon.h>
#include <gtest/gtest.h>

#include "physics/Physics.h"

constexpr float STEP = 1.0f / 60.0f; // seconds, a fixed step of the game

class PhysicsFixture : public ::testing::Test {
protected:
    void SetUp() override { PhyInit(); }
    void TearDown() override {
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
};
