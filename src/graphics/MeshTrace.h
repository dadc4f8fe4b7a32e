// A tree of boxes over a mesh's triangles, so that a ray test visits only those near the ray.
//
// It refers to the mesh's own arrays and answers exactly what a walk over all triangles would: the smallest distance of
// at least 0. Space and units: the mesh's. Cost: n log n to build, about 20 bytes a triangle; a test is logarithmic for
// most rays. Bad input: boxes that are not finite are always visited.
#pragma once

#include "graphics/Mesh.h"

class CMeshTraceTree {
public:
    explicit CMeshTraceTree(const SMesh& Mesh);

    // Distance along the ray to the nearest front face of the mesh that the tree was made of, or -1.
    float Trace(const SMesh& Mesh, const Ray& LocalRay) const;

private:
    // Corners as places in Vertices.
    struct STriangle {
        UINT32 Corner[3];
    };

    struct SNode {
        BBox Box;
        UINT32 First; // leaf: first triangle; inner: the second child, the first one follows the node itself
        UINT32 Count; // triangles of a leaf, 0 for an inner node
    };

    void AddTriangles(const SMesh& Mesh, const SMeshPart& Part);
    void Build(const SMesh& Mesh, UINT32 First, UINT32 End);

    GArray<STriangle> Triangles;
    GArray<SNode> Nodes;
};
