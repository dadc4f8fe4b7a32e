// The shapes that a growing part is made of.
#include "foundation/Diagnostics.h"
#include "foundation/Matrix.h"
#include "meshgen/GenPart.h"

namespace {

constexpr float FULL_CIRCLE = 6.2831854820251465f;

// A circle in space: centre and radius, turned by a quaternion.
Mat4 RingMatrix(const Vec4& Ring, const Quat& Rotation) {
    Mat4 Matrix;
    M_Mat4Compose({Ring.w, Ring.w, Ring.w}, {Ring.x, Ring.y, Ring.z}, Matrix, Rotation);
    return Matrix;
}

Vec3 RingPoint(const Mat4& Ring, float Angle) {
    Vec3 Point;
    M_Mat4MulPoint(Ring, {M_Cos(Angle), M_Sin(Angle), 0}, Point);
    return Point;
}

void AddVertex(SGenPart& Part, const Vec3& Position, float U, float V) {
    SMeshVertex Vertex;
    Vertex.Position = Position;
    Vertex.UV = {U, V};
    Vertex.Bone = Part.Bone;
    Part.Vertices.Add(Vertex);
}

void AddTriangle(SGenPart& Part, UINT32 a, UINT32 b, UINT32 c) {
    Part.Indices.Add(a);
    Part.Indices.Add(b);
    Part.Indices.Add(c);
}

// One ring of quads between two circles. V runs from FromV to ToV, U once round.
void AddBand(SGenPart& Part, const Mat4& From, const Mat4& To, float FromV, float ToV, INT32 Sides) {
    const float Columns = static_cast<float>(Sides);
    const float AngleStep = FULL_CIRCLE / Columns;
    const float UStep = 1 / Columns;
    float Angle = 0;
    for (INT32 j = 0; j < Sides; ++j) {
        const float U = static_cast<float>(j) / Columns;
        const UINT32 b = Part.Vertices.count;
        AddVertex(Part, RingPoint(From, Angle), U, FromV);
        AddVertex(Part, RingPoint(From, Angle + AngleStep), U + UStep, FromV);
        AddVertex(Part, RingPoint(To, Angle + AngleStep), U + UStep, ToV);
        AddVertex(Part, RingPoint(To, Angle), U, ToV);
        AddTriangle(Part, b, b + 2, b + 1);
        AddTriangle(Part, b + 3, b + 2, b);
        // Added up, so that one column ends exactly where the next begins.
        Angle += AngleStep;
    }
}

} // namespace

void SGenPart::AddTube(const Vec4& Foot, const Quat& Quat0, const Vec4& Tip, const Quat& Quat1, INT32 xsub,
                       INT32 ysub) {
    G_ASSERT(xsub > 1 && ysub > 0);
    Start = Vertices.count;
    Mat4 Before = RingMatrix(Foot, Quat0);
    float BeforeV = 0;
    for (INT32 i = 1; i <= ysub; ++i) {
        const float t = static_cast<float>(i) / static_cast<float>(ysub);
        const Mat4 Ring = RingMatrix(M_Lerp4(Tip, Foot, t), M_QuatSlerp(Quat0, Quat1, t));
        AddBand(*this, Before, Ring, BeforeV, t, xsub);
        Before = Ring;
        BeforeV = t;
    }
}

void SGenPart::AddCap(const Vec4& Tip, const Quat& Rotation, INT32 xsub) {
    G_ASSERT(xsub > 1);
    Start = Vertices.count;
    const Mat4 Ring = RingMatrix(Tip, Rotation);
    const float Sides = static_cast<float>(xsub);
    AddVertex(*this, {Ring[12], Ring[13], Ring[14]}, 0.5f, 1);
    AddVertex(*this, RingPoint(Ring, 0), 1, 0);
    for (INT32 j = 0; j < xsub - 1; ++j) {
        AddVertex(*this, RingPoint(Ring, static_cast<float>(j + 1) * FULL_CIRCLE / Sides),
                  static_cast<float>(j) / Sides, 0);
        AddTriangle(*this, Vertices.count - 2, Start, Vertices.count - 1);
    }
    AddTriangle(*this, Start, Start + 1, Vertices.count - 1);
}

void SGenPart::AddLeaf(const Vec3& Center, const Vec3& Dir, const Vec3& Up, float ExtX, float ExtY) {
    const Vec3 Across = M_Cross(Dir, Up) * ExtX;
    const Vec3 Along = Dir * ExtY;
    const Vec3 A = Center - Across + Along;
    const Vec3 B = Center + Across + Along;
    const Vec3 C = Center + Across - Along;
    const Vec3 D = Center - Across - Along;
    const UINT32 Front = Vertices.count;
    AddQuad(A, B, C, D);
    AddQuad(B, A, D, C);
    Start = Front;
}

void SGenPart::AddQuad(const Vec3& P0, const Vec3& P1, const Vec3& P2, const Vec3& P3) {
    Start = Vertices.count;
    AddVertex(*this, P0, 0, 1);
    AddVertex(*this, P1, 1, 1);
    AddVertex(*this, P2, 1, 0);
    AddVertex(*this, P2, 1, 0);
    AddVertex(*this, P3, 0, 0);
    AddVertex(*this, P0, 0, 1);
    AddTriangle(*this, Start, Start + 1, Start + 2);
    AddTriangle(*this, Start + 3, Start + 4, Start + 5);
}
