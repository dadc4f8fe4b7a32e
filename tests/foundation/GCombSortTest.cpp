#include "foundation/GTemplate.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace {

constexpr auto GREATER = [](int Lower, int Upper) { return Lower > Upper; };

std::vector<int> RandomNumbers(std::mt19937& Random, UINT32 Count, UINT32 Range) {
    std::vector<int> Numbers(Count);
    for (int& Number : Numbers) {
        Number = static_cast<int>(Random() % Range);
    }
    return Numbers;
}

GArray<int> ArrayOf(const std::vector<int>& Numbers) {
    GArray<int> Array;
    for (const int Number : Numbers) {
        Array.Add(Number);
    }
    return Array;
}

TEST(GCombSortTest, SortsRangesOfAnySize) {
    std::mt19937 Random(8);
    for (UINT32 Count = 0; Count < 300; ++Count) {
        std::vector<int> Expected = RandomNumbers(Random, Count, Count % 3 ? 1000 : 4);
        GArray<int> Array = ArrayOf(Expected);
        const UINT32 From = Count ? Random() % Count : 0;
        const UINT32 To = From + (Count ? Random() % (Count - From + 1) : 0);
        GCombSort(GArrayIterator<int>(Array, From), GArrayIterator<int>(Array, To), GREATER);
        std::sort(Expected.begin() + From, Expected.begin() + To);
        ASSERT_EQ(std::vector<int>(Array.begin(), Array.end()), Expected);
    }
}

// The plain form of the algorithm on a plain array, which tells where equal elements end up.
std::vector<std::pair<int, int>> PlainCombSort(std::vector<std::pair<int, int>> Pairs) {
    int Gap = static_cast<int>(Pairs.size());
    bool Swapped = true;
    while (true) {
        if (Gap > 1) {
            Gap = static_cast<int>(Gap / 1.247330950103979);
        } else if (!Swapped) {
            return Pairs;
        }
        Swapped = false;
        for (std::size_t i = 0; i + Gap < Pairs.size(); ++i) {
            if (Pairs[i].first > Pairs[i + Gap].first) {
                std::swap(Pairs[i], Pairs[i + Gap]);
                Swapped = true;
            }
        }
    }
}

TEST(GCombSortTest, LeavesEqualElementsWhereTheShrinkFactorPutsThem) {
    std::mt19937 Random(9);
    std::vector<std::pair<int, int>> Pairs;
    GArray<std::pair<int, int>> Array;
    for (int i = 0; i < 500; ++i) {
        Pairs.emplace_back(static_cast<int>(Random() % 20), i);
        Array.Add(Pairs.back());
    }
    GCombSort(Array, [](const auto& Lower, const auto& Upper) { return Lower.first > Upper.first; });
    EXPECT_EQ((std::vector<std::pair<int, int>>(Array.begin(), Array.end())), PlainCombSort(Pairs));
}

TEST(GCombSortTest, SortsTexts) {
    GArray<GString> Names;
    for (const char* Name : {"tree", "rider", "a name that is too long to be kept inline", "board"}) {
        Names.Add(Name);
    }
    GCombSort(Names, [](const GString& Lower, const GString& Upper) { return Lower > Upper; });
    for (UINT32 i = 1; i < Names.Size(); ++i) {
        EXPECT_LT(Names[i - 1], Names[i]);
    }
}

TEST(GCombSortDeathTest, ChecksThatBothEndsBelongToOneArray) {
    GArray<int> A;
    GArray<int> B;
    EXPECT_DEATH(GCombSort(GArrayIterator<int>(A, 0), GArrayIterator<int>(B, 0), GREATER),
                 "Assertion failed: cnt == other.cnt, file GTemplate");
    EXPECT_DEATH(static_cast<void>(GArrayIterator<int>(A, 0) == GArrayIterator<int>(B, 0)), "cnt == other.cnt");
}

} // namespace
