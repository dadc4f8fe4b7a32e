// The program from start to end: it finds the data folder, opens the one window, brings the libraries and services up
// in a fixed order, drives the game in fixed steps and takes everything down again.
//
// A turn of the loop reads the clock, runs the steps of 1/60 second that are due, at most a clamped turn's worth, and
// renders once. On a machine that is too slow the game therefore runs in slow motion. The loop never sleeps.
//
// Ownership: RunApplication owns window, context, services and the game that the factory makes; all are gone when it
// returns, so it may be called again in the same process. It changes the working directory and leaves it changed.
// Time: seconds; the clock is GPlatform.Ticks, milliseconds that wrap at 2^32.
// Failure: a window or library that cannot be had is fatal and ends the process; nothing is taken down then.
#pragma once

#include "foundation/GTemplate.h"
#include "foundation/Types.h"

// What the process returns if there is no game to run.
constexpr int EXIT_NO_GAME = 45438;

// Makes the game: writes GameName and GGame, and returns 1 on success.
using GameFactory = UINT32 (*)();

// Runs the program. Only the first argument counts, and only where the system does not tell the executable's path.
// Returns 0 after a normal run, EXIT_NO_GAME if Factory returns 0.
int RunApplication(int ArgCount, char** Args, GameFactory Factory);

// The folder with the game's data: a folder named Name beside the executable, with a backslash behind it.
GString DataFolder(const char* ExecutablePath, const char* Name);
