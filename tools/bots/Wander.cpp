#include "bots/Wander.h"

#include "bots/Ride.h"
#include "game/Rider.h"
#include "game/Wood.h"
#include "terrain/Terrain.h"
#include "world/GameLevel.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float LONGEST_REST = 5;  // seconds
constexpr float REST_RADIUS = 20;  // world units, two lengths of the board; within it the rider has not got away
constexpr float DEEPEST = -12;     // world units; a rider that lies on its side has its origin in the ground a little
constexpr float GROUND_SEEN = 1e4; // world units above everything, where a ray to the ground begins
constexpr float PUT_DOWN = 0.75f;  // part of the terrain's half sizes within which the rider is put down
constexpr float DROP_HEIGHT = 20;  // world units
constexpr float LONGEST_WAY = 40;  // seconds, about as long as a good ride

// Infinity where there is no ground. A ray along the edge of two triangles may slip between them, so a second one asks
// beside it.
float HeightOverGround(const Vec3& Place) {
    for (const float Aside : {0.0f, 0.5f}) {
        const Vec3 Above = {Place.x + Aside, Place.y + Aside, GROUND_SEEN};
        const float Down = GLevel->Terrain->TraceRay({Above, {0, 0, -1}}, 2 * GROUND_SEEN);
        if (Down >= 0) {
            return Place.z - (GROUND_SEEN - Down);
        }
    }
    return INFINITY;
}

void PutDownAnywhere(const CRider& Rider, std::mt19937& Chance) {
    std::uniform_real_distribution<float> Part(-PUT_DOWN, PUT_DOWN);
    Vec3 Place = GLevel->Terrain->Extents;
    Place.x *= Part(Chance);
    Place.y *= Part(Chance);
    Place.z = 0;
    Place.z = DROP_HEIGHT - HeightOverGround(Place);
    PhySetPosition(Place, Rider.Body);
}

void BeginRun(UINT32 Level, UINT32 Seed, EStart Start) {
    StartRide(Level, Seed);
    std::mt19937 Chance(Seed);
    if (Start == EStart::Anywhere) {
        PutDownAnywhere(TheRider(), Chance);
        return;
    }
    CBot Bot(Skills[AVERAGE], Seed);
    const float Way = std::uniform_real_distribution<float>(0, LONGEST_WAY)(Chance);
    for (float Time = 0; Time < Way && !IsAtTheEnd(TheRider().Client.Pos); Time += BOT_STEP) {
        StepLevel(Bot.Think(0, true));
    }
}

// Until the end of the slope, the first fault or so many seconds.
void Run(UINT32 Seed, float Seconds, SWander& Result) {
    const CRider& Rider = TheRider();
    CWanderer Hands(Seed);
    Result.Watch.BeginRun();
    for (float Time = 0; Time < Seconds; Time += BOT_STEP) {
        StepLevel(Hands.Think(Result.Watch.IsHeldUp()));
        Result.Time += BOT_STEP;
        const Vec3& Place = Rider.Client.Pos;
        if (const char* What = Result.Watch.Look(Place)) {
            Result.Faults.push_back({What, Seed, Time, Place});
            return;
        }
        if (IsAtTheEnd(Place)) {
            ++Result.Ends;
            return;
        }
    }
}

} // namespace

SBotKeys CWanderer::Think(bool HeldUp) {
    if (StepsLeft-- <= 0) {
        StepsLeft = static_cast<int>(Between(0.2f, 1.5f) / BOT_STEP);
        const float Turn = Between(-1, 1);
        Hands.Left = Turn > 1 - SteerPart;
        Hands.Right = Turn < SteerPart - 1;
        Hands.Push = Between(0, 1) < PushPart;
        Hands.Brake = !Hands.Push && Between(0, 1) < 0.4f;
        Hands.Cut = !Hands.Cut;
    }
    if (HeldUp) {
        Hands.Push = true;
        Hands.Brake = false;
        Hands.Left = !Hands.Right; // a push up a bank may just hold the rider there
    }
    return Hands;
}

const char* CWatch::Look(const Vec3& Place) {
    const Vec3& Extents = GLevel->Terrain->Extents;
    const float Height = HeightOverGround(Place);
    if (!(std::fabs(Place.x) < Extents.x && std::fabs(Place.y) < Extents.y && std::isfinite(Height))) {
        return "left the terrain";
    }
    FarthestSide = std::max(FarthestSide, std::fabs(Place.x) / Extents.x);
    LeastHeight = std::min(LeastHeight, Height);
    if (Height < DEEPEST) {
        return "fell through the terrain";
    }
    Resting += BOT_STEP;
    LongestRest = std::max(LongestRest, Resting);
    if (M_Length(Place - Rest) > REST_RADIUS) {
        Rest = Place;
        Resting = 0;
    }
    return Resting > LONGEST_REST ? "is stuck" : nullptr;
}

SWander Wander(UINT32 Level, float Seconds, EStart Start) {
    SWander Result;
    while (Result.Time < Seconds) {
        BeginRun(Level, ++Result.Runs, Start);
        Run(Result.Runs, std::min(MAX_WANDER, Seconds - Result.Time), Result);
    }
    return Result;
}
