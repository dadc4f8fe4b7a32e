// Animations: rotation tracks by bone name, the files they come from and the store that shares them by file name.
//
// A track is a closed ring of keys with two control points each; sampling runs a cubic curve on the sphere between two
// keys. Nothing here moves or scales a bone.
// Ownership: the store owns what AnimAddRef returns until the last AnimRelease. Keys belong to their track.
// Units: seconds; rotations as unit quaternions, taken from the file as they are.
// Cost: AnimAddRef reads two files at most; Sample is a search in the keys and six slerps.
// Bad input: a missing file, a wrong magic and a file that ends early make AnimLoad give 0, which is fatal in
// AnimAddRef; a track or key count of zero and a key outside its animation fail an assertion. Counts are checked
// against the file's size before memory is taken. Keys that do not begin at time 0 extrapolate before the first. A time
// that is no number counts as 0; an animation of length 0 stays at 0.
#pragma once

#include "foundation/GTemplate.h"
#include "foundation/Quaternion.h"
#include "foundation/Types.h"

struct SAnimKey {
    Quat Value;
    Quat In;        // control point on the way into the key
    Quat Out;       // control point on the way out of it
    float Time = 0; // from the start of the animation
};

// Time of a track that has not got the length of its animation yet.
constexpr float ANIM_TRACK_TIME_UNSET = 0.01337f;

// The time in the loop of that length; 0 where there is none.
float AnimWrap(float Time, float Length);

struct SAnimTrack {
    // Keys stay sorted; a key behind those of equal time.
    void AddKey(const SAnimKey& Key);
    void ComputeControlPoints();
    Quat Sample(float AtTime, bool Loop) const;

    GArray<SAnimKey> Keys;
    float Time = ANIM_TRACK_TIME_UNSET;
    float Weight = 1;
};

struct SAnimation {
    // 1 if there is a track of that name; only then are q and Weight written.
    UINT32 Sample(const GString& Bone, float AtTime, bool Loop, Quat& q, float& Weight) const;

    GMap<GString, SAnimTrack> Tracks;
    float Time = 1;
};

struct SAnimEntry {
    GString Name;
    SAnimation Anim;
    INT32 RefCount = 0;
};

extern GMap<GString, SAnimEntry*> GAnimsByName;
extern GMap<SAnimation*, SAnimEntry*> GAnimsByData;

SAnimation* AnimAddRef(const char* File);
void AnimRelease(SAnimation* Anim);

// Reads an animation and, if there is one beside it, its weights file. 1, or 0 if the file is missing or damaged.
UINT32 AnimLoad(const char* File, SAnimation& Anim);

// The same from a file's content. Bytes that end early give 0 and leave the tracks before that place.
UINT32 AnimRead(GArray<UINT8>& Bytes, SAnimation& Anim);
void AnimReadWeights(const GString& Text, SAnimation& Anim);
