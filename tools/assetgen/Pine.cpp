// Textures of the pines: bark, and a bough with snow on it.
//
// The bough's stem stands on the lower edge of the picture, which is the end at the trunk, and its tip is at the upper
// one. Alpha is coverage. Gaps within the bough keep a little of it, so that smaller mip levels, which average it,
// stay as dense as the bough is.
#include "Asset.h"
#include "Noise.h"
#include "Picture.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr INT32 SIDE = 512;
constexpr float GAP_ALPHA = 0.40f;

struct SColour {
    float r, g, b;
};

constexpr SColour DARK_NEEDLE = {0.055f, 0.135f, 0.095f};
constexpr SColour LIGHT_NEEDLE = {0.20f, 0.36f, 0.22f};
constexpr SColour FROST = {0.70f, 0.79f, 0.82f};
constexpr SColour RIM = {0.17f, 0.27f, 0.22f}; // where nothing is; filtering mixes it into the outline
constexpr SColour SNOW = {0.90f, 0.93f, 0.98f};
constexpr SColour SNOW_SHADE = {0.66f, 0.74f, 0.86f};

SColour Blend(const SColour& a, const SColour& b, float t) {
    return {Mix(a.r, b.r, t), Mix(a.g, b.g, t), Mix(a.b, b.b, t)};
}

// Strokes are painted over each other, later ones on top.
class CBough {
public:
    CBough() {
        Colours.Resize(SIDE * SIDE);
        Alphas.Resize(SIDE * SIDE);
        std::fill(Colours.begin(), Colours.end(), RIM);
    }

    void Grow() {
        GrowTwigs();
        Stroke({0.5f, 1.0f}, {0.5f, 0.06f}, 0.010f, 0.003f, {0.16f, 0.11f, 0.08f});
        LayCushions({0.5f, 1.0f}, {0.5f, 0.10f}, -1);
    }

    bool Save(const char* File) const {
        CPicture Picture(SIDE, SIDE, 4);
        for (INT32 i = 0; i < SIDE * SIDE; ++i) {
            const SColour& c = Colours.Data[i];
            Picture.SetColour(static_cast<UINT32>(i % SIDE), static_cast<UINT32>(i / SIDE), c.r, c.g, c.b,
                              Alphas.Data[i]);
        }
        return Picture.SavePng(File);
    }

private:
    struct SPoint {
        float x, y; // 0 to 1, y down
    };

    void Put(INT32 x, INT32 y, const SColour& Colour, float Alpha) {
        if (x < 0 || y < 0 || x >= SIDE || y >= SIDE) {
            return;
        }
        float& Old = Alphas.Data[y * SIDE + x];
        if (Alpha >= 0.5f) {
            Colours.Data[y * SIDE + x] = Colour;
        }
        Old = std::max(Old, Alpha);
    }

    // A tapering line; widths are half widths.
    void Stroke(const SPoint& From, const SPoint& To, float FromWidth, float ToWidth, const SColour& Colour) {
        const INT32 Steps = 1 + static_cast<INT32>(2 * SIDE * std::hypot(To.x - From.x, To.y - From.y));
        for (INT32 i = 0; i <= Steps; ++i) {
            const float t = static_cast<float>(i) / static_cast<float>(Steps);
            Disc({Mix(From.x, To.x, t), Mix(From.y, To.y, t)}, Mix(FromWidth, ToWidth, t), Colour, 1);
        }
    }

    void Disc(const SPoint& At, float Radius, const SColour& Colour, float Alpha) {
        const INT32 Reach = static_cast<INT32>(std::ceil(Radius * SIDE));
        const INT32 cx = static_cast<INT32>(At.x * SIDE);
        const INT32 cy = static_cast<INT32>(At.y * SIDE);
        for (INT32 y = -Reach; y <= Reach; ++y) {
            for (INT32 x = -Reach; x <= Reach; ++x) {
                if (static_cast<float>(x * x + y * y) <= Radius * Radius * SIDE * SIDE + 0.3f) {
                    Put(cx + x, cy + y, Colour, Alpha);
                }
            }
        }
    }

    // Half the width of the bough at a height: widest a third up from the trunk, drawn out to a point at the tip.
    static float HalfWidth(float y) {
        const float Along = 1 - y;
        const float Taper = Clamp01(1.0f - Along) * (1.0f - 0.45f * SmoothStep(0.3f, 1.0f, Along));
        return 0.50f * Taper * SmoothStep(-0.35f, 0.22f, Along);
    }

    // Twigs leave the stem towards the tip; those near the trunk lie below, each with its own snow.
    void GrowTwigs() {
        constexpr INT32 TWIGS = 34;
        for (INT32 i = 0; i < TWIGS; ++i) {
            const float y = 0.985f - 0.90f * static_cast<float>(i) / TWIGS;
            const float Side = i % 2 ? 1.0f : -1.0f;
            const float Length = HalfWidth(y) * (0.74f + 0.46f * NoiseCell(i, 1, 50));
            const SPoint Root = {0.5f, y};
            const SPoint End = {0.5f + Side * Length * 0.94f, y - Length * (0.50f + 0.30f * NoiseCell(i, 2, 50))};
            GrowTwig(Root, End, i);
        }
        Needles({0.5f, 0.5f}, {0.5f, 0.03f}, TWIGS, 1);
    }

    // A twig with shoots that leave it on both sides, shorter towards its end.
    void GrowTwig(const SPoint& Root, const SPoint& End, INT32 Twig) {
        constexpr INT32 SHOOTS = 7;
        const float Length = std::hypot(End.x - Root.x, End.y - Root.y);
        const float Angle = std::atan2(End.y - Root.y, End.x - Root.x);
        for (INT32 k = 1; k < SHOOTS; ++k) {
            const float t = static_cast<float>(k) / SHOOTS;
            const SPoint At = {Mix(Root.x, End.x, t), Mix(Root.y, End.y, t)};
            const float Turn = Angle + (k % 2 ? 0.62f : -0.62f) * (0.8f + 0.5f * NoiseCell(k, Twig, 55));
            const float Reach = Length * (0.40f - 0.22f * t);
            Needles(At, {At.x + std::cos(Turn) * Reach, At.y + std::sin(Turn) * Reach}, Twig * SHOOTS + k, 0.8f);
        }
        Needles(Root, End, Twig * SHOOTS, 1);
        LayCushions(Root, End, Twig);
    }

    // Needles stand on both sides of a shoot, forward; Size is their length against those of the stem.
    void Needles(const SPoint& From, const SPoint& To, INT32 Shoot, float Size) {
        constexpr float APART = 0.0042f;
        constexpr float LENGTH = 0.040f;
        const float Angle = std::atan2(To.y - From.y, To.x - From.x);
        const INT32 Count = 6 + static_cast<INT32>(std::hypot(To.x - From.x, To.y - From.y) / APART);
        for (INT32 k = 0; k < Count; ++k) {
            const float t = static_cast<float>(k) / static_cast<float>(Count);
            const SPoint Root = {Mix(From.x, To.x, t), Mix(From.y, To.y, t)};
            const float Turn = Angle + (k % 2 ? 1.0f : -1.0f) * (0.42f + 0.5f * NoiseCell(k, Shoot, 60));
            const float Tip = 1.0f - 0.7f * SmoothStep(0.30f, 0.0f, Root.y); // nothing sticks out beside the tip
            const float Length = LENGTH * Size * Tip * (0.7f + 0.6f * NoiseCell(k, Shoot, 61)) * (1.1f - 0.4f * t);
            const SPoint End = {Root.x + std::cos(Turn) * Length, Root.y + std::sin(Turn) * Length};
            const SPoint Half = {Mix(Root.x, End.x, 0.55f), Mix(Root.y, End.y, 0.55f)};
            const SColour Green = Blend(DARK_NEEDLE, LIGHT_NEEDLE, NoiseCell(k, Shoot, 62) * (0.35f + 0.65f * t));
            // Hoar frost grows at the ends of needles, most of all at those of twigs.
            const float Frost = NoiseCell(k, Shoot, 63);
            Disc(Root, 0.020f * Tip, DARK_NEEDLE, GAP_ALPHA);
            Stroke(Root, Half, 0.0030f, 0.0024f, Blend(DARK_NEEDLE, Green, 0.6f));
            Stroke(Half, End, 0.0024f, 0.0014f, Blend(Green, FROST, 0.75f * Frost * Frost * (0.3f + 0.7f * t)));
        }
    }

    // Snow lies along a twig in cushions of uneven width with gaps between them; its end sticks out green.
    void LayCushions(const SPoint& From, const SPoint& To, INT32 Twig) {
        const float Length = std::hypot(To.x - From.x, To.y - From.y);
        const INT32 Steps = 8 + static_cast<INT32>(Length * SIDE * 0.5f);
        for (INT32 Pass = 0; Pass < 2; ++Pass) { // shaded rim, then what the sky lights
            for (INT32 k = 0; k <= Steps; ++k) {
                const float t = static_cast<float>(k) / static_cast<float>(Steps);
                const float Lumps = NoiseFbm(t * Length * 22, static_cast<float>(Twig) * 3.7f, 3, 70);
                const float Depth = (0.74f + 1.1f * Lumps) * SmoothStep(1.0f, 0.60f, t);
                const float Width = (0.006f + 0.095f * std::min(Length, 0.32f)) * Depth;
                if (Width > 0.004f) {
                    const float Aside = 0.010f * NoiseFbm(t * Length * 60, static_cast<float>(Twig) * 2.3f, 2, 71);
                    const SPoint At = {Mix(From.x, To.x, t) + Aside, Mix(From.y, To.y, t) - 0.004f + Aside};
                    const float Shade = Clamp01(0.75f + 0.5f * NoiseFbm(At.x * 24, At.y * 24, 2, 72));
                    Disc({At.x, At.y - 0.004f * static_cast<float>(Pass)}, Width * (Pass ? 0.72f : 1.0f),
                         Pass ? Blend(SNOW_SHADE, SNOW, Shade) : SNOW_SHADE, 1);
                }
            }
        }
    }

    GArray<SColour> Colours;
    GArray<float> Alphas;
};

// Plates with dark cracks along the trunk; closed all round.
bool MakeBark(const char* File) {
    CPicture Picture(SIDE, SIDE, 3);
    for (INT32 y = 0; y < SIDE; ++y) {
        for (INT32 x = 0; x < SIDE; ++x) {
            const float u = (static_cast<float>(x) + 0.5f) / SIDE;
            const float v = (static_cast<float>(y) + 0.5f) / SIDE;
            float Near, Second;
            const float Warp = 0.5f * NoiseFbmTiled(u * 4, v * 4, 4, 4, 3, 80);
            NoiseWorleyTiled(u * 7 + Warp, v * 12 + Warp, 7, 12, 81, Near, Second);
            const float Plate = SmoothStep(0.0f, 0.22f, Second - Near);
            const float Grain = 0.5f + 0.5f * NoiseFbmTiled(u * 16, v * 32, 16, 32, 3, 82);
            const float Light = (0.35f + 0.65f * Plate) * (0.6f + 0.5f * Grain);
            SColour Colour = Blend({0.10f, 0.078f, 0.066f}, {0.37f, 0.30f, 0.25f}, Light);
            // Blown snow sticks on one side.
            const float Windward = 0.5f + 0.5f * std::cos((u - 0.3f) * 6.2831853f);
            const float Stuck = SmoothStep(0.75f, 0.95f, Windward + 0.35f * NoiseFbmTiled(u * 8, v * 8, 8, 8, 4, 83));
            Colour = Blend(Colour, SNOW, 0.85f * Stuck * Plate);
            // The top of the trunk, v 1, is a shoot like the boughs round it: far off it is all there is of the tip.
            Colour = Blend(Colour, Blend(RIM, FROST, 0.35f), SmoothStep(0.60f, 0.80f, v));
            Picture.SetColour(static_cast<UINT32>(x), static_cast<UINT32>(y), Colour.r, Colour.g, Colour.b);
        }
    }
    return Picture.SavePng(File);
}

} // namespace

bool MakePine(const char* Name, const char* File) {
    if (std::strcmp(Name, "PineBark") == 0) {
        return MakeBark(File);
    }
    CBough Bough;
    Bough.Grow();
    return Bough.Save(File);
}
