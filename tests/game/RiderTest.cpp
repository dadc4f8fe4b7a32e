// The rider's mechanics, each by itself: what keys, stroke, spring, alignment and camera do in single steps.
#include "game/GameFixture.h"

namespace {

class Rider : public GameFixture {
protected:
    // Bullet's damping over one game step, which is four of its own.
    static double Damped(double Speed, int Substeps = 4) { return Speed * std::pow(1 - 0.2, Substeps / 60.0); }
};

TEST_F(Rider, StandsWhereItsBodyIsAndTurnsWithIt) {
    CRider& Rider = FlyingRider();
    Step();
    ExpectNear(Rider.Client.Pos + Rider.Centre, {10, 20, 500}, 0.01f);
    const btQuaternion Turn(btVector3(0.6f, 0, 0.8f), 0.7f);
    Rider.Body->getWorldTransform().setRotation(Turn);
    Step();
    const btQuaternion Now = Rider.Body->getOrientation();
    for (const Vec3& Local : {Vec3{1, 0, 0}, Vec3{0, -1, 0}, Vec3{0, 0, 1}}) {
        const btVector3 Expected = quatRotate(Now, btVector3(Local.x, Local.y, Local.z));
        Vec3 World;
        M_QuatRotate(Rider.Client.Rot, Local, World);
        ExpectNear(World, {Expected.x(), Expected.y(), Expected.z()}, 1e-4f);
    }
    Vec3 Centre;
    M_QuatRotate(Rider.Client.Rot, Rider.Centre, Centre);
    ExpectNear(Rider.Client.Pos + Centre, {10, 20, 500}, 0.05f);
}

// A force set in one step acts in the first of the next step's four substeps, behind its damping, on a mass of 70.
TEST_F(Rider, KeysPushSteerAndBrake) {
    const auto SpeedAfter = [&](std::initializer_list<UINT32> Keys, int Steps) {
        CRider& Rider = FlyingRider();
        for (int i = 0; i < Steps; ++i) {
            Step(Keys);
        }
        return VelocityOf(Rider);
    };
    const double First = Damped(60.0 / 70 / 60, 3);
    EXPECT_NEAR(SpeedAfter({SDLK_UP}, 2).y, -First, 1e-5);
    EXPECT_NEAR(SpeedAfter({SDLK_UP}, 3).y, -(Damped(First) + Damped(40.0 / 70 / 60, 3)), 1e-5);
    EXPECT_NEAR(SpeedAfter({SDLK_LEFT}, 2).x, Damped(100.0 / 70 / 60, 3) * 0.98, 1e-4)
        << "left is +X when riding to -Y";
    EXPECT_NEAR(SpeedAfter({SDLK_RIGHT}, 2).x, -Damped(100.0 / 70 / 60, 3) * 0.98, 1e-4);
    EXPECT_NEAR(SpeedAfter({SDLK_LEFT, SDLK_RIGHT}, 2).x, 0, 1e-6);
    const auto SpinOf = [&](UINT32 Key) {
        CRider& Rider = FlyingRider();
        Step({Key});
        return Rider.Body->getAngularVelocity().z();
    };
    EXPECT_GT(SpinOf(SDLK_LEFT), 1e-4f);
    EXPECT_NEAR(SpinOf(SDLK_RIGHT), -SpinOf(SDLK_LEFT), 1e-6f);
    CRider& Braking = FlyingRider();
    Braking.Body->setLinearVelocity(btVector3(0, -10, 0));
    Step({SDLK_DOWN});
    // Twice: the world's own damping, and that of eight steps at once.
    EXPECT_NEAR(VelocityOf(Braking).y, -Damped(10) * std::pow(1 - 0.2, 8 / 60.0), 1e-3);
}

TEST_F(Rider, SteeringShowsAndEndsWithTheKeyAndTheRun) {
    CRider& Rider = FlyingRider();
    const auto TurnWith = [&](std::initializer_list<UINT32> Keys) {
        Step(Keys);
        return Rider.Turn;
    };
    EXPECT_EQ(TurnWith({SDLK_LEFT}), -1);
    EXPECT_EQ(TurnWith({SDLK_LEFT, SDLK_RIGHT}), 1);
    EXPECT_EQ(TurnWith({}), 1) << "released in this step";
    EXPECT_EQ(TurnWith({}), 0);
    GGameState = GAME_END;
    EXPECT_EQ(TurnWith({SDLK_LEFT, SDLK_SPACE}), 0);
    EXPECT_EQ(Rider.CutTimer, 0);
}

TEST_F(Rider, AStrokeHitsAfterAQuarterSecondAndEndsAfterHalfOne) {
    CRider& Rider = FlyingRider("entity Tree _POS=10;0;490\n");
    int Strokes = 0;
    int HitStep = 0;
    float Last = 0;
    for (int i = 1; i <= 70; ++i) {
        // Pressed anew every second step: presses within a stroke are not kept.
        i % 2 ? Step({SDLK_SPACE}) : Step();
        Strokes += Rider.CutTimer > Last;
        Last = Rider.CutTimer;
        HitStep = HitStep == 0 && GTreesCut > 0 ? i : HitStep;
    }
    EXPECT_NEAR(HitStep, 15, 1);
    EXPECT_EQ(Strokes, 3) << "at 0, 0.5 and 1 second";
    EXPECT_EQ(GTreesCut, 1u);
}

TEST_F(Rider, AStrokeFellsAllTreesInReachAndInTheConeAndNoOther) {
    CRandom Random;
    std::string Trees;
    for (int i = 0; i < 200; ++i) {
        const Vec3 p = Vec3{10, 20, 500} + Random.Point(60);
        Trees +=
            "entity Tree _POS=" + std::to_string(p.x) + ";" + std::to_string(p.y) + ";" + std::to_string(p.z) + "\n";
    }
    CRider& Rider = FlyingRider(Trees);
    Rider.Body->setCollisionFlags(btCollisionObject::CF_NO_CONTACT_RESPONSE); // trees do not push it
    std::map<const CTree*, Vec3> Before;
    Step({SDLK_SPACE});
    for (CEntity* Entity : GLevel->Entities) {
        if (std::strcmp(Entity->Class->Name, "Tree") == 0) {
            Before[static_cast<CTree*>(Entity)] = Entity->Position;
        }
    }
    while (Rider.CutTimer >= 0.25f) {
        Step();
    }
    int Felled = 0;
    for (const auto& [Tree, Place] : Before) {
        const Vec3 To = Place - Rider.Client.Pos;
        const double Length = std::hypot(To.x, To.y, To.z);
        // The direction is (0, -1, -0.7) in the rider's space, which has hardly turned.
        Vec3 Cone;
        M_QuatRotate(Rider.Client.Rot, {0, -1, -0.7f}, Cone);
        const double Cosine = (To.x * Cone.x + To.y * Cone.y + To.z * Cone.z) / (Length * std::hypot(1, 0.7));
        if (std::fabs(Length - 50) < 0.01 || std::fabs(Cosine - 0.05) < 1e-4) {
            continue;
        }
        EXPECT_EQ(Tree->Cut, Length < 50 && Cosine > 0.05) << Length << " " << Cosine;
        Felled += Tree->Cut;
    }
    EXPECT_EQ(GTreesCut, static_cast<UINT32>(Felled));
    EXPECT_GT(Felled, 10);
    EXPECT_LT(Felled, 100);
}

TEST_F(Rider, TheSpringRightsItAgainstAnyGravity) {
    CRider& Rider = FlyingRider();
    Rider.Body->getWorldTransform().setRotation(btQuaternion(btVector3(1, 0, 0), 0.9f));
    const auto Tilt = [&] { return std::acos(quatRotate(Rider.Body->getOrientation(), btVector3(0, 0, 1)).z()); };
    Step();
    EXPECT_NEAR(Tilt(), 0.9f, 1e-3f);
    float Least = Tilt();
    for (int i = 0; i < 240; ++i) {
        Step();
        Least = std::min(Least, static_cast<float>(Tilt()));
    }
    EXPECT_LT(Least, 0.2f);
}

// Each step draws the direction 2% towards the facing and keeps the speed otherwise.
TEST_F(Rider, VelocityIsDrawnTowardsTheFacing) {
    CRider& Rider = FlyingRider();
    Rider.Body->setLinearVelocity(btVector3(3, 0, 4));
    Step();
    const double Speed = Damped(5);
    ExpectNear(VelocityOf(Rider),
               {static_cast<float>(Speed * 0.6 * 0.98), static_cast<float>(-Speed * 0.02),
                static_cast<float>(Speed * 0.8 * 0.98)},
               1e-4f);
    Rider.Body->setLinearVelocity(btVector3(0, 0, 0));
    Step();
    ExpectNear(VelocityOf(Rider), {}, 1e-6f);
}

TEST_F(Rider, TheCameraFollowsALaggingLook) {
    CRider& Rider = FlyingRider();
    Rider.Body->setLinearVelocity(btVector3(0, -2, 0));
    Step();
    Step();
    // Straight ahead: the look vector grows towards 15 along -Y by a twelfth of what is left.
    const float Lag = -15 * (1 - (1 - 5.0f / 60) * (1 - 5.0f / 60));
    ExpectNear(Rider.CameraLag, {0, Lag, 0}, 1e-3f);
    const Vec3 Eye = Rider.Client.Pos + Vec3{0, 8 - Lag, 12 + 8};
    ExpectNear(GCamera.Eye, Eye, 1e-3f);
    ExpectNear(GCamera.Target, Eye + Vec3{0, Lag - 1, 0}, 1e-3f);
    ExpectNear(GCamera.Up, {0, 0, 1}, 1e-5f);
    ExpectNear(GCameraNow.Eye, Eye, 1e-3f);
    EXPECT_GT(GCameraPrev.Eye.y, GCameraNow.Eye.y) << "the step before";
}

TEST_F(Rider, HangsStillInTheEditor) {
    CRider& Rider = FlyingRider("", "gravr=10");
    GLevel->EditMode = 1;
    for (int i = 0; i < 30; ++i) {
        Step({SDLK_UP, SDLK_SPACE});
    }
    ExpectNear(Rider.Client.Pos + Rider.Centre, {10, 20, 500}, 1.0f); // one step of the level's gravity came before
    ExpectNear(GCamera.Eye, GLevel->EditorPos, 0);
    EXPECT_EQ(Rider.CutTimer, 0);
    GLevel->EditMode = 0;
    for (int i = 0; i < 30; ++i) {
        Step();
    }
    EXPECT_LT(Rider.Client.Pos.z, 490);
}

TEST_F(Rider, SlidingSoundsByItsSpeedAndOnlyOnTheGround) {
    CRider& Rider = FlyingRider("", "gravr=10");
    Step({SDLK_UP});
    EXPECT_EQ(Rider.SlideSound.Gain, 0);
    PhySetPosition({0, 0, 10}, Rider.Body);
    for (int i = 0; i < 120; ++i) {
        Step({SDLK_UP});
    }
    const Vec3 Velocity = VelocityOf(Rider);
    EXPECT_GT(M_Length(Velocity), 0.5f);
    EXPECT_NEAR(Rider.SlideSound.Gain, M_Length(Velocity) * 0.6f, 1e-4f);
    EXPECT_GT(Rider.HitSound.Gain, 0) << "the fall";
}

} // namespace
