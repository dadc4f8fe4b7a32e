#include "bots/Ride.h"

#include "game/GameState.h"
#include "game/Rider.h"
#include "game/Wood.h"
#include "world/GameLevel.h"

namespace {

// Trees beyond the quota that a player cuts before thinking of time alone.
constexpr UINT32 SPARE_TREES = 2;

} // namespace

void StartRide(UINT32 Level, UINT32 Seed) {
    ReleaseKeys();
    LoadLevel(GLevels[Level].File, 0);
    SowTrees(GLevels[Level].Trees, Seed);
    GGameState = GAME_PLAYING;
    GTreesCut = 0;
}

bool IsAtTheEnd(const Vec3& Place) {
    return Place.y < -0.8f * GLevel->Params.SizeY;
}

SRide RideLevel(UINT32 Level, UINT32 Seed, const SSkill& Skill) {
    const SLevelRecord& Record = GLevels[Level];
    StartRide(Level, Seed);
    const CRider& Rider = TheRider();
    CBot Bot(Skill, Seed);
    SRide Ride;
    while (!Ride.Finished && Ride.Time < Record.TimeLimit) {
        const UINT32 Enough = Record.Quota + SPARE_TREES;
        StepLevel(Bot.Think(Enough > GTreesCut ? Enough - GTreesCut : 0));
        Ride.Time += BOT_STEP;
        Ride.End = Rider.Client.Pos;
        Ride.Finished = IsAtTheEnd(Ride.End);
    }
    Ride.Trees = GTreesCut;
    Ride.Won = Ride.Finished && Ride.Trees >= Record.Quota;
    return Ride;
}
