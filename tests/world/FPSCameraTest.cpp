// The free camera: how mouse and keys move it, its physical body, and what it writes into GCamera.
#include "foundation/GArchive.h"
#include "world/FPSCameraEntity.h"
#include "world/LevelFixture.h"

#include <cmath>

namespace {

constexpr float PI = 3.14159265f;
constexpr float RADIUS = 10;
constexpr float GROUND = 51;

// Of what the 60 units a second and the four physics seconds in a second of the game come to in one step.
constexpr float STEP_LENGTH = 4;

void ExpectNear(const Vec3& A, const Vec3& B, float Tolerance) {
    EXPECT_NEAR(A.x, B.x, Tolerance);
    EXPECT_NEAR(A.y, B.y, Tolerance);
    EXPECT_NEAR(A.z, B.z, Tolerance);
}

class FPSCamera : public LevelFixture {
protected:
    // A camera 100 units above level ground that looks along +X.
    CFPSCameraEntity& Camera() {
        CLevel& Level = LoadText("WLMF\n" + FlatGround(GROUND) + "entity FPSCamera _POS=0;0;151 ZAngle=1.5707964\n");
        return static_cast<CFPSCameraEntity&>(*Level.Entities[0]);
    }

    static void Steps(int Count) {
        for (int i = 0; i < Count; ++i) {
            GLevel->Update(STEP);
        }
    }

    // One step with the mouse moved by so many pixels.
    static void MoveMouse(float X, float Y) {
        GLastMousePos = {100, 100};
        GMousePos = {100 + X, 100 + Y};
        Steps(1);
        GMousePos = GLastMousePos;
    }

    // The way of one camera with a key held down.
    Vec3 WayWithKeys(std::initializer_list<int> Keys, int Count = 10) {
        CFPSCameraEntity& Entity = Camera();
        Steps(1);
        const Vec3 Start = Entity.Position;
        for (const int Key : Keys) {
            GKeys[Key] = 1;
        }
        Steps(Count);
        InputReset();
        return Entity.Position - Start;
    }
};

TEST_F(FPSCamera, StartsAsTheFileSaysAndHangsThere) {
    const CFPSCameraEntity& Entity = Camera();
    EXPECT_EQ(Entity.XYAngle, 0);
    EXPECT_FLOAT_EQ(Entity.ZAngle, 1.5707964f);
    Steps(60);
    ExpectNear(Entity.Position, {0, 0, 151}, 1e-3f);
}

TEST_F(FPSCamera, WritesEyeTargetAndUpOfTheCameraOnly) {
    Camera();
    GCamera.Fov = 70;
    GCamera.Far = 1234;
    Steps(1);
    ExpectNear(GCamera.Eye, {0, 0, 151}, 1e-3f);
    ExpectNear(GCamera.Target, {1, 0, 151}, 1e-3f);
    ExpectNear(GCamera.Up, {0, 0, 1}, 1e-5f);
    EXPECT_EQ(GCamera.Fov, 70);
    EXPECT_EQ(GCamera.Far, 1234);
}

TEST_F(FPSCamera, MouseTurnsItByAHundredthPerPixel) {
    const CFPSCameraEntity& Entity = Camera();
    MoveMouse(50, -20);
    EXPECT_NEAR(Entity.XYAngle, 0.5f, 1e-5f);
    EXPECT_NEAR(Entity.ZAngle, PI / 2 - 0.2f, 1e-5f);
    const Vec3 Forward = {std::cos(0.5f) * std::cos(0.2f), std::sin(0.5f) * std::cos(0.2f), std::sin(0.2f)};
    ExpectNear(GCamera.Target - GCamera.Eye, Forward, 1e-3f);
}

TEST_F(FPSCamera, HeadingWrapsAndPitchStopsAtThePoles) {
    const CFPSCameraEntity& Entity = Camera();
    MoveMouse(700, 1000);
    EXPECT_NEAR(Entity.XYAngle, 7 - 2 * PI, 1e-5f);
    EXPECT_EQ(Entity.ZAngle, 3.1415927f);
    MoveMouse(-200, -2000);
    EXPECT_NEAR(Entity.XYAngle, 5 - 2 * PI, 1e-5f) << "the sign of the turn stays";
    EXPECT_EQ(Entity.ZAngle, 0);
    MoveMouse(-600, 0);
    EXPECT_NEAR(Entity.XYAngle, -1, 1e-5f);
}

TEST_F(FPSCamera, KeysMoveItAlongAndAcrossItsView) {
    const float Way = WayWithKeys({SDLK_w}).x;
    EXPECT_GT(Way, 8 * STEP_LENGTH) << "damping takes a part of each step";
    EXPECT_LT(Way, 10 * STEP_LENGTH);
    ExpectNear(WayWithKeys({SDLK_w}), {Way, 0, 0}, 0.01f);
    ExpectNear(WayWithKeys({SDLK_s}), {-Way, 0, 0}, 0.01f);
    ExpectNear(WayWithKeys({SDLK_a}), {0, -Way, 0}, 0.01f);
    ExpectNear(WayWithKeys({SDLK_d}), {0, Way, 0}, 0.01f);
    ExpectNear(WayWithKeys({SDLK_w, SDLK_d}), {Way, Way, 0}, 0.01f);
    ExpectNear(WayWithKeys({SDLK_a, SDLK_d}), {}, 1e-3f);
}

TEST_F(FPSCamera, ShiftDoublesTheSpeedAndTheViewVectors) {
    const float Way = WayWithKeys({SDLK_w}).x;
    ExpectNear(WayWithKeys({SDLK_w, SDLK_LSHIFT}), {2 * Way, 0, 0}, 0.02f);
    ExpectNear(GCamera.Target - GCamera.Eye, {2, 0, 0}, 1e-3f);
    ExpectNear(GCamera.Up, {0, 0, 4}, 1e-3f);
    ExpectNear(WayWithKeys({SDLK_w, SDLK_RSHIFT}), {Way, 0, 0}, 0.01f);
}

TEST_F(FPSCamera, KeyOfTheStepBeforeStillCounts) {
    const CFPSCameraEntity& Entity = Camera();
    GLastKeys[SDLK_w] = 1;
    Steps(1);
    EXPECT_NEAR(Entity.Body->getLinearVelocity().x() * PhyWorldScale, 60, 0.01f);
}

// A damping of 0.8 leaves a fifth of the speed after each second, of which physics has four in one of the game.
TEST_F(FPSCamera, CoastsToAStop) {
    CFPSCameraEntity& Entity = Camera();
    GKeys[SDLK_w] = 1;
    Steps(1);
    InputReset();
    Steps(15);
    EXPECT_NEAR(Entity.Body->getLinearVelocity().x() * PhyWorldScale, 60 * 0.2f, 0.1f);
    Steps(120);
    const Vec3 Rest = Entity.Position;
    Steps(60);
    ExpectNear(Entity.Position, Rest, 0.01f);
}

TEST_F(FPSCamera, GroundStopsIt) {
    const CFPSCameraEntity& Entity = Camera();
    MoveMouse(0, 1000);
    GKeys[SDLK_w] = 1;
    float Lowest = Entity.Position.z;
    for (int i = 0; i < 180; ++i) {
        Steps(1);
        Lowest = std::min(Lowest, Entity.Position.z);
    }
    EXPECT_NEAR(Entity.Position.z, GROUND + RADIUS, 2.0f);
    EXPECT_GT(Lowest, GROUND + RADIUS - 2.5f);
    EXPECT_NEAR(GCamera.Eye.z, Entity.Position.z, 1e-4f);
}

TEST_F(FPSCamera, WarpsTheMouseWhileItLives) {
    EXPECT_EQ(GWarpMouse, 0u);
    Camera();
    EXPECT_EQ(GWarpMouse, 1u);
    DropLevel();
    EXPECT_EQ(GWarpMouse, 0u);
}

TEST_F(FPSCamera, SerializesItsAnglesBehindThePosition) {
    CFPSCameraEntity& Entity = Camera();
    GArray<UINT8> Bytes;
    for (const UINT8 High : {0x41, 0x42, 0x43, 0x40, 0x3F}) {
        for (const UINT8 Byte : {High, UINT8{0}, UINT8{0}, UINT8{0}}) {
            Bytes.Add(Byte);
        }
    }
    FByteReader Reader(Bytes);
    Entity.Serialize(Reader);
    EXPECT_EQ(Entity.Position, Vec3({8, 32, 128}));
    EXPECT_EQ(Entity.XYAngle, 2);
    EXPECT_EQ(Entity.ZAngle, 0.5f);
    EXPECT_TRUE(Reader.AtEnd());
}

} // namespace
