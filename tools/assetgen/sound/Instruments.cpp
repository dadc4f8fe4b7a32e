#include "Instruments.h"

#include "Synth.h"

namespace {

// Frequency of a voice that is a few hundredths of a half tone off, as a phase step.
float Step(float Hertz, float Cents) {
    return Hertz * std::exp2(Cents / 1200) / RATE;
}

// Equal power; -1 is left.
struct SPan {
    explicit SPan(float Place) {
        const float Angle = (Place + 1) * TURN / 8;
        Left = std::cos(Angle);
        Right = std::sin(Angle);
    }
    float Left, Right;
};

float Between(UINT32 Seed, float From, float To) {
    return Mix(From, To, NoiseCell(1, 2, Seed));
}

} // namespace

void PlayLead(const SPlayedNote& Note, SStereo& Out) {
    constexpr SEnvelope LOUD = {0.012f, 0.25f, 0.75f, 0.14f};
    constexpr float VIBRATO_HERTZ = 5.4f, VIBRATO_DEPTH = 0.0045f;
    constexpr float VIBRATO_FROM = 0.22f, VIBRATO_FULL = 0.55f; // seconds
    SPhase First, Second, Body;
    First.At = Between(Note.Seed, 0, 1);
    Second.At = Between(Note.Seed + 1, 0, 1);
    CFilter Left, Right;
    const float Up = Step(Note.Hertz, 5), Down = Step(Note.Hertz, -5), Even = Step(Note.Hertz, 0);
    for (INT32 i = 0; i < LOUD.Length(Note.Held); ++i) {
        const float Seconds = static_cast<float>(i) / RATE;
        if (i % TUNE_EVERY == 0) {
            const float Bright = 900 + 2600 * Note.Strength * (0.45f + 0.55f * std::exp(-Seconds * 5));
            Left.Tune(Bright + Note.Hertz, 1.1f);
            Right.Tune(Bright + Note.Hertz, 1.1f);
        }
        const float Late = SmoothStep(VIBRATO_FROM, VIBRATO_FULL, Seconds);
        const float Bend = 1 + VIBRATO_DEPTH * Late * Sine(Seconds * VIBRATO_HERTZ);
        const float a = Saw(First.Advance(Up * Bend), Up * Bend);
        const float b = Saw(Second.Advance(Down * Bend), Down * Bend);
        const float c = Triangle(Body.Advance(Even * Bend));
        Left.Feed(0.7f * a + 0.35f * b + 0.6f * c);
        Right.Feed(0.35f * a + 0.7f * b + 0.6f * c);
        const float Gain = LOUD.Level(i, Note.Held) * Note.Strength;
        Out.Left[Note.Start + i] += Left.Low * Gain;
        Out.Right[Note.Start + i] += Right.Low * Gain;
    }
}

void PlayHorn(const SPlayedNote& Note, SStereo& Out) {
    constexpr SEnvelope LOUD = {0.045f, 0.3f, 0.8f, 0.18f};
    SPhase First, Second;
    CFilter Filter;
    const float Even = Step(Note.Hertz, 0), Off = Step(Note.Hertz, 7);
    for (INT32 i = 0; i < LOUD.Length(Note.Held); ++i) {
        const float Seconds = static_cast<float>(i) / RATE;
        const float Level = LOUD.Level(i, Note.Held);
        if (i % TUNE_EVERY == 0) {
            Filter.Tune(Note.Hertz + 1700 * Note.Strength * Level, 1.2f);
        }
        const float Width = 0.42f + 0.08f * Sine(Seconds * 0.9f);
        Filter.Feed(0.7f * Pulse(First.Advance(Even), Even, Width) + 0.5f * Triangle(Second.Advance(Off)));
        const float Gain = Level * Note.Strength;
        Out.Left[Note.Start + i] += Filter.Low * Gain;
        Out.Right[Note.Start + i] += Filter.Low * Gain;
    }
}

// One sine bends the other; ratios that are no whole numbers sound like metal and glass.
void PlayBell(const SPlayedNote& Note, SStereo& Out) {
    constexpr float RATIO = 3.52f, RINGS = 1.6f, ATTACK = 0.003f; // seconds
    const INT32 Length = SecondsToSamples(2.4f);
    const SPan Pan(Between(Note.Seed, -0.5f, 0.5f));
    SPhase Carrier, Bender, Octave;
    const float Even = Step(Note.Hertz, 0);
    for (INT32 i = 0; i < Length; ++i) {
        const float Seconds = static_cast<float>(i) / RATE;
        const float Bend = 0.22f * Note.Strength * std::exp(-Seconds * 7) * Sine(Bender.Advance(Even * RATIO));
        const float Tone = std::sin(TURN * (Carrier.Advance(Even) + Bend));
        const float Shine = 0.25f * std::exp(-Seconds * 4) * Sine(Octave.Advance(Even * 2.003f));
        const float End = Clamp01(static_cast<float>(Length - i) / 4000);
        const float Gain = Note.Strength * std::exp(-Seconds * 3 / RINGS) * Clamp01(Seconds / ATTACK) * End;
        Out.Left[Note.Start + i] += (Tone + Shine) * Gain * Pan.Left;
        Out.Right[Note.Start + i] += (Tone + Shine) * Gain * Pan.Right;
    }
}

// Noise that goes round in a delay of one wave's length. On each round two neighbours are mixed, which takes the height
// out of it and delays it by as much of a sample as the mix has of the older one.
void PlayString(const SPlayedNote& Note, SStereo& Out) {
    constexpr SEnvelope LOUD = {0.001f, 1.0f, 1.0f, 0.25f};
    constexpr float OLDER = 0.3f;
    const float Wave = RATE / Note.Hertz - OLDER;
    const INT32 Size = static_cast<INT32>(Wave) + 2;
    CLoop Line(Size);
    CFilter Soft;
    Soft.Tune(1200 + 4200 * Note.Strength, 1.4f);
    for (INT32 i = 0; i < static_cast<INT32>(Wave); ++i) {
        Soft.Feed(WhiteNoise(i, Note.Seed));
        Line[i] = Soft.Low;
    }
    const float Keep = std::pow(0.001f, 1 / (Note.Hertz * 2.2f)); // 60 dB in 2.2 seconds
    const float Part = Wave - std::floor(Wave);
    const SPan Pan(Between(Note.Seed + 3, -0.35f, 0.35f));
    float Last = 0;
    INT32 Write = static_cast<INT32>(Wave);
    for (INT32 i = 0; i < LOUD.Length(Note.Held); ++i) {
        const INT32 Whole = static_cast<INT32>(Wave);
        const float Read = Mix(Line[Write - Whole], Line[Write - Whole - 1], Part);
        const float Next = Keep * Mix(Read, Last, OLDER);
        Last = Read;
        Line[Write] = Next;
        Write = Write + 1 == Size ? 0 : Write + 1;
        const float Gain = LOUD.Level(i, Note.Held) * Note.Strength;
        Out.Left[Note.Start + i] += Next * Gain * Pan.Left;
        Out.Right[Note.Start + i] += Next * Gain * Pan.Right;
    }
}

void PlayArp(const SPlayedNote& Note, SStereo& Out) {
    constexpr SEnvelope LOUD = {0.003f, 0.16f, 0.25f, 0.12f};
    const SPan Pan(Note.Seed % 2 ? 0.45f : -0.45f);
    SPhase First, Second;
    Second.At = Between(Note.Seed, 0, 1);
    CFilter Filter;
    const float Even = Step(Note.Hertz, -4), Off = Step(Note.Hertz, 6);
    for (INT32 i = 0; i < LOUD.Length(Note.Held); ++i) {
        if (i % TUNE_EVERY == 0) {
            const float Seconds = static_cast<float>(i) / RATE;
            Filter.Tune(500 + 4000 * Note.Strength * std::exp(-Seconds * 11), 0.9f);
        }
        Filter.Feed(Saw(First.Advance(Even), Even) + 0.6f * Saw(Second.Advance(Off), Off));
        const float Gain = LOUD.Level(i, Note.Held) * Note.Strength;
        Out.Left[Note.Start + i] += Filter.Low * Gain * Pan.Left;
        Out.Right[Note.Start + i] += Filter.Low * Gain * Pan.Right;
    }
}

void PlayPad(const SPlayedNote& Note, SStereo& Out) {
    constexpr SEnvelope LOUD = {0.18f, 1.0f, 0.9f, 0.5f};
    constexpr INT32 VOICES = 4;
    constexpr float CENTS[VOICES] = {-11, -4, 5, 12};
    constexpr float PLACES[VOICES] = {-0.9f, 0.4f, -0.4f, 0.9f};
    SPhase Phases[VOICES];
    float Steps[VOICES], Lefts[VOICES], Rights[VOICES];
    for (UINT32 v = 0; v < VOICES; ++v) {
        Phases[v].At = Between(Note.Seed + v, 0, 1);
        Steps[v] = Step(Note.Hertz, CENTS[v]);
        Lefts[v] = SPan(PLACES[v]).Left;
        Rights[v] = SPan(PLACES[v]).Right;
    }
    CFilter Left, Right;
    for (INT32 i = 0; i < LOUD.Length(Note.Held); ++i) {
        if (i % TUNE_EVERY == 0) {
            const float Swell = static_cast<float>(i) / RATE;
            const float Hertz = 700 + 900 * Note.Strength * (1 - std::exp(-Swell * 1.5f));
            Left.Tune(Hertz, 1.3f);
            Right.Tune(Hertz, 1.3f);
        }
        float l = 0, r = 0;
        for (INT32 v = 0; v < VOICES; ++v) {
            const float Tone = Saw(Phases[v].Advance(Steps[v]), Steps[v]);
            l += Tone * Lefts[v];
            r += Tone * Rights[v];
        }
        Left.Feed(l);
        Right.Feed(r);
        const float Gain = LOUD.Level(i, Note.Held) * Note.Strength;
        Out.Left[Note.Start + i] += Left.Low * Gain;
        Out.Right[Note.Start + i] += Right.Low * Gain;
    }
}

void PlayBass(const SPlayedNote& Note, SStereo& Out) {
    constexpr SEnvelope LOUD = {0.004f, 0.3f, 0.7f, 0.06f};
    SPhase First, Round;
    CFilter Filter;
    const float Even = Step(Note.Hertz, 0);
    for (INT32 i = 0; i < LOUD.Length(Note.Held); ++i) {
        if (i % TUNE_EVERY == 0) {
            const float Seconds = static_cast<float>(i) / RATE;
            Filter.Tune(260 + 1100 * Note.Strength * std::exp(-Seconds * 9), 0.8f);
        }
        const float Phase = First.Advance(Even);
        Filter.Feed(Saw(Phase, Even) + 0.4f * Pulse(Phase, Even, 0.5f));
        const float Gain = LOUD.Level(i, Note.Held) * Note.Strength;
        const float Sample = (0.6f * Filter.Low + 0.55f * Sine(Round.Advance(Even))) * Gain;
        Out.Left[Note.Start + i] += Sample;
        Out.Right[Note.Start + i] += Sample;
    }
}
