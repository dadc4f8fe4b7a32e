// A rider without a plan, and an eye on it: whatever a player does, the ground holds, the level ends, and no place
// keeps the rider. Needs what a ride needs.
#pragma once

#include "bots/Keys.h"
#include "foundation/Vector.h"

#include <random>
#include <string>
#include <vector>

class CRider;

// Keys at random, each held for a while as a hand does. How often it pushes and steers is drawn once: who pushes little
// slides down, who pushes much gets everywhere.
class CWanderer {
public:
    explicit CWanderer(UINT32 Seed) : Chance(Seed), PushPart(Between(0.1f, 0.9f)), SteerPart(Between(0.2f, 0.9f)) {}

    // Where it is held up it pushes and steers until it is free, as anybody would.
    SBotKeys Think(bool HeldUp);

private:
    float Between(float Low, float High) { return std::uniform_real_distribution<float>(Low, High)(Chance); }

    std::mt19937 Chance;
    const float PushPart; // of the time
    const float SteerPart;
    SBotKeys Hands;
    int StepsLeft = 0; // until other keys
};

// Looks at the rider once a step.
class CWatch {
public:
    void BeginRun() { Resting = 0; }

    // What is wrong with where the rider is, or null.
    const char* Look(const Vec3& Place);

    bool IsHeldUp() const { return Resting > 1; }

    float LongestRest = 0;    // seconds
    float LeastHeight = 1e9f; // world units over the ground; below 0 the rider's origin is in it
    float FarthestSide = 0;   // greatest distance from the middle of the slope, in parts of the terrain's half width

private:
    Vec3 Rest;         // the place that it has not left since
    float Resting = 0; // seconds
};

struct SFault {
    std::string What;
    UINT32 Seed;
    float Time; // seconds since the start of that run
    Vec3 Place;
};

struct SWander {
    float Time = 0; // seconds of game time
    UINT32 Runs = 0;
    UINT32 Ends = 0; // runs that came to the end of the slope
    CWatch Watch;
    std::vector<SFault> Faults;
};

// A run begins where an average rider is some time after the start, or with the rider put down anywhere.
enum class EStart { OnTheWay, Anywhere };

// Run after run, each with a wood of its own, until that many seconds of game time have passed. A run ends at the end
// of the slope, at a fault, or after MAX_WANDER seconds.
constexpr float MAX_WANDER = 300;
SWander Wander(UINT32 Level, float Seconds, EStart Start);
