// SAnimInstance: the animations that play on one skeleton, and the pose they give.
//
// Channels stand on top of each other: the first gives the whole pose, each further one is laid over it bone by bone by
// the weights of its tracks. A channel plays one animation and cross-fades to the next; a looping channel (slot 0)
// lives as long as the instance, a one-shot (slot 1) ends itself at the end of its animation. Ownership: the instance
// holds one reference of the animation store per play name, and owns its channels. Whoever owns the skeleton fills
// BoneNames and Rotations with one entry per bone before the first Evaluate; more bones than Rotations has are left
// alone. Copying is not possible, as a channel may point into itself. Advance runs in the fixed step, Evaluate in the
// picture; Fraction, 0 to 1, is how far the picture runs ahead of the last step, in steps. Units: seconds; rotations
// are unit quaternions of the bone against its rest pose. Cost: Evaluate looks each bone's track up once per channel
// and animation, not once per picture, and costs six slerps per bone and moving track; it does not allocate once warm.
// Bad input: an unknown play name gives 0 and changes nothing; a file that can't be loaded is fatal.
#pragma once

#include "anim/Animation.h"

struct SAnimRef {
    INT32 Group = 0;
    SAnimation* Anim = nullptr; // one reference of the store
};

struct SAnimChannel {
    // Begins an animation: at once if nothing plays, else by a cross-fade.
    void Start(SAnimation* Anim, float Rate, UINT32 Slot);

    // Turns the cross-fade as it stands into the still pose Frozen.
    void Freeze();

    // One fixed step; 1 if the channel has come to its end.
    UINT32 Advance(float Step);

    // 1 if the channel says anything about the bone; only then are q and Weight written.
    UINT32 Sample(const GString& Bone, float Fraction, Quat& q, float& Weight) const;

    SAnimation* Cur = nullptr;  // fading in or playing
    SAnimation* Prev = nullptr; // fading out: a stored animation or Frozen
    float CurTime = 0;
    float PrevTime = 0;
    float Blend = 0;     // 0 is all Prev, 1 all Cur
    float BlendRate = 1; // per second
    UINT32 Once = 0;     // 1: a one-shot
    INT32 Group = -1;
    SAnimation Frozen;
    float LastStep = 0;

    // Looks the tracks of all bones up, unless that was done since the animations last changed.
    void ResolveTracks(const GArray<GString>& BoneNames);

    // Sample for the bone of that index, by the tracks that ResolveTracks found.
    UINT32 SampleResolved(UINT32 Bone, float Fraction, Quat& q, float& Weight) const;

private:
    UINT32 Mix(const SAnimTrack* CurTrack, const SAnimTrack* PrevTrack, float Fraction, Quat& q, float& Weight) const;

    // By bone; null where the animation leaves the bone alone. They belong to the animation named beside them.
    GArray<const SAnimTrack*> CurTracks;
    GArray<const SAnimTrack*> PrevTracks;
    const SAnimation* CurTracksOf = nullptr;
    const SAnimation* PrevTracksOf = nullptr;
};

struct SAnimInstance {
    SAnimInstance() = default;
    ~SAnimInstance();
    SAnimInstance(const SAnimInstance&) = delete;
    SAnimInstance& operator=(const SAnimInstance&) = delete;

    // Loads the file and makes it known under the play name. Always 1.
    UINT32 Add(const char* File, const char* PlayName, INT32 Group);

    // Slot 0 loops, slot 1 is a one-shot; BlendRate is the speed of the cross-fade per second. 0 for an unknown name.
    UINT32 Play(UINT32 Slot, const char* PlayName, float BlendRate);

    void Advance(float Step);
    void Evaluate(float Fraction);

    GArray<GString> BoneNames;
    GArray<Quat> Rotations;
    GMap<GString, SAnimRef> Anims;
    GList<SAnimChannel> Channels; // in order of creation

private:
    SAnimChannel& ChannelFor(UINT32 Slot, INT32 Group);

    GArray<SAnimation*> Replaced; // lost their play name to others, and may still play
};
