// The plain forms of what meshes do fast: edge collapse and the ray walk, as slow loops over whole lists. Tests and
// benchmarks hold the engine's answers against them.
#pragma once

#include "graphics/Mesh.h"

#include <cfloat>
#include <vector>

// Each part's run of the list, whose entries count over all vertices.
inline void PlainRanges(const std::vector<UINT32>& W, UINT32 Level, GArray<SMeshPart>& Parts) {
    UINT32 At = 0;
    for (SMeshPart& Part : Parts) {
        Part.IBOffset[Level] = At;
        while (At < W.size() && W[At] >= Part.VertexStart && W[At] < Part.VertexStart + Part.VertexCount) {
            ++At;
        }
        Part.TriangleCount[Level] = (At - Part.IBOffset[Level]) / 3;
    }
}

// One level of a mesh whose parts lie in order, without gaps, and name all indices. Ranges are written into Parts.
inline std::vector<UINT32> PlainLod(const SMesh& Mesh, UINT32 Level, float Share, GArray<SMeshPart>& Parts) {
    std::vector<UINT32> W(Mesh.Indices.begin(), Mesh.Indices.end());
    const std::size_t Target = static_cast<UINT32>(static_cast<float>(W.size()) * Share);
    for (SMeshPart& Part : Parts) {
        for (UINT32 i = 0; i < 3 * Part.TriangleCount[0]; ++i) {
            W[Part.IBOffset[0] + i] += Part.VertexStart;
        }
        Part.IBOffset[Level] = Part.IBOffset[0];
        Part.TriangleCount[Level] = Part.TriangleCount[0];
    }
    const auto Next = [](std::size_t e) { return e % 3 == 2 ? e - 2 : e + 1; };
    while (W.size() > Target) {
        float Best = FLT_MAX;
        std::size_t Winner = W.size();
        for (std::size_t e = 0; e < W.size(); ++e) {
            float Length = M_Length(Mesh.Vertices.Data[W[e]].Position - Mesh.Vertices.Data[W[Next(e)]].Position);
            for (const SMeshPart& Part : Parts) {
                if (e >= Part.IBOffset[Level] && e < Part.IBOffset[Level] + 3 * Part.TriangleCount[Level]) {
                    Length /= Part.LodScale;
                    break;
                }
            }
            if (Length < Best) {
                Best = Length;
                Winner = e;
            }
        }
        if (Winner == W.size()) {
            break;
        }
        const UINT32 From = W[Next(Winner)];
        const UINT32 To = W[Winner];
        for (std::size_t i = 0; i < W.size();) {
            if (W[i] == From) {
                if (W[Next(i)] == To || W[Next(Next(i))] == To) {
                    const std::size_t First = i / 3 * 3;
                    W.erase(W.begin() + static_cast<std::ptrdiff_t>(First),
                            W.begin() + static_cast<std::ptrdiff_t>(First) + 3);
                    // The list goes on at the place where the triangle stood.
                    i = First;
                    continue;
                }
                W[i] = To;
            }
            ++i;
        }
        PlainRanges(W, Level, Parts);
    }
    PlainRanges(W, Level, Parts);
    for (const SMeshPart& Part : Parts) {
        for (UINT32 i = 0; i < 3 * Part.TriangleCount[Level]; ++i) {
            W[Part.IBOffset[Level] + i] -= Part.VertexStart;
        }
    }
    return W;
}

// Every triangle of every part.
inline float PlainTrace(const SMesh& Mesh, const Ray& WorldRay, const Mat4& World) {
    Ray Local = WorldRay;
    M_RayToLocal(World, Local);
    float Best = -1;
    for (const SMeshPart& Part : Mesh.Parts) {
        for (UINT32 i = Part.IBOffset[0]; i < Part.IBOffset[0] + 3 * Part.TriangleCount[0]; i += 3) {
            const auto Corner = [&](UINT32 k) {
                return Mesh.Vertices.Data[Part.VertexStart + Mesh.Indices.Data[i + k]].Position;
            };
            float t;
            if (M_RayTriangle(Corner(0), Corner(2), Corner(1), Local, &t) && t >= 0 && (Best < 0 || t < Best)) {
                Best = t;
            }
        }
    }
    if (Best < 0) {
        return -1;
    }
    Vec3 Hit;
    M_Mat4MulPoint(World, Local.Origin + Local.Dir * Best, Hit);
    return M_Length(Hit - WorldRay.Origin);
}

// A bent sheet of Side by Side quads as one more part; Random gives 0 to 1.
template <class FRandom>
void AddSheetPart(SMesh& Mesh, UINT32 Side, FRandom Random) {
    SMeshPart Part;
    Part.VertexStart = Mesh.Vertices.count;
    Part.IBOffset[0] = Mesh.Indices.count;
    const UINT32 Row = Side + 1;
    for (UINT32 i = 0; i < Row * Row; ++i) {
        SMeshVertex Vertex;
        Vertex.Position = {static_cast<float>(i % Row) + 0.6f * Random(), static_cast<float>(i / Row) + 0.6f * Random(),
                           3 * Random()};
        Mesh.Vertices.Add(Vertex);
    }
    for (UINT32 i = 0; i < Side * Side; ++i) {
        const UINT32 a = i / Side * Row + i % Side;
        for (const UINT32 Index : {a, a + 1, a + Row, a + 1, a + Row + 1, a + Row}) {
            Mesh.Indices.Add(Index);
        }
    }
    Part.VertexCount = Mesh.Vertices.count - Part.VertexStart;
    Part.TriangleCount[0] = (Mesh.Indices.count - Part.IBOffset[0]) / 3;
    Mesh.Parts.Add(Part);
}
