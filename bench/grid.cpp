// The spatial grid at the size that a level has: what bringing it up costs in time and memory, a moving client, and a
// view over the clients of a full level.
#include "foundation/Camera.h"
#include "scene/SpatialGrid.h"

#include <benchmark/benchmark.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <random>

namespace {

constexpr float LEVEL_HALF = 2000.0f;
constexpr BBox LEVEL_BOX{{-LEVEL_HALF, -LEVEL_HALF, -LEVEL_HALF}, {LEVEL_HALF, LEVEL_HALF, LEVEL_HALF}};
constexpr Vec3 CELL_COUNTS{200, 200, 200};
constexpr std::size_t CELL_BYTES = std::size_t{200} * 200 * 200 * sizeof(SClientList);
constexpr int CLIENTS = 4000;

// ---- bringing it up

void GridInit(benchmark::State& State) {
    for (auto _ : State) {
        SSpatialGrid Grid;
        Grid.Init(LEVEL_BOX, CELL_COUNTS);
        benchmark::DoNotOptimize(Grid);
    }
}

// The cells' bytes, written once into fresh pages.
char* WrittenCells() {
    auto* Bytes = static_cast<char*>(std::malloc(CELL_BYTES));
    std::memset(Bytes, 1, CELL_BYTES);
    benchmark::DoNotOptimize(Bytes);
    benchmark::ClobberMemory();
    return Bytes;
}

void WriteCells(benchmark::State& State) {
    for (auto _ : State) {
        std::free(WrittenCells());
    }
}

double ResidentBytes() {
    long Whole = 0;
    long Resident = 0;
    std::FILE* Status = std::fopen("/proc/self/statm", "r");
    if (!Status || std::fscanf(Status, "%ld %ld", &Whole, &Resident) != 2) {
        std::abort();
    }
    std::fclose(Status);
    return static_cast<double>(Resident) * static_cast<double>(sysconf(_SC_PAGESIZE));
}

// Memory goes through the table of bars as a time: a second stands for a gigabyte.
void CountBytes(benchmark::State& State, double Bytes) {
    State.SetIterationTime(Bytes * 1e-9);
    State.counters["MB"] = Bytes * 1e-6;
}

void GridResident(benchmark::State& State) {
    for (auto _ : State) {
        const double Before = ResidentBytes();
        SSpatialGrid Grid;
        Grid.Init(LEVEL_BOX, CELL_COUNTS);
        CountBytes(State, ResidentBytes() - Before);
    }
}

void WrittenResident(benchmark::State& State) {
    for (auto _ : State) {
        const double Before = ResidentBytes();
        char* Bytes = WrittenCells();
        CountBytes(State, ResidentBytes() - Before);
        std::free(Bytes);
    }
}

BENCHMARK(GridInit)->Name("grid_init");
BENCHMARK(WriteCells)->Name("write_cells");
BENCHMARK(GridResident)->Name("grid_resident")->UseManualTime()->Iterations(1);
BENCHMARK(WrittenResident)->Name("written_resident")->UseManualTime()->Iterations(1);

// ---- a full level: trees all over a slope

struct SFullLevel {
    std::deque<SSpatialClient> Trees; // before the grid, which must go first
    SSpatialGrid Grid;

    SFullLevel() {
        Grid.Init(LEVEL_BOX, CELL_COUNTS);
        std::mt19937 Engine(1);
        std::uniform_real_distribution<float> Place(-LEVEL_HALF * 0.9f, LEVEL_HALF * 0.9f);
        for (int Count = 0; Count < CLIENTS; ++Count) {
            const float X = Place(Engine);
            const float Y = Place(Engine);
            const Vec3 Foot{X, Y, Y * 0.25f};
            SSpatialClient& Tree = Trees.emplace_back();
            Tree.BBox = {Foot - Vec3{8, 8, 0}, Foot + Vec3{8, 8, 40}};
            AddClient(&Grid, &Tree);
        }
    }
};

Frustum ViewAlongTheSlope() {
    CameraState Camera;
    Camera.Eye = {0, LEVEL_HALF * 0.5f, LEVEL_HALF * 0.125f + 20};
    Camera.Target = {0, 0, 20};
    Camera.Up = {0, 0, 1};
    Camera.Far = 1000;
    M_CameraSet(Camera);
    Frustum View;
    M_CameraFrustum(View);
    return View;
}

// One client crossing the level a unit a step, as the rider does.
void ClientMove(benchmark::State& State) {
    SFullLevel Level;
    SSpatialClient Rider;
    float Y = LEVEL_HALF * 0.9f;
    Rider.BBox = {{-3, Y, Y * 0.25f}, {3, Y + 3, Y * 0.25f + 6}};
    AddClient(&Level.Grid, &Rider);
    for (auto _ : State) {
        Y = Y > -LEVEL_HALF * 0.9f ? Y - 1 : LEVEL_HALF * 0.9f;
        Rider.BBox = {{-3, Y, Y * 0.25f}, {3, Y + 3, Y * 0.25f + 6}};
        RemoveClient(&Level.Grid, &Rider);
        AddClient(&Level.Grid, &Rider);
    }
    RemoveClient(&Level.Grid, &Rider);
}

void QueryTree(benchmark::State& State) {
    const SFullLevel Level;
    const Frustum View = ViewAlongTheSlope();
    GArray<SSpatialClient*> Found;
    for (auto _ : State) {
        Found.Resize(0);
        ++GSpatialStamp;
        QueryClients(Level.Grid.Root, &Found, View.Planes, MAX_QUERY_PLANES);
        benchmark::DoNotOptimize(Found);
    }
    State.counters["found"] = Found.count;
}

void QueryBruteForce(benchmark::State& State) {
    SFullLevel Level;
    const Frustum View = ViewAlongTheSlope();
    GArray<SSpatialClient*> Found;
    for (auto _ : State) {
        Found.Resize(0);
        for (SSpatialClient& Tree : Level.Trees) {
            if (!M_BBoxOutsideFrustum(Tree.BBox, View)) {
                Found.Add(&Tree);
            }
        }
        benchmark::DoNotOptimize(Found);
    }
    State.counters["found"] = Found.count;
}

// What the level's clients make of the memory that Init left untouched.
void LevelResident(benchmark::State& State) {
    for (auto _ : State) {
        const double Before = ResidentBytes();
        const SFullLevel Level;
        CountBytes(State, ResidentBytes() - Before);
    }
}

BENCHMARK(ClientMove)->Name("client_move");
BENCHMARK(QueryTree)->Name("query_tree");
BENCHMARK(QueryBruteForce)->Name("query_brute_force");
BENCHMARK(LevelResident)->Name("level_resident")->UseManualTime()->Iterations(1);

} // namespace
