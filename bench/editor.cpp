// The editor over 5,000 placed rocks, all of them in view: selecting them, moving them with the transform tool, drawing
// their boxes, each against the least that it takes; saving and loading them, against a second. Needs a display with
// OpenGL and the data beside the program.
#include "LevelStage.h"

#include "editor/MeshMenu.h"
#include "editor/TransformMenu.h"
#include "scene/DrawHelpers.h"
#include "world/MeshEntity.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <random>

namespace {

constexpr UINT32 ROCKS = 5000;
constexpr float STEP = 1.0f / 60;
constexpr const char* SAVED_LEVEL = "Data/Levels/_TmpSlopeRush.wlm";
constexpr float EYE_HEIGHT = 900;
constexpr float FIELD = 300; // half the side of the square of rocks, within the picture from that height

void PlaceRocks() {
    constexpr UINT32 LENGTH = 127;
    std::mt19937 Random(1);
    std::uniform_real_distribution<float> Place(-FIELD, FIELD);
    std::uniform_real_distribution<float> Size(0.5f, 2);
    for (UINT32 i = 0; i < ROCKS; ++i) {
        GProperties Props;
        Props["MeshName"] = "Data/Models/Boulder.mdd";
        Props["Position"].Format(LENGTH, "%f;%f;%f", Place(Random), Place(Random), 50 * Size(Random));
        Props["Scale"].Format(LENGTH, "%f;%f;%f", Size(Random), Size(Random), Size(Random));
        GLevel->AddEntity(CreateEntity("StaticMesh", Props));
    }
}

void LookDown() {
    constexpr float RIGHT_ANGLE = 1.5707964f;
    GCamera = CameraState();
    GCamera.Eye = GLodCameraPos = {0, 0, EYE_HEIGHT};
    GCamera.Target = {0, 0, 0};
    GCamera.Up = {0, 1, 0};
    GCamera.Aspect = 16.0f / 9;
    GCamera.Far = 2 * EYE_HEIGHT;
    M_CameraLookAt(GViewMatrix);
    M_Mat4Perspective(GProjectionMatrix, RIGHT_ANGLE, GCamera.Aspect, GCamera.Near, GCamera.Far);
}

bool StartField(benchmark::State& State) {
    static const SLevelStage Stage;
    if (!Stage.Ready) {
        State.SkipWithError("needs a display with OpenGL, and the data");
        return false;
    }
    SLevelStage::LoadLevel();
    PlaceRocks();
    GLevel->EditMode = 1;
    LookDown();
    return true;
}

void CountClients(benchmark::State& State, UINT32 Count) {
    State.counters["clients"] = Count;
    State.counters["per_client"] =
        benchmark::Counter(Count, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

// The placed rocks among the level's own entities.
template <class Visit>
void ForEachRock(Visit&& See) {
    for (UINT32 i = GLevel->Entities.count - ROCKS; i < GLevel->Entities.count; ++i) {
        See(*static_cast<CMeshEntity*>(GLevel->Entities[i]));
    }
}

// ---- selecting

void SelectAll(benchmark::State& State) {
    if (!StartField(State)) {
        return;
    }
    Frustum View;
    M_CameraFrustum(View);
    for (auto _ : State) {
        GLevel->SelectInFrustum(0, View);
    }
    CountClients(State, GLevel->Selection.count);
}

void QueryAll(benchmark::State& State) {
    if (!StartField(State)) {
        return;
    }
    Frustum View;
    M_CameraFrustum(View);
    GArray<SSpatialClient*> Found;
    for (auto _ : State) {
        Found.Resize(0);
        ++GSpatialStamp;
        QueryClients(GLevel->Grid->Root, &Found, View.Planes, MAX_QUERY_PLANES);
        benchmark::DoNotOptimize(Found.Data);
    }
    CountClients(State, Found.count);
}

// ---- moving: a step to and fro, as a drag has it

void MoveAll(benchmark::State& State) {
    if (!StartField(State)) {
        return;
    }
    SMenu_Transform Menu(GLevel, nullptr, nullptr, nullptr);
    ForEachRock([&](CMeshEntity& Rock) { Menu.Clients.Add(&Rock.Client); });
    Menu.Prepare();
    float Way = 5;
    for (auto _ : State) {
        Menu.Centre.x += Way;
        Way = -Way;
        Menu.MoveClients();
        ForEachRock([](CMeshEntity& Rock) { Rock.Update(STEP); });
    }
    CountClients(State, Menu.Clients.count);
}

void BoundsAndGrid(benchmark::State& State) {
    if (!StartField(State)) {
        return;
    }
    float Way = 5;
    for (auto _ : State) {
        ForEachRock([&](CMeshEntity& Rock) {
            Rock.Client.Pos.x += Way;
            Rock.Client.UpdateBounds(false, false);
            GLevel->MoveSpatialClient(&Rock.Client);
        });
        Way = -Way;
    }
    CountClients(State, ROCKS);
}

// ---- boxes, half of them of selected rocks

void DrawBoxes(benchmark::State& State) {
    if (!StartField(State)) {
        return;
    }
    SMenu_Mesh Menu(GLevel);
    Menu.DrawAABB = 1;
    UINT32 Number = 0;
    ForEachRock([&](CMeshEntity& Rock) {
        if (++Number % 2) {
            GLevel->Selection.Add(&Rock.Client);
        }
    });
    for (auto _ : State) {
        Menu.Draw3D();
        glFinish();
    }
    CountClients(State, Menu.Visible.count);
}

void PlainBoxes(benchmark::State& State) {
    if (!StartField(State)) {
        return;
    }
    for (auto _ : State) {
        UseColorProgram();
        ForEachRock([](CMeshEntity& Rock) { DrawBoxLines(Rock.Client.BBox, 0xFF80C0FFu); });
        glFinish();
    }
    CountClients(State, ROCKS);
}

// ---- files

void SaveAndLoad(benchmark::State& State) {
    if (!StartField(State)) {
        return;
    }
    for (auto _ : State) {
        GLevel->SaveTemporaryLevel();
        SLevelStage::LoadLevel(SAVED_LEVEL);
    }
    CountClients(State, GLevel->Entities.count);
    std::remove(SAVED_LEVEL);
}

void Save(benchmark::State& State) {
    if (!StartField(State)) {
        return;
    }
    for (auto _ : State) {
        GLevel->SaveTemporaryLevel();
    }
    CountClients(State, GLevel->Entities.count);
    std::remove(SAVED_LEVEL);
}

void ASecond(benchmark::State& State) {
    for (auto _ : State) {
        State.SetIterationTime(1);
    }
}

} // namespace

BENCHMARK(SelectAll)->Name("select_all");
BENCHMARK(QueryAll)->Name("query_all");
BENCHMARK(MoveAll)->Name("move_all");
BENCHMARK(BoundsAndGrid)->Name("bounds_and_grid");
BENCHMARK(DrawBoxes)->Name("draw_boxes")->MeasureProcessCPUTime();
BENCHMARK(PlainBoxes)->Name("plain_boxes")->MeasureProcessCPUTime();
BENCHMARK(Save)->Name("save_rocks")->UseRealTime();
BENCHMARK(SaveAndLoad)->Name("save_and_load")->UseRealTime();
BENCHMARK(ASecond)->Name("a_second")->UseManualTime()->Iterations(1);
