#include "FoundationFixture.h"

#include "foundation/MemPool.h"

#include <cstdlib>
#include <cstring>

namespace {

const std::string HEAD = "Dumping memory leaks...\n";

// A pool that the test cuts into blocks by hand, as code that tracks its memory would.
class MemPool : public testing::Test {
protected:
    ~MemPool() override { MemPoolFree(Pool); }

    SMemBlock* BlockAt(UINT32 Offset) { return reinterpret_cast<SMemBlock*>(Bytes() + Offset); }
    char* Bytes() { return reinterpret_cast<char*>(Pool->Base); }

    // Cuts the front of a block off as a used one that holds Data; the result is the free rest.
    SMemBlock* Use(SMemBlock* Block, const std::string& Data) {
        const UINT32 Size = static_cast<UINT32>(Data.size());
        const UINT32 Whole = Block->SizeAndUse;
        SMemBlock* Rest = reinterpret_cast<SMemBlock*>(reinterpret_cast<char*>(Block + 1) + Size);
        *Rest = {Whole - Size - 8, 0};
        Block->SizeAndUse = Size | MEM_BLOCK_USED;
        std::memcpy(Block + 1, Data.data(), Size);
        Pool->LastBlock = Rest;
        return Rest;
    }

    std::string Address(UINT32 Offset) {
        char Text[32];
        std::snprintf(Text, sizeof(Text), "%llX", reinterpret_cast<unsigned long long>(Bytes() + Offset));
        return Text;
    }

    int Dump(std::string& Printed) {
        int Count = -1;
        Printed = PrintedBy([&] { Count = MemPoolDump(Pool); });
        return Count;
    }

    SMemPool* Pool = MemPoolCreate();
};

} // namespace

TEST_F(MemPool, StartsAsOneFreeBlock) {
    EXPECT_EQ(Pool->Size, 65536u);
    EXPECT_EQ(Pool->Base->SizeAndUse, 65528u);
    EXPECT_EQ(Pool->Base->Reserved, 0u);
    EXPECT_EQ(Pool->LastBlock, Pool->Base);
    EXPECT_EQ(Pool->Rover, Pool->Base);
    for (const UINT32 Word : Pool->Lists) {
        EXPECT_EQ(Word, 0u);
    }
}

TEST_F(MemPool, DumpOfAnUnusedPoolIsTheHeadLineOnly) {
    std::string Printed;
    EXPECT_EQ(Dump(Printed), 0);
    EXPECT_EQ(Printed, HEAD);
}

TEST_F(MemPool, DumpTellsUsedBlocksAndTheirFirst32Bytes) {
    const std::string Long = "0123456789abcdefghijklmnopqrstuvwxyz";
    SMemBlock* Second = Use(Pool->Base, "seven b");
    SMemBlock* Third = Use(Second, "freed again");
    Use(Third, Long);
    Second->SizeAndUse &= ~MEM_BLOCK_USED;
    std::string Printed;
    EXPECT_EQ(Dump(Printed), 2);
    EXPECT_EQ(Printed, HEAD + "Used block 1: 7 bytes @ 0x" + Address(8) + "\ndata(<32): seven b\n" +
                           "Used block 2: 36 bytes @ 0x" + Address(15 + 19 + 8) + "\ndata(<32): " + Long.substr(0, 32) +
                           "\n");
}

TEST_F(MemPool, DumpIncludesTheLastBlock) {
    Pool->Base->SizeAndUse |= MEM_BLOCK_USED;
    std::memset(Pool->Base + 1, '.', 65528);
    std::string Printed;
    EXPECT_EQ(Dump(Printed), 1);
    EXPECT_EQ(Printed,
              HEAD + "Used block 1: 65528 bytes @ 0x" + Address(8) + "\ndata(<32): " + std::string(32, '.') + "\n");
}

TEST_F(MemPool, DumpStopsAtADamagedHeader) {
    SMemBlock* Second = Use(Pool->Base, "good");
    Use(Second, "bad");
    std::string Printed;
    // The second header stands behind 12 bytes, so 65516 would just fit.
    for (const UINT32 Size : {0x7FFFFFFFu, 65536u, 65517u}) {
        Second->SizeAndUse = Size | MEM_BLOCK_USED;
        EXPECT_EQ(Dump(Printed), 1) << Size;
    }
}

TEST_F(MemPool, WithoutAnArenaThereIsNothingToDump) {
    SMemPool Empty = {};
    EXPECT_EQ(PrintedBy([&] { EXPECT_EQ(MemPoolDump(&Empty), 0); }), HEAD);
}
