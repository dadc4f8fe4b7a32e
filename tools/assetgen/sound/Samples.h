// Sound in the making: loops of samples, the beginning and the end of which are neighbours.
//
// A sample is a float, full scale is -1 to 1, the rate is RATE everywhere. What is added behind the end of a loop
// sounds at its beginning, so that the last note's tail is heard under the first note. A sound that does not repeat is
// the same thing with silence at its end. Times are samples unless a name says seconds; levels in decibels are against
// full scale.
#pragma once

#include "foundation/GTemplate.h"
#include "foundation/Types.h"

#include <cmath>

constexpr INT32 RATE = 44100; // samples a second
constexpr float TURN = 6.2831853f;

inline INT32 SecondsToSamples(float Seconds) {
    return static_cast<INT32>(Seconds * static_cast<float>(RATE));
}
inline float DecibelsToGain(float Decibels) {
    return std::pow(10.0f, Decibels / 20.0f);
}

class CLoop {
public:
    explicit CLoop(INT32 Length) { Data.Resize(static_cast<UINT32>(Length)); }
    INT32 Length() const { return static_cast<INT32>(Data.count); }

    // Any place within one length before the beginning or behind the end.
    INT32 Wrap(INT32 At) const { return At < 0 ? At + Length() : At >= Length() ? At - Length() : At; }
    float& operator[](INT32 At) { return Data.Data[Wrap(At)]; }
    float operator[](INT32 At) const { return Data.Data[Wrap(At)]; }

    void Silence() {
        for (float& Sample : Data) {
            Sample = 0;
        }
    }
    float Peak() const {
        float Highest = 0;
        for (const float Sample : Data) {
            Highest = std::fmax(Highest, std::fabs(Sample));
        }
        return Highest;
    }
    void Scale(float Gain) {
        for (float& Sample : Data) {
            Sample *= Gain;
        }
    }

private:
    GArray<float> Data;
};

struct SStereo {
    explicit SStereo(INT32 Length) : Left(Length), Right(Length) {}
    INT32 Length() const { return Left.Length(); }
    void Silence() {
        Left.Silence();
        Right.Silence();
    }
    // Adds Other times Gain, sample by sample.
    void Add(const SStereo& Other, float Gain) {
        for (INT32 i = 0; i < Length(); ++i) {
            Left[i] += Other.Left[i] * Gain;
            Right[i] += Other.Right[i] * Gain;
        }
    }
    CLoop Left, Right;
};
