#include "game/Bot.h"

#include "game/Wood.h"
#include "world/GameLevel.h"

#include <algorithm>
#include <btBulletDynamicsCommon.h>
#include <cmath>
#include <cstring>

namespace {

constexpr float PHYSICS_RATE = 4;     // physics seconds in one of the game
constexpr float SIGHT = 240;          // world units ahead
constexpr int THINK_STEPS = 6;        // between two choices of a way
constexpr float WIDEST = 1.0f;        // radians to either side
constexpr int HEADINGS = 21;          // tried
constexpr float STROKE_DELAY = 0.25f; // seconds until the sword is there
constexpr float BODY_WIDTH = 9;       // a way closer to a trunk than this hits it
constexpr float SWORD_WIDTH = 36;     // a trunk closer to the way than this can be cut
constexpr float CRASH_COST = 60;      // in units of height
constexpr float TREE_REWARD = 25;
constexpr float TURN_COST = 12;

Vec3 HeadingVector(float Heading) {
    return {std::sin(Heading), -std::cos(Heading), 0};
}

} // namespace

CBot::CBot() {
    for (const CEntity* Entity : GLevel->Entities) {
        if (std::strcmp(Entity->Class->Name, "Rider") == 0) {
            Player = static_cast<const CRider*>(Entity);
        } else if (std::strcmp(Entity->Class->Name, "Tree") == 0) {
            Trees.push_back(static_cast<const CTree*>(Entity));
        }
    }
}

CBot::SView CBot::Look() const {
    SView View;
    View.Place = Player->Client.Pos;
    const btVector3& v = Player->Body->getLinearVelocity();
    View.Velocity = Vec3{v.x(), v.y(), v.z()} * (PhyWorldScale * PHYSICS_RATE);
    M_QuatRotate(Player->Client.Rot, {0, -1, 0}, View.Facing);
    return View;
}

void CBot::FindTreesNear(const Vec3& Place) {
    Near.clear();
    for (const CTree* Tree : Trees) {
        if (!Tree->Cut && M_Length(Tree->Position - Place) < SIGHT + SWORD_WIDTH) {
            Near.push_back(Tree);
        }
    }
}

float CBot::CostOfTrees(const Vec3& Place, const Vec3& Way, UINT32 Wanted) const {
    float Cost = 0;
    for (const CTree* Tree : Near) {
        const Vec3 To = Tree->Position - Place;
        const float Ahead = To.x * Way.x + To.y * Way.y;
        const float Aside = std::fabs(To.x * Way.y - To.y * Way.x);
        if (Ahead < 10 || Ahead > SIGHT) {
            continue;
        }
        const float Weight = 1 - 0.6f * Ahead / SIGHT;
        if (Aside < BODY_WIDTH) {
            Cost += CRASH_COST * Weight;
        } else if (Wanted > 0 && Aside < SWORD_WIDTH) {
            Cost -= TREE_REWARD * Weight;
        }
    }
    return Cost;
}

// Height at the end of the way, turned into a price with what lies along it.
float CBot::CostOf(const SView& View, float Tried, UINT32 Wanted) const {
    const Vec3 Way = HeadingVector(Tried);
    float Height = 0;
    for (const float Part : {0.3f, 0.6f, 1.0f}) {
        const Vec3 Point = View.Place + Way * (SIGHT * Part);
        Height += TerrainHeightAt(Point.x, Point.y) / 3;
    }
    return Height + SIGHT * 0.3f * (1 - std::cos(Tried)) + TURN_COST * std::fabs(Tried - Heading) +
           CostOfTrees(View.Place, Way, Wanted);
}

bool CBot::WillReachATree(const SView& View) const {
    const Vec3 Then = View.Place + View.Velocity * STROKE_DELAY;
    const Vec3 Cone = M_Normalized(View.Facing + Vec3{0, 0, -0.7f});
    return std::any_of(Near.begin(), Near.end(), [&](const CTree* Tree) {
        const Vec3 To = Tree->Position - Then;
        return M_Length(To) < 47 && M_Dot(M_Normalized(To), Cone) > 0.1f;
    });
}

SBotKeys CBot::Think(UINT32 Wanted) {
    const SView View = Look();
    if (Step++ % THINK_STEPS == 0) {
        FindTreesNear(View.Place);
        float Best = 1e30f;
        float Chosen = 0;
        for (int i = 0; i < HEADINGS; ++i) {
            const float Tried = WIDEST * (2.0f * i / (HEADINGS - 1) - 1);
            const float Cost = CostOf(View, Tried, Wanted);
            if (Cost < Best) {
                Best = Cost;
                Chosen = Tried;
            }
        }
        Heading = Chosen;
    }
    const Vec3 Way = HeadingVector(Heading);
    const float Error = View.Facing.x * Way.y - View.Facing.y * Way.x; // sine of the turn that is left
    const float Wish = Error - 0.35f * Player->Body->getAngularVelocity().z();
    SBotKeys Keys;
    Keys.Left = Wish > 0.06f;
    Keys.Right = Wish < -0.06f;
    Keys.Push = true;
    Keys.Cut = Step % 2 == 0 && Player->CutTimer <= 0 && WillReachATree(View);
    return Keys;
}
