#include "Canvas.h"

#include "Noise.h"
#include "Picture.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float FAR_AWAY = 1e12f;

// Squared distances along one line of Count values, Step apart: each becomes the least of value plus squared way, the
// lower envelope of parabolas.
class CEnvelope {
public:
    explicit CEnvelope(INT32 Longest) {
        Line.Resize(static_cast<UINT32>(Longest));
        Place.Resize(static_cast<UINT32>(Longest));
        Border.Resize(static_cast<UINT32>(Longest) + 1);
    }

    void Run(float* Values, INT32 Count, INT32 Step) {
        for (INT32 i = 0; i < Count; ++i) {
            Line.Data[i] = Values[i * Step];
        }
        INT32 Top = 0;
        Place.Data[0] = 0;
        Border.Data[0] = -FAR_AWAY;
        Border.Data[1] = FAR_AWAY;
        for (INT32 i = 1; i < Count; ++i) {
            float Meet = Crossing(Place.Data[Top], i);
            while (Meet <= Border.Data[Top]) {
                Meet = Crossing(Place.Data[--Top], i);
            }
            Place.Data[++Top] = i;
            Border.Data[Top] = Meet;
            Border.Data[Top + 1] = FAR_AWAY;
        }
        for (INT32 i = 0, k = 0; i < Count; ++i) {
            while (Border.Data[k + 1] < static_cast<float>(i)) {
                ++k;
            }
            const float Way = static_cast<float>(i - Place.Data[k]);
            Values[i * Step] = Way * Way + Line.Data[Place.Data[k]];
        }
    }

private:
    float Crossing(INT32 a, INT32 b) const {
        const float Squares =
            static_cast<float>(b) * static_cast<float>(b) - static_cast<float>(a) * static_cast<float>(a);
        return (Line.Data[b] - Line.Data[a] + Squares) / static_cast<float>(2 * (b - a));
    }

    GArray<float> Line;
    GArray<INT32> Place;
    GArray<float> Border;
};

// Distance of each pixel to what Coverage (or, if Outside is false, its complement) covers.
CField DistanceTo(const CField& Coverage, bool Outside) {
    // Less than any place can be from any other, so that sums stay exact.
    constexpr float NOTHING_NEAR = 1e6f;
    CField Squares(Coverage.Width, Coverage.Height);
    for (INT32 y = 0; y < Coverage.Height; ++y) {
        for (INT32 x = 0; x < Coverage.Width; ++x) {
            const float Part = Outside ? Coverage.At(x, y) : 1 - Coverage.At(x, y);
            const float Way = std::max(0.5f - Part, 0.0f);
            Squares.Ref(x, y) = Part <= 0 ? NOTHING_NEAR : Way * Way;
        }
    }
    CEnvelope Envelope(std::max(Coverage.Width, Coverage.Height));
    for (INT32 x = 0; x < Coverage.Width; ++x) {
        Envelope.Run(&Squares.Ref(x, 0), Coverage.Height, Coverage.Width);
    }
    for (INT32 y = 0; y < Coverage.Height; ++y) {
        Envelope.Run(&Squares.Ref(0, y), Coverage.Width, 1);
        for (INT32 x = 0; x < Coverage.Width; ++x) {
            Squares.Ref(x, y) = std::sqrt(Squares.At(x, y));
        }
    }
    return Squares;
}

} // namespace

CField::CField(INT32 Width, INT32 Height, float Value) : Width(Width), Height(Height) {
    Values.Resize(static_cast<UINT32>(Width * Height));
    std::fill(Values.begin(), Values.end(), Value);
}

float CField::At(INT32 x, INT32 y) const {
    return Values.Data[std::clamp(y, 0, Height - 1) * Width + std::clamp(x, 0, Width - 1)];
}

Vec2 CField::Slope(INT32 x, INT32 y) const {
    return {(At(x + 1, y) - At(x - 1, y)) * 0.5f, (At(x, y + 1) - At(x, y - 1)) * 0.5f};
}

CField SignedDistance(const CField& Coverage) {
    CField Out = DistanceTo(Coverage, false);
    const CField Away = DistanceTo(Coverage, true);
    for (INT32 y = 0; y < Coverage.Height; ++y) {
        for (INT32 x = 0; x < Coverage.Width; ++x) {
            Out.Ref(x, y) -= Away.At(x, y);
        }
    }
    return Out;
}

CField Smoothed(const CField& Field) {
    constexpr INT32 REACH = 2;
    constexpr float PART = 1.0f / (2 * REACH + 1);
    CField Rows(Field.Width, Field.Height);
    CField Out(Field.Width, Field.Height);
    for (INT32 i = 0; i < Field.Width * Field.Height; ++i) {
        for (INT32 k = -REACH; k <= REACH; ++k) {
            Rows.Ref(i % Field.Width, i / Field.Width) += PART * Field.At(i % Field.Width + k, i / Field.Width);
        }
    }
    for (INT32 i = 0; i < Field.Width * Field.Height; ++i) {
        for (INT32 k = -REACH; k <= REACH; ++k) {
            Out.Ref(i % Field.Width, i / Field.Width) += PART * Rows.At(i % Field.Width, i / Field.Width + k);
        }
    }
    return Out;
}

float CoverageOf(float Distance, float Grow) {
    return Clamp01(Distance + Grow + 0.5f);
}

CCanvas::CCanvas(INT32 Width, INT32 Height) : Width(Width), Height(Height), Alphas(Width, Height) {
    Colours.Resize(static_cast<UINT32>(Width * Height));
}

void CCanvas::Over(INT32 x, INT32 y, const Vec3& Colour, float Alpha) {
    if (Alpha <= 0) {
        return;
    }
    Vec3& Below = Colours[static_cast<UINT32>(y * Width + x)];
    float& Sum = Alphas.Ref(x, y);
    const float All = Alpha + Sum * (1 - Alpha);
    Below = MixColour(Below, Colour, Alpha / All);
    Sum = All;
}

bool CCanvas::SavePng(const char* File, const Vec3& Rim) const {
    CPicture Picture(static_cast<UINT32>(Width), static_cast<UINT32>(Height), 4);
    for (INT32 i = 0; i < Width * Height; ++i) {
        const float Alpha = Alphas.At(i % Width, i / Width);
        const Vec3& Colour = Alpha > 0 ? Colours.Data[i] : Rim;
        Picture.SetColour(static_cast<UINT32>(i % Width), static_cast<UINT32>(i / Width), Colour.x, Colour.y, Colour.z,
                          Alpha);
    }
    return Picture.SavePng(File);
}

Vec3 MixColour(const Vec3& A, const Vec3& B, float Part) {
    return A + (B - A) * Part;
}
