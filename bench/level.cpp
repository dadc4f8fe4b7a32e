// One fixed step of the running first level against the four physics steps in it alone, on the same bodies in the same
// state. Needs a display with OpenGL and the data beside the program.
#include "LevelStage.h"

#include <benchmark/benchmark.h>
#include <btBulletDynamicsCommon.h>

namespace {

constexpr float STEP = 1.0f / 60;
constexpr int PHYSICS_STEPS = 4; // in a step of the level

// A level as it is just after loading.
bool StartLevel(benchmark::State& State) {
    static const SLevelStage Stage;
    if (!Stage.Ready) {
        State.SkipWithError("needs a display with OpenGL, and the data");
        return false;
    }
    SLevelStage::LoadLevel();
    return true;
}

void LevelStep(benchmark::State& State) {
    if (!StartLevel(State)) {
        return;
    }
    for (auto _ : State) {
        GLevel->Update(STEP);
    }
}

void BulletSteps(benchmark::State& State) {
    if (!StartLevel(State)) {
        return;
    }
    for (auto _ : State) {
        for (int i = 0; i < PHYSICS_STEPS; ++i) {
            GPhyWorld->stepSimulation(STEP, 5, STEP);
        }
    }
}

} // namespace

BENCHMARK(LevelStep)->Name("level_step");
BENCHMARK(BulletSteps)->Name("bullet_steps");
