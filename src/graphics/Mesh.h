// SMesh: static or skinned geometry with its parts, textures, levels of detail and skeleton; and the store that shares
// loaded meshes by name.
//
// One array of vertices and one of indices serve all parts; an index counts from the VertexStart of its part, in every
// level. Four levels of detail, 0 to 3, hold about 1.0, 0.8, 0.6 and 0.4 of the indices; they share the vertices and
// are made by BuildBuffers. A mesh of fewer than 100 indices is drawn whole at every level. Ownership: a mesh owns its
// arrays, its OpenGL buffers and one texture reference for each slot with Owned set. The store owns the meshes that
// MeshLoad and MeshAdd made; every MeshLoad wants its MeshRelease. What an instance has (place, pose) is not here but
// in SMeshClient. Lifetime: Parent, Next and Child of a bone point into Bones of the same mesh, which must not grow
// once linked; Copy gives the copy's bones pointers of their own. Units: positions and boxes in mesh space, but where a
// world matrix is taken. Needs a GL context from BuildBuffers on. Cost: BuildBuffers makes the levels, about n log n in
// the indices, and uploads everything: it belongs into loading. A repeated MeshLoad is a look-up. TraceRay visits the
// triangles that the ray can reach; the first call builds a tree. Bad input: a descriptor that can't be loaded, a name
// added twice and the release of an unknown mesh are fatal.
#pragma once

#include "foundation/GTemplate.h"
#include "foundation/Geometry.h"
#include "foundation/Matrix.h"
#include "foundation/Types.h"

#include <cstddef>

class CMeshTraceTree;

constexpr UINT32 MESH_LOD_COUNT = 4;

// The most bones of a skeleton: the arrays of matrices in renderer and shaders have this length.
constexpr UINT32 MESH_MAX_BONES = 64;

// Also the layout in the vertex buffer: 13 words without padding.
struct SMeshVertex {
    Vec3 Position;
    Vec2 UV;
    Vec3 Normal;
    Vec4 Tangent; // x, y, z run along V of the texture; w is a handedness sign
    INT32 Bone = 0;
};
static_assert(sizeof(SMeshVertex) == 52 && offsetof(SMeshVertex, Tangent) == 32);

// The layout in the second buffer of a skinned mesh.
struct SSkinVertex {
    float Weights[4] = {};
    UINT8 BoneIndices[4] = {};
};
static_assert(sizeof(SSkinVertex) == 20);

// A texture slot. Its index is the texture unit of its sampler; slot 0 is the diffuse texture, slot 1 the normal map.
struct SMeshTexture {
    char Name[64] = {}; // of the sampler in the part's shaders
    UINT32 Texture = 0;
    INT32 Owned = 0; // not 0: the slot holds a reference in the texture storage
};

struct SMeshPart {
    GString PS;
    GString VS;
    GArray<SMeshTexture> Textures;
    UINT32 VertexStart = 0;
    UINT32 VertexCount = 0;
    UINT32 IBOffset[MESH_LOD_COUNT] = {}; // counted in indices, in the buffer of the level
    UINT32 TriangleCount[MESH_LOD_COUNT] = {};
    float LodScale = 1.0f; // divides the length of the part's edges when they queue for collapse
    GArray<Vec3> Points;   // positions of the part's vertices, for bounds
};

struct SBone {
    // Fills Out[Index] of this bone, its siblings and everything below with the matrices that take a vertex from mesh
    // space in the rest pose to world space in the given pose. Rotations has one entry per bone of the mesh.
    void Evaluate(Mat4* Out, const Mat4& ParentMatrix, const Quat* Rotations) const;

    SBone* Parent = nullptr; // null for a root
    SBone* Next = nullptr;   // next sibling
    SBone* Child = nullptr;  // first child
    UINT32 Index = 0;
    GString Name; // what animation tracks are matched by
    Mat4 ToParent;
    Mat4 Bind; // bone space to mesh space in the rest pose
    Mat4 InvBind;
};

struct SMesh {
    SMesh() = default;
    ~SMesh() { Clear(); }
    SMesh(const SMesh&) = delete;
    SMesh& operator=(const SMesh&) = delete;

    UINT32 GetPartCount() const { return Parts.count; }

    // Removes everything, gives back owned textures and deletes the buffers.
    void Clear();

    // A deep copy with buffers of its own; owned textures get a further reference.
    void Copy(const SMesh& Source);

    // Refills Points of every part from Vertices.
    void UpdatePoints();

    // Makes the levels of detail and uploads everything. Writes IBOffset and TriangleCount of levels 1 to 3.
    void BuildBuffers();

    // Appends a slot. Names of 64 characters and more are cut.
    void AddTexture(UINT32 Part, const GString& SamplerName, UINT32 Texture, INT32 Owned);

    // The box of all points, transformed one by one if a matrix is given. 1 if any part has points, else 0 and Out
    // stays.
    UINT32 GetBounds(BBox& Out) const;
    UINT32 GetBounds(BBox& Out, const Mat4& World) const;

    // Distance in world units from the ray's origin to the nearest triangle that shows the ray its front, or -1.
    float TraceRay(const Ray& WorldRay, const Mat4& World) const;

    GString Name;
    GArray<SMeshPart> Parts;
    // The six buffer names lie in this order and are generated together.
    UINT32 VB = 0;
    UINT32 SkinVB = 0;
    UINT32 IB[MESH_LOD_COUNT] = {};
    GArray<SMeshVertex> Vertices;
    GArray<UINT32> Indices; // level 0
    INT32 Animated = 0;     // not 0: SkinVertices and Bones are filled
    GArray<SSkinVertex> SkinVertices;
    GArray<SBone> Bones; // evaluation starts at Bones[0]

private:
    void DropTraceTree();

    mutable CMeshTraceTree* TraceTree = nullptr; // made by the first TraceRay, of the arrays as they were then
};

struct SMeshRec {
    SMesh* Mesh = nullptr;
    INT32 RefCount = 0;
};

extern GMap<GString, SMeshRec*> GMeshByName;
extern GMap<SMesh*, SMeshRec*> GMeshByPtr;

// The mesh of a descriptor file or, under a name in square brackets, one that MeshAdd stored. One owner more.
SMesh* MeshLoad(const GString& Path);

// One owner less; the last one destroys the mesh.
void MeshRelease(SMesh* Mesh);

// Stores a copy of a mesh that was built in memory, with one owner.
void MeshAdd(const GString& Name, const SMesh& Source);
