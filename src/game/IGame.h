// The one game object, as the shell sees it.
//
// The shell calls CreateGame once, then Init, then Update per fixed step and Render per turn of the loop, then Free,
// and at the very end it deletes the object. No operation has a result: a game that can't go on calls FatalError.
//
// Ownership: CreateGame makes the object with new; from then on it belongs to the shell, which clears GGame.
// Lifetime: Init to Free runs with the OpenGL context, the shader library and the physics world up; the destructor
// runs after all of them are gone.
// Units: Time and Delta are seconds; Delta is always 1/60. Time is the clock's and jumps back to it in every turn of
// the loop, so it is not the sum of the steps. BlendDelta is the fraction of a step that is left over, above 0 and at
// most 1 after a step has run.
#pragma once

#include "foundation/Types.h"

class IGame {
public:
    virtual ~IGame() = default;
    virtual void Init() = 0;
    virtual void Free() = 0;
    virtual void Update(float Time, float Delta) = 0;
    virtual void Render(float BlendDelta) = 0;
};

constexpr int GAME_NAME_SIZE = 32;

// The game's name, which is also the name of the folder with its data, beside the executable.
extern char GameName[GAME_NAME_SIZE];
extern IGame* GGame;

// Writes GameName, makes the game and stores it in GGame. 1 on success; 0 ends the program.
UINT32 CreateGame();
