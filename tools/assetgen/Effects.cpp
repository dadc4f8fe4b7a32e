// The sounds of riding and cutting, each of a few layers: a swish of air, a crack of wood and what falls from the
// boughs, a dull knock, and the hiss of a board on snow, which is a loop.
//
// They are heard thousands of times: they begin at once, have no tone that stays in the ear, and peak at PEAK. The game
// hears them from some thirty units away, which takes 9 to 10 decibels.
#include "Asset.h"
#include "sound/SoundFile.h"
#include "sound/Synth.h"

#include <cstring>

namespace {

constexpr float PEAK = -1.5f; // decibels

float Seconds(INT32 At) {
    return static_cast<float>(At) / RATE;
}

// Rises in a straight line, falls by an exponential, from a start on; 0 before.
struct SBurst {
    float Start, Attack, Fall; // seconds
    float Level(float Time) const {
        const float t = Time - Start;
        return t < 0 ? 0 : t < Attack ? t / Attack : std::exp((Attack - t) / Fall);
    }
};

// Band of noise around Hertz, as loud as the burst.
void AddNoise(CLoop& Sound, float Hertz, float Damping, const SBurst& Burst, float Gain, UINT32 Seed) {
    CFilter Filter;
    Filter.Tune(Hertz, Damping);
    for (INT32 i = 0; i < Sound.Length(); ++i) {
        Filter.Feed(WhiteNoise(i, Seed));
        Sound[i] += Filter.Band * Burst.Level(Seconds(i)) * Gain;
    }
}

// A tone that comes down from From to To in the time of Bend.
void AddKnock(CLoop& Sound, float From, float To, float Bend, const SBurst& Burst, float Gain) {
    SPhase Phase;
    for (INT32 i = SecondsToSamples(Burst.Start); i < Sound.Length(); ++i) {
        const float t = Seconds(i) - Burst.Start;
        const float Hertz = To + (From - To) * std::exp(-t / Bend);
        Sound[i] += Sine(Phase.Advance(Hertz / RATE)) * Burst.Level(Seconds(i)) * Gain;
    }
}

// Many small bursts of high noise: splinters, needles, grains of snow. Their number a second follows the burst.
void AddGrains(CLoop& Sound, float Low, float High, float PerSecond, const SBurst& Burst, float Gain, UINT32 Seed) {
    constexpr float RINGS = 0.0035f; // seconds
    constexpr INT32 LENGTH = RATE / 50;
    for (INT32 i = 0; i < Sound.Length(); ++i) {
        const float Level = Burst.Level(Seconds(i));
        if (NoiseCell(i, 1, Seed) * RATE >= PerSecond * Level) {
            continue;
        }
        CFilter Filter;
        Filter.Tune(Low * std::pow(High / Low, NoiseCell(i, 2, Seed)), 0.35f);
        const float Loud = NoiseCell(i, 3, Seed);
        for (INT32 t = 0; t < LENGTH; ++t) {
            Filter.Feed(WhiteNoise(t, Seed + static_cast<UINT32>(i)) * std::exp(-Seconds(t) / RINGS));
            Sound[i + t] += Filter.Band * Loud * Loud * (0.1f + 0.9f * Level) * Gain;
        }
    }
}

void FadeOut(CLoop& Sound, float Time) {
    const INT32 Count = SecondsToSamples(Time);
    for (INT32 i = 0; i < Count; ++i) {
        Sound[Sound.Length() - 1 - i] *= static_cast<float>(i) / static_cast<float>(Count);
    }
}

// A blade through air: a band of noise that climbs while the blade comes near and sinks when it has passed.
CLoop Swish() {
    constexpr float PASSES = 0.13f; // seconds
    CLoop Sound(SecondsToSamples(0.42f));
    CFilter Air, Body;
    for (INT32 i = 0; i < Sound.Length(); ++i) {
        const float t = (Seconds(i) - PASSES) / (Seconds(i) < PASSES ? 0.065f : 0.085f);
        const float Near = std::exp(-0.5f * t * t);
        if (i % TUNE_EVERY == 0) {
            Air.Tune(800 + 3200 * Near, 0.38f);
            Body.Tune(240 + 560 * Near, 0.5f);
        }
        Air.Feed(WhiteNoise(i, 11));
        Body.Feed(WhiteNoise(i, 12));
        Sound[i] = (Air.Band + 1.5f * Body.Band) * Near * Clamp01(Seconds(i) / 0.008f);
    }
    FadeOut(Sound, 0.05f);
    return Sound;
}

// The blow, the crack of wood, splinters, then needles and snow that come down.
CLoop Cut() {
    CLoop Sound(SecondsToSamples(1.1f));
    AddKnock(Sound, 190, 75, 0.03f, {0, 0.002f, 0.07f}, 0.8f);
    constexpr float WOOD[5] = {310, 540, 870, 1430, 2260}; // hertz
    for (INT32 i = 0; i < 5; ++i) {
        const float Fall = 0.05f - 0.008f * static_cast<float>(i);
        AddKnock(Sound, WOOD[i] * 1.06f, WOOD[i], 0.02f, {0.001f, 0.0015f, Fall}, 0.34f);
    }
    AddNoise(Sound, 2600, 1.2f, {0, 0.001f, 0.012f}, 1.3f, 21);
    AddNoise(Sound, 1100, 1.0f, {0.022f, 0.001f, 0.016f}, 0.9f, 22);
    AddNoise(Sound, 1700, 1.0f, {0.047f, 0.001f, 0.011f}, 0.7f, 23);
    AddGrains(Sound, 900, 3200, 260, {0.01f, 0.005f, 0.06f}, 1.5f, 24);
    AddGrains(Sound, 2600, 9000, 1300, {0.06f, 0.08f, 0.26f}, 0.5f, 25);
    AddNoise(Sound, 5200, 1.4f, {0.05f, 0.09f, 0.22f}, 0.10f, 26);
    AddNoise(Sound, 420, 1.2f, {0.10f, 0.07f, 0.13f}, 0.30f, 27);
    FadeOut(Sound, 0.2f);
    return Sound;
}

// Board and body against what does not give way. No crack, since it comes with every touch.
CLoop Hit() {
    CLoop Sound(SecondsToSamples(0.36f));
    AddKnock(Sound, 150, 62, 0.03f, {0, 0.003f, 0.07f}, 1.0f);
    AddKnock(Sound, 250, 224, 0.02f, {0, 0.002f, 0.04f}, 0.6f);
    AddKnock(Sound, 420, 385, 0.02f, {0, 0.002f, 0.026f}, 0.42f);
    AddNoise(Sound, 750, 1.1f, {0, 0.002f, 0.024f}, 1.7f, 31);
    AddNoise(Sound, 1900, 1.4f, {0.002f, 0.008f, 0.05f}, 0.6f, 32);
    AddGrains(Sound, 1400, 4200, 900, {0.004f, 0.008f, 0.04f}, 0.9f, 33);
    FadeOut(Sound, 0.08f);
    return Sound;
}

// Periodic noise of -1 to 1 that changes Changes times in the loop.
float Slowly(const CLoop& Sound, INT32 At, INT32 Changes, UINT32 Seed) {
    const float Part = static_cast<float>(At) / static_cast<float>(Sound.Length());
    return NoiseGradientTiled(Part * static_cast<float>(Changes), 0.5f, Changes, 1, Seed);
}

// Hiss of the edge, the rush under the base and grains that spray. All layers go round: noise and swells repeat with
// the loop, and the filters have heard its end before its beginning.
CLoop Slide() {
    constexpr INT32 HEARD_BEFORE = RATE / 2;
    CLoop Sound(SecondsToSamples(4.5f));
    AddGrains(Sound, 2200, 6500, 420, {-1, 0, 1e9f}, 0.30f, 43);
    CFilter Hiss, Rush, Soft;
    Soft.Tune(5200, 1.4f);
    for (INT32 i = -HEARD_BEFORE; i < Sound.Length(); ++i) {
        const INT32 At = Sound.Wrap(i);
        if (i % TUNE_EVERY == 0) {
            Hiss.Tune(2100 * std::exp2(0.45f * Slowly(Sound, At, 9, 44)), 1.3f);
            Rush.Tune(430 * std::exp2(0.5f * Slowly(Sound, At, 7, 45)), 1.1f);
        }
        Soft.Feed(WhiteNoise(At, 41));
        Hiss.Feed(Soft.Low);
        Rush.Feed(WhiteNoise(At, 42));
        if (i >= 0) {
            const float Edge = 1 + 0.30f * Slowly(Sound, At, 11, 46) + 0.12f * Slowly(Sound, At, 47, 47);
            Sound[i] += 0.8f * Hiss.Band * Edge + 0.95f * Rush.Band * (1 + 0.25f * Slowly(Sound, At, 13, 48));
        }
    }
    return Sound;
}

// Brings the sound to PEAK. The more drive, the more of the way there is gone by what is quiet beside the peaks.
void Finish(CLoop& Sound, float Drive) {
    Sound.Scale(Drive / Sound.Peak());
    for (INT32 i = 0; i < Sound.Length(); ++i) {
        Sound[i] = std::tanh(Sound[i]) / std::tanh(Drive);
    }
    Sound.Scale(DecibelsToGain(PEAK));
}

struct SEffect {
    const char* Name;
    CLoop (*Make)();
    float Drive;
};

constexpr SEffect EFFECTS[] = {{"Swish", Swish, 1.0f}, {"Cut", Cut, 2.5f}, {"Hit", Hit, 1.8f}, {"Slide", Slide, 0.5f}};

} // namespace

bool MakeEffects(const char* Name, const char* File) {
    for (const SEffect& Effect : EFFECTS) {
        if (std::strcmp(Effect.Name, Name) == 0) {
            CLoop Sound = Effect.Make();
            Finish(Sound, Effect.Drive);
            return SaveWave(Sound, File);
        }
    }
    return false;
}
