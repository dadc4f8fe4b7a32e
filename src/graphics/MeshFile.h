// Mesh files: the descriptor (.mdd) that lists the models of a mesh with their shaders and textures, the binary skinned
// mesh that it may name, and static models of any format that Assimp reads.
//
// A descriptor is text: optionally "animmesh=PATH" in the first line, then blocks of a "model" line (file=, ps=, vs=)
// and "texture" lines (name=, file=, type=). Each model becomes one part, in the order of the descriptor.
// Ownership: texture references and geometry go to the mesh. The transient records hold copies.
// MeshLoadDescriptor needs a GL context; the others need one only for textures. Cost: file reads, picture decoding, the
// levels of detail.
// Bad input: a missing descriptor or one without a usable part gives 0, and so does a block that does not begin with
// "model", with a line; a static model that can't be read prints a line and is left out; a binary file that is missing,
// cut off or of a wrong kind gives 0; part names and parent bones that can't be found are fatal. Counts are checked
// against the file's size before memory is taken. A binary file with more than 64 bones, with a part that reaches
// beyond the vertices and indices, with an index outside of its part or with a vertex that follows no bone of the file
// prints a line and gives 0: what was loaded may be drawn without further tests.
#pragma once

#include "foundation/GTemplate.h"
#include "foundation/Types.h"

struct SMesh;

// One line of a descriptor: its first word and its key=value pairs.
struct SMddLine {
    GString Word;
    GMap<GString, GString> Attrs;
};

// A "model" line with the lines below it.
using SMddBlock = GArray<SMddLine>;

// One entry of the part table of a binary file. Starts and counts are those of the whole file.
struct SMeshFilePart {
    UINT32 VertexStart = 0;
    UINT32 IndexStart = 0;
    UINT32 VertexCount = 0;
    UINT32 TriangleCount = 0;
};

using SMeshPartTable = GMap<GString, SMeshFilePart>;

// Fills the mesh, buffers included. 1, or 0 if nothing could be loaded.
INT32 MeshLoadDescriptor(const char* Path, SMesh& Mesh);

// The next block from the position on. 1, or 0 if there is none.
INT32 MeshReadBlock(const GString& Text, INT32& Pos, SMddBlock& Block);

// Adds the part that the block describes: from the table if there is one, else from a model file. 1 if it was added.
INT32 MeshImportBlock(const SMddBlock& Block, SMesh& Mesh, const SMeshPartTable* Parts);

// Reads vertices, indices, part table and skeleton of a binary file. 1, or 0 on failure.
INT32 MeshLoadSkinned(SMeshPartTable& Parts, SMesh& Mesh, const char* File);

enum class ESkinnedFile {
    Good,
    Damaged,
    ParentLost, // a bone names a parent that does not stand before it
};

// MeshLoadSkinned on bytes in memory. File is for messages. After another result than Good the mesh and the table hold
// what was read so far.
ESkinnedFile MeshReadSkinned(SMeshPartTable& Parts, SMesh& Mesh, GArray<UINT8>& Bytes, const char* File);
