#include "graphics/MeshTrace.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr UINT32 LEAF_TRIANGLES = 8;

// A tree of halves over all triangles that memory can hold is not deeper.
constexpr UINT32 MAX_DEPTH = 64;

// Boxes are taken this much larger, in parts of their size and distance, since the triangle test rounds in its own way.
constexpr float MARGIN = 1e-4f;

// Where the ray can be inside the box along one axis, cut into [Enter, Leave]. A ray along another axis divides by
// zero: infinities stay what they are, and comparisons that a NaN makes false leave the range as it is.
void CutToSlab(float Origin, float Dir, float Min, float Max, float& Enter, float& Leave) {
    const float Slack = MARGIN * (std::fabs(Min) + std::fabs(Max) + std::fabs(Origin));
    float a = (Min - Slack - Origin) / Dir;
    float b = (Max + Slack - Origin) / Dir;
    if (a > b) {
        std::swap(a, b);
    }
    a *= a > 0 ? 1 - MARGIN : 1 + MARGIN;
    b *= b > 0 ? 1 + MARGIN : 1 - MARGIN;
    if (a > Enter) {
        Enter = a;
    }
    if (b < Leave) {
        Leave = b;
    }
}

// A place for sorting: what is not a number must have a place too, or the sort runs out of its range.
float SortPlace(const Vec3& Position, int Axis) {
    return std::isnan(Position[Axis]) ? -INFINITY : Position[Axis];
}

bool CanHit(const BBox& Box, const Ray& R, float Best) {
    float Enter = 0;
    float Leave = Best;
    for (int Axis = 0; Axis < 3; ++Axis) {
        CutToSlab(R.Origin[Axis], R.Dir[Axis], Box.Min[Axis], Box.Max[Axis], Enter, Leave);
    }
    return !(Enter > Leave);
}

} // namespace

CMeshTraceTree::CMeshTraceTree(const SMesh& Mesh) {
    for (const SMeshPart& Part : Mesh.Parts) {
        AddTriangles(Mesh, Part);
    }
    if (Triangles.count > 0) {
        Build(Mesh, 0, Triangles.count);
    }
}

void CMeshTraceTree::AddTriangles(const SMesh& Mesh, const SMeshPart& Part) {
    for (UINT32 i = 0; i < Part.TriangleCount[0]; ++i) {
        STriangle Triangle;
        for (UINT32 Corner = 0; Corner < 3; ++Corner) {
            Triangle.Corner[Corner] = Part.VertexStart + Mesh.Indices[Part.IBOffset[0] + 3 * i + Corner];
        }
        Triangles.Add(Triangle);
    }
}

// Halves the triangles along the longest side of their box, at the median of their first corners.
void CMeshTraceTree::Build(const SMesh& Mesh, UINT32 First, UINT32 End) {
    BBox Box;
    Box.Min = Box.Max = Mesh.Vertices[Triangles[First].Corner[0]].Position;
    for (UINT32 i = First; i < End; ++i) {
        for (UINT32 Corner : Triangles[i].Corner) {
            M_BBoxAddPoint(Mesh.Vertices[Corner].Position, Box);
        }
    }
    const UINT32 Node = Nodes.count;
    Nodes.Add({Box, First, End - First});
    if (End - First <= LEAF_TRIANGLES) {
        return;
    }
    const Vec3 Size = Box.Max - Box.Min;
    const int Axis = Size.x >= Size.y && Size.x >= Size.z ? 0 : Size.y >= Size.z ? 1 : 2;
    const UINT32 Middle = First + (End - First) / 2;
    std::nth_element(Triangles.begin() + First, Triangles.begin() + Middle, Triangles.begin() + End,
                     [&](const STriangle& a, const STriangle& b) {
                         return SortPlace(Mesh.Vertices[a.Corner[0]].Position, Axis) <
                                SortPlace(Mesh.Vertices[b.Corner[0]].Position, Axis);
                     });
    Build(Mesh, First, Middle);
    Nodes[Node].First = Nodes.count;
    Nodes[Node].Count = 0;
    Build(Mesh, Middle, End);
}

float CMeshTraceTree::Trace(const SMesh& Mesh, const Ray& LocalRay) const {
    constexpr float FARTHEST = 3.4028235e38f;
    float Best = FARTHEST;
    bool Hit = false;
    UINT32 Waiting[MAX_DEPTH];
    UINT32 WaitingCount = 0;
    if (Nodes.count > 0) {
        Waiting[WaitingCount++] = 0;
    }
    while (WaitingCount > 0) {
        const UINT32 At = Waiting[--WaitingCount];
        const SNode& Node = Nodes[At];
        if (!CanHit(Node.Box, LocalRay, Best)) {
            continue;
        }
        if (Node.Count == 0) {
            Waiting[WaitingCount++] = Node.First;
            Waiting[WaitingCount++] = At + 1;
            continue;
        }
        for (UINT32 i = Node.First; i < Node.First + Node.Count; ++i) {
            const UINT32* Corner = Triangles[i].Corner;
            float t;
            // In this order a triangle with counter-clockwise corners is solid from its front.
            if (M_RayTriangle(Mesh.Vertices[Corner[0]].Position, Mesh.Vertices[Corner[2]].Position,
                              Mesh.Vertices[Corner[1]].Position, LocalRay, &t) &&
                t >= 0 && t <= Best) {
                Best = t;
                Hit = true;
            }
        }
    }
    return Hit ? Best : -1.0f;
}

float SMesh::TraceRay(const Ray& WorldRay, const Mat4& World) const {
    if (!TraceTree) {
        TraceTree = new CMeshTraceTree(*this);
    }
    Ray Local = WorldRay;
    M_RayToLocal(World, Local);
    const float t = TraceTree->Trace(*this, Local);
    if (t < 0) {
        return -1.0f;
    }
    Vec3 Hit;
    M_Mat4MulPoint(World, Local.Origin + Local.Dir * t, Hit);
    return M_Length(Hit - WorldRay.Origin);
}

void SMesh::DropTraceTree() {
    delete TraceTree;
    TraceTree = nullptr;
}
