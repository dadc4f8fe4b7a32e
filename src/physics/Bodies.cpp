#include <btBulletDynamicsCommon.h>

#include "foundation/Diagnostics.h"
#include "physics/Physics.h"

namespace {

constexpr float HULL_MASS = 1.0f; // until its owner gives it its own
constexpr float CAPSULE_MASS = 10.0f;

btVector3 ToPhysics(const Vec3& World) {
    return btVector3(World.x, World.y, World.z) * PhyScale;
}

// Without inertia, so a body with mass moves but cannot rotate until PhySetMass.
btRigidBody* AddBody(float Mass, btCollisionShape* Shape, const btVector3& Origin) {
    auto* Motion = new btDefaultMotionState(btTransform(btQuaternion::getIdentity(), Origin));
    auto* Body = new btRigidBody(btRigidBody::btRigidBodyConstructionInfo(Mass, Motion, Shape));
    GPhyWorld->addRigidBody(Body);
    return Body;
}

Vec3 Centroid(const Vec3* Points, UINT32 Count) {
    Vec3 Sum;
    for (UINT32 i = 0; i < Count; i++) {
        Sum += Points[i];
    }
    return Sum / static_cast<float>(Count);
}

} // namespace

btRigidBody* PhyAddHullBody(Vec3* OutCentre, const Vec3* Points, UINT32 Count) {
    G_ASSERT(GPhyWorld);
    if (Count == 0) {
        return nullptr;
    }
    btVector3 Centre(0, 0, 0);
    if (OutCentre) {
        *OutCentre = Centroid(Points, Count);
        Centre = ToPhysics(*OutCentre);
    }
    auto* Shape = new btConvexHullShape;
    for (UINT32 i = 0; i < Count; i++) {
        Shape->addPoint(ToPhysics(Points[i]) - Centre, false);
    }
    Shape->recalcLocalAabb();
    return AddBody(HULL_MASS, Shape, Centre);
}

btRigidBody* PhyAddCapsuleBody(float Radius, float Height, float x, float y, float z, bool Dynamic) {
    G_ASSERT(GPhyWorld);
    const float r = Radius * PhyScale;
    const float h = Height * PhyScale;
    if (h < 0) {
        return nullptr;
    }
    btCollisionShape* Shape = nullptr;
    if (h == 0) {
        Shape = new btSphereShape(r);
    } else {
        Shape = new btCapsuleShapeZ(r, h);
    }
    btRigidBody* Body = AddBody(Dynamic ? CAPSULE_MASS : 0.0f, Shape, ToPhysics({x, y, z}));
    if (Dynamic) {
        Body->setActivationState(DISABLE_DEACTIVATION);
    }
    return Body;
}

void PhySetPosition(const Vec3& Position, btRigidBody* Body) {
    Body->getWorldTransform().setOrigin(ToPhysics(Position));
    Body->activate(true);
}

void PhySetMass(float Mass, float InertiaScale, btRigidBody* Body) {
    btVector3 Inertia(0, 0, 0);
    Body->getCollisionShape()->calculateLocalInertia(Mass, Inertia);
    Body->setMassProps(Mass, Inertia * InertiaScale);
}

void PhyRemoveBody(btRigidBody* Body) {
    G_ASSERT(GPhyWorld);
    GPhyWorld->removeRigidBody(Body);
    delete Body->getCollisionShape();
    delete Body->getMotionState();
    delete Body;
}
