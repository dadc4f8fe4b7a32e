#include "meshgen/GenTopology.h"

#include "foundation/Diagnostics.h"
#include "foundation/Polygon.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr UINT32 NONE = ~UINT32{0};

// Squared distance below which two positions are one place.
constexpr float SAME_PLACE = 0.000000009999999f;

// Edge of a cell, ten times that distance: a place mostly lies wholly inside of one.
constexpr float CELL_SIZE = 0.001f;

// How far around a position its twins can be; a little more than the distance itself.
constexpr float REACH = 0.00011f;

// The greatest difference of the four numbers of two planes that are taken as one.
constexpr float SAME_PLANE = 0.0001f;

// Cells far out fall together: a place that is too far off for the numbering is searched like any other.
INT64 CellAlong(float Coordinate) {
    constexpr float FARTHEST = 1e15f;
    const float Cell = std::floor(Coordinate / CELL_SIZE);
    return Cell > -FARTHEST && Cell < FARTHEST ? static_cast<INT64>(Cell) : 0;
}

// Different cells may share a number; the distance decides.
UINT64 CellNumber(INT64 x, INT64 y, INT64 z) {
    return static_cast<UINT64>(x) * 73856093u ^ static_cast<UINT64>(y) * 19349663u ^ static_cast<UINT64>(z) * 83492791u;
}

bool AreOpposite(const Plane& a, const Plane& b) {
    return M_Abs(a.Normal.x + b.Normal.x) < SAME_PLANE && M_Abs(a.Normal.y + b.Normal.y) < SAME_PLANE &&
           M_Abs(a.Normal.z + b.Normal.z) < SAME_PLANE && M_Abs(a.D + b.D) < SAME_PLANE;
}

} // namespace

CGenTopology::CGenTopology(SGenPart& Part) : Part(Part) {
    G_ASSERT(Part.Indices.Size() % 3 == 0);
    FirstCorner.Resize(Part.Vertices.count);
    std::fill(FirstCorner.begin(), FirstCorner.end(), NONE);
    NextCorner.Resize(Part.Indices.count);
    for (UINT32 i = 0; i < Part.Indices.count; ++i) {
        UINT32& Head = FirstCorner[Part.Indices[i]];
        NextCorner[i] = Head;
        Head = i;
    }
    Planes.Resize(Part.Indices.count / 3);
    Usable.Resize(Planes.count);
    for (UINT32 i = 0; i < Planes.count; ++i) {
        UpdatePlane(i);
    }
    Places.Reserve(Part.Vertices.count);
    for (UINT32 i = 0; i < Part.Vertices.count; ++i) {
        const Vec3& p = Part.Vertices[i].Position;
        Places.Add({CellNumber(CellAlong(p.x), CellAlong(p.y), CellAlong(p.z)), i});
    }
    std::sort(Places.begin(), Places.end(), [](const SPlace& a, const SPlace& b) {
        return a.Cell < b.Cell || (a.Cell == b.Cell && a.Vertex < b.Vertex);
    });
}

void CGenTopology::UpdatePlane(UINT32 Triangle) {
    GArray<Vec3> Points;
    for (UINT32 Corner = 3 * Triangle; Corner < 3 * Triangle + 3; ++Corner) {
        Points.Add(Part.Vertices[Part.Indices[Corner]].Position);
    }
    Usable[Triangle] = M_PolygonClean(Points) && M_PolygonPlane(Points, Planes[Triangle]);
}

bool CGenTopology::TrianglePlane(UINT32 Triangle, Plane& Out) const {
    Out = Planes[Triangle];
    return Usable[Triangle] != 0;
}

void CGenTopology::AppendCell(UINT64 Cell, const Vec3& Place, GArray<UINT32>& Out) const {
    const SPlace* At = std::lower_bound(Places.begin(), Places.end(), Cell,
                                        [](const SPlace& a, UINT64 Wanted) { return a.Cell < Wanted; });
    for (; At != Places.end() && At->Cell == Cell; ++At) {
        const Vec3 Apart = Part.Vertices[At->Vertex].Position - Place;
        if (M_Dot(Apart, Apart) < SAME_PLACE) {
            Out.Add(At->Vertex);
        }
    }
}

void CGenTopology::FindTwins(UINT32 Vertex, GArray<UINT32>& Out) const {
    Out.Resize(0);
    const Vec3& p = Part.Vertices[Vertex].Position;
    for (INT64 z = CellAlong(p.z - REACH); z <= CellAlong(p.z + REACH); ++z) {
        for (INT64 y = CellAlong(p.y - REACH); y <= CellAlong(p.y + REACH); ++y) {
            for (INT64 x = CellAlong(p.x - REACH); x <= CellAlong(p.x + REACH); ++x) {
                AppendCell(CellNumber(x, y, z), p, Out);
            }
        }
    }
    // Neighbouring cells may have come out as one number, and then a vertex stands there twice.
    std::sort(Out.begin(), Out.end());
    Out.Resize(static_cast<UINT32>(std::unique(Out.begin(), Out.end()) - Out.begin()));
}

bool CGenTopology::Opposed(UINT32 a, UINT32 b) const {
    for (UINT32 i = FirstCorner[a]; i != NONE; i = NextCorner[i]) {
        for (UINT32 j = FirstCorner[b]; Usable[i / 3] && j != NONE; j = NextCorner[j]) {
            if (Usable[j / 3] && AreOpposite(Planes[i / 3], Planes[j / 3])) {
                return true;
            }
        }
    }
    return false;
}

void CGenTopology::MergeInto(UINT32 Kept, UINT32 Gone) {
    UINT32 Corner = FirstCorner[Gone];
    FirstCorner[Gone] = NONE;
    while (Corner != NONE) {
        const UINT32 Next = NextCorner[Corner];
        Part.Indices[Corner] = Kept;
        NextCorner[Corner] = FirstCorner[Kept];
        FirstCorner[Kept] = Corner;
        // The two were not at quite the same place.
        UpdatePlane(Corner / 3);
        Corner = Next;
    }
}
