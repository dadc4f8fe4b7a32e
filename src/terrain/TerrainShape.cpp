#include "terrain/TerrainShape.h"

#include <btBulletDynamicsCommon.h>

#include "foundation/Diagnostics.h"
#include "physics/Physics.h"

// Bullet's collision dispatch asks for the number only to see that the shape is concave.
static_assert(TERRAIN_SHAPE_PROXYTYPE == 24);

namespace {

// From 0 to Max, and 0 for what is not a number.
float Clamp(float Value, float Max) {
    if (!(Value > 0)) {
        return 0;
    }
    return Value < Max ? Value : Max;
}

UINT32 Nearest(float NotNegative) {
    return static_cast<UINT32>(NotNegative + 0.5f);
}

} // namespace

btCustomHeightfieldTerrainShape::btCustomHeightfieldTerrainShape(UINT32 Columns, UINT32 Rows, const float* Fractions,
                                                                 const Vec3& Extents)
    : Width(Columns), Height(Rows), LastColumn(static_cast<float>(Columns) - 1), LastRow(static_cast<float>(Rows) - 1),
      Heights(Fractions) {
    m_shapeType = TERRAIN_SHAPE_PROXYTYPE;
    const btVector3 Ext = btVector3(Extents.x, Extents.y, Extents.z) * PhyScale;
    BoxMin.setValue(-Ext.x(), -Ext.y(), 0);
    BoxMax = Ext;
    LocalScale.setValue(2 * Ext.x() / static_cast<float>(Width), 2 * Ext.y() / static_cast<float>(Height), 1);
}

void btCustomHeightfieldTerrainShape::getAabb(const btTransform& Transform, btVector3& AabbMin,
                                              btVector3& AabbMax) const {
    const float HalfHeight = BoxMax.z() * 0.5f;
    const btVector3 HalfSizes(BoxMax.x(), BoxMax.y(), HalfHeight);
    // The centre's offset is not rotated: terrain bodies stand upright.
    const btVector3 Centre = Transform.getOrigin() + btVector3(0, 0, HalfHeight);
    const btVector3 Reach =
        Transform.getBasis().absolute() * HalfSizes + btVector3(getMargin(), getMargin(), getMargin());
    AabbMin = Centre - Reach;
    AabbMax = Centre + Reach;
    AabbMin.setW(0);
    AabbMax.setW(0);
}

void btCustomHeightfieldTerrainShape::calculateLocalInertia(btScalar, btVector3& Inertia) const {
    Inertia.setValue(0, 0, 0);
}

btVector3 btCustomHeightfieldTerrainShape::Vertex(UINT32 x, UINT32 y) const {
    const float u = static_cast<float>(x) / (LastColumn + 1);
    const float v = static_cast<float>(y) / (LastRow + 1);
    return {2 * (u - 0.5f) * BoxMax.x(), 2 * (v - 0.5f) * BoxMax.y(), BoxMax.z() * getRawHeight(x, y)};
}

btCustomHeightfieldTerrainShape::SCell btCustomHeightfieldTerrainShape::NearestCell(const btVector3& Point) const {
    const btVector3 FromCorner = Point - BoxMin;
    return {Nearest(Clamp(FromCorner.x() / LocalScale.x(), LastColumn)),
            Nearest(Clamp(FromCorner.y() / LocalScale.y(), LastRow))};
}

void btCustomHeightfieldTerrainShape::processAllTriangles(btTriangleCallback* Callback, const btVector3& AabbMin,
                                                          const btVector3& AabbMax) const {
    const SCell Low = NearestCell(AabbMin);
    const SCell High = NearestCell(AabbMax);
    const UINT32 FirstX = Low.x > 0 ? Low.x - 1 : 0;
    const UINT32 FirstY = Low.y > 0 ? Low.y - 1 : 0;
    const UINT32 EndX = btMin(High.x + 1, Width - 1);
    const UINT32 EndY = btMin(High.y + 1, Height - 1);
    for (UINT32 y = FirstY; y < EndY; y++) {
        for (UINT32 x = FirstX; x < EndX; x++) {
            ProcessCell(Callback, x, y);
        }
    }
}

void btCustomHeightfieldTerrainShape::ProcessCell(btTriangleCallback* Callback, UINT32 x, UINT32 y) const {
    const btVector3 Near = Vertex(x, y);
    const btVector3 Far = Vertex(x + 1, y + 1);
    btVector3 First[3] = {Near, Vertex(x, y + 1), Far};
    btVector3 Second[3] = {Far, Vertex(x + 1, y), Near};
    Callback->processTriangle(First, static_cast<int>(x), static_cast<int>(y));
    Callback->processTriangle(Second, static_cast<int>(x), static_cast<int>(y));
}

btRigidBody* CreateTerrainBody(const Vec3& Extents, const float* Heights, UINT32 Width, UINT32 Height,
                               const Vec3& Position) {
    G_ASSERT(GPhyWorld);
    auto* Shape = new btCustomHeightfieldTerrainShape(Width, Height, Heights, Extents);
    const btVector3 Origin = btVector3(Position.x, Position.y, Position.z) * PhyScale;
    auto* Motion = new btDefaultMotionState(btTransform(btQuaternion::getIdentity(), Origin));
    btRigidBody::btRigidBodyConstructionInfo Info(0, Motion, Shape, btVector3(0, 0, 0));
    Info.m_friction = 0;
    Info.m_restitution = 0;
    auto* Body = new btRigidBody(Info);
    GPhyWorld->addRigidBody(Body);
    return Body;
}
