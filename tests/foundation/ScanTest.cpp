#include "FoundationFixture.h"

#include "foundation/Scan.h"

#include <climits>

namespace {

// What a scanner leaves behind.
template <class TValue>
struct SOutcome {
    TValue Value;
    INT32 Pos;
    UINT32 Error;
    std::string Printed;
};

// Calls Scan(Pos, Text) and compares everything it did. The flag starts with the wrong value, to see it written.
template <class TScan, class TValue>
void ExpectScan(TScan Scan, const GString& Text, INT32 Start, const SOutcome<TValue>& Expected) {
    SCOPED_TRACE(testing::Message() << '"' << Text.CStr() << "\" from " << Start);
    INT32 Pos = Start;
    TValue Value = {};
    F_Error = !Expected.Error;
    EXPECT_EQ(PrintedBy([&] { Value = Scan(Pos, Text); }), Expected.Printed);
    EXPECT_TRUE(Value == Expected.Value) << testing::PrintToString(Value);
    EXPECT_EQ(Pos, Expected.Pos);
    EXPECT_EQ(F_Error, Expected.Error);
}

float ReadStrict(INT32& Pos, const GString& Text) {
    return F_ReadFloat(Pos, Text, true);
}

float ReadLoose(INT32& Pos, const GString& Text) {
    return F_ReadFloat(Pos, Text, false);
}

GString ReadName(INT32& Pos, const GString& Text) {
    return F_ReadString(Pos, Text, F_IsName);
}

const std::string FLOAT_AT_END = "F_ReadFloat: Float not found, reached end of string\n";
const std::string INTEGER_AT_END = "F_ReadInteger: Integer not found, reached end of string\n";
const std::string STRING_AT_END = "F_ReadString: String not found, reached end of string\n";

} // namespace

TEST(Scan, FloatEndsAtBlanksAndAtTheEnd) {
    ExpectScan<>(ReadStrict, "  \t\n-12.5 7", 0, SOutcome<float>{-12.5f, 9, 0, ""});
    ExpectScan<>(ReadStrict, "3", 0, SOutcome<float>{3, 1, 0, ""});
    ExpectScan<>(ReadStrict, "3 \n4", 1, SOutcome<float>{4, 4, 0, ""});
    ExpectScan<>(ReadStrict, "-", 0, SOutcome<float>{0, 1, 0, ""});
    ExpectScan<>(ReadStrict, "1,5", 0, SOutcome<float>{1, 3, 0, ""});
    ExpectScan<>(ReadStrict, "5-3 ", 0, SOutcome<float>{5, 3, 0, ""});
    ExpectScan<>(ReadStrict, "0000000000000000000000000000000000000000001.5", 0, SOutcome<float>{1.5f, 45, 0, ""});
}

TEST(Scan, ForeignCharacterEndsALooseFloatOnlyBehindDigits) {
    ExpectScan<>(ReadLoose, "1.5;2", 0, SOutcome<float>{1.5f, 3, 0, ""});
    ExpectScan<>(ReadLoose, "2e5", 0, SOutcome<float>{2, 1, 0, ""});
    ExpectScan<>(ReadLoose, " ;2", 0,
                 SOutcome<float>{F_BAD_FLOAT, 1, 1, "F_ReadFloat: Unexpected character found: ;\n"});
    ExpectScan<>(ReadStrict, "1.5;2", 0,
                 SOutcome<float>{F_BAD_FLOAT, 3, 1, "F_ReadFloat: Unexpected character found: ;\n"});
    ExpectScan<>(ReadStrict, "+1", 0,
                 SOutcome<float>{F_BAD_FLOAT, 0, 1, "F_ReadFloat: Unexpected character found: +\n"});
    ExpectScan<>(ReadStrict, "1\r\n", 0,
                 SOutcome<float>{F_BAD_FLOAT, 1, 1, "F_ReadFloat: Unexpected character found: \r\n"});
}

TEST(Scan, FloatThatIsNotThereGivesTheLargest) {
    ExpectScan<>(ReadLoose, "", 0, SOutcome<float>{3.4028235e38f, 0, 1, FLOAT_AT_END});
    ExpectScan<>(ReadStrict, "1 \t ", 1, SOutcome<float>{F_BAD_FLOAT, 4, 1, FLOAT_AT_END});
    ExpectScan<>(ReadStrict, "1", 2, SOutcome<float>{F_BAD_FLOAT, 2, 1, "F_ReadFloat: Float not found\n"});
    ExpectScan<>(ReadStrict, "1", INT_MAX, SOutcome<float>{F_BAD_FLOAT, INT_MAX, 1, "F_ReadFloat: Float not found\n"});
    ExpectScan<>(ReadStrict, "1 2", INT_MIN, SOutcome<float>{1, 1, 0, ""});
}

TEST(Scan, IntegerTakesNothingButDigitsAndMinus) {
    ExpectScan<>(F_ReadInteger, " \n-42 ", 0, SOutcome<INT32>{-42, 5, 0, ""});
    ExpectScan<>(F_ReadInteger, "7", 0, SOutcome<INT32>{7, 1, 0, ""});
    ExpectScan<>(F_ReadInteger, "-", 0, SOutcome<INT32>{0, 1, 0, ""});
    ExpectScan<>(F_ReadInteger, "12;", 0,
                 SOutcome<INT32>{0x7FFFFFFF, 2, 1, "F_ReadInteger: Unexpected character found: ;\n"});
    ExpectScan<>(F_ReadInteger, "1.5", 0,
                 SOutcome<INT32>{F_BAD_INTEGER, 1, 1, "F_ReadInteger: Unexpected character found: .\n"});
    ExpectScan<>(F_ReadInteger, "  ", 0, SOutcome<INT32>{F_BAD_INTEGER, 2, 1, INTEGER_AT_END});
    ExpectScan<>(F_ReadInteger, "1", 5, SOutcome<INT32>{F_BAD_INTEGER, 5, 1, "F_ReadInteger: Integer not found\n"});
}

TEST(Scan, IntegerBeyond32BitsIsTheNearest) {
    ExpectScan<>(F_ReadInteger, "-2147483648", 0, SOutcome<INT32>{INT_MIN, 11, 0, ""});
    ExpectScan<>(F_ReadInteger, "-99999999999", 0, SOutcome<INT32>{INT_MIN, 12, 0, ""});
    ExpectScan<>(F_ReadInteger, "99999999999999999999999999", 0, SOutcome<INT32>{INT_MAX, 26, 0, ""});
}

TEST(Scan, StringSkipsWhatIsNotOfItsClass) {
    ExpectScan<>(ReadName, "  abc=1", 0, SOutcome<GString>{"abc", 5, 0, ""});
    ExpectScan<>(ReadName, "=;[_a1\n", 0, SOutcome<GString>{"_a1", 6, 0, ""});
    ExpectScan<>(ReadName, "end", 1, SOutcome<GString>{"nd", 3, 0, ""});
    ExpectScan<>(ReadName, "a \t=\r", 1, SOutcome<GString>{"", 5, 1, STRING_AT_END});
    ExpectScan<>(ReadName, "", 0, SOutcome<GString>{"", 0, 1, STRING_AT_END});
    ExpectScan<>(ReadName, "a", 2, SOutcome<GString>{"", 2, 1, "F_ReadString: String not found\n"});
    ExpectScan<>(ReadName, "a", -9, SOutcome<GString>{"a", 1, 0, ""});
}

TEST(Scan, ClassesTakeEveryByte) {
    // In the locale "C" nothing above 127 is of any class.
    std::string Alpha, Name, Printable;
    for (int Code = -128; Code < 256; ++Code) {
        const char c = static_cast<char>(Code);
        if (Code >= 0 && Code < 128) {
            Alpha += F_IsAlpha(c) ? std::string(1, c) : "";
            Name += F_IsName(c) ? std::string(1, c) : "";
            Printable += F_IsPrintable(c) ? std::string(1, c) : "";
        } else {
            EXPECT_FALSE(F_IsAlpha(c) || F_IsName(c) || F_IsPrintable(c)) << Code;
        }
    }
    const std::string Digits = "0123456789";
    const std::string Upper = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    const std::string Lower = "abcdefghijklmnopqrstuvwxyz";
    EXPECT_EQ(Alpha, Upper + Lower);
    EXPECT_EQ(Name, Digits + Upper + "_" + Lower);
    EXPECT_EQ(Printable, "!\"#$%&'()*+,-./" + Digits + ":;<=>?@" + Upper + "[\\]^_`" + Lower + "{|}~");
}

TEST(Scan, ClassThatTakesBlanksStillStopsAtThem) {
    const auto ReadAny = [](INT32& Pos, const GString& Text) {
        return F_ReadString(Pos, Text, [](char) { return true; });
    };
    ExpectScan<>(ReadAny, " a\rb c", 0, SOutcome<GString>{"a\rb", 4, 0, ""});
}

TEST(Scan, CheckCharMovesOnlyOverTheWantedOne) {
    const auto CheckEquals = [](INT32& Pos, const GString& Text) { return F_CheckChar(Pos, Text, '='); };
    const std::string AtEnd = "F_CheckChar: Char not found, reached end of string\n";
    ExpectScan<>(CheckEquals, "a=b", 1, SOutcome<int>{1, 2, 0, ""});
    ExpectScan<>(CheckEquals, "a=b", 0,
                 SOutcome<int>{0, 0, 1, "F_CheckChar: Right char not found, got this instead: a\n"});
    ExpectScan<>(CheckEquals, "a", 1, SOutcome<int>{0, 1, 1, AtEnd});
    ExpectScan<>(CheckEquals, "a", INT_MAX, SOutcome<int>{0, INT_MAX, 1, AtEnd});
    ExpectScan<>(CheckEquals, "", 0, SOutcome<int>{0, 0, 1, AtEnd});
}

TEST(Scan, VectorsHaveSemicolonsBetween) {
    const GString Text = "1;-2.5;3;4 x";
    INT32 Pos = 0;
    EXPECT_EQ(F_ReadVec2(Pos, Text), (Vec2{1, -2.5f}));
    EXPECT_EQ(Pos, 6);
    Pos = 0;
    EXPECT_EQ(F_ReadVec3(Pos, Text), (Vec3{1, -2.5f, 3}));
    Pos = 0;
    EXPECT_EQ(F_ReadVec4(Pos, Text), (Vec4{1, -2.5f, 3, 4}));
    EXPECT_EQ(Pos, 10);
    EXPECT_EQ(F_Error, 0u);
}

TEST(Scan, VectorGoesOnBehindAMissingSemicolon) {
    Vec3 v;
    INT32 Pos = 0;
    const std::string Printed = PrintedBy([&] { v = F_ReadVec3(Pos, "1 2;x"); });
    EXPECT_EQ(v, (Vec3{1, 2, F_BAD_FLOAT}));
    EXPECT_EQ(Printed, "F_CheckChar: Right char not found, got this instead:  \n"
                       "F_ReadFloat: Unexpected character found: x\n");
    EXPECT_EQ(Pos, 4);
}

TEST(Scan, SkipBlanksTakesCarriageReturnsToo) {
    INT32 Pos = 1;
    EXPECT_EQ(F_SkipBlanks(Pos, "a \t\r\n b"), 1);
    EXPECT_EQ(Pos, 6);
    EXPECT_EQ(F_SkipBlanks(Pos, "a \t\r\n   "), 1);
    EXPECT_EQ(Pos, 8);
    for (const INT32 Start : {8, 100, INT_MAX}) {
        Pos = Start;
        EXPECT_EQ(F_SkipBlanks(Pos, "a \t\r\n   "), 1);
        EXPECT_EQ(Pos, Start);
    }
}

TEST(Scan, SkipLineStandsBehindTheLineFeedOrAtTheEnd) {
    const GString Text = "ab\ncd\n\ne";
    struct {
        INT32 From, To;
        int Found;
    } const Cases[] = {{0, 3, 1}, {2, 3, 1}, {3, 6, 1}, {6, 7, 1}, {7, 8, 0}, {8, 8, 0}, {99, 99, 0}, {-1, 3, 1}};
    for (const auto& Case : Cases) {
        INT32 Pos = Case.From;
        EXPECT_EQ(F_SkipLine(Pos, Text), Case.Found) << Case.From;
        EXPECT_EQ(Pos, Case.To) << Case.From;
    }
}

TEST(Scan, PrevLineRestsInFrontOfTheLineFeed) {
    const GString Text = "ab\ncd\n\ne";
    struct {
        INT32 From, To;
        int Found;
    } const Cases[] = {{8, 6, 1},  {7, 6, 1},  {6, 5, 1},   {5, 2, 1},    {4, 2, 1}, {3, 2, 1},
                       {2, -1, 0}, {0, -1, 0}, {-1, -1, 0}, {-50, -1, 0}, {99, 6, 1}};
    for (const auto& Case : Cases) {
        INT32 Pos = Case.From;
        EXPECT_EQ(F_PrevLine(Pos, Text), Case.Found) << Case.From;
        EXPECT_EQ(Pos, Case.To) << Case.From;
    }
}

TEST(Scan, PrevLineAndSkipLineLeadToTheBeginningOfTheLine) {
    const GString Text = "trunk r=1\n\tbranch n=2\n\n  leaf\n";
    for (INT32 Start = 10; Start <= static_cast<INT32>(Text.Length()); ++Start) {
        INT32 Expected = Start;
        while (Text.CStr()[Expected - 1] != '\n') {
            --Expected;
        }
        INT32 Pos = Start;
        ASSERT_EQ(F_PrevLine(Pos, Text), 1);
        F_SkipLine(Pos, Text);
        EXPECT_EQ(Pos, Expected);
    }
}

TEST(Scan, RestOfLineIsEmptyIfNothingButBlanksFollow) {
    const GString Text = "a \t\nb \r\n  ";
    const int Expected[] = {0, 1, 1, 1, 0, 0, 0, 1, 1, 1, 1};
    for (INT32 Pos = 0; Pos < 11; ++Pos) {
        EXPECT_EQ(F_RestOfLineEmpty(Pos, Text), Expected[Pos]) << Pos;
    }
    EXPECT_EQ(F_RestOfLineEmpty(INT_MAX, Text), 1);
    EXPECT_EQ(F_RestOfLineEmpty(-1, Text), 0);
}

TEST(Scan, ZeroBytesAreCharactersLikeOthers) {
    GString Text;
    Text.Append("a\0b\n7", 5);
    ExpectScan<>(ReadName, Text, 1, SOutcome<GString>{"b", 3, 0, ""});
    INT32 Pos = 0;
    EXPECT_EQ(F_SkipLine(Pos, Text), 1);
    EXPECT_EQ(F_ReadInteger(Pos, Text), 7);
    EXPECT_EQ(F_RestOfLineEmpty(1, Text), 0);
}

namespace {

// The reader of numbers as its rule is told, one character at a time: the slow form to compare with.
template <class TConvert>
auto ReadByTheRule(INT32& Pos, const std::string& Text, const std::string& Parts, bool Strict, std::string& Message,
                   TConvert Convert) {
    int Start = Pos - 1;
    while (Pos <= static_cast<INT32>(Text.size())) {
        const bool AtEnd = Pos == static_cast<INT32>(Text.size());
        const bool Collected = Start + 1 < Pos;
        if (AtEnd || Text[Pos] == ' ' || Text[Pos] == '\n' || Text[Pos] == '\t') {
            if (Collected) {
                break;
            }
            if (AtEnd) {
                Message = "reached end of string";
                return decltype(Convert("")){};
            }
            Start = Pos++;
        } else if (Parts.find(Text[Pos]) != std::string::npos) {
            ++Pos;
        } else if (!Strict && Collected) {
            break;
        } else {
            Message = std::string("Unexpected character found: ") + Text[Pos];
            return decltype(Convert("")){};
        }
    }
    return Convert(Text.substr(Start + 1, Pos - Start - 1).c_str());
}

// Draws texts that are mostly numbers and blanks, and compares value, place and message.
template <class TScan, class TConvert>
void ExpectTheRule(TScan Scan, const std::string& Parts, bool Strict, TConvert Convert) {
    CRandom Random;
    const std::string Letters = "01237.-,, \n\t;x\r";
    int Numbers = 0;
    for (int n = 0; n < 5000; ++n) {
        std::string Text;
        for (int i = Random.Whole(0, 9); i > 0; --i) {
            Text += Letters[Random.Whole(0, static_cast<int>(Letters.size()) - 1)];
        }
        const INT32 Start = Random.Whole(0, static_cast<int>(Text.size()));
        INT32 ExpectedPos = Start;
        std::string Message;
        const auto Expected = ReadByTheRule(ExpectedPos, Text, Parts, Strict, Message, Convert);
        INT32 Pos = Start;
        auto Value = Expected;
        const std::string Printed = PrintedBy([&] { Value = Scan(Pos, Text.c_str()); });
        SCOPED_TRACE(Text);
        ASSERT_EQ(Pos, ExpectedPos);
        ASSERT_EQ(F_Error, !Message.empty());
        if (Message.empty()) {
            ASSERT_EQ(Value, Expected);
            ASSERT_EQ(Printed, "");
            ++Numbers;
        } else {
            ASSERT_NE(Printed.find(Message + "\n"), std::string::npos) << Printed;
        }
    }
    EXPECT_GT(Numbers, 500);
}

float ToFloat(const char* Text) {
    return std::strtof(Text, nullptr);
}

INT32 ToInteger(const char* Text) {
    return std::atoi(Text);
}

} // namespace

TEST(Scan, NumbersFollowTheRuleOnRandomTexts) {
    ExpectTheRule(ReadStrict, "0123456789.,-", true, ToFloat);
    ExpectTheRule(ReadLoose, "0123456789.,-", false, ToFloat);
    ExpectTheRule(F_ReadInteger, "0123456789-", true, ToInteger);
}
