#include "graphics/Mesh.h"

#include "graphics/MeshLod.h"
#include "graphics/MeshTrace.h"
#include "graphics/TextureStorage.h"

#include <GL/glew.h>
#include <algorithm>
#include <cstdio>
#include <iterator>

namespace {

void MakeBuffers(SMesh& Mesh) {
    UINT32 Names[2 + MESH_LOD_COUNT];
    glGenBuffers(static_cast<INT32>(std::size(Names)), Names);
    Mesh.VB = Names[0];
    Mesh.SkinVB = Names[1];
    std::copy_n(Names + 2, MESH_LOD_COUNT, Mesh.IB);
}

void DeleteBuffers(SMesh& Mesh) {
    for (UINT32* Buffer : {&Mesh.VB, &Mesh.SkinVB, &Mesh.IB[0], &Mesh.IB[1], &Mesh.IB[2], &Mesh.IB[3]}) {
        if (*Buffer) {
            glDeleteBuffers(1, Buffer);
            *Buffer = 0;
        }
    }
}

template <class T>
void Upload(UINT32 Target, UINT32 Buffer, const GArray<T>& Elements) {
    glBindBuffer(Target, Buffer);
    glBufferData(Target, static_cast<GLsizeiptr>(Elements.count * sizeof(T)), Elements.Data, GL_STATIC_DRAW);
}

void ReleaseTextures(const SMeshPart& Part) {
    for (const SMeshTexture& Slot : Part.Textures) {
        if (Slot.Owned && Slot.Texture) {
            TextureRelease(Slot.Texture);
        }
    }
}

void AddTextureRefs(const SMeshPart& Part) {
    for (const SMeshTexture& Slot : Part.Textures) {
        if (Slot.Owned && Slot.Texture) {
            TextureAddRef(Slot.Texture);
        }
    }
}

// Bones point at each other; in a copy they point at the same places of the new array.
void MoveBones(GArray<SBone>& Bones, const GArray<SBone>& From) {
    const auto Moved = [&](SBone* Bone) { return Bone ? Bones.Data + (Bone - From.Data) : nullptr; };
    for (SBone& Bone : Bones) {
        Bone.Parent = Moved(Bone.Parent);
        Bone.Next = Moved(Bone.Next);
        Bone.Child = Moved(Bone.Child);
    }
}

// World may be null.
bool PartBounds(const SMeshPart& Part, const Mat4* World, BBox& Out) {
    for (UINT32 i = 0; i < Part.Points.count; ++i) {
        Vec3 Point = Part.Points[i];
        if (World) {
            M_Mat4MulPoint(*World, Point, Point);
        }
        if (i == 0) {
            Out.Min = Out.Max = Point;
        } else {
            M_BBoxAddPoint(Point, Out);
        }
    }
    return Part.Points.count > 0;
}

UINT32 MeshBounds(const GArray<SMeshPart>& Parts, const Mat4* World, BBox& Out) {
    bool Any = false;
    for (const SMeshPart& Part : Parts) {
        BBox Box;
        if (!PartBounds(Part, World, Box)) {
            continue;
        }
        if (Any) {
            M_BBoxAddPoint(Box.Min, Out);
            M_BBoxAddPoint(Box.Max, Out);
        } else {
            Out = Box;
        }
        Any = true;
    }
    return Any ? 1 : 0;
}

} // namespace

void SMesh::Clear() {
    for (const SMeshPart& Part : Parts) {
        ReleaseTextures(Part);
    }
    Parts.Clear();
    DeleteBuffers(*this);
    Vertices.Clear();
    Indices.Clear();
    SkinVertices.Clear();
    Bones.Clear();
    Name.Clear();
    Animated = 0;
    DropTraceTree();
}

void SMesh::Copy(const SMesh& Source) {
    if (this == &Source) {
        return;
    }
    Clear();
    Name = Source.Name;
    Parts = Source.Parts;
    Vertices = Source.Vertices;
    Indices = Source.Indices;
    SkinVertices = Source.SkinVertices;
    Bones = Source.Bones;
    Animated = Source.Animated;
    for (const SMeshPart& Part : Parts) {
        AddTextureRefs(Part);
    }
    MoveBones(Bones, Source.Bones);
    BuildBuffers();
}

void SMesh::UpdatePoints() {
    for (SMeshPart& Part : Parts) {
        Part.Points.Resize(Part.VertexCount);
        for (UINT32 i = 0; i < Part.VertexCount; ++i) {
            Part.Points[i] = Vertices[Part.VertexStart + i].Position;
        }
    }
}

void SMesh::BuildBuffers() {
    DeleteBuffers(*this);
    DropTraceTree();
    MakeBuffers(*this);
    Upload(GL_ARRAY_BUFFER, VB, Vertices);
    Upload(GL_ELEMENT_ARRAY_BUFFER, IB[0], Indices);
    if (Animated) {
        Upload(GL_ARRAY_BUFFER, SkinVB, SkinVertices);
    }
    GArray<UINT32> Lods[MESH_LOD_COUNT - 1];
    MeshBuildLods(*this, Lods);
    for (UINT32 Level = 1; Level < MESH_LOD_COUNT; ++Level) {
        Upload(GL_ELEMENT_ARRAY_BUFFER, IB[Level], Lods[Level - 1]);
    }
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
}

void SMesh::AddTexture(UINT32 Part, const GString& SamplerName, UINT32 Texture, INT32 Owned) {
    SMeshTexture Slot;
    std::snprintf(Slot.Name, sizeof(Slot.Name), "%s", SamplerName.CStr());
    Slot.Texture = Texture;
    Slot.Owned = Owned;
    Parts[Part].Textures.Add(Slot);
}

UINT32 SMesh::GetBounds(BBox& Out) const {
    return MeshBounds(Parts, nullptr, Out);
}

UINT32 SMesh::GetBounds(BBox& Out, const Mat4& World) const {
    return MeshBounds(Parts, &World, Out);
}

void SBone::Evaluate(Mat4* Out, const Mat4& ParentMatrix, const Quat* Rotations) const {
    // Siblings in a loop, only children by recursion: a chain of thousands of siblings would not need a stack of them.
    for (const SBone* Bone = this; Bone; Bone = Bone->Next) {
        Mat4 Local;
        M_Mat4FromQuat(Local, Rotations[Bone->Index]);
        M_Mat4Mul(Local, Bone->ToParent, Local);
        M_Mat4Mul(Local, ParentMatrix, Local);
        M_Mat4Mul(Out[Bone->Index], Local, Bone->InvBind);
        if (Bone->Child) {
            Bone->Child->Evaluate(Out, Local, Rotations);
        }
    }
}
