// One fixed step of a level with 4,000 trees and the rider moving among them, against the four physics steps alone, on
// the same bodies in the same state; and the time from an empty place to the first picture of such a level. Needs a
// display with OpenGL and the data beside the program.
#include "LevelStage.h"

#include "game/GameState.h"
#include "game/Rider.h"
#include "input/Input.h"

#include <benchmark/benchmark.h>
#include <btBulletDynamicsCommon.h>

#include <chrono>

namespace {

constexpr float STEP = 1.0f / 60;
constexpr int PHYSICS_STEPS = 4; // in a step of the level
constexpr int RIDE_STEPS = 1500; // measured: the rider is well under way for all of them
constexpr int STEPS_BEFORE = 120;
constexpr UINT32 LEVEL_INDEX = 1; // the first with 4,000 trees
constexpr UINT32 SEED = 1;

double Now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

bool IsReady(benchmark::State& State) {
    static const SGameStage Stage;
    if (!Stage.Ready) {
        State.SkipWithError("needs a display with OpenGL, and the data");
    }
    return Stage.Ready;
}

void LoadWood() {
    SLevelStage::LoadLevel(GLevels[LEVEL_INDEX].File);
    SowTrees(GLevels[LEVEL_INDEX].Trees, SEED);
    GGameState = GAME_PLAYING;
}

void PhysicsSteps() {
    for (int i = 0; i < PHYSICS_STEPS; ++i) {
        GPhyWorld->stepSimulation(STEP, 5, STEP);
    }
}

// A ride with the push key held; Step returns the seconds that count.
template <class StepOnce>
void Ride(benchmark::State& State, StepOnce&& Step) {
    if (!IsReady(State)) {
        return;
    }
    LoadWood();
    GGameBinds[BIND_MOVE_FWD].State = KEY_HELD;
    for (int i = 0; i < STEPS_BEFORE; ++i) {
        GLevel->Update(STEP);
    }
    for (auto _ : State) {
        State.SetIterationTime(Step());
    }
    GGameBinds[BIND_MOVE_FWD].State = KEY_IDLE;
    State.counters["bodies"] = GPhyWorld->getNumCollisionObjects();
}

void LevelStep(benchmark::State& State) {
    Ride(State, [] {
        const double Start = Now();
        GLevel->Update(STEP);
        return Now() - Start;
    });
}

void BulletSteps(benchmark::State& State) {
    Ride(State, [] {
        const double Start = Now();
        PhysicsSteps();
        const double Time = Now() - Start;
        for (CEntity* Entity : GLevel->Entities) {
            Entity->Update(STEP);
        }
        return Time;
    });
}

void FirstPicture(benchmark::State& State) {
    if (!IsReady(State)) {
        return;
    }
    double Loading = 0;
    double Picture = 0;
    for (auto _ : State) {
        const double Start = Now();
        LoadWood();
        GLevel->Update(STEP);
        const double Loaded = Now();
        GLevel->Render(1);
        glFinish();
        Loading += Loaded - Start;
        Picture += Now() - Loaded;
    }
    const double Count = static_cast<double>(State.iterations());
    State.counters["loading_ms"] = 1000 * Loading / Count;
    State.counters["picture_ms"] = 1000 * Picture / Count;
}

} // namespace

BENCHMARK(LevelStep)->Name("level_step")->UseManualTime()->Iterations(RIDE_STEPS);
BENCHMARK(BulletSteps)->Name("bullet_steps")->UseManualTime()->Iterations(RIDE_STEPS);
BENCHMARK(FirstPicture)->Name("first_picture")->UseRealTime()->Unit(benchmark::kMillisecond);
