// Whole rides down a level, without a picture and as fast as the machine can. They need what a level needs: a context,
// the shader library, the physics world, the trees grown and the game's data in the working directory.
#pragma once

#include "bots/Bot.h"
#include "foundation/Vector.h"

struct SRide {
    float Time = 0; // seconds, at most the level's limit
    UINT32 Trees = 0;
    bool Finished = false; // at the end of the slope
    bool Won = false;
    Vec3 End;
};

// Replaces the level by the one of that index in GLevels, with the wood of that seed.
void StartRide(UINT32 Level, UINT32 Seed);

// The rider's place is beyond the end of the slope.
bool IsAtTheEnd(const Vec3& Place);

// Until the end of the slope or of the time. One seed gives one ride.
SRide RideLevel(UINT32 Level, UINT32 Seed, const SSkill& Skill);
