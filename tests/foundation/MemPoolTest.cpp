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

    char* Bytes() { return reinterpret_cast<char*>(Pool->Base); }

    UINT32 WordAt(UINT32 Offset) {
        UINT32 Word;
        std::memcpy(&Word, Bytes() + Offset, 4);
        return Word;
    }
    void SetWordAt(UINT32 Offset, UINT32 Word) { std::memcpy(Bytes() + Offset, &Word, 4); }

    // Cuts the front of the block at Offset off as a used one that holds Data; the result is the place of the free
    // rest.
    UINT32 Use(UINT32 Offset, const std::string& Data) {
        const UINT32 Size = static_cast<UINT32>(Data.size());
        const UINT32 Rest = Offset + 8 + Size;
        SetWordAt(Rest, WordAt(Offset) - Size - 8);
        SetWordAt(Rest + 4, 0);
        SetWordAt(Offset, Size | MEM_BLOCK_USED);
        std::memcpy(Bytes() + Offset + 8, Data.data(), Size);
        Pool->LastBlock = reinterpret_cast<SMemBlock*>(Bytes() + Rest);
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
    const UINT32 Second = Use(0, "seven b");
    Use(Use(Second, "freed again"), Long);
    SetWordAt(Second, WordAt(Second) & ~MEM_BLOCK_USED);
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
    const UINT32 Second = Use(0, "good");
    Use(Second, "bad");
    std::string Printed;
    // The second header stands behind 12 bytes, so 65516 would just fit.
    for (const UINT32 Size : {0x7FFFFFFFu, 65536u, 65517u}) {
        SetWordAt(Second, Size | MEM_BLOCK_USED);
        EXPECT_EQ(Dump(Printed), 1) << Size;
    }
}

TEST_F(MemPool, WithoutAnArenaThereIsNothingToDump) {
    SMemPool Empty = {};
    EXPECT_EQ(PrintedBy([&] { EXPECT_EQ(MemPoolDump(&Empty), 0); }), HEAD);
}
