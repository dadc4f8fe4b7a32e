// Height pictures of the slopes: 257 by 257 grey samples, row 0 at the lower end of the ride.
//
// Heights are 8 bits, and a gentle slope rounded to whole levels turns into stairs. So the ride never comes from
// rounding: its rows climb by whole levels, one a row on even ground, none or two in the rollers, and across it is
// exactly level. Its banks begin with one level a sample. Only the flanks, where the ground is steep anyway, are
// rounded from a formula.
#include "Asset.h"
#include "Noise.h"
#include "Picture.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr INT32 SAMPLES = 257; // a side; the engine wants 2^k + 1
constexpr INT32 TOP_LEVEL = 255;

// A stretch of the ride, as levels to climb in each of its rows, from its lower end upwards.
struct SStretch {
    INT32 Rows;
    INT32 Steps[16];
};

// How a ride changes on its way: even ground of one level a row, and between two such pieces a stretch. Two kinds of
// stretches, the first of them climbs more and the second less than the mean.
struct SWay {
    INT32 EvenRows; // at least; up to 4 more by chance
    SStretch High[2], Low[2];
};

constexpr SWay ROLLING = {
    4, {{4, {0, 0, 2, 2}}, {6, {0, 1, 0, 2, 1, 2}}}, {{4, {0, 0, 0, 0}}, {7, {0, 0, 0, 0, 0, 1, 2}}}};
// Long flats that end in drops: whoever comes fast flies over them.
constexpr SWay TERRACES = {2,
                           {{13, {1, 2, 2, 2, 2, 2, 1, 0, 0, 0, 0, 0, 0}}, {9, {1, 2, 2, 2, 2, 0, 0, 0, 0}}},
                           {{13, {1, 2, 2, 2, 2, 1, 0, 0, 0, 0, 0, 0, 0}}, {10, {2, 2, 2, 0, 0, 0, 0, 0, 0, 0}}}};
// Short waves, hardly any even ground.
constexpr SWay WAVES = {
    1, {{8, {1, 2, 2, 2, 1, 0, 0, 0}}, {6, {2, 2, 0, 0, 1, 2}}}, {{7, {2, 2, 1, 0, 0, 0, 0}}, {5, {2, 0, 0, 0, 0}}}};

struct SSlopeParams {
    const char* Name;
    UINT32 Seed;
    const SWay& Way = ROLLING;
    INT32 FirstLevel = 5; // of the ride at its lower end
    float RiseRate;       // mean levels a row of the ride
    float HalfWidth;      // of the ride, in samples
    float Meander;        // reach of the ride's bends to either side, in samples
    float Turns;          // bends over the whole length
    float BankWidth = 11; // samples over which the flanks curve up from one level a sample to an even slope
    float BankCurve = 0.06f;
    float CrestHeight;        // of the flanks over the ride, in levels
    float CrestChange = 0.9f; // part of the height by which crests rise and sink
    float Drop = 0;           // levels that the ground behind the crests lies below the ride
    float OuterHeight = 0;    // levels over the ride that the ground rises to again, beyond that
    float Cliffs;             // 0 to 1: how much of the flanks is broken into cliffs and ledges
    INT32 Knobs;              // rocks beside the ride
};

constexpr SSlopeParams SLOPES[] = {
    // A wide bowl.
    {.Name = "Slope1",
     .Seed = 11,
     .RiseRate = 0.72f,
     .HalfWidth = 18,
     .Meander = 13,
     .Turns = 1.9f,
     .BankWidth = 22,
     .BankCurve = 0.025f,
     .CrestHeight = 80,
     .CrestChange = 0.6f,
     .Cliffs = 0.8f,
     .Knobs = 30},
    // A winding gully between high walls.
    {.Name = "Slope2",
     .Seed = 23,
     .RiseRate = 0.70f,
     .HalfWidth = 10,
     .Meander = 25,
     .Turns = 3.3f,
     .BankCurve = 0.11f,
     .CrestHeight = 96,
     .Cliffs = 1.0f,
     .Knobs = 14},
    // Terraces over which one flies.
    {.Name = "Slope3",
     .Seed = 37,
     .Way = TERRACES,
     .RiseRate = 0.85f,
     .HalfWidth = 13,
     .Meander = 15,
     .Turns = 2.2f,
     .BankWidth = 9,
     .CrestHeight = 50,
     .CrestChange = 0.4f,
     .OuterHeight = 50,
     .Cliffs = 0.6f,
     .Knobs = 20},
    // The back of a ridge: low banks, and behind them the ground falls away.
    {.Name = "Slope4",
     .Seed = 41,
     .FirstLevel = 52,
     .RiseRate = 0.66f,
     .HalfWidth = 11,
     .Meander = 18,
     .Turns = 2.4f,
     .CrestHeight = 18,
     .CrestChange = 0.15f,
     .Drop = 58,
     .OuterHeight = 60,
     .Cliffs = 0.5f,
     .Knobs = 0},
    // A narrow valley that winds over short waves.
    {.Name = "Slope5",
     .Seed = 59,
     .Way = WAVES,
     .RiseRate = 0.84f,
     .HalfWidth = 10.5f,
     .Meander = 20,
     .Turns = 4.1f,
     .BankCurve = 0.1f,
     .CrestHeight = 56,
     .CrestChange = 0.35f,
     .OuterHeight = 60,
     .Cliffs = 0.7f,
     .Knobs = 26},
    // Behind the title.
    {.Name = "Vale",
     .Seed = 71,
     .RiseRate = 0.62f,
     .HalfWidth = 15,
     .Meander = 30,
     .Turns = 1.33f,
     .CrestHeight = 80,
     .Cliffs = 0.6f,
     .Knobs = 16},
};

constexpr float LEAST_HALF_WIDTH = 8; // samples: a narrow ride is not pinched off
constexpr INT32 HEAD_ROWS = 11;       // behind the start the ride rises two levels a row
constexpr INT32 FOOT_ROWS = 11;       // as it does beyond the finish, where riders come to rest

constexpr float KNOB_RADIUS = 6.5f;   // samples across the slope
constexpr float SAMPLE_ASPECT = 2.5f; // a row is that many times as long as a column is wide

struct SKnob {
    float Column, Row, Radius, Height;
};

class CSlope {
public:
    explicit CSlope(const SSlopeParams& Params) : Params(Params) {
        LayRide();
        PlaceKnobs();
    }

    INT32 Level(INT32 Column, INT32 Row) const {
        const float Beside = Offset(Column, Row);
        float Rise = 0;
        if (Beside > 0) {
            Rise = Flank(Column, Row, Beside);
        }
        const INT32 Room = TOP_LEVEL - Ride[Row];
        return Ride[Row] + std::clamp(static_cast<INT32>(std::lround(Rise)), -Ride[Row], Room);
    }

private:
    void LayRide() {
        INT32 Row = FOOT_ROWS;
        for (INT32 i = 0; i <= FOOT_ROWS; ++i) {
            Ride[i] = Params.FirstLevel + 2 * (FOOT_ROWS - i);
        }
        for (UINT32 Piece = 0; Row < SAMPLES - 1; ++Piece) {
            const INT32 Number = static_cast<INT32>(Piece);
            const INT32 Even = Params.Way.EvenRows + static_cast<INT32>(NoiseHash(1, Number, Params.Seed) % 5);
            for (INT32 i = 0; i < Even; ++i) {
                Climb(Row, 1);
            }
            const UINT32 Choice = NoiseHash(2, Number, Params.Seed) % 2;
            const float Wanted =
                static_cast<float>(Params.FirstLevel) + Params.RiseRate * static_cast<float>(Row - FOOT_ROWS);
            const bool TooHigh = static_cast<float>(Ride[Row]) > Wanted;
            const SStretch& Stretch = TooHigh ? Params.Way.Low[Choice] : Params.Way.High[Choice];
            for (INT32 i = 0; i < Stretch.Rows; ++i) {
                Climb(Row, Stretch.Steps[i]);
            }
        }
    }

    void Climb(INT32& Row, INT32 Levels) {
        if (Row >= SAMPLES - 1) {
            return;
        }
        if (Row >= SAMPLES - HEAD_ROWS) {
            Levels = 2;
        }
        Ride[Row + 1] = std::min(Ride[Row] + Levels, TOP_LEVEL);
        ++Row;
    }

    float Centre(float Row) const {
        const float Way = Row / (SAMPLES - 1) * Params.Turns * 6.2831853f;
        return (SAMPLES - 1) * 0.5f + Params.Meander * (0.75f * std::sin(Way + 0.6f) + 0.25f * std::sin(Way * 2.3f));
    }

    // Samples from the edge of the ride outwards; negative on it.
    float Offset(INT32 Column, INT32 Row) const {
        const float y = static_cast<float>(Row);
        const float Width = Params.HalfWidth * (1.0f + 0.35f * NoiseGradient(y * 0.035f, 0.5f, Params.Seed + 3));
        return std::fabs(static_cast<float>(Column) - Centre(y)) - std::max(Width, LEAST_HALF_WIDTH);
    }

    // Height over the ride in levels, Beside samples away from its edge.
    float Flank(INT32 Column, INT32 Row, float Beside) const {
        const float x = static_cast<float>(Column);
        const float y = static_cast<float>(Row) * SAMPLE_ASPECT;
        const float Away = SmoothStep(3.0f, 22.0f, Beside);

        // Ravines and spurs: the distance itself is bent, and the more the farther.
        const float Bend = NoiseFbm(x * 0.028f, y * 0.028f, 3, Params.Seed + 10);
        const float Out = std::max(0.0f, Beside + Away * (14.0f * Bend));
        const float Side = x < Centre(static_cast<float>(Row)) ? 0.0f : 40.0f;
        const float Wave = NoiseFbm(y * 0.012f, Side, 2, Params.Seed + 20);
        const float Crest =
            std::min(Params.CrestHeight * (1.0f + 0.9f * Wave), static_cast<float>(TOP_LEVEL - 6 - Ride[Row]));

        const float Outer = std::min(Params.OuterHeight, static_cast<float>(TOP_LEVEL - 12 - Ride[Row]));
        float Rise = Profile(Out, Crest, Outer);
        Rise += Away * 13.0f * (NoiseRidged(x * 0.021f, y * 0.021f, 4, Params.Seed + 30) - 0.45f);
        Rise = Broken(Rise, x, y, Away);
        const float Least = Bank(Out) < Crest || Params.Drop == 0 ? std::min(Out, 3.0f) : Rise;
        return std::max(Rise, Least) + Knob(x, static_cast<float>(Row));
    }

    // The bank's curve, then an even slope.
    float Bank(float Out) const {
        const float Curved = std::min(Out, Params.BankWidth);
        return Out + Params.BankCurve * Curved * (2.0f * Out - Curved);
    }

    // Up to the crest, down again on the far side, where nobody rides but the world must end somewhere, and from there
    // up to the outer height.
    float Profile(float Out, float Crest, float Outer) const {
        const float Up = Bank(Out);
        if (Up < Crest) {
            return Up;
        }
        const float Down = Crest - 0.55f * (Up - Crest);
        if (Down > -Params.Drop) {
            return Down;
        }
        return std::min(-Params.Drop - 0.7f * (Down + Params.Drop), std::max(Outer, -Params.Drop));
    }

    // Cuts the flank into cliffs and ledges where the rock is hard.
    float Broken(float Rise, float x, float y, float Away) const {
        constexpr float BAND = 30.0f; // levels from cliff to cliff
        const float Hard = SmoothStep(-0.08f, 0.16f, NoiseFbm(x * 0.03f, y * 0.02f, 3, Params.Seed + 40));
        const float Shifted = Rise / BAND + 1.3f * NoiseFbm(x * 0.02f, y * 0.02f, 2, Params.Seed + 50);
        const float Whole = std::floor(Shifted);
        const float Part = Shifted - Whole;
        const float Cut = (SmoothStep(0.34f, 0.60f, Part) - Part) * BAND;
        return Rise + Cut * Hard * Away * Params.Cliffs;
    }

    void PlaceKnobs() {
        for (INT32 i = 0; i < Params.Knobs; ++i) {
            SKnob New;
            New.Row = 4.0f + NoiseCell(i, 1, Params.Seed + 60) * (SAMPLES - 8);
            const float Side = (NoiseHash(i, 2, Params.Seed + 60) & 1) ? 1.0f : -1.0f;
            const float Away = Params.HalfWidth * 1.35f + 9.0f + 24.0f * NoiseCell(i, 3, Params.Seed + 60);
            New.Column = Centre(New.Row) + Side * Away;
            New.Radius = KNOB_RADIUS * (0.8f + 0.9f * NoiseCell(i, 4, Params.Seed + 60));
            New.Height = New.Radius * (1.9f + 1.6f * NoiseCell(i, 5, Params.Seed + 60));
            Knobs.Add(New);
        }
    }

    float Knob(float Column, float Row) const {
        float Highest = 0;
        for (const SKnob& One : Knobs) {
            const float dx = Column - One.Column;
            const float dy = (Row - One.Row) * SAMPLE_ASPECT;
            const float Far = std::sqrt(dx * dx + dy * dy) / One.Radius;
            const float Edge = 1.0f + 0.4f * NoiseGradient(Column * 0.2f, Row * 0.5f, Params.Seed + 70);
            Highest = std::max(Highest, One.Height * (1.0f - SmoothStep(0.35f, 1.25f, Far * Edge)));
        }
        return Highest;
    }

    const SSlopeParams& Params;
    INT32 Ride[SAMPLES] = {}; // level of the ride in each row
    GArray<SKnob> Knobs;
};

} // namespace

bool MakeSlope(const char* Name, const char* File) {
    for (const SSlopeParams& Params : SLOPES) {
        if (std::strcmp(Params.Name, Name) == 0) {
            const CSlope Slope(Params);
            CPicture Picture(SAMPLES, SAMPLES, 1);
            for (INT32 Row = 0; Row < SAMPLES; ++Row) {
                for (INT32 Column = 0; Column < SAMPLES; ++Column) {
                    Picture.SetGrey(static_cast<UINT32>(Column), static_cast<UINT32>(Row),
                                    static_cast<UINT8>(Slope.Level(Column, Row)));
                }
            }
            return Picture.SavePng(File);
        }
    }
    return false;
}
