// Static model files of any format that Assimp reads. The one place that knows the library.
//
// Cost: a file read and the library's post-processing. Needs no GL. Bad input: see below; nothing is added then.
#pragma once

#include "foundation/Types.h"

struct SMesh;
struct SMeshPart;

// Appends the file's first mesh to the arrays and fills the part's ranges. 0 if the file can't be read, or its root
// does not hold a mesh of triangles; of several meshes a line tells the count. Without UVs or tangents in the file
// these stay zero.
INT32 MeshImportStatic(const char* File, SMesh& Mesh, SMeshPart& Part);
