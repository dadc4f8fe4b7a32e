// The game's title: snow-capped letters down a slope, before mountains, pines and a pair of ski tracks.
//
// Painted from the back to the front, as a sign with a dark rim of its own, so that it stands out from snow, sky and
// wood alike. On the screen two of its pixels make one.
#include "Asset.h"
#include "Lettering.h"
#include "Noise.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr INT32 WIDTH = 1152;
constexpr INT32 HEIGHT = 576;

constexpr Vec3 NAVY = {0.035f, 0.075f, 0.17f};
constexpr Vec3 SNOW_LIT = {0.99f, 0.995f, 1.0f};
constexpr Vec3 SNOW_SHADE = {0.50f, 0.66f, 0.90f};

constexpr float PI = 3.14159265f;
constexpr float MARGIN = 16; // columns on both sides that stay free

constexpr float FALL = 0.07f; // of everything that lies on the slope, y per x

float Float(INT32 Value) {
    return static_cast<float>(Value);
}

template <class F>
void ForEachPixel(F Do) {
    for (INT32 y = 0; y < HEIGHT; ++y) {
        for (INT32 x = 0; x < WIDTH; ++x) {
            Do(x, y);
        }
    }
}

// The row of the snow's upper edge, and of its lower one. Both meet where the sign ends.
float SlopeTop(float x) {
    const float t = x / WIDTH;
    return 398 + 112 * t - 34 * std::sin(t * PI) + 5 * std::sin(x * 0.017f);
}
float SlopeBottom(float x) {
    const float t = Clamp01((x - MARGIN) / (WIDTH - 2 * MARGIN));
    return SlopeTop(x) + 78 * std::sqrt(std::max(std::sin(t * PI), 0.0f));
}

struct SPeak {
    float x, y;   // the summit
    float Spread; // rows that the flank falls in one column
    UINT32 Seed;
};

constexpr SPeak PEAKS[] = {
    {310, 124, 0.80f, 11}, {840, 96, 0.84f, 23}, {575, 26, 0.86f, 37}, {985, 262, 0.80f, 41}, {160, 262, 0.80f, 53},
};

// How far a place lies below a mountain's outline, in rows.
float BelowPeak(const SPeak& Peak, float x, float y) {
    const float Rough = 26 * NoiseFbm(x * 0.018f, 0.5f, 5, Peak.Seed);
    const float Flank = Peak.Spread * std::fabs(x - Peak.x);
    return y - (Peak.y + Flank + Rough * std::min(Flank / 30, 1.0f));
}

const SPeak* PeakAt(float x, float y, float& Below) {
    const SPeak* Found = nullptr;
    Below = -1e6f;
    for (const SPeak& Peak : PEAKS) {
        const float Here = BelowPeak(Peak, x, y);
        if (Here > Below) {
            Below = Here;
            Found = &Peak;
        }
    }
    return Found;
}

// Snow on the side of the sun, which stands on the left, blue shade on the other, rock where it is steep.
// Where mountains are seen: below their outline, above the snow, and not beyond the sign's ends.
float MountainCoverage(float x, float y, float Below) {
    const float Rough = 22 * NoiseFbm(x * 0.03f, y * 0.03f, 4, 17);
    const float Left = y - SlopeTop(0) + 1.25f * (x - 34) + Rough;
    const float Right = y - SlopeTop(WIDTH) + 1.5f * (WIDTH - 40 - x) + Rough;
    return Clamp01(std::min({Below, SlopeTop(x) + 4 - y, Left, Right}) + 0.5f);
}

Vec3 MountainColour(const SPeak& Peak, float x, float y, float Below) {
    const float Down = y - Peak.y;
    const float Crest = Peak.x + 0.22f * Down * NoiseFbm(Down * 0.02f, 3.5f, 3, Peak.Seed + 5) +
                        0.5f * Down * NoiseFbm(Down * 0.009f, 7.5f, 2, Peak.Seed + 6);
    const float Rib = 30 * NoiseFbm(x * 0.02f + Down * 0.012f, Down * 0.016f, 4, Peak.Seed + 7);
    const float Sun = SmoothStep(5, -5, x - Crest + Rib);
    const float Cracks = NoiseFbm(x * 0.030f + y * 0.016f, y * 0.034f - x * 0.012f, 5, Peak.Seed + 9);
    const float Rock = SmoothStep(0.04f, 0.16f, Cracks + 0.0016f * (Down - 70)) * SmoothStep(8, 40, Below);
    const Vec3 Snow = MixColour({0.47f, 0.62f, 0.88f}, {0.97f, 0.98f, 1.0f}, Sun);
    const Vec3 Stone = MixColour({0.13f, 0.21f, 0.40f}, {0.36f, 0.43f, 0.58f}, Sun);
    const Vec3 Colour = MixColour(Snow, Stone, 0.85f * Rock);
    const float Haze = SmoothStep(150, 420, y - 0.04f * x);
    return MixColour(Colour, {0.30f, 0.52f, 0.84f}, 0.9f * Haze);
}

// A pine as tiers of boughs: half its width at a height, 0 above the tip and below the trunk.
struct SPine {
    float x, Foot, Height;
    UINT32 Seed;
};

constexpr SPine PINES[] = {
    {62, 430, 116, 1}, {134, 440, 190, 2}, {200, 431, 112, 3}, {1064, 508, 222, 5}, {1106, 520, 122, 7},
};

// Part of the width of a tier that a place has, below 1 inside; Tier runs from 0 at each tier's top to 1 at its hem.
float PineReach(const SPine& Pine, float x, float y, float& Tier) {
    constexpr float TIERS = 5;
    const float t = (y - Pine.Foot + Pine.Height) / (Pine.Height * 0.93f);
    Tier = 0;
    if (t < 0 || t > 1.075f) {
        return 9;
    }
    if (t > 1) {
        Tier = -1;
        return std::fabs(x - Pine.x) / (0.035f * Pine.Height);
    }
    const float Along = std::pow(t, 0.85f) * TIERS;
    Tier = Along - std::floor(Along);
    const float Jag = 1 + 0.28f * NoiseFbm(x * 0.14f, y * 0.10f, 2, Pine.Seed);
    const float Wide = (0.025f + 0.21f * t) * (0.52f + 0.48f * Tier) * Pine.Height * Jag;
    return std::fabs(x - Pine.x) / Wide;
}

Vec3 PineColour(const SPine& Pine, float x, float y, float Tier) {
    if (Tier < 0) {
        return {0.20f, 0.13f, 0.10f};
    }
    const float Side = SmoothStep(-0.12f, 0.14f, (x - Pine.x) / Pine.Height);
    const Vec3 Green = MixColour({0.13f, 0.36f, 0.27f}, {0.035f, 0.15f, 0.16f}, Side);
    const float Lying = 0.36f + 0.5f * NoiseFbm(x * 0.09f, y * 0.09f, 3, Pine.Seed + 70) - 0.16f * Side;
    return MixColour(Green, MixColour(SNOW_LIT, SNOW_SHADE, 0.7f * Side), SmoothStep(0.07f, -0.07f, Tier - Lying));
}

// Two grooves that swing down the slope and widen towards the viewer.
float TrackDepth(float x, float y) {
    const float t = x / WIDTH;
    const float Middle = Mix(SlopeTop(x), SlopeBottom(x), 0.56f + 0.16f * std::sin(x * 0.0105f + 0.9f));
    const float Gap = Mix(3.5f, 8.5f, t);
    const float Half = Mix(1.3f, 3.2f, t);
    const float Groove = std::fabs(std::fabs(y - Middle) - Gap);
    return SmoothStep(Half + 1.2f, Half - 0.6f, Groove);
}

// One word of the title: letters with depth, snow on them and a dark rim round both.
class CWord {
public:
    CWord(CCanvas& Canvas, const char* Text, float x, float y, float Gap)
        : Letters(WIDTH, HEIGHT), Caps(WIDTH, HEIGHT, -99), Canvas(Canvas) {
        const CLettering Type(SIZE, false);
        const SLetterForm Form = {.ScaleX = 0.98f, .Lean = 0.16f, .Fall = FALL, .Weight = WEIGHT};
        Type.DrawText(Letters, Text, x, y, Form, Gap);
        Row0 = y - FALL * x - CAPITALS * SIZE - WEIGHT * 0.5f;
        Distance = Smoothed(SignedDistance(Letters));
        LaySnow();
        Extrude();
        CField Whole(WIDTH, HEIGHT);
        ForEachPixel(
            [&](INT32 px, INT32 py) { Whole.Ref(px, py) = std::max(Solid.At(px, py), CoverageOf(Caps.At(px, py))); });
        Outline = SignedDistance(Whole);
    }

    void Paint() {
        ForEachPixel([&](INT32 x, INT32 y) {
            Canvas.Over(x, y, NAVY, 0.45f * Canvas.Alpha(x, y) * SmoothStep(-28, -6, Outline.At(x - 2, y - 6)));
            Canvas.Over(x, y, NAVY, CoverageOf(Outline.At(x, y), 7));
            Canvas.Over(x, y, {0.36f, 0.035f, 0.10f}, Solid.At(x, y));
            PaintFace(x, y);
            PaintCap(x, y);
        });
    }

    CField Outline = CField(1, 1); // distance to the edge of all of it

private:
    static constexpr float SIZE = 218; // pixels per em
    static constexpr float CAPITALS = 0.73f;
    static constexpr float WEIGHT = 15;

    // Balls of snow along the upper edges, larger where the edge is level, with a tongue here and there.
    void LaySnow() {
        ForEachPixel([&](INT32 x, INT32 y) {
            if (Letters.At(x, y) < 0.5f || Letters.At(x, y - 1) >= 0.5f) {
                return;
            }
            const Vec2 Slope = Distance.Slope(x, y + 2);
            const float Size = SmoothStep(0.42f, 0.88f, Slope.y / (std::hypot(Slope.x, Slope.y) + 1e-3f));
            if (Size <= 0.05f) {
                return;
            }
            const float Radius = Size * (14 + 9 * NoiseFbm(Float(x) * 0.035f, Float(y) * 0.01f, 3, 90));
            AddBall(Float(x), Float(y) + 0.30f * Radius, Radius);
            const float Tongue = SmoothStep(0.12f, 0.45f, NoiseGradient(Float(x) * 0.055f, Float(y) * 0.02f, 91));
            for (float Way = 0; Way < 1 && Tongue > 0; Way += 0.2f) {
                AddBall(Float(x), Float(y) + Way * (12 + 24 * Tongue) * Size, Size * Mix(9, 5, Way) * Tongue);
            }
        });
        ForEachPixel([&](INT32 x, INT32 y) { Caps.Ref(x, y) = CoverageOf(Caps.At(x, y)); });
        Caps = Smoothed(SignedDistance(Caps));
    }

    void AddBall(float x, float y, float Radius) {
        const INT32 Reach = static_cast<INT32>(Radius) + 2;
        const INT32 cx = static_cast<INT32>(x), cy = static_cast<INT32>(y);
        for (INT32 py = std::max(cy - Reach, 0); py < std::min(cy + Reach, HEIGHT); ++py) {
            for (INT32 px = std::max(cx - Reach, 0); px < std::min(cx + Reach, WIDTH); ++px) {
                float& Cap = Caps.Ref(px, py);
                Cap = std::max(Cap, Radius - std::hypot(Float(px) - x, Float(py) - y));
            }
        }
    }

    // The letters with their depth, towards the lower right.
    void Extrude() {
        constexpr INT32 DEPTH = 16;
        Solid = Letters;
        for (INT32 i = 1; i <= DEPTH; ++i) {
            ForEachPixel(
                [&](INT32 x, INT32 y) { Solid.Ref(x, y) = std::max(Solid.At(x, y), Letters.At(x - i / 3, y - i)); });
        }
    }

    // From gold at the upper edge to red at the lower one, in rows along the fall of the slope.
    Vec3 FaceColour(float x, float y) const {
        const float t = (y - FALL * x - Row0) / (CAPITALS * SIZE + WEIGHT);
        const Vec3 Upper = MixColour({1.0f, 0.88f, 0.36f}, {1.0f, 0.55f, 0.10f}, SmoothStep(0.05f, 0.52f, t));
        return MixColour(Upper, {0.86f, 0.13f, 0.11f}, SmoothStep(0.45f, 1.0f, t));
    }

    void PaintFace(INT32 x, INT32 y) {
        const float Cover = Letters.At(x, y);
        if (Cover <= 0) {
            return;
        }
        constexpr float BEVEL = 9;
        const Vec2 Slope = Distance.Slope(x, y);
        // The light comes from the upper left, where the distance grows downward and to the right.
        const float Light = (0.45f * Slope.x + 0.89f * Slope.y) * SmoothStep(BEVEL, BEVEL * 0.6f, Distance.At(x, y));
        Vec3 Colour = FaceColour(Float(x), Float(y));
        Colour = Light > 0 ? MixColour(Colour, {1.0f, 0.96f, 0.72f}, 0.75f * Light)
                           : MixColour(Colour, {0.45f, 0.02f, 0.08f}, -0.65f * Light);
        // The caps lean over the face and shade it.
        const float Shade = SmoothStep(-9, 1, Caps.At(x - 1, y - 5));
        Canvas.Over(x, y, MixColour(Colour, {0.30f, 0.03f, 0.16f}, 0.55f * Shade), Cover);
    }

    void PaintCap(INT32 x, INT32 y) {
        const float Inside = Caps.At(x, y);
        if (Inside <= -1) {
            return;
        }
        const Vec2 Slope = Caps.Slope(x, y);
        const float Facing = 0.35f * Slope.x + 0.94f * Slope.y;
        const float Shade = Clamp01(0.06f - Facing * 0.95f * SmoothStep(12, 1, Inside));
        Canvas.Over(x, y, MixColour(SNOW_LIT, SNOW_SHADE, Shade), CoverageOf(Inside));
    }

    CField Letters;
    CField Caps; // how far inside of the snow
    CField Distance = CField(1, 1);
    CField Solid = CField(1, 1);
    CCanvas& Canvas;
    float Row0 = 0; // the upper edge, where the baseline's x is 0
};

class CTitle {
public:
    CTitle() : Canvas(WIDTH, HEIGHT) {}

    bool Make(const char* File) {
        CWord Upper(Canvas, "SLOPE", 124, 270, 8);
        CWord Lower(Canvas, "RUSH", 318, 489, 9);
        PaintRim(Upper, Lower);
        ForEachPixel([&](INT32 x, INT32 y) { PaintScene(x, y); });
        Upper.Paint();
        Lower.Paint();
        return Canvas.SavePng(File, NAVY);
    }

private:
    static float SceneCoverage(float x, float y) {
        float Below = 0, Tier = 0;
        PeakAt(x, y, Below);
        float Cover = std::max(MountainCoverage(x, y, Below), SlopeCoverage(x, y));
        for (const SPine& Pine : PINES) {
            Cover = std::max(Cover, Clamp01((1 - PineReach(Pine, x, y, Tier)) * 12));
        }
        return Cover;
    }

    static float SlopeCoverage(float x, float y) {
        return Clamp01(std::min({y - SlopeTop(x), SlopeBottom(x) - y, x - MARGIN, WIDTH - MARGIN - x}) + 0.5f);
    }

    // A dark outline round everything, and a soft shadow below it.
    void PaintRim(const CWord& Upper, const CWord& Lower) {
        constexpr float SCENE_RIM = 6;
        constexpr float LETTER_RIM = 10;
        CField Scene(WIDTH, HEIGHT);
        ForEachPixel([&](INT32 x, INT32 y) { Scene.Ref(x, y) = SceneCoverage(Float(x), Float(y)); });
        Scene = SignedDistance(Scene);
        const auto Outside = [&](INT32 x, INT32 y) {
            return std::max(
                {Upper.Outline.At(x, y) + LETTER_RIM, Lower.Outline.At(x, y) + LETTER_RIM, Scene.At(x, y) + SCENE_RIM});
        };
        ForEachPixel([&](INT32 x, INT32 y) {
            Canvas.Over(x, y, {0, 0.01f, 0.04f}, 0.5f * SmoothStep(-12, 8, Outside(x - 3, y - 7)));
            Canvas.Over(x, y, NAVY, CoverageOf(Outside(x, y)));
        });
    }

    void PaintScene(INT32 px, INT32 py) {
        const float x = Float(px), y = Float(py);
        float Below = 0;
        const SPeak* Peak = PeakAt(x, y, Below);
        if (Below > -1) {
            Canvas.Over(px, py, MountainColour(*Peak, x, y, Below), MountainCoverage(x, y, Below));
        }
        PaintSlope(px, py);
        for (const SPine& Pine : PINES) {
            float Tier = 0;
            const float Reach = PineReach(Pine, x, y, Tier);
            Canvas.Over(px, py, NAVY, 0.8f * Clamp01((1.16f - Reach) * 9));
            Canvas.Over(px, py, PineColour(Pine, x, y, Tier), Clamp01((1 - Reach) * 12));
        }
    }

    void PaintSlope(INT32 px, INT32 py) {
        const float x = Float(px), y = Float(py);
        const float Snow = SlopeCoverage(x, y);
        if (Snow > 0) {
            const float t = (y - SlopeTop(x)) / std::max(SlopeBottom(x) - SlopeTop(x), 1.0f);
            const float Drift = NoiseFbm(x * 0.006f + y * 0.01f, y * 0.045f - x * 0.004f, 4, 60);
            const Vec3 Colour = MixColour(SNOW_LIT, SNOW_SHADE, Clamp01(0.75f * t - 0.08f + 0.55f * Drift));
            Canvas.Over(px, py, MixColour(Colour, {0.30f, 0.46f, 0.76f}, 0.85f * TrackDepth(x, y)), Snow);
            Canvas.Over(px, py, SNOW_LIT, Snow * 0.8f * TrackDepth(x, y - 4) * (1 - TrackDepth(x, y)));
        }
    }

    CCanvas Canvas;
};

} // namespace

bool MakeTitle(const char*, const char* File) {
    return CLettering(1, false).Good && CTitle().Make(File);
}
