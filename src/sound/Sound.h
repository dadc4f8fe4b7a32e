// Sound: the one OpenAL device, emitters, and what they play: wave buffers shared by file name, or an Ogg Vorbis
// stream.
//
// An emitter is one OpenAL source with its own gain and a mask of volume channels; the extension of its file decides
// what it plays. Position, reference distance and the like are the owner's: plain OpenAL calls on Source. OpenAL does
// not position stereo files.
// Ownership: an emitter belongs to whoever declares it. GSound holds its address while it is loaded: it must not move,
// and is released before it dies and before SoundShutdown. Wave buffers stay until SoundShutdown.
// Units: gains and volumes are factors, 1 is the file's own loudness; times are seconds.
// Cost: EmitterLoad reads a wave file once under each name; streams decode in SoundUpdate, at most two chunks each.
// Without sound (Enabled 0) nothing below fails: loading opens no file, and the emitter counts as loaded all the same.
// Bad input: a missing or damaged file and an unknown extension are fatal, as is the release of what is not loaded.
#pragma once

#include "foundation/GTemplate.h"
#include "foundation/Types.h"

#include <AL/al.h>
#include <AL/alc.h>
#include <cstdio>
#include <vorbis/vorbisfile.h>

constexpr UINT32 SOUND_CHANNELS = 32;
constexpr UINT32 STREAM_BUFFERS = 2;

struct SSoundSystem;

struct SWaveBuffer {
    GString Name;
    ALuint Buffer = 0;
    INT32 RefCount = 0; // loads so far; releases do not lower it
};

struct SEmitter {
    float Gain = 1.0f;
    UINT32 Channels = 0; // bit i: Volumes[i] multiplies the gain
    ALuint Source = 0;
    SSoundSystem* System = nullptr; // null while not loaded

    // Streams only.
    ALuint StreamBuffers[STREAM_BUFFERS] = {};
    FILE* File = nullptr; // null for a wave emitter
    OggVorbis_File Vorbis = {};
    vorbis_info* Info = nullptr;
    vorbis_comment* Comment = nullptr;
    UINT32 Loop = 0;
    UINT32 Started = 0;
};

// Moves an emitter's gain from one value to another; it is dropped at the end and when the emitter is released.
struct SGainFade {
    SEmitter* Emitter = nullptr;
    float From = 0.0f;
    float To = 0.0f;
    float Time = 0.0f; // since the fade began
    float Duration = 0.0f;
};

struct SSoundSystem {
    ~SSoundSystem();

    UINT32 Enabled = 0;
    GMap<GString, SWaveBuffer*> BuffersByName;
    GMap<UINT32, SWaveBuffer*> BuffersById;
    GArray<SGainFade> Fades;
    float Volumes[SOUND_CHANNELS] = {};
    GArray<SEmitter*> Emitters;
    GArray<SEmitter*> Streaming;
    ALCdevice* Device = nullptr;
    ALCcontext* Context = nullptr;
};

extern SSoundSystem GSound;

// 1 if the person at the machine was asked by SoundInit and does not want to go on without sound.
extern UINT32 GSoundRefused;

// Opens the default device. 1, or 0 if that fails; then it has asked whether to go on, and GSoundRefused has the
// answer.
UINT32 SoundInit();

// Closes the device. Harmless if it is not open.
void SoundShutdown();

// Runs fades and streams; once per fixed step.
void SoundUpdate(float Delta);

// 1, or 0 if E was loaded before and has been released first.
UINT32 EmitterLoad(const char* FileName, SEmitter& E);
void EmitterRelease(SEmitter& E);

// Starts from the beginning, also what is playing.
void EmitterPlay(SEmitter& E);

// From now on the emitter starts over at its end.
void EmitterSetLoop(SEmitter& E);

// Hands Gain and the volumes of Channels to OpenAL; to be called after a change of either.
void EmitterSetGain(SEmitter& E);
