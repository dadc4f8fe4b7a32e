// Which triangles meet at a vertex of a growing part, which vertices share a place, and which faces stand back to back.
//
// A view on a part's arrays, made for one operation; it changes Indices in MergeInto and nothing else of the part.
// Cost: linear to build but for a sort; a search for neighbours visits the few vertices that share its place.
#pragma once

#include "foundation/Geometry.h"
#include "meshgen/GenPart.h"

class CGenTopology {
public:
    explicit CGenTopology(SGenPart& Part);

    // Vertices at the place of Vertex, itself included, ascending.
    void FindTwins(UINT32 Vertex, GArray<UINT32>& Out) const;

    // True if a triangle of a and one of b lie in one plane and face each other's back. Triangles without area don't
    // count.
    bool Opposed(UINT32 a, UINT32 b) const;

    // The triangles of Gone become triangles of Kept.
    void MergeInto(UINT32 Kept, UINT32 Gone);

    // The plane of a triangle; false if it has no area.
    bool TrianglePlane(UINT32 Triangle, Plane& Out) const;

private:
    struct SPlace {
        UINT64 Cell;
        UINT32 Vertex;
    };

    void UpdatePlane(UINT32 Triangle);
    void AppendCell(UINT64 Cell, const Vec3& Place, GArray<UINT32>& Out) const;

    SGenPart& Part;
    GArray<UINT32> FirstCorner; // by vertex: a place in Indices, the head of a list
    GArray<UINT32> NextCorner;  // by place in Indices
    GArray<Plane> Planes;       // by triangle
    GArray<UINT8> Usable;       // by triangle: it has an area, and Planes holds its plane
    GArray<SPlace> Places;      // sorted by cell, then vertex
};
