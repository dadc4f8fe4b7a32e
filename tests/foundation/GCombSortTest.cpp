#include "foundation/GTemplate.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <vector>

namespace {

TEST(GCombSortTest, SortsRangesOfAnySize) {
    std::mt19937 Random(8);
    for (UINT32 Count = 0; Count < 300; ++Count) {
        GArray<int> Array;
        for (UINT32 i = 0; i < Count; ++i) {
            Array.Add(static_cast<int>(Random() % (Count % 3 ? 1000 : 4)));
        }
        std::vector<int> Expected(Array.begin(), Array.end());
        const UINT32 From = Random() % (Count + 1);
        const UINT32 To = From + Random() % (Count - From + 1);
        GCombSort(GArrayIterator<int>(Array, From), GArrayIterator<int>(Array, To), std::greater<int>());
        std::sort(Expected.begin() + From, Expected.begin() + To);
        ASSERT_EQ(std::vector<int>(Array.begin(), Array.end()), Expected);
    }
}

// The distances of the elements compared decide where equal elements end up. Nothing moves in a sorted array.
TEST(GCombSortTest, GapShrinksByItsFactor) {
    GArray<int> Array;
    for (int i = 0; i < 100; ++i) {
        Array.Add(i);
    }
    std::vector<int> Gaps = {100};
    GCombSort(Array, [&Gaps](int Lower, int Upper) {
        if (Gaps.back() != Upper - Lower) {
            Gaps.push_back(Upper - Lower);
        }
        return false;
    });
    EXPECT_EQ(Gaps, (std::vector<int>{100, 80, 64, 51, 40, 32, 25, 20, 16, 12, 9, 7, 5, 4, 3, 2, 1}));
}

TEST(GCombSortDeathTest, ChecksThatBothEndsBelongToOneArray) {
    GArray<int> A, B;
    const GArrayIterator<int> First(A, 0), Last(B, 0);
    EXPECT_DEATH(GCombSort(First, Last, std::greater<int>()), "Assertion failed: cnt == other.cnt, file GTemplate");
    EXPECT_DEATH(static_cast<void>(First == Last), "cnt == other.cnt");
}

} // namespace
