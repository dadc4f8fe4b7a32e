#include "shell/Application.h"

#include "foundation/Diagnostics.h"
#include "foundation/MemPool.h"
#include "game/IGame.h"
#include "graphics/DrawingState.h"
#include "graphics/ShaderLib.h"
#include "gui/Gui.h"
#include "input/Input.h"
#include "physics/Physics.h"
#include "platform/Platform.h"
#include "scene/GLFont.h"
#include "sound/Sound.h"

#include <GL/glew.h>
#include <IL/il.h>
#include <IL/ilu.h>
#include <SDL/SDL.h>
#include <algorithm>
#include <cstring>

namespace {

constexpr int WINDOW_DEPTH = 32; // bits per pixel

constexpr double STEP = 1.0 / 60.0; // seconds; the accumulator needs it more exactly than the game does
constexpr float GAME_STEP = 1.0f / 60.0f;

// A longer turn than this runs in slow motion, so that a slow machine does not fall behind without end.
constexpr double LONGEST_TURN = 1.0 / 30.0; // seconds

constexpr double MILLISECONDS_PER_SECOND = 1000.0;

double GetTime() {
    return GPlatform.Ticks() / MILLISECONDS_PER_SECOND;
}

// Position of the last Character in Text, or the largest number.
UINT32 FindLast(const GString& Text, char Character) {
    const char* Found = std::strrchr(Text.CStr(), Character);
    return Found ? static_cast<UINT32>(Found - Text.CStr()) : 0xFFFFFFFFu;
}

void EnterDataFolder(int ArgCount, char** Args) {
    char Executable[PLAT_MAX_PATH];
    PlatExecutablePath(Executable, PLAT_MAX_PATH, ArgCount > 0 ? Args[0] : "");
    // Without the folder the first file that is missing says so, with its name.
    PlatChangeDir(DataFolder(Executable, GameName).CStr());
}

void OpenWindow() {
    LogPrintf("Starting the game...\n");
    // GL attributes can be set only while the video subsystem is up.
    if (SDL_Init(SDL_INIT_TIMER | SDL_INIT_VIDEO | SDL_INIT_NOPARACHUTE) < 0) {
        FatalError("! SDL Initialization error !\nSDL says: %s\n", SDL_GetError());
    }
    LogPrintf("SDL successfully initialized\n");
    SDL_EnableUNICODE(1);
    SDL_WM_SetCaption(GameName, GameName);
    SDL_GL_SetAttribute(SDL_GL_SWAP_CONTROL, 0);
    SDL_GL_SetAttribute(SDL_GL_DOUBLEBUFFER, 1);
    if (!SDL_SetVideoMode(WINDOW_WIDTH, WINDOW_HEIGHT, WINDOW_DEPTH, SDL_OPENGL)) {
        LogPrintf("! Video mode error !\n");
        FatalError("! SDL Video mode error !\nSDL says: %s\n", SDL_GetError());
    }
    if (glewInit() != GLEW_OK) {
        LogPrintf("! OpenGL Extension error !\n");
        FatalError("! OpenGL Extension error !\n");
    }
}

// Who does not want to go on without sound leaves as through the menu: everything comes up and is taken down in order,
// without a turn of the loop.
void StartSound() {
    if (!SoundInit() && GSoundRefused) {
        GQuit = 1;
    }
}

void StartServices() {
    OpenWindow();
    ilInit();
    iluInit();
    ShaderLibInit();
    StartSound();
    PhyInit();
    SetDrawingState();
    GFont = new GLFont(1.0f);
}

void StopServices() {
    delete GFont;
    GFont = nullptr;
    GuiFree();
    PhyFree();
    SoundShutdown();
    ShaderLibFree();
    MemPoolDump(GMemPool);
    MemPoolFree(GMemPool);
    GMemPool = nullptr;
    SDL_Quit();
    LogPrintf("It ends here...\n");
}

void RunStep(double Time) {
    InputBeginStep();
    InputPump();
    if (GWarpMouse) {
        SDL_WarpMouse(WINDOW_CENTRE_X, WINDOW_CENTRE_Y);
        GLastMousePos = {WINDOW_CENTRE_X, WINDOW_CENTRE_Y};
    }
    GGame->Update(static_cast<float>(Time), GAME_STEP);
    SoundUpdate(GAME_STEP);
}

// What the loop knows of itself, over the picture's upper left corner.
void DrawStatus(double Now, double Delta, double BlendDelta, UINT32 FPS) {
    constexpr UINT32 LONGEST = 512; // characters
    constexpr UINT32 WHITE = 0xFFFFFFFFu;
    constexpr float SIZE = 14.0f;
    UseGuiProgram();
    GString Text;
    Text.Format(LONGEST, "Time: %f\nDelta: %f\nBlendDelta: %f\nFPS: %d", static_cast<float>(Now),
                static_cast<float>(Delta), static_cast<float>(BlendDelta), FPS);
    // The game leaves blending off behind its last draw.
    glEnable(GL_BLEND);
    GFont->Draw(Text.CStr(), WHITE, 0, 0, WINDOW_WIDTH, 0, WINDOW_HEIGHT, SIZE);
    glDisable(GL_BLEND);
}

// Counts turns; the last finished second is what one reads.
struct SFrameCounter {
    explicit SFrameCounter(double Now) : Mark(Now) {}

    void Count(double Now) {
        Turns += 1;
        if (Now - Mark > 1.0) {
            FPS = Turns;
            Turns = 0;
            Mark += 1.0;
        }
    }

    double Mark; // start of the second being counted
    UINT32 Turns = 0;
    UINT32 FPS = 0;
};

struct SLoop {
    double SimTime = GetTime(); // the clock at the last turn; within a turn the time of the step
    double Accumulator = 0.0;   // seconds not yet simulated
    SFrameCounter Frames = SFrameCounter(SimTime);

    void Turn();
};

void SLoop::Turn() {
    const double Now = GetTime();
    const double Delta = std::min(Now - SimTime, LONGEST_TURN);
    Accumulator += Delta;
    while (Accumulator > STEP) {
        RunStep(SimTime);
        Accumulator -= STEP;
        SimTime += STEP;
    }
    const double BlendDelta = Accumulator / STEP;
    GGame->Render(static_cast<float>(BlendDelta));
    Frames.Count(Now);
    // What the steps added is dropped: the next turn starts from the clock.
    SimTime = Now;
    DrawStatus(Now, Delta, BlendDelta, Frames.FPS);
    SDL_GL_SwapBuffers();
}

void RunGame() {
    // The clock is read before Init, so the first turn covers the loading, clamped like any other.
    SLoop Loop;
    GGame->Init();
    while (!GQuit) {
        Loop.Turn();
    }
    GGame->Free();
}

} // namespace

GString DataFolder(const char* ExecutablePath, const char* Name) {
    GString Folder = ExecutablePath;
    const UINT32 Separator = std::min(FindLast(Folder, '\\'), FindLast(Folder, '/'));
    // Without a separator the sum wraps to 0, and the folder is one below the working directory.
    Folder.Left(Separator + 1);
    Folder += Name;
    Folder += "\\";
    return Folder;
}

int RunApplication(int ArgCount, char** Args, GameFactory Factory) {
    InputReset();
    std::memset(GameName, 0, sizeof(GameName));
    if (!Factory()) {
        return EXIT_NO_GAME;
    }
    EnterDataFolder(ArgCount, Args);
    GMemPool = MemPoolCreate();
    StartServices();
    RunGame();
    StopServices();
    delete GGame;
    GGame = nullptr;
    return 0;
}
