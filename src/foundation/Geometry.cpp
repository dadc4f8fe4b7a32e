#include "foundation/Geometry.h"

#include <algorithm>

namespace {

// Below this a ray counts as parallel to a plane or a triangle.
constexpr float PARALLEL = 0.0001f;

// How far along a ray the second point lies that carries its direction into another space.
constexpr float LOCAL_RAY_LENGTH = 512.0f;

void Write(float* t, float Value) {
    if (t) {
        *t = Value;
    }
}

} // namespace

void M_BBoxTransform(const BBox& In, const Mat4& m, BBox& Out) {
    BBox Result;
    for (int i = 0; i < 8; ++i) {
        Vec3 Corner = {i & 1 ? In.Max.x : In.Min.x, i & 2 ? In.Max.y : In.Min.y, i & 4 ? In.Max.z : In.Min.z};
        M_Mat4MulPoint(m, Corner, Corner);
        if (i == 0) {
            Result = {Corner, Corner};
        } else {
            M_BBoxAddPoint(Corner, Result);
        }
    }
    Out = Result;
}

bool M_BBoxOutsidePlanes(const BBox& Box, const Plane* Planes, int Count) {
    for (int i = 0; i < Count; ++i) {
        if (M_BBoxOutsidePlane(Box, Planes[i])) {
            return true;
        }
    }
    return false;
}

// How far p lies outside of the range.
static float GapAlong(float Low, float High, float p) {
    return std::max(std::max(Low - p, p - High), 0.0f);
}

float M_BBoxDistance(const BBox& Box, const Vec3& p) {
    return M_Length({GapAlong(Box.Min.x, Box.Max.x, p.x), GapAlong(Box.Min.y, Box.Max.y, p.y),
                     GapAlong(Box.Min.z, Box.Max.z, p.z)});
}

bool M_BBoxOverlap(const BBox& a, const BBox& b) {
    for (int Axis = 0; Axis < 3; ++Axis) {
        if (a.Max[Axis] < b.Min[Axis] || b.Max[Axis] < a.Min[Axis]) {
            return false;
        }
    }
    return true;
}

void M_RayToLocal(const Mat4& World, Ray& R) {
    Mat4 Inverse;
    if (M_Mat4Inverse(World, Inverse) == 0) {
        return;
    }
    Vec3 End = R.Origin + R.Dir * LOCAL_RAY_LENGTH;
    M_Mat4MulPoint(Inverse, R.Origin, R.Origin);
    M_Mat4MulPoint(Inverse, End, End);
    R.Dir = M_Normalized(End - R.Origin);
}

int M_RayTriangle(const Vec3& a, const Vec3& b, const Vec3& c, const Ray& R, float* t) {
    const Vec3 e1 = b - a;
    const Vec3 e2 = c - a;
    const Vec3 P = M_Cross(R.Dir, e1);
    const float Det = M_Dot(P, e2);
    if (Det > -PARALLEL && Det < PARALLEL) {
        return 0;
    }
    const Vec3 T = R.Origin - a;
    const float U = M_Dot(P, T);
    if (U < 0 || U > Det) {
        return 0;
    }
    const Vec3 Q = M_Cross(T, e2);
    const float V = M_Dot(R.Dir, Q);
    if (V < 0 || U + V > Det) {
        return 0;
    }
    Write(t, M_Dot(e1, Q) / Det);
    return 1;
}

int M_RayPlane(const Plane& P, const Ray& R, int FrontOnly, int AllowBehind, float* t) {
    const float Den = M_Dot(P.Normal, -R.Dir);
    if (M_Abs(Den) < PARALLEL || (FrontOnly && Den < 0)) {
        return 0;
    }
    const float Distance = M_PlaneDistance(P, R.Origin) / Den;
    if (!AllowBehind && Distance < 0) {
        return 0;
    }
    Write(t, Distance);
    return 1;
}

int M_RaySphere(const Ray& R, const Vec3& Centre, float Radius, float* t) {
    const Vec3 ToCentre = Centre - R.Origin;
    const float Squared = M_Dot(ToCentre, ToCentre);
    if (Squared <= Radius * Radius) {
        Write(t, M_Sqrt(Squared));
        return 1;
    }
    const float Along = M_Dot(R.Dir, Centre) - M_Dot(R.Dir, R.Origin);
    if (Along < 0) {
        return 0;
    }
    // Not "above 1", so that a sphere of radius 0 that is met exactly (0 / 0) is no hit either.
    const float k = M_Length(R.Origin + R.Dir * Along - Centre) / Radius;
    if (!(k <= 1)) {
        return 0;
    }
    Write(t, Along - M_Sin(static_cast<float>(std::acos(static_cast<double>(k)))) * Radius);
    return 1;
}
