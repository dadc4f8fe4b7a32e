#include "game/Rider.h"

#include "foundation/Scan.h"
#include "game/GameState.h"
#include "game/Tree.h"
#include "graphics/Mesh.h"
#include "input/Input.h"
#include "platform/Platform.h"
#include "world/GameLevel.h"

#include <algorithm>
#include <btBulletDynamicsCommon.h>
#include <cstring>

namespace {

const char* const RIDER_MESH = "Data/Models/Rider.mdd";

struct SRiderAnimation {
    const char* File;
    const char* Name;
    INT32 Group; // 1 moves the whole body, 2 is laid over it
};

const SRiderAnimation ANIMATIONS[] = {
    {"Data/Models/Idle.anf", "idle", 1},       {"Data/Models/TurnLeft.anf", "left", 1},
    {"Data/Models/TurnRight.anf", "right", 1}, {"Data/Models/Cut0.anf", "cut0", 2},
    {"Data/Models/Cut1.anf", "cut1", 2},
};

constexpr UINT32 LOOP_SLOT = 0;
constexpr UINT32 STROKE_SLOT = 1;
constexpr float BLEND_RATE = 2.0f; // per second: half a second a cross-fade

constexpr UINT32 EFFECT_CHANNEL = 1;
constexpr UINT32 MUSIC_CHANNEL = 2;
constexpr float REFERENCE_DISTANCE = 10.0f; // world units within which a sound is at its full gain

constexpr float MASS = 70.0f;
constexpr float INERTIA_SCALE = 10.0f; // turns slowly, for a board
constexpr float DAMPING = 0.2f;
constexpr float FRICTION = 0.3f;
constexpr float RESTITUTION = 0.3f;

// Forces and speeds in physics units.
constexpr float STEER_FORCE = 100.0f;
constexpr float STEER_IMPULSE = 0.3f;
constexpr float PUSH_FORCE = 40.0f;
constexpr float FIRST_PUSH_FORCE = 60.0f; // in the step of the press
constexpr float BRAKE = 8.0f;             // how much longer than the step the brake damps
constexpr float UPRIGHT_FORCE = 10.0f;
constexpr float ALIGNMENT = 0.02f; // part of the way from velocity to facing, per step
constexpr float SLIDE_GAIN = 0.6f; // per unit of speed
constexpr float HIT_GAIN = 0.3f;   // per unit of relative speed

constexpr float STROKE_TIME = 0.5f; // seconds
constexpr float HIT_TIME = 0.25f;   // seconds left when the sword is where it cuts
constexpr float REACH = 50.0f;      // world units
constexpr Vec3 CUT_DIRECTION = {0, -1, -0.7f};
constexpr float CUT_CONE = 0.05f; // smallest cosine to the cut direction
constexpr Vec3 FORWARD = {0, -1, 0};

constexpr float LOOK_LENGTH = 15.0f;       // world units from eye to target
constexpr float LOOK_VELOCITY = 3.0f;      // what the velocity weighs against the facing
constexpr float CAMERA_RATE = 5.0f;        // per second
constexpr Vec3 CAMERA_OFFSET = {0, 8, 12}; // of the eye, before the look vector is taken off
constexpr float CAMERA_LIFT = 8.0f;        // world units that the eye rises when looking down the slope
constexpr float CAMERA_SIDE = 0.2f;        // how much of the lift a look to the side takes away

btVector3 ToBullet(const Vec3& v) {
    return {v.x, v.y, v.z};
}

Vec3 FromBullet(const btVector3& v) {
    return {v.x(), v.y(), v.z()};
}

btVector3 LevelGravity() {
    const SLevelParams& Params = GLevel->Params;
    return ToBullet(M_Spherical({Params.Gravity_Angle, Params.Gravity_Pitch, Params.Gravity_Strength}) * PhyScale);
}

bool IsDown(EGameBind Bind) {
    return GGameBinds[Bind].State != KEY_IDLE;
}

Vec3 VelocityOf(const btCollisionObject* Object) {
    const btRigidBody* Body = btRigidBody::upcast(Object);
    return Body ? FromBullet(Body->getLinearVelocity()) : Vec3();
}

void LoadSound(const char* File, UINT32 Channel, SEmitter& Emitter) {
    EmitterLoad(File, Emitter);
    Emitter.Channels = Channel;
    EmitterSetGain(Emitter);
}

void SetSoundPosition(const SEmitter& Emitter, const Vec3& Position) {
    alSource3f(Emitter.Source, AL_POSITION, Position.x, Position.y, Position.z);
}

void PlayAt(SEmitter& Emitter, const Vec3& Position) {
    SetSoundPosition(Emitter, Position);
    EmitterPlay(Emitter);
}

void ReleaseSound(SEmitter& Emitter) {
    if (Emitter.System) {
        EmitterRelease(Emitter);
    }
}

} // namespace

CRider::CRider(const GProperties& Props) : CEntity(Props) {
    if (const auto* Found = Props.Find("Position")) {
        INT32 Pos = 0;
        Position = F_ReadVec3(Pos, Found->value);
    }
    Client.Pos = Position;
    Client.HoldState();
    LoadMesh();
    MakeBody();
    LoadSounds();
    for (SKeyBind& Bind : GGameBinds) {
        GActiveBinds.Add(&Bind);
        BindAction(Bind, true);
    }
}

void CRider::LoadMesh() {
    Client.Mesh = MeshLoad(RIDER_MESH);
    Client.UpdateBounds(true, true);
    GLevel->AddSpatialClient(&Client);
    Client.Anim = &Anim;
    for (const SBone& Bone : Client.Mesh->Bones) {
        Anim.BoneNames.Add(Bone.Name);
        Anim.Rotations.Add(Quat());
    }
    for (const SRiderAnimation& Animation : ANIMATIONS) {
        Anim.Add(Animation.File, Animation.Name, Animation.Group);
    }
    Anim.Play(LOOP_SLOT, "idle", BLEND_RATE);
}

void CRider::MakeBody() {
    const GArray<Vec3>& Hull = Client.Mesh->Parts[0].Points;
    Body = PhyAddHullBody(&Centre, Hull.Data, Hull.count);
    Body->setActivationState(DISABLE_DEACTIVATION);
    PhySetPosition(Position, Body);
    Body->setDamping(DAMPING, DAMPING);
    Body->setFriction(FRICTION);
    Body->setRestitution(RESTITUTION);
    PhySetMass(MASS, INERTIA_SCALE, Body);
    // Entering the world gave the body the world's own gravity, which must not pull it in the first step.
    Body->setGravity(LevelGravity());
    Body->setCollisionFlags(Body->getCollisionFlags() | btCollisionObject::CF_CUSTOM_MATERIAL_CALLBACK);
    GPhyCallbacks.Append(this);
}

void CRider::LoadSounds() {
    LoadSound("Data/Sounds/snow-slide-1.wav", EFFECT_CHANNEL, SlideSound);
    LoadSound("Data/Sounds/snow-hit-1.wav", EFFECT_CHANNEL, HitSound);
    LoadSound("Data/Sounds/sword-swish.wav", EFFECT_CHANNEL, SwishSound);
    LoadSound("Data/Sounds/sword-hit.wav", EFFECT_CHANNEL, CutSound);
    LoadSound("Data/Music/rush.ogg", MUSIC_CHANNEL, Music);
    for (const SEmitter* Emitter : {&SlideSound, &HitSound, &SwishSound, &CutSound}) {
        alSourcei(Emitter->Source, AL_SOURCE_RELATIVE, 0);
        alSourcef(Emitter->Source, AL_REFERENCE_DISTANCE, REFERENCE_DISTANCE);
    }
    SlideSound.Gain = 0;
    EmitterSetGain(SlideSound);
    EmitterSetLoop(SlideSound);
    EmitterPlay(SlideSound);
    EmitterSetLoop(Music);
    EmitterPlay(Music);
}

CRider::~CRider() {
    for (auto* Node = GPhyCallbacks.first; Node; Node = Node->next) {
        if (Node->obj == this) {
            GPhyCallbacks.Unlink(Node);
            break;
        }
    }
    PhyRemoveBody(Body);
    MeshRelease(Client.Mesh);
    GLevel->RemoveSpatialClient(&Client);
    for (SKeyBind& Bind : GGameBinds) {
        UnbindAction(Bind);
    }
    for (SEmitter* Emitter : {&Music, &CutSound, &SwishSound, &HitSound, &SlideSound}) {
        ReleaseSound(*Emitter);
    }
}

Vec3 CRider::Turned(const Vec3& Local) const {
    Vec3 World;
    M_QuatRotate(Client.Rot, Local, World);
    return World;
}

void CRider::Update(float Delta) {
    Client.HoldState();
    if (GLevel->EditMode) {
        Body->setGravity(btVector3(0, 0, 0));
    } else {
        Ride(Delta);
    }
    Anim.Advance(Delta);
    Client.UpdateBounds(true, false);
    GLevel->MoveSpatialClient(&Client);
}

void CRider::Ride(float Delta) {
    TakeOverBody();
    Body->setGravity(LevelGravity());
    const INT32 NewTurn = GGameState == GAME_END ? 0 : Steer(Delta);
    Swing(Delta);
    KeepUpright();
    AlignVelocity();
    ShowTurn(NewTurn);
    LeadCamera(Delta);
    SoundSlide();
}

// Bullet turns the other way round than our quaternions do.
void CRider::TakeOverBody() {
    const btQuaternion Orientation = Body->getOrientation();
    const Quat q = M_QuatNormalized({Orientation.x(), Orientation.y(), Orientation.z(), Orientation.w()});
    Client.Rot = {-q.x, -q.y, -q.z, q.w};
    Client.Pos = FromBullet(Body->getWorldTransform().getOrigin()) * PhyWorldScale - Turned(Centre);
}

// Applies the forces of the keys; returns the steering animation that goes with them.
INT32 CRider::Steer(float Delta) {
    INT32 NewTurn = 0;
    const btVector3 Right = ToBullet(Turned({-1, 0, 0}) * STEER_FORCE);
    if (IsDown(BIND_MOVE_LEFT)) {
        NewTurn = -1;
        Body->applyCentralForce(-Right);
        Body->applyTorqueImpulse(btVector3(0, 0, STEER_IMPULSE));
    }
    if (IsDown(BIND_MOVE_RIGHT)) {
        NewTurn = 1;
        Body->applyCentralForce(Right);
        Body->applyTorqueImpulse(btVector3(0, 0, -STEER_IMPULSE));
    }
    if (IsDown(BIND_MOVE_FWD)) {
        const bool Pressed = GGameBinds[BIND_MOVE_FWD].State == KEY_PRESSED;
        Body->applyCentralForce(ToBullet(Turned(FORWARD * (Pressed ? FIRST_PUSH_FORCE : PUSH_FORCE))));
    }
    if (IsDown(BIND_MOVE_SLDN)) {
        Body->applyDamping(Delta * BRAKE);
    }
    return NewTurn;
}

void CRider::Swing(float Delta) {
    LastCutTimer = CutTimer;
    if (GGameBinds[BIND_CUT].State == KEY_PRESSED && CutTimer <= 0 && GGameState != GAME_END) {
        Anim.Play(STROKE_SLOT, PlatRand() % 2 == 0 ? "cut0" : "cut1", BLEND_RATE);
        CutTimer = STROKE_TIME;
        PlayAt(SwishSound, Client.Pos);
    }
    if (CutTimer > 0) {
        CutTimer -= Delta;
    }
    if (CutTimer < HIT_TIME && LastCutTimer >= HIT_TIME) {
        Strike();
    }
}

void CRider::Strike() {
    for (CEntity* Entity : GLevel->Entities) {
        if (std::strcmp(Entity->Class->Name, "Tree") != 0) {
            continue;
        }
        CTree& Tree = static_cast<CTree&>(*Entity);
        if (!Tree.Cut && Reaches(Tree)) {
            Tree.CutBy(Client.Pos);
            PlayAt(CutSound, Client.Pos);
        }
    }
}

// A tree that stands exactly at the rider's place has no direction and is not hit.
bool CRider::Reaches(const CTree& Tree) const {
    const Vec3 ToTree = Tree.Position - Client.Pos;
    return M_Length(ToTree) <= REACH && M_Dot(Turned(M_Normalized(CUT_DIRECTION)), M_Normalized(ToTree)) >= CUT_CONE;
}

// A pair of forces, one at the rider's head: what is left of them is a torque towards the upright.
void CRider::KeepUpright() {
    const Vec3 Up = GLevel->UpDirection();
    const Vec3 Head = Turned(Up);
    const btVector3 Force = ToBullet((Up - Head) * UPRIGHT_FORCE);
    Body->applyForce(Force, ToBullet(Head));
    Body->applyCentralForce(-Force);
}

// Also costs a little speed where facing and velocity differ, which is what makes a turn brake.
void CRider::AlignVelocity() {
    const Vec3 Velocity = FromBullet(Body->getLinearVelocity());
    const float Speed = M_Length(Velocity);
    if (Speed > 0) {
        const Vec3 Direction = Velocity / Speed;
        Body->setLinearVelocity(ToBullet((Direction + (Turned(FORWARD) - Direction) * ALIGNMENT) * Speed));
    }
}

void CRider::ShowTurn(INT32 NewTurn) {
    if (NewTurn != Turn) {
        Anim.Play(LOOP_SLOT, NewTurn < 0 ? "left" : NewTurn > 0 ? "right" : "idle", BLEND_RATE);
        Turn = NewTurn;
    }
}

void CRider::LeadCamera(float Delta) {
    GCameraPrev = GCameraNow;
    const Vec3 Velocity = FromBullet(Body->getLinearVelocity());
    const Vec3 Look = M_Normalized(Turned(FORWARD) + Velocity * LOOK_VELOCITY);
    CameraLag += (Look * LOOK_LENGTH - CameraLag) * (Delta * CAMERA_RATE);
    const float Lift = std::max(CAMERA_LIFT - M_Abs(CameraLag.x * CAMERA_SIDE), 0.0f);

    GCamera.Eye = Client.Pos + CAMERA_OFFSET - Vec3{CameraLag.x, CameraLag.y, 2 * CameraLag.z - Lift};
    GCamera.Target = GCamera.Eye + FORWARD + CameraLag;
    GCamera.Up = GLevel->UpDirection();
    M_CameraGet(GCameraNow);

    const Vec3 Direction = M_Normalized(GCamera.Target - GCamera.Eye);
    const float Orientation[] = {Direction.x, Direction.y, Direction.z, GCamera.Up.x, GCamera.Up.y, GCamera.Up.z};
    alListenerfv(AL_POSITION, &GCamera.Eye.x);
    alListenerfv(AL_ORIENTATION, Orientation);
}

// The sound runs all the time and is only turned up and down.
void CRider::SoundSlide() {
    SetSoundPosition(SlideSound, Client.Pos);
    const bool Touching = PhyForEachContact(Body, this) != 0;
    SlideSound.Gain = Touching ? M_Length(FromBullet(Body->getLinearVelocity())) * SLIDE_GAIN : 0;
    EmitterSetGain(SlideSound);
}

bool CRider::ContactAdded(btManifoldPoint&, const btCollisionObject* Obj0, int, int, const btCollisionObject* Obj1, int,
                          int) {
    HitSound.Gain = M_Length(VelocityOf(Obj0) - VelocityOf(Obj1)) * HIT_GAIN;
    EmitterSetGain(HitSound);
    EmitterPlay(HitSound);
    return false;
}

bool CRider::ContactFound(btManifoldPoint&, btCollisionObject*, btCollisionObject*) {
    return true;
}
