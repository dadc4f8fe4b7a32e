// What sounds are made of: oscillators without aliasing, envelopes, filters, noise. All small enough to be inlined.
//
// Oscillators take a phase of 0 to 1 and the step that it makes each sample (frequency / RATE). Saw and pulse smooth
// their jumps over two samples (a polynomial in place of the step), which keeps what folds back below hearing up to
// some 5 kHz of pitch. Filters keep state: one object for each voice and channel.
#pragma once

#include "../Noise.h"
#include "Samples.h"

#include <algorithm>

struct SPhase {
    float At = 0;
    float Advance(float Step) {
        At += Step;
        At -= static_cast<float>(static_cast<INT32>(At));
        return At;
    }
};

// What a jump of height 2 at phase 0 differs from its smooth form.
inline float JumpRest(float Phase, float Step) {
    if (Phase < Step) {
        const float t = Phase / Step;
        return t + t - t * t - 1;
    }
    if (Phase > 1 - Step) {
        const float t = (Phase - 1) / Step;
        return t * t + t + t + 1;
    }
    return 0;
}

inline float Saw(float Phase, float Step) {
    return 2 * Phase - 1 - JumpRest(Phase, Step);
}

// Width is the part of the turn that is high; the mean is zero at any width.
inline float Pulse(float Phase, float Step, float Width) {
    const float Other = Phase >= Width ? Phase - Width : Phase - Width + 1;
    return Saw(Other, Step) - Saw(Phase, Step);
}

inline float Triangle(float Phase) {
    return 4 * std::fabs(Phase - 0.5f) - 1;
}

inline float Sine(float Phase) {
    return std::sin(TURN * Phase);
}

// White noise, -1 to 1; the same sample for the same place and seed.
inline float WhiteNoise(INT32 At, UINT32 Seed) {
    return NoiseCell(At, 0, Seed) * 2 - 1;
}

// Attack in a straight line, decay and release by exponentials; times in seconds. The release ends at zero.
struct SEnvelope {
    float Attack, Decay, Sustain, Release;

    // Level at a place of a note that is held for Held samples.
    float Level(INT32 At, INT32 Held) const {
        const float Before = Open(static_cast<float>(std::min(At, Held)) / RATE);
        if (At <= Held) {
            return Before;
        }
        const float t = static_cast<float>(At - Held) / (Release * RATE);
        return t >= 1 ? 0 : Before * (1 - t) * (1 - t);
    }
    INT32 Length(INT32 Held) const { return Held + SecondsToSamples(Release); }

private:
    float Open(float Seconds) const {
        if (Seconds < Attack) {
            return Seconds / Attack;
        }
        return Sustain + (1 - Sustain) * std::exp((Attack - Seconds) / Decay);
    }
};

// State variable filter, 12 dB an octave, stable at any cutoff below half the rate. Damping 1.4 is flat, 0.2 rings.
class CFilter {
public:
    void Tune(float Hertz, float NewDamping) {
        const float g = std::tan(0.5f * TURN * std::clamp(Hertz, 10.0f, 0.45f * RATE) / RATE);
        Damping = NewDamping;
        A = 1 / (1 + g * (g + Damping));
        B = g * A;
        C = g * B;
    }
    void Feed(float Sample) {
        const float v = Sample - State2;
        Band = A * State1 + B * v;
        Low = State2 + B * State1 + C * v;
        State1 = 2 * Band - State1;
        State2 = 2 * Low - State2;
        High = Sample - Damping * Band - Low;
    }
    // The three ways out after Feed.
    float Low = 0, Band = 0, High = 0;

private:
    float A = 0, B = 0, C = 0, Damping = 1.4f;
    float State1 = 0, State2 = 0;
};

// Cutoff is an expensive thing to change; once in so many samples nobody hears the steps.
constexpr INT32 TUNE_EVERY = 16;
