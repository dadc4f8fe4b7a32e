// The maker's mark, "VANTOR": a plate with a night sky, a range of mountains and the name under the aurora.
#include "Asset.h"
#include "Lettering.h"
#include "Noise.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr INT32 WIDTH = 1024;
constexpr INT32 HEIGHT = 512;

constexpr Vec3 NAVY = {0.02f, 0.045f, 0.11f};

float Float(INT32 Value) {
    return static_cast<float>(Value);
}

// Pixels inside of the plate: a rectangle whose left and right ends are pointed, its corners rounded.
float PlateDistance(float x, float y) {
    constexpr float HALF_WIDTH = 484, HALF_HEIGHT = 214, POINT = 70, ROUND = 26;
    const float ax = std::fabs(x - WIDTH / 2.0f), ay = std::fabs(y - HEIGHT / 2.0f);
    // The slanted edge from the point in the middle of the side up to the level one.
    const float Length = std::hypot(POINT, HALF_HEIGHT);
    const float Slanted = ((ax - HALF_WIDTH) * HALF_HEIGHT + ay * POINT) / Length + ROUND;
    const float Level = ay - HALF_HEIGHT + ROUND;
    const float Out = std::hypot(std::max(Slanted, 0.0f), std::max(Level, 0.0f));
    return ROUND - (Out > 0 ? Out : std::max(Slanted, Level));
}

// Two summits with a notch between them, the shape of a V, and a lower one on each side. The columns are those of the
// summits, counted from the middle.
struct SFlank {
    float Summit;
    float Row;
};

SFlank FlankAt(float Away) {
    const SFlank Inner = {118, 122 + 0.92f * std::fabs(Away - 118)};
    const SFlank Outer = {292, 196 + 0.62f * std::fabs(Away - 292)};
    return Inner.Row < Outer.Row ? Inner : Outer;
}

float CrestRow(float x) {
    return std::min(FlankAt(std::fabs(x - WIDTH / 2.0f)).Row, 300.0f) + 16 * NoiseFbm(x * 0.03f, 0.5f, 5, 71);
}

Vec3 SkyColour(float x, float y) {
    Vec3 Colour = MixColour({0.02f, 0.05f, 0.15f}, {0.07f, 0.22f, 0.42f}, SmoothStep(40, 300, y));
    // Veils of light that hang from a waving hem.
    const float Hem = 168 + 46 * std::sin(x * 0.0075f + 0.6f) + 24 * NoiseFbm(x * 0.008f, 1.5f, 3, 81);
    const float Up = Hem - y;
    const float Folds = 0.55f + 0.45f * NoiseFbm(x * 0.028f + y * 0.004f, 2.5f, 3, 82);
    const float Veil = SmoothStep(-10, 8, Up) * std::exp(-std::max(Up, 0.0f) / 62) * Folds;
    Colour = Colour + Vec3{0.10f, 0.80f, 0.55f} * (0.85f * Clamp01(Veil));
    const INT32 sx = static_cast<INT32>(x) / 9, sy = static_cast<INT32>(y) / 9;
    if (NoiseCell(sx, sy, 83) > 0.955f) {
        const float dx = x - (Float(sx) + 0.25f + 0.5f * NoiseCell(sx, sy, 84)) * 9;
        const float dy = y - (Float(sy) + 0.25f + 0.5f * NoiseCell(sx, sy, 85)) * 9;
        Colour = MixColour(Colour, {0.95f, 0.97f, 1.0f}, 0.9f * SmoothStep(2.2f, 0.6f, std::hypot(dx, dy)));
    }
    return Colour;
}

Vec3 RangeColour(float x, float y) {
    const float Down = y - CrestRow(x);
    // The side towards the middle lies in the light of the notch.
    const float Away = std::fabs(x - WIDTH / 2.0f);
    const float Rib = 34 * NoiseFbm(x * 0.022f, y * 0.022f, 4, 72);
    const float Lit = SmoothStep(6, -6, Away - FlankAt(Away + 0.5f * Rib).Summit + Rib + 0.12f * Down);
    const float Rock = SmoothStep(0.02f, 0.14f, NoiseFbm(x * 0.035f, y * 0.05f, 5, 73) + 0.003f * (Down - 46));
    const Vec3 Snow = MixColour({0.22f, 0.40f, 0.66f}, {0.86f, 0.95f, 1.0f}, Lit);
    const Vec3 Stone = MixColour({0.05f, 0.11f, 0.23f}, {0.16f, 0.27f, 0.44f}, Lit);
    const Vec3 Colour = MixColour(Snow, Stone, 0.9f * Rock);
    return MixColour(Colour, {0.05f, 0.13f, 0.27f}, SmoothStep(200, 310, y));
}

class CMark {
public:
    CMark() : Name(WIDTH, HEIGHT), Canvas(WIDTH, HEIGHT) {}

    bool Make(const char* File) {
        constexpr float GAP = 17;
        const CLettering Type(140, false);
        const SLetterForm Form = {.ScaleX = 1.02f, .Weight = 3};
        float Length = -GAP;
        for (const char* c = NAME; *c; ++c) {
            Length += Type.Advance(*c) * Form.ScaleX + GAP;
        }
        Type.DrawText(Name, NAME, (WIDTH - Length) / 2, BASELINE, Form, GAP);
        Edge = Smoothed(SignedDistance(Name));
        for (INT32 y = 0; y < HEIGHT; ++y) {
            for (INT32 x = 0; x < WIDTH; ++x) {
                PaintPlate(x, y);
                PaintName(x, y);
            }
        }
        return Type.Good && Canvas.SavePng(File, NAVY);
    }

private:
    static constexpr const char* NAME = "VANTOR";
    static constexpr float BASELINE = 404;

    void PaintPlate(INT32 px, INT32 py) {
        const float x = Float(px), y = Float(py);
        const float Inside = PlateDistance(x, y);
        Canvas.Over(px, py, {0, 0.01f, 0.03f}, 0.55f * SmoothStep(-20, 8, PlateDistance(x - 3, y - 8)));
        Canvas.Over(px, py, NAVY, CoverageOf(Inside));
        // A frame of ice between two dark lines.
        const float Frame = std::min(Inside - 5, 14 - Inside);
        const float Shine = 0.5f + 0.5f * std::sin(0.011f * x + 0.02f * y + 1.0f);
        const Vec3 Metal = MixColour({0.42f, 0.60f, 0.82f}, {0.95f, 0.98f, 1.0f}, 0.35f + 0.65f * Shine);
        Canvas.Over(px, py, Metal, CoverageOf(Frame));
        const float Picture = CoverageOf(Inside - 18);
        if (Picture > 0) {
            Canvas.Over(px, py, SkyColour(x, y), Picture);
            Canvas.Over(px, py, RangeColour(x, y), Picture * CoverageOf(y - CrestRow(x)));
        }
    }

    void PaintName(INT32 x, INT32 y) {
        Canvas.Over(x, y, {0, 0.015f, 0.05f}, 0.75f * SmoothStep(-16, 2, Edge.At(x - 1, y - 4)));
        const float Cover = Name.At(x, y);
        const float t = (Float(y) - (BASELINE - 102)) / 102;
        Vec3 Colour = MixColour({1.0f, 1.0f, 1.0f}, {0.55f, 0.77f, 0.97f}, SmoothStep(0.0f, 1.0f, t));
        const Vec2 Slope = Edge.Slope(x, y);
        const float Light = (0.4f * Slope.x + 0.9f * Slope.y) * SmoothStep(7, 3, Edge.At(x, y));
        Colour = Light > 0 ? MixColour(Colour, {1, 1, 1}, Light) : MixColour(Colour, {0.16f, 0.36f, 0.62f}, -Light);
        Canvas.Over(x, y, Colour, Cover);
    }

    CField Name;
    CField Edge = CField(1, 1);
    CCanvas Canvas;
};

} // namespace

bool MakeLogo(const char*, const char* File) {
    return CMark().Make(File);
}
