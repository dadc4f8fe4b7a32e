// The frame list of 4,000 clients of a two-part mesh, of which some 400 are in range, against the plane query alone and
// a copy of the records. Needs a display with OpenGL and the data beside the program, since it stands in a level.
#include "LevelStage.h"

#include "scene/MeshClient.h"

#include <benchmark/benchmark.h>
#include <memory>
#include <random>
#include <vector>

namespace {

constexpr UINT32 CLIENTS = 4000;
constexpr float SIDE = 1560; // of the square that they stand in, with the eye at its middle

// The mesh is never drawn, so it needs no buffers.
struct SWood {
    SMesh Mesh;
    std::vector<std::unique_ptr<SMeshClient>> Clients;

    SWood() {
        Mesh.Parts.Resize(2);
        Mesh.Parts[0].PS = Mesh.Parts[0].VS = "Mesh";
        Mesh.Parts[1].PS = Mesh.Parts[1].VS = "Foliage";
        std::mt19937 Random(1);
        std::uniform_real_distribution<float> Place(-SIDE / 2, SIDE / 2);
        for (UINT32 i = 0; i < CLIENTS; ++i) {
            SMeshClient& Client = *Clients.emplace_back(std::make_unique<SMeshClient>());
            Client.Mesh = &Mesh;
            Client.LocalBox = {{-8, -8, 0}, {8, 8, 60}};
            Client.SetPosition({Place(Random), Place(Random), 0});
            Client.UpdateBounds(true, false);
            GLevel->AddSpatialClient(&Client);
        }
    }
    ~SWood() {
        for (const auto& Client : Clients) {
            GLevel->RemoveSpatialClient(Client.get());
        }
    }
};

bool StartWood(benchmark::State& State) {
    static const SLevelStage Stage;
    if (!Stage.Ready) {
        State.SkipWithError("needs a display with OpenGL, and the data");
        return false;
    }
    SLevelStage::LoadLevel();
    GCamera = CameraState();
    GCamera.Eye = GLodCameraPos = {0, 0, 30};
    GCamera.Target = {0, -1, 30};
    GCamera.Far = 1000;
    return true;
}

void BuildList(benchmark::State& State) {
    if (!StartWood(State)) {
        return;
    }
    const SWood Wood;
    for (auto _ : State) {
        GLevel->BuildDrawList(false, 0.5f, false, false);
    }
    State.counters["records"] = GLevel->SceneRecords.count;
    State.counters["visible"] = GLevel->VisibleClients.count;
}

void QueryAndCopy(benchmark::State& State) {
    if (!StartWood(State)) {
        return;
    }
    const SWood Wood;
    GLevel->BuildDrawList(false, 0.5f, false, false);
    const GArray<SRenderData> Records = GLevel->SceneRecords;
    Frustum View;
    M_CameraFrustum(View);
    for (auto _ : State) {
        ++GSpatialStamp;
        GLevel->VisibleClients.Resize(0);
        GLevel->SceneRecords.Resize(0);
        QueryMeshClients(GLevel->Grid->Root, &GLevel->VisibleClients, View.Planes, MAX_QUERY_PLANES);
        for (const SRenderData& Record : Records) {
            GLevel->SceneRecords.Add(Record);
        }
        benchmark::ClobberMemory();
    }
}

} // namespace

BENCHMARK(BuildList)->Name("build_list");
BENCHMARK(QueryAndCopy)->Name("query_and_copy");
