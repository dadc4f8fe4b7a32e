#include "anim/Animation.h"
#include "foundation/GCheck.h"

#include <algorithm>
#include <cmath>

namespace {

// Control points stand at a third of the way on either side of a key.
constexpr float IN_PART = 0.666667f;
constexpr float OUT_PART = 0.333333f;

// Of the four numbers alone: the result is not of unit length.
Quat Between(const Quat& a, const Quat& b, float t) {
    return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t, a.z + (b.z - a.z) * t, a.w + (b.w - a.w) * t};
}

// De Casteljau's scheme on the sphere.
Quat SampleCurve(const SAnimKey& A, const SAnimKey& B, float u) {
    const Quat P = M_QuatSlerp(A.Value, A.Out, u);
    const Quat Q = M_QuatSlerp(A.Out, B.In, u);
    const Quat R = M_QuatSlerp(B.In, B.Value, u);
    const Quat S = M_QuatSlerp(P, Q, u);
    const Quat T = M_QuatSlerp(Q, R, u);
    return M_QuatSlerp(S, T, u);
}

float Clamped(float Time, float Length) {
    return Time < 0 ? 0 : Time > Length ? Length : Time;
}

} // namespace

float AnimWrap(float Time, float Length) {
    const float Rest = std::fmod(Time, Length);
    if (std::isnan(Rest)) {
        return 0;
    }
    return Rest < 0 ? Rest + Length : Rest;
}

void SAnimTrack::AddKey(const SAnimKey& k) {
    GCHECK_IN("GameAnim", k.Time <= Time && k.Time >= 0, "k.Time <= Time && k.Time >= 0");
    UINT32 At = Keys.count;
    // From the end, since files mostly have their keys in order.
    while (At > 0 && Keys[At - 1].Time > k.Time) {
        --At;
    }
    Keys.Insert(At, k);
}

void SAnimTrack::ComputeControlPoints() {
    for (UINT32 i = 0; i < Keys.count; ++i) {
        SAnimKey& Key = Keys[i];
        const Quat& Before = Keys[(i + Keys.count - 1) % Keys.count].Value;
        const Quat& After = Keys[(i + 1) % Keys.count].Value;
        Key.In = Between(Before, Key.Value, IN_PART);
        Key.Out = Between(Key.Value, After, OUT_PART);
    }
}

Quat SAnimTrack::Sample(float AtTime, bool Loop) const {
    if (Keys.count == 0) {
        return {0, 0, 0, 0};
    }
    AtTime = std::isnan(AtTime) ? 0 : AtTime;
    const float t = Loop ? AnimWrap(AtTime, Time) : Clamped(AtTime, Time);
    // The search takes the time as it is given, not the wrapped one: past the last key the ring closes.
    const SAnimKey* After = std::upper_bound(Keys.begin(), Keys.end(), AtTime,
                                             [](float Given, const SAnimKey& Key) { return Given < Key.Time; });
    const bool Inside = After != Keys.end() && After != Keys.begin();
    const SAnimKey& A = Inside ? After[-1] : Keys[Keys.count - 1];
    const SAnimKey& B = Inside ? *After : Keys[0];
    if (A.Time == B.Time) {
        return A.Value;
    }
    return SampleCurve(A, B, (t - A.Time) / (B.Time - A.Time));
}

UINT32 SAnimation::Sample(const GString& Bone, float AtTime, bool Loop, Quat& q, float& Weight) const {
    const auto* Found = Tracks.Find(Bone);
    if (!Found) {
        return 0;
    }
    q = Found->value.Sample(AtTime, Loop);
    Weight = Found->value.Weight;
    return 1;
}
