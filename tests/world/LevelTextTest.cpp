// A level's text: how it is scanned, the exact form in which it is written, and that no text does harm.
#include "foundation/Scan.h"
#include "world/LevelFile.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <random>

namespace {

const std::string MAGIC = "WLMF\n";

const std::string LEVEL = "WLMF\n"
                          "terrain file=Data/Terrain/Slope1.ter sx=1600.000000 sy=-0.5 sz=1,5 random=1337\n"
                          "scene winda=0.1 sky=Data/Textures/Sky/Dusk.png raypwr=0.5 fdist=+1 bogus=2\n\n"
                          "geomesh Data/Models/R.mdd x=1 rw=0.5\n"
                          "entity Rider x=100.5 y=3800 Position=1;2;3 Name_2=(a)\n"
                          "entity StaticMesh MeshName=Data/Models/Rock1.mdd z=-7";

struct SLevelText {
    ELevelText Result = ELevelText::Good;
    SLevelParams Params;
    GArray<SEntityDef> Defs;
    GString BadWord;
    std::string Log; // what the reading printed

    explicit SLevelText(const std::string& Text) {
        testing::internal::CaptureStdout();
        Result = ReadLevelText(GString(Text.c_str()), Params, Defs, BadWord);
        Log = testing::internal::GetCapturedStdout();
    }
};

std::string Written(const SLevelParams& Params, const GArray<SEntityDef>& Defs = {}) {
    GString Out;
    WriteLevelText(Out, Params, Defs);
    return Out.CStr();
}

std::string ReadAndWritten(const std::string& Text) {
    const SLevelText Level(Text);
    return Written(Level.Params, Level.Defs);
}

// What F_ReadFloat makes of a malformed number, as digits.
#define BAD_NUMBER "340282346638528859811704183484516925440"

struct SScanCase {
    const char* Rule;
    const char* Lines; // behind the magic
    const char* Same;  // plain ones that mean the same
};

const SScanCase SCAN_CASES[] = {
    {"MagicOnly", "", "terrain random=1337\n"},
    {"AnyOrderOfKeys", "terrain random=4 sz=3 file=A.ter\n", "terrain file=A.ter sz=3 random=4\n"},
    {"RunsOfBlanks", "  \tterrain \t sx=1\t\t sy=2  \t\n", "terrain sx=1 sy=2\n"},
    {"NoFinalNewline", "terrain sx=1", "terrain sx=1\n"},
    {"BlankLines", "\n\n  \t\nterrain sx=1\n \nscene lda=2\n", "terrain sx=1\nscene lda=2\n"},
    {"SceneBeforeTerrain", "scene lda=2\nterrain sx=1\n", "terrain sx=1\nscene lda=2\n"},
    {"LastOfTwoFieldsHolds", "terrain sx=1 sx=2\n", "terrain sx=2\n"},
    {"SecondLineOverlaysFirst", "terrain sx=1 sy=1\nterrain sy=2\n", "terrain sx=1 sy=2\n"},
    {"OtherCharactersBeforeAKey", "12 terrain ;;sx=1 34 _sy=2\n", "terrain sx=1 sy=2\n"},
    {"RayPowerIsPassedOver", "scene cldam=0.3 raypwr=0.300000 fcr=0.2\n", "scene cldam=0.3 fcr=0.2\n"},
    {"LettersOfAnUnknownValueAreTheNextKey", "scene bogus=lda=2\n", "scene lda=2\n"},
    {"UnknownKeyAtTheEndTakesTheNextWord", "scene bogus=1\nterrain lda=5\n", "scene lda=5\n"},
    {"KeysOfTheOtherLineAreUnknown", "terrain lda=1 sx=2\n", "terrain sx=2\n"},
    {"CaseCounts", "terrain SX=1 Sx=1 sy=2\n", "terrain sy=2\n"},
    {"KeyEndsAtADigit", "terrain s1x=5 sy=2\n", "terrain sy=2\n"},
    {"CommaEndsTheNumber", "terrain sx=1,5 sy=2\n", "terrain sx=1 sy=2\n"},
    {"MinusAloneIsZero", "terrain sx=3 sx=-\n", "terrain sx=0\n"},
    {"NoPlus", "terrain sx=+5 sy=2\n", "terrain sx=" BAD_NUMBER " sy=2\n"},
    {"NoExponent", "terrain sx=1e3 sy=2\n", "terrain sx=" BAD_NUMBER " sy=2\n"},
    {"NumbersAreStrict", "terrain sx=1;2 sy=2\n", "terrain sx=" BAD_NUMBER " sy=2\n"},
    {"IntegerIsStrict", "terrain random=12; sy=2\n", "terrain random=2147483647 sy=2\n"},
    {"NoBlankBeforeTheEqualsSign", "terrain sx =5\n", "terrain sx=" BAD_NUMBER "\n"},
    {"EmptyTextTakesTheNextField", "terrain file= sx=5\n", "terrain file=sx=5\n"},
    {"TextHoldsPunctuation", "scene lda=1 sky=a/b_c-(d),=e.png\n", "scene sky=a/b_c-(d),=e.png lda=1\n"},
    {"GeoMeshIsDropped", "geomesh Data/No.mdd x=1 sx=4 sy=5 rx=7 rw=1\nterrain sx=1\n", "terrain sx=1\n"},
    {"EntitiesKeepFileOrder", "entity Tree b_2=x;y(1) A=Data/M.mdd\nterrain sx=1\nentity Rider\n",
     "terrain sx=1\nentity Tree A=Data/M.mdd b_2=x;y(1)\nentity Rider\n"},
    {"LastOfTwoPropertiesHolds", "entity Tree a=1 b=2 a=3\n", "entity Tree a=3 b=2\n"},
};

TEST(LevelText, StoresWhatTheLinesSay) {
    for (const SScanCase& Case : SCAN_CASES) {
        EXPECT_EQ(SLevelText(MAGIC + Case.Lines).Result, ELevelText::Good) << Case.Rule;
        EXPECT_EQ(ReadAndWritten(MAGIC + Case.Lines), ReadAndWritten(MAGIC + Case.Same)) << Case.Rule;
    }
    EXPECT_EQ(SLevelText("WLMF\nterrain sx=+ sy=1\n").Log, "F_ReadFloat: Unexpected character found: +\n");
    EXPECT_EQ(SLevelText("WLMF\nterrain random=1.5 sy=1\n").Log, "F_ReadInteger: Unexpected character found: .\n");
}

TEST(LevelText, CoordinatesAreTextAndPosition) {
    const SLevelText Level("WLMF\nentity Tree y=-3e1 z=12.5 x=oak X=9\nentity Tree z=1 z=2\n");
    EXPECT_EQ(Level.Defs[0].Position, Vec3({0, -30, 12.5f}));
    EXPECT_STREQ(Level.Defs[0].Properties.Find("z")->value.CStr(), "12.5");
    EXPECT_EQ(Level.Defs[1].Position, Vec3({0, 0, 2}));
}

TEST(LevelText, OtherWordsAreRefusedAndNamed) {
    for (const char* Text : {"", "\n", "wlmf\n", "WLM\n", "WLMFX\n", "W LMF\n", "terrain sx=1\nWLMF\n"}) {
        EXPECT_EQ(SLevelText(Text).Result, ELevelText::WrongType) << Text;
    }
    EXPECT_EQ(SLevelText("12; \n WLMF2 terrain sx=5\n").Result, ELevelText::Good) << "the first run of letters";
    EXPECT_EQ(ReadAndWritten("12; \n WLMF2 terrain sx=5\n"), Written({})) << "the rest of the magic's line is skipped";
    const std::pair<const char*, const char*> CASES[] = {
        {"Terrain sx=1\n", "Terrain"}, {"terrain\nlight x=1\n", "light"}, {"entityTree\n", "entityTree"},
        {"terrain sx=1\n\n", ""},      {"terrain sx=1\n  \t", ""},        {"\n", ""}};
    for (const auto& [Lines, Word] : CASES) {
        const SLevelText Level(MAGIC + Lines);
        EXPECT_EQ(Level.Result, ELevelText::WrongDefinition) << Lines;
        EXPECT_STREQ(Level.BadWord.CStr(), Word) << Lines;
    }
}

TEST(LevelText, WritesEveryFieldInItsPlaceAndNoEmptyText) {
    EXPECT_EQ(Written({}),
              "WLMF\nterrain sx=0.000000 sy=0.000000 sz=0.000000 random=1337\n"
              "scene winda=0.000000 windp=0.000000 windr=0.000000 grava=0.000000 gravp=3.141593 gravr=10.000000 "
              "lda=0.000000 ldp=0.000000 lcr=1.000000 lcg=1.000000 lcb=1.000000 cldam=0.100000 raypwr=0.500000 "
              "fcr=0.500000 fcg=0.500000 fcb=0.500000 fdist=1000.000000 fexp=2.000000 skfam=0.000000 skfexp=4.000000 "
              "cldst=1000.000000\n");
    SLevelText Level("WLMF\nentity A b=1\nscene winda=1 windp=2 windr=3 grava=4 gravp=5 gravr=6 lda=7 ldp=8 lcr=9 "
                     "lcg=10 lcb=11 cldam=12 sky=S.png fcr=13 fcg=14 fcb=15 fdist=16 fexp=17 skfam=18 skfexp=19 "
                     "cldst=20.123456\nterrain random=8 sz=3 sy=2 sx=1 file=T.ter");
    Level.Defs[0].Properties["a"] = "";
    EXPECT_EQ(Written(Level.Params, Level.Defs),
              "WLMF\nterrain file=T.ter sx=1.000000 sy=2.000000 sz=3.000000 random=8\n"
              "scene winda=1.000000 windp=2.000000 windr=3.000000 grava=4.000000 gravp=5.000000 gravr=6.000000 "
              "lda=7.000000 ldp=8.000000 lcr=9.000000 lcg=10.000000 lcb=11.000000 cldam=12.000000 sky=S.png "
              "raypwr=0.500000 fcr=13.000000 fcg=14.000000 fcb=15.000000 fdist=16.000000 fexp=17.000000 "
              "skfam=18.000000 skfexp=19.000000 cldst=20.123455\nentity A b=1\n");
}

TEST(LevelText, CarriageReturnsOfAFileAreNoContent) {
    const std::string Path = (std::filesystem::temp_directory_path() / "sloperush-crlf.wlm").string();
    std::ofstream(Path, std::ios::binary) << "WLMF\r\n\r\nterrain sx=1 file=T.ter\r\nentity Tree a=b\r\n";
    GString Text;
    ASSERT_TRUE(F_ReadTextFile(Path.c_str(), Text));
    std::filesystem::remove(Path);
    EXPECT_EQ(SLevelText(Text.CStr()).Result, ELevelText::Good);
    EXPECT_EQ(ReadAndWritten(Text.CStr()), ReadAndWritten("WLMF\n\nterrain sx=1 file=T.ter\nentity Tree a=b\n"));
}

TEST(LevelText, ShippedLevelsComeBackToTheByte) {
    int Count = 0;
    for (const auto& Entry : std::filesystem::directory_iterator(SLOPERUSH_SOURCE_DATA_DIR "/Levels")) {
        if (Entry.path().extension() == ".wlm") {
            std::ifstream File(Entry.path(), std::ios::binary);
            const std::string Text(std::istreambuf_iterator<char>(File), {});
            EXPECT_EQ(ReadAndWritten(Text), Text) << Entry.path();
            EXPECT_EQ(SLevelText(Text).Log, "") << Entry.path();
            ++Count;
        }
    }
    EXPECT_GT(Count, 0);
}

// The whole range of a float that is written without loss, and the small numbers where the six decimals bite.
float RandomFloat(std::mt19937& Random) {
    const float Exponent = std::uniform_real_distribution<float>(-8, 9)(Random);
    return (Random() % 2 ? 1.0f : -1.0f) * std::pow(10.0f, Exponent);
}

GString RandomWord(std::mt19937& Random, const std::string& Letters) {
    std::string Word;
    for (std::size_t Length = 1 + Random() % 50; Length > 0; --Length) {
        Word += Letters[Random() % Letters.size()];
    }
    return Word.c_str();
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
    for (GString* File : {&P.TerrainFile, &P.SkyFile}) {
        *File = Random() % 4 ? RandomWord(Random, "azAZ09./_-;:=()#~") : GString();
    }
    return P;
}

GArray<SEntityDef> RandomDefs(std::mt19937& Random) {
    GArray<SEntityDef> Defs;
    for (std::size_t Count = Random() % 8; Count > 0; --Count) {
        SEntityDef Def;
        Def.ClassName = RandomWord(Random, "aZ0_");
        for (std::size_t Properties = Random() % 8; Properties > 0; --Properties) {
            Def.Properties[RandomWord(Random, "abXYZ019_")] = RandomWord(Random, "aZ0_;=./-\"%");
        }
        Defs.Add(Def);
    }
    return Defs;
}

TEST(LevelText, RandomLevelsComeBackToTheByteAndFloatsToSixDecimals) {
    std::mt19937 Random(11);
    for (int i = 0; i < 300; ++i) {
        const SLevelParams P = RandomParams(Random);
        const std::string Text = Written(P, RandomDefs(Random));
        ASSERT_EQ(ReadAndWritten(Text), Text);
        const SLevelParams Back = SLevelText(Text).Params;
        ASSERT_NEAR(Back.FogDist, P.FogDist, std::max(0.0000005, std::abs(P.FogDist) * 1e-7));
        ASSERT_EQ(Back.TerrainSeed, P.TerrainSeed);
    }
}

TEST(LevelDamage, FileCutOffAtAnyByteIsRead) {
    for (std::size_t Length = 0; Length <= LEVEL.size(); ++Length) {
        const SLevelText Level(LEVEL.substr(0, Length));
        ASSERT_EQ(Level.Result == ELevelText::WrongType, Length < 4) << Length;
        ASSERT_LE(Level.Defs.count, 2u) << Length;
    }
    EXPECT_EQ(SLevelText(LEVEL).Result, ELevelText::Good);
}

// Pieces are taken out, and single characters or pieces of the text itself put in.
std::string Damaged(std::string Text, std::mt19937& Random) {
    const std::string Source = Text;
    for (std::size_t Changes = 1 + Random() % 8; Changes > 0; --Changes) {
        const std::string Any(1, Random() % 2 ? static_cast<char>(Random()) : " \n\t=;-.\r"[Random() % 8]);
        const std::string Piece = Source.substr(Random() % Source.size(), Random() % 40);
        Text.replace(Random() % Text.size(), Random() % 10, Random() % 3 ? Any : Piece);
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

} // namespace
