#include "physics/Physics.h"

#include <BulletCollision/CollisionDispatch/btManifoldResult.h>
#include <btBulletDynamicsCommon.h>

#include "foundation/Diagnostics.h"

btDbvtBroadphase* GPhyBroadphase = nullptr;
btDefaultCollisionConfiguration* GPhyConfig = nullptr;
btCollisionDispatcher* GPhyDispatcher = nullptr;
btSequentialImpulseConstraintSolver* GPhySolver = nullptr;
btDiscreteDynamicsWorld* GPhyWorld = nullptr;
PhyDebugDraw GPhyDebugDraw;
GList<PhyContactCallback*> GPhyCallbacks;
UINT32 GPhyShowDebug = 0;

namespace {

// Physics time runs at this multiple of game time.
constexpr int SUBSTEPS = 4;

// More than Bullet ever needs here: each call advances by exactly one of its internal steps.
constexpr int MAX_INTERNAL_STEPS = 5;

template <class T>
void DeleteAndClear(T*& Object) {
    delete Object;
    Object = nullptr;
}

bool DispatchContact(btManifoldPoint& Point, const btCollisionObjectWrapper* Wrap0, int Part0, int Index0,
                     const btCollisionObjectWrapper* Wrap1, int Part1, int Index1) {
    const btCollisionObject* Obj0 = Wrap0->getCollisionObject();
    const btCollisionObject* Obj1 = Wrap1->getCollisionObject();
    for (auto* Node = GPhyCallbacks.first; Node;) {
        // A callback may take itself out of the list.
        auto* Next = Node->next;
        PhyContactCallback* Callback = Node->obj;
        if ((Callback->Body == Obj0 || Callback->Body == Obj1) &&
            Callback->ContactAdded(Point, Obj0, Part0, Index0, Obj1, Part1, Index1)) {
            return true;
        }
        Node = Next;
    }
    return false;
}

} // namespace

bool PhyContactCallback::ContactAdded(btManifoldPoint&, const btCollisionObject*, int, int, const btCollisionObject*,
                                      int, int) {
    return false;
}

bool PhyContactCallback::ContactFound(btManifoldPoint&, btCollisionObject*, btCollisionObject*) {
    return false;
}

void PhyInit() {
    GPhyBroadphase = new btDbvtBroadphase;
    GPhyConfig = new btDefaultCollisionConfiguration(btDefaultCollisionConstructionInfo());
    GPhyDispatcher = new btCollisionDispatcher(GPhyConfig);
    GPhySolver = new btSequentialImpulseConstraintSolver;
    GPhyWorld = new btDiscreteDynamicsWorld(GPhyDispatcher, GPhyBroadphase, GPhySolver, GPhyConfig);
    GPhyWorld->setDebugDrawer(&GPhyDebugDraw);
    gContactAddedCallback = DispatchContact;
}

void PhyFree() {
    DeleteAndClear(GPhyWorld);
    DeleteAndClear(GPhySolver);
    DeleteAndClear(GPhyDispatcher);
    DeleteAndClear(GPhyConfig);
    DeleteAndClear(GPhyBroadphase);
}

void PhyStep(float Delta) {
    G_ASSERT(GPhyWorld);
    for (int i = 0; i < SUBSTEPS; i++) {
        GPhyWorld->stepSimulation(Delta, MAX_INTERNAL_STEPS, Delta);
    }
}

INT32 PhyForEachContact(btRigidBody* Body, PhyContactCallback* Callback) {
    G_ASSERT(GPhyWorld);
    for (int i = 0; i < GPhyDispatcher->getNumManifolds(); i++) {
        btPersistentManifold* Manifold = GPhyDispatcher->getManifoldByIndexInternal(i);
        auto* Body0 = const_cast<btCollisionObject*>(Manifold->getBody0());
        auto* Body1 = const_cast<btCollisionObject*>(Manifold->getBody1());
        if (Body0 != Body && Body1 != Body) {
            continue;
        }
        for (int p = 0; p < Manifold->getNumContacts(); p++) {
            if (Callback->ContactFound(Manifold->getContactPoint(p), Body0, Body1)) {
                return 1;
            }
        }
    }
    return 0;
}
