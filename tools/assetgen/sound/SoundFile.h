// Writers of sound files. Both give the same bytes for the same samples: nothing in them tells the time or the machine.
#pragma once

#include "Samples.h"

// 16 bits, one channel. Samples beyond full scale are cut off.
bool SaveWave(const CLoop& Sound, const char* File);

// Vorbis at about 130 kilobits a second. Of one channel is the left side alone.
bool SaveVorbis(const SStereo& Sound, const char* File, int Channels = 2);
