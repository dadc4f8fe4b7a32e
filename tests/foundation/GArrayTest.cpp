#include "foundation/GTemplate.h"
#include "support/Counted.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

namespace {

class GArrayTest : public testing::Test {
protected:
    void SetUp() override { SCounted::Alive = SCounted::Misused = 0; }
    void TearDown() override {
        EXPECT_EQ(SCounted::Alive, 0);
        EXPECT_EQ(SCounted::Misused, 0);
    }

    static void ExpectEqual(const GArray<SCounted>& Array, const std::vector<int>& Expected) {
        ASSERT_EQ(Array.Size(), Expected.size());
        ASSERT_GE(Array.Capacity, Array.Size());
        for (UINT32 i = 0; i < Array.Size(); ++i) {
            ASSERT_EQ(Array[i].Value, Expected[i]) << "at " << i;
        }
    }

    static GArray<SCounted> Numbers(int Count) {
        GArray<SCounted> Array;
        for (int i = 0; i < Count; ++i) {
            Array.Add(i);
        }
        return Array;
    }
};

TEST_F(GArrayTest, RandomOperationsMatchAVector) {
    std::mt19937 Random(7);
    GArray<SCounted> Array;
    std::vector<int> Expected;
    for (int Step = 0; Step < 4000; ++Step) {
        const int Value = static_cast<int>(Random());
        const UINT32 Size = Array.Size();
        const UINT32 At = Random() % (Size + 1);
        switch (Random() % 7) {
        case 0:
            Array.Add(Value);
            Expected.push_back(Value);
            break;
        case 1:
            Array.Insert(At, Value);
            Expected.insert(Expected.begin() + At, Value);
            break;
        case 2:
            if (At < Size) {
                const UINT32 To = At + Random() % (Size - At);
                Array.Remove(At, To);
                Expected.erase(Expected.begin() + At, Expected.begin() + To + 1);
            }
            break;
        case 3:
            Array.Resize(Random() % 40);
            Expected.resize(Array.Size());
            break;
        case 4:
            Array.Reserve(Random() % 60);
            break;
        case 5: {
            const GArray<SCounted> Other = Numbers(static_cast<int>(Random() % 30));
            Array = Other;
            Expected.assign(Other.Size(), 0);
            for (UINT32 i = 0; i < Other.Size(); ++i) {
                Expected[i] = static_cast<int>(i);
            }
            break;
        }
        default:
            if (Random() % 10 == 0) {
                Array.Clear();
                Expected.clear();
            }
        }
        ExpectEqual(Array, Expected);
        ASSERT_EQ(SCounted::Alive, static_cast<int>(Array.Size())) << "unused capacity holds no objects";
    }
}

TEST_F(GArrayTest, CapacityDoublesWhenElementsAreAddedOneByOne) {
    GArray<SCounted> Array;
    std::vector<UINT32> Seen = {Array.Capacity};
    for (int i = 0; i < 9; ++i) {
        Array.Add(i);
        if (Array.Capacity != Seen.back()) {
            Seen.push_back(Array.Capacity);
        }
    }
    EXPECT_EQ(Seen, (std::vector<UINT32>{0, 1, 2, 4, 8, 16}));
}

TEST_F(GArrayTest, ReserveAndResizeTakeTheNumberExactly) {
    GArray<SCounted> Array = Numbers(3);
    Array.Reserve(11);
    EXPECT_EQ(Array.Capacity, 11u);
    Array.Resize(13);
    EXPECT_EQ(Array.Capacity, 13u);
    Array.Reserve(5);
    EXPECT_EQ(Array.Capacity, 13u);
    Array.Add(1);
    EXPECT_EQ(Array.Capacity, 26u);
}

TEST_F(GArrayTest, AssignmentKeepsABufferThatIsBigEnough) {
    GArray<SCounted> Array = Numbers(8);
    const SCounted* Buffer = Array.Data;
    Array = Numbers(3);
    EXPECT_EQ(Array.Data, Buffer);
    EXPECT_EQ(Array.Capacity, 8u);
    ExpectEqual(Array, {0, 1, 2});
}

TEST_F(GArrayTest, TakesItsOwnElementsAsArguments) {
    for (const UINT32 Room : {4u, 16u}) { // full, and with room left
        GArray<SCounted> Array = Numbers(4);
        Array.Reserve(Room);
        Array.Add(Array[2]);
        Array.Insert(0, Array[3]);
        Array.Insert(1, Array[0]);
        Array.Insert(3, Array[4]);
        ExpectEqual(Array, {3, 3, 0, 2, 1, 2, 3, 2});
    }
}

TEST_F(GArrayTest, SelfAssignmentChangesNothing) {
    GArray<SCounted> Array = Numbers(5);
    const GArray<SCounted>& Same = Array;
    Array = Same;
    ExpectEqual(Array, {0, 1, 2, 3, 4});
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

TEST_F(GArrayTest, ClearGivesEverythingBack) {
    GArray<SCounted> Array = Numbers(5);
    Array.Clear();
    EXPECT_EQ(Array.Data, nullptr);
    EXPECT_EQ(Array.Capacity, 0u);
    EXPECT_EQ(Array.count, 0u);
}

TEST_F(GArrayTest, ResizedNumbersAreZero) {
    GArray<int> Array;
    Array.Add(5);
    Array.Resize(3);
    EXPECT_EQ(Array[0], 5);
    EXPECT_EQ(Array[1], 0);
    EXPECT_EQ(Array[2], 0);
}

// Bytes of a stretch of memory that lie in real memory.
std::size_t ResidentBytes(const void* Start, std::size_t Bytes) {
    const std::size_t Page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::uintptr_t First = reinterpret_cast<std::uintptr_t>(Start) / Page * Page;
    std::vector<unsigned char> Pages((reinterpret_cast<std::uintptr_t>(Start) + Bytes - First + Page - 1) / Page);
    EXPECT_EQ(mincore(reinterpret_cast<void*>(First), Pages.size() * Page, Pages.data()), 0);
    std::size_t Resident = 0;
    for (const unsigned char Flags : Pages) {
        Resident += Flags & 1 ? Page : 0;
    }
    return Resident;
}

TEST_F(GArrayTest, HugeArrayOfListsReadsAsEmptyWithoutBeingWritten) {
    GArray<GList<int>> Lists;
    Lists.Resize(8000000);
    EXPECT_LT(ResidentBytes(Lists.Data, Lists.Size() * sizeof(GList<int>)), 20000000u);
    for (UINT32 At = 0; At < Lists.Size(); At += 99991) {
        EXPECT_EQ(Lists[At].first, nullptr);
        EXPECT_EQ(Lists[At].last, nullptr);
        EXPECT_EQ(Lists[At].count, 0u);
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

using GArrayDeathTest = GArrayTest;

TEST_F(GArrayDeathTest, ChecksIndices) {
    GArray<int> Array;
    EXPECT_DEATH(Array[0], "Assertion failed: at < count, file GTemplate, line");
    Array.Add(1);
    const GArray<int>& Const = Array;
    EXPECT_DEATH(Const[1], "at < count, file GTemplate");
}

TEST_F(GArrayDeathTest, ChecksRangesToRemove) {
    GArray<int> Array;
    Array.Resize(3);
    const char* Text = "Assertion failed: from < count && to < count && from <= to, file GTemplate";
    EXPECT_DEATH(Array.Remove(3, 3), Text);
    EXPECT_DEATH(Array.Remove(0, 3), Text);
    EXPECT_DEATH(Array.Remove(2, 1), Text);
    Array.Remove(2, 2);
    EXPECT_EQ(Array.Size(), 2u);
}

} // namespace
