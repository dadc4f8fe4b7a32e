#include "graphics/MeshLod.h"

#include "foundation/Diagnostics.h"

#include <algorithm>
#include <limits>

namespace {

constexpr UINT32 NONE = ~UINT32{0};

// An edge that waits for its collapse. Corner is the place of its first vertex in the list of level 0; the order of
// places never changes, so it settles which of two equal edges comes first.
struct SEdge {
    float Length;
    UINT32 Corner;
};

// For a heap with the next edge at its top.
bool ComesLater(const SEdge& a, const SEdge& b) {
    return a.Length > b.Length || (a.Length == b.Length && a.Corner > b.Corner);
}

// A part's share of the working list.
struct SRange {
    SMeshPart* Part;
    UINT32 FirstVertex; // in the collapse's own numbering, where no two parts share a vertex
    UINT32 FirstTriangle;
    UINT32 EndTriangle;
};

void CheckPart(const SMesh& Mesh, const SMeshPart& Part) {
    const UINT64 End = UINT64{Part.IBOffset[0]} + 3 * UINT64{Part.TriangleCount[0]};
    bool Good = End <= Mesh.Indices.count && UINT64{Part.VertexStart} + Part.VertexCount <= Mesh.Vertices.count;
    for (UINT64 i = Part.IBOffset[0]; Good && i < End; ++i) {
        Good = Mesh.Indices.Data[i] < Part.VertexCount;
    }
    if (!Good) {
        FatalError("-ASSERT-\nThis test expression is false:\n%s\n",
                   "Parts[ p ].TriangleCount[ lod ] * 3 == ( vtx - Parts[ p ].IBOffset[ lod ] )");
    }
}

class CCollapse {
public:
    explicit CCollapse(SMesh& Mesh);

    // Collapses edges until at most Share of the indices is left, or nothing can go any more.
    void ReduceTo(float Share);

    // The list as it stands; the parts' ranges of the level are written.
    void Emit(UINT32 Level, GArray<UINT32>& Out) const;

private:
    void AddPart(SMeshPart& Part);
    void AddTriangles(const SRange& Range);
    void LinkCorner(UINT32 Corner);
    bool IsAlive(UINT32 Corner) const { return Corners[Corner / 3 * 3] != NONE; }
    static UINT32 NextCorner(UINT32 Corner) { return Corner % 3 == 2 ? Corner - 2 : Corner + 1; }
    float EdgeLength(UINT32 Corner) const;
    void QueueEdges(UINT32 Triangle);
    bool PopShortest(SEdge& Shortest);
    void Collapse(UINT32 From, UINT32 To);
    bool Rename(UINT32 Triangle, UINT32 From, UINT32 To);
    void Remove(UINT32 Triangle);

    SMesh& Mesh;
    GArray<SRange> Ranges;       // in the order of level 0
    GArray<Vec3> Positions;      // by vertex
    GArray<UINT32> Corners;      // vertices, three for each triangle; NONE in the first where the triangle is gone
    GArray<float> Scales;        // by triangle, of its part
    GArray<float> Lengths;       // present length of the edge from each corner to the next
    GArray<UINT32> FirstOf;      // by vertex: a corner that it holds, the head of a list
    GArray<UINT32> NextOfVertex; // by corner
    GArray<SEdge> Queue;         // a heap; entries whose length is out of date are skipped when they come up
    UINT32 FullCount = 0;
    UINT32 Count = 0; // entries of the list that are left
};

CCollapse::CCollapse(SMesh& Mesh) : Mesh(Mesh) {
    for (SMeshPart& Part : Mesh.Parts) {
        CheckPart(Mesh, Part);
        AddPart(Part);
    }
    // Few parts, and mostly in order already.
    std::stable_sort(Ranges.begin(), Ranges.end(),
                     [](const SRange& a, const SRange& b) { return a.Part->IBOffset[0] < b.Part->IBOffset[0]; });
    UINT32 Triangle = 0;
    for (SRange& Range : Ranges) {
        Range.FirstTriangle = Triangle;
        Triangle += Range.Part->TriangleCount[0];
        Range.EndTriangle = Triangle;
        AddTriangles(Range);
    }
    FullCount = Count = Corners.count;
    Lengths.Resize(Count);
    NextOfVertex.Resize(Count);
    FirstOf.Resize(Positions.count);
    std::fill(FirstOf.begin(), FirstOf.end(), NONE);
    std::fill(Lengths.begin(), Lengths.end(), std::numeric_limits<float>::infinity());
    for (UINT32 Corner = 0; Corner < Count; ++Corner) {
        LinkCorner(Corner);
    }
    for (UINT32 i = 0; i < Triangle; ++i) {
        QueueEdges(i);
    }
}

void CCollapse::AddPart(SMeshPart& Part) {
    Ranges.Add({&Part, Positions.count, 0, 0});
    for (UINT32 i = 0; i < Part.VertexCount; ++i) {
        Positions.Add(Mesh.Vertices[Part.VertexStart + i].Position);
    }
}

void CCollapse::AddTriangles(const SRange& Range) {
    const SMeshPart& Part = *Range.Part;
    for (UINT32 i = 0; i < 3 * Part.TriangleCount[0]; ++i) {
        Corners.Add(Range.FirstVertex + Mesh.Indices[Part.IBOffset[0] + i]);
    }
    for (UINT32 i = 0; i < Part.TriangleCount[0]; ++i) {
        Scales.Add(Part.LodScale);
    }
}

void CCollapse::LinkCorner(UINT32 Corner) {
    UINT32& Head = FirstOf[Corners[Corner]];
    NextOfVertex[Corner] = Head;
    Head = Corner;
}

float CCollapse::EdgeLength(UINT32 Corner) const {
    const Vec3 Along = Positions[Corners[Corner]] - Positions[Corners[NextCorner(Corner)]];
    return M_Length(Along) / Scales[Corner / 3];
}

void CCollapse::QueueEdges(UINT32 Triangle) {
    for (UINT32 Corner = 3 * Triangle; Corner < 3 * Triangle + 3; ++Corner) {
        const float Length = EdgeLength(Corner);
        if (Length == Lengths[Corner]) {
            continue;
        }
        Lengths[Corner] = Length;
        if (Length < std::numeric_limits<float>::max()) {
            Queue.Add({Length, Corner});
            std::push_heap(Queue.begin(), Queue.end(), ComesLater);
        }
    }
}

bool CCollapse::PopShortest(SEdge& Shortest) {
    while (Queue.count > 0) {
        Shortest = Queue[0];
        std::pop_heap(Queue.begin(), Queue.end(), ComesLater);
        Queue.Resize(Queue.count - 1);
        if (IsAlive(Shortest.Corner) && Lengths[Shortest.Corner] == Shortest.Length) {
            return true;
        }
    }
    return false;
}

void CCollapse::Remove(UINT32 Triangle) {
    Corners[3 * Triangle] = NONE;
    Count -= 3;
}

// Replaces From by To in one triangle, corner by corner. False if the triangle collapsed and was removed.
bool CCollapse::Rename(UINT32 Triangle, UINT32 From, UINT32 To) {
    for (UINT32 Corner = 3 * Triangle; Corner < 3 * Triangle + 3; ++Corner) {
        if (Corners[Corner] != From) {
            continue;
        }
        const UINT32 Next = NextCorner(Corner);
        if (Corners[Next] == To || Corners[NextCorner(Next)] == To) {
            Remove(Triangle);
            return false;
        }
        Corners[Corner] = To;
    }
    return true;
}

// Corners of triangles that are gone drop out of the lists here, when they are met.
void CCollapse::Collapse(UINT32 From, UINT32 To) {
    UINT32 Corner = FirstOf[From];
    FirstOf[From] = NONE;
    while (Corner != NONE) {
        const UINT32 Next = NextOfVertex[Corner];
        if (IsAlive(Corner) && Rename(Corner / 3, From, To)) {
            LinkCorner(Corner);
            QueueEdges(Corner / 3);
        }
        Corner = Next;
    }
}

void CCollapse::ReduceTo(float Share) {
    const UINT32 Target = static_cast<UINT32>(static_cast<float>(FullCount) * Share);
    SEdge Shortest;
    while (Count > Target && PopShortest(Shortest)) {
        Collapse(Corners[NextCorner(Shortest.Corner)], Corners[Shortest.Corner]);
    }
}

void CCollapse::Emit(UINT32 Level, GArray<UINT32>& Out) const {
    Out.Reserve(Count);
    for (const SRange& Range : Ranges) {
        SMeshPart& Part = *Range.Part;
        Part.IBOffset[Level] = Out.count;
        for (UINT32 Corner = 3 * Range.FirstTriangle; Corner < 3 * Range.EndTriangle; ++Corner) {
            if (IsAlive(Corner)) {
                Out.Add(Corners[Corner] - Range.FirstVertex);
            }
        }
        Part.TriangleCount[Level] = (Out.count - Part.IBOffset[Level]) / 3;
    }
}

void KeepWhole(SMesh& Mesh, UINT32 Level, GArray<UINT32>& Out) {
    Out = Mesh.Indices;
    for (SMeshPart& Part : Mesh.Parts) {
        Part.IBOffset[Level] = Part.IBOffset[0];
        Part.TriangleCount[Level] = Part.TriangleCount[0];
    }
}

} // namespace

void MeshBuildLods(SMesh& Mesh, GArray<UINT32> (&Out)[MESH_LOD_COUNT - 1]) {
    if (Mesh.Indices.count < MESH_LOD_MIN_INDICES) {
        for (UINT32 Level = 1; Level < MESH_LOD_COUNT; ++Level) {
            KeepWhole(Mesh, Level, Out[Level - 1]);
        }
        return;
    }
    CCollapse Collapse(Mesh);
    for (UINT32 Level = 1; Level < MESH_LOD_COUNT; ++Level) {
        Collapse.ReduceTo(MESH_LOD_SHARES[Level]);
        Collapse.Emit(Level, Out[Level - 1]);
    }
}
