// The wave buffers that emitters share by file name.
#pragma once

#include "sound/Sound.h"

// The OpenAL buffer with that wave file, read at the first call with the name. A missing or bad file is fatal.
ALuint WaveBufferLoad(const char* FileName);

// Drops all records. For when the device is closed, which takes the buffers themselves.
void WaveBuffersForget();
