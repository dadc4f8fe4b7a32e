#include "foundation/Diagnostics.h"
#include "foundation/Scan.h"
#include "graphics/Mesh.h"
#include "graphics/MeshFile.h"
#include "graphics/MeshImport.h"
#include "graphics/TextureStorage.h"

namespace {

constexpr const char* MODEL = "model"; // what a block begins with

// The value of a key, empty if the line lacks it.
GString Attribute(const SMddLine& Line, const char* Key) {
    const auto* Found = Line.Attrs.Find(Key);
    return Found ? Found->value : GString();
}

void ReadAttributes(const GString& Text, INT32& Pos, SMddLine& Line) {
    while (!F_RestOfLineEmpty(Pos, Text)) {
        const GString Key = F_ReadString(Pos, Text, F_IsAlpha);
        F_CheckChar(Pos, Text, '=');
        Line.Attrs[Key] = F_ReadString(Pos, Text, F_IsPrintable);
    }
}

void AddTextures(const SMddBlock& Block, SMesh& Mesh, UINT32 Part) {
    for (UINT32 i = 1; i < Block.count; ++i) {
        if (Block[i].Word == "texture") {
            const GString File = Attribute(Block[i], "file");
            const UINT32 Texture = File.Empty() ? 0 : TextureLoad(File);
            Mesh.AddTexture(Part, Attribute(Block[i], "name"), Texture, Texture != 0);
        }
    }
}

// The geometry is in the mesh already; the table says where.
void LinkPart(const SMeshPartTable& Parts, const GString& Name, const SMesh& Mesh, SMeshPart& Part) {
    const auto* Found = Parts.Find(Name);
    if (!Found) {
        FatalError("Animated Mesh Loader: Could not link parts by names...\n");
    }
    const SMeshFilePart& Source = Found->value;
    Part.VertexStart = Source.VertexStart;
    Part.IBOffset[0] = Source.IndexStart;
    Part.VertexCount = Source.VertexCount;
    Part.TriangleCount[0] = Source.TriangleCount;
    for (UINT32 i = 0; i < Source.VertexCount; ++i) {
        Part.Points.Add(Mesh.Vertices[Source.VertexStart + i].Position);
    }
}

// "animmesh=PATH" in the first line. 0 if it is there and the file can't be loaded; without it nothing is read.
INT32 ReadAnimMesh(const GString& Text, INT32& Pos, SMesh& Mesh, SMeshPartTable& Parts) {
    F_SkipBlanks(Pos, Text);
    INT32 Ahead = Pos;
    if (F_ReadString(Ahead, Text, F_IsName) != "animmesh") {
        return 1;
    }
    F_CheckChar(Ahead, Text, '=');
    Mesh.Animated = 1;
    const GString File = F_ReadString(Ahead, Text, F_IsPrintable);
    F_SkipLine(Ahead, Text);
    Pos = Ahead;
    return MeshLoadSkinned(Parts, Mesh, File.CStr());
}

} // namespace

INT32 MeshReadBlock(const GString& Text, INT32& Pos, SMddBlock& Block) {
    F_SkipBlanks(Pos, Text);
    Block.Clear();
    INT32 Ahead = Pos;
    GString Word = F_ReadString(Ahead, Text, F_IsAlpha);
    if (Word.Empty()) {
        return 0;
    }
    if (Word != MODEL) {
        LogPrintf("A mesh descriptor has \"%s\" where a line begins with \"%s\"\n", Word.CStr(), MODEL);
        return 0;
    }
    do {
        Pos = Ahead;
        SMddLine Line;
        Line.Word = Word;
        ReadAttributes(Text, Pos, Line);
        Block.Add(Line);
        F_SkipLine(Pos, Text);
        F_SkipBlanks(Pos, Text);
        Ahead = Pos;
    } while (Pos < static_cast<INT32>(Text.Length()) && (Word = F_ReadString(Ahead, Text, F_IsAlpha)) != MODEL);
    return 1;
}

INT32 MeshImportBlock(const SMddBlock& Block, SMesh& Mesh, const SMeshPartTable* Parts) {
    const GString File = Attribute(Block[0], "file");
    SMeshPart Part;
    if (Parts) {
        LinkPart(*Parts, File, Mesh, Part);
    } else if (!MeshImportStatic(File.CStr(), Mesh, Part)) {
        LogPrintf("Failed to load mesh: %s\n", File.CStr());
        return 0;
    }
    Part.PS = Attribute(Block[0], "ps");
    Part.VS = Attribute(Block[0], "vs");
    Mesh.Parts.Add(Part);
    AddTextures(Block, Mesh, Mesh.Parts.count - 1);
    return 1;
}

INT32 MeshLoadDescriptor(const char* Path, SMesh& Mesh) {
    Mesh.Clear();
    GString Text;
    if (!F_ReadTextFile(Path, Text)) {
        return 0;
    }
    INT32 Pos = 0;
    SMeshPartTable Parts;
    if (!ReadAnimMesh(Text, Pos, Mesh, Parts)) {
        return 0;
    }
    SMddBlock Block;
    while (Pos < static_cast<INT32>(Text.Length()) && MeshReadBlock(Text, Pos, Block)) {
        MeshImportBlock(Block, Mesh, Mesh.Animated ? &Parts : nullptr);
    }
    if (Mesh.GetPartCount() == 0) {
        return 0;
    }
    Mesh.Name = Path;
    Mesh.UpdatePoints();
    Mesh.BuildBuffers();
    return 1;
}
