// Levels that were written come back as they were, and no text does harm.
#include "world/LevelText.h"

#include "foundation/Scan.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

namespace {

const std::string LEVEL = "WLMF\n"
                          "terrain file=Data/Terrain/Slope1.ter sx=1600.000000 sy=-0.5 sz=1,5 random=1337\n"
                          "scene winda=0.1 sky=Data/Textures/Sky/Dusk.png raypwr=0.5 fdist=+1 bogus=2\n\n"
                          "geomesh Data/Models/R.mdd x=1 rw=0.5\n"
                          "entity Rider x=100.5 y=3800 Position=1;2;3 Name_2=(a)\n"
                          "entity StaticMesh MeshName=Data/Models/Rock1.mdd z=-7";

std::string ReadAndWritten(const std::string& Text) {
    const SLevelText Level = ReadLevel(Text);
    return WrittenLevel(Level.Params, Level.Defs);
}

std::vector<std::filesystem::path> ShippedLevels() {
    std::vector<std::filesystem::path> Levels;
    for (const auto& Entry : std::filesystem::directory_iterator(SLOPERUSH_SOURCE_DATA_DIR "/Levels")) {
        if (Entry.path().extension() == ".wlm") {
            Levels.push_back(Entry.path());
        }
    }
    return Levels;
}

std::string FileText(const std::filesystem::path& Path) {
    std::ifstream File(Path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(File), {});
}

TEST(LevelRoundTrip, ShippedLevelsComeBackToTheByte) {
    const auto Levels = ShippedLevels();
    ASSERT_FALSE(Levels.empty());
    for (const auto& Path : Levels) {
        const std::string Text = FileText(Path);
        EXPECT_EQ(ReadAndWritten(Text), Text) << Path;
        EXPECT_EQ(ReadLevel(Text).Log, "") << Path;
    }
}

// The whole range of a float that is written without loss, and the small numbers where the six decimals bite.
float RandomFloat(std::mt19937& Random) {
    const float Exponent = std::uniform_real_distribution<float>(-8, 9)(Random);
    const float Sign = Random() % 2 ? 1.0f : -1.0f;
    return Sign * std::pow(10.0f, Exponent);
}

std::string RandomWord(std::mt19937& Random, const std::string& Letters) {
    std::string Word;
    for (std::size_t Length = 1 + Random() % 50; Length > 0; --Length) {
        Word += Letters[Random() % Letters.size()];
    }
    return Word;
}

SLevelParams RandomParams(std::mt19937& Random) {
    SLevelParams P;
    for (float* Value :
         {&P.SizeX,        &P.SizeY,        &P.SizeZ,         &P.LightDir_Angle, &P.LightDir_Pitch,  &P.LightColor_R,
          &P.LightColor_G, &P.LightColor_B, &P.CloudAmount,   &P.FogColor_R,     &P.FogColor_G,      &P.FogColor_B,
          &P.FogDist,      &P.FogExp,       &P.SkyFog,        &P.SkyFogExp,      &P.ClipDist,        &P.Wind_Angle,
          &P.Wind_Pitch,   &P.Wind_Speed,   &P.Gravity_Angle, &P.Gravity_Pitch,  &P.Gravity_Strength}) {
        *Value = RandomFloat(Random);
    }
    P.TerrainSeed = static_cast<INT32>(Random());
    const std::string PRINTABLE = "azAZ09./_-;:=()#~";
    P.TerrainFile = Random() % 4 ? RandomWord(Random, PRINTABLE).c_str() : "";
    P.SkyFile = Random() % 4 ? RandomWord(Random, PRINTABLE).c_str() : "";
    return P;
}

GArray<SEntityDef> RandomDefs(std::mt19937& Random) {
    GArray<SEntityDef> Defs;
    for (std::size_t Count = Random() % 8; Count > 0; --Count) {
        SEntityDef Def;
        Def.ClassName = RandomWord(Random, "aZ0_").c_str();
        for (std::size_t Properties = Random() % 8; Properties > 0; --Properties) {
            Def.Properties[RandomWord(Random, "abXYZ019_").c_str()] = RandomWord(Random, "aZ0_;=./-\"%").c_str();
        }
        Defs.Add(Def);
    }
    return Defs;
}

TEST(LevelRoundTrip, RandomLevelsComeBackToTheByte) {
    std::mt19937 Random(11);
    for (int i = 0; i < 300; ++i) {
        const std::string Written = WrittenLevel(RandomParams(Random), RandomDefs(Random));
        ASSERT_EQ(ReadAndWritten(Written), Written);
    }
}

TEST(LevelRoundTrip, FloatsComeBackWithSixDecimals) {
    std::mt19937 Random(12);
    for (int i = 0; i < 300; ++i) {
        SLevelParams P = RandomParams(Random);
        const SLevelParams Back = ReadLevel(WrittenLevel(P)).Params;
        ASSERT_NEAR(Back.FogDist, P.FogDist, std::max(0.0000005, std::abs(P.FogDist) * 1e-7));
        ASSERT_EQ(Back.TerrainSeed, P.TerrainSeed);
    }
}

TEST(LevelDamage, FileCutOffAtAnyByteIsRead) {
    for (std::size_t Length = 0; Length <= LEVEL.size(); ++Length) {
        const SLevelText Level = ReadLevel(LEVEL.substr(0, Length));
        if (Length < 4) {
            ASSERT_EQ(Level.Result, ELevelText::WrongType) << Length;
        }
        ASSERT_LE(Level.Defs.count, 2u) << Length;
    }
    EXPECT_EQ(ReadLevel(LEVEL).Result, ELevelText::Good);
}

std::string Damaged(std::string Text, std::mt19937& Random) {
    for (std::size_t Changes = 1 + Random() % 8; Changes > 0; --Changes) {
        const std::size_t At = Random() % Text.size();
        switch (Random() % 4) {
        case 0:
            Text[At] = static_cast<char>(Random());
            break;
        case 1:
            Text[At] = " \n\t=;-.\r"[Random() % 8];
            break;
        case 2:
            Text.insert(At, Text, Random() % Text.size(), Random() % 40);
            break;
        default:
            Text.erase(At, 1 + Random() % 10);
            break;
        }
    }
    return Text;
}

// What was read from any text is a level like others: written and read again it stays the same. Reading ends within a
// number of steps that the text's length bounds; a hang would show as the test's time-out.
TEST(LevelDamage, RandomChangesAreReadAndWrittenAgain) {
    std::mt19937 Random(13);
    for (int i = 0; i < 4000; ++i) {
        const std::string Text = Damaged(LEVEL, Random);
        const std::string Once = ReadAndWritten(Text);
        if (Once.find("=inf") == std::string::npos) {
            ASSERT_EQ(ReadAndWritten(Once), Once) << Text;
        }
    }
}

TEST(LevelDamage, ManyFieldsTakeTimeByTheirNumber) {
    std::string Text = "WLMF\nentity Tree";
    for (int i = 0; i < 50000; ++i) {
        Text += " k" + std::to_string(i) + "=1";
    }
    EXPECT_STREQ(ReadLevel(Text).Defs[0].Properties.Find("k49999")->value.CStr(), "1");
}

} // namespace
