// The player: a rigid body of its own mesh's shape that slides down the slope, steered by forces; the camera that
// follows it, the listener, its sounds and the level's music.
//
// Its registered name is "Rider". Property: "Position" (x;y;z). A level has at most one rider; it owns the five key
// bindings, the camera and the listener while it lives.
// Space: forward is local -Y; the slope descends towards -Y. The body is in physics units, everything else in world
// units. What the mesh calls its origin lies Centre away from the body's.
// Ownership: the rider owns client, body, emitters and one reference of the mesh.
// Feel, in four mechanisms: physics runs at four times the game's speed; the velocity is drawn towards the facing; a
// torque holds the rider upright; the camera hangs behind a direction that lags. All keys work in the air too.
// While the level's EditMode is set the body hangs weightless and the camera is left alone.
// Cost: an update is some vector arithmetic, a walk over the contact manifolds and a move in the spatial grid; the
// level's entities are walked once per stroke.
#pragma once

#include "anim/AnimInstance.h"
#include "physics/Physics.h"
#include "scene/MeshClient.h"
#include "sound/Sound.h"
#include "world/Entity.h"

class CTree;

class CRider : public CEntity, public PhyContactCallback {
public:
    explicit CRider(const GProperties& Props);
    ~CRider() override;

    void Update(float Delta) override;

    // Plays the impact sound. From within the physics step.
    bool ContactAdded(btManifoldPoint& Point, const btCollisionObject* Obj0, int Part0, int Index0,
                      const btCollisionObject* Obj1, int Part1, int Index1) override;
    bool ContactFound(btManifoldPoint& Point, btCollisionObject* Body0, btCollisionObject* Body1) override;

    SMeshClient Client;
    SAnimInstance Anim;
    Vec3 Centre;    // centroid of the hull, mesh space
    INT32 Turn = 0; // the steering animation that plays: -1 left, 0 idle, 1 right
    Vec3 CameraLag; // the camera's smoothed look vector
    SEmitter SlideSound;
    SEmitter HitSound;
    SEmitter SwishSound;
    SEmitter CutSound;
    SEmitter Music;
    float CutTimer = 0; // seconds left of the stroke
    float LastCutTimer = 0;

private:
    void LoadMesh();
    void MakeBody();
    void LoadSounds();
    void Ride(float Delta);
    void TakeOverBody();
    INT32 Steer(float Delta);
    void Swing(float Delta);
    void Strike();
    bool Reaches(const CTree& Tree) const;
    void KeepUpright();
    void AlignVelocity();
    void ShowTurn(INT32 NewTurn);
    void LeadCamera(float Delta);
    void SoundSlide();
    Vec3 Turned(const Vec3& Local) const; // from the rider's space to the world's
};
