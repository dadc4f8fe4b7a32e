#include "foundation/GTemplate.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <unordered_map>

namespace {

bool IsInline(const GString& Text) {
    return Text.Cur == Text.Inline;
}

void ExpectSound(const GString& Text) {
    ASSERT_EQ(Text.Cur[Text.count], 0);
    ASSERT_EQ(Text.Cur, Text.Data ? Text.Data : Text.Inline);
    ASSERT_GT(Text.Data ? Text.Capacity : GString::INLINE_SIZE, Text.count);
    if (!Text.Data) {
        ASSERT_EQ(Text.Capacity, 0u);
    }
}

std::string RandomText(std::mt19937& Random, UINT32 MaxLength) {
    std::string Text(Random() % (MaxLength + 1), ' ');
    for (char& Character : Text) {
        Character = static_cast<char>('a' + Random() % 26);
    }
    return Text;
}

TEST(GStringTest, RandomOperationsMatchAStandardString) {
    std::mt19937 Random(3);
    GString Text;
    std::string Expected;
    for (int Step = 0; Step < 6000; ++Step) {
        const std::string Other = RandomText(Random, Random() % 2 ? 6 : 60);
        const UINT32 At = Random() % (Text.Length() + 1);
        const UINT32 Size = Random() % (Text.Length() - At + 1);
        switch (Random() % 9) {
        case 0:
            Text += Other.c_str();
            Expected += Other;
            break;
        case 1:
            Text += GString(Other.c_str());
            Expected += Other;
            break;
        case 2:
            Text = Other.c_str();
            Expected = Other;
            break;
        case 3:
            Text.InsertChar(At, 'X');
            Expected.insert(At, 1, 'X');
            break;
        case 4:
            Text.Left(At);
            Expected.resize(At);
            break;
        case 5:
            Text.Assign(Text, At, Size);
            Expected = Expected.substr(At, Size);
            break;
        case 6:
            if (Text.Length() < 300) {
                Text += Text;
                Expected += Expected;
            }
            break;
        case 7:
            Text.Format(20, "%s-%d", Other.c_str(), 12);
            Expected = (Other + "-12").substr(0, 20);
            break;
        default:
            if (Random() % 8 == 0) {
                Text.Clear();
                Expected.clear();
            }
        }
        ASSERT_EQ(std::string(Text.CStr(), Text.Length()), Expected);
        ExpectSound(Text);
    }
}

TEST(GStringTest, ThirtyOneCharactersAreInlineAndThirtyTwoAreNot) {
    const GString Short(std::string(31, 'a').c_str());
    EXPECT_TRUE(IsInline(Short));
    EXPECT_EQ(Short.Capacity, 0u);
    const GString Long(std::string(32, 'a').c_str());
    EXPECT_FALSE(IsInline(Long));
    EXPECT_GE(Long.Capacity, 33u);
    EXPECT_EQ(Long.Length(), 32u);
}

TEST(GStringTest, StaysOnTheHeapUntilCleared) {
    GString Text(std::string(40, 'a').c_str());
    Text = "b";
    EXPECT_FALSE(IsInline(Text));
    EXPECT_EQ(Text, "b");
    EXPECT_TRUE(IsInline(GString(Text)));
    Text.Clear();
    EXPECT_TRUE(IsInline(Text));
    EXPECT_TRUE(Text.Empty());
}

TEST(GStringTest, ReserveDoublesOrTakesMoreAndKeepsTheText) {
    GString Text("slope");
    Text.Reserve(40);
    EXPECT_EQ(Text.Capacity, 40u);
    Text.Reserve(41);
    EXPECT_EQ(Text.Capacity, 80u);
    Text.Reserve(200);
    EXPECT_EQ(Text.Capacity, 200u);
    EXPECT_EQ(Text, "slope");
    GString Tight("a text that does not fit");
    Tight.Reserve(2);
    ExpectSound(Tight);
    EXPECT_EQ(Tight, "a text that does not fit");
}

TEST(GStringTest, AppendsPartsOfItself) {
    for (const char* Start :
         {"abcdef", "abcdefghijklmnopqrstuvwxyz", "abcdefghijklmnopqrstuvwxyzabcdefghijklmnopqrstuvwxyz"}) {
        GString Text(Start);
        Text += Text;
        Text += Text.CStr() + 3;
        Text += Text;
        const std::string Twice = std::string(Start) + Start;
        const std::string Once = Twice + Twice.substr(3);
        EXPECT_EQ(Text, (Once + Once).c_str());
        ExpectSound(Text);
    }
}

TEST(GStringTest, AssignsPartsOfItself) {
    for (const std::string& Start : {std::string("abcdef"), std::string(50, 'x') + "tail"}) {
        GString Text(Start.c_str());
        const GString& Same = Text;
        Text = Same;
        EXPECT_EQ(Text, Start.c_str());
        Text = Text.CStr();
        EXPECT_EQ(Text, Start.c_str());
        Text = Text.CStr() + 2;
        EXPECT_EQ(Text, Start.substr(2).c_str());
        Text.Format(60, "<%s>", Text.CStr());
        EXPECT_EQ(Text, std::string("<").append(Start, 2).append(">").c_str());
    }
}

TEST(GStringTest, InsertCharGrowsAnInlineStringOntoTheHeap) {
    GString Text;
    for (UINT32 i = 0; i < 100; ++i) {
        Text.InsertChar(i / 2, static_cast<char>('a' + i % 26));
        ExpectSound(Text);
        EXPECT_EQ(IsInline(Text), Text.Length() < GString::INLINE_SIZE);
    }
    EXPECT_EQ(Text.Length(), 100u);
}

TEST(GStringTest, FormatCutsAtTheGivenSize) {
    GString Text;
    Text.Format(5, "%s", "123456789");
    EXPECT_EQ(Text, "12345");
    EXPECT_TRUE(IsInline(Text));
    Text.Format(32, "%d", 7);
    EXPECT_FALSE(IsInline(Text));
    EXPECT_EQ(Text, "7");
    const std::string Long(3000, 'z');
    Text.Format(2000, "%s", Long.c_str());
    EXPECT_EQ(Text.Length(), 2000u);
    Text.Format(0, "%s", "gone");
    EXPECT_TRUE(Text.Empty());
}

TEST(GStringTest, HoldsZerosButComparesToTheFirst) {
    GString Text;
    Text.Append("ab\0cdefghij", 11);
    GString Other;
    Other.Append("ab\0xyzefghij", 12);
    EXPECT_EQ(Text.Length(), 11u);
    EXPECT_EQ(Text[3], 'c');
    EXPECT_EQ(Text, "ab");
    EXPECT_EQ(Text, Other);
    EXPECT_EQ(Text.Compare(Other), 0);
    EXPECT_EQ(std::hash<GString>()(Text), std::hash<GString>()(GString("ab")));
    const GString Copy = Text;
    EXPECT_EQ(Copy.Length(), 11u);
}

TEST(GStringTest, ComparesAsBytesWithoutSign) {
    EXPECT_LT(GString("a"), GString("\xE4"));
    EXPECT_GT(GString("b"), "a");
    EXPECT_LT(GString("ab"), GString("abc"));
    EXPECT_NE(GString("a"), "b");
    EXPECT_EQ(GString(), "");
}

// Texts of few characters, alike at the start, with zeros and bytes above 127 among them.
TEST(GStringTest, CompareMatchesStrcmp) {
    std::mt19937 Random(11);
    constexpr char LETTERS[] = {'a', 'b', '\x80', '\xFF', 1, 0};
    const auto Sign = [](int Value) { return (Value > 0) - (Value < 0); };
    for (int Step = 0; Step < 50000; ++Step) {
        const std::string Start(Random() % 40, 'p');
        GString Texts[2] = {Start.c_str(), Start.c_str()};
        for (GString& Text : Texts) {
            for (UINT32 Length = Random() % 20; Length > 0; --Length) {
                Text.InsertChar(Text.Length(), LETTERS[Random() % (Random() % 8 ? 5 : 6)]);
            }
        }
        ASSERT_EQ(Sign(Texts[0].Compare(Texts[1])), Sign(std::strcmp(Texts[0].CStr(), Texts[1].CStr())));
    }
}

TEST(GStringTest, NullCountsAsEmpty) {
    const char* Nothing = nullptr;
    GString Text(Nothing);
    EXPECT_TRUE(Text.Empty());
    Text = "full";
    Text += Nothing;
    EXPECT_EQ(Text, "full");
    Text = Nothing;
    EXPECT_TRUE(Text.Empty());
}

TEST(GStringTest, IsAKeyOfStandardHashMaps) {
    std::unordered_map<GString, int> Map;
    Map["Diffuse"] = 1;
    Map["Fog"] = 2;
    GString Built("Fo");
    Built += "g";
    EXPECT_EQ(Map[Built], 2);
    EXPECT_EQ(Map.size(), 2u);
}

TEST(GStringDeathTest, ChecksIndices) {
    GString Text("abc");
    EXPECT_DEATH(Text[3], "Assertion failed: at < count, file GTemplate");
    EXPECT_DEATH(Text.InsertChar(4, 'x'), "Assertion failed: af <= count, file GTemplate");
}

TEST(GStringDeathTest, ChecksRanges) {
    const char* Check =
        "Assertion failed: off < count \\+ 1 && size < count \\+ 1 && off \\+ size < count \\+ 1, file GTemplate";
    GString Text("abc");
    Text.Left(3);
    EXPECT_EQ(Text, "abc");
    EXPECT_DEATH(Text.Left(4), Check);
    GString Part;
    Part.Assign(Text, 3, 0);
    EXPECT_TRUE(Part.Empty());
    EXPECT_DEATH(Part.Assign(Text, 4, 0), Check);
    EXPECT_DEATH(Part.Assign(Text, 2, 2), Check);
    EXPECT_DEATH(Part.Assign(Text, 2, 0xFFFFFFFF), Check);
}

} // namespace
