// A level's text: how it is scanned, the exact form in which it is written, and that no text does harm.
#include "support/Common.h"
#include "world/LevelFile.h"

namespace {

struct SLevelText {
    ELevelText Result = ELevelText::Good;
    SLevelParams Params;
    GArray<SEntityDef> Defs;
    GString BadWord;
    std::string Log; // what the reading printed

    explicit SLevelText(const std::string& Text) {
        Log = PrintedBy([&] { Result = ReadLevelText(Text.c_str(), Params, Defs, BadWord); });
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

// Lines behind the magic, and plain ones that mean the same.
const std::pair<const char*, const char*> SCAN_CASES[] = {
    {"", "terrain random=1337\n"},
    {"terrain random=4 sz=3 file=A.ter", "terrain file=A.ter sz=3 random=4\n"},
    {"\n\n  \tterrain \t sx=1\t\t sy=2  \t\n \nscene lda=2\n", "terrain sx=1 sy=2\nscene lda=2\n"},
    {"scene lda=2\nterrain sx=1 sx=4 sy=1\nterrain sy=2\n", "terrain sx=4 sy=2\nscene lda=2\n"},
    {"12 terrain ;;sx=1 34 _sy=2\n", "terrain sx=1 sy=2\n"},
    {"scene cldam=0.3 raypwr=0.300000 fcr=0.2\n", "scene cldam=0.3 fcr=0.2\n"},
    {"scene bogus=lda=2\n", "scene lda=2\n"},                   // an unknown value's letters are the next key,
    {"scene bogus=1\nterrain lda=5\n", "scene lda=5\n"},        // even at the end of the line
    {"terrain lda=1 SX=1 Sx=1 s1x=5 sy=2\n", "terrain sy=2\n"}, // keys by their case, up to a digit, in their line
    {"terrain sx=1,5 sy=2\n", "terrain sx=1 sy=2\n"},
    {"terrain sx=3 sx=-\n", "terrain sx=0\n"},
    {"terrain sx=+5 sy=2\n", "terrain sx=" BAD_NUMBER " sy=2\n"},
    {"terrain sx=1e3 sy=2\n", "terrain sx=" BAD_NUMBER " sy=2\n"},
    {"terrain sx=1;2 sy=2\n", "terrain sx=" BAD_NUMBER " sy=2\n"},
    {"terrain random=12; sy=2\n", "terrain random=2147483647 sy=2\n"},
    {"terrain sx =5\n", "terrain sx=" BAD_NUMBER "\n"},
    {"terrain file= sx=5\n", "terrain file=sx=5\n"},
    {"scene lda=1 sky=a/b_c-(d),=e.png\n", "scene sky=a/b_c-(d),=e.png lda=1\n"},
    {"geomesh Data/No.mdd x=1 sx=4 sy=5 rx=7 rw=1\nterrain sx=1\n", "terrain sx=1\n"},
    {"entity Tree b_2=x;y(1) A=Data/M.mdd b_2=3\nterrain sx=1\nentity Rider\n",
     "terrain sx=1\nentity Tree A=Data/M.mdd b_2=3\nentity Rider\n"},
};

TEST(LevelText, StoresWhatTheLinesSay) {
    for (const auto& [Lines, Same] : SCAN_CASES) {
        EXPECT_EQ(SLevelText("WLMF\n" + std::string(Lines)).Result, ELevelText::Good) << Lines;
        EXPECT_EQ(ReadAndWritten("WLMF\n" + std::string(Lines)), ReadAndWritten("WLMF\n" + std::string(Same))) << Lines;
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
        const SLevelText Level("WLMF\n" + std::string(Lines));
        EXPECT_EQ(Level.Result, ELevelText::WrongDefinition) << Lines;
        EXPECT_STREQ(Level.BadWord.CStr(), Word) << Lines;
    }
}

TEST(LevelText, NewLevelIsWrittenWithItsDefaultsAndNoEmptyText) {
    SLevelText Level("WLMF\nentity A b=1");
    Level.Defs[0].Properties["a"] = "";
    EXPECT_EQ(Written({}, Level.Defs),
              "WLMF\nterrain sx=0.000000 sy=0.000000 sz=0.000000 random=1337\n"
              "scene winda=0.000000 windp=0.000000 windr=0.000000 grava=0.000000 gravp=3.141593 gravr=10.000000 "
              "lda=0.000000 ldp=0.000000 lcr=1.000000 lcg=1.000000 lcb=1.000000 cldam=0.100000 raypwr=0.500000 "
              "fcr=0.500000 fcg=0.500000 fcb=0.500000 fdist=1000.000000 fexp=2.000000 skfam=0.000000 skfexp=4.000000 "
              "cldst=1000.000000\nentity A b=1\n");
}

TEST(LevelText, ShippedLevelsComeBackToTheByte) {
    int Count = 0;
    for (const auto& Entry : fs::directory_iterator(SLOPERUSH_SOURCE_DATA_DIR "/Levels")) {
        if (Entry.path().extension() == ".wlm") {
            const std::string Text = ReadText(Entry.path());
            EXPECT_EQ(ReadAndWritten(Text), Text) << Entry.path();
            EXPECT_EQ(SLevelText(Text).Log, "") << Entry.path();
            ++Count;
        }
    }
    EXPECT_GT(Count, 0);
}

TEST(LevelText, EachKeyHasItsOwnPlace) {
    const SLevelParams P = SLevelText("WLMF\nscene fdist=123456.789 lda=2\nterrain random=-7 sy=3\n").Params;
    EXPECT_TRUE(P.FogDist == 123456.789f && P.LightDir_Angle == 2 && P.TerrainSeed == -7 && P.SizeY == 3);
}

const std::string LEVEL = "WLMF\n"
                          "terrain file=Data/Terrain/Slope1.ter sx=1600.000000 sy=-0.5 sz=1,5 random=1337\n"
                          "scene winda=0.1 sky=Data/Textures/Sky/Dusk.png raypwr=0.5 fdist=+1 bogus=2\n\n"
                          "geomesh Data/Models/R.mdd x=1 rw=0.5\n"
                          "entity Rider x=100.5 y=3800 Position=1;2;3 Name_2=(a)\n"
                          "entity StaticMesh MeshName=Data/Models/Rock1.mdd z=-7";

// Pieces are taken out, and single characters or pieces of the text itself put in. What was read from any text is a
// level like others: written and read again it stays the same.
TEST(LevelDamage, RandomChangesAreReadAndWrittenAgain) {
    std::mt19937 Random(13);
    for (int i = 0; i < 4000; ++i) {
        std::string Text = LEVEL;
        for (std::size_t Changes = 1 + Random() % 8; Changes > 0; --Changes) {
            const std::string Any(1, Random() % 2 ? static_cast<char>(Random()) : " \n\t=;-.\r"[Random() % 8]);
            const std::string Piece = LEVEL.substr(Random() % LEVEL.size(), Random() % 40);
            Text.replace(Random() % Text.size(), Random() % 10, Random() % 3 ? Any : Piece);
        }
        const std::string Once = ReadAndWritten(Text);
        if (Once.find("=inf") == std::string::npos) {
            ASSERT_EQ(ReadAndWritten(Once), Once) << Text;
        }
    }
}

} // namespace
