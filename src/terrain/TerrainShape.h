// The terrain as Bullet sees it: triangles made on the fly from the array of heights, without a copy or a mesh.
//
// Ownership: the shape reads the heights live for as long as it exists and owns nothing; sculpting takes effect at
// once. Box and scale are fixed when it is made. A body from CreateTerrainBody is given back with PhyRemoveBody.
// Units: the extents and the position passed in are world units, everything inside is physics units. The shape's origin
// is the centre of the grid in X and Y, at height 0.
// Cost: a query is bounded by its box, widened by a cell each way, and allocates nothing.
// Each cell is split from (x, y) to (x + 1, y + 1), as the terrain's picking ray splits it.
// Bad input: a query outside the grid yields the cells at its edge. A grid of one row or column has no triangles.
// The type number is that of Bullet's own height field, to which ray tests of the world cast it: never make one.
#pragma once

#include <BulletCollision/CollisionShapes/btConcaveShape.h>

#include "foundation/Maths.h"
#include "foundation/Types.h"

class btRigidBody;

class btCustomHeightfieldTerrainShape : public btConcaveShape {
public:
    BT_DECLARE_ALIGNED_ALLOCATOR();

    // Heights: Width * Height fractions from 0 to 1, row by row. Extents: half sizes in X and Y, full height in Z.
    btCustomHeightfieldTerrainShape(UINT32 Width, UINT32 Height, const float* Heights, const Vec3& Extents);

    void getAabb(const btTransform& Transform, btVector3& AabbMin, btVector3& AabbMax) const override;
    void setLocalScaling(const btVector3&) override {}
    const btVector3& getLocalScaling() const override { return LocalScale; }
    void calculateLocalInertia(btScalar Mass, btVector3& Inertia) const override;
    const char* getName() const override { return "C_HEIGHTFIELD"; }

    // Calls back with the cell's x and y as part and index.
    void processAllTriangles(btTriangleCallback* Callback, const btVector3& AabbMin,
                             const btVector3& AabbMax) const override;

    virtual float getRawHeight(UINT32 x, UINT32 y) const { return Heights[Width * y + x]; }

private:
    struct SCell {
        UINT32 x, y;
    };

    btVector3 Vertex(UINT32 x, UINT32 y) const;
    SCell NearestCell(const btVector3& Point) const;
    void ProcessCell(btTriangleCallback* Callback, UINT32 x, UINT32 y) const;

    btVector3 BoxMin;
    btVector3 BoxMax;
    UINT32 Width;
    UINT32 Height;
    float LastColumn;
    float LastRow;
    const float* Heights;
    btVector3 LocalScale;
};

// A body of mass 0 without friction and restitution, in the world. Position is that of the shape's origin.
btRigidBody* CreateTerrainBody(const Vec3& Extents, const float* Heights, UINT32 Width, UINT32 Height,
                               const Vec3& Position);
