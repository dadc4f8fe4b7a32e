// The state of the game, which is global because there is one game, and the table of levels.
//
// The screens (Screens.h) move it along; rider and trees read and write their share. GLevel (world/GameLevel.h) is the
// one level in memory, also behind logo and menu: LoadLevel replaces it, so no pointer into the old level survives the
// call. Units: seconds. Cost: LoadLevel reads files and builds everything anew, which takes a good part of a second.
// Bad input: a level file that is missing or broken is fatal.
#pragma once

#include "foundation/Camera.h"
#include "foundation/Types.h"

enum EGameState : UINT32 { GAME_LOGO = 0, GAME_MENU = 1, GAME_PLAYING = 2, GAME_END = 3 };

struct SLevelRecord {
    const char* File;
    UINT32 Trees; // sown at random
    UINT32 Quota; // trees to be cut
    float TimeLimit;
};

constexpr UINT32 LEVEL_COUNT = 5;
extern const SLevelRecord GLevels[LEVEL_COUNT];
constexpr const char* MENU_LEVEL = "Data/Levels/Menu.wlm";

extern UINT32 GGameState;
extern UINT32 GLevelIndex; // into GLevels
extern float GTimeLeft;    // in this level; goes on during a pause
extern UINT32 GTreesCut;   // in this level
extern UINT32 GPaused;

// The camera as the last two steps left it. A picture lies between them.
extern CameraState GCameraPrev;
extern CameraState GCameraNow;

// Everything as at the start of the program; the level is not touched.
void ResetGameState();

void DeleteLevel();

// Replaces the level and sows TreeCount trees in the new one.
void LoadLevel(const char* Path, UINT32 TreeCount);
