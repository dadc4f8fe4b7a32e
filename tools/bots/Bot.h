// A player made of a few rules: it looks ahead for the best way down, steers there and strikes when a tree will be in
// reach. It sees what a player sees (ground, flags, trees, itself) and acts through the key bindings alone.
//
// A skill says how well it does that. The figures are those of people, the same on every level: how long from eye to
// hand, how far ahead a way is planned, how exactly it is held, how much a tree is worth a detour.
// Life: made for a level that is loaded, and not used beyond it. One seed gives one row of mistakes.
// Units: world units, seconds of game time, radians.
#pragma once

#include "bots/Keys.h"
#include "bots/Piste.h"
#include "foundation/Vector.h"

#include <deque>
#include <random>
#include <span>
#include <vector>

class CRider;
class CTree;

struct SSkill {
    const char* Name;
    bool Steers;      // else it only pushes and cuts
    float Reaction;   // seconds from what is seen to the key
    float Foresight;  // part of its own movement, until a key acts, that it reckons with: 0 to 1
    float Sight;      // world units ahead for which it plans
    float Choice;     // seconds from one choice of a way to the next
    float AimError;   // radians by which a chosen way is off, standard deviation
    float CutError;   // seconds by which a stroke comes early or late, standard deviation
    float TreeReward; // height that it would give away for one tree
    float Care;       // part of the trees due by now that it wants to have; with fewer it takes its time
};

enum ESkill { BEGINNER, AVERAGE, EXPERT, SKILL_COUNT };
extern const SSkill Skills[SKILL_COUNT];

class CBot {
public:
    CBot(const SSkill& Skill, UINT32 Seed);

    // What it presses in the next step. Wanted: trees still to be cut. Who steers pushes only in a hurry.
    SBotKeys Think(UINT32 Wanted, bool Hurry);

private:
    struct SView {
        Vec3 Place;
        Vec3 Velocity; // world units per second of game time
        Vec3 Facing;
        float Spin; // radians per second of game time, positive to the left
    };
    SView Look() const;
    void Foresee(SView& View) const;
    void FindTreesNear(const Vec3& Place);
    void ChooseWay(const SView& View, UINT32 Wanted);
    float CostOf(const SView& View, float Heading, UINT32 Wanted) const;
    float CostOfTrees(const Vec3& Place, const Vec3& Way, UINT32 Wanted) const;
    void Steer(const SView& View);
    bool Strikes(const SView& View);
    bool WillReachATree(const SView& View) const;
    float Mistake(float Deviation) { return Deviation * std::normal_distribution<float>()(Chance); }

    const SSkill& Skill;
    std::mt19937 Chance;
    const CRider& Player;
    const CPiste Piste;
    std::vector<const CTree*> Trees;
    std::vector<const CTree*> Near; // what it looks at now
    std::deque<SBotKeys> OnTheWay;  // from eye to hand, the oldest first
    SBotKeys Hands;
    int Step = 0;
    int NextChoice = 0;    // step
    int NextStroke = 0;    // step
    float StrokeError = 0; // seconds, of the next stroke
    float Heading = 0;     // radians from straight down the slope, positive to the left
    float Held = 0;        // the same with the mistake in it
};

// Of the level that is loaded.
const CRider& TheRider();
