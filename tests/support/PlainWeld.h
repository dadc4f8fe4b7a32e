// The plain forms of welding and grouping: loops over all pairs of vertices and all triangles. Tests and benchmarks
// hold the engine's answers against them.
#pragma once

#include "foundation/Polygon.h"
#include "meshgen/GenPart.h"

#include <cmath>
#include <vector>

inline std::vector<Plane> PlainPlanes(const SGenPart& Part, UINT32 Vertex) {
    std::vector<Plane> Planes;
    for (UINT32 i = 0; i < Part.Indices.count; i += 3) {
        const UINT32* Corner = Part.Indices.Data + i;
        if (Corner[0] != Vertex && Corner[1] != Vertex && Corner[2] != Vertex) {
            continue;
        }
        GArray<Vec3> Points;
        for (UINT32 k = 0; k < 3; ++k) {
            Points.Add(Part.Vertices.Data[Corner[k]].Position);
        }
        Plane P;
        if (M_PolygonClean(Points) && M_PolygonPlane(Points, P)) {
            Planes.push_back(P);
        }
    }
    return Planes;
}

inline bool PlainOpposed(const SGenPart& Part, UINT32 a, UINT32 b) {
    for (const Plane& P : PlainPlanes(Part, a)) {
        for (const Plane& Q : PlainPlanes(Part, b)) {
            const float Differences[4] = {P.Normal.x + Q.Normal.x, P.Normal.y + Q.Normal.y, P.Normal.z + Q.Normal.z,
                                          P.D + Q.D};
            bool All = true;
            for (const float Difference : Differences) {
                All = All && std::fabs(Difference) < 0.0001f;
            }
            if (All) {
                return true;
            }
        }
    }
    return false;
}

inline bool PlainSamePlace(const SGenPart& Part, UINT32 a, UINT32 b) {
    const Vec3 Apart = Part.Vertices.Data[a].Position - Part.Vertices.Data[b].Position;
    return M_Dot(Apart, Apart) < 0.000000009999999f;
}

inline void PlainWeld(SGenPart& Part, bool CheckUV) {
    for (UINT32 i = 0; i < Part.Vertices.count; ++i) {
        for (UINT32 j = i + 1; j < Part.Vertices.count; ++j) {
            const Vec2 a = Part.Vertices.Data[i].UV;
            const Vec2 b = Part.Vertices.Data[j].UV;
            const float UV = (a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y);
            if ((CheckUV && UV > 0.000000000099999994f) || !PlainSamePlace(Part, i, j) || PlainOpposed(Part, i, j)) {
                continue;
            }
            Part.Vertices.Remove(j, j);
            for (UINT32& Index : Part.Indices) {
                Index = Index == j ? i : Index > j ? Index - 1 : Index;
            }
            j = i;
        }
    }
}

inline std::vector<std::vector<UINT32>> PlainGroups(const SGenPart& Part) {
    std::vector<std::vector<UINT32>> Groups(Part.Vertices.count);
    for (UINT32 i = 0; i < Part.Vertices.count; ++i) {
        for (UINT32 j = 0; j < Part.Vertices.count; ++j) {
            if (PlainSamePlace(Part, i, j) && !PlainOpposed(Part, i, j)) {
                Groups[i].push_back(j);
            }
        }
    }
    return Groups;
}

// Tubes and cards at places of a coarse lattice, so that seams, rings and back-to-back faces meet in many ways.
template <class FRandom>
void AddTangle(SGenPart& Part, UINT32 Shapes, FRandom Below) {
    for (UINT32 i = 0; i < Shapes; ++i) {
        const auto Whole = [&](UINT32 End) { return static_cast<float>(Below(End)); };
        const Vec3 At = {Whole(4), Whole(4), Whole(3)};
        if (Below(3) == 0) {
            Part.AddTube({At.x, At.y, At.z, 1}, Quat(), {At.x, At.y, At.z + 1, 1}, Quat(), 4,
                         1 + static_cast<INT32>(Below(2)));
        } else if (Below(2)) {
            Part.AddLeaf(At, {1, 0, 0}, {0, 0, 1}, 0.5f, 0.5f);
        } else {
            Part.AddQuad(At, At + Vec3{1, 0, 0}, At + Vec3{1, 1, Whole(2)}, At + Vec3{0, 1, Whole(2)});
        }
    }
    // Some corners are a little off, within and beyond what counts as one place.
    for (SMeshVertex& Vertex : Part.Vertices) {
        Vertex.Position.x += 0.00003f * static_cast<float>(Below(6) == 0 ? Below(5) : 0);
    }
}
