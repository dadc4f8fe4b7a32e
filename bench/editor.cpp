// The editor over 5,000 placed rocks, all of them in view: selecting them, moving them with the transform tool, drawing
// their boxes, saving and loading them; each against the least that any way of doing it takes. Needs a display with
// OpenGL and the data beside the program.
#include "LevelStage.h"

#include "editor/MeshMenu.h"
#include "editor/TransformMenu.h"
#include "input/Input.h"
#include "scene/DrawHelpers.h"
#include "world/MeshEntity.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <random>

namespace {

constexpr UINT32 ROCKS = 5000;
constexpr float STEP = 1.0f / 60;
constexpr const char* ROCK_MESH = "Data/Models/Boulder.mdd";
constexpr const char* SAVED_LEVEL = "Data/Levels/_TmpSlopeRush.wlm";
constexpr float EYE_HEIGHT = 900;
constexpr float FIELD = 300; // half the side of the square of rocks, within the picture from that height

void PlaceRocks() {
    std::mt19937 Random(1);
    std::uniform_real_distribution<float> Place(-FIELD, FIELD);
    std::uniform_real_distribution<float> Size(0.5f, 2);
    for (UINT32 i = 0; i < ROCKS; ++i) {
        GProperties Props;
        Props["MeshName"] = ROCK_MESH;
        Props["Position"].Format(127, "%f;%f;%f", Place(Random), Place(Random), Size(Random) * 100);
        Props["Scale"].Format(127, "%f;%f;%f", Size(Random), Size(Random), Size(Random));
        GLevel->AddEntity(CreateEntity("StaticMesh", Props));
    }
}

// From above, so that the whole field is in the picture.
void LookDown() {
    GCamera = CameraState();
    GCamera.Eye = GLodCameraPos = {0, 0, EYE_HEIGHT};
    GCamera.Target = {0, 0, 0};
    GCamera.Up = {0, 1, 0};
    GCamera.Aspect = 16.0f / 9;
    GCamera.Far = 2 * EYE_HEIGHT;
    M_CameraLookAt(GViewMatrix);
    M_Mat4Perspective(GProjectionMatrix, 1.5707964f, GCamera.Aspect, GCamera.Near, GCamera.Far);
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

void CountPerClient(benchmark::State& State, UINT32 Clients) {
    State.counters["clients"] = Clients;
    State.counters["per_client"] =
        benchmark::Counter(Clients, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void SelectAll(benchmark::State& State) {
    if (!StartField(State)) {
        return;
    }
    Frustum View;
    M_CameraFrustum(View);
    for (auto _ : State) {
        GLevel->SelectInFrustum(0, View);
    }
    CountPerClient(State, GLevel->Selection.count);
}
BENCHMARK(SelectAll)->Name("select_all");

} // namespace
