// Shows models, the wood and the rider on a level's slope, in the real engine.
//
//     showcase [--level FILE.wlm] [--trees N] [--rider] [--play NAME] [--at X,Y] [--distance D] [--height H]
//              [--turn DEGREES] [--out FILE.png] [--time SECONDS] [MODEL.mdd ...]
//
// The camera turns around the place; arrow keys turn it, w and s move it nearer and farther, 1 to 5 play the rider's
// animations, Escape ends. With --out it takes one picture of the window after the given time (in steps of 1/60 second)
// and ends. A model may be "[tree00]". Needs a display and the data beside the executable.
#include "Stage.h"

#include "foundation/Diagnostics.h"
#include "foundation/Screen.h"
#include "game/IGame.h"
#include "game/Wood.h"
#include "input/Input.h"
#include "platform/Platform.h"
#include "shell/Application.h"
#include "world/GameLevel.h"

#include <GL/glew.h>
#include <IL/il.h>
#include <SDL/SDL.h>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace {

constexpr float TURN_SPEED = 60 * DEGREES; // a second
constexpr float ZOOM = 1.02f;              // a step
constexpr float STEP = 1.0f / 60;

struct SWishes {
    GString Level = "Data/Levels/Level1.wlm";
    GArray<GString> Models;
    UINT32 Trees = 0;
    bool Rider = false;
    GString Play;
    Vec3 Place = {0, 2600, 0};
    float Distance = 40;
    float Height = 20; // of the eye above the place
    float Turn = 0;    // 0 looks down the slope
    GString Picture;   // empty: stays until Escape
    float Time = 1;
};

SWishes Wishes;

class CShowcase : public IGame {
public:
    void Init() override;
    void Free() override;
    void Update(float Time, float Delta) override;
    void Render(float BlendDelta) override;

private:
    void Prepare();
    void MoveCamera();
    void TakePicture() const;

    CStage* Stage = nullptr;
    Vec3 Centre;
};

bool IsDown(UINT32 Key) {
    return GKeys[Key] != 0;
}

void CShowcase::Init() {
    GrowTrees();
    GLevel = new CLevel;
    GLevel->LoadSourceLevel(Wishes.Level.CStr());
    // Only the picture is wanted of the level, not its free camera.
    for (CEntity* Entity : GLevel->ActiveEntities) {
        if (std::strcmp(Entity->Class->Name, "FPSCamera") == 0) {
            GLevel->RemoveEntity(Entity);
            break;
        }
    }
    GLevel->Update(STEP);
    Stage = new CStage;
    Centre = OnGround(Wishes.Place);
    Stage->AddModels(Wishes.Models, Centre);
    Stage->SowTrees(Wishes.Trees);
    if (Wishes.Rider) {
        Stage->AddRider(Wishes.Place);
    }
    GCamera = CameraState();
    GCamera.Aspect = static_cast<float>(WINDOW_WIDTH) / WINDOW_HEIGHT;
    GCamera.Fov = Wishes.Distance > 60 ? 60 : 75;
    GCamera.Near = 2;
    GCamera.Far = GLevel->Params.ClipDist;
    if (!Wishes.Picture.Empty()) {
        Prepare();
    }
}

// A picture shows the same moment on every machine: the steps are taken here, not as the clock runs.
void CShowcase::Prepare() {
    for (float Time = 0; Stage->Rider && Time < 1; Time += STEP) {
        Stage->Rider->Step(STEP);
    }
    if (Stage->Rider && !Wishes.Play.Empty()) {
        Stage->Rider->Play(Wishes.Play.CStr());
    }
    for (float Time = 0; Stage->Rider && Time < Wishes.Time; Time += STEP) {
        Stage->Rider->Step(STEP);
    }
}

void CShowcase::Free() {
    delete Stage;
    delete GLevel;
    GLevel = nullptr;
    ReleaseTrees();
}

void CShowcase::Update(float, float Delta) {
    if (!Wishes.Picture.Empty()) {
        return;
    }
    Wishes.Turn += (IsDown(SDLK_LEFT) - IsDown(SDLK_RIGHT)) * TURN_SPEED * Delta;
    Wishes.Height += static_cast<float>(IsDown(SDLK_UP) - IsDown(SDLK_DOWN));
    Wishes.Distance *= IsDown('w') ? 1 / ZOOM : IsDown('s') ? ZOOM : 1;
    GQuit = GQuit || IsDown(SDLK_ESCAPE);
    const char* const Names[] = {"idle", "left", "right", "cut0", "cut1"};
    for (UINT32 i = 0; Stage->Rider && i < std::size(Names); ++i) {
        if (GKeys['1' + i] && !GLastKeys['1' + i]) {
            Stage->Rider->Play(Names[i]);
        }
    }
    if (Stage->Rider) {
        Stage->Rider->Step(Delta);
    }
}

void CShowcase::MoveCamera() {
    const Vec3 Back = {std::sin(Wishes.Turn), std::cos(Wishes.Turn), 0};
    GCamera.Eye = Centre + Back * Wishes.Distance + Vec3{0, 0, Wishes.Height};
    const Vec3 Ground = OnGround(GCamera.Eye);
    GCamera.Eye.z = std::max(GCamera.Eye.z, Ground.z + 4);
    GCamera.Target = Centre + Vec3{0, 0, 6 + Wishes.Distance * 0.1f};
}

void CShowcase::Render(float BlendDelta) {
    MoveCamera();
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    GLevel->Render(Wishes.Picture.Empty() ? BlendDelta : 0);
    if (!Wishes.Picture.Empty()) {
        TakePicture();
        GQuit = 1;
    }
}

// Several pictures are timed, since the first one compiles shaders.
void CShowcase::TakePicture() const {
    constexpr int TIMED = 5;
    glFinish();
    const auto Start = std::chrono::steady_clock::now();
    for (int i = 0; i < TIMED; ++i) {
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        GLevel->Render(0);
        glFinish();
    }
    const std::chrono::duration<double, std::milli> Took = std::chrono::steady_clock::now() - Start;
    LogPrintf("ground at %.1f, %.1f: %.1f; %u draw records, %.1f ms a picture\n", Centre.x, Centre.y, Centre.z,
              GLevel->SceneEntries.count, Took.count() / TIMED);

    const UINT32 Image = ilGenImage();
    ilBindImage(Image);
    ilTexImage(WINDOW_WIDTH, WINDOW_HEIGHT, 1, 3, IL_RGB, IL_UNSIGNED_BYTE, nullptr);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, WINDOW_WIDTH, WINDOW_HEIGHT, GL_RGB, GL_UNSIGNED_BYTE, ilGetData());
    ilEnable(IL_FILE_OVERWRITE);
    if (!ilSave(IL_PNG, Wishes.Picture.CStr())) {
        LogPrintf("%s could not be written\n", Wishes.Picture.CStr());
    }
    ilDeleteImage(Image);
}

UINT32 CreateShowcase() {
    // The data are the game's.
    std::snprintf(GameName, GAME_NAME_SIZE, "SlopeRush");
    GGame = new CShowcase;
    return 1;
}

int ShowUsage() {
    std::printf(
        "showcase [--level FILE.wlm] [--trees N] [--rider] [--play NAME] [--at X,Y] [--distance D] [--height H]\n"
        "         [--turn DEGREES] [--out FILE.png] [--time SECONDS] [MODEL.mdd ...]\n");
    return 1;
}

// The program changes its folder, so a relative path is completed here.
GString FullPath(const char* Path) {
    char Folder[PLAT_MAX_PATH];
    GString Full;
    if (Path[0] != '/' && getcwd(Folder, sizeof(Folder))) {
        Full = Folder;
        Full += "/";
    }
    Full += Path;
    return Full;
}

// False if the argument is not known or lacks its value.
bool ReadWish(const char* Key, const char* Value) {
    if (!Value) {
        return false;
    }
    const float Number = static_cast<float>(std::atof(Value));
    if (std::strcmp(Key, "--level") == 0) {
        Wishes.Level = Value;
    } else if (std::strcmp(Key, "--trees") == 0) {
        Wishes.Trees = static_cast<UINT32>(Number);
    } else if (std::strcmp(Key, "--play") == 0) {
        Wishes.Play = Value;
    } else if (std::strcmp(Key, "--at") == 0) {
        return std::sscanf(Value, "%f,%f", &Wishes.Place.x, &Wishes.Place.y) == 2;
    } else if (std::strcmp(Key, "--distance") == 0) {
        Wishes.Distance = Number;
    } else if (std::strcmp(Key, "--height") == 0) {
        Wishes.Height = Number;
    } else if (std::strcmp(Key, "--turn") == 0) {
        Wishes.Turn = Number * DEGREES;
    } else if (std::strcmp(Key, "--time") == 0) {
        Wishes.Time = Number;
    } else if (std::strcmp(Key, "--out") == 0) {
        Wishes.Picture = FullPath(Value);
    } else {
        return false;
    }
    return true;
}

bool ReadWishes(int ArgCount, char** Args) {
    for (int i = 1; i < ArgCount; ++i) {
        if (std::strcmp(Args[i], "--rider") == 0) {
            Wishes.Rider = true;
        } else if (Args[i][0] != '-') {
            Wishes.Models.Add(Args[i]);
        } else if (!ReadWish(Args[i], i + 1 < ArgCount ? Args[i + 1] : nullptr)) {
            return false;
        } else {
            ++i;
        }
    }
    return true;
}

} // namespace

int main(int ArgCount, char** Args) {
    return ReadWishes(ArgCount, Args) ? RunApplication(ArgCount, Args, CreateShowcase) : ShowUsage();
}
