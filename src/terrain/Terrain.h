// The slope of a level: a grid of heights read from a picture, with three views on the one array. The picture (leaves
// with levels of detail), the collision shape, and the editor's brushes and picking ray.
//
// Space and units: world units, Z up. Heights are fractions of Extents.z. Grid point (x, y) stands at
// (2 * x / Width - 1) * Extents.x, so the last column lies one cell short of the box; texture coordinates run to the
// last column. Drawing uses unit space, which GWorldMatrix scales.
//
// Ownership: the terrain owns the heights, the leaves, the tree, its GL objects and its body, and holds one reference
// to each detail texture. Load empties and fills it; Free and the destructor empty it. Pointers into it last until then
// (leaves and nodes: until RebuildTree). The collision shape reads the heights live, so the array never moves.
//
// Cost: Load, RebuildGeometry and RebuildTree walk all samples and belong into loading and the editor's "Update". A
// frame costs a plane test per tree node and a draw call per visible leaf.
//
// Size: a square picture with a side of 2^k + 1 samples, from 33 to 2049. Of any other picture the largest such square
// from its first row and column on is used, after one line on standard output; the rest is cut off. A picture smaller
// than 33 in either direction leaves the terrain empty, after a line; so do extents that are no size (0 or less in X or
// Y, below 0 in Z, above TERRAIN_MAX_EXTENT, not a number), a file of fewer than five words and a picture that cannot
// be read. A file that cannot be opened leaves it empty without a line.
//
// An empty terrain has MinPartSize 0. Every operation but GetPoint is safe on it: nothing is visible, drawn, hit or
// changed.
#pragma once

#include "foundation/GTemplate.h"
#include "foundation/Maths.h"
#include "foundation/Types.h"

class btRigidBody;
struct STerrainFile;
struct SVertex20;

constexpr UINT32 TERRAIN_MIN_SIDE = 33;        // 2 cells along a leaf, the fewest that make a triangle fan
constexpr UINT32 TERRAIN_MAX_SIDE = 2049;      // 128 cells along a leaf, the most that an 8-bit count holds
constexpr float TERRAIN_MAX_EXTENT = 1e6f;     // world units; beyond it cells are smaller than a float can place
constexpr UINT32 TERRAIN_LODS = 10;            // rows in the index tables
constexpr UINT32 TERRAIN_MASKS = 16;           // one for each set of coarser neighbours
constexpr UINT32 TERRAIN_NO_LEAF = 0xFFFFFFFF; // LeafID of an inner node

// TraceRay's answers that are not a distance.
constexpr float TERRAIN_RAY_MISS = -1.0f;
constexpr float TERRAIN_RAY_BEYOND = -2.0f;  // a hit or a walk beyond the greatest distance
constexpr float TERRAIN_RAY_OUTSIDE = -3.0f; // the start is not over the grid

// The sides on which a leaf's neighbour is coarser.
enum : UINT32 { TERRAIN_LOW_X = 1, TERRAIN_LOW_Y = 2, TERRAIN_HIGH_X = 4, TERRAIN_HIGH_Y = 8 };

struct STerrain;

struct STerrainLeaf {
    BBox Box;         // of its real heights, world space
    UINT32 State = 0; // bit 0: visible in the present query; bits 1 to 4: level of detail

    bool IsVisible() const { return State & 1u; }
    UINT32 Lod() const { return (State >> 1) & 0xFu; }
    void SetVisible(bool On) { State = (State & ~1u) | (On ? 1u : 0u); }
    void SetLod(UINT32 Lod) { State = (State & ~0x1Eu) | (Lod << 1); }
};

struct STerrainNode {
    BBox Box; // the union of the leaves below
    STerrainNode* Child[4] = {};
    STerrain* Terrain = nullptr;
    UINT32 LeafID = TERRAIN_NO_LEAF;
};

struct STerrain {
    Vec3 Position;                    // centre in X and Y, base in Z
    Vec3 Extents = {2000, 2000, 200}; // half sizes in X and Y, full height in Z; set before Load
    float DetailSize = 32.0f;         // tiling of the detail textures
    STerrainNode* Root = nullptr;
    GString FileName;
    UINT32 Width = 0; // samples in a row
    UINT32 Height = 0;
    STerrainLeaf* Leaves = nullptr;                        // LeafColumns() * LeafRows(), row by row
    UINT32 LightMap = 0;                                   // none is ever made; the shader's sampler has its place
    float* Heights = nullptr;                              // sample (x, y) at y * Width + x, 0 to 1
    UINT32 MinPartSize = 0;                                // cells along a side of a leaf
    UINT32 IndexOffset[TERRAIN_LODS * TERRAIN_MASKS] = {}; // [lod * 16 + mask], in indices from the buffer's start
    UINT32 IndexCount[TERRAIN_LODS * TERRAIN_MASKS] = {};  // 0 where no list was built
    UINT32 NormalMap = 0;
    UINT32 DetailMap = 0;
    UINT32 DetailMapN = 0;
    UINT32 DetailMap2 = 0;
    UINT32 DetailMap2N = 0;
    UINT32 VertexBuffer = 0;
    UINT32 IndexBuffer = 0;
    btRigidBody* Body = nullptr;

    STerrain() = default;
    ~STerrain() { Free(); }
    STerrain(const STerrain&) = delete;
    STerrain& operator=(const STerrain&) = delete;

    // Needs the GL context, DevIL and the physics world. A null path is a file that cannot be opened.
    void Load(const char* Path);
    void Free();

    Vec3 GetPoint(UINT32 x, UINT32 y) const;
    UINT32 LeafColumns() const { return MinPartSize ? (Width - 1) / MinPartSize : 0; }
    UINT32 LeafRows() const { return MinPartSize ? (Height - 1) / MinPartSize : 0; }

    // Vertices and NormalMap from the heights.
    void RebuildGeometry();
    // Leaves and tree from the heights; all levels of detail return to 0.
    void RebuildTree();

    // The brushes. Weights fall from 1 at the centre to 0 at Radius, to the power of Curve; with Use3D the distance in
    // height counts too. The last column and row are never touched. Amount of Raise is world units, of either sign; of
    // Flatten the part of the way to the weighted mean.
    void Raise(const Vec3& Centre, float Radius, float Curve, float Amount, bool Use3D);
    void Flatten(const Vec3& Centre, float Radius, float Curve, float Amount, bool Use3D);
    // The brush's footprint as red lines over the ground, in world space. The caller has made a program current.
    void DrawBrush(const Vec3& Centre, float Radius, float Curve, bool Use3D) const;

    // The distance to the ground seen from above, or one of the TERRAIN_RAY_... values. Dir is of unit length.
    float TraceRay(const Ray& TheRay, float MaxDist) const;

    // Sets visibility and level of detail of all leaves from GCamera; true if any leaf is visible. A leaf out of view
    // keeps its level.
    bool Visible(bool OrthoPlanes);
    // Levels of the visible leaves by the distance from From, for passes whose camera is not the viewer's.
    void SetLods(const Vec3& From, float Range);

    // Sets GWorldMatrix and the buffers; the program and its uniforms too unless NoProgram. BindDetail puts DetailMapN
    // on unit 0, for a program of the caller's. Unbind ends what Bind began but for the texture units.
    void Bind(bool NoProgram, bool BindDetail);
    void DrawLeaves() const;
    void Unbind() const;
    // The whole camera pass.
    void Draw();

    // Steps of Load and the two rebuilds; they need no GL.
    void BuildLeaves();
    void BuildTree();
    void BuildIndices(GArray<UINT32>& Out);
    // Width * Height vertices, in unit space.
    void FillVertices(SVertex20* Out) const;
    // (Width - 1) * (Height - 1) packed colours. Also in unit space, with heights from 0 to 1 over a square of 2 by 2:
    // the shader has Extents to correct the normals with.
    void FillNormals(UINT32* Out) const;

private:
    bool HoldsDetails = false; // a reference to each detail texture, also to those with id 0

    bool HasUsableExtents() const;
    bool LoadHeights(const GString& Picture);
    void LoadDetails(const STerrainFile& File);
    void MakeBuffers();
    void UploadVertices();
    void FreeTree();
};
