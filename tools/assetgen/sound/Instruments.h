// The instruments: each plays one note into a loop, at any place, in any order.
//
// A note's sound depends on the note alone. Loudness here is not balanced: the mixer brings each part to its level.
#pragma once

#include "Samples.h"

struct SPlayedNote {
    INT32 Start, Held; // samples
    float Hertz;
    float Strength; // 0 to 1; stronger is brighter too
    UINT32 Seed;    // another one for each note
};

using InstrumentPlay = void (*)(const SPlayedNote& Note, SStereo& Out);

void PlayLead(const SPlayedNote& Note, SStereo& Out);   // two saws and a little pulse, warm, with a late vibrato
void PlayHorn(const SPlayedNote& Note, SStereo& Out);   // soft and hollow, for the second line
void PlayBell(const SPlayedNote& Note, SStereo& Out);   // glass in frost
void PlayString(const SPlayedNote& Note, SStereo& Out); // a plucked string
void PlayArp(const SPlayedNote& Note, SStereo& Out);    // short saw that closes quickly
void PlayPad(const SPlayedNote& Note, SStereo& Out);    // a choir of saws behind a veil
void PlayBass(const SPlayedNote& Note, SStereo& Out);   // saw over a round sine

void PlayKick(const SPlayedNote& Note, SStereo& Out);
void PlaySnare(const SPlayedNote& Note, SStereo& Out);
void PlayClap(const SPlayedNote& Note, SStereo& Out);
void PlayHat(const SPlayedNote& Note, SStereo& Out);
void PlayOpenHat(const SPlayedNote& Note, SStereo& Out);
void PlaySleigh(const SPlayedNote& Note, SStereo& Out);
void PlayTom(const SPlayedNote& Note, SStereo& Out);
void PlayCrash(const SPlayedNote& Note, SStereo& Out);
void PlayRiser(const SPlayedNote& Note, SStereo& Out); // noise that climbs for the time the note is held
