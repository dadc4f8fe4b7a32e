#include "bots/Keys.h"

#include "input/Input.h"
#include "world/GameLevel.h"

#include <algorithm>

namespace {

void Press(std::span<const UINT32> Down) {
    InputBeginStep();
    TickBinds();
    for (const UINT32 Key : {SDLK_LEFT, SDLK_RIGHT, SDLK_UP, SDLK_DOWN, SDLK_SPACE}) {
        const bool IsDown = std::find(Down.begin(), Down.end(), Key) != Down.end();
        if (IsDown != (GKeys[Key] != 0)) {
            GKeys[Key] = IsDown;
            SetKeyState(Key, IsDown);
        }
    }
}

} // namespace

void StepLevel(std::span<const UINT32> Down) {
    Press(Down);
    GLevel->Update(BOT_STEP);
}

void StepLevel(const SBotKeys& Keys) {
    PressKeys(Keys);
    GLevel->Update(BOT_STEP);
}

void PressKeys(const SBotKeys& Keys) {
    UINT32 Down[5];
    UINT32 Count = 0;
    const auto AddIf = [&](bool Wanted, UINT32 Key) {
        if (Wanted) {
            Down[Count++] = Key;
        }
    };
    AddIf(Keys.Left, SDLK_LEFT);
    AddIf(Keys.Right, SDLK_RIGHT);
    AddIf(Keys.Push, SDLK_UP);
    AddIf(Keys.Brake, SDLK_DOWN);
    AddIf(Keys.Cut, SDLK_SPACE);
    Press(std::span<const UINT32>(Down, Count));
}

void ReleaseKeys() {
    InputReset();
    for (SKeyBind& Bind : GGameBinds) {
        Bind.State = Bind.Down = Bind.WasDown = 0;
    }
}
