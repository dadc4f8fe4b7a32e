#include "game/GameState.h"

#include "game/MenuCam.h"
#include "game/Rider.h"
#include "game/Tree.h"
#include "game/Wood.h"
#include "world/GameLevel.h"

namespace {

// Here and not beside the classes, since whoever plays a level links this file.
TEntityRegistration<CRider> RiderRegistration("Rider");
TEntityRegistration<CTree> TreeRegistration("Tree");
TEntityRegistration<CMenuCam> MenuCamRegistration("MenuCam");

} // namespace

const SLevelRecord GLevels[LEVEL_COUNT] = {
    {"Data/Levels/Level1.wlm", 3000, 20, 100.0f}, {"Data/Levels/Level2.wlm", 4000, 25, 100.0f},
    {"Data/Levels/Level3.wlm", 4000, 30, 90.0f},  {"Data/Levels/Level4.wlm", 4000, 35, 90.0f},
    {"Data/Levels/Level5.wlm", 4000, 40, 80.0f},
};

UINT32 GGameState = GAME_LOGO;
UINT32 GLevelIndex = 0;
float GTimeLeft = 0;
UINT32 GTreesCut = 0;
UINT32 GPaused = 0;
CameraState GCameraPrev;
CameraState GCameraNow;

void ResetGameState() {
    GGameState = GAME_LOGO;
    GLevelIndex = 0;
    GTimeLeft = 0;
    GTreesCut = 0;
    GPaused = 0;
    GCameraPrev = CameraState();
    GCameraNow = CameraState();
}

void DeleteLevel() {
    delete GLevel;
    GLevel = nullptr;
}

void LoadLevel(const char* Path, UINT32 TreeCount) {
    DeleteLevel();
    GLevel = new CLevel;
    GLevel->LoadSourceLevel(Path);
    if (TreeCount > 0) {
        PlaceTrees(TreeCount);
    }
}
