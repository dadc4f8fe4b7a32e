#include "sound/Sound.h"

#include "platform/Platform.h"
#include "sound/Stream.h"
#include "sound/WaveBuffers.h"

#include <AL/alut.h>
#include <algorithm>

SSoundSystem GSound;
UINT32 GSoundRefused = 0;

namespace {

constexpr ALCint MIX_RATE = 44100;   // samples per second, the rate of all shipped files
constexpr ALCint MIX_REFRESH = 30;   // mixing passes per second
constexpr UINT32 FAULT_LENGTH = 128; // characters

// False leaves a text in Fault, and open what had been opened by then.
bool OpenContext(GString& Fault) {
    GSound.Device = alcOpenDevice(nullptr);
    if (!GSound.Device) {
        Fault.Format(FAULT_LENGTH, "alcOpenDevice failed - default device could not be opened");
        return false;
    }
    const ALCint Attributes[] = {ALC_FREQUENCY, MIX_RATE, ALC_REFRESH, MIX_REFRESH, 0};
    GSound.Context = alcCreateContext(GSound.Device, Attributes);
    if (!GSound.Context) {
        Fault.Format(FAULT_LENGTH, "alcCreateContext failed with error %d", alcGetError(GSound.Device));
        return false;
    }
    if (!alcMakeContextCurrent(GSound.Context)) {
        Fault.Format(FAULT_LENGTH, "alcMakeContextCurrent failed with error %d", alcGetError(GSound.Device));
        return false;
    }
    alcProcessContext(GSound.Context);
    return true;
}

void CloseContext() {
    if (GSound.Context) {
        alcMakeContextCurrent(GSound.Context);
        alcDestroyContext(GSound.Context);
        GSound.Context = nullptr;
    }
    if (GSound.Device) {
        alcCloseDevice(GSound.Device);
        GSound.Device = nullptr;
    }
}

void RunFades(float Delta) {
    GArray<SGainFade>& Fades = GSound.Fades;
    for (UINT32 i = 0; i < Fades.Size();) {
        SGainFade& Fade = Fades[i];
        Fade.Time += Delta;
        // A fade without duration is at its end, where the quotient may be no number.
        const float t = Fade.Time < Fade.Duration ? std::max(Fade.Time / Fade.Duration, 0.0f) : 1.0f;
        Fade.Emitter->Gain = (Fade.To - Fade.From) * t + Fade.From;
        EmitterSetGain(*Fade.Emitter);
        if (Fade.Time >= Fade.Duration) {
            Fades.Remove(i, i);
        } else {
            ++i;
        }
    }
}

} // namespace

SSoundSystem::~SSoundSystem() {
    SoundShutdown();
}

UINT32 SoundInit() {
    GSoundRefused = 0;
    GString Fault;
    if (!OpenContext(Fault)) {
        CloseContext();
        Fault += "\n\nDo you want to continue without sound?";
        GSoundRefused = !GPlatform.AskYesNo("", Fault.CStr(), true);
        return 0;
    }
    GSound.Enabled = 1;
    std::fill_n(GSound.Volumes, SOUND_CHANNELS, 1.0f);
    alutInitWithoutContext(nullptr, nullptr);
    return 1;
}

void SoundShutdown() {
    CloseContext();
    alutExit();
    WaveBuffersForget();
    GSound.Enabled = 0;
}

void SoundUpdate(float Delta) {
    if (!GSound.Enabled) {
        return;
    }
    RunFades(Delta);
    for (SEmitter* Emitter : GSound.Streaming) {
        StreamUpdate(*Emitter);
    }
}
