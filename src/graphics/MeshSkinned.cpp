#include "foundation/Diagnostics.h"
#include "foundation/GArchive.h"
#include "foundation/Scan.h"
#include "graphics/Mesh.h"
#include "graphics/MeshFile.h"

#include <cstring>
#include <iterator>

namespace {

constexpr char MAGIC[4] = {'W', 'L', 'A', 'M'};

// The fewest bytes that a record can take: what a count is checked against before memory is taken for it.
constexpr UINT32 VERTEX_BYTES = 72;
constexpr UINT32 INDEX_BYTES = 4;
constexpr UINT32 PART_BYTES = 5 * 4;
constexpr UINT32 BONE_BYTES = 2 * 4 + 16 * 4;

// One walk over a file's bytes. Each step gives false where the file ends early or says what can't be.
class CSkinnedReader {
public:
    CSkinnedReader(GArray<UINT8>& Bytes, SMesh& Mesh, SMeshPartTable& Parts, const char* File)
        : Reader(Bytes), Mesh(Mesh), Parts(Parts), File(File) {}

    ESkinnedFile Read() {
        const bool Complete = ReadMagic() && ReadVertices() && ReadIndices() && ReadParts() && ReadBones();
        if (ParentLost) {
            return ESkinnedFile::ParentLost;
        }
        return Complete && ArePartsSound() && AreBoneIndicesSound() ? ESkinnedFile::Good : ESkinnedFile::Damaged;
    }

private:
    bool ReadMagic() {
        char Magic[sizeof(MAGIC)] = {};
        Reader.Serialize(Magic, sizeof(Magic));
        return std::memcmp(Magic, MAGIC, sizeof(MAGIC)) == 0;
    }

    // False for a count of zero, and for one of more records than the rest of the file can hold.
    bool ReadCount(UINT32& Count, UINT32 RecordBytes) {
        if (Reader.Left() < sizeof(Count)) {
            return false;
        }
        Reader << Count;
        return Count > 0 && Count <= Reader.Left() / RecordBytes;
    }

    void ReadVertex(SMeshVertex& Vertex, SSkinVertex& Skin) {
        Reader << Vertex.Position.x << Vertex.Position.y << Vertex.Position.z << Vertex.UV.x << Vertex.UV.y;
        Reader << Vertex.Normal.x << Vertex.Normal.y << Vertex.Normal.z;
        Reader << Vertex.Tangent.x << Vertex.Tangent.y << Vertex.Tangent.z << Vertex.Tangent.w << Vertex.Bone;
        for (float& Weight : Skin.Weights) {
            Reader << Weight;
        }
        Reader.Serialize(Skin.BoneIndices, sizeof(Skin.BoneIndices));
    }

    bool ReadVertices() {
        UINT32 Count = 0;
        if (!ReadCount(Count, VERTEX_BYTES)) {
            return false;
        }
        Mesh.Vertices.Resize(Count);
        Mesh.SkinVertices.Resize(Count);
        for (UINT32 i = 0; i < Count; ++i) {
            ReadVertex(Mesh.Vertices[i], Mesh.SkinVertices[i]);
        }
        return true;
    }

    bool ReadIndices() {
        UINT32 Count = 0;
        if (!ReadCount(Count, INDEX_BYTES)) {
            return false;
        }
        Mesh.Indices.Resize(Count);
        for (UINT32& Index : Mesh.Indices) {
            Reader << Index;
        }
        return true;
    }

    bool ReadParts() {
        UINT32 Count = 0;
        if (!ReadCount(Count, PART_BYTES)) {
            return false;
        }
        Parts.Clear();
        for (UINT32 i = 0; i < Count; ++i) {
            GString Name;
            if (!Reader.ReadText(Name) || Reader.Left() < PART_BYTES - sizeof(UINT32)) {
                return false;
            }
            SMeshFilePart Part;
            Reader << Part.VertexStart << Part.IndexStart << Part.VertexCount << Part.TriangleCount;
            Parts[Name] = Part;
        }
        return true;
    }

    bool ReadBones() {
        UINT32 Count = 0;
        if (!ReadCount(Count, BONE_BYTES)) {
            return false;
        }
        if (Count > MESH_MAX_BONES) {
            LogPrintf("%s has %u bones, %u are the most\n", File, Count, MESH_MAX_BONES);
            return false;
        }
        Mesh.Bones.Clear();
        Mesh.Bones.Resize(Count);
        for (UINT32 i = 0; i < Count; ++i) {
            if (!ReadBone(i)) {
                return false;
            }
        }
        return true;
    }

    bool ReadBone(UINT32 i) {
        SBone& Bone = Mesh.Bones[i];
        GString ParentName;
        if (!Reader.ReadText(Bone.Name) || !Reader.ReadText(ParentName) || Reader.Left() < sizeof(Bone.Bind)) {
            return false;
        }
        for (float& Element : Bone.Bind.M) {
            Reader << Element;
        }
        Bone.Index = i;
        M_Mat4Identity(Bone.InvBind); // what a matrix without an inverse keeps
        M_Mat4Inverse(Bone.Bind, Bone.InvBind);
        Bone.ToParent = Bone.Bind;
        if (ParentName.Empty()) {
            return true;
        }
        ParentLost = !LinkBone(Bone, ParentName);
        if (!ParentLost) {
            M_Mat4Mul(Bone.ToParent, Bone.Parent->InvBind, Bone.Bind);
        }
        return !ParentLost;
    }

    // A parent stands before its children; children keep the order of the file.
    bool LinkBone(SBone& Bone, const GString& ParentName) {
        for (UINT32 i = 0; i < Bone.Index && !Bone.Parent; ++i) {
            if (Mesh.Bones[i].Name == ParentName) {
                Bone.Parent = &Mesh.Bones[i];
            }
        }
        if (!Bone.Parent) {
            return false;
        }
        SBone** End = &Bone.Parent->Child;
        while (*End) {
            End = &(*End)->Next;
        }
        *End = &Bone;
        return true;
    }

    bool IsPartSound(const SMeshFilePart& Part) const {
        const UINT64 IndexEnd = UINT64{Part.IndexStart} + 3 * UINT64{Part.TriangleCount};
        if (UINT64{Part.VertexStart} + Part.VertexCount > Mesh.Vertices.count || IndexEnd > Mesh.Indices.count) {
            return false;
        }
        for (UINT32 i = Part.IndexStart; i < IndexEnd; ++i) {
            if (Mesh.Indices[i] >= Part.VertexCount) {
                return false;
            }
        }
        return true;
    }

    bool ArePartsSound() {
        for (SMeshPartTable::Iterator It(Parts); It.Valid(); It.Next()) {
            if (!IsPartSound(It.Value())) {
                LogPrintf("%s: part %s reaches beyond the file's vertices or indices\n", File, It.Key().CStr());
                return false;
            }
        }
        return true;
    }

    // The shaders use an index as it stands, also one without weight: that one must at least lie in their array.
    bool IsBoneSound(const SSkinVertex& Skin, UINT32 Slot) const {
        const UINT32 Limit = Skin.Weights[Slot] == 0 ? MESH_MAX_BONES : Mesh.Bones.count;
        return Skin.BoneIndices[Slot] < Limit;
    }

    bool AreBoneIndicesSound() {
        for (const SSkinVertex& Skin : Mesh.SkinVertices) {
            for (UINT32 Slot = 0; Slot < std::size(Skin.BoneIndices); ++Slot) {
                if (!IsBoneSound(Skin, Slot)) {
                    LogPrintf("%s: a vertex follows bone %u of %u\n", File, Skin.BoneIndices[Slot], Mesh.Bones.count);
                    return false;
                }
            }
        }
        return true;
    }

    FByteReader Reader;
    SMesh& Mesh;
    SMeshPartTable& Parts;
    const char* File;
    bool ParentLost = false;
};

} // namespace

ESkinnedFile MeshReadSkinned(SMeshPartTable& Parts, SMesh& Mesh, GArray<UINT8>& Bytes, const char* File) {
    return CSkinnedReader(Bytes, Mesh, Parts, File).Read();
}

INT32 MeshLoadSkinned(SMeshPartTable& Parts, SMesh& Mesh, const char* File) {
    GArray<UINT8> Bytes;
    if (!F_ReadFile(File, Bytes)) {
        return 0;
    }
    const ESkinnedFile Result = MeshReadSkinned(Parts, Mesh, Bytes, File);
    if (Result == ESkinnedFile::ParentLost) {
        FatalError("Mesh Loader: Could not link bones, file %s is probably damaged\n", File);
    }
    return Result == ESkinnedFile::Good ? 1 : 0;
}
