// Welding and grouping of a generated part against the plain loops over all pairs, at 6,000 vertices.
#include "support/PlainWeld.h"

#include <benchmark/benchmark.h>
#include <random>

namespace {

// A wood of tubes and cards as a tree has them, on a lattice wide enough that few share a place.
SGenPart MakePart() {
    constexpr UINT32 VERTICES = 6000;
    SGenPart Part;
    std::mt19937 Random(1);
    const auto Unit = [&] { return std::uniform_real_distribution<float>(0, 1)(Random); };
    while (Part.Vertices.count < VERTICES) {
        const Vec3 Foot = {50 * Unit(), 50 * Unit(), 50 * Unit()};
        Part.AddTube({Foot.x, Foot.y, Foot.z, 1}, Quat(), {Foot.x, Foot.y, Foot.z + 5, 0.5f}, Quat(), 6, 3);
        Part.AddLeaf(Foot, {1, 0, 0}, {0, 0, 1}, 2, 3);
    }
    return Part;
}

void Weld(benchmark::State& State) {
    const SGenPart Source = MakePart();
    for (auto _ : State) {
        SGenPart Part = Source;
        Part.Weld(true);
        benchmark::DoNotOptimize(Part.Vertices.count);
    }
}

void RunPlainWeld(benchmark::State& State) {
    const SGenPart Source = MakePart();
    for (auto _ : State) {
        SGenPart Part = Source;
        PlainWeld(Part, true);
        benchmark::DoNotOptimize(Part.Vertices.count);
    }
}

void Group(benchmark::State& State) {
    const SGenPart Part = MakePart();
    for (auto _ : State) {
        GArray<GArray<UINT32>> Groups;
        Part.GroupVertices(Groups);
        benchmark::DoNotOptimize(Groups.count);
    }
}

void RunPlainGroups(benchmark::State& State) {
    const SGenPart Part = MakePart();
    for (auto _ : State) {
        benchmark::DoNotOptimize(PlainGroups(Part).size());
    }
}

} // namespace

BENCHMARK(Weld)->Name("weld");
BENCHMARK(RunPlainWeld)->Name("plain_weld");
BENCHMARK(Group)->Name("group");
BENCHMARK(RunPlainGroups)->Name("plain_groups");
