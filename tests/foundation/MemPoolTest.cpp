#include "foundation/MemPool.h"
#include "support/Common.h"

namespace {

// A pool that the test cuts into blocks by hand, as code that tracks its memory would.
class MemPool : public testing::Test {
protected:
    ~MemPool() override { MemPoolFree(Pool); }

    // Writes a block and returns the place behind it. LastBlock is set to it.
    UINT32 Put(UINT32 Offset, UINT32 SizeAndUse, const std::string& Data) {
        const SMemBlock Header = {SizeAndUse, 0};
        std::memcpy(Bytes + Offset, &Header, 8);
        std::memcpy(Bytes + Offset + 8, Data.data(), Data.size());
        Pool->LastBlock = reinterpret_cast<SMemBlock*>(Bytes + Offset);
        return Offset + 8 + static_cast<UINT32>(Data.size());
    }
    void ExpectDump(int Used, const std::string& Lines) {
        EXPECT_EQ(PrintedBy([&] { EXPECT_EQ(MemPoolDump(Pool), Used); }), "Dumping memory leaks...\n" + Lines);
    }
    std::string Line(int Number, UINT32 Size, UINT32 Offset, const std::string& Shown) {
        char Text[128];
        std::snprintf(Text, sizeof(Text), "Used block %d: %u bytes @ 0x%llX\ndata(<32): ", Number, Size,
                      reinterpret_cast<unsigned long long>(Bytes + Offset));
        return Text + Shown + "\n";
    }

    SMemPool* Pool = MemPoolCreate();
    UINT8* Bytes = reinterpret_cast<UINT8*>(Pool->Base);
};

TEST_F(MemPool, StartsAsOneFreeBlockOfTheWholeArena) {
    EXPECT_TRUE(Pool->Size == 65536 && Pool->Base->SizeAndUse == 65528);
    EXPECT_TRUE(Pool->LastBlock == Pool->Base && Pool->Rover == Pool->Base);
    ExpectDump(0, "");
    Put(0, 65528 | MEM_BLOCK_USED, std::string(65528, '.'));
    ExpectDump(1, Line(1, 65528, 8, std::string(32, '.')));
    Pool->Size = 0; // as in a pool that got no arena
    ExpectDump(0, "");
}

TEST_F(MemPool, DumpTellsUsedBlocksAndTheirFirst32BytesUpToADamagedHeader) {
    const std::string Long = "0123456789abcdefghijklmnopqrstuvwxyz";
    const UINT32 Third = Put(Put(0, 7 | MEM_BLOCK_USED, "seven b"), 11, "freed again");
    const UINT32 Fourth = Put(Third, 36 | MEM_BLOCK_USED, Long);
    const std::string Expected = Line(1, 7, 8, "seven b") + Line(2, 36, Third + 8, Long.substr(0, 32));
    ExpectDump(2, Expected);
    // One more byte than there is behind the fourth header, and more.
    for (const UINT32 Size : {65536 - Fourth - 7, 65536u, 0x7FFFFFFFu}) {
        Put(Fourth, Size | MEM_BLOCK_USED, "bad");
        ExpectDump(2, Expected);
    }
}

} // namespace
