// Sprites of the sun: its disc and the light that spills around it. They are added to the picture by their alpha.
#include "Asset.h"
#include "Noise.h"
#include "Picture.h"

#include <cmath>
#include <cstring>

namespace {

constexpr INT32 SIDE = 256;

// The disc fills a part of its sprite, with a soft rim that hides the sprite's own texels.
float DiscAlpha(float Distance, float) {
    const float Disc = 1.0f - SmoothStep(0.26f, 0.40f, Distance);
    const float Rim = std::pow(Clamp01(1.0f - Distance), 3.0f);
    return Clamp01(Disc + 0.7f * Rim);
}

// A steep core, a wide veil and faint rays of uneven length.
float FlareAlpha(float Distance, float Angle) {
    const float Inside = Clamp01(1.0f - Distance);
    const float Core = 0.40f * std::pow(Inside, 10.0f);
    const float Veil = 0.16f * Inside * Inside * Inside;
    const float Ray = 0.5f + 0.5f * std::cos(Angle * 6.0f);
    const float Uneven = 0.7f + 0.3f * std::cos(Angle * 10.0f + 1.0f);
    return Core + Veil + 0.16f * std::pow(Ray, 24.0f) * Uneven * std::pow(Inside, 2.5f);
}

} // namespace

bool MakeGlow(const char* Name, const char* File) {
    const bool Disc = std::strcmp(Name, "Sun") == 0;
    CPicture Picture(SIDE, SIDE, 4);
    for (INT32 y = 0; y < SIDE; ++y) {
        for (INT32 x = 0; x < SIDE; ++x) {
            const float dx = (static_cast<float>(x) + 0.5f) / SIDE * 2 - 1;
            const float dy = (static_cast<float>(y) + 0.5f) / SIDE * 2 - 1;
            const float Distance = std::sqrt(dx * dx + dy * dy);
            const float Angle = std::atan2(dy, dx);
            const float Alpha = Disc ? DiscAlpha(Distance, Angle) : FlareAlpha(Distance, Angle);
            const float Warm = Disc ? 0.06f : 0.10f;
            Picture.SetColour(static_cast<UINT32>(x), static_cast<UINT32>(y), 1.0f, 1.0f - Warm * Distance,
                              1.0f - 2.5f * Warm * Distance, Alpha);
        }
    }
    return Picture.SavePng(File);
}
