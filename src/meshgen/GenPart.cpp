#include "meshgen/GenPart.h"

#include "foundation/Diagnostics.h"
#include "meshgen/GenNoise.h"

#include <algorithm>

void SGenPart::Unweld() {
    GArray<SMeshVertex> Own;
    Own.Reserve(Indices.count);
    for (UINT32 i = 0; i < Indices.count; ++i) {
        Own.Add(Vertices[Indices[i]]);
        Indices[i] = i;
    }
    Vertices = Own;
}

void SGenPart::Deform(const Vec3& Center, const Vec3& Ext, const Vec2& Push, const Vec3& Dir, float Scale) {
    G_ASSERT(M_Length(Ext) > 1);
    SNoise Noise;
    Noise.NoiseFill();
    for (SMeshVertex& Vertex : Vertices) {
        Vec3& p = Vertex.Position;
        const float Strength = Noise.Noise3(p.x / Scale, p.y / Scale, p.z / Scale) * Push.y + Push.x;
        const Vec3 Away = {(p.x - Center.x) / Ext.x, (p.y - Center.y) / Ext.y, (p.z - Center.z) / Ext.z};
        const float Falloff = std::max(1 - M_Length(Away), 0.0f);
        const Vec3 Way = M_Length(Dir) > 0 ? Dir : M_Normalized(Away);
        p += Way * (Falloff * Strength);
    }
}

void SGenPart::CopyToMesh(SMesh& Mesh, UINT32 Part) const {
    G_ASSERT(Indices.Size() > 0 && Vertices.Size() > 0);
    const UINT32 At = std::min(Part, Mesh.Parts.count);
    if (At == Mesh.Parts.count) {
        Mesh.Parts.Add(SMeshPart());
    }
    SMeshPart& Target = Mesh.Parts[At];
    Target.VertexStart = Mesh.Vertices.count;
    Target.VertexCount = Vertices.count;
    Target.IBOffset[0] = Mesh.Indices.count;
    Target.TriangleCount[0] = Indices.count / 3;
    for (const SMeshVertex& Vertex : Vertices) {
        Mesh.Vertices.Add(Vertex);
    }
    for (const UINT32 Index : Indices) {
        Mesh.Indices.Add(Index);
    }
    Mesh.UpdatePoints();
}
