#include "foundation/Scan.h"
#include "support/Common.h"

#include <climits>

namespace {

// What a scanner leaves behind.
template <class TValue>
struct SOutcome {
    TValue Value;
    INT32 Pos;
    std::string Message = "";
};

// Calls Scan(Pos, Text) and compares everything it did. The flag starts with the wrong value, to see it written.
template <class TValue, class TScan>
void ExpectScan(TScan Scan, const GString& Text, INT32 Start, const SOutcome<TValue>& Expected) {
    SCOPED_TRACE(testing::Message() << '"' << Text.CStr() << "\" from " << Start);
    INT32 Pos = Start;
    TValue Value = {};
    F_Error = Expected.Message.empty();
    EXPECT_EQ(PrintedBy([&] { Value = Scan(Pos, Text); }), Expected.Message);
    EXPECT_TRUE(Value == Expected.Value) << testing::PrintToString(Value);
    EXPECT_EQ(Pos, Expected.Pos);
    EXPECT_EQ(F_Error, !Expected.Message.empty());
}

// A reader of numbers as its rule is told, one character at a time: the slow form to compare with.
template <class TValue>
struct SNumberRule {
    std::string Kind, Parts;
    bool Strict;
    TValue Bad;

    SOutcome<TValue> Read(const std::string& Text, INT32 Pos) const {
        const std::string Function = "F_Read" + Kind + ": ";
        const INT32 Length = static_cast<INT32>(Text.size());
        std::string Number;
        for (Pos = std::max(Pos, 0); Pos < Length; ++Pos) {
            const char c = Text[static_cast<size_t>(Pos)];
            if (Parts.find(c) != std::string::npos) {
                Number += c;
            } else if (!Number.empty() && (!Strict || std::strchr(" \n\t", c))) {
                break;
            } else if (!std::strchr(" \n\t", c)) {
                return {Bad, Pos, Function + "Unexpected character found: " + c + "\n"};
            }
        }
        if (Number.empty()) {
            return {Bad, Pos, Function + Kind + " not found" + (Pos > Length ? "\n" : ", reached end of string\n")};
        }
        return {static_cast<TValue>(std::atof(Number.c_str())), Pos};
    }

    // Draws texts that are mostly numbers and blanks.
    template <class TScan>
    void ExpectFrom(TScan Scan) const {
        CRandom Random;
        const std::string Letters = "01237.-,, \n\t;x\r+";
        for (int n = 0; n < 5000; ++n) {
            std::string Text(Random.Below(10), ' ');
            std::generate(Text.begin(), Text.end(), [&] { return Letters[Random.Below(16)]; });
            const INT32 Start = Random.Whole(-2, static_cast<int>(Text.size()) + 2);
            ExpectScan(Scan, Text.c_str(), Start, Read(Text, Start));
        }
    }
};

float ReadStrict(INT32& Pos, const GString& Text) {
    return F_ReadFloat(Pos, Text, true);
}

float ReadLoose(INT32& Pos, const GString& Text) {
    return F_ReadFloat(Pos, Text, false);
}

GString ReadName(INT32& Pos, const GString& Text) {
    return F_ReadString(Pos, Text, F_IsName);
}

TEST(Scan, NumbersFollowTheRuleOnRandomTexts) {
    SNumberRule<float>{"Float", "0123456789.,-", true, 3.4028235e38f}.ExpectFrom(ReadStrict);
    SNumberRule<float>{"Float", "0123456789.,-", false, 3.4028235e38f}.ExpectFrom(ReadLoose);
    SNumberRule<INT32>{"Integer", "0123456789-", true, 0x7FFFFFFF}.ExpectFrom(F_ReadInteger);
}

TEST(Scan, LongNumbersAndIntegersBeyond32BitsAreTheNearest) {
    ExpectScan<float>(ReadStrict, "0000000000000000000000000000000000000000001.5", 0, {1.5f, 45});
    ExpectScan<INT32>(F_ReadInteger, "-2147483648", INT_MIN, {INT_MIN, 11});
    ExpectScan<INT32>(F_ReadInteger, "-99999999999", 0, {INT_MIN, 12});
    ExpectScan<INT32>(F_ReadInteger, "99999999999999999999999999", 0, {INT_MAX, 26});
}

TEST(Scan, StringSkipsWhatIsNotOfItsClassAndStaysBehindTheWord) {
    const std::string AtEnd = "F_ReadString: String not found, reached end of string\n";
    ExpectScan<GString>(ReadName, "=;[_a1\n", -9, {"_a1", 6});
    ExpectScan<GString>(ReadName, "end", 1, {"nd", 3});
    ExpectScan<GString>(ReadName, "a \t=\r", 1, {"", 5, AtEnd});
    ExpectScan<GString>(ReadName, "", 0, {"", 0, AtEnd});
    ExpectScan<GString>(ReadName, "a", INT_MAX, {"", INT_MAX, "F_ReadString: String not found\n"});
    const auto Any = [](INT32& Pos, const GString& Text) { return F_ReadString(Pos, Text, [](char) { return true; }); };
    ExpectScan<GString>(Any, " a\rb c", 0, {"a\rb", 4});
}

// In the locale "C" nothing above 127 is of any class.
TEST(Scan, ClassesTakeEveryByte) {
    for (int Code = -128; Code < 128; ++Code) {
        const char c = static_cast<char>(Code);
        const bool Letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        EXPECT_EQ(F_IsAlpha(c), Letter) << Code;
        EXPECT_EQ(F_IsName(c), Letter || (c >= '0' && c <= '9') || c == '_') << Code;
        EXPECT_EQ(F_IsPrintable(c), c > ' ' && c <= '~') << Code;
    }
}

TEST(Scan, CheckCharMovesOnlyOverTheWantedOne) {
    const auto CheckEquals = [](INT32& Pos, const GString& Text) { return F_CheckChar(Pos, Text, '='); };
    const std::string AtEnd = "F_CheckChar: Char not found, reached end of string\n";
    ExpectScan<int>(CheckEquals, "a=b", 1, {1, 2});
    ExpectScan<int>(CheckEquals, "a=b", 0, {0, 0, "F_CheckChar: Right char not found, got this instead: a\n"});
    ExpectScan<int>(CheckEquals, "a", 1, {0, 1, AtEnd});
    ExpectScan<int>(CheckEquals, "a", INT_MAX, {0, INT_MAX, AtEnd});
}

TEST(Scan, VectorsHaveSemicolonsBetweenAndGoOnBehindAMissingOne) {
    ExpectScan<Vec2>(F_ReadVec2, "1.5;2", 0, {{1.5f, 2}, 5});
    ExpectScan<Vec4>(F_ReadVec4, "1;-2.5;3;4 x", 0, {{1, -2.5f, 3, 4}, 10});
    ExpectScan<Vec3>(F_ReadVec3, "1 2;x", 0,
                     {{1, 2, F_BAD_FLOAT},
                      4,
                      "F_CheckChar: Right char not found, got this instead:  \n"
                      "F_ReadFloat: Unexpected character found: x\n"});
}

TEST(Scan, SkipBlanksTakesCarriageReturnsToo) {
    for (const auto& [From, To] : {std::pair<INT32, INT32>{-5, 0}, {1, 6}, {7, 9}, {9, 9}, {INT_MAX, INT_MAX}}) {
        INT32 Pos = From;
        EXPECT_TRUE(F_SkipBlanks(Pos, "a \t\r\n b\r ") == 1 && Pos == To) << From;
    }
}

// SkipLine stands behind the line feed or at the end, PrevLine on it or in front of the text.
TEST(Scan, LinesForwardAndBackward) {
    const INT32 Cases[][3] = {{-50, 3, -1}, {-1, 3, -1}, {0, 3, -1}, {2, 3, -1}, {3, 6, 2},
                              {5, 6, 2},    {6, 7, 5},   {7, 8, 6},  {8, 8, 6},  {99, 99, 6}};
    for (const auto& [From, Next, Prev] : Cases) {
        INT32 Pos = From;
        EXPECT_EQ(F_SkipLine(Pos, "ab\ncd\n\ne"), Next < 8) << From;
        EXPECT_EQ(Pos, Next);
        Pos = From;
        EXPECT_EQ(F_PrevLine(Pos, "ab\ncd\n\ne"), Prev >= 0) << From;
        EXPECT_EQ(Pos, Prev);
    }
}

TEST(Scan, RestOfLineIsEmptyIfNothingButBlanksFollow) {
    const int Expected[] = {0, 0, 1, 1, 1, 0, 0, 0, 1, 1, 1, 1, 1};
    for (INT32 Pos = -1; Pos < 12; ++Pos) {
        EXPECT_EQ(F_RestOfLineEmpty(Pos, "a \t\nb \r\n  "), Expected[Pos + 1]) << Pos;
    }
}

TEST(Scan, ZeroBytesAreCharactersLikeOthers) {
    GString Text;
    Text.Append("a\0b\n7", 5);
    ExpectScan<GString>(ReadName, Text, 1, {"b", 3});
    INT32 Pos = 0;
    EXPECT_TRUE(F_SkipLine(Pos, Text) && F_ReadInteger(Pos, Text) == 7);
    EXPECT_EQ(F_RestOfLineEmpty(1, Text), 0);
}

using FileRead = TempDirTest;

TEST_F(FileRead, GivesEveryByteAsItIsAndZeroForMissingFilesAndFolders) {
    std::string Bytes;
    GArray<UINT8> Read;
    Read.Resize(5);
    for (const std::size_t Size : {0, 100000}) {
        while (Bytes.size() < Size) {
            Bytes += static_cast<char>(Bytes.size() * 7);
        }
        WriteText("folder/file.bin", Bytes);
        EXPECT_EQ(F_ReadFile("folder/file.bin", Read), 1);
        EXPECT_EQ(std::string(Read.begin(), Read.end()), Bytes);
    }
    for (const char* Name : {"missing", "folder"}) {
        GString Text = "old";
        EXPECT_EQ(F_ReadFile(Name, Read) + F_ReadTextFile(Name, Text), 0) << Name;
        EXPECT_EQ(Text.Length(), 0u) << Name;
    }
}

// A line end is moved over every place around the sizes that a buffer may have.
TEST_F(FileRead, TextLosesCarriageReturnsInFrontOfLineFeedsOnlyWhereverAReadEnds) {
    const std::pair<std::string, std::string> Ends[] = {
        {"\r\ny\rz\n\r\n", "\ny\rz\n\n"}, {"\r", "\r"}, {"a\r\r\nb", "a\r\nb"}, {{"\0\0\r\n\0", 5}, {"\0\0\n\0", 4}}};
    for (int i = 0; i < 5 * 7 * 4; ++i) {
        const int Size = std::array{3, 2048, 4096, 16384, 32768}[i / 28] + i / 4 % 7 - 3;
        const std::string Front(static_cast<std::size_t>(Size), 'x');
        WriteText("folder/file.txt", Front + Ends[i % 4].first);
        GString Text = "what was there before";
        EXPECT_NE(F_ReadTextFile("folder\\file.txt", Text), 0);
        ASSERT_EQ(std::string(Text.CStr(), Text.Length()), Front + Ends[i % 4].second) << Size;
    }
}

} // namespace
