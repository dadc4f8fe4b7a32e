#include "bots/Keys.h"

#include "input/Input.h"
#include "world/GameLevel.h"

#include <algorithm>

void StepLevel(std::span<const UINT32> Down) {
    InputBeginStep();
    TickBinds();
    for (const UINT32 Key : {SDLK_LEFT, SDLK_RIGHT, SDLK_UP, SDLK_DOWN, SDLK_SPACE}) {
        const bool IsDown = std::find(Down.begin(), Down.end(), Key) != Down.end();
        if (IsDown != (GKeys[Key] != 0)) {
            GKeys[Key] = IsDown;
            SetKeyState(Key, IsDown);
        }
    }
    GLevel->Update(BOT_STEP);
}

void StepLevel(const SBotKeys& Keys) {
    UINT32 Down[5];
    UINT32 Count = 0;
    const auto Press = [&](bool Wanted, UINT32 Key) {
        if (Wanted) {
            Down[Count++] = Key;
        }
    };
    Press(Keys.Left, SDLK_LEFT);
    Press(Keys.Right, SDLK_RIGHT);
    Press(Keys.Push, SDLK_UP);
    Press(Keys.Brake, SDLK_DOWN);
    Press(Keys.Cut, SDLK_SPACE);
    StepLevel(std::span<const UINT32>(Down, Count));
}

void ReleaseKeys() {
    InputReset();
    for (SKeyBind& Bind : GGameBinds) {
        Bind.State = Bind.Down = Bind.WasDown = 0;
    }
}
