#include "foundation/Polygon.h"

#include <cfloat>

namespace {

// Points closer than this are one point, and a point may lie this far off a plane.
constexpr float SAME_POINT = 0.0001f;

// The cosine above which two edges count as one line.
constexpr float SAME_LINE = 0.9999f;

// Points that are equal, next to each other or not, are pairs like any other, so this finds spikes of zero width too.
bool RemoveTwin(GArray<Vec3>& Points) {
    for (UINT32 i = 0; i < Points.Size(); ++i) {
        for (UINT32 j = i + 1; j < Points.Size(); ++j) {
            if (M_Length(Points[i] - Points[j]) < SAME_POINT) {
                Points.Remove(j, j);
                return true;
            }
        }
    }
    return false;
}

bool RemoveStraightCorner(GArray<Vec3>& Points) {
    const UINT32 Count = Points.Size();
    for (UINT32 i = 0; i < Count; ++i) {
        const Vec3 In = M_Normalized(Points[i] - Points[(i + Count - 1) % Count]);
        const Vec3 Out = M_Normalized(Points[(i + 1) % Count] - Points[i]);
        if (M_Abs(M_Dot(In, Out)) >= SAME_LINE) {
            Points.Remove(i, i);
            return true;
        }
    }
    return false;
}

} // namespace

int M_PolygonPlane(const GArray<Vec3>& Points, Plane& Out) {
    if (Points.Size() < 3) {
        return 0;
    }
    const Vec3 Normal = M_Normalized(M_Cross(M_Normalized(Points[1] - Points[0]), M_Normalized(Points[2] - Points[0])));
    const Plane Result = {Normal, M_Dot(Normal, Points[0])};
    for (UINT32 i = 3; i < Points.Size(); ++i) {
        if (!(M_Abs(M_PlaneDistance(Result, Points[i])) <= SAME_POINT)) {
            return 0;
        }
    }
    Out = Result;
    return 1;
}

int M_PolygonClean(GArray<Vec3>& Points) {
    while (Points.Size() >= 3) {
        if (!RemoveTwin(Points) && !RemoveStraightCorner(Points)) {
            return 1;
        }
    }
    return 0;
}

float M_PolygonProject(GArray<Vec2>& Out, const GArray<Vec3>& Points, const Mat4& m) {
    Out.Clear();
    float FirstZ = FLT_MAX;
    for (UINT32 i = 0; i < Points.Size(); ++i) {
        Vec3 p;
        M_Mat4MulPoint(m, Points[i], p);
        Out.Add({p.x, p.y});
        if (i == 0) {
            FirstZ = p.z;
        }
    }
    return FirstZ;
}
