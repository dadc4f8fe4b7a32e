// Detail textures of the terrain: snow and rock, 1024 by 1024, repeating in both directions.
//
// The terrain's shader reads as little as it can, so one texel holds all there is of a place: the normal's x and y in
// red and green, brightness in blue. Rock has its relief in alpha, in whose hollows snow settles; snow its glints: a
// few grains with a random phase, 0 elsewhere.
#include "Asset.h"
#include "Noise.h"
#include "Picture.h"

#include <cmath>
#include <cstring>

namespace {

constexpr INT32 SIDE = 1024;

using Relief = float (*)(float u, float v);

// Wind ripples: crests across the wind, bent and broken up, on soft drifts; u and v from 0 to 1.
float SnowRelief(float u, float v) {
    const float Drift = NoiseFbmTiled(u * 3, v * 4, 3, 4, 3, 100);
    const float Bend = NoiseFbmTiled(u * 4, v * 4, 4, 4, 3, 110);
    // Whole numbers of crests in both directions keep the tile closed.
    const float Phase = 6.2831853f * (3.0f * u + 17.0f * v) + 5.5f * Bend;
    float Ripple = 0.5f + 0.5f * std::sin(Phase);
    Ripple *= Ripple;
    const float Broken = SmoothStep(-0.25f, 0.35f, NoiseFbmTiled(u * 5, v * 8, 5, 8, 3, 120));
    const float Streak = NoiseFbmTiled(u * 6, v * 40, 6, 40, 3, 130);
    const float Crust = NoiseFbmTiled(u * 60, v * 90, 60, 90, 2, 140);
    const float Grain = NoiseFbmTiled(u * 256, v * 256, 256, 256, 2, 145);
    return 1.2f * Drift + 0.34f * Ripple * Broken + 0.28f * Streak + 0.05f * Crust + 0.016f * Grain;
}

// Strata along u that lean and break, cracks between blocks, and grit.
float RockRelief(float u, float v) {
    const float Warp = NoiseFbmTiled(u * 3, v * 3, 3, 3, 4, 200);
    const float Layer = v * 6.0f + 1.5f * Warp + 0.5f * NoiseFbmTiled(u * 2, v * 6, 2, 6, 3, 210);
    const float Part = Layer - std::floor(Layer);
    const float Ledge = SmoothStep(0.0f, 0.7f, Part) - SmoothStep(0.8f, 1.0f, Part);
    const float Ledges = 0.25f + 0.75f * SmoothStep(-0.2f, 0.3f, NoiseFbmTiled(u * 4, v * 4, 4, 4, 2, 215));

    float Near, Second;
    NoiseWorleyTiled(u * 5 + 1.2f * Warp, v * 9 + 1.0f * Warp, 5, 9, 220, Near, Second);
    const float Block = SmoothStep(0.0f, 0.10f, Second - Near);
    const float Face = Near * 0.8f;
    NoiseWorleyTiled(u * 17 + 1.6f * Warp, v * 23 + 1.2f * Warp, 17, 23, 230, Near, Second);
    const float Chip = SmoothStep(0.0f, 0.2f, Second - Near);

    const float Rough = NoiseFbmTiled(u * 8, v * 8, 8, 8, 7, 240);
    return 0.45f * Ledge * Ledges + 0.16f * Block + Face * 0.5f + 0.07f * Chip + 0.85f * Rough + 0.8f * Warp;
}

// Relief of the whole tile; a neighbour beyond an edge is found on the other side.
class CField {
public:
    explicit CField(Relief Source) {
        Heights.Resize(SIDE * SIDE);
        for (INT32 y = 0; y < SIDE; ++y) {
            for (INT32 x = 0; x < SIDE; ++x) {
                Heights.Data[y * SIDE + x] =
                    Source((static_cast<float>(x) + 0.5f) / SIDE, (static_cast<float>(y) + 0.5f) / SIDE);
            }
        }
    }

    float At(INT32 x, INT32 y) const { return Heights.Data[(y & (SIDE - 1)) * SIDE + (x & (SIDE - 1))]; }

    // How much a place lies above its surroundings.
    float Prominence(INT32 x, INT32 y, INT32 Reach) const {
        const float Around = At(x - Reach, y) + At(x + Reach, y) + At(x, y - Reach) + At(x, y + Reach);
        return At(x, y) - Around * 0.25f;
    }

private:
    GArray<float> Heights;
};

// 0 for most grains.
float Glint(INT32 x, INT32 y) {
    constexpr float GLINTS = 0.05f; // part of the grains that glint
    // Two texels wide, so that the next smaller mip level still has it whole.
    return NoiseCell(x / 2, y / 2, 160) < GLINTS ? 0.35f + 0.65f * NoiseCell(x / 2, y / 2, 161) : 0.0f;
}

// Brightness and alpha of a texel.
struct SFinish {
    float Bright, Alpha;
};

SFinish SnowFinish(const CField& Field, INT32 x, INT32 y) {
    const float Grain = NoiseCell(x, y, 150) - 0.5f;
    return {0.5f + 0.45f * Field.Prominence(x, y, 24) + 2.5f * Field.Prominence(x, y, 3) + 0.14f * Grain, Glint(x, y)};
}

SFinish RockFinish(const CField& Field, INT32 x, INT32 y) {
    const float u = static_cast<float>(x) / SIDE;
    const float v = static_cast<float>(y) / SIDE;
    const float Hollow = Clamp01(0.5f + 0.9f * Field.Prominence(x, y, 10) + 0.5f * Field.Prominence(x, y, 36) +
                                 0.9f * Field.Prominence(x, y, 3));
    const float Band = NoiseFbmTiled(u * 2, v * 14, 2, 14, 3, 250);
    const float Lichen = SmoothStep(0.18f, 0.42f, NoiseFbmTiled(u * 9, v * 9, 9, 9, 4, 260));
    const float Grit = NoiseCell(x, y, 270) - 0.5f;
    return {0.17f + 0.36f * Hollow + 0.16f * Band + 0.05f * Grit - 0.02f * Lichen, Hollow};
}

bool SaveGround(const CField& Field, float Strength, SFinish (*Finish)(const CField&, INT32, INT32), const char* File) {
    CPicture Picture(SIDE, SIDE, 4);
    for (INT32 y = 0; y < SIDE; ++y) {
        for (INT32 x = 0; x < SIDE; ++x) {
            const float dx = (Field.At(x - 1, y) - Field.At(x + 1, y)) * Strength;
            const float dy = (Field.At(x, y - 1) - Field.At(x, y + 1)) * Strength;
            const float Scale = 0.5f / std::sqrt(dx * dx + dy * dy + 1.0f);
            const SFinish Texel = Finish(Field, x, y);
            Picture.SetColour(static_cast<UINT32>(x), static_cast<UINT32>(y), dx * Scale + 0.5f, dy * Scale + 0.5f,
                              Texel.Bright, Texel.Alpha);
        }
    }
    return Picture.SavePng(File);
}

} // namespace

bool MakeGround(const char* Name, const char* File) {
    if (std::strcmp(Name, "Snow") == 0) {
        return SaveGround(CField(SnowRelief), 11.0f, SnowFinish, File);
    }
    return SaveGround(CField(RockRelief), 13.0f, RockFinish, File);
}
