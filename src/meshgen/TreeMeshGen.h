// Mesh generators: a small script in, a mesh out. STreeMeshGen grows a tree: part 0 is wood, part 1 foliage.
//
// The script is executed line by line as it is read; loops jump back in the text, so every pass reads and rolls the
// numbers of its lines anew. The random numbers are those of PlatRand, so one script gives one tree on every start.
// Ownership: the generator owns its mesh, which holds texture references but no OpenGL buffers; MeshAdd stores a copy.
// Space: the foot stands at the origin, the tree grows along +Z. Angles in scripts are degrees, lengths mesh units.
// Cost: paid once at start-up. Growing commands write a line each on standard output.
// Bad input: a script that can't be read gives 0; misplaced commands, unknown fields and unbalanced loops are fatal
// with the script's name; unknown command words are skipped with their line.
#pragma once

#include "foundation/GTemplate.h"
#include "foundation/Types.h"
#include "graphics/Mesh.h"

struct SMeshGenBase {
    virtual ~SMeshGenBase() = default;

    // 1, or 0 if the file can't be read; the mesh then stays as it was.
    virtual UINT32 Generate(const char* File);

    GString FileName;
    SMesh Mesh;
};

struct STreeMeshGen : SMeshGenBase {
    UINT32 Generate(const char* File) override;
};
