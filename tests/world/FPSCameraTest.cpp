// The free camera: how mouse and keys move it, its physical body, and what it writes into GCamera.
#include "foundation/GArchive.h"
#include "world/FPSCameraEntity.h"
#include "world/LevelFixture.h"

namespace {

constexpr float GROUND = 51;

class FPSCamera : public LevelFixture {
protected:
    // A camera 100 units above level ground that looks along +X.
    CFPSCameraEntity& Camera() {
        CLevel& Level = LoadText("WLMF\n" + FlatGround(GROUND) + "entity FPSCamera _POS=0;0;151 ZAngle=1.5707964\n");
        return static_cast<CFPSCameraEntity&>(*Level.Entities[0]);
    }

    // One step with the mouse moved by so many pixels.
    static void MoveMouse(float X, float Y) {
        GMousePos = GLastMousePos + Vec2{X, Y};
        Steps(1);
        GMousePos = GLastMousePos;
    }

    // The way of a new camera in ten steps with these keys held down.
    Vec3 WayWithKeys(std::initializer_list<int> Keys) {
        CFPSCameraEntity& Entity = Camera();
        Steps(1);
        const Vec3 Start = Entity.Position;
        for (const int Key : Keys) {
            GKeys[Key] = 1;
        }
        Steps(10);
        InputReset();
        return Entity.Position - Start;
    }
};

TEST_F(FPSCamera, HangsWhereTheFileSaysAndWarpsTheMouseWhileItLives) {
    const CFPSCameraEntity& Entity = Camera();
    EXPECT_EQ(GWarpMouse, 1u);
    GCamera.Fov = 70;
    Steps(60);
    EXPECT_EQ(Entity.XYAngle, 0);
    ExpectNear(GCamera.Eye, {0, 0, 151}, 1e-3f);
    ExpectNear(GCamera.Target, {1, 0, 151}, 1e-3f);
    ExpectNear(GCamera.Up, {0, 0, 1}, 1e-5f);
    EXPECT_EQ(GCamera.Fov, 70);
    DropLevel();
    EXPECT_EQ(GWarpMouse, 0u);
}

TEST_F(FPSCamera, MouseTurnsItRoundAndUpToThePoles) {
    const CFPSCameraEntity& Entity = Camera();
    MoveMouse(50, -20);
    const Vec3 Forward = {std::cos(0.5f) * std::cos(0.2f), std::sin(0.5f) * std::cos(0.2f), std::sin(0.2f)};
    ExpectNear(GCamera.Target - GCamera.Eye, Forward, 1e-3f);
    MoveMouse(650, 1020);
    EXPECT_NEAR(Entity.XYAngle, 7 - 2 * PI, 1e-5f);
    EXPECT_EQ(Entity.ZAngle, 3.1415927f);
    MoveMouse(-200, -2000);
    EXPECT_NEAR(Entity.XYAngle, 5 - 2 * PI, 1e-5f) << "the sign of the turn stays";
    EXPECT_EQ(Entity.ZAngle, 0);
}

TEST_F(FPSCamera, KeysMoveItAlongAndAcrossItsViewAndShiftDoubles) {
    const float Way = WayWithKeys({SDLK_w}).x;
    EXPECT_GT(Way, 32) << "damping takes a part of each step";
    EXPECT_LT(Way, 40) << "60 units a second, four physics seconds in one of the game";
    ExpectNear(WayWithKeys({SDLK_s, SDLK_a, SDLK_RSHIFT}), {-Way, -Way, 0}, 0.01f);
    ExpectNear(WayWithKeys({SDLK_w, SDLK_d}), {Way, Way, 0}, 0.01f);
    ExpectNear(WayWithKeys({SDLK_w, SDLK_LSHIFT}), {2 * Way, 0, 0}, 0.02f);
    ExpectNear(GCamera.Target - GCamera.Eye, {2, 0, 0}, 1e-3f);
    ExpectNear(GCamera.Up, {0, 0, 4}, 1e-3f);
}

// A damping of 0.8 leaves a fifth of the speed after each second, of which physics has four in one of the game.
TEST_F(FPSCamera, CoastsToAStop) {
    CFPSCameraEntity& Entity = Camera();
    GLastKeys[SDLK_w] = 1; // the step before still counts
    Steps(1);
    EXPECT_NEAR(Entity.Body->getLinearVelocity().x() * PhyWorldScale, 60, 0.01f);
    InputReset();
    Steps(15);
    EXPECT_NEAR(Entity.Body->getLinearVelocity().x() * PhyWorldScale, 60 * 0.2f, 0.1f);
    Steps(120);
    const Vec3 Rest = Entity.Position;
    Steps(60);
    ExpectNear(Entity.Position, Rest, 0.01f);
}

TEST_F(FPSCamera, SerializesItsAnglesBehindThePosition) {
    CFPSCameraEntity& Entity = Camera();
    GArray<UINT8> Bytes;
    for (const UINT8 Top : {0x41, 0x42, 0x43, 0x40, 0x3F}) {
        Bytes.Add(Top);
        Bytes.Resize(Bytes.count + 3);
    }
    FByteReader Reader(Bytes);
    Entity.Serialize(Reader);
    EXPECT_EQ(Entity.Position, Vec3({8, 32, 128}));
    EXPECT_TRUE(Entity.XYAngle == 2 && Entity.ZAngle == 0.5f && Reader.AtEnd());
}

} // namespace
