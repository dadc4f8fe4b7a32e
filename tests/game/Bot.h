// A player made of a few rules: it looks ahead for the best way down, steers there and strikes when a tree will be in
// reach. It sees what a player sees (ground, trees, itself) and acts through the key bindings alone.
#pragma once

#include "game/Rider.h"
#include "game/Tree.h"

#include <vector>

struct SBotKeys {
    bool Left = false;
    bool Right = false;
    bool Push = false;
    bool Brake = false;
    bool Cut = false;
};

class CBot {
public:
    // Of the level that is loaded: its one rider and all its trees.
    CBot();

    // What it presses in the next step. Wanted: trees still to be cut.
    SBotKeys Think(UINT32 Wanted);

    const CRider& Rider() const { return *Player; }

private:
    struct SView {
        Vec3 Place;
        Vec3 Velocity; // world units per second of game time
        Vec3 Facing;
    };
    SView Look() const;
    void FindTreesNear(const Vec3& Place);
    float CostOf(const SView& View, float Heading, UINT32 Wanted) const;
    float CostOfTrees(const Vec3& Place, const Vec3& Way, UINT32 Wanted) const;
    bool WillReachATree(const SView& View) const;

    const CRider* Player = nullptr;
    std::vector<const CTree*> Trees;
    std::vector<const CTree*> Near; // what it looks at now
    int Step = 0;
    float Heading = 0; // radians from straight down the slope, positive to the left
};
