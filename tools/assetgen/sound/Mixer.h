// The band: which instrument plays each part, how loud, where it stands, and how much of it goes into the hall.
//
// Levels are what one hears: each part is measured while it plays and brought to its level, however the instrument is
// built, so that a change of an instrument leaves the balance alone.
#pragma once

#include "Samples.h"
#include "Score.h"

// One part alone, at its level, without hall and echo. Out is as long as the song.
void PlayPart(const SSong& Song, EPart Part, SStereo& Out);

// All parts, finished: no peak is above PEAK, the loop is closed.
SStereo PlaySong(const SSong& Song);

// Decibels; coding adds up to one. The game plays the music as it is, and the effects from some thirty units away,
// which takes ten: music that went up to full scale would drown the sliding.
constexpr float PEAK = -7.9f;
