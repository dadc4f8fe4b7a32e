#include "Room.h"

#include "Synth.h"

namespace {

// A ring of samples to read what was written some time ago.
class CDelay {
public:
    explicit CDelay(INT32 Length) : Ring(Length) {}
    float Read(INT32 Ago) const { return Ring[At - Ago]; }
    float Oldest() const { return Ring[At]; }
    void Write(float Sample) {
        Ring[At] = Sample;
        At = At + 1 == Ring.Length() ? 0 : At + 1;
    }

private:
    CLoop Ring;
    INT32 At = 0;
};

// Calls Feed(left, right, heard) for the last Before samples and then for all, and stores what it made of all.
template <class F>
void RunLoop(SStereo& Sound, INT32 Before, F Feed) {
    const INT32 Length = Sound.Length();
    for (INT32 i = -std::min(Before, Length); i < Length; ++i) {
        float Left = Sound.Left[i], Right = Sound.Right[i];
        Feed(Left, Right);
        if (i >= 0) {
            Sound.Left[i] = Left;
            Sound.Right[i] = Right;
        }
    }
}

constexpr INT32 LINES = 8;

// Eight delays that feed each other through a matrix that neither adds nor takes energy; highs fade first.
class CHall {
public:
    explicit CHall(float Seconds) {
        for (INT32 i = 0; i < LINES; ++i) {
            Keep[i] = std::pow(10.0f, -3.0f * static_cast<float>(LENGTHS[i]) / (Seconds * RATE));
        }
    }
    void Feed(float& Left, float& Right) {
        float v[LINES];
        for (INT32 i = 0; i < LINES; ++i) {
            Dull[i] = Mix(Lines[i].Oldest(), Dull[i], HIGHS_LOST);
            v[i] = Dull[i] * Keep[i];
        }
        for (INT32 Half = 1; Half < LINES; Half *= 2) {
            for (INT32 i = 0; i < LINES; ++i) {
                if (!(i & Half)) {
                    const float a = v[i], b = v[i + Half];
                    v[i] = a + b;
                    v[i + Half] = a - b;
                }
            }
        }
        const float In[2] = {Left, Right};
        Left = Dull[0] + Dull[2] - Dull[4] + Dull[6];
        Right = Dull[1] - Dull[3] + Dull[5] + Dull[7];
        for (INT32 i = 0; i < LINES; ++i) {
            Lines[i].Write(v[i] * 0.35355339f + In[i % 2]);
        }
    }

private:
    static constexpr float HIGHS_LOST = 0.35f;                                                // in each round
    static constexpr INT32 LENGTHS[LINES] = {1153, 1307, 1559, 1693, 1951, 2203, 2399, 2663}; // primes
    CDelay Lines[LINES] = {CDelay(LENGTHS[0]), CDelay(LENGTHS[1]), CDelay(LENGTHS[2]), CDelay(LENGTHS[3]),
                           CDelay(LENGTHS[4]), CDelay(LENGTHS[5]), CDelay(LENGTHS[6]), CDelay(LENGTHS[7])};
    float Keep[LINES], Dull[LINES] = {};
};

// The least of each Window samples, and of the loop's end before its beginning: place i covers i - Window + 1 to i.
void SlideLeast(CLoop& Values, INT32 Window) {
    GArray<INT32> Rising; // places whose values rise; the first is the least of the window
    UINT32 First = 0;
    CLoop Least(Values.Length());
    for (INT32 i = -Window; i < Values.Length(); ++i) {
        while (Rising.count > First && Values[Rising.Data[Rising.count - 1]] >= Values[i]) {
            Rising.Resize(Rising.count - 1);
        }
        Rising.Add(i);
        First += Rising.Data[First] <= i - Window;
        if (i >= 0) {
            Least[i] = Values[Rising.Data[First]];
        }
    }
    Values = Least;
}

// The mean over the same places.
void SlideMean(CLoop& Values, INT32 Window) {
    CLoop Mean(Values.Length());
    double Sum = 0;
    for (INT32 i = -Window; i < Values.Length(); ++i) {
        Sum += Values[i];
        if (i >= 0) {
            Sum -= Values[i - Window];
            Mean[i] = static_cast<float>(Sum / Window);
        }
    }
    Values = Mean;
}

} // namespace

void Echo(SStereo& Sound, INT32 Delay, float Feedback) {
    CDelay Left(Delay), Right(Delay);
    CFilter Dull[2], Thin[2];
    for (INT32 Side = 0; Side < 2; ++Side) {
        Dull[Side].Tune(3200, 1.4f);
        Thin[Side].Tune(250, 1.4f);
    }
    RunLoop(Sound, 14 * Delay, [&](float& l, float& r) {
        const float In = 0.5f * (l + r);
        l = Left.Oldest();
        r = Right.Oldest();
        Dull[0].Feed(In + r * Feedback);
        Dull[1].Feed(l);
        Thin[0].Feed(Dull[0].Low);
        Thin[1].Feed(Dull[1].Low);
        Left.Write(Thin[0].High);
        Right.Write(Thin[1].High * Feedback);
    });
}

void Reverb(SStereo& Sound, float Seconds) {
    CHall Hall(Seconds);
    CDelay LeftBefore(SecondsToSamples(0.018f)), RightBefore(SecondsToSamples(0.018f));
    RunLoop(Sound, SecondsToSamples(Seconds * 2), [&](float& l, float& r) {
        float Left = LeftBefore.Oldest(), Right = RightBefore.Oldest();
        LeftBefore.Write(l);
        RightBefore.Write(r);
        Hall.Feed(Left, Right);
        l = Left;
        r = Right;
    });
}

void Chorus(SStereo& Sound, float Amount) {
    constexpr INT32 MIDDLE = 700, SWING = 160; // samples
    const float Turns = std::round(static_cast<float>(Sound.Length()) / RATE * 0.45f);
    const float Step = Turns / static_cast<float>(Sound.Length());
    const SStereo Dry = Sound;
    for (INT32 i = 0; i < Sound.Length(); ++i) {
        const float Phase = static_cast<float>(i) * Step;
        for (INT32 Side = 0; Side < 2; ++Side) {
            const float Late = MIDDLE + SWING * Sine(Phase - std::floor(Phase) + 0.25f * static_cast<float>(Side));
            const INT32 Whole = static_cast<INT32>(Late);
            const CLoop& From = Side ? Dry.Right : Dry.Left;
            const float Copy = Mix(From[i - Whole], From[i - Whole - 1], Late - static_cast<float>(Whole));
            (Side ? Sound.Right : Sound.Left)[i] += Copy * Amount;
        }
    }
}

void CutLow(SStereo& Sound, float Hertz) {
    CFilter Left, Right;
    Left.Tune(Hertz, 1.4f);
    Right.Tune(Hertz, 1.4f);
    RunLoop(Sound, RATE, [&](float& l, float& r) {
        Left.Feed(l);
        Right.Feed(r);
        l = Left.High;
        r = Right.High;
    });
}

// The gain that each sample needs is spread as the least of a window and then averaged over a window of the same
// length; the mean never asks for more than the sample in the middle, and changes without a corner.
void Limit(SStereo& Sound, float Ceiling) {
    const INT32 Window = SecondsToSamples(0.03f);
    CLoop Gain(Sound.Length());
    for (INT32 i = 0; i < Sound.Length(); ++i) {
        const float Loudest = std::fmax(std::fabs(Sound.Left[i]), std::fabs(Sound.Right[i]));
        Gain[i] = Loudest > Ceiling ? Ceiling / Loudest : 1;
    }
    SlideLeast(Gain, Window);
    SlideMean(Gain, Window);
    for (INT32 i = 0; i < Sound.Length(); ++i) {
        const INT32 Ahead = Gain.Wrap(i + Window - 1);
        Sound.Left[i] *= Gain[Ahead];
        Sound.Right[i] *= Gain[Ahead];
    }
}
