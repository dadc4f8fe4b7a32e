#include "bots/Bot.h"

#include "game/Rider.h"
#include "game/Tree.h"
#include "game/Wood.h"
#include "world/GameLevel.h"

#include <algorithm>
#include <btBulletDynamicsCommon.h>
#include <cmath>
#include <cstring>

// Eye to hand takes a quarter of a second with people who know what will come, and a good third with those who do not.
const SSkill Skills[SKILL_COUNT] = {
    {"beginner", false, 0.35f, 0.0f, 0, 1.0f, 0, 0.15f, 0, 0},
    {"average", true, 0.30f, 0.5f, 140, 0.6f, 0.16f, 0.12f, 12, 0.5f},
    {"expert", true, 0.20f, 1.0f, 240, 0.2f, 0.04f, 0.03f, 25, 1},
};

namespace {

constexpr float PHYSICS_RATE = 4;     // physics seconds in one of the game
constexpr int HAND_STEPS = 6;         // from one change of the steering keys to the next
constexpr int STROKE_STEPS = 31;      // a press before the stroke is over would be lost
constexpr float WIDEST = 1.0f;        // radians to either side
constexpr int HEADINGS = 21;          // tried
constexpr float STROKE_DELAY = 0.25f; // seconds until the sword is there
constexpr float STRIKE_REACH = 47;    // world units, a little less than the sword's
constexpr float BODY_WIDTH = 9;       // a way closer to a trunk than this hits it
constexpr float SWORD_WIDTH = 36;     // a trunk closer to the way than this can be cut
constexpr float CRASH_COST = 60;      // in units of height
constexpr float TURN_COST = 12;
constexpr float STRAY_COST = 1.2f; // a unit
constexpr float NEAREST_TREE = 10; // what is closer is no matter of the way any more
constexpr float SPIN_LEAD = 0.09f; // seconds ahead for which a turn is stopped
constexpr float DEAD_ANGLE = 0.06f;

Vec3 HeadingVector(float Heading) {
    return {std::sin(Heading), -std::cos(Heading), 0};
}

int ToSteps(float Seconds) {
    return static_cast<int>(std::lround(Seconds / BOT_STEP));
}

template <class T>
void Collect(const char* Class, std::vector<const T*>& Out) {
    for (const CEntity* Entity : GLevel->Entities) {
        if (std::strcmp(Entity->Class->Name, Class) == 0) {
            Out.push_back(static_cast<const T*>(Entity));
        }
    }
}

} // namespace

const CRider& TheRider() {
    std::vector<const CRider*> Riders;
    Collect("Rider", Riders);
    return *Riders.at(0);
}

CBot::CBot(const SSkill& Skill, UINT32 Seed)
    : Skill(Skill), Chance(Seed), Player(TheRider()), OnTheWay(ToSteps(Skill.Reaction)) {
    Collect("Tree", Trees);
    StrokeError = Mistake(Skill.CutError);
}

CBot::SView CBot::Look() const {
    SView View;
    View.Place = Player.Client.Pos;
    const btVector3& v = Player.Body->getLinearVelocity();
    View.Velocity = Vec3{v.x(), v.y(), v.z()} * (PhyWorldScale * PHYSICS_RATE);
    M_QuatRotate(Player.Client.Rot, {0, -1, 0}, View.Facing);
    View.Spin = Player.Body->getAngularVelocity().z() * PHYSICS_RATE;
    return View;
}

// To the moment at which a key that is decided on now will be down.
void CBot::Foresee(SView& View) const {
    const float Time = Skill.Reaction * Skill.Foresight;
    View.Place += View.Velocity * Time;
    const float Sine = std::sin(View.Spin * Time);
    const float Cosine = std::cos(View.Spin * Time);
    const Vec3 Now = View.Facing;
    View.Facing.x = Cosine * Now.x - Sine * Now.y;
    View.Facing.y = Sine * Now.x + Cosine * Now.y;
}

void CBot::FindTreesNear(const Vec3& Place) {
    Near.clear();
    for (const CTree* Tree : Trees) {
        if (!Tree->Cut && M_Length(Tree->Position - Place) < std::max(Skill.Sight + SWORD_WIDTH, 3 * STRIKE_REACH)) {
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
        if (Ahead < NEAREST_TREE || Ahead > Skill.Sight) {
            continue;
        }
        const float Weight = 1 - 0.6f * Ahead / Skill.Sight;
        if (Aside < BODY_WIDTH) {
            Cost += CRASH_COST * Weight;
        } else if (Wanted > 0 && Aside < SWORD_WIDTH) {
            Cost -= Skill.TreeReward * Weight;
        }
    }
    return Cost;
}

// Height along the way, turned into a price with how far it leaves the piste and what stands beside it.
float CBot::CostOf(const SView& View, float Tried, UINT32 Wanted) const {
    const Vec3 Way = HeadingVector(Tried);
    float Height = 0;
    for (const float Part : {0.3f, 0.6f, 1.0f}) {
        const Vec3 Point = View.Place + Way * (Skill.Sight * Part);
        Height += (TerrainHeightAt(Point.x, Point.y) + STRAY_COST * Piste.Stray(Point)) / 3;
    }
    return Height + Skill.Sight * 0.3f * (1 - std::cos(Tried)) + TURN_COST * std::fabs(Tried - Heading) +
           CostOfTrees(View.Place, Way, Wanted);
}

void CBot::ChooseWay(const SView& View, UINT32 Wanted) {
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
    Held = Chosen + Mistake(Skill.AimError);
}

void CBot::Steer(const SView& View) {
    const Vec3 Way = HeadingVector(Held);
    const float Error = View.Facing.x * Way.y - View.Facing.y * Way.x; // sine of the turn that is left
    const float Wish = Error - SPIN_LEAD * View.Spin;
    Hands.Left = Wish > DEAD_ANGLE;
    Hands.Right = Wish < -DEAD_ANGLE;
}

bool CBot::WillReachATree(const SView& View) const {
    const Vec3 Then = View.Place + View.Velocity * (STROKE_DELAY * Skill.Foresight + StrokeError);
    const Vec3 Cone = M_Normalized(View.Facing + Vec3{0, 0, -0.7f});
    return std::any_of(Near.begin(), Near.end(), [&](const CTree* Tree) {
        const Vec3 To = Tree->Position - Then;
        return M_Length(To) < STRIKE_REACH && M_Dot(M_Normalized(To), Cone) > 0.1f;
    });
}

bool CBot::Strikes(const SView& View) {
    if (Step < NextStroke || !WillReachATree(View)) {
        return false;
    }
    NextStroke = Step + STROKE_STEPS;
    StrokeError = Mistake(Skill.CutError);
    return true;
}

SBotKeys CBot::Think(UINT32 Wanted, bool Hurry) {
    SView View = Look();
    Foresee(View);
    if (Step >= NextChoice) {
        NextChoice = Step + ToSteps(Skill.Choice);
        FindTreesNear(View.Place);
        if (Skill.Steers) {
            ChooseWay(View, Wanted);
        }
    }
    if (Skill.Steers && Step % HAND_STEPS == 0) {
        Steer(View);
    }
    Hands.Push = Hurry || !Skill.Steers;
    Hands.Cut = Strikes(View);
    ++Step;
    OnTheWay.push_back(Hands);
    const SBotKeys Now = OnTheWay.front();
    OnTheWay.pop_front();
    return Now;
}
