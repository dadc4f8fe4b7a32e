// Whole rides down a level, without a picture and as fast as the machine can. They need what a level needs: a context,
// the shader library, the physics world, the trees grown and the game's data in the working directory.
#pragma once

#include "bots/Bot.h"
#include "foundation/Vector.h"
#include "game/GameState.h"

struct SRide {
    float Time = 0; // seconds, at most the level's limit
    UINT32 Trees = 0;
    bool Finished = false; // at the end of the slope
    bool Won = false;
    Vec3 End;
};

// What a player reads from the screen, trees and clock, against how far down it is. Made where the ride begins.
class CPlan {
public:
    explicit CPlan(const SLevelRecord& Record);

    UINT32 Wanted() const;                    // trees still to be cut
    bool Hurry(float Time, float Care) const; // enough trees for now, or little time; seconds of the ride

private:
    const CRider& Player;
    UINT32 Enough;
    float Limit; // seconds
    float Top;   // where the ride begins, in Y
};

// Replaces the level by the one of that index in GLevels, with the wood of that seed.
void StartRide(UINT32 Level, UINT32 Seed);

// The rider's place is beyond the end of the slope.
bool IsAtTheEnd(const Vec3& Place);

// Until the end of the slope or of the time. One seed gives one ride.
SRide RideLevel(UINT32 Level, UINT32 Seed, const SSkill& Skill);
