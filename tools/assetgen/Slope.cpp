// Height pictures of the slopes: 257 by 257 grey samples, row 0 at the lower end of the ride.
//
// A slope is laid like a road: points of a course give its middle and width, pieces of text its ups and downs, and a
// section across it what rises or falls away at its sides. Lengths and heights are the level's world units, so HalfX,
// HalfY and Height are the sx, sy and sz of the level's file.
//
// Heights are 8 bits, and a gentle slope rounded to whole levels turns into stairs. So the ride never comes from
// rounding: its rows fall by whole levels, in runs of rows with equal steps, and across it is exactly level. Only its
// sides are rounded from formulas, and there a level of some two units is hardly felt. Most of the fall is not in the
// picture at all: the levels tilt their gravity along the slope.
#include "Asset.h"
#include "Noise.h"
#include "Picture.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr INT32 SAMPLES = 257; // a side; the engine wants 2^k + 1
constexpr INT32 TOP_LEVEL = 255;

// The middle of the ride and half its width at a place; between two points both go over smoothly, so each point can be
// the outermost of a bend.
struct SCoursePoint {
    float y, x, HalfWidth;
};

// A rock that parts the ride, pointed uphill and downhill; it bends with the ride.
struct SIsland {
    float y, Beside; // its middle; Beside the middle of the ride
    float HalfLength, HalfWidth, Height;
};

constexpr int MOST_POINTS = 14;
constexpr int MOST_PIECES = 5;
constexpr int MOST_ISLANDS = 8;

// What lies beside the ride, from its edge outwards: a bank that steepens, its crest, the far side down to a side
// valley, and the mountains where the world ends. Slopes are heights per length.
struct SSides {
    float BankWidth, BankSlope; // of the part that steepens; its slope at the end, which then stays
    float Crest;                // height over the ride
    float CrestChange;          // part of the height by which crests rise and sink
    float FarSlope;             // of the far side of the crest; negative: the ground rises on behind it
    float DropHigh = 0;         // depth of the side valley below the ride, at the upper end
    float DropLow = 0;          // and at the lower
    float ValleyWidth = 0;
    float Mountains = 0; // height over the side valley
    float Rough;         // height of ravines and spurs
    float Cliffs;        // 0 to 1: how much is broken into cliffs and ledges
};

struct SSlopeParams {
    const char* Name;
    UINT32 Seed;
    float HalfX;
    float HalfY = 4000;
    float Height;
    INT32 LowestLevel = 6; // of the ride
    SCoursePoint Course[MOST_POINTS];
    // Stretches of the ride in the order of riding: by how many levels each row is lower than the one before, '-' for
    // one level higher. Behind the opening they follow each other by chance.
    const char* Opening;
    const char* Pieces[MOST_PIECES];
    SSides Sides;
    SIsland Islands[MOST_ISLANDS] = {};
    INT32 Knobs = 0;  // rocks beside the ride
    float Portal = 0; // height of the two rocks beside the finish, which are seen from afar
};

constexpr SSlopeParams SLOPES[] = {
    // A wide open bowl under cliffs, long rollers.
    {.Name = "Slope1",
     .Seed = 11,
     .HalfX = 3150,
     .Height = 620,
     .Course = {{4000, 0, 230},
                {3300, 0, 230},
                {2200, -240, 300},
                {900, 240, 260},
                {-500, -240, 300},
                {-1900, 220, 260},
                {-3100, 0, 200},
                {-4000, 0, 280}},
     .Opening = "00000111223333333222111000000",
     .Pieces = {"0000011111222211111000000", "00000011112222111000000--000", "00000001111111100000"},
     .Sides = {.BankWidth = 380,
               .BankSlope = 0.8f,
               .Crest = 290,
               .CrestChange = 0.35f,
               .FarSlope = -0.2f,
               .Rough = 70,
               .Cliffs = 1},
     .Islands = {{1550, 105, 200, 80, 75}, {-1150, -110, 200, 80, 75}},
     .Knobs = 10,
     .Portal = 330},
    // A winding gully between rock walls.
    {.Name = "Slope2",
     .Seed = 23,
     .HalfX = 3700,
     .Height = 560,
     .Course = {{4000, 250, 170},
                {3400, 250, 150},
                {2500, -250, 95},
                {1700, 190, 90},
                {800, -290, 140},
                {0, 160, 85},
                {-700, -200, 95},
                {-1400, 170, 140},
                {-2300, -260, 95},
                {-3150, 60, 150},
                {-4000, 60, 240}},
     .Opening = "0000001111122221111000000",
     .Pieces = {"00000000111122111100000000", "0000011110000000--000", "000000001111222211110000000"},
     .Sides = {.BankWidth = 95,
               .BankSlope = 1.5f,
               .Crest = 200,
               .CrestChange = 0.5f,
               .FarSlope = -0.22f,
               .Rough = 70,
               .Cliffs = 1},
     .Islands = {{2950, 0, 150, 36, 60}, {800, 0, 150, 42, 70}, {-1400, 0, 150, 42, 70}},
     .Portal = 300},
    // Terraces, from whose lips one flies.
    {.Name = "Slope3",
     .Seed = 37,
     .HalfX = 3000,
     .Height = 610,
     .Course = {{4000, 60, 190},
                {3300, 60, 190},
                {2300, -200, 220},
                {1100, 180, 170},
                {-100, -160, 220},
                {-1300, 200, 180},
                {-2400, -120, 210},
                {-3200, 0, 190},
                {-4000, 0, 260}},
     .Opening = "000000000000000--04896310000",
     .Pieces = {"0000000111000000000000--05895310000000", "000000000000000---058974200000000",
                "000012221000000000000000--0465310000000"},
     .Sides = {.BankWidth = 120,
               .BankSlope = 0.75f,
               .Crest = 110,
               .CrestChange = 0.5f,
               .FarSlope = -0.25f,
               .Rough = 70,
               .Cliffs = 1},
     .Islands = {{650, 0, 150, 60, 70}},
     .Knobs = 10,
     .Portal = 300},
    // The back of a ridge; at both sides the ground falls away into valleys, which are a slower way down.
    {.Name = "Slope4",
     .Seed = 41,
     .HalfX = 2700,
     .Height = 620,
     .LowestLevel = 60,
     .Course = {{4000, 60, 150},
                {3300, 60, 120},
                {2500, -200, 65},
                {1700, 190, 75},
                {900, -190, 62},
                {100, 170, 80},
                {-700, -210, 65},
                {-1500, 160, 75},
                {-2400, -160, 70},
                {-3150, 0, 160},
                {-4000, 0, 240}},
     .Opening = "0000000111110000000",
     .Pieces = {"00000111000000", "000001112211000--0000", "0000011100--000000"},
     .Sides = {.BankWidth = 24,
               .BankSlope = 0.5f,
               .Crest = 9,
               .CrestChange = 0.3f,
               .FarSlope = 0.72f,
               .DropHigh = 230,
               .DropLow = 90,
               .ValleyWidth = 320,
               .Mountains = 400,
               .Rough = 50,
               .Cliffs = 0.8f}},
    // A narrow chute that winds over short waves.
    {.Name = "Slope5",
     .Seed = 59,
     .HalfX = 2720,
     .Height = 520,
     .Course = {{4000, -120, 140},
                {3400, -120, 120},
                {2750, 190, 90},
                {2050, -180, 85},
                {1400, 170, 120},
                {700, -210, 95},
                {0, 200, 80},
                {-700, -180, 85},
                {-1350, 180, 120},
                {-2000, -190, 90},
                {-2700, 120, 95},
                {-3250, 0, 140},
                {-4000, 0, 220}},
     .Opening = "000000111222221110000",
     .Pieces = {"0012221000--00", "00011222100--0", "001112211000", "01222100-00"},
     .Sides = {.BankWidth = 110,
               .BankSlope = 0.8f,
               .Crest = 140,
               .CrestChange = 0.35f,
               .FarSlope = -0.22f,
               .Rough = 60,
               .Cliffs = 0.9f},
     .Islands = {{1400, 0, 140, 36, 60}, {-1350, 0, 140, 36, 60}},
     .Knobs = 6,
     .Portal = 280},
    // Behind the title.
    {.Name = "Vale",
     .Seed = 71,
     .HalfX = 1600,
     .HalfY = 3600,
     .Height = 560,
     .LowestLevel = 20,
     .Course = {{3600, -300, 150},
                {300, -300, 120},
                {-150, -260, 110},
                {-480, -390, 110},
                {-950, -160, 110},
                {-2200, -320, 130},
                {-3600, -300, 150}},
     .Opening = "1111",
     .Pieces = {"11111111", "0112211000", "001122110"},
     .Sides = {.BankWidth = 170,
               .BankSlope = 0.8f,
               .Crest = 120,
               .CrestChange = 0.3f,
               .FarSlope = -0.08f,
               .Rough = 70,
               .Cliffs = 1}},
};

constexpr float EDGE_SLOPE = 0.06f;    // of the banks where they begin
constexpr float LEAST_HALF_WIDTH = 55; // a narrow ride is not pinched off
constexpr float FINISH = -0.8f;        // of the half length: there the ride ends
constexpr float FOOT = -0.86f;         // from there on the ground rises, and riders come to rest
constexpr float HEAD = 0.92f;          // from there up it rises behind the start
constexpr float FOOT_RISE = 150;       // up to the picture's edge
constexpr float HEAD_RISE = 90;
// Along both sides of the world runs a ditch whose outer wall is one sample wide, so that nobody rides over the border.
constexpr float DITCH_DEPTH = 110;
constexpr float DITCH_WIDTH = 350;
constexpr INT32 DITCH_WALL = 2; // samples from the border

// The smaller and the larger of two heights, with the edge between them rounded over Width.
float SoftMin(float A, float B, float Width) {
    const float Part = std::max(Width - std::fabs(A - B), 0.0f) / Width;
    return std::min(A, B) - Part * Part * Width * 0.25f;
}

float SoftMax(float A, float B, float Width) {
    return -SoftMin(-A, -B, Width);
}

class CSlope {
public:
    explicit CSlope(const SSlopeParams& Params) : Params(Params), LevelHeight(Params.Height / TOP_LEVEL) {
        LayRide();
        PlaceKnobs();
    }

    INT32 Level(INT32 Column, INT32 Row) const {
        const SPlace Place = PlaceOf(Column, Row);
        float Rise = Place.Beside > 0 ? Portal(Side(Place), Place) : 0;
        for (const float Rock : {IslandAt(Place), KnobAt(Place)}) {
            Rise = Rock > 0 ? std::max(Rise, Rock) : Rise;
        }
        const INT32 Whole = std::min(Ride[Row] + static_cast<INT32>(std::lround(Rise / LevelHeight)), TOP_LEVEL);
        return std::max(Whole - static_cast<INT32>(DitchAt(Column) / LevelHeight), 0);
    }

private:
    struct SPlace {
        INT32 Row;
        float x, y;
        float Middle; // of the ride in this row
        float Beside; // from the edge of the ride outwards; negative on it
    };

    struct SKnob {
        float x, y, Radius, Height;
    };

    // Of a part of the half length.
    static INT32 RowOf(float Part) { return static_cast<INT32>((Part + 1) / 2 * SAMPLES); }

    float YOf(INT32 Row) const { return (2.0f * static_cast<float>(Row) / SAMPLES - 1) * Params.HalfY; }

    SPlace PlaceOf(INT32 Column, INT32 Row) const {
        SPlace Place;
        Place.Row = Row;
        Place.x = (2.0f * static_cast<float>(Column) / SAMPLES - 1) * Params.HalfX;
        Place.y = YOf(Row);
        const SCoursePoint Here = CourseAt(Place.y);
        Place.Middle = Here.x;
        // Across a bend the ride is as wide as elsewhere.
        const float Lean = (CourseAt(Place.y + 15).x - CourseAt(Place.y - 15).x) / 30;
        Place.Beside =
            (std::fabs(Place.x - Here.x) - Here.HalfWidth * std::sqrt(1 + Lean * Lean)) / std::sqrt(1 + Lean * Lean);
        return Place;
    }

    SCoursePoint CourseAt(float y) const {
        const SCoursePoint* Upper = Params.Course;
        while (Upper + 2 < Params.Course + MOST_POINTS && Upper[2].HalfWidth > 0 && y < Upper[1].y) {
            ++Upper;
        }
        const float Part = SmoothStep(0, 1, (Upper->y - y) / (Upper->y - Upper[1].y));
        return {y, Mix(Upper->x, Upper[1].x, Part),
                std::max(Mix(Upper->HalfWidth, Upper[1].HalfWidth, Part), LEAST_HALF_WIDTH)};
    }

    void LayRide();
    UINT32 PieceCount() const;
    void Follow(const char* Piece, INT32& Row);
    INT32 EndRise(float Rise, INT32 Row, INT32 From, INT32 Edge) const;
    float BankAt(float Beside) const;
    float CrestStart(float Crest) const;
    float Section(float Beside, float Crest, float Drop) const;
    float Side(const SPlace& Place) const;
    float Broken(float Rise, const SPlace& Place, float Away) const;
    void PlaceKnobs();
    float IslandAt(const SPlace& Place) const;
    float KnobAt(const SPlace& Place) const;
    float Portal(float Rise, const SPlace& Place) const;
    float DitchAt(INT32 Column) const;
    float CraggyAt(const SPlace& Place) const;

    const SSlopeParams& Params;
    const float LevelHeight; // world units
    INT32 Ride[SAMPLES] = {};
    GArray<SKnob> Knobs;
};

// From the start downwards; then the whole is set on the lowest level.
void CSlope::LayRide() {
    const INT32 Foot = RowOf(FOOT);
    const INT32 Head = RowOf(HEAD);
    INT32 Row = Head;
    Follow(Params.Opening, Row);
    UINT32 Last = 0;
    for (INT32 Number = 0; Row > Foot; ++Number) {
        // Any but the piece before.
        const UINT32 Count = PieceCount();
        Last = (Last + 1 + NoiseHash(Number, 1, Params.Seed) % (Count - 1)) % Count;
        Follow(Params.Pieces[Last], Row);
    }
    const INT32 Shift = Params.LowestLevel - Ride[Foot];
    for (INT32 i = Foot; i <= Head; ++i) {
        Ride[i] += Shift;
    }
    for (INT32 i = 0; i < Foot; ++i) {
        Ride[i] = Ride[Foot] + EndRise(FOOT_RISE, i, Foot, 0);
    }
    for (INT32 i = Head + 1; i < SAMPLES; ++i) {
        Ride[i] = Ride[Head] + EndRise(HEAD_RISE, i, Head, SAMPLES - 1);
    }
}

UINT32 CSlope::PieceCount() const {
    UINT32 Count = 0;
    while (Count < MOST_PIECES && Params.Pieces[Count]) {
        ++Count;
    }
    return Count;
}

void CSlope::Follow(const char* Piece, INT32& Row) {
    for (; *Piece && Row > RowOf(FOOT); ++Piece, --Row) {
        Ride[Row - 1] = Ride[Row] - (*Piece == '-' ? -1 : *Piece - '0');
    }
}

// Levels by which the ground has risen at a row between From and the picture's edge.
INT32 CSlope::EndRise(float Rise, INT32 Row, INT32 From, INT32 Edge) const {
    const float Part = static_cast<float>(Row - From) / static_cast<float>(Edge - From);
    return static_cast<INT32>(Rise * Part * Part / LevelHeight);
}

// Height of the bank if it had no end.
float CSlope::BankAt(float Beside) const {
    const SSides& Sides = Params.Sides;
    const float Curved = std::min(Beside, Sides.BankWidth);
    const float Steepening = (Sides.BankSlope - EDGE_SLOPE) / Sides.BankWidth;
    return EDGE_SLOPE * Beside + Steepening * Curved * (Beside - 0.5f * Curved);
}

// Where the bank reaches a height.
float CSlope::CrestStart(float Crest) const {
    const SSides& Sides = Params.Sides;
    const float End = BankAt(Sides.BankWidth);
    if (Crest >= End) {
        return Sides.BankWidth + (Crest - End) / Sides.BankSlope;
    }
    const float Half = 0.5f * (Sides.BankSlope - EDGE_SLOPE) / Sides.BankWidth;
    return (std::sqrt(EDGE_SLOPE * EDGE_SLOPE + 4 * Half * Crest) - EDGE_SLOPE) / (2 * Half);
}

float CSlope::Section(float Beside, float Crest, float Drop) const {
    const SSides& Sides = Params.Sides;
    const float Start = CrestStart(Crest);
    const float Far = Crest - Sides.FarSlope * (Beside - Start);
    const float Ridge = SoftMin(BankAt(Beside), Far, std::min(Crest, 40.0f));
    if (Sides.FarSlope < 0) {
        return Ridge;
    }
    const float ValleyEnd = Start + (Crest + Drop) / Sides.FarSlope + Sides.ValleyWidth;
    const float World = std::min(0.6f * std::max(Beside - ValleyEnd, 0.0f), Sides.Mountains) - Drop;
    return SoftMax(Ridge, World, 60);
}

float CSlope::Side(const SPlace& Place) const {
    const SSides& Sides = Params.Sides;
    const float x = Place.x;
    const float y = Place.y;
    const float Away = SmoothStep(40, 320, Place.Beside);

    // Ravines and spurs: the distance itself is bent, and the more the farther.
    const float Bend = NoiseFbm(x * 0.0018f, y * 0.0018f, 3, Params.Seed + 10);
    const float Out = std::max(0.0f, Place.Beside + Away * 210 * Bend);
    const float Wave = NoiseFbm(y * 0.0010f, x < Place.Middle ? 0.0f : 40.0f, 2, Params.Seed + 20);
    const float Room = static_cast<float>(TOP_LEVEL - 4 - Ride[Place.Row]) * LevelHeight;
    const float Crest = std::min(Sides.Crest * (1 + Sides.CrestChange * Wave), Room - Sides.Rough * 0.5f);
    const float Drop = Mix(Sides.DropLow, Sides.DropHigh, Clamp01(0.5f + 0.5f * y / Params.HalfY));

    float Rise = Section(Out, Crest, Drop);
    Rise += Away * Sides.Rough * (NoiseRidged(x * 0.0013f, y * 0.0013f, 4, Params.Seed + 30) - 0.45f);
    Rise = Broken(Rise, Place, Away);
    // No gutter between the ride and its bank.
    return Out < CrestStart(Crest) ? std::max(Rise, std::min(Out * EDGE_SLOPE, 12.0f)) : Rise;
}

// Cuts the side into cliffs and ledges where the rock is hard.
float CSlope::Broken(float Rise, const SPlace& Place, float Away) const {
    constexpr float BAND = 95; // world units from cliff to cliff
    const float x = Place.x;
    const float y = Place.y;
    const float Hard = SmoothStep(-0.08f, 0.16f, NoiseFbm(x * 0.0019f, y * 0.0016f, 3, Params.Seed + 40));
    const float Shifted = Rise / BAND + 1.3f * NoiseFbm(x * 0.0013f, y * 0.0016f, 2, Params.Seed + 50);
    const float Part = Shifted - std::floor(Shifted);
    const float Cut = (SmoothStep(0.34f, 0.60f, Part) - Part) * BAND;
    return Rise + Cut * Hard * Away * Params.Sides.Cliffs;
}

void CSlope::PlaceKnobs() {
    const UINT32 Seed = Params.Seed + 60;
    for (INT32 i = 0; i < Params.Knobs; ++i) {
        SKnob New;
        New.y = (NoiseCell(i, 1, Seed) * 1.7f - 0.8f) * Params.HalfY;
        const SCoursePoint Here = CourseAt(New.y);
        const float Away = Here.HalfWidth * 1.2f + 130 + 380 * NoiseCell(i, 3, Seed);
        New.x = Here.x + ((NoiseHash(i, 2, Seed) & 1) ? Away : -Away);
        New.Radius = 100 * (0.8f + 0.9f * NoiseCell(i, 4, Seed));
        New.Height = New.Radius * (0.5f + 0.5f * NoiseCell(i, 5, Seed));
        Knobs.Add(New);
    }
}

// Factor that makes the outline of a rock uneven.
float CSlope::CraggyAt(const SPlace& Place) const {
    return 1 + 0.35f * NoiseGradient(Place.x * 0.013f, Place.y * 0.013f, Params.Seed + 70);
}

float CSlope::IslandAt(const SPlace& Place) const {
    float Highest = 0;
    for (const SIsland& Island : Params.Islands) {
        if (Island.Height > 0) {
            const float Across = (Place.x - Place.Middle - Island.Beside) / Island.HalfWidth;
            const float Along = (Place.y - Island.y) / Island.HalfLength;
            const float Far = (std::fabs(Across) + std::fabs(Along)) * CraggyAt(Place);
            Highest = std::max(Highest, Island.Height * (1 - SmoothStep(0.3f, 1.1f, Far)));
        }
    }
    return Highest;
}

float CSlope::KnobAt(const SPlace& Place) const {
    float Highest = 0;
    for (const SKnob& Knob : Knobs) {
        const float Far = std::hypot(Place.x - Knob.x, Place.y - Knob.y) / Knob.Radius * CraggyAt(Place);
        // On top of the bank it stands on.
        const float Under = Place.Beside > 0 ? Side(Place) : 0;
        const float Rise = Knob.Height * (1 - SmoothStep(0.3f, 1.2f, Far));
        Highest = Rise > 0 ? std::max(Highest, Under + Rise) : Highest;
    }
    return Highest;
}

// Raises the banks at the finish to the rocks between which the ride ends. They grow from the bank, so that whoever
// rides up there is led back to the ride and not into a corner.
float CSlope::Portal(float Rise, const SPlace& Place) const {
    constexpr float STEEPER = 4; // times the bank
    const float Away = std::fabs(Place.y - (FINISH - 0.01f) * Params.HalfY);
    const float Near = 1 - SmoothStep(60, 480, Away);
    const float Top = Params.Portal * (2 - CraggyAt(Place));
    return std::max(Rise, std::min(Rise * (1 + STEEPER * Near), Top));
}

// Depth of the ditch below the ground that it is cut into.
float CSlope::DitchAt(INT32 Column) const {
    const INT32 Samples = std::min(Column, SAMPLES - 1 - Column); // from the border
    const float Inside = static_cast<float>(Samples - DITCH_WALL) * 2 * Params.HalfX / SAMPLES;
    return Inside < 0 ? 0 : DITCH_DEPTH * (1 - SmoothStep(0, DITCH_WIDTH, Inside));
}

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
