// Sky pictures: all directions on one picture twice as wide as high. Column 0 looks along the sky's +X axis, a quarter
// further on along +Y; row 0 is the nadir, the last row the zenith.
//
// The mountains round the horizon are a real landscape of noise, seen from above a sea of mist: each column walks
// outwards over it, and what rises over everything before becomes pixels. So their faces catch the sun where the
// level's sun stands, and far ranges pale behind near ones. Lengths in here are kilometres.
//
// Below the horizon the picture settles on the fog colour, into which the level's own ground fades: a level that uses a
// sky takes its fog colour and its sun's direction from the parameters here.
#include "Asset.h"
#include "Noise.h"
#include "Picture.h"
#include "foundation/Vector.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr INT32 WIDTH = 2048;
constexpr INT32 HEIGHT = 1024;
constexpr INT32 FINE = 2; // the mountains are drawn that many times larger, and then averaged
constexpr float PI = 3.14159265f;

struct SSkyParams {
    const char* Name;
    UINT32 Seed;
    float SunAngle, SunPitch; // radians: round the zenith, and from it, as the level gives them
    Vec3 Zenith, Middle, Horizon;
    Vec3 Fog;
    Vec3 Sun;     // light on snow and clouds
    Vec3 Shade;   // light where the sun does not reach
    float Clouds; // 0 to 1
    Vec3 Cloud = {0.93f, 0.95f, 0.98f};
    float Heaps = 0; // 0 to 1: heaps of fair weather
    float Deck = 0;  // 0 to 1: how closed a sheet of dark cloud is, over a gap at the horizon
    Vec3 DeckColour = {};
    float Aurora = 0; // brightness of northern lights ahead of the ride
    float Stars = 0;  // brightness of the brightest, against white
    float Peaks;      // height of the highest mountains over the eye
};

constexpr SSkyParams SKIES[] = {
    {.Name = "Morning",
     .Seed = 7,
     .SunAngle = 3.50f,
     .SunPitch = 1.17f,
     .Zenith = {0.17f, 0.33f, 0.62f},
     .Middle = {0.50f, 0.60f, 0.81f},
     .Horizon = {1.0f, 0.75f, 0.66f},
     .Fog = {0.84f, 0.73f, 0.75f},
     .Sun = {1.0f, 0.79f, 0.64f},
     .Shade = {0.44f, 0.46f, 0.66f},
     .Clouds = 0.65f,
     .Cloud = {1.0f, 0.84f, 0.80f},
     .Peaks = 5.8f},
    {.Name = "Noon",
     .Seed = 19,
     .SunAngle = 2.75f,
     .SunPitch = 0.88f,
     .Zenith = {0.09f, 0.26f, 0.58f},
     .Middle = {0.28f, 0.54f, 0.86f},
     .Horizon = {0.68f, 0.82f, 0.95f},
     .Fog = {0.68f, 0.79f, 0.92f},
     .Sun = {1.0f, 0.97f, 0.92f},
     .Shade = {0.44f, 0.55f, 0.76f},
     .Clouds = 0.20f,
     .Cloud = {0.97f, 0.98f, 1.0f},
     .Heaps = 0.5f,
     .Peaks = 6.6f},
    {.Name = "Afternoon",
     .Seed = 31,
     .SunAngle = 2.98f,
     .SunPitch = 1.22f,
     .Zenith = {0.15f, 0.29f, 0.55f},
     .Middle = {0.52f, 0.60f, 0.72f},
     .Horizon = {1.0f, 0.78f, 0.52f},
     .Fog = {0.83f, 0.70f, 0.57f},
     .Sun = {1.0f, 0.78f, 0.48f},
     .Shade = {0.40f, 0.42f, 0.60f},
     .Clouds = 0.7f,
     .Cloud = {1.0f, 0.86f, 0.70f},
     .Peaks = 5.2f},
    {.Name = "Dusk",
     .Seed = 43,
     .SunAngle = 5.75f,
     .SunPitch = 1.34f,
     .Zenith = {0.05f, 0.07f, 0.22f},
     .Middle = {0.24f, 0.22f, 0.42f},
     .Horizon = {0.82f, 0.46f, 0.38f},
     .Fog = {0.34f, 0.29f, 0.43f},
     .Sun = {1.0f, 0.56f, 0.34f},
     .Shade = {0.16f, 0.17f, 0.32f},
     .Clouds = 0.6f,
     .Cloud = {0.70f, 0.42f, 0.45f},
     .Stars = 0.3f,
     .Peaks = 4.0f},
    {.Name = "Storm",
     .Seed = 53,
     .SunAngle = 3.4f,
     .SunPitch = 1.30f,
     .Zenith = {0.16f, 0.19f, 0.25f},
     .Middle = {0.52f, 0.50f, 0.46f},
     .Horizon = {0.98f, 0.75f, 0.42f},
     .Fog = {0.61f, 0.56f, 0.52f},
     .Sun = {1.0f, 0.80f, 0.48f},
     .Shade = {0.27f, 0.30f, 0.38f},
     .Clouds = 0.15f,
     .Cloud = {0.74f, 0.62f, 0.50f},
     .Deck = 0.85f,
     .DeckColour = {0.22f, 0.25f, 0.31f},
     .Peaks = 5.4f},
    {.Name = "Night",
     .Seed = 67,
     .SunAngle = 3.38f,
     .SunPitch = 1.20f,
     .Zenith = {0.020f, 0.032f, 0.090f},
     .Middle = {0.045f, 0.090f, 0.185f},
     .Horizon = {0.120f, 0.225f, 0.330f},
     .Fog = {0.125f, 0.200f, 0.305f},
     .Sun = {0.75f, 0.80f, 0.92f},
     .Shade = {0.065f, 0.095f, 0.165f},
     .Clouds = 0.15f,
     .Cloud = {0.22f, 0.28f, 0.41f},
     .Aurora = 0.92f,
     .Stars = 0.42f,
     .Peaks = 5.8f},
};

Vec3 MixColour(const Vec3& A, const Vec3& B, float Part) {
    return A + (B - A) * Part;
}

Vec3 Direction(float Angle, float Elevation) {
    const float Level = std::cos(Elevation);
    return {Level * std::cos(Angle), Level * std::sin(Angle), std::sin(Elevation)};
}

float Dot(const Vec3& A, const Vec3& B) {
    return A.x * B.x + A.y * B.y + A.z * B.z;
}

// The light of the air in a direction: blue above, pale at the horizon, warm towards the sun.
class CAir {
public:
    explicit CAir(const SSkyParams& Params)
        : Params(Params), ToSun(Direction(Params.SunAngle, PI / 2 - Params.SunPitch)) {}

    Vec3 At(const Vec3& Dir) const {
        const float Up = std::max(Dir.z, 0.0f);
        Vec3 Colour = MixColour(Params.Horizon, Params.Middle, SmoothStep(0.0f, 0.32f, Up));
        Colour = MixColour(Colour, Params.Zenith, SmoothStep(0.18f, 0.95f, Up));
        return WithGlow(Colour, Dir, 1.0f);
    }

    Vec3 WithGlow(const Vec3& Colour, const Vec3& Dir, float Strength) const {
        const float Facing = std::max(Dot(Dir, ToSun), 0.0f);
        const float Disc = SmoothStep(0.9996f, 0.99995f, Facing);
        const float Glow = 0.16f * std::pow(Facing, 6.0f) + 0.20f * std::pow(Facing, 60.0f) +
                           0.45f * std::pow(Facing, 600.0f) + 0.5f * Disc;
        const Vec3 Light = {Params.Sun.x * Glow, Params.Sun.y * Glow * 0.93f, Params.Sun.z * Glow * 0.82f};
        return Colour + Light * Strength;
    }

    // Ice clouds combed by the wind, on a flat sheet high above; the part of the sky that they cover.
    float Cirrus(const Vec3& Dir) const {
        if (Dir.z <= 0.02f) {
            return 0;
        }
        const float Sheet = 1.0f / (Dir.z + 0.10f);
        const float x = Dir.x * Sheet;
        const float y = Dir.y * Sheet;
        const float Along = 0.8f * x + 0.6f * y;
        const float Across = 0.8f * y - 0.6f * x;
        const float Warp = NoiseFbm(x * 0.7f, y * 0.7f, 4, Params.Seed + 300);
        const float Field = NoiseFbm(x * 0.45f, y * 0.45f, 3, Params.Seed + 310);
        const float Hair = NoiseFbm(Along * 0.9f + 1.6f * Warp, Across * 3.4f + 1.9f * Warp, 6, Params.Seed + 320);
        const float Cover = SmoothStep(-0.02f, 0.42f, 0.75f * Field + 0.55f * Hair + 0.30f * (Params.Clouds - 0.5f));
        return Cover * SmoothStep(0.03f, 0.22f, Dir.z);
    }

    // White heaps that float on one level, lit from the sun's side; they shrink into the haze at the horizon.
    Vec3 WithHeaps(const Vec3& Colour, const Vec3& Dir) const {
        if (Params.Heaps <= 0 || Dir.z <= 0.04f) {
            return Colour;
        }
        const float Sheet = 1.0f / (Dir.z + 0.14f);
        const float x = Dir.x * Sheet;
        const float y = Dir.y * Sheet;
        const float Many = NoiseFbm(x * 0.35f, y * 0.35f, 2, Params.Seed + 350);
        const float Here = HeapField(x, y);
        const float Thick = Here + 0.9f * Many + 0.5f * (Params.Heaps - 0.5f);
        const float Cover = SmoothStep(0.06f, 0.24f, Thick) * SmoothStep(0.05f, 0.13f, Dir.z);
        if (Cover <= 0) {
            return Colour;
        }
        const float Light = Clamp01(0.62f + 1.6f * (Here - HeapField(x + 0.13f * ToSun.x, y + 0.13f * ToSun.y)) -
                                    0.55f * SmoothStep(0.25f, 0.75f, Thick));
        const Vec3 Body = MixColour(Params.Shade * 1.15f, Params.Cloud, Light);
        return MixColour(Colour, WithGlow(Body, Dir, 0.5f), 0.94f * Cover);
    }

    float HeapField(float x, float y) const { return NoiseFbm(x * 1.3f, y * 1.3f, 6, Params.Seed + 360); }

    // What the lower sheet of cloud does to Colour: it ends ragged over a bright gap at the horizon, from which the
    // light comes under its lumps.
    Vec3 WithDeck(const Vec3& Colour, const Vec3& Dir) const {
        if (Params.Deck <= 0 || Dir.z <= 0.01f) {
            return Colour;
        }
        const float Sheet = 1.0f / (Dir.z + 0.16f);
        const float x = Dir.x * Sheet;
        const float y = Dir.y * Sheet;
        const float Warp = NoiseFbm(x * 0.7f, y * 0.7f, 3, Params.Seed + 330);
        const float Lump = DeckField(x, y, Warp);
        const float Ahead = DeckField(x + 0.22f * ToSun.x, y + 0.22f * ToSun.y, Warp);
        const float Edge = Dir.z + 0.16f * Warp + 0.10f * Lump;
        const float Thin = 0.85f * SmoothStep(0.94f, 0.995f, Dot(Dir, ToSun)); // where the sun stands
        const float Torn = (1 - Params.Deck) * SmoothStep(0.0f, 0.2f, Lump);
        const float Cover = (1 - Thin) * std::min(Params.Deck * SmoothStep(0.20f, 0.40f, Edge) + Torn, 1.0f);
        // Low over the gap the lumps' near sides are lit; towards the zenith all is dark.
        const float Low = SmoothStep(0.75f, 0.18f, Dir.z);
        const float Toward = 0.5f + 0.5f * Dot(Dir, ToSun);
        const float Light = Clamp01(0.30f + 1.5f * (Lump - Ahead)) * Low * (0.25f + 0.75f * Toward * Toward);
        const Vec3 Body = MixColour(Params.DeckColour * (1.0f + 1.1f * Lump), Params.Cloud, Light);
        return MixColour(Colour, WithGlow(Body, Dir, 0.45f), Cover);
    }

    float DeckField(float x, float y, float Warp) const {
        return NoiseFbm(x * 1.1f + 0.7f * Warp, y * 1.1f - 0.5f * Warp, 6, Params.Seed + 340);
    }

    // Curtains of light that hang over the far end of the ride, with rays that run upwards.
    Vec3 Aurora(const Vec3& Dir) const {
        Vec3 Light;
        const float Round = std::atan2(-Dir.y, -Dir.x); // from the middle of the picture, to both sides
        const float Up = std::asin(std::min(Dir.z, 1.0f));
        if (Params.Aurora <= 0 || Dir.z <= 0.02f || std::fabs(Round) > 1.9f) {
            return Light;
        }
        for (int i = 0; i < 3; ++i) {
            const float Shift = 1.7f * static_cast<float>(i);
            const float Wave = NoiseFbm(Round * 1.1f + Shift, 0.31f + Shift, 3, Params.Seed + 370);
            const float Foot =
                0.17f + 0.13f * static_cast<float>(i) + 0.16f * Wave + 0.05f * std::sin(3.1f * Round + Shift);
            const float Ray = NoiseFbm(Round * 16 + 5 * Wave, Up * 1.2f + Shift, 4, Params.Seed + 380);
            const float Fold = NoiseFbm(Round * 2.3f + Shift, Shift, 2, Params.Seed + 390);
            const float Over = Up - Foot;
            const float Tall = 0.10f + 0.16f * Clamp01(0.5f + Ray);
            const float Body = SmoothStep(-0.035f, 0.015f, Over) * std::exp(-std::max(Over, 0.0f) / Tall);
            const float Bright = Body * Clamp01(0.55f + 1.3f * Ray) * Clamp01(0.55f + 1.4f * Fold) *
                                 SmoothStep(1.9f, 0.9f, std::fabs(Round)) / (1.0f + 0.6f * static_cast<float>(i));
            const float High = SmoothStep(0.02f, 0.32f, Over);
            Light += MixColour({0.16f, 0.92f, 0.52f}, {0.46f, 0.22f, 0.78f}, High) * (Bright * Params.Aurora);
        }
        return Light * SmoothStep(1.0f, 0.97f, Dot(Dir, ToSun)); // the moon's glare hides it
    }

    Vec3 WithClouds(const Vec3& Colour, const Vec3& Dir) const {
        const float Cover = Cirrus(Dir) * Params.Clouds * 1.35f;
        const Vec3 Lit = WithGlow(Params.Cloud, Dir, Mix(0.5f, 1.0f, SmoothStep(0.97f, 0.999f, Dot(Dir, ToSun))));
        return WithDeck(WithHeaps(MixColour(Colour, Lit, std::min(Cover, 0.9f)), Dir), Dir);
    }

    const SSkyParams& Params;
    const Vec3 ToSun;
};

// The landscape round the viewer, who stands at the origin.
class CRange {
public:
    explicit CRange(const CAir& Air) : Air(Air), Seed(Air.Params.Seed) {}

    float Height(float x, float y, INT32 Octaves) const {
        const float Massif = 0.60f + 1.15f * NoiseFbm(x * 0.035f, y * 0.035f, 2, Seed + 400);
        const float Crest = NoiseRidged(x * 0.062f, y * 0.062f, Octaves, Seed + 410);
        const float Far = SmoothStep(8.0f, 18.0f, std::sqrt(x * x + y * y));
        const float Top = Mix(FLOOR, Air.Params.Peaks, Far);
        // A saddle under the sun, which would else stand behind a summit where it is low.
        const float Sunward = (x * Air.ToSun.x + y * Air.ToSun.y) / std::max(std::hypot(x, y), 0.01f);
        const float Saddle = 1.0f - 0.5f * SmoothStep(0.86f, 0.98f, Sunward / std::hypot(Air.ToSun.x, Air.ToSun.y));
        return FLOOR + (Top - FLOOR) * Saddle * Crest * (0.40f + 0.95f * std::clamp(Massif, 0.0f, 1.2f));
    }

    // Light from the ground at a place that lies Distance away.
    Vec3 Colour(float x, float y, float z, float Distance) const {
        const float Step = 0.0045f * Distance; // more than a pixel, so that faces are not all grain
        const float dx = (Height(x + Step, y, FULL_DETAIL) - z) / Step;
        const float dy = (Height(x, y + Step, FULL_DETAIL) - z) / Step;
        const float Scale = 1.0f / std::sqrt(dx * dx + dy * dy + 1.0f);
        const Vec3 Normal = {-dx * Scale, -dy * Scale, Scale};

        const float Rough = NoiseFbm(x * 5.0f, y * 5.0f, 3, Seed + 420);
        const float Steep = SmoothStep(0.80f, 0.58f, Normal.z + 0.16f * Rough);
        const float Wood = SmoothStep(-0.10f, -0.75f, z + 0.5f * Rough) * SmoothStep(0.55f, 0.8f, Normal.z);
        Vec3 Ground = MixColour({0.97f, 0.97f, 0.97f}, {0.40f, 0.39f, 0.40f}, Steep);
        Ground = MixColour(Ground, {0.22f, 0.30f, 0.29f}, 0.85f * Wood);

        const float Facing = Clamp01(Dot(Normal, Air.ToSun) * 1.5f);
        const float Lit = Facing * Sunlit(x, y, z);
        const Vec3& Sun = Air.Params.Sun;
        const Vec3& Shade = Air.Params.Shade;
        const Vec3 Light = {Shade.x + Sun.x * Lit * 0.75f, Shade.y + Sun.y * Lit * 0.68f,
                            Shade.z + Sun.z * Lit * 0.52f};
        return Hazed({Ground.x * Light.x, Ground.y * Light.y, Ground.z * Light.z}, x, y, z, Distance);
    }

private:
    // 1 in the sun, 0 in the shadow of another mountain.
    float Sunlit(float x, float y, float z) const {
        float Light = 1;
        float Way = 0.15f;
        for (int i = 0; i < 7; ++i) {
            const float Over =
                z + Air.ToSun.z * Way - Height(x + Air.ToSun.x * Way, y + Air.ToSun.y * Way, COARSE_DETAIL);
            Light = std::min(Light, Clamp01(0.5f + Over * 4.0f));
            Way *= 1.6f;
        }
        return Light;
    }

    // Distance turns everything into air, and the mist in the valleys into fog.
    Vec3 Hazed(const Vec3& Colour, float x, float y, float z, float Distance) const {
        const float Way = std::sqrt(Distance * Distance + z * z);
        const Vec3 Dir = {x / Way, y / Way, z / Way};
        const Vec3 Blue = MixColour(Air.Params.Horizon, Air.Params.Middle, 0.55f);
        const float Thick = 1.0f - std::exp(-Distance / 22.0f);
        Vec3 Seen = MixColour(Colour, Air.WithGlow(Blue, Dir, 0.8f), Thick);
        const float Wave = 0.22f * NoiseFbm(x * 0.25f, y * 0.25f, 3, Seed + 430);
        const float Mist = SmoothStep(MIST_TOP + 0.55f, MIST_TOP - 0.25f, z + Wave);
        return MixColour(Seen, Air.WithGlow(Air.Params.Fog, Dir, 0.35f), Mist);
    }

    static constexpr float FLOOR = -2.2f;
    static constexpr float MIST_TOP = -0.70f;
    static constexpr INT32 FULL_DETAIL = 8;
    static constexpr INT32 COARSE_DETAIL = 4;

    const CAir& Air;
    const UINT32 Seed;
};

// One column of the mountains, finer than the picture: colours from the lowest elevation up to the highest crest.
class CColumn {
public:
    static constexpr float LOWEST = -0.30f; // radians; below there is only fog
    static constexpr float HIGHEST = 0.35f;
    static constexpr INT32 ROWS = static_cast<INT32>((HIGHEST - LOWEST) / PI * HEIGHT * FINE);

    void Draw(const CRange& Range, float Angle) {
        Top = 0;
        const float Cos = std::cos(Angle);
        const float Sin = std::sin(Angle);
        for (float Distance = 8.0f; Distance < 60.0f; Distance *= 1.005f) {
            const float x = Distance * Cos;
            const float y = Distance * Sin;
            const float z = Range.Height(x, y, 8);
            const float Row = (std::atan2(z, Distance) - LOWEST) / PI * HEIGHT * FINE;
            if (Row > static_cast<float>(Top)) {
                Fill(static_cast<INT32>(std::ceil(Row)), Range.Colour(x, y, z, Distance));
            }
        }
    }

    void Fill(INT32 To, const Vec3& Colour) {
        To = std::min(To, ROWS);
        const Vec3 From = Top > 0 ? Colours[Top - 1] : Colour;
        const INT32 First = Top;
        for (; Top < To; ++Top) {
            Colours[Top] =
                MixColour(From, Colour, static_cast<float>(Top - First + 1) / static_cast<float>(To - First));
        }
    }

    Vec3 Colours[ROWS];
    INT32 Top = 0; // rows filled
};

class CSkyPicture {
public:
    explicit CSkyPicture(const SSkyParams& Params) : Air(Params), Range(Air), Picture(WIDTH, HEIGHT, 3) {}

    bool Make(const char* File) {
        for (INT32 x = 0; x < WIDTH; ++x) {
            for (INT32 i = 0; i < FINE; ++i) {
                const float Column = static_cast<float>(x) + (static_cast<float>(i) + 0.5f) / FINE;
                Columns[i].Draw(Range, Column / WIDTH * 2 * PI);
            }
            for (INT32 y = 0; y < HEIGHT; ++y) {
                const Vec3 Colour = Pixel(x, y);
                Picture.SetColour(static_cast<UINT32>(x), static_cast<UINT32>(y), Soft(Colour.x), Soft(Colour.y),
                                  Soft(Colour.z));
            }
        }
        return Picture.SavePng(File);
    }

private:
    Vec3 Pixel(INT32 x, INT32 y) const {
        const float Elevation = (static_cast<float>(y) + 0.5f) / HEIGHT * PI - PI / 2;
        const Vec3 Dir = Direction((static_cast<float>(x) + 0.5f) / WIDTH * 2 * PI, Elevation);
        // Haze and the sun's glow hide the stars.
        const float Star = Stars(x, y) * SmoothStep(0.0f, 0.3f, Dir.z) * SmoothStep(0.97f, 0.80f, Dot(Dir, Air.ToSun));
        const Vec3 Sky = Air.At(Dir) + Vec3{Star, Star, Star} + Air.Aurora(Dir);
        const Vec3 Behind = Dir.z > 0 ? Air.WithClouds(Sky, Dir) : Sky;
        Vec3 Sum;
        for (INT32 i = 0; i < FINE * FINE; ++i) {
            Sum += Sample(Columns[i / FINE], Elevation, i % FINE, Behind);
        }
        Sum *= 1.0f / (FINE * FINE);
        // The mist lies over the feet of the mountains, and far below the horizon there is nothing else.
        const float Mist = SmoothStep(-0.055f, -0.165f, Elevation);
        const Vec3 Fog = Air.WithGlow(Air.Params.Fog, Dir, 0.35f * SmoothStep(-0.25f, -0.1f, Elevation));
        return MixColour(Sum, Fog, Mist);
    }

    // Light of the stars in a pixel: each fills a little more than one, so that it does not flicker.
    float Stars(INT32 x, INT32 y) const {
        float Light = 0;
        for (INT32 Row = y - 1; Air.Params.Stars > 0 && Row <= y + 1; ++Row) {
            for (INT32 Column = x - 1; Column <= x + 1; ++Column) {
                const INT32 Around = (Column + WIDTH) % WIDTH;
                const float Reach = Row == y && Column == x ? 1.0f : Row == y || Column == x ? 0.3f : 0.1f;
                Light += Reach * Star(Around, Row);
            }
        }
        return Light * Air.Params.Stars;
    }

    // Brightness of the star that stands in the middle of a pixel, mostly none.
    float Star(INT32 x, INT32 y) const {
        constexpr float COMMON = 0.0028f; // part of the pixels at the horizon that has one
        const float Elevation = static_cast<float>(y) / HEIGHT * PI - PI / 2;
        if (NoiseCell(x, y, Air.Params.Seed + 350) > COMMON * std::cos(Elevation)) {
            return 0;
        }
        const float Bright = NoiseCell(x, y, Air.Params.Seed + 360);
        return 0.12f + 0.88f * Bright * Bright * Bright * Bright;
    }

    static Vec3 Sample(const CColumn& Column, float Elevation, INT32 Part, const Vec3& Behind) {
        const float Fine = Elevation + (static_cast<float>(Part) + 0.5f - FINE * 0.5f) / (HEIGHT * FINE) * PI;
        const INT32 Row = static_cast<INT32>(std::floor((Fine - CColumn::LOWEST) / PI * HEIGHT * FINE));
        if (Row < 0 || Column.Top == 0) {
            return Row < 0 && Column.Top > 0 ? Column.Colours[0] : Behind;
        }
        return Row < Column.Top ? Column.Colours[Row] : Behind;
    }

    // Bends the bright end, so that the glow round the sun does not end in a flat patch.
    static float Soft(float Value) {
        constexpr float KNEE = 0.85f;
        return Value <= KNEE ? Value : KNEE + (1 - KNEE) * (1.0f - std::exp((KNEE - Value) / (1 - KNEE)));
    }

    const CAir Air;
    const CRange Range;
    CColumn Columns[FINE];
    CPicture Picture;
};

} // namespace

bool MakeSky(const char* Name, const char* File) {
    for (const SSkyParams& Params : SKIES) {
        if (std::strcmp(Params.Name, Name) == 0) {
            CSkyPicture Sky(Params);
            return Sky.Make(File);
        }
    }
    return false;
}
