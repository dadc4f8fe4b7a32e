// The keys of the game, pressed without a window: raw state and bindings are set as the input pump would set them.
#pragma once

#include "foundation/Types.h"

#include <span>

struct SBotKeys {
    bool Left = false;
    bool Right = false;
    bool Push = false;
    bool Brake = false;
    bool Cut = false;
};

constexpr float BOT_STEP = 1.0f / 60; // seconds, the game's fixed step

// Makes exactly these keys down, for a step of the game that the caller takes.
void PressKeys(const SBotKeys& Keys);

// One step of the input and of the loaded level with exactly these keys down, given as SDL's symbols or by name.
void StepLevel(std::span<const UINT32> Down);
void StepLevel(const SBotKeys& Keys);

// All keys up, and forgotten that one was down a step before.
void ReleaseKeys();
