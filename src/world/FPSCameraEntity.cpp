#include "world/FPSCameraEntity.h"

#include "foundation/GArchive.h"
#include "input/Input.h"
#include "physics/Physics.h"
#include "world/GameLevel.h"

#include <SDL/SDL_keysym.h>
#include <btBulletDynamicsCommon.h>
#include <cmath>
#include <cstdlib>

namespace {

constexpr float TURN_SPEED = 0.01f;  // radians per pixel of mouse motion
constexpr float MOVE_SPEED = 60.0f;  // world units per second of the physics clock
constexpr float BODY_RADIUS = 10.0f; // world units
constexpr float LINEAR_DAMPING = 0.8f;
constexpr float ANGULAR_DAMPING = 1.0f;

bool DownNowOrBefore(int Key) {
    return GKeys[Key] || GLastKeys[Key];
}

} // namespace

CFPSCameraEntity::CFPSCameraEntity(const GProperties& Props) : CEntity(Props) {
    if (const auto* Found = Props.Find("ZAngle")) {
        ZAngle = static_cast<float>(std::atof(Found->value.CStr()));
    }
    GWarpMouse = 1;
    Body = PhyAddCapsuleBody(BODY_RADIUS, 0, Position.x, Position.y, Position.z, true);
    // Entering the world gave the body the world's own gravity, and the first physics step runs before the first
    // update.
    Body->setGravity(btVector3(0, 0, 0));
}

CFPSCameraEntity::~CFPSCameraEntity() {
    GWarpMouse = 0;
    PhyRemoveBody(Body);
}

void CFPSCameraEntity::Update(float) {
    if (GLevel && GLevel->EditMode) {
        return;
    }
    TurnByMouse();
    Vec3 Forward = M_Spherical({XYAngle, ZAngle, 1});
    Vec3 Side = {M_Cos(XYAngle + PI / 2), M_Sin(XYAngle + PI / 2), 0};
    if (DownNowOrBefore(SDLK_LSHIFT)) {
        Forward *= 2;
        Side *= 2;
    }
    MoveByKeys(Forward, Side);

    btTransform Transform;
    Body->getMotionState()->getWorldTransform(Transform);
    const btVector3 Origin = Transform.getOrigin() * PhyWorldScale;
    Position = {Origin.x(), Origin.y(), Origin.z()};
    GCamera.Eye = Position;
    GCamera.Target = Position + Forward;
    GCamera.Up = M_Cross(Forward, Side);
}

// The mouse stands at the window's centre at each step's start, so that its place tells the motion of the last step.
void CFPSCameraEntity::TurnByMouse() {
    const float MoveX = GMousePos.x - GLastMousePos.x;
    const float MoveY = GMousePos.y - GLastMousePos.y;
    XYAngle = std::fmod(XYAngle + MoveX * TURN_SPEED, 2 * PI);
    ZAngle += MoveY * TURN_SPEED;
    if (ZAngle < 0) {
        ZAngle = 0;
    } else if (ZAngle > PI) {
        ZAngle = PI;
    }
}

void CFPSCameraEntity::MoveByKeys(const Vec3& Forward, const Vec3& Side) {
    Vec3 Move;
    if (DownNowOrBefore(SDLK_w)) {
        Move += Forward;
    }
    if (DownNowOrBefore(SDLK_s)) {
        Move -= Forward;
    }
    if (DownNowOrBefore(SDLK_a)) {
        Move -= Side;
    }
    if (DownNowOrBefore(SDLK_d)) {
        Move += Side;
    }
    if (Move != Vec3{}) {
        const Vec3 Velocity = Move * (MOVE_SPEED * PhyScale);
        Body->setLinearVelocity(btVector3(Velocity.x, Velocity.y, Velocity.z));
    }
    Body->setGravity(btVector3(0, 0, 0));
    Body->setDamping(LINEAR_DAMPING, ANGULAR_DAMPING);
}

void CFPSCameraEntity::Serialize(FArchive& Ar) {
    CEntity::Serialize(Ar);
    Ar << XYAngle << ZAngle;
}
