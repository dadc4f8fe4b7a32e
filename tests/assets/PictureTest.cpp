// What the generated pictures promise: grounds that repeat without a seam, slopes that ride without stairs, skies that
// fit their level's sun and fog.
#include "assets/GameFiles.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <set>

namespace {

constexpr float PI = 3.14159265f;

// Mean difference between the rows (or columns) At and At + 1, over all channels.
float Step(const SGamePicture& Picture, int At, bool Rows) {
    float Sum = 0;
    const int Length = Rows ? Picture.Width : Picture.Height;
    for (int i = 0; i < Length; ++i) {
        for (int Channel = 0; Channel < 4; ++Channel) {
            Sum += Rows ? std::fabs(Picture.At(i, At, Channel) - Picture.At(i, At + 1, Channel))
                        : std::fabs(Picture.At(At, i, Channel) - Picture.At(At + 1, i, Channel));
        }
    }
    return Sum / static_cast<float>(Length);
}

void ExpectNoSeam(const SGamePicture& Picture, bool Rows) {
    const int Last = (Rows ? Picture.Height : Picture.Width) - 1;
    float Largest = 0;
    for (int i = 0; i < Last; ++i) {
        Largest = std::max(Largest, Step(Picture, i, Rows));
    }
    EXPECT_LE(Step(Picture, Last, Rows), Largest);
}

std::set<std::string> GroundPictures(int First) {
    std::set<std::string> Paths;
    for (const SGameLevel& Level : ShippedLevels()) {
        for (int i = First; i < 4; i += First ? 2 : 1) {
            Paths.insert(Level.Terrain.Details[i].CStr());
        }
    }
    return Paths;
}

TEST(GroundPictures, RepeatWithoutASeam) {
    for (const std::string& Path : GroundPictures(0)) {
        SCOPED_TRACE(Path);
        const SGamePicture Picture = LoadPicture(Path);
        ExpectNoSeam(Picture, true);
        ExpectNoSeam(Picture, false);
    }
}

TEST(GroundPictures, NormalsAreUnitVectorsThatPointUp) {
    for (const std::string& Path : GroundPictures(1)) {
        SCOPED_TRACE(Path);
        const SGamePicture Picture = LoadPicture(Path);
        float Mean[2] = {};
        float WorstLength = 0;
        float Lowest = 1;
        for (int y = 0; y < Picture.Height; ++y) {
            for (int x = 0; x < Picture.Width; ++x) {
                const float n[3] = {Picture.At(x, y, 0) * 2 - 1, Picture.At(x, y, 1) * 2 - 1,
                                    Picture.At(x, y, 2) * 2 - 1};
                const float Length = std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);
                WorstLength = std::max(WorstLength, std::fabs(Length - 1));
                Lowest = std::min(Lowest, n[2]);
                Mean[0] += n[0] / static_cast<float>(Picture.Width * Picture.Height);
                Mean[1] += n[1] / static_cast<float>(Picture.Width * Picture.Height);
            }
        }
        EXPECT_LT(WorstLength, 0.015f);
        EXPECT_GT(Lowest, 0.0f);
        EXPECT_LT(std::fabs(Mean[0]) + std::fabs(Mean[1]), 0.01f);
    }
}

int HeightLevel(const SGamePicture& Picture, int Column, int Row) {
    return static_cast<int>(std::lround(Picture.At(Column, Row, 0) * 255));
}

// The stretch of equal heights around a column.
struct SRun {
    SRun(const SGamePicture& Picture, int Column, int Row) : Level(HeightLevel(Picture, Column, Row)) {
        First = End = Column;
        while (First > 0 && HeightLevel(Picture, First - 1, Row) == Level) {
            --First;
        }
        while (End < Picture.Width && HeightLevel(Picture, End, Row) == Level) {
            ++End;
        }
    }
    int Count() const { return End - First; }
    int Middle() const { return (First + End) / 2; }

    int Level;
    int First;
    int End;
};

// The widest level stretch of a row, away from the edges: the ride.
SRun WidestRun(const SGamePicture& Picture, int Row) {
    SRun Widest(Picture, Picture.Width / 4, Row);
    for (int x = Picture.Width / 4; x < Picture.Width * 3 / 4; ++x) {
        const SRun Run(Picture, x, Row);
        if (Run.Count() > Widest.Count()) {
            Widest = Run;
        }
    }
    return Widest;
}

TEST(SlopePictures, TheRideIsLevelAcrossAndClimbsByWholeLevels) {
    constexpr int LEAST_WIDTH = 15; // samples
    for (const SGameLevel& Level : ShippedLevels()) {
        SCOPED_TRACE(Level.Path);
        const SGamePicture Picture = LoadPicture(Level.Terrain.Picture.CStr());
        ASSERT_EQ(Picture.Width, Picture.Height);
        // The run ends at -0.8 of the half size and starts near 0.9.
        const int First = Picture.Height / 10;
        const int Last = Picture.Height * 95 / 100;
        SRun Below = WidestRun(Picture, First);
        const int Lowest = Below.Level;
        for (int Row = First + 1; Row <= Last; ++Row) {
            const SRun Run(Picture, Below.Middle(), Row);
            EXPECT_GE(Run.Count(), LEAST_WIDTH) << "row " << Row;
            EXPECT_GE(Run.Level, Below.Level) << "row " << Row;
            EXPECT_LE(Run.Level, Below.Level + 2) << "row " << Row;
            Below = Run;
        }
        EXPECT_GT(Below.Level - Lowest, (Last - First) / 2);
    }
}

TEST(SkyPictures, TheBrightestPlaceIsWhereTheLevelsSunStands) {
    for (const SGameLevel& Level : ShippedLevels()) {
        SCOPED_TRACE(Level.Path);
        const SGamePicture Sky = LoadPicture(Level.Params.SkyFile.CStr());
        ASSERT_EQ(Sky.Width, Sky.Height * 2);
        const auto Brightness = [&](int x, int y) { return Sky.At(x, y, 0) + Sky.At(x, y, 1) + Sky.At(x, y, 2); };
        float Brightest = 0;
        for (int y = 0; y < Sky.Height; ++y) {
            for (int x = 0; x < Sky.Width; ++x) {
                Brightest = std::max(Brightest, Brightness(x, y));
            }
        }
        const float u = Level.Params.LightDir_Angle / (2 * PI);
        const float v = 1 - Level.Params.LightDir_Pitch / PI;
        const int SunX = static_cast<int>(u * static_cast<float>(Sky.Width));
        const int SunY = static_cast<int>(v * static_cast<float>(Sky.Height));
        EXPECT_GT(Brightness(SunX, SunY), Brightest - 0.02f);
        EXPECT_LT(Brightness(SunX + Sky.Width / 2, SunY), Brightest - 0.3f);
    }
}

TEST(SkyPictures, BelowTheHorizonIsTheLevelsFog) {
    for (const SGameLevel& Level : ShippedLevels()) {
        SCOPED_TRACE(Level.Path);
        const SGamePicture Sky = LoadPicture(Level.Params.SkyFile.CStr());
        const float Fog[3] = {Level.Params.FogColor_R, Level.Params.FogColor_G, Level.Params.FogColor_B};
        const int Row = Sky.Height * 35 / 100; // 27 degrees down
        for (int x = 0; x < Sky.Width; x += 16) {
            for (int Channel = 0; Channel < 3; ++Channel) {
                ASSERT_NEAR(Sky.At(x, Row, Channel), Fog[Channel], 0.03f) << "column " << x;
            }
        }
    }
}

} // namespace
