#include "foundation/GTemplate.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>

namespace {

bool IsInline(const GString& Text) {
    return Text.Cur == Text.Inline;
}

// Arguments may be parts of the string itself. OnHeap: a string that was once too long stays there until cleared.
TEST(GStringTest, RandomOperationsMatchAStandardString) {
    std::mt19937 Random(3);
    GString Text;
    std::string Expected;
    bool OnHeap = false;
    for (int Step = 0; Step < 20000; ++Step) {
        const std::string Other(Random() % (Random() % 2 ? 7 : 60), static_cast<char>('a' + Step % 26));
        const UINT32 At = Random() % (Text.Length() + 1);
        const UINT32 Size = Random() % (Text.Length() - At + 1);
        const UINT32 Operation = Random() % 12;
        if (Operation == 0) {
            Text += Other.c_str();
            Expected += Other;
        } else if (Operation == 1) {
            Text += GString(Other.c_str());
            Expected += Other;
        } else if (Operation == 2) {
            Text = Other.c_str();
            Expected = Other;
        } else if (Operation == 3) {
            Text.InsertChar(At, 'X');
            Expected.insert(At, 1, 'X');
        } else if (Operation == 4) {
            Text.Left(At);
            Expected.resize(At);
        } else if (Operation == 5) {
            Text.Assign(Text, At, Size);
            Expected = Expected.substr(At, Size);
        } else if (Operation == 6) {
            Text = Text.CStr() + At;
            Expected = Expected.substr(At);
        } else if (Operation == 7 && Text.Length() < 300) {
            Text += Text;
            Expected += Expected;
        } else if (Operation == 8 && Text.Length() < 300) {
            Text += Text.CStr() + At;
            Expected += Expected.substr(At);
        } else if (Operation == 9) {
            const UINT32 Cut = Random() % (Step % 2 ? 32 : 400);
            Text.Format(Cut, "<%s-%d", Text.CStr(), 12);
            Expected = ("<" + Expected + "-12").substr(0, Cut);
            OnHeap |= Cut >= GString::INLINE_SIZE;
        } else if (Operation == 10) {
            const GString Copy = Text;
            ASSERT_EQ(IsInline(Copy), Expected.size() < GString::INLINE_SIZE);
            Text = GString("other");
            Text = Copy;
        } else if (Operation == 11 && Step % 4 == 0) {
            Text.Clear();
            Expected.clear();
            OnHeap = false;
        }
        OnHeap |= Expected.size() >= GString::INLINE_SIZE;
        ASSERT_EQ(std::string(Text.CStr(), Text.Length()), Expected);
        ASSERT_EQ(Text.CStr()[Text.count], 0);
        ASSERT_EQ(IsInline(Text), !OnHeap);
        ASSERT_EQ(Text.Cur, OnHeap ? Text.Data : Text.Inline);
        ASSERT_TRUE(OnHeap ? Text.Capacity > Text.count : Text.Capacity == 0);
    }
}

TEST(GStringTest, ThirtyOneCharactersAreInlineAndThirtyTwoAreNot) {
    GString Text(std::string(31, 'a').c_str());
    EXPECT_TRUE(IsInline(Text));
    EXPECT_FALSE(IsInline(GString(std::string(32, 'a').c_str())));
    Text.InsertChar(5, 'X');
    EXPECT_FALSE(IsInline(Text));
    EXPECT_EQ(Text, (std::string(5, 'a') + 'X' + std::string(26, 'a')).c_str());
}

TEST(GStringTest, ReserveDoublesOrTakesMoreAndKeepsTheText) {
    GString Text("slope");
    for (const auto& [Wanted, Capacity] : {std::pair{40u, 40u}, {41u, 80u}, {2u, 80u}, {200u, 200u}}) {
        Text.Reserve(Wanted);
        EXPECT_EQ(Text.Capacity, Capacity);
        EXPECT_EQ(Text, "slope");
    }
}

// Texts of few characters, alike at the start, with zeros, which end a comparison, and bytes above 127 among them.
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
        const auto& [A, B] = Texts;
        const int Order = Sign(std::strcmp(A.CStr(), B.CStr()));
        ASSERT_EQ(Sign(A.Compare(B)), Order);
        ASSERT_TRUE((A < B) == (Order < 0) && (A > B.CStr()) == (Order > 0));
        ASSERT_TRUE((A == B) == (Order == 0) && (A != B.CStr()) == (Order != 0));
        ASSERT_TRUE(Order != 0 || std::hash<GString>()(A) == std::hash<GString>()(B));
        ASSERT_EQ(GString(A).Length(), A.Length()) << "copies go beyond zeros";
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

TEST(GStringDeathTest, ChecksIndicesAndRanges) {
    GString Text("abc");
    EXPECT_DEATH(Text[3], "Assertion failed: at < count, file GTemplate");
    EXPECT_DEATH(Text.InsertChar(4, 'x'), "Assertion failed: af <= count, file GTemplate");
    const char* Range =
        "Assertion failed: off < count \\+ 1 && size < count \\+ 1 && off \\+ size < count \\+ 1, file GTemplate";
    EXPECT_DEATH(Text.Left(4), Range);
    for (const auto& [Offset, Size] : {std::pair{4u, 0u}, {2u, 2u}, {2u, 0xFFFFFFFFu}}) {
        EXPECT_DEATH(GString().Assign(Text, Offset, Size), Range);
    }
}

} // namespace
