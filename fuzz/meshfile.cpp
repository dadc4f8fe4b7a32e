// A binary skinned mesh, or, where the input does not begin with its magic, the text of a descriptor. What a good file
// says is followed to the end: parts, levels of detail, bounds and a pose read what they read in the game.
#include "graphics/MeshFile.h"
#include "graphics/Mesh.h"
#include "graphics/MeshLod.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace {

void Require(bool Promise) {
    if (!Promise) {
        __builtin_trap();
    }
}

// One part of the mesh for each of the file.
void AddParts(SMesh& Mesh, const SMeshPartTable& Parts) {
    for (SMeshPartTable::Iterator It(Parts); It.Valid(); It.Next()) {
        SMddLine Line;
        Line.Word = "model";
        Line.Attrs["file"] = It.Key();
        SMddBlock Block;
        Block.Add(Line);
        Require(MeshImportBlock(Block, Mesh, &Parts) == 1);
    }
}

void ReadBinary(GArray<UINT8>& Bytes) {
    SMesh Mesh;
    SMeshPartTable Parts;
    if (MeshReadSkinned(Parts, Mesh, Bytes, "fuzz") != ESkinnedFile::Good) {
        return;
    }
    Require(Mesh.SkinVertices.count == Mesh.Vertices.count && Mesh.Bones.count <= MESH_MAX_BONES);
    AddParts(Mesh, Parts);
    GArray<UINT32> Lods[MESH_LOD_COUNT - 1];
    MeshBuildLods(Mesh, Lods);
    Mesh.UpdatePoints();
    BBox Bounds;
    Mesh.GetBounds(Bounds);
    Mat4 World;
    M_Mat4Identity(World);
    Mesh.TraceRay({{0, 0, 10}, {0, 0, -1}}, World);
    Mat4 Out[MESH_MAX_BONES];
    const Quat Rest[MESH_MAX_BONES];
    Mesh.Bones[0].Evaluate(Out, World, Rest);
}

void ReadDescriptor(const GString& Text) {
    INT32 Pos = 0;
    SMddBlock Block;
    while (Pos < static_cast<INT32>(Text.Length())) {
        const INT32 Before = Pos;
        if (!MeshReadBlock(Text, Pos, Block)) {
            return;
        }
        Require(Pos > Before && Block.count > 0 && Block[0].Word == "model");
        for (UINT32 i = 1; i < Block.count; ++i) {
            Require(Block[i].Word != "model");
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Bytes, std::size_t Size) {
    constexpr char MAGIC[] = {'W', 'L', 'A', 'M'};
    if (Size >= sizeof(MAGIC) && std::equal(MAGIC, MAGIC + sizeof(MAGIC), Bytes)) {
        GArray<UINT8> File;
        File.Resize(static_cast<UINT32>(Size));
        std::copy_n(Bytes, Size, File.Data);
        ReadBinary(File);
    } else {
        GString Text;
        Text.Append(reinterpret_cast<const char*>(Bytes), static_cast<UINT32>(Size));
        ReadDescriptor(Text);
    }
    return 0;
}
