#include "Mixer.h"

#include "Instruments.h"
#include "Room.h"
#include "Synth.h"

namespace {

struct SChannel {
    InstrumentPlay Play;
    float Level;  // decibels, of the part while it plays
    float Pan;    // -1 is left
    float Hall;   // part that goes into the reverb
    float Echo;   // part that goes into the echoes
    float Chorus; // amount of the second voice
    float Duck;   // part that makes room for the bass drum
};

constexpr SChannel BAND[PART_COUNT] = {
    {PlayLead, -21.5f, 0.0f, 0.16f, 0.22f, 0.25f, 0.10f},   // lead
    {PlayLead, -26, 0.25f, 0.18f, 0.12f, 0.35f, 0.10f},     // harmony
    {PlayHorn, -26, -0.3f, 0.22f, 0.10f, 0.30f, 0.15f},     // counter
    {PlayBell, -25, 0.1f, 0.40f, 0.30f, 0.00f, 0.00f},      // bells
    {PlayString, -22.5f, 0.0f, 0.16f, 0.20f, 0.15f, 0.10f}, // riff
    {PlayString, -26, 0.3f, 0.20f, 0.15f, 0.10f, 0.15f},    // pluck
    {PlayArp, -28, 0.0f, 0.18f, 0.20f, 0.20f, 0.30f},       // arp
    {PlayString, -27, -0.3f, 0.15f, 0.00f, 0.25f, 0.15f},   // strum
    {PlayPad, -27, 0.0f, 0.25f, 0.00f, 0.30f, 0.45f},       // pad
    {PlayBass, -20, 0.0f, 0.00f, 0.00f, 0.00f, 0.40f},      // bass
    {PlayKick, -19, 0.0f, 0.02f, 0.00f, 0.00f, 0.00f},      // kick
    {PlaySnare, -23, 0.0f, 0.14f, 0.00f, 0.00f, 0.00f},     // snare
    {PlayClap, -28, 0.0f, 0.22f, 0.00f, 0.00f, 0.00f},      // clap
    {PlayHat, -33, 0.0f, 0.04f, 0.00f, 0.00f, 0.00f},       // hat
    {PlayOpenHat, -32, 0.0f, 0.06f, 0.00f, 0.00f, 0.10f},   // open hat
    {PlaySleigh, -38, -0.2f, 0.15f, 0.00f, 0.00f, 0.00f},   // sleigh bells
    {PlayTom, -22, 0.0f, 0.14f, 0.00f, 0.00f, 0.00f},       // toms
    {PlayCrash, -29, 0.0f, 0.15f, 0.00f, 0.00f, 0.15f},     // cymbal
    {PlayRiser, -30, 0.0f, 0.20f, 0.00f, 0.00f, 0.00f},     // riser
};

constexpr float LATEST = 0.004f;       // seconds that a player may be early or late
constexpr float UNEVEN = 0.08f;        // part of its strength that a note may lose
constexpr float DUCK_RECOVERS = 0.13f; // seconds
constexpr float ECHO_FEEDBACK = 0.38f;
constexpr INT32 ECHO_STEPS = 3;
constexpr float HALL_SECONDS = 1.9f;
constexpr float HALL_GAIN = 0.46f;
constexpr float ECHO_IN_HALL = 0.3f;
constexpr float DRIVE = PEAK - 0.7f;  // decibels from the sum of the parts to the finished piece
constexpr float LOWEST = 30.0f;       // hertz
constexpr float HALL_LOWEST = 220.0f; // a hall that booms takes the beat away

SPlayedNote Perform(const SNote& Note, INT32 StepSamples, EPart Part, UINT32 Number) {
    const UINT32 Seed = NoiseHash(static_cast<INT32>(Number), Part, 1701);
    const float Step = static_cast<float>(StepSamples);
    const float Late = Part == PART_KICK ? 0 : LATEST * RATE * WhiteNoise(1, Seed);
    SPlayedNote Played;
    Played.Start = Note.Step * StepSamples + static_cast<INT32>(Note.Delay * Step + Late);
    Played.Held = static_cast<INT32>((Note.Steps - 0.15f) * Step);
    Played.Hertz = 440 * std::exp2(static_cast<float>(Note.Pitch - 69) / 12);
    Played.Strength = Note.Strength * (1 - UNEVEN * NoiseCell(2, 0, Seed));
    Played.Seed = Seed;
    return Played;
}

// Root of the mean square of the tenths of a second in which the part is not much below its loudest.
float LoudnessWhilePlaying(const SStereo& Sound) {
    constexpr INT32 BLOCK = RATE / 10;
    constexpr double QUIET = 0.05; // of the power of the loudest block
    GArray<double> Powers;
    double Most = 0;
    for (INT32 Start = 0; Start + BLOCK <= Sound.Length(); Start += BLOCK) {
        double Power = 0;
        for (INT32 i = Start; i < Start + BLOCK; ++i) {
            const double l = Sound.Left[i], r = Sound.Right[i];
            Power += (l * l + r * r) / (2 * BLOCK);
        }
        Powers.Add(Power);
        Most = std::max(Most, Power);
    }
    double Sum = 0;
    INT32 Count = 0;
    for (const double Power : Powers) {
        if (Power > Most * QUIET) {
            Sum += Power;
            ++Count;
        }
    }
    return Count ? static_cast<float>(std::sqrt(Sum / Count)) : 0;
}

// What is left of a part that ducks fully: nothing on the beat of the bass drum, then soon all.
CLoop DuckCurve(const SSong& Song) {
    CLoop Curve(Song.Length());
    for (const SNote& Kick : Song.Parts[PART_KICK]) {
        const INT32 Start = Kick.Step * Song.StepSamples;
        for (INT32 i = 0; i < SecondsToSamples(DUCK_RECOVERS * 4); ++i) {
            const float Seconds = static_cast<float>(i) / RATE;
            const float Gone = std::exp(-Seconds / DUCK_RECOVERS) - 0.0183f; // 0 at the end
            Curve[Start + i] = std::max(Curve[Start + i], Gone * Kick.Strength * Clamp01(Seconds / 0.004f));
        }
    }
    return Curve;
}

void Place(SStereo& Sound, float Gain, float Pan) {
    Sound.Left.Scale(Gain * (Pan > 0 ? 1 - Pan : 1));
    Sound.Right.Scale(Gain * (Pan < 0 ? 1 + Pan : 1));
}

// What is mixed: the parts, and what the hall and the echoes hear of them.
struct SBuses {
    explicit SBuses(INT32 Length) : Dry(Length), Hall(Length), Echoes(Length) {}
    SStereo Dry, Hall, Echoes;
};

void AddPart(const SStereo& Part, const SChannel& Channel, const CLoop& Curve, SBuses& Buses) {
    for (INT32 i = 0; i < Part.Length(); ++i) {
        const float Gain = 1 - Channel.Duck * Curve[i];
        const float Left = Part.Left[i] * Gain, Right = Part.Right[i] * Gain;
        Buses.Dry.Left[i] += Left;
        Buses.Dry.Right[i] += Right;
        Buses.Hall.Left[i] += Left * Channel.Hall;
        Buses.Hall.Right[i] += Right * Channel.Hall;
        Buses.Echoes.Left[i] += Left * Channel.Echo;
        Buses.Echoes.Right[i] += Right * Channel.Echo;
    }
}

} // namespace

void PlayPart(const SSong& Song, EPart Part, SStereo& Out) {
    const SChannel& Channel = BAND[Part];
    Out.Silence();
    const GArray<SNote>& Notes = Song.Parts[Part];
    for (UINT32 i = 0; i < Notes.count; ++i) {
        Channel.Play(Perform(Notes.Data[i], Song.StepSamples, Part, i), Out);
    }
    const float Loudness = LoudnessWhilePlaying(Out);
    if (Loudness > 0) {
        Place(Out, DecibelsToGain(Channel.Level) / Loudness, Channel.Pan);
        if (Channel.Chorus > 0) {
            Chorus(Out, Channel.Chorus);
        }
    }
}

SStereo PlaySong(const SSong& Song) {
    SBuses Buses(Song.Length());
    SStereo Part(Song.Length());
    const CLoop Curve = DuckCurve(Song);
    for (INT32 i = 0; i < PART_COUNT; ++i) {
        PlayPart(Song, static_cast<EPart>(i), Part);
        AddPart(Part, BAND[i], Curve, Buses);
    }
    Echo(Buses.Echoes, ECHO_STEPS * Song.StepSamples, ECHO_FEEDBACK);
    Buses.Hall.Add(Buses.Echoes, ECHO_IN_HALL);
    CutLow(Buses.Hall, HALL_LOWEST);
    Reverb(Buses.Hall, HALL_SECONDS);
    Buses.Dry.Add(Buses.Echoes, 1);
    Buses.Dry.Add(Buses.Hall, HALL_GAIN);
    CutLow(Buses.Dry, LOWEST);
    Place(Buses.Dry, DecibelsToGain(DRIVE), 0);
    Limit(Buses.Dry, DecibelsToGain(PEAK));
    return Buses.Dry;
}
