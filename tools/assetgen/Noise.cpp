#include "Noise.h"

#include <algorithm>
#include <cmath>

namespace {

struct SCorner {
    float x, y;
};

// Sixteen directions all round; unit length.
constexpr SCorner DIRECTIONS[16] = {
    {1.0f, 0.0f},  {0.92388f, 0.38268f},   {0.70711f, 0.70711f},   {0.38268f, 0.92388f},
    {0.0f, 1.0f},  {-0.38268f, 0.92388f},  {-0.70711f, 0.70711f},  {-0.92388f, 0.38268f},
    {-1.0f, 0.0f}, {-0.92388f, -0.38268f}, {-0.70711f, -0.70711f}, {-0.38268f, -0.92388f},
    {0.0f, -1.0f}, {0.38268f, -0.92388f},  {0.70711f, -0.70711f},  {0.92388f, -0.38268f},
};

// The largest value of the plain sum below is about 0.7.
constexpr float GRADIENT_SCALE = 1.4f;

INT32 Wrap(INT32 Value, INT32 Period) {
    const INT32 Rest = Value % Period;
    return Rest < 0 ? Rest + Period : Rest;
}

float Fade(float t) {
    return t * t * t * (t * (t * 6.0f - 15.0f) + 10.0f);
}

float CornerValue(INT32 CellX, INT32 CellY, float dx, float dy, UINT32 Seed) {
    const SCorner& Direction = DIRECTIONS[NoiseHash(CellX, CellY, Seed) >> 28];
    return Direction.x * dx + Direction.y * dy;
}

float Blend(const float Corners[4], float dx, float dy) {
    const float u = Fade(dx);
    return Mix(Mix(Corners[0], Corners[1], u), Mix(Corners[2], Corners[3], u), Fade(dy)) * GRADIENT_SCALE;
}

} // namespace

UINT32 NoiseHash(INT32 X, INT32 Y, UINT32 Seed) {
    UINT32 h = Seed * 0x9E3779B1u ^ static_cast<UINT32>(X) * 0x85EBCA77u ^ static_cast<UINT32>(Y) * 0xC2B2AE3Du;
    h ^= h >> 15;
    h *= 0x2C1B3C6Du;
    h ^= h >> 12;
    h *= 0x297A2D39u;
    h ^= h >> 15;
    return h;
}

float NoiseCell(INT32 X, INT32 Y, UINT32 Seed) {
    return static_cast<float>(NoiseHash(X, Y, Seed) >> 8) / 16777215.0f;
}

float NoiseGradient(float X, float Y, UINT32 Seed) {
    const float FloorX = std::floor(X);
    const float FloorY = std::floor(Y);
    const INT32 CellX = static_cast<INT32>(FloorX);
    const INT32 CellY = static_cast<INT32>(FloorY);
    const float dx = X - FloorX;
    const float dy = Y - FloorY;
    const float Corners[4] = {
        CornerValue(CellX, CellY, dx, dy, Seed),
        CornerValue(CellX + 1, CellY, dx - 1, dy, Seed),
        CornerValue(CellX, CellY + 1, dx, dy - 1, Seed),
        CornerValue(CellX + 1, CellY + 1, dx - 1, dy - 1, Seed),
    };
    return Blend(Corners, dx, dy);
}

float NoiseGradientTiled(float X, float Y, INT32 PeriodX, INT32 PeriodY, UINT32 Seed) {
    const float FloorX = std::floor(X);
    const float FloorY = std::floor(Y);
    const INT32 x0 = Wrap(static_cast<INT32>(FloorX), PeriodX);
    const INT32 y0 = Wrap(static_cast<INT32>(FloorY), PeriodY);
    const INT32 x1 = Wrap(x0 + 1, PeriodX);
    const INT32 y1 = Wrap(y0 + 1, PeriodY);
    const float dx = X - FloorX;
    const float dy = Y - FloorY;
    const float Corners[4] = {
        CornerValue(x0, y0, dx, dy, Seed),
        CornerValue(x1, y0, dx - 1, dy, Seed),
        CornerValue(x0, y1, dx, dy - 1, Seed),
        CornerValue(x1, y1, dx - 1, dy - 1, Seed),
    };
    return Blend(Corners, dx, dy);
}

float NoiseFbm(float X, float Y, INT32 Octaves, UINT32 Seed) {
    float Sum = 0;
    float Height = 0.5f;
    for (INT32 i = 0; i < Octaves; ++i) {
        Sum += NoiseGradient(X, Y, Seed + static_cast<UINT32>(i)) * Height;
        X *= 2;
        Y *= 2;
        Height *= 0.5f;
    }
    return Sum;
}

float NoiseFbmTiled(float X, float Y, INT32 PeriodX, INT32 PeriodY, INT32 Octaves, UINT32 Seed) {
    float Sum = 0;
    float Height = 0.5f;
    for (INT32 i = 0; i < Octaves; ++i) {
        Sum += NoiseGradientTiled(X, Y, PeriodX, PeriodY, Seed + static_cast<UINT32>(i)) * Height;
        X *= 2;
        Y *= 2;
        PeriodX *= 2;
        PeriodY *= 2;
        Height *= 0.5f;
    }
    return Sum;
}

float NoiseRidged(float X, float Y, INT32 Octaves, UINT32 Seed) {
    float Sum = 0;
    float Height = 0.5f;
    float Weight = 1;
    for (INT32 i = 0; i < Octaves; ++i) {
        float Crest = 1.0f - std::fabs(NoiseGradient(X, Y, Seed + static_cast<UINT32>(i)));
        Crest *= Crest;
        Sum += Crest * Height * Weight;
        Weight = Clamp01(Crest * 1.4f);
        // A turn between octaves hides the lattice.
        const float Turned = 1.6f * X - 1.2f * Y;
        Y = 1.2f * X + 1.6f * Y + 7.3f;
        X = Turned + 3.1f;
        Height *= 0.5f;
    }
    return Sum;
}

void NoiseWorleyTiled(float X, float Y, INT32 PeriodX, INT32 PeriodY, UINT32 Seed, float& Nearest, float& Second) {
    const INT32 CellX = static_cast<INT32>(std::floor(X));
    const INT32 CellY = static_cast<INT32>(std::floor(Y));
    Nearest = Second = 8.0f;
    for (INT32 y = CellY - 1; y <= CellY + 1; ++y) {
        for (INT32 x = CellX - 1; x <= CellX + 1; ++x) {
            const INT32 wx = Wrap(x, PeriodX);
            const INT32 wy = Wrap(y, PeriodY);
            const float dx = static_cast<float>(x) + NoiseCell(wx, wy, Seed) - X;
            const float dy = static_cast<float>(y) + NoiseCell(wx, wy, Seed + 1) - Y;
            const float Distance = std::sqrt(dx * dx + dy * dy);
            if (Distance < Nearest) {
                Second = Nearest;
                Nearest = Distance;
            } else {
                Second = std::min(Second, Distance);
            }
        }
    }
}

float Clamp01(float Value) {
    return std::clamp(Value, 0.0f, 1.0f);
}

float SmoothStep(float From, float To, float Value) {
    const float t = Clamp01((Value - From) / (To - From));
    return t * t * (3.0f - 2.0f * t);
}

float Mix(float A, float B, float Part) {
    return A + (B - A) * Part;
}
