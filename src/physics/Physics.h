// The thin layer over Bullet: the one world, its scale and clock, the kinds of body that exist, and contacts.
//
// Units: positions and sizes passed to these functions are world units; inside Bullet lengths are world units times
// PhyScale. Who reads a body's state directly reads physics units and multiplies by PhyWorldScale.
// Time: PhyStep advances physics by four times the given time. The constants of everything that moves rest on that.
// Gravity: the world keeps Bullet's own, which is not zero; whoever owns a falling body sets its gravity in every step.
//
// Ownership: the world, and what it stands on, lives from PhyInit to PhyFree, across all levels. A body belongs to who
// made it and is given back with PhyRemoveBody, which deletes its shape and motion state too. All bodies are gone
// before PhyFree. Contact callbacks belong to their owner, who enters them in GPhyCallbacks and takes them out again.
//
// Cost: a step is the dear call. Bodies cost while they are in the world, so scenery far away has none. A hull with
// thousands of points makes every contact slow.
//
// The terrain's shape has a type number that Bullet casts to a class of its own in ray tests: never ray-test the world.
// Bad input: a hull without points and a capsule of negative height give null. Calls between PhyFree and PhyInit that
// need the world fail an assertion; PhyFree and a second PhyFree are harmless then.
#pragma once

#include <LinearMath/btIDebugDraw.h>

#include "foundation/GTemplate.h"
#include "foundation/Maths.h"
#include "foundation/Types.h"

class btCollisionDispatcher;
class btCollisionObject;
class btDefaultCollisionConfiguration;
class btDiscreteDynamicsWorld;
class btManifoldPoint;
class btRigidBody;
class btSequentialImpulseConstraintSolver;
struct btDbvtBroadphase;

constexpr float PhyScale = 0.02f;      // physics units in a world unit
constexpr float PhyWorldScale = 50.0f; // world units in a physics unit

// Hears about the contacts of one body. Contacts of a pair reach ContactAdded only while one of the two has the
// collision flag CF_CUSTOM_MATERIAL_CALLBACK.
class PhyContactCallback {
public:
    btRigidBody* Body = nullptr;

    virtual ~PhyContactCallback() = default;

    // Inside PhyStep, for each new contact point. True ends the round: no callback entered later hears of this point.
    virtual bool ContactAdded(btManifoldPoint& Point, const btCollisionObject* Obj0, int Part0, int Index0,
                              const btCollisionObject* Obj1, int Part1, int Index1);

    // From PhyForEachContact. True ends the walk.
    virtual bool ContactFound(btManifoldPoint& Point, btCollisionObject* Body0, btCollisionObject* Body1);
};

// Draws Bullet's lines near the camera with the current program. Needs no vertex buffer bound.
class PhyDebugDraw : public btIDebugDraw {
public:
    INT32 DebugMode = DBG_DrawWireframe | DBG_DrawAabb | DBG_DrawContactPoints | DBG_FastWireframe;

    using btIDebugDraw::drawLine;
    void drawLine(const btVector3& From, const btVector3& To, const btVector3& Color) override;
    void drawContactPoint(const btVector3& Point, const btVector3& Normal, btScalar Distance, int LifeTime,
                          const btVector3& Color) override;
    void reportErrorWarning(const char*) override {}
    void draw3dText(const btVector3&, const char*) override {}
    void setDebugMode(int Mode) override { DebugMode = Mode; }
    int getDebugMode() const override { return DebugMode; }
};

extern btDbvtBroadphase* GPhyBroadphase;
extern btDefaultCollisionConfiguration* GPhyConfig;
extern btCollisionDispatcher* GPhyDispatcher;
extern btSequentialImpulseConstraintSolver* GPhySolver;
extern btDiscreteDynamicsWorld* GPhyWorld;
extern PhyDebugDraw GPhyDebugDraw;
extern GList<PhyContactCallback*> GPhyCallbacks; // asked from the first to the last
extern UINT32 GPhyShowDebug;                     // not 0: the frame draws the world's lines

void PhyInit();
void PhyFree();

// Four substeps of Delta seconds each.
void PhyStep(float Delta);

// The convex hull of Count points, of mass 1 and without inertia until PhySetMass. With OutCentre the body's origin is
// the centroid of the points, which is also stored there; without, it is the points' own origin.
btRigidBody* PhyAddHullBody(Vec3* OutCentre, const Vec3* Points, UINT32 Count);

// A capsule upright along Z, Height between the centres of its ends; a sphere if Height is 0. A dynamic one has mass
// 10, cannot rotate and never sleeps; the others never move.
btRigidBody* PhyAddCapsuleBody(float Radius, float Height, float x, float y, float z, bool Dynamic);

// Moves and wakes the body; its rotation and speed stay.
void PhySetPosition(const Vec3& Position, btRigidBody* Body);

// The inertia is that of the shape at this mass times InertiaScale.
void PhySetMass(float Mass, float InertiaScale, btRigidBody* Body);

void PhyRemoveBody(btRigidBody* Body);

// Calls ContactFound for every contact point that the body has since the last substep; 1 if one of the calls was true.
// The callback must not remove bodies.
INT32 PhyForEachContact(btRigidBody* Body, PhyContactCallback* Callback);
