// Whole pictures of each level as it stands two seconds after its start, with all its trees, and the passes of the
// first level's picture. The counter is pictures a second. Needs a display with OpenGL and the data beside the program.
#include "LevelStage.h"

#include "bench/GlCalls.h"
#include "game/GameState.h"
#include "game/Wood.h"
#include "terrain/Terrain.h"

#include <benchmark/benchmark.h>

namespace {

constexpr float STEP = 1.0f / 60;
constexpr int STEPS_BEFORE = 120;
constexpr UINT32 SEED = 1;

// Brings the level up and draws two pictures, so that every shader is compiled.
bool StartLevel(benchmark::State& State, UINT32 Index) {
    static const SGameStage Stage;
    if (!Stage.Ready) {
        State.SkipWithError("needs a display with OpenGL, and the data");
        return false;
    }
    SLevelStage::LoadLevel(GLevels[Index].File);
    SowTrees(GLevels[Index].Trees, SEED);
    GGameState = GAME_PLAYING;
    for (int i = 0; i < STEPS_BEFORE; ++i) {
        GLevel->Update(STEP);
    }
    M_CameraSet(GCameraNow);
    for (int i = 0; i < 2; ++i) {
        GLevel->Render(1);
    }
    glFinish();
    return true;
}

// What one more picture asks of OpenGL. Triangles are those of ground and meshes.
void CountCalls(benchmark::State& State) {
    const SGlRecording Recorded;
    GLevel->Render(1);
    INT32 Shadow = 0;
    INT32 Camera = 0;
    for (const SGlStep& Step : Recorded.Steps) {
        if (Step.State.at(GL_ELEMENT_ARRAY_BUFFER_BINDING) != 0) {
            const UINT32 Target = static_cast<UINT32>(Step.State.at(GL_FRAMEBUFFER_BINDING));
            (Target == GLevel->ShadowRT.FBO ? Shadow : Camera) += Step.Vertices / 3;
        }
    }
    State.counters["gl_calls"] = Recorded.Calls;
    State.counters["repeats"] = static_cast<double>(Recorded.Repeats.size());
    State.counters["shadow_triangles"] = Shadow;
    State.counters["triangles"] = Camera;
}

void Picture(benchmark::State& State) {
    if (!StartLevel(State, static_cast<UINT32>(State.range(0)) - 1)) {
        return;
    }
    for (auto _ : State) {
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        GLevel->Render(1);
        glFinish();
    }
    State.counters["pictures"] = benchmark::Counter(1, benchmark::Counter::kIsIterationInvariantRate);
    State.counters["meshes"] = GLevel->VisibleClients.count;
    CountCalls(State);
}

// One pass of the first level's picture.
template <class DrawPass>
void Pass(benchmark::State& State, DrawPass&& Draw) {
    if (!StartLevel(State, 0)) {
        return;
    }
    for (auto _ : State) {
        State.PauseTiming();
        GLevel->SceneRT.Bind();
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        GLevel->SceneRT.Unbind();
        GLevel->BuildDrawList(false, 1, false, false);
        M_CameraLookAt(GViewMatrix);
        M_CameraPerspective(GProjectionMatrix);
        GLevel->SetSunLight();
        glFinish();
        State.ResumeTiming();
        Draw();
        glFinish();
    }
}

void Shadow(benchmark::State& State) {
    Pass(State, [] { GLevel->RenderSunShadow(1); });
}

void Ground(benchmark::State& State) {
    Pass(State, [] {
        GLevel->SceneRT.Bind();
        GLevel->Terrain->Draw();
        GLevel->SceneRT.Unbind();
    });
}

// Without the ground behind them, so a little dearer than in the picture.
void Meshes(benchmark::State& State) {
    Pass(State, [] {
        GLevel->SceneRT.Bind();
        GLevel->DrawList(false, false, false);
        GLevel->SceneRT.Unbind();
    });
}

void PostProcess(benchmark::State& State) {
    Pass(State, [] { GLevel->PostProcess(); });
}

} // namespace

BENCHMARK(Picture)->Name("picture")->DenseRange(1, 5)->MeasureProcessCPUTime()->UseRealTime()->Unit(
    benchmark::kMillisecond);
BENCHMARK(Shadow)->Name("pass_shadow")->MeasureProcessCPUTime()->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(Ground)->Name("pass_ground")->MeasureProcessCPUTime()->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(Meshes)->Name("pass_meshes")->MeasureProcessCPUTime()->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(PostProcess)->Name("pass_post")->MeasureProcessCPUTime()->UseRealTime()->Unit(benchmark::kMillisecond);
