// Effects on whole loops: each hears the loop's end before its beginning, so that what it gives back is a loop again.
//
// Echoes and reverb run over the last seconds once, with their output thrown away, and then over the whole loop. What
// swings slowly swings a whole number of times in it.
#pragma once

#include "Samples.h"

// Replaces the sound by its echoes: Delay samples apart, from side to side, each Feedback as loud as the one before.
void Echo(SStereo& Sound, INT32 Delay, float Feedback);

// Replaces the sound by what a hall gives back. Seconds is the time for 60 dB.
void Reverb(SStereo& Sound, float Seconds);

// Adds a copy to each side that is a little late, and later and earlier in turn.
void Chorus(SStereo& Sound, float Amount);

// Takes out what is below hearing, and any constant part.
void CutLow(SStereo& Sound, float Hertz);

// Makes quiet what is above Ceiling, both sides alike, for as short as it sounds smooth.
void Limit(SStereo& Sound, float Ceiling);
