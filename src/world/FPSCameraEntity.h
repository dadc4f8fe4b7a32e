// A free camera that flies through a level: the mouse turns it, W, A, S, D move it, left Shift doubles its speed.
//
// It has a small physical body without weight, so that it stops at the ground. While one exists, GWarpMouse is set and
// the mouse is put back to the window's centre on every step; with two of them the first one's end clears the flag.
// Its registered name is "FPSCamera". Properties: "_POS" (x;y;z) and "ZAngle" (radians from +Z).
// Each update writes the eye, target and up of GCamera; the camera's other members stay as they are.
#pragma once

#include "world/Entity.h"

class btRigidBody;

class CFPSCameraEntity : public CEntity {
public:
    explicit CFPSCameraEntity(const GProperties& Props);
    ~CFPSCameraEntity() override;

    void Update(float Delta) override;
    void Serialize(FArchive& Ar) override;

    float XYAngle = 0; // heading in radians round +Z, 0 looks along +X
    float ZAngle = 0;  // angle from +Z in radians, 0 to pi
    btRigidBody* Body = nullptr;

private:
    void TurnByMouse();
    void MoveByKeys(const Vec3& Forward, const Vec3& Side);
};
