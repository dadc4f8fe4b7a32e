// Boxes, planes, rays and view volumes, and the tests between them.
//
// A plane is the set of points p with dot(Normal, p) = D. The normals of a Frustum point outward: a point is inside
// when dot(Normal, p) is at most D for all six. The direction of a ray is of unit length wherever this program makes
// one, and distances t along it are in the units of the space that the ray is in. The ray tests return 1 for a hit and
// 0 for none, and write t only on a hit and only if the pointer is not null. Cost: a few dozen operations each, nothing
// allocates. Bad input: a degenerate triangle is never hit; a box that is to grow starts with Min = Max = the first
// point.
#pragma once

#include "foundation/Matrix.h"
#include "foundation/Vector.h"

struct BBox {
    Vec3 Min;
    Vec3 Max;
};

struct Plane {
    Vec3 Normal;
    float D = 0;
};

struct Ray {
    Vec3 Origin;
    Vec3 Dir;
};

struct Frustum {
    Plane Planes[6];
};

inline void M_BBoxAddPoint(const Vec3& p, BBox& Box) {
    for (int Axis = 0; Axis < 3; ++Axis) {
        if (p[Axis] < Box.Min[Axis]) {
            Box.Min[Axis] = p[Axis];
        } else if (p[Axis] > Box.Max[Axis]) {
            Box.Max[Axis] = p[Axis];
        }
    }
}

// The box around the eight transformed corners. Out may be In.
void M_BBoxTransform(const BBox& In, const Mat4& m, BBox& Out);

// The corner that lies farthest against the normal, and the one opposite to it.
inline Vec3 M_BBoxNearCorner(const BBox& Box, const Vec3& Normal) {
    return {Normal.x >= 0 ? Box.Min.x : Box.Max.x, Normal.y >= 0 ? Box.Min.y : Box.Max.y,
            Normal.z >= 0 ? Box.Min.z : Box.Max.z};
}
inline Vec3 M_BBoxFarCorner(const BBox& Box, const Vec3& Normal) {
    return {Normal.x >= 0 ? Box.Max.x : Box.Min.x, Normal.y >= 0 ? Box.Max.y : Box.Min.y,
            Normal.z >= 0 ? Box.Max.z : Box.Min.z};
}

inline float M_PlaneDistance(const Plane& P, const Vec3& p) {
    return M_Dot(P.Normal, p) - P.D;
}

// True if the whole box lies on the outer side. A box that touches the plane is not outside.
inline bool M_BBoxOutsidePlane(const BBox& Box, const Plane& P) {
    return M_PlaneDistance(P, M_BBoxNearCorner(Box, P.Normal)) > 0;
}

// True if one of the planes rejects the box. Boxes near an edge of the volume may be kept though they are outside.
bool M_BBoxOutsidePlanes(const BBox& Box, const Plane* Planes, int Count);
inline bool M_BBoxOutsideFrustum(const BBox& Box, const Frustum& F) {
    return M_BBoxOutsidePlanes(Box, F.Planes, 6);
}

// From the point to the nearest point of the box; 0 inside.
float M_BBoxDistance(const BBox& Box, const Vec3& p);

// True if the boxes have a point in common; touching counts.
bool M_BBoxOverlap(const BBox& a, const BBox& b);

// Takes a ray of the world into the space of an object with the given world matrix. The new direction is of unit length
// again, so distances are in the object's own units. A matrix without an inverse leaves the ray as it is.
void M_RayToLocal(const Mat4& World, Ray& R);

// One-sided: only a ray with dot(Dir, (b - a) x (c - a)) > 0 can hit. A triangle behind the origin is hit with t < 0.
int M_RayTriangle(const Vec3& a, const Vec3& b, const Vec3& c, const Ray& R, float* t);

// FrontOnly takes only rays that run against the normal; AllowBehind takes planes behind the origin too.
int M_RayPlane(const Plane& P, const Ray& R, int FrontOnly, int AllowBehind, float* t);

// From inside the sphere every ray hits, and t is then the distance to the centre.
int M_RaySphere(const Ray& R, const Vec3& Centre, float Radius, float* t);
