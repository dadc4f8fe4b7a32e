// SGenPart: a growing part of a generated mesh, with the shapes that can be added to it and the operations that turn
// loose triangles into a smooth mesh: welding, noise, normals and tangents, hand-over.
//
// Shapes append vertices with position, UV and bone; normals and tangents come from ComputeNormals at the end. Front
// faces are clockwise. Units: the mesh's own; angles in radians.
// Cost: Weld, GroupVertices and ComputeNormals are about linear in the vertices while few of them share a place.
// Bad input: too few sides, an extent of 1 and less for Deform, and an empty part in CopyToMesh fail an assertion;
// triangles without area add nothing to normals.
#pragma once

#include "foundation/GTemplate.h"
#include "foundation/Quaternion.h"
#include "foundation/Vector.h"
#include "graphics/Mesh.h"

struct SGenPart {
    // A tapered tube between two rings (centre and radius each), that turns from Quat0 to Quat1. No caps.
    void AddTube(const Vec4& Foot, const Quat& Quat0, const Vec4& Tip, const Quat& Quat1, INT32 xsub, INT32 ysub);

    // A flat fan that closes a ring.
    void AddCap(const Vec4& Tip, const Quat& Rotation, INT32 xsub);

    // A double-sided card. Dir and Up are unit vectors; extents are half sizes.
    void AddLeaf(const Vec3& Center, const Vec3& Dir, const Vec3& Up, float ExtX, float ExtY);
    void AddQuad(const Vec3& P0, const Vec3& P1, const Vec3& P2, const Vec3& P3);

    // Makes vertices at one place one, but for those of back-to-back faces. With CheckUV only if the UVs agree too.
    void Weld(bool CheckUV);

    // A vertex of its own for every index.
    void Unweld();

    // Moves vertices by noise, less with the distance from Center in units of Ext; along Dir, or outward if it is zero.
    // Push is centre and spread of the strength. Consumes 256 random numbers.
    void Deform(const Vec3& Center, const Vec3& Ext, const Vec2& Push, const Vec3& Dir, float Scale);

    void ComputeNormals();

    // For each vertex the vertices that share its place for smoothing, itself included, ascending.
    void GroupVertices(GArray<GArray<UINT32>>& Groups) const;

    // Appends everything to the mesh as the geometry of its part Part, whose shaders and textures stay.
    void CopyToMesh(SMesh& Mesh, UINT32 Part) const;

    INT32 Bone = -1;  // of each new vertex
    UINT32 Start = 0; // where the latest shape began in Vertices
    GArray<SMeshVertex> Vertices;
    GArray<UINT32> Indices; // three for each triangle
};
