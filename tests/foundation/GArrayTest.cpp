#include "foundation/GTemplate.h"
#include "support/Counted.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

using GArrayTest = CountedTest;

// Values may be elements of the array itself. Room follows the rules of the capacity.
TEST_F(GArrayTest, RandomOperationsMatchAVector) {
    std::mt19937 Random(7);
    GArray<SCounted> Array;
    std::vector<int> Expected;
    UINT32 Room = 0;
    for (int Step = 0; Step < 8000; ++Step) {
        const UINT32 Size = Array.Size();
        const UINT32 At = Random() % (Size + 1);
        const UINT32 Wanted = Random() % 50;
        const SCounted Fresh(static_cast<int>(Random()));
        const SCounted& Value = Size > 0 && Random() % 2 ? Array[Random() % Size] : Fresh;
        const int Number = Value.Value;
        const SCounted* Buffer = Array.Data;
        const UINT32 OldRoom = Room;
        const UINT32 Operation = Random() % 64;
        if (Operation < 32) {
            Room = Size < Room ? Room : Room ? Room * 2 : 1;
            Operation < 16 ? Array.Insert(At, Value) : Array.Add(Value);
            Expected.insert(Operation < 16 ? Expected.begin() + At : Expected.end(), Number);
        } else if (Operation < 42 && At < Size) {
            const UINT32 To = At + Random() % (Size - At);
            Array.Remove(At, To);
            Expected.erase(Expected.begin() + At, Expected.begin() + To + 1);
        } else if (Operation < 48) {
            Array.Resize(Wanted);
            Expected.resize(Wanted);
            Room = std::max(Room, Wanted);
        } else if (Operation < 54) {
            Array.Reserve(Wanted);
            Room = std::max(Room, Wanted);
        } else if (Operation < 62) {
            GArray<SCounted> Other = Array;
            Other.Resize(Wanted);
            Array = Operation < 60 ? Other : Array;
            Expected.resize(Array.Size());
            Room = std::max(Room, Array.Size());
        } else {
            Array.Clear();
            Expected.clear();
            Room = 0;
        }
        ASSERT_EQ(Array.Capacity, Room);
        ASSERT_EQ(Array.Data == Buffer, Room == OldRoom);
        ASSERT_EQ(Array.Size(), Expected.size());
        for (UINT32 i = 0; i < Array.Size(); ++i) {
            ASSERT_EQ(Array[i].Value, Expected[i]) << "at " << i;
        }
        ASSERT_EQ(SCounted::Alive, 1 + static_cast<int>(Array.Size())) << "unused capacity holds no objects";
    }
}

TEST_F(GArrayTest, TakesTheChildrenOfOneOfItsElements) {
    struct STree {
        GArray<STree> Children;
        SCounted Number;
    };
    STree Root;
    Root.Children.Resize(1);
    Root.Children[0].Children.Resize(3);
    Root.Children[0].Children[2].Number.Value = 9;
    Root.Children = Root.Children[0].Children;
    ASSERT_EQ(Root.Children.Size(), 3u);
    EXPECT_EQ(Root.Children[2].Number.Value, 9);
}

TEST_F(GArrayTest, HugeArrayOfListsReadsAsEmptyWithoutBeingWritten) {
    GArray<GList<int>> Lists;
    Lists.Resize(8000000);
    const std::uintptr_t Page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const std::uintptr_t First = reinterpret_cast<std::uintptr_t>(Lists.begin()) / Page * Page;
    std::vector<unsigned char> Pages((reinterpret_cast<std::uintptr_t>(Lists.end()) - First + Page - 1) / Page);
    ASSERT_EQ(mincore(reinterpret_cast<void*>(First), Pages.size() * Page, Pages.data()), 0);
    std::size_t Resident = 0;
    for (const unsigned char Flags : Pages) {
        Resident += Flags & 1 ? Page : 0;
    }
    EXPECT_LT(Resident, 20000000u);
    for (UINT32 At = 0; At < Lists.Size(); At += 99991) {
        EXPECT_TRUE(!Lists[At].first && !Lists[At].last && Lists[At].count == 0);
    }
    Lists[7999999].Append(3);
    EXPECT_EQ(Lists[7999999].first->obj, 3);
    Lists[7999999].Clear();
    Lists.FreeEmpty();
    EXPECT_EQ(Lists.Data, nullptr);
    EXPECT_EQ(Lists.Size(), 0u);
}

TEST_F(GArrayTest, ListsThatGrowIntoUsedRoomAreEmpty) {
    GArray<GList<SCounted>> Lists;
    Lists.Resize(4);
    Lists[3].Append(1);
    Lists.Resize(2);
    EXPECT_EQ(SCounted::Alive, 0);
    Lists.Resize(4);
    EXPECT_EQ(Lists[3].first, nullptr);
    Lists[1].Append(2);
    Lists.Resize(9);
    EXPECT_EQ(Lists[1].first->obj.Value, 2);
    EXPECT_EQ(Lists[8].count, 0u);
}

TEST(GArrayDeathTest, ChecksIndicesAndRanges) {
    GArray<int> Array;
    Array.Resize(3);
    EXPECT_DEATH(Array[3], "Assertion failed: at < count, file GTemplate, line");
    EXPECT_DEATH(std::as_const(Array)[3], "Assertion failed: at < count, file GTemplate");
    const char* Range = "Assertion failed: from < count && to < count && from <= to, file GTemplate";
    EXPECT_DEATH(Array.Remove(3, 3), Range);
    EXPECT_DEATH(Array.Remove(0, 3), Range);
    EXPECT_DEATH(Array.Remove(2, 1), Range);
}

} // namespace
