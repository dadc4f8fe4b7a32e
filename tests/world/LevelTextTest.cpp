// How a level's text is scanned, and the exact form in which it is written.
#include "world/LevelText.h"

#include "foundation/Scan.h"

#include <filesystem>
#include <fstream>

namespace {

constexpr const char* MAGIC = "WLMF\n";

// What F_ReadFloat makes of a malformed number, as digits.
#define BAD_NUMBER "340282346638528859811704183484516925440"

// Lines behind the magic, and plain ones that mean the same.
struct SScanCase {
    const char* Name;
    const char* Lines;
    const char* Same;
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
};

class LevelScan : public testing::TestWithParam<SScanCase> {};

TEST_P(LevelScan, StoresWhatTheLinesSay) {
    const SLevelText Level = ReadLevel(std::string(MAGIC) + GetParam().Lines);
    EXPECT_EQ(Level.Result, ELevelText::Good);
    EXPECT_EQ(WrittenLevel(Level.Params), WrittenLevel(ReadLevel(std::string(MAGIC) + GetParam().Same).Params));
    EXPECT_EQ(Level.Defs.count, 0u);
}

INSTANTIATE_TEST_SUITE_P(Rules, LevelScan, testing::ValuesIn(SCAN_CASES),
                         [](const auto& Info) { return Info.param.Name; });

TEST(LevelText, DefaultsAreThoseOfANewLevel) {
    const SLevelParams P = ReadLevel(MAGIC).Params;
    EXPECT_EQ(WrittenLevel(P),
              "WLMF\nterrain sx=0.000000 sy=0.000000 sz=0.000000 random=1337\n"
              "scene winda=0.000000 windp=0.000000 windr=0.000000 grava=0.000000 gravp=3.141593 gravr=10.000000 "
              "lda=0.000000 ldp=0.000000 lcr=1.000000 lcg=1.000000 lcb=1.000000 cldam=0.100000 raypwr=0.500000 "
              "fcr=0.500000 fcg=0.500000 fcb=0.500000 fdist=1000.000000 fexp=2.000000 skfam=0.000000 skfexp=4.000000 "
              "cldst=1000.000000\n");
    EXPECT_EQ(P.AmbientColor_R, 0.1f);
    EXPECT_EQ(P.AmbientColor_G, 0.15f);
    EXPECT_EQ(P.AmbientColor_B, 0.2f);
    EXPECT_EQ(P.LightIntensity, 1.0f);
}

TEST(LevelText, BadNumbersAreReported) {
    EXPECT_EQ(ReadLevel("WLMF\nterrain sx=+ sy=1\n").Log, "F_ReadFloat: Unexpected character found: +\n");
    EXPECT_EQ(ReadLevel("WLMF\nterrain random=1.5 sy=1\n").Log, "F_ReadInteger: Unexpected character found: .\n");
    EXPECT_EQ(ReadLevel("WLMF\nterrain sx=1 sy=2\n").Log, "");
}

TEST(LevelText, OtherMagicWordsAreTheWrongType) {
    for (const char* Text : {"", "\n", "wlmf\n", "WLM\n", "WLMFX\n", "W LMF\n", "terrain sx=1\nWLMF\n"}) {
        EXPECT_EQ(ReadLevel(Text).Result, ELevelText::WrongType) << Text;
    }
    const SLevelText Level = ReadLevel("12; \n WLMF2 terrain sx=5\n");
    EXPECT_EQ(Level.Result, ELevelText::Good) << "the first run of letters is the magic";
    EXPECT_EQ(Level.Params.SizeX, 0) << "the rest of its line is skipped";
}

TEST(LevelText, UnknownDefinitionWordIsNamed) {
    const std::pair<const char*, const char*> CASES[] = {
        {"Terrain sx=1\n", "Terrain"}, {"terrain\nlight x=1\n", "light"}, {"entityTree\n", "entityTree"},
        {"terrain sx=1\n\n", ""},      {"terrain sx=1\n  \t", ""},        {"\n", ""}};
    for (const auto& [Lines, Word] : CASES) {
        const SLevelText Level = ReadLevel(std::string(MAGIC) + Lines);
        EXPECT_EQ(Level.Result, ELevelText::WrongDefinition) << Lines;
        EXPECT_STREQ(Level.BadWord.CStr(), Word) << Lines;
    }
}

// Class and properties as a line, which is the written form of the definition.
std::string EntityLines(const std::string& Lines) {
    const SLevelText Level = ReadLevel(MAGIC + Lines);
    EXPECT_EQ(Level.Result, ELevelText::Good) << Lines;
    return WrittenLevel({}, Level.Defs).substr(WrittenLevel({}).size());
}

TEST(LevelText, EntitiesKeepNamesTextAndFileOrder) {
    EXPECT_EQ(EntityLines("entity Rider b_2=x;y(1) A=Data/M.mdd\nterrain sx=1\nentity Tree_2\nentity Rider\n"),
              "entity Rider A=Data/M.mdd b_2=x;y(1)\nentity Tree_2\nentity Rider\n");
}

TEST(LevelText, LaterOfTwoEqualPropertiesHolds) {
    EXPECT_EQ(EntityLines("entity Tree a=1 b=2 a=3\n"), "entity Tree a=3 b=2\n");
}

TEST(LevelText, EmptyPropertyIsNotWritten) {
    SEntityDef Def;
    Def.ClassName = "Tree";
    Def.Properties["a"] = "";
    Def.Properties["b"] = "1";
    GArray<SEntityDef> Defs;
    Defs.Add(Def);
    EXPECT_EQ(WrittenLevel({}, Defs), WrittenLevel({}) + "entity Tree b=1\n");
}

TEST(LevelText, CoordinatesAreTextAndPosition) {
    const SLevelText Level = ReadLevel("WLMF\nentity Tree y=-3e1 z=12.5 x=oak X=9\nentity Tree z=1 z=2\n");
    ASSERT_EQ(Level.Defs.count, 2u);
    EXPECT_EQ(Level.Defs[0].Position, Vec3({0, -30, 12.5f}));
    EXPECT_STREQ(Level.Defs[0].Properties.Find("z")->value.CStr(), "12.5");
    EXPECT_EQ(Level.Defs[1].Position, Vec3({0, 0, 2}));
}

TEST(LevelText, WritesEveryFieldInItsPlace) {
    const SLevelText Level = ReadLevel(
        "WLMF\nentity A\nscene winda=1 windp=2 windr=3 grava=4 gravp=5 gravr=6 lda=7 ldp=8 lcr=9 lcg=10 lcb=11 "
        "cldam=12 sky=S.png fcr=13 fcg=14 fcb=15 fdist=16 fexp=17 skfam=18 skfexp=19 cldst=20.123456\n"
        "terrain random=8 sz=3 sy=2 sx=1 file=T.ter");
    EXPECT_EQ(WrittenLevel(Level.Params, Level.Defs),
              "WLMF\n"
              "terrain file=T.ter sx=1.000000 sy=2.000000 sz=3.000000 random=8\n"
              "scene winda=1.000000 windp=2.000000 windr=3.000000 grava=4.000000 gravp=5.000000 gravr=6.000000 "
              "lda=7.000000 ldp=8.000000 lcr=9.000000 lcg=10.000000 lcb=11.000000 cldam=12.000000 sky=S.png "
              "raypwr=0.500000 fcr=13.000000 fcg=14.000000 fcb=15.000000 fdist=16.000000 fexp=17.000000 "
              "skfam=18.000000 skfexp=19.000000 cldst=20.123455\n"
              "entity A\n");
}

TEST(LevelText, CarriageReturnsOfAFileAreNoContent) {
    const std::string Path = (std::filesystem::temp_directory_path() / "sloperush-crlf.wlm").string();
    std::ofstream(Path, std::ios::binary) << "WLMF\r\n\r\nterrain sx=1 file=T.ter\r\nentity Tree a=b\r\n";
    GString Text;
    ASSERT_TRUE(F_ReadTextFile(Path.c_str(), Text));
    std::filesystem::remove(Path);
    const SLevelText FromFile = ReadLevel(Text.CStr());
    const SLevelText Plain = ReadLevel("WLMF\n\nterrain sx=1 file=T.ter\nentity Tree a=b\n");
    EXPECT_EQ(FromFile.Result, ELevelText::Good);
    EXPECT_EQ(WrittenLevel(FromFile.Params, FromFile.Defs), WrittenLevel(Plain.Params, Plain.Defs));
}

} // namespace
