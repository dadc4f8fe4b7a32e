// The game's own files as the build made them: generated alike each time, complete, grounds that repeat without a
// seam, rides without stairs, skies that fit their level's sun and fog.
#include "support/Common.h"
#include "terrain/TerrainFile.h"
#include "world/LevelFile.h"

#include <IL/il.h>

namespace {

std::string GamePath(const std::string& Relative) {
    return SLOPERUSH_GAME_DIR "/" + Relative;
}

// RGBA as the engine sees it.
struct SGamePicture {
    explicit SGamePicture(const GString& Relative) {
        ilInit();
        ilBindImage(ilGenImage());
        EXPECT_TRUE(ilLoadImage(GamePath(Relative.CStr()).c_str())) << Relative.CStr();
        ilConvertImage(IL_RGBA, IL_UNSIGNED_BYTE);
        Width = ilGetInteger(IL_IMAGE_WIDTH);
        Height = ilGetInteger(IL_IMAGE_HEIGHT);
        Rgba.assign(ilGetData(), ilGetData() + Width * Height * 4);
    }
    // One channel at a place; places beyond the edges are found on the other side.
    int At(int x, int y, int Channel) const {
        return Rgba[static_cast<std::size_t>((y % Height * Width + x % Width) * 4 + Channel)];
    }
    int Brightness(int x, int y) const { return At(x, y, 0) + At(x, y, 1) + At(x, y, 2); }

    int Width, Height;
    std::vector<UINT8> Rgba;
};

class GameFiles : public testing::Test {
protected:
    void SetUp() override {
        for (const auto& Entry : fs::directory_iterator(GamePath("Data/Levels"))) {
            // Levels that a maker saved lie beside the shipped ones.
            if (Entry.path().extension() == ".wlm" && Entry.path().filename().string()[0] != '_') {
                GArray<SEntityDef> Defs;
                GString BadWord;
                SLevelParams Params;
                ASSERT_EQ(ReadLevelText(ReadText(Entry.path()).c_str(), Params, Defs, BadWord), ELevelText::Good);
                const char* Path = Params.TerrainFile.CStr();
                Terrains.emplace_back();
                ASSERT_EQ(ParseTerrainFile(Path, ReadText(GamePath(Path)).c_str(), Terrains.back()), 1);
                Levels.push_back(Params);
                Entities.push_back(Defs);
            }
        }
        ASSERT_FALSE(Levels.empty());
    }

    std::vector<SLevelParams> Levels;
    std::vector<STerrainFile> Terrains; // one per level
    std::vector<GArray<SEntityDef>> Entities;
};

using AssetGen = TempDirTest;

TEST_F(AssetGen, MakesTheBytesThatTheBuildMadeAndRefusesWhatItDoesNotKnow) {
    EXPECT_NE(std::system(SLOPERUSH_ASSETGEN " . Nowhere.png 2>/dev/null"), 0);
    EXPECT_TRUE(fs::is_empty("."));
    EXPECT_EQ(std::system(SLOPERUSH_ASSETGEN " ."), 0);
    EXPECT_FALSE(fs::is_empty("."));
    for (const auto& Entry : fs::recursive_directory_iterator(".")) {
        const std::string Built = GamePath("Data/" + Entry.path().string());
        EXPECT_TRUE(Entry.is_directory() || ReadText(Entry.path()) == ReadText(Built)) << Built;
    }
}

// The step from the last row or column to the first is none larger than the steps inside.
TEST_F(GameFiles, GroundsRepeatWithoutASeam) {
    for (const STerrainFile& Terrain : Terrains) {
        for (const GString& Path : Terrain.Details) {
            SCOPED_TRACE(Path.CStr());
            const SGamePicture Picture(Path);
            std::vector<int> Rows(Picture.Height), Columns(Picture.Width);
            for (int i = 0; i < Picture.Width * Picture.Height * 4; ++i) {
                const int x = i / 4 % Picture.Width, y = i / 4 / Picture.Width, Here = Picture.At(x, y, i % 4);
                Rows[y] += std::abs(Here - Picture.At(x, y + 1, i % 4));
                Columns[x] += std::abs(Here - Picture.At(x + 1, y, i % 4));
            }
            EXPECT_LE(Rows.back(), *std::max_element(Rows.begin(), Rows.end() - 1));
            EXPECT_LE(Columns.back(), *std::max_element(Columns.begin(), Columns.end() - 1));
        }
    }
}

// A stretch of equal heights in a row.
struct SRun {
    int Level, First, End;
    int Shared(const SRun& Other) const { return std::min(End, Other.End) - std::max(First, Other.First); }
};

// Without those where the picture cuts mountains off.
std::vector<SRun> RunsOf(const SGamePicture& Picture, int Row) {
    std::vector<SRun> Runs;
    for (int x = 0; x < Picture.Width; ++x) {
        const int Level = Picture.At(x, Row, 0);
        if (Runs.empty() || Runs.back().Level != Level) {
            Runs.push_back({Level, x, x});
        }
        Runs.back().End = x + 1;
    }
    std::erase_if(Runs, [](const SRun& Run) { return Run.Level == 255; });
    return Runs;
}

int LowestRow(const SGamePicture& Picture) {
    return Picture.Height / 32;
}

// The ride from the lowest row up to the start. It is what is level in the middle of the lowest rows, and then in each
// row what shares most with the row below; an island may take its middle.
std::vector<SRun> RideRuns(const SGamePicture& Picture, float SampleWidth) {
    constexpr float LEAST_WIDTH = 60; // world units
    std::vector<SRun> Ride;
    SRun Below{0, Picture.Width / 4, Picture.Width * 3 / 4};
    for (int Row = LowestRow(Picture); Row < Picture.Height * 96 / 100; ++Row) {
        const std::vector<SRun> Runs = RunsOf(Picture, Row);
        Below = *std::max_element(Runs.begin(), Runs.end(),
                                  [&](auto& a, auto& b) { return a.Shared(Below) < b.Shared(Below); });
        EXPECT_GE(static_cast<float>(Below.End - Below.First) * SampleWidth, LEAST_WIDTH) << "row " << Row;
        Ride.push_back(Below);
    }
    return Ride;
}

TEST_F(GameFiles, RidesAreLevelAcrossWithoutLoneStepsAndLeadDown) {
    for (std::size_t i = 0; i < Levels.size(); ++i) {
        const SLevelParams& Level = Levels[i];
        SCOPED_TRACE(Level.TerrainFile.CStr());
        const SGamePicture Picture(Terrains[i].Picture);
        ASSERT_EQ(Picture.Width, Picture.Height);
        EXPECT_LE(Level.SizeZ / 255, 2.5f); // a rounded level is hardly felt
        const std::vector<SRun> Ride = RideRuns(Picture, 2 * Level.SizeX / static_cast<float>(Picture.Width));
        // From the end of the slope upwards; beyond it the ground rises.
        for (std::size_t Row = 26 - LowestRow(Picture); Row + 2 < Ride.size(); ++Row) {
            const int Steps[] = {Ride[Row].Level - Ride[Row - 1].Level, Ride[Row + 1].Level - Ride[Row].Level,
                                 Ride[Row + 2].Level - Ride[Row + 1].Level};
            EXPECT_LE(Steps[1], std::max(Steps[0], Steps[2]) + 1) << "row " << Row;
            EXPECT_GE(Steps[1], std::min(Steps[0], Steps[2]) - 1) << "row " << Row;
        }
        const float Fall =
            static_cast<float>(Ride.back().Level - Ride[18].Level) / 255 * Level.SizeZ / (1.7f * Level.SizeY);
        EXPECT_GT(Fall + std::tan(static_cast<float>(M_PI) - Level.Gravity_Pitch), 0.03f);
    }
}

// Column of a place along x, row of one along y.
int SampleAt(float Place, float HalfLength, int Samples) {
    return static_cast<int>((Place / HalfLength + 1) / 2 * static_cast<float>(Samples));
}

bool PositionOf(const SEntityDef& Def, float& x, float& y, float& z) {
    const auto* Found = Def.Properties.Find("Position");
    return Found && std::sscanf(Found->value.CStr(), "%f;%f;%f", &x, &y, &z) == 3;
}

TEST_F(GameFiles, RidersStartOnTheRide) {
    int Riders = 0;
    for (std::size_t i = 0; i < Levels.size(); ++i) {
        const SLevelParams& Level = Levels[i];
        SCOPED_TRACE(Level.TerrainFile.CStr());
        const SGamePicture Picture(Terrains[i].Picture);
        const std::vector<SRun> Ride = RideRuns(Picture, 2 * Level.SizeX / static_cast<float>(Picture.Width));
        for (const SEntityDef& Def : Entities[i]) {
            float x, y, z;
            if (Def.ClassName == "Rider" && PositionOf(Def, x, y, z)) {
                const SRun& Run = Ride[SampleAt(y, Level.SizeY, Picture.Height) - LowestRow(Picture)];
                const int Column = SampleAt(x, Level.SizeX, Picture.Width);
                EXPECT_TRUE(Run.First < Column && Column < Run.End) << Run.First << ' ' << Column << ' ' << Run.End;
                ++Riders;
            }
        }
    }
    EXPECT_EQ(Riders, 5);
}

// Between the lowest and the highest sample around the place; some models are sunk a little, the rider falls a little.
TEST_F(GameFiles, SceneryAndRidersStandOnTheGround) {
    constexpr float SLACK = 8; // world units
    for (std::size_t i = 0; i < Levels.size(); ++i) {
        const SLevelParams& Level = Levels[i];
        const SGamePicture Picture(Terrains[i].Picture);
        for (const SEntityDef& Def : Entities[i]) {
            float x, y, z;
            if (!PositionOf(Def, x, y, z)) {
                continue;
            }
            const int Column = SampleAt(x, Level.SizeX, Picture.Width);
            const int Row = SampleAt(y, Level.SizeY, Picture.Height);
            int Low = 255, High = 0;
            for (int Corner = 0; Corner < 4; ++Corner) {
                const int Sample = Picture.At(Column + Corner % 2, Row + Corner / 2, 0);
                Low = std::min(Low, Sample);
                High = std::max(High, Sample);
            }
            EXPECT_GE(z, static_cast<float>(Low) / 255 * Level.SizeZ - SLACK)
                << Def.ClassName.CStr() << ' ' << x << ' ' << y;
            EXPECT_LE(z, static_cast<float>(High) / 255 * Level.SizeZ + SLACK)
                << Def.ClassName.CStr() << ' ' << x << ' ' << y;
        }
    }
}

TEST_F(GameFiles, SkiesAreBrightestAtTheSunAndEndInTheFogBelowTheHorizon) {
    for (const SLevelParams& Level : Levels) {
        const SGamePicture Sky(Level.SkyFile);
        ASSERT_EQ(Sky.Width, Sky.Height * 2);
        const int SunX = static_cast<int>(Level.LightDir_Angle / (2 * M_PI) * Sky.Width);
        const int SunY = static_cast<int>((1 - Level.LightDir_Pitch / M_PI) * Sky.Height);
        const int Sun = Sky.Brightness(SunX, SunY);
        EXPECT_LT(Sky.Brightness(SunX + Sky.Width / 2, SunY), Sun - 76);
        const float Fog[3] = {Level.FogColor_R, Level.FogColor_G, Level.FogColor_B};
        for (int i = 0; i < Sky.Width * Sky.Height; ++i) {
            ASSERT_LE(Sky.Brightness(i % Sky.Width, i / Sky.Width), Sun + 5) << i;
            const int Row = Sky.Height * 35 / 100; // 27 degrees down
            ASSERT_NEAR(Sky.At(i % Sky.Width, Row, i % 3), Fog[i % 3] * 255, 7) << i;
        }
    }
}

} // namespace
