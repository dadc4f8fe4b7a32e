#include "sound/Sound.h"

#include "foundation/Diagnostics.h"
#include "sound/Stream.h"
#include "sound/WaveBuffers.h"

#include <cctype>
#include <cstring>

namespace {

// What follows the last dot, in lower case; the whole name if there is none.
GString Extension(const char* FileName) {
    const char* Dot = std::strrchr(FileName, '.');
    GString Text = Dot ? Dot + 1 : FileName;
    for (UINT32 i = 0; i < Text.Size(); ++i) {
        Text[i] = static_cast<char>(std::tolower(static_cast<unsigned char>(Text[i])));
    }
    return Text;
}

void LoadWave(const char* FileName, SEmitter& E) {
    E.System = &GSound;
    alGenSources(1, &E.Source);
    alSourcei(E.Source, AL_BUFFER, static_cast<ALint>(WaveBufferLoad(FileName)));
}

void LoadFile(const char* FileName, SEmitter& E) {
    const GString ext = Extension(FileName);
    G_ASSERT(ext.Size() == 3);
    if (ext == "wav") {
        LoadWave(FileName, E);
    } else if (ext == "ogg") {
        StreamLoad(FileName, E);
    } else {
        FatalError("Unknown file format - file cannot be loaded - %s\n", FileName);
    }
}

void DropFades(const SEmitter& E) {
    GArray<SGainFade>& Fades = GSound.Fades;
    for (UINT32 i = Fades.Size(); i-- > 0;) {
        if (Fades[i].Emitter == &E) {
            Fades.Remove(i, i);
        }
    }
}

} // namespace

UINT32 EmitterLoad(const char* FileName, SEmitter& E) {
    const bool WasLoaded = E.System != nullptr;
    if (WasLoaded) {
        EmitterRelease(E);
    }
    E = SEmitter();
    if (GSound.Enabled) {
        LoadFile(FileName, E);
    } else {
        E.System = &GSound;
    }
    GSound.Emitters.Add(&E);
    return !WasLoaded;
}

void EmitterRelease(SEmitter& E) {
    if (E.System != &GSound) {
        FatalError("Damaged Sound Emitter found or emitter is released twice...\n");
    }
    alDeleteSources(1, &E.Source);
    if (E.File) {
        StreamRelease(E);
    }
    DropFades(E);
    GArray<SEmitter*>& Emitters = GSound.Emitters;
    INT32 i = 0;
    while (i < INT32(Emitters.Size()) && Emitters[i] != &E) {
        ++i;
    }
    G_ASSERT(i < INT32(Emitters.Size()));
    Emitters.Remove(i, i);
    E.System = nullptr;
}

void EmitterPlay(SEmitter& E) {
    if (E.File) {
        StreamStart(E);
    }
    alSourcePlay(E.Source);
}

void EmitterSetLoop(SEmitter& E) {
    E.Loop = 1;
    // A stream starts over by itself: its source would repeat the buffers that happen to be queued.
    alSourcei(E.Source, AL_LOOPING, E.File ? AL_FALSE : AL_TRUE);
}

void EmitterSetGain(SEmitter& E) {
    float Gain = E.Gain;
    for (UINT32 i = 0; i < SOUND_CHANNELS; ++i) {
        if (E.Channels >> i & 1) {
            Gain *= GSound.Volumes[i];
        }
    }
    alSourcef(E.Source, AL_GAIN, Gain);
}
