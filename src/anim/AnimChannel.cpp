#include "anim/AnimInstance.h"
#include "foundation/Diagnostics.h"

#include <algorithm>

namespace {

// A still track: one key, whose value is its own control point.
SAnimTrack StillTrack(const Quat& q, float Weight) {
    SAnimTrack Track;
    Track.Weight = Weight;
    Track.Keys.Add({q, q, q, 0});
    return Track;
}

void FindTracks(const SAnimation& Anim, const GArray<GString>& BoneNames, GArray<const SAnimTrack*>& Tracks) {
    Tracks.Resize(BoneNames.count);
    for (UINT32 i = 0; i < BoneNames.count; ++i) {
        const auto* Found = Anim.Tracks.Find(BoneNames[i]);
        Tracks[i] = Found ? &Found->value : nullptr;
    }
}

const SAnimTrack* FindTrack(const SAnimation* Anim, const GString& Bone) {
    const auto* Found = Anim ? Anim->Tracks.Find(Bone) : nullptr;
    return Found ? &Found->value : nullptr;
}

} // namespace

void SAnimChannel::Start(SAnimation* Anim, float Rate, UINT32 Slot) {
    if (!Cur) {
        G_ASSERT(Prev == 0);
    } else if (!Prev) {
        Prev = Cur;
    } else {
        Freeze();
        Prev = &Frozen;
    }
    Blend = 0;
    Cur = Anim;
    BlendRate = Rate;
    Once = Slot;
    PrevTime = CurTime;
    if (Slot) {
        CurTime = 0;
    }
}

// Both sides are sampled before Frozen changes, since Prev may be Frozen itself.
void SAnimChannel::Freeze() {
    G_ASSERT(Prev && Cur);
    const bool Loop = Once == 0;
    GMap<GString, SAnimTrack> Pose;
    for (GMap<GString, SAnimTrack>::Iterator It(Prev->Tracks); It.Valid(); It.Next()) {
        Pose.Insert(It.Key(), StillTrack(It.Value().Sample(PrevTime, Loop), It.Value().Weight));
    }
    for (GMap<GString, SAnimTrack>::Iterator It(Cur->Tracks); It.Valid(); It.Next()) {
        const Quat q = It.Value().Sample(CurTime, Loop);
        const float Weight = It.Value().Weight;
        if (auto* Found = Pose.Find(It.Key())) {
            const SAnimTrack& Old = Found->value;
            Found->value =
                StillTrack(M_QuatSlerp(Old.Keys[0].Value, q, Blend), Old.Weight + (Weight - Old.Weight) * Blend);
        } else {
            Pose.Insert(It.Key(), StillTrack(q, Weight));
        }
    }
    Frozen.Tracks = Pose;
    CurTracksOf = PrevTracksOf = nullptr;
}

// The order of the comparisons takes a step that is no number back to 0 and ends a one-shot with it.
UINT32 SAnimChannel::Advance(float Step) {
    LastStep = Step;
    Blend = std::min(1.0f, std::max(0.0f, Blend + BlendRate * Step));
    if (Blend == 1.0f) {
        Prev = nullptr;
    }
    CurTime += Step;
    PrevTime += Step;
    if (Once) {
        if (Cur && !(CurTime <= Cur->Time)) {
            Cur = Prev = nullptr;
            Once = 0;
            return 1;
        }
    } else if (Cur) {
        CurTime = AnimWrap(CurTime, Cur->Time);
        PrevTime = AnimWrap(PrevTime, Cur->Time);
    }
    return 0;
}

// A track that isn't there counts as one of weight 0.
UINT32 SAnimChannel::Mix(const SAnimTrack* CurTrack, const SAnimTrack* PrevTrack, float Fraction, Quat& q,
                         float& Weight) const {
    const float Ahead = LastStep * Fraction;
    const bool Loop = Once == 0;
    if (!Cur || !Prev) {
        const SAnimTrack* Track = Cur ? CurTrack : PrevTrack;
        if (!Track) {
            return 0;
        }
        q = Track->Sample((Cur ? CurTime : PrevTime) + Ahead, Loop);
        Weight = Track->Weight;
        return 1;
    }
    const float CurWeight = CurTrack ? CurTrack->Weight : 0;
    const float PrevWeight = PrevTrack ? PrevTrack->Weight : 0;
    if (CurWeight == 0 && PrevWeight == 0) {
        return 0;
    }
    if (PrevWeight == 0) {
        q = CurTrack->Sample(CurTime + Ahead, Loop);
        Weight = CurWeight;
    } else if (CurWeight == 0) {
        q = PrevTrack->Sample(PrevTime + Ahead, Loop);
        Weight = PrevWeight;
    } else {
        q = M_QuatSlerp(PrevTrack->Sample(PrevTime + Ahead, Loop), CurTrack->Sample(CurTime + Ahead, Loop),
                        CurWeight + Blend - PrevWeight);
        Weight = PrevWeight + (CurWeight - PrevWeight) * Blend;
    }
    return 1;
}

UINT32 SAnimChannel::Sample(const GString& Bone, float Fraction, Quat& q, float& Weight) const {
    return Mix(FindTrack(Cur, Bone), FindTrack(Prev, Bone), Fraction, q, Weight);
}

void SAnimChannel::ResolveTracks(const GArray<GString>& BoneNames) {
    if (Cur && (CurTracksOf != Cur || CurTracks.count != BoneNames.count)) {
        FindTracks(*Cur, BoneNames, CurTracks);
        CurTracksOf = Cur;
    }
    if (Prev && (PrevTracksOf != Prev || PrevTracks.count != BoneNames.count)) {
        FindTracks(*Prev, BoneNames, PrevTracks);
        PrevTracksOf = Prev;
    }
}

UINT32 SAnimChannel::SampleResolved(UINT32 Bone, float Fraction, Quat& q, float& Weight) const {
    return Mix(Cur ? CurTracks[Bone] : nullptr, Prev ? PrevTracks[Bone] : nullptr, Fraction, q, Weight);
}
