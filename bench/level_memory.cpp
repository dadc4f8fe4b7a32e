// The resident memory of the game in play, in a level with 4,000 trees, beyond what the GL driver keeps for it.
//
// A software driver keeps textures and targets in this process, and gives memory back when it likes. So two fresh
// processes are compared: one has loaded the level, the other, its twin, has made the same GL objects without a level:
// the textures from the same files, and targets, buffers and a normal map of the same sizes. Both have the same window,
// libraries and programs. What freed memory the allocator can return, it returns before the count. No picture is drawn.
#include "LevelStage.h"
#include "game/GameState.h"
#include "graphics/RenderTarget.h"
#include "graphics/TextureStorage.h"
#include "terrain/Terrain.h"

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr UINT32 LEVEL_INDEX = 1; // the first with 4,000 trees
constexpr int STEPS = 60;         // until the bodies of the trees near the start are there

constexpr const char* LEVEL_PROCESS = "--with-level";
constexpr const char* TWIN_PROCESS = "--with-gl-objects";

double ResidentBytes() {
    long Whole = 0;
    long Resident = 0;
    malloc_trim(0);
    std::FILE* Status = std::fopen("/proc/self/statm", "r");
    if (!Status || std::fscanf(Status, "%ld %ld", &Whole, &Resident) != 2) {
        std::abort();
    }
    std::fclose(Status);
    return static_cast<double>(Resident) * static_cast<double>(sysconf(_SC_PAGESIZE));
}

// ---- the two processes; each prints its resident bytes

void MakePrograms() {
    ShaderGetProgram("PostProcess", "FSQuad");
    ShaderGetProgram("RenderShadow", "RenderShadow");
    ShaderGetProgram("Sky", "Sky");
}

INT32 BufferBytes(UINT32 Buffer) {
    INT32 Bytes = 0;
    glBindBuffer(GL_ARRAY_BUFFER, Buffer);
    glGetBufferParameteriv(GL_ARRAY_BUFFER, GL_BUFFER_SIZE, &Bytes);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    return Bytes;
}

// Standard output is for the result.
void GrowQuietly() {
    const int Output = dup(STDOUT_FILENO);
    dup2(STDERR_FILENO, STDOUT_FILENO);
    GrowTrees();
    std::fflush(stdout);
    dup2(Output, STDOUT_FILENO);
    close(Output);
}

// Behind the bytes come the arguments for the twin.
void RunLevelProcess() {
    MakePrograms();
    SoundInit();
    GrowQuietly();
    SLevelStage::LoadLevel(GLevels[LEVEL_INDEX].File);
    SowTrees(GLevels[LEVEL_INDEX].Trees, 1);
    for (int i = 0; i < STEPS; ++i) {
        GLevel->Update(1.0f / 60);
    }
    glFinish();
    std::printf("%.0f", ResidentBytes());
    const STerrain& Ground = *GLevel->Terrain;
    std::printf(" %d %d %u", BufferBytes(Ground.VertexBuffer), BufferBytes(Ground.IndexBuffer), Ground.Width - 1);
    for (GMap<GString, STextureRec*>::Iterator It(GTextureByName); It.Valid(); It.Next()) {
        std::printf(" %s", It.Key().CStr());
    }
}

void MakeBuffer(INT32 Bytes) {
    UINT32 Buffer = 0;
    const std::vector<UINT8> Content(static_cast<std::size_t>(Bytes));
    glGenBuffers(1, &Buffer);
    glBindBuffer(GL_ARRAY_BUFFER, Buffer);
    glBufferData(GL_ARRAY_BUFFER, Bytes, Content.data(), GL_STATIC_DRAW);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
}

void RunTwinProcess(char** Arguments, int Count) {
    MakePrograms();
    GameRT Overlay;
    Overlay.Create(WINDOW_WIDTH, WINDOW_HEIGHT, false, false, DEPTH_FORMAT_BYTE, true, false);
    Overlay.Bind();
    glClear(GL_COLOR_BUFFER_BIT);
    Overlay.Unbind();
    GameRT Scene;
    Scene.Create(WINDOW_WIDTH, WINDOW_HEIGHT, true, true, DEPTH_FORMAT_BYTE, true, true);
    GameRT Shadow;
    Shadow.Create(2048, 2048, true, true, DEPTH_FORMAT_FLOAT, false, false);
    MakeBuffer(std::atoi(Arguments[0]));
    MakeBuffer(std::atoi(Arguments[1]));
    const INT32 Side = std::atoi(Arguments[2]);
    {
        const std::vector<UINT32> Pixels(static_cast<std::size_t>(Side) * static_cast<std::size_t>(Side));
        TextureFromPixels(Side, Side, Pixels.data());
    }
    for (int i = 3; i < Count; ++i) {
        TextureLoad(Arguments[i]);
    }
    glFinish();
    std::printf("%.0f", ResidentBytes());
}

// ---- the benchmark

std::string Printed(const std::string& Arguments) {
    char Program[PLAT_MAX_PATH];
    PlatExecutablePath(Program, PLAT_MAX_PATH, "");
    std::FILE* Pipe = popen((std::string(Program) + " " + Arguments).c_str(), "r");
    std::string Text;
    char Line[4096];
    while (Pipe && std::fgets(Line, sizeof(Line), Pipe)) {
        Text += Line;
    }
    return Pipe && pclose(Pipe) == 0 ? Text : "";
}

// Memory goes through the table of bars as a time: a second stands for a gigabyte.
void CountBytes(benchmark::State& State, double Bytes) {
    State.SetIterationTime(Bytes * 1e-9);
    State.counters["MB"] = Bytes * 1e-6;
}

void LevelResident(benchmark::State& State) {
    for (auto _ : State) {
        std::istringstream Level(Printed(LEVEL_PROCESS));
        double WithLevel = 0;
        std::string TwinArguments;
        Level >> WithLevel;
        std::getline(Level, TwinArguments);
        const double WithObjects = std::atof(Printed(TWIN_PROCESS + TwinArguments).c_str());
        if (WithLevel <= 0 || WithObjects <= 0) {
            State.SkipWithError("needs a display with OpenGL, and the data");
            return;
        }
        CountBytes(State, WithLevel - WithObjects);
        State.counters["all_MB"] = WithLevel * 1e-6;
    }
}

// The limit, as memory that was written.
void LimitResident(benchmark::State& State) {
    constexpr std::size_t LIMIT = 120'000'000;
    for (auto _ : State) {
        const double Before = ResidentBytes();
        const std::vector<UINT8> Bytes(LIMIT, 1);
        benchmark::DoNotOptimize(Bytes.data());
        CountBytes(State, ResidentBytes() - Before);
    }
}

BENCHMARK(LevelResident)->Name("level_resident")->UseManualTime()->Iterations(1);
BENCHMARK(LimitResident)->Name("limit_resident")->UseManualTime()->Iterations(1);

} // namespace

int main(int Count, char** Arguments) {
    const std::string First = Count > 1 ? Arguments[1] : "";
    if (First == LEVEL_PROCESS || First == TWIN_PROCESS) {
        const SLevelStage Stage;
        if (!Stage.Ready || (First == TWIN_PROCESS && Count < 5)) {
            return EXIT_FAILURE;
        }
        First == LEVEL_PROCESS ? RunLevelProcess() : RunTwinProcess(Arguments + 2, Count - 2);
        return EXIT_SUCCESS;
    }
    benchmark::Initialize(&Count, Arguments);
    benchmark::RunSpecifiedBenchmarks();
    return EXIT_SUCCESS;
}
