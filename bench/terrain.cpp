// A terrain's load against the decoding of its height picture alone. The picture is a grey PNG of 513 by 513 samples
// with hills on a slope. Somebody else holds the four detail textures, so Load finds them in the store and their
// decoding is not measured; all else that it does in the game is: decoding, heights, leaves and tree, body, index
// lists, and vertices and normal map on the GPU.
// Then what the editor does with such a terrain: a step of a stroke with the largest brush, and the rebuild that shows
// it, each against the time that it may take.
#include <GL/glew.h>
#include <IL/il.h>
#include <IL/ilu.h>
#include <SDL/SDL.h>
#include <benchmark/benchmark.h>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <vector>

#include "graphics/TextureStorage.h"
#include "physics/Physics.h"
#include "terrain/Terrain.h"

namespace {

constexpr int SIDE = 513;
constexpr int DETAIL_SIDE = 4;
constexpr const char* PICTURE = "heights.png";

UINT8 HeightAt(int x, int y) {
    const double Hills = 30 * std::sin(x * 0.05) * std::cos(y * 0.04) + 12 * std::sin(x * 0.21 + y * 0.17);
    return static_cast<UINT8>(60 + 140.0 * y / SIDE + Hills);
}

void WriteGreyPng(const char* Path, int Side) {
    std::vector<UINT8> Grey;
    for (int i = 0; i < Side * Side; i++) {
        Grey.push_back(HeightAt(i % Side, i / Side));
    }
    ILuint Image = 0;
    ilGenImages(1, &Image);
    ilBindImage(Image);
    ilTexImage(Side, Side, 1, 1, IL_LUMINANCE, IL_UNSIGNED_BYTE, Grey.data());
    ilSave(IL_PNG, Path);
    ilDeleteImages(1, &Image);
}

// The context, the libraries and a folder with the files; made once and left to the end of the process.
struct SStage {
    bool Ready = false;

    SStage() {
        if (SDL_Init(SDL_INIT_VIDEO) < 0 || !SDL_SetVideoMode(64, 64, 32, SDL_OPENGL) || glewInit() != GLEW_OK) {
            return;
        }
        ilInit();
        iluInit();
        PhyInit();
        char Folder[] = "/tmp/sloperush-bench-XXXXXX";
        if (!mkdtemp(Folder)) {
            return;
        }
        Directory = Folder;
        std::filesystem::current_path(Directory);
        WriteGreyPng(PICTURE, SIDE);
        std::ofstream File("bench.ter");
        File << PICTURE;
        for (const char* Detail : {"a.png", "b.png", "c.png", "d.png"}) {
            WriteGreyPng(Detail, DETAIL_SIDE);
            File << "\n" << Detail;
            TextureLoad(Detail);
        }
        Ready = true;
    }
    ~SStage() {
        std::filesystem::current_path("/");
        std::filesystem::remove_all(Directory);
        PhyFree();
        SDL_Quit();
    }

    std::filesystem::path Directory;
};

bool MakeReady(benchmark::State& State) {
    static const SStage Stage;
    if (!Stage.Ready) {
        State.SkipWithError("needs a display with OpenGL");
    }
    return Stage.Ready;
}

void terrain_load(benchmark::State& State) {
    if (!MakeReady(State)) {
        return;
    }
    STerrain Terrain;
    for (auto _ : State) {
        Terrain.Load("bench.ter");
        glFinish();
        if (Terrain.Width != SIDE) {
            State.SkipWithError("the terrain did not load");
            break;
        }
    }
}

void picture_decode(benchmark::State& State) {
    if (!MakeReady(State)) {
        return;
    }
    for (auto _ : State) {
        ILuint Image = 0;
        ilGenImages(1, &Image);
        ilBindImage(Image);
        const bool Loaded = ilLoadImage(PICTURE);
        benchmark::DoNotOptimize(ilGetData());
        ilDeleteImages(1, &Image);
        if (!Loaded) {
            State.SkipWithError("the picture did not load");
            break;
        }
    }
}

bool LoadTerrain(benchmark::State& State, STerrain& Terrain) {
    if (MakeReady(State)) {
        Terrain.Load("bench.ter");
    }
    return Terrain.Width == SIDE;
}

void brush_stroke(benchmark::State& State) {
    constexpr float LARGEST_BRUSH = 100; // world units
    constexpr float AMOUNT = 0.1f;
    STerrain Terrain;
    if (!LoadTerrain(State, Terrain)) {
        return;
    }
    const Vec3 Centre = Terrain.GetPoint(SIDE / 2, SIDE / 2);
    float Sign = 1;
    for (auto _ : State) {
        Terrain.Raise(Centre, LARGEST_BRUSH, 1.5f, Sign * AMOUNT, true);
        Terrain.Flatten(Centre, LARGEST_BRUSH, 1.5f, AMOUNT, true);
        Sign = -Sign;
    }
    benchmark::DoNotOptimize(Terrain.Heights);
}

void terrain_update(benchmark::State& State) {
    STerrain Terrain;
    if (!LoadTerrain(State, Terrain)) {
        return;
    }
    for (auto _ : State) {
        Terrain.RebuildGeometry();
        Terrain.RebuildTree();
        glFinish();
    }
}

void tenth_of_a_step(benchmark::State& State) {
    for (auto _ : State) {
        State.SetIterationTime(0.1 / 60);
    }
}

void tenth_of_a_second(benchmark::State& State) {
    for (auto _ : State) {
        State.SetIterationTime(0.1);
    }
}

} // namespace

// Software drawing works in threads of its own.
BENCHMARK(terrain_load)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(picture_decode)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(brush_stroke)->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(terrain_update)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(tenth_of_a_step)->Iterations(1)->UseManualTime();
BENCHMARK(tenth_of_a_second)->Iterations(1)->UseManualTime();
