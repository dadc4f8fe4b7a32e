#include "Instruments.h"
#include "Synth.h"

namespace {

float Fall(float Seconds, float Time) {
    return std::exp(-Seconds / Time);
}

// A skin: a sine that starts high and comes down, with a short knock in front.
struct SSkin {
    float From, To, Bend; // hertz, hertz, seconds
    float Rings;          // seconds
    float Knock;          // how loud the stick is
    float Length;         // seconds
};

void PlaySkin(const SSkin& Skin, float Pan, const SPlayedNote& Note, SStereo& Out) {
    SPhase Phase;
    CFilter Stick;
    Stick.Tune(3500, 1.0f);
    const INT32 Length = SecondsToSamples(Skin.Length);
    for (INT32 i = 0; i < Length; ++i) {
        const float Seconds = static_cast<float>(i) / RATE;
        const float Hertz = Skin.To + (Skin.From - Skin.To) * Fall(Seconds, Skin.Bend);
        Stick.Feed(WhiteNoise(i, Note.Seed) * Fall(Seconds, 0.004f) * Skin.Knock);
        const float Tone = Sine(Phase.Advance(Hertz / RATE)) * Fall(Seconds, Skin.Rings);
        const float End = Clamp01(static_cast<float>(Length - i) / 1000);
        const float Sample = (Tone + Stick.Low) * End * Note.Strength;
        Out.Left[Note.Start + i] += Sample * (1 - Pan);
        Out.Right[Note.Start + i] += Sample * (1 + Pan);
    }
}

// Noise above a cutoff, different on both sides as far as Width says.
struct SBrush {
    float Low, High; // hertz
    float Attack;    // seconds
    float Rings;     // seconds
    float Width;     // 0 to 1
    float Length;    // seconds
};

void PlayBrush(const SBrush& Brush, float Pan, const SPlayedNote& Note, SStereo& Out) {
    CFilter Highs[2], Lows[2];
    for (INT32 Side = 0; Side < 2; ++Side) {
        Highs[Side].Tune(Brush.Low, 0.9f);
        Lows[Side].Tune(Brush.High, 1.2f);
    }
    const INT32 Length = SecondsToSamples(Brush.Length);
    for (INT32 i = 0; i < Length; ++i) {
        const float Seconds = static_cast<float>(i) / RATE;
        const float Both = WhiteNoise(i, Note.Seed);
        const float Side = WhiteNoise(i, Note.Seed + 1) * Brush.Width;
        const float End = Clamp01(static_cast<float>(Length - i) / 1000);
        const float Gain = Clamp01(Seconds / Brush.Attack) * Fall(Seconds, Brush.Rings) * End * Note.Strength;
        Lows[0].Feed(Both + Side);
        Lows[1].Feed(Both - Side);
        Highs[0].Feed(Lows[0].Low);
        Highs[1].Feed(Lows[1].Low);
        Out.Left[Note.Start + i] += Highs[0].High * Gain * (1 - Pan);
        Out.Right[Note.Start + i] += Highs[1].High * Gain * (1 + Pan);
    }
}

SPlayedNote Later(SPlayedNote Note, float Seconds, float Strength) {
    Note.Start += SecondsToSamples(Seconds);
    Note.Strength *= Strength;
    Note.Seed += 17;
    return Note;
}

} // namespace

void PlayKick(const SPlayedNote& Note, SStereo& Out) {
    PlaySkin({190, 48, 0.028f, 0.13f, 0.5f, 0.45f}, 0, Note, Out);
}

void PlaySnare(const SPlayedNote& Note, SStereo& Out) {
    PlaySkin({330, 185, 0.012f, 0.07f, 0.5f, 0.3f}, 0.05f, Later(Note, 0, 0.8f), Out);
    PlayBrush({1400, 9000, 0.001f, 0.075f, 0.3f, 0.35f}, 0.05f, Later(Note, 0, 0.9f * Note.Strength), Out);
}

void PlayClap(const SPlayedNote& Note, SStereo& Out) {
    constexpr float HANDS[4] = {0, 0.011f, 0.019f, 0.031f}; // seconds
    for (INT32 i = 0; i < 4; ++i) {
        const float Rings = i == 3 ? 0.075f : 0.007f;
        SPlayedNote Hand = Later(Note, HANDS[i], 1);
        Hand.Seed += static_cast<UINT32>(i);
        PlayBrush({900, 4200, 0.001f, Rings, 0.5f, Rings * 6}, -0.1f, Hand, Out);
    }
}

void PlayHat(const SPlayedNote& Note, SStereo& Out) {
    PlayBrush({7500, 14000, 0.001f, 0.018f + 0.012f * Note.Strength, 0.25f, 0.15f}, 0.25f, Note, Out);
}

void PlayOpenHat(const SPlayedNote& Note, SStereo& Out) {
    PlayBrush({6800, 13000, 0.002f, 0.10f, 0.3f, 0.4f}, 0.25f, Note, Out);
}

// A handful of small bells that ring a moment after one another.
void PlaySleigh(const SPlayedNote& Note, SStereo& Out) {
    constexpr INT32 BELLS = 7;
    constexpr float LATEST = 0.022f, RINGS = 0.055f; // seconds
    for (UINT32 Bell = 0; Bell < BELLS; ++Bell) {
        const INT32 Number = static_cast<INT32>(Bell);
        const float Hertz = 4300 + 640.0f * static_cast<float>(Bell) + 90 * WhiteNoise(Number, 5);
        const float Pan = 0.6f * WhiteNoise(Number, 6);
        const INT32 Start = Note.Start + SecondsToSamples(LATEST * NoiseCell(Number, 1, Note.Seed));
        SPhase Phase;
        for (INT32 i = 0; i < SecondsToSamples(0.4f); ++i) {
            const float Seconds = static_cast<float>(i) / RATE;
            const float Gain = Note.Strength * Fall(Seconds, RINGS) * Clamp01(Seconds / 0.002f);
            const float Sample = Sine(Phase.Advance(Hertz / RATE)) * Gain;
            Out.Left[Start + i] += Sample * (1 - Pan);
            Out.Right[Start + i] += Sample * (1 + Pan);
        }
    }
}

void PlayTom(const SPlayedNote& Note, SStereo& Out) {
    const float Pan = Clamp01((160 - Note.Hertz) / 90) - 0.5f; // high ones to the left
    PlaySkin({Note.Hertz * 1.7f, Note.Hertz, 0.035f, 0.16f, 0.35f, 0.6f}, Pan, Note, Out);
}

void PlayCrash(const SPlayedNote& Note, SStereo& Out) {
    PlayBrush({3200, 12000, 0.003f, 0.55f, 0.7f, 2.6f}, -0.2f, Note, Out);
    PlayBrush({6000, 15000, 0.002f, 0.2f, 0.5f, 0.8f}, -0.2f, Later(Note, 0, 0.8f), Out);
}

void PlayRiser(const SPlayedNote& Note, SStereo& Out) {
    CFilter Left, Right;
    for (INT32 i = 0; i < Note.Held; ++i) {
        const float Part = static_cast<float>(i) / static_cast<float>(Note.Held);
        if (i % TUNE_EVERY == 0) {
            Left.Tune(500 * std::exp2(3.6f * Part), 0.5f);
            Right.Tune(520 * std::exp2(3.6f * Part), 0.5f);
        }
        Left.Feed(WhiteNoise(i, Note.Seed));
        Right.Feed(WhiteNoise(i, Note.Seed + 1));
        const float Gain = Part * Part * Note.Strength * Clamp01(static_cast<float>(Note.Held - i) / 800);
        Out.Left[Note.Start + i] += Left.Band * Gain;
        Out.Right[Note.Start + i] += Right.Band * Gain;
    }
}
