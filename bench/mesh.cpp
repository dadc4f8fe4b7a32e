// Meshes: levels of detail and ray tests against their plain forms.
#include "graphics/MeshLod.h"
#include "support/PlainMesh.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <random>

namespace {

// Quads along the side of a sheet: two triangles, six indices each.
constexpr UINT32 SIDE_30K_INDICES = 71;
constexpr UINT32 SIDE_300K_INDICES = 224;
constexpr UINT32 SIDE_100K_TRIANGLES = 224;

constexpr int RAYS = 16;

std::unique_ptr<SMesh> MakeSheet(UINT32 Side) {
    std::mt19937 Engine(1);
    std::uniform_real_distribution<float> Random(0, 1);
    auto Mesh = std::make_unique<SMesh>();
    AddSheetPart(*Mesh, Side, [&] { return Random(Engine); });
    return Mesh;
}

void BuildLods(benchmark::State& State, UINT32 Side) {
    const auto Mesh = MakeSheet(Side);
    for (auto _ : State) {
        GArray<UINT32> Lods[MESH_LOD_COUNT - 1];
        MeshBuildLods(*Mesh, Lods);
        benchmark::DoNotOptimize(Lods[0].Data);
    }
}

void lods(benchmark::State& State) {
    BuildLods(State, SIDE_30K_INDICES);
}

void lods_tenfold(benchmark::State& State) {
    BuildLods(State, SIDE_300K_INDICES);
}

// The first level alone; the other two would take the plain form several times as long.
void plain_lod(benchmark::State& State) {
    const auto Mesh = MakeSheet(SIDE_30K_INDICES);
    for (auto _ : State) {
        GArray<SMeshPart> Parts = Mesh->Parts;
        benchmark::DoNotOptimize(PlainLod(*Mesh, 1, MESH_LOD_SHARES[1], Parts).data());
    }
}

// Rays down onto the sheet, one in four along an axis, from places all over it. All hit.
Ray RayOnto(UINT32 Side, int i) {
    const float Step = static_cast<float>(Side) / (RAYS + 1);
    const Vec3 From = {Step * static_cast<float>(i + 1), Step * static_cast<float>(i * 7 % RAYS + 1), 50};
    const float Lean = i % 4 ? 0.1f * static_cast<float>(i % 4) : 0;
    return {From, M_Normalized({Lean * (From.x * 2 > static_cast<float>(Side) ? -1.0f : 1.0f), 0, -1})};
}

template <class FTrace>
void TraceAll(benchmark::State& State, FTrace Trace) {
    const auto Mesh = MakeSheet(SIDE_100K_TRIANGLES);
    Mat4 World;
    M_Mat4Compose({1, 1, 1}, {0, 0, 0}, World, Quat());
    Trace(*Mesh, RayOnto(SIDE_100K_TRIANGLES, 0), World); // makes the tree
    for (auto _ : State) {
        for (int i = 0; i < RAYS; ++i) {
            if (Trace(*Mesh, RayOnto(SIDE_100K_TRIANGLES, i), World) < 0) {
                State.SkipWithError("a ray missed the sheet");
            }
        }
    }
}

void trace(benchmark::State& State) {
    TraceAll(State, [](const SMesh& Mesh, const Ray& R, const Mat4& World) { return Mesh.TraceRay(R, World); });
}

void plain_trace(benchmark::State& State) {
    TraceAll(State, PlainTrace);
}

} // namespace

BENCHMARK(lods)->Unit(benchmark::kMillisecond);
BENCHMARK(lods_tenfold)->Unit(benchmark::kMillisecond);
BENCHMARK(plain_lod)->Unit(benchmark::kMillisecond);
BENCHMARK(trace)->Unit(benchmark::kMicrosecond);
BENCHMARK(plain_trace)->Unit(benchmark::kMicrosecond);
