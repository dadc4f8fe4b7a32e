// Normals and tangents that are smooth across seams: vertices at one place count as one.
#include "meshgen/GenTopology.h"

namespace {

using SVertexGroups = GArray<GArray<UINT32>>;

void AddToGroup(GArray<Vec3>& Sums, const GArray<UINT32>& Group, const Vec3& Value) {
    for (const UINT32 Member : Group) {
        Sums[Member] += Value;
    }
}

// How the triangle's texture runs through space: along U and along V.
struct STextureAxes {
    Vec3 U;
    Vec3 V;
};

// False for a triangle that has no area in the texture.
bool TextureAxes(const SGenPart& Part, UINT32 Triangle, STextureAxes& Out) {
    const SMeshVertex& a = Part.Vertices[Part.Indices[3 * Triangle]];
    const SMeshVertex& b = Part.Vertices[Part.Indices[3 * Triangle + 1]];
    const SMeshVertex& c = Part.Vertices[Part.Indices[3 * Triangle + 2]];
    const Vec3 q1 = b.Position - a.Position;
    const Vec3 q2 = c.Position - a.Position;
    const float s1 = b.UV.x - a.UV.x;
    const float t1 = b.UV.y - a.UV.y;
    const float s2 = c.UV.x - a.UV.x;
    const float t2 = c.UV.y - a.UV.y;
    const float Area = s1 * t2 - s2 * t1;
    if (Area == 0) {
        return false;
    }
    const float r = 1 / Area;
    Out.U = (q1 * t2 - q2 * t1) * r;
    Out.V = (q2 * s1 - q1 * s2) * r;
    return true;
}

void SumNormals(const SGenPart& Part, const CGenTopology& Topology, const SVertexGroups& Groups, GArray<Vec3>& Sums) {
    for (UINT32 Triangle = 0; Triangle < Part.Indices.count / 3; ++Triangle) {
        Plane Face;
        if (!Topology.TrianglePlane(Triangle, Face)) {
            continue;
        }
        for (UINT32 Corner = 0; Corner < 3; ++Corner) {
            AddToGroup(Sums, Groups[Part.Indices[3 * Triangle + Corner]], Face.Normal);
        }
    }
}

void SumAxes(const SGenPart& Part, const CGenTopology& Topology, const SVertexGroups& Groups, GArray<Vec3>& SumsU,
             GArray<Vec3>& SumsV) {
    for (UINT32 Triangle = 0; Triangle < Part.Indices.count / 3; ++Triangle) {
        Plane Face;
        STextureAxes Axes;
        if (!Topology.TrianglePlane(Triangle, Face) || !TextureAxes(Part, Triangle, Axes)) {
            continue;
        }
        for (UINT32 Corner = 0; Corner < 3; ++Corner) {
            const GArray<UINT32>& Group = Groups[Part.Indices[3 * Triangle + Corner]];
            AddToGroup(SumsU, Group, Axes.U);
            AddToGroup(SumsV, Group, Axes.V);
        }
    }
}

// Along V, at a right angle to the normal; w tells on which side U lies.
Vec4 Tangent(const Vec3& Normal, const Vec3& AlongU, const Vec3& AlongV) {
    const Vec3 t = M_Normalized(AlongV - Normal * M_Dot(Normal, AlongV));
    const float Side = M_Dot(AlongU, M_Cross(Normal, AlongV)) < 0 ? 1.0f : -1.0f;
    return {t.x, t.y, t.z, Side};
}

} // namespace

void SGenPart::GroupVertices(GArray<GArray<UINT32>>& Groups) const {
    // The topology is only read here.
    const CGenTopology Topology(const_cast<SGenPart&>(*this));
    Groups.Clear();
    Groups.Resize(Vertices.count);
    GArray<UINT32> Twins;
    for (UINT32 i = 0; i < Vertices.count; ++i) {
        Topology.FindTwins(i, Twins);
        for (const UINT32 j : Twins) {
            if (!Topology.Opposed(i, j)) {
                Groups[i].Add(j);
            }
        }
    }
}

void SGenPart::ComputeNormals() {
    const CGenTopology Topology(*this);
    SVertexGroups Groups;
    GroupVertices(Groups);
    GArray<Vec3> Sums;
    GArray<Vec3> Sums2;
    Sums.Resize(Vertices.count);
    Sums2.Resize(Vertices.count);
    SumNormals(*this, Topology, Groups, Sums);
    for (UINT32 i = 0; i < Vertices.count; ++i) {
        // Front faces are clockwise.
        Vertices[i].Normal = -M_Normalized(Sums[i]);
        Sums[i] = {};
    }
    SumAxes(*this, Topology, Groups, Sums, Sums2);
    for (UINT32 i = 0; i < Vertices.count; ++i) {
        Vertices[i].Tangent = Tangent(Vertices[i].Normal, Sums[i], Sums2[i]);
    }
}
