#include "bots/Ride.h"

#include "game/GameState.h"
#include "game/Rider.h"
#include "game/Wood.h"
#include "world/GameLevel.h"

namespace {

// Of the size in Y, down from the middle.
constexpr float END_OF_SLOPE = 0.8f;

// Trees beyond the quota that a player cuts before thinking of time alone.
constexpr UINT32 SPARE_TREES = 2;

// Part of the time limit that a player keeps in hand.
constexpr float SPARE_TIME = 0.1f;

} // namespace

CPlan::CPlan(const SLevelRecord& Record)
    : Player(TheRider()), Enough(Record.Quota + SPARE_TREES), Limit(Record.TimeLimit), Top(Player.Client.Pos.y) {}

UINT32 CPlan::Wanted() const {
    return Enough > GTreesCut ? Enough - GTreesCut : 0;
}

bool CPlan::Hurry(float Time, float Care) const {
    const float Way = (Top - Player.Client.Pos.y) / (Top + END_OF_SLOPE * GLevel->Params.SizeY);
    const float Due = Way * static_cast<float>(Enough);
    return static_cast<float>(GTreesCut) >= Due * Care || Time / Limit + SPARE_TIME > Way;
}

void StartRide(UINT32 Level, UINT32 Seed) {
    ReleaseKeys();
    LoadLevel(GLevels[Level].File, 0);
    SowTrees(GLevels[Level].Trees, Seed);
    GGameState = GAME_PLAYING;
    GTreesCut = 0;
}

bool IsAtTheEnd(const Vec3& Place) {
    return Place.y < -END_OF_SLOPE * GLevel->Params.SizeY;
}

SRide RideLevel(UINT32 Level, UINT32 Seed, const SSkill& Skill) {
    const SLevelRecord& Record = GLevels[Level];
    StartRide(Level, Seed);
    const CRider& Rider = TheRider();
    CBot Bot(Skill, Seed);
    const CPlan Plan(Record);
    SRide Ride;
    while (!Ride.Finished && Ride.Time < Record.TimeLimit) {
        StepLevel(Bot.Think(Plan.Wanted(), Plan.Hurry(Ride.Time, Skill.Care)));
        Ride.Time += BOT_STEP;
        Ride.End = Rider.Client.Pos;
        Ride.Finished = IsAtTheEnd(Ride.End);
    }
    Ride.Trees = GTreesCut;
    Ride.Won = Ride.Finished && Ride.Trees >= Record.Quota;
    return Ride;
}
