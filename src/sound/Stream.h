// The streaming half of an emitter: an Ogg Vorbis file, decoded piece by piece into two buffers that take turns on the
// emitter's source. Emitter.cpp and SoundUpdate are the only callers in the program.
#pragma once

#include "sound/Sound.h"

// Bytes of a chunk: 16-bit samples, 0.37 seconds of 44.1 kHz stereo.
constexpr int STREAM_CHUNK = 0x10000;

// Opens the file, fatal if it is missing or damaged, and takes the emitter into GSound.Streaming.
void StreamLoad(const char* FileName, SEmitter& E);

// Reads the headers from E.File. 1, or 0 if it holds no stream; E.File is then still open.
UINT32 StreamOpen(SEmitter& E);

// Undoes StreamLoad. The source must be gone already: it may still hold the buffers.
void StreamRelease(SEmitter& E);

// Decodes the next chunk into the buffer: 1, 0 at the end of the stream, -1 on a read error. Only 1 changes the buffer.
// After an error the next call goes on behind the damage, if the file goes on there.
INT32 StreamFill(SEmitter& E, ALuint Buffer);

// Goes to the beginning and queues two chunks. The source plays when the caller says so.
void StreamStart(SEmitter& E);

// Refills what has been played. The result of the last fill, or 1 if there was none. After an error the buffer plays
// its old content once more.
INT32 StreamUpdate(SEmitter& E);
