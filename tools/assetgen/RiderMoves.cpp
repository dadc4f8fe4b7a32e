// The rider's animations: three loops of equal length and two strokes of the sword.
//
// A movement is a table of turns, in degrees about the mesh's axes, at times from 0 to its end. A loop's last key is
// its first one again, at the loop's end, so that no time of the loop lies behind its keys.
#include "Asset.h"
#include "BinaryFile.h"
#include "RiderBones.h"

#include "foundation/Quaternion.h"

#include <cmath>
#include <cstring>

namespace {

constexpr float LOOP_TIME = 2.0f;
constexpr float STROKE_TIME = 0.5f;
constexpr int LOOP_KEYS = 9;

struct STurn {
    ERiderBone Bone;
    float Time;
    Vec3 Degrees; // about X, then Y, then Z
};

// The engine's matrix of a quaternion turns the other way round than a positive angle does here.
Quat AxisTurn(int Axis, float Degrees) {
    const float Half = -Degrees * 0.5f * 3.14159265f / 180.0f;
    Quat q = {0, 0, 0, std::cos(Half)};
    (Axis == 0 ? q.x : Axis == 1 ? q.y : q.z) = std::sin(Half);
    return q;
}

Quat TurnQuat(const Vec3& Degrees) {
    Quat q;
    for (int Axis = 0; Axis < 3; ++Axis) {
        M_QuatMul(q, q, AxisTurn(Axis, Degrees[Axis]));
    }
    return q;
}

class CMovement {
public:
    explicit CMovement(float Length) : Length(Length) {}

    void Add(const STurn& Turn) { Turns.Add(Turn); }

    bool Save(const char* Name) const {
        UINT32 Tracks = 0;
        CBinaryFile File;
        for (UINT32 Pass = 0; Pass < 2; ++Pass) {
            if (Pass == 1) {
                File.AddMagic("ANFL");
                File.Add(Length);
                File.Add(Tracks);
            }
            for (int Bone = 0; Bone < RIDER_BONES; ++Bone) {
                const UINT32 Keys = CountKeys(Bone);
                if (Keys > 0 && Pass == 0) {
                    ++Tracks;
                } else if (Keys > 0) {
                    AddTrack(File, Bone, Keys);
                }
            }
        }
        return File.Save(Name);
    }

private:
    UINT32 CountKeys(int Bone) const {
        UINT32 Keys = 0;
        for (const STurn& Turn : Turns) {
            Keys += Turn.Bone == Bone;
        }
        return Keys;
    }

    void AddTrack(CBinaryFile& File, int Bone, UINT32 Keys) const {
        File.AddText(RIDER_SKELETON[Bone].Name);
        File.Add(Keys);
        for (const STurn& Turn : Turns) {
            if (Turn.Bone == Bone) {
                const Quat q = TurnQuat(Turn.Degrees);
                for (const float Value : {Turn.Time, q.x, q.y, q.z, q.w}) {
                    File.Add(Value);
                }
            }
        }
    }

    float Length;
    GArray<STurn> Turns;
};

// What a bone does in a loop: a constant turn and a swing about it, Waves times a loop, from Phase (parts of a wave)
// on.
struct SSwing {
    ERiderBone Bone;
    Vec3 Rest;
    Vec3 Swing;
    float Waves = 1;
    float Phase = 0;
};

template <int COUNT>
void AddSwings(CMovement& Movement, const SSwing (&Swings)[COUNT]) {
    for (const SSwing& Swing : Swings) {
        for (int Key = 0; Key < LOOP_KEYS; ++Key) {
            const float Part = static_cast<float>(Key) / (LOOP_KEYS - 1);
            const float Wave = std::sin(6.2831853f * (Swing.Waves * Part + Swing.Phase));
            Movement.Add({Swing.Bone, LOOP_TIME * Part, Swing.Rest + Swing.Swing * Wave});
        }
    }
}

// The same in every loop: breathing, and a scarf in the wind.
constexpr SSwing WIND[] = {
    {BONE_SCARF_1, {4, 0, 0}, {9, 0, 10}, 2, 0.0f},
    {BONE_SCARF_2, {0, 0, 0}, {14, 0, 14}, 2, 0.70f},
    {BONE_SCARF_3, {0, 0, 0}, {18, 0, 16}, 2, 0.40f},
    {BONE_NECK, {0, 0, 0}, {1.5f, 0, 2}, 1, 0.2f},
};

constexpr SSwing IDLE[] = {
    {BONE_ROOT, {0, 0, 0}, {0, 2, 0}, 1, 0},         {BONE_SPINE, {2, 0, 0}, {2, 2, 1.5f}, 1, 0.25f},
    {BONE_CHEST, {2, 0, 0}, {1.5f, 1, 2}, 1, 0.35f}, {BONE_HEAD, {0, 0, 0}, {1, 0, 3}, 1, 0.5f},
    {BONE_ARM_L, {0, 0, 0}, {5, 4, 0}, 1, 0.1f},     {BONE_FOREARM_L, {0, 0, 0}, {3, 0, 4}, 1, 0.2f},
    {BONE_ARM_R, {0, 0, 0}, {4, -4, 0}, 1, 0.6f},    {BONE_FOREARM_R, {0, 0, 0}, {3, 0, 3}, 1, 0.75f},
    {BONE_SWORD, {0, 0, 0}, {3, 3, 0}, 1, 0.9f},
};

// Lean is the edge of the board in degrees; positive to the rider's left, which is +X.
void AddTurn(CMovement& Movement, float Lean) {
    const SSwing Turn[] = {
        {BONE_ROOT, {0, Lean, 0}, {0, 2.5f, 0}, 2, 0},
        {BONE_HIPS, {0, Lean * 0.35f, 0}, {0, 1, 0}, 1, 0.2f},
        {BONE_SPINE, {4, -Lean * 0.25f, -Lean * 0.3f}, {1.5f, 1, 1}, 1, 0.25f},
        {BONE_CHEST, {3, -Lean * 0.25f, -Lean * 0.5f}, {1, 1, 1}, 1, 0.35f},
        {BONE_HEAD, {0, -Lean * 0.4f, -Lean * 0.6f}, {1, 0, 2}, 1, 0.5f},
        {BONE_ARM_L, {0, -12 - Lean * 0.7f, -Lean * 0.4f}, {4, 3, 0}, 1, 0.1f},
        {BONE_FOREARM_L, {0, -6, 0}, {3, 0, 3}, 1, 0.2f},
        {BONE_ARM_R, {0, 10 - Lean * 0.7f, -Lean * 0.4f}, {3, 3, 0}, 1, 0.6f},
        {BONE_FOREARM_R, {0, 4, 0}, {2, 0, 2}, 1, 0.75f},
        {BONE_SWORD, {0, 0, 0}, {2, 2, 0}, 1, 0.9f},
    };
    AddSwings(Movement, Turn);
}

// From the right shoulder down and across to the left; the blade passes the front at a quarter of a second.
constexpr STurn SWEEP[] = {
    {BONE_SPINE, 0, {0, 0, 0}},          {BONE_SPINE, 0.12f, {0, 0, -18}},    {BONE_SPINE, 0.25f, {10, 0, 4}},
    {BONE_SPINE, 0.36f, {8, 0, 22}},     {BONE_SPINE, 0.5f, {2, 0, 6}},       {BONE_CHEST, 0, {0, 0, 0}},
    {BONE_CHEST, 0.12f, {-4, 0, -24}},   {BONE_CHEST, 0.25f, {10, 0, 6}},     {BONE_CHEST, 0.36f, {6, 0, 26}},
    {BONE_CHEST, 0.5f, {2, 0, 8}},       {BONE_HEAD, 0, {0, 0, 0}},           {BONE_HEAD, 0.25f, {4, 0, -8}},
    {BONE_HEAD, 0.36f, {0, 0, -26}},     {BONE_HEAD, 0.5f, {0, 0, 0}},        {BONE_ARM_R, 0, {0, 0, 0}},
    {BONE_ARM_R, 0.12f, {-20, 34, -40}}, {BONE_ARM_R, 0.25f, {14, 6, 12}},    {BONE_ARM_R, 0.36f, {10, -12, 58}},
    {BONE_ARM_R, 0.5f, {4, 0, 12}},      {BONE_FOREARM_R, 0, {0, 0, 0}},      {BONE_FOREARM_R, 0.12f, {0, 16, -36}},
    {BONE_FOREARM_R, 0.25f, {6, 0, 4}},  {BONE_FOREARM_R, 0.36f, {0, 0, 16}}, {BONE_FOREARM_R, 0.5f, {0, 0, 4}},
    {BONE_SWORD, 0, {0, 0, 0}},          {BONE_SWORD, 0.12f, {-6, 26, -10}},  {BONE_SWORD, 0.25f, {66, 12, 0}},
    {BONE_SWORD, 0.36f, {72, 0, 16}},    {BONE_SWORD, 0.5f, {10, 0, 4}},      {BONE_ARM_L, 0, {0, 0, 0}},
    {BONE_ARM_L, 0.25f, {0, -28, 20}},   {BONE_ARM_L, 0.36f, {-10, -34, 30}}, {BONE_ARM_L, 0.5f, {0, -6, 4}},
};

// Raised over the head and brought straight down in front.
constexpr STurn CHOP[] = {
    {BONE_SPINE, 0, {0, 0, 0}},          {BONE_SPINE, 0.14f, {-14, 0, -8}},  {BONE_SPINE, 0.25f, {12, 0, 0}},
    {BONE_SPINE, 0.36f, {22, 0, 4}},     {BONE_SPINE, 0.5f, {5, 0, 0}},      {BONE_CHEST, 0, {0, 0, 0}},
    {BONE_CHEST, 0.14f, {-16, 0, -10}},  {BONE_CHEST, 0.25f, {12, 0, 0}},    {BONE_CHEST, 0.36f, {18, 0, 4}},
    {BONE_CHEST, 0.5f, {4, 0, 0}},       {BONE_HEAD, 0, {0, 0, 0}},          {BONE_HEAD, 0.14f, {8, 0, 0}},
    {BONE_HEAD, 0.36f, {-16, 0, 0}},     {BONE_HEAD, 0.5f, {0, 0, 0}},       {BONE_ARM_R, 0, {0, 0, 0}},
    {BONE_ARM_R, 0.14f, {-85, 24, 0}},   {BONE_ARM_R, 0.25f, {-20, 0, 4}},   {BONE_ARM_R, 0.36f, {14, 4, 8}},
    {BONE_ARM_R, 0.5f, {4, 0, 2}},       {BONE_FOREARM_R, 0, {0, 0, 0}},     {BONE_FOREARM_R, 0.14f, {-40, 0, 0}},
    {BONE_FOREARM_R, 0.25f, {-6, 0, 0}}, {BONE_FOREARM_R, 0.36f, {6, 0, 4}}, {BONE_FOREARM_R, 0.5f, {0, 0, 0}},
    {BONE_SWORD, 0, {0, 0, 0}},          {BONE_SWORD, 0.14f, {-24, 12, 0}},  {BONE_SWORD, 0.25f, {58, 12, 0}},
    {BONE_SWORD, 0.36f, {54, 14, 0}},    {BONE_SWORD, 0.5f, {8, 0, 0}},      {BONE_ARM_L, 0, {0, 0, 0}},
    {BONE_ARM_L, 0.14f, {-30, -20, 0}},  {BONE_ARM_L, 0.36f, {16, -28, 0}},  {BONE_ARM_L, 0.5f, {0, -6, 0}},
};

template <int COUNT>
void AddTurns(CMovement& Movement, const STurn (&Turns)[COUNT]) {
    for (const STurn& Turn : Turns) {
        Movement.Add(Turn);
    }
}

} // namespace

bool MakeRiderMoves(const char* Name, const char* File) {
    constexpr float LEAN = 17; // degrees
    const bool Stroke = std::strncmp(Name, "Cut", 3) == 0;
    CMovement Movement(Stroke ? STROKE_TIME : LOOP_TIME);
    if (!Stroke) {
        AddSwings(Movement, WIND);
    }
    if (std::strcmp(Name, "Idle") == 0) {
        AddSwings(Movement, IDLE);
    } else if (std::strcmp(Name, "TurnLeft") == 0) {
        AddTurn(Movement, LEAN);
    } else if (std::strcmp(Name, "TurnRight") == 0) {
        AddTurn(Movement, -LEAN);
    } else if (std::strcmp(Name, "Cut0") == 0) {
        AddTurns(Movement, SWEEP);
    } else {
        AddTurns(Movement, CHOP);
    }
    return Movement.Save(File);
}
