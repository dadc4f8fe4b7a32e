// What the programs that measure a level stand on: the window, the libraries, and the data beside the program.
#pragma once

#include <GL/glew.h>

#include "foundation/Screen.h"
#include "game/Wood.h"
#include "graphics/DrawingState.h"
#include "graphics/ShaderLib.h"
#include "physics/Physics.h"
#include "platform/Platform.h"
#include "sound/Sound.h"
#include "world/GameLevel.h"

#include <IL/il.h>
#include <IL/ilu.h>
#include <SDL/SDL.h>

#include <filesystem>

constexpr const char* MEASURED_LEVEL = "Data/Levels/Level1.wlm";

// Made once and left to the end of the process.
struct SLevelStage {
    bool Ready = false;

    SLevelStage() {
        if (!OpenWindow() || !EnterDataFolder()) {
            return;
        }
        SetDrawingState();
        ilInit();
        iluInit();
        ShaderLibInit();
        PhyInit();
        Ready = true;
    }
    ~SLevelStage() {
        if (Ready) {
            DropLevel();
            PhyFree();
            ShaderLibFree();
        }
        SDL_Quit();
    }
    SLevelStage(const SLevelStage&) = delete;
    SLevelStage& operator=(const SLevelStage&) = delete;

    static void LoadLevel(const char* Path = MEASURED_LEVEL) {
        DropLevel();
        GLevel = new CLevel;
        GLevel->LoadSourceLevel(Path);
    }
    static void DropLevel() {
        delete GLevel;
        GLevel = nullptr;
    }

private:
    static bool OpenWindow() {
        return SDL_Init(SDL_INIT_VIDEO) == 0 && SDL_SetVideoMode(WINDOW_WIDTH, WINDOW_HEIGHT, 32, SDL_OPENGL) &&
               glewInit() == GLEW_OK;
    }
    static bool EnterDataFolder() {
        char Program[PLAT_MAX_PATH];
        PlatExecutablePath(Program, PLAT_MAX_PATH, "");
        std::error_code Error;
        std::filesystem::current_path(std::filesystem::path(Program).parent_path() / "SlopeRush", Error);
        return !Error;
    }
};

// The same with the tree that all woods are sown of, and with sound where there is a device.
struct SGameStage : SLevelStage {
    SGameStage() {
        if (Ready) {
            SoundInit();
            GrowTrees();
        }
    }
    ~SGameStage() {
        if (Ready) {
            DropLevel();
            ReleaseTrees();
            SoundShutdown();
        }
    }
};
