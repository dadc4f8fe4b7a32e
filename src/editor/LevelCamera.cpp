// The editor's free camera: a weightless body, so that it bumps into the ground instead of going through it.
#include "foundation/Camera.h"
#include "foundation/Screen.h"
#include "gui/Gui.h"
#include "input/Input.h"
#include "physics/Physics.h"
#include "world/GameLevel.h"

#include <SDL/SDL.h>
#include <algorithm>
#include <btBulletDynamicsCommon.h>
#include <cmath>
#include <utility>

namespace {

constexpr float TURN = 0.01f; // radians a pixel
constexpr float FLIGHT_SPEED = 100.0f;
constexpr float HASTE = 2.0f; // times as fast with Shift
constexpr float LINEAR_DAMPING = 0.8f;
constexpr float ANGULAR_DAMPING = 1.0f;

bool IsDown(UINT32 Key) {
    return GKeys[Key] || GLastKeys[Key];
}

Vec3 WantedFlight(const Vec3& Forward, const Vec3& Side) {
    Vec3 Flight;
    Flight += IsDown(SDLK_w) ? Forward : Vec3();
    Flight -= IsDown(SDLK_s) ? Forward : Vec3();
    Flight += IsDown(SDLK_a) ? Side : Vec3();
    Flight -= IsDown(SDLK_d) ? Side : Vec3();
    return IsDown(SDLK_LSHIFT) ? Flight * HASTE : Flight;
}

void Move(btRigidBody* Body, const Vec3& Flight) {
    if (Flight != Vec3()) {
        const Vec3 Velocity = Flight * (FLIGHT_SPEED * PhyScale);
        Body->setLinearVelocity({Velocity.x, Velocity.y, Velocity.z});
    }
    Body->setGravity({0, 0, 0});
    Body->setDamping(LINEAR_DAMPING, ANGULAR_DAMPING);
}

Vec3 PositionOf(const btRigidBody* Body) {
    btTransform Transform;
    Body->getMotionState()->getWorldTransform(Transform);
    const btVector3& Origin = Transform.getOrigin();
    return Vec3{Origin.x(), Origin.y(), Origin.z()} * PhyWorldScale;
}

} // namespace

void CLevel::ToggleEditor() {
    EditMode = !EditMode;
    GuiLetGo();
    // The mouse is free in the editor, but a level's own free camera holds it in play.
    std::swap(GWarpMouse, OtherWarpMouse);
    if (!EditMode) {
        OtherWarpMouse = 0;
        return;
    }
    EditorPos = EditorPrevPos = GCamera.Eye;
    PhySetPosition(EditorPos, GEditorBody);
    GEditorBody->setLinearVelocity({0, 0, 0});
    const Quat Gravity = GravityRotation();
    Vec3 Direction;
    M_QuatRotate({-Gravity.x, -Gravity.y, -Gravity.z, Gravity.w}, M_Normalized(GCamera.Target - GCamera.Eye),
                 Direction);
    EditorYaw = M_Atan2(Direction.y, Direction.x);
    EditorPitch = std::acos(std::clamp(Direction.z, -1.0f, 1.0f));
}

// Where the view goes, and what lies to the left of it, level with respect to gravity. Unit vectors.
void CLevel::EditorAxes(Vec3& Forward, Vec3& Side) const {
    const Quat Gravity = GravityRotation();
    M_QuatRotate(Gravity, M_Spherical({EditorYaw, EditorPitch, 1}), Forward);
    M_QuatRotate(Gravity, M_Spherical({EditorYaw + PI / 2, PI / 2, 1}), Side);
}

void CLevel::UpdateEditorCamera() {
    if (GMouseRight && !GLastMouseRight) {
        SDL_WarpMouse(WINDOW_CENTRE_X, WINDOW_CENTRE_Y);
        GMousePos = GLastMousePos = {WINDOW_CENTRE_X, WINDOW_CENTRE_Y};
        GWarpMouse = 1;
    } else if (!GMouseRight && GLastMouseRight) {
        GWarpMouse = 0;
    } else if (GMouseRight) {
        const Vec2 Way = GMousePos - GLastMousePos;
        EditorYaw = std::fmod(EditorYaw - TURN * Way.x, 2 * PI);
        EditorPitch = std::clamp(EditorPitch + TURN * Way.y, 0.0f, PI);
    }
    Vec3 Forward, Side;
    EditorAxes(Forward, Side);
    EditorPrevPos = EditorPos;
    Move(GEditorBody, WantedFlight(Forward, Side));
    EditorPos = PositionOf(GEditorBody);
}

void CLevel::SetEditorCamera(float BlendDelta) const {
    constexpr float FIELD_OF_VIEW = 90; // degrees
    constexpr float NEAR_PLANE = 2;
    Vec3 Forward, Side;
    EditorAxes(Forward, Side);
    GCamera.Eye = EditorPrevPos + (EditorPos - EditorPrevPos) * BlendDelta;
    GCamera.Target = GCamera.Eye + Forward;
    GCamera.Up = M_Cross(Forward, Side);
    GCamera.Fov = FIELD_OF_VIEW;
    GCamera.Aspect = 16.0f / 9.0f;
    GCamera.Near = NEAR_PLANE;
    GCamera.Far = Params.ClipDist;
}
