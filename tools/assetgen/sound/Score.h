// A score: what is played and when, without how it sounds.
//
// Time is counted in steps, sixteen to a bar. A score is a row of sections; each gives its chords and, for each part, a
// line of text. Null is a part that rests. Lines are read by ReadScore, which says on standard error what does not add
// up. Forms of a line:
//
//   chords     one name a bar from the table of chords; "Asus+A" changes in the middle of the bar
//   melody     "F#5:3 -:2 A4:4! |" is pitch or rest, steps, accent; a bar line after every sixteen steps
//   pattern    sixteen characters a bar, repeated until the section ends; "-" holds, "." rests, and
//              bass:    1, 5, 8   root, fifth, octave of the chord
//              arp:     1 to 8    tones of the chord's voicing from below, going on an octave higher
//              strum:   d, u      down loud, up soft
//              drums:   X x o     accent, normal, ghost;  h m l: high, middle, low tom
#pragma once

#include "foundation/GTemplate.h"
#include "foundation/Types.h"

constexpr INT32 STEPS_PER_BAR = 16;

enum EPart {
    PART_LEAD,
    PART_HARMONY,
    PART_COUNTER,
    PART_BELLS,
    PART_RIFF,
    PART_PLUCK,
    PART_ARP,
    PART_STRUM,
    PART_PAD,
    PART_BASS,
    PART_KICK,
    PART_SNARE,
    PART_CLAP,
    PART_HAT,
    PART_OPEN_HAT,
    PART_SLEIGH,
    PART_TOM,
    PART_CRASH,
    PART_RISER,
    PART_COUNT
};

struct SChord {
    const char* Name;
    const char* Bass;   // one pitch
    const char* Voices; // four pitches from below
};

struct SDrumLine {
    EPart Part;
    const char* Steps; // one bar or two
};

struct SGroove {
    const SDrumLine* Lines;
    UINT32 Count;
};

struct SSection {
    const char* Name;
    float Dynamics; // 1 is loud; scales every note
    const char* Chords;
    const char* Melodies[PART_RIFF + 1]; // lead, harmony, counter, bells, riff
    const char* Pluck;
    const char* Arp;
    const char* Strum;
    const char* Bass;
    bool Pad;
    bool Crash; // a cymbal on the first beat
    const SGroove* Groove;
    const SGroove* HalfFill; // plays instead of the groove in the section's fourth bar; null for none
    const SGroove* Fill;     // ... in its last bar
};

struct SScore {
    INT32 StepSamples; // length of a step
    const SChord* Chords;
    UINT32 ChordCount;
    const SSection* Sections;
    UINT32 SectionCount;
};

struct SNote {
    INT32 Step;
    float Steps;    // length
    INT32 Pitch;    // half tones, 69 is A4
    float Strength; // 0 to 1
    float Delay;    // steps, of the tones of a strum
};

struct SSong {
    INT32 StepSamples = 0;
    INT32 Steps = 0;
    INT32 Length() const { return Steps * StepSamples; } // samples
    GArray<SNote> Parts[PART_COUNT];
};

// False if a line of the score cannot be read.
bool ReadScore(const SScore& Score, SSong& Song);

extern const SScore RUSH;
