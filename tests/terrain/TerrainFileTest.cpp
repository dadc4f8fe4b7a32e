#include <random>
#include <string>

#include "terrain/TerrainFile.h"
#include <gtest/gtest.h>

namespace {

// What Parse prints; the result in Ok.
std::string Printed(const std::string& Text, STerrainFile& Out, INT32& Ok) {
    GString Whole;
    Whole.Append(Text.data(), static_cast<UINT32>(Text.size()));
    testing::internal::CaptureStdout();
    Ok = ParseTerrainFile("a.ter", Whole, Out);
    return testing::internal::GetCapturedStdout();
}

} // namespace

TEST(TerrainFileTest, FiveWordsBetweenAnyBlanks) {
    for (const char* Text :
         {"h.png\na\nb\nc\nd\n", "h.png a b c d", "\r\n h.png\r\na\t\tb\v\nc\n\n\nd sixth seventh"}) {
        STerrainFile File;
        INT32 Ok = 0;
        EXPECT_EQ(Printed(Text, File, Ok), "");
        EXPECT_EQ(Ok, 1);
        EXPECT_TRUE(File.Picture == "h.png");
        EXPECT_TRUE(File.Details[0] == "a" && File.Details[1] == "b" && File.Details[2] == "c" &&
                    File.Details[3] == "d");
    }
}

TEST(TerrainFileTest, TooFewWordsAreTold) {
    const char* Texts[] = {"", "h", "h a\n", "h\na\nb", "h a b c\n\n"};
    for (int i = 0; i < 5; i++) {
        STerrainFile File;
        INT32 Ok = 1;
        EXPECT_EQ(Printed(Texts[i], File, Ok),
                  "Terrain file \"a.ter\" has " + std::to_string(i) + " words, it needs 5\n");
        EXPECT_EQ(Ok, 0);
    }
}

TEST(TerrainFileTest, AWordNoPathCanBeIsTold) {
    STerrainFile File;
    INT32 Ok = 1;
    EXPECT_EQ(Printed("h a " + std::string(1 << 20, 'x') + " c d", File, Ok),
              "Terrain file \"a.ter\": word 3 is longer than 4095 characters\n");
    EXPECT_EQ(Ok, 0);
    Printed(std::string(4095, 'x') + " a b c d", File, Ok);
    EXPECT_EQ(Ok, 1);
    EXPECT_EQ(File.Picture.Length(), 4095u);
}

TEST(TerrainFileTest, AnyBytesGiveAllWordsOrALine) {
    const std::string Good = "Data/Terrain/h.png\na.png\nb.png\nc.png\nd.png\n";
    std::minstd_rand Random(3);
    for (std::size_t i = 0; i < 3 * Good.size(); i++) {
        std::string Text = Good;
        if (i < Good.size()) {
            Text.resize(i);
        } else {
            Text[Random() % Text.size()] = static_cast<char>(Random());
        }
        STerrainFile File;
        INT32 Ok = 0;
        const std::string Line = Printed(Text, File, Ok);
        EXPECT_EQ(Ok != 0, Line.empty()) << i;
        if (Ok) {
            EXPECT_FALSE(File.Picture.Empty() || File.Details[3].Empty());
        }
    }
}
