#include "foundation/MemPool.h"

#include "foundation/Diagnostics.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <new>

namespace {

constexpr UINT32 MAX_DUMPED_BYTES = 32;

// A copy of the header at an address: a block of odd size leaves the next one anywhere.
SMemBlock HeaderAt(const UINT8* Address) {
    SMemBlock Header;
    std::memcpy(&Header, Address, sizeof(Header));
    return Header;
}

// Whether a header or data lies in the arena: the headers are written by code that may be at fault.
bool Contains(const SMemPool* Pool, const UINT8* Address, UINT32 Bytes) {
    const UINT8* Begin = reinterpret_cast<const UINT8*>(Pool->Base);
    const UINT32 Offset = static_cast<UINT32>(Address - Begin);
    return Offset <= Pool->Size && Bytes <= Pool->Size - Offset;
}

void DumpBlock(int Number, const UINT8* Data, UINT32 Size) {
    // The whole address: the cast keeps what "%X" alone would cut on a machine with 64-bit addresses.
    LogPrintf("Used block %d: %d bytes @ 0x%lX\n", Number, static_cast<int>(Size),
              static_cast<unsigned long>(reinterpret_cast<std::uintptr_t>(Data)));
    LogPrintf("data(<32): ");
    for (UINT32 i = 0; i < std::min(Size, MAX_DUMPED_BYTES); ++i) {
        LogPrintf("%c", Data[i]);
    }
    LogPrintf("\n");
}

} // namespace

SMemPool* GMemPool = nullptr;

SMemPool* MemPoolCreate() {
    SMemPool* Pool = new SMemPool{};
    Pool->Base = static_cast<SMemBlock*>(::operator new(MEM_POOL_SIZE, std::nothrow));
    if (Pool->Base) {
        Pool->Size = MEM_POOL_SIZE;
        *Pool->Base = {MEM_POOL_SIZE - static_cast<UINT32>(sizeof(SMemBlock)), 0};
    }
    Pool->LastBlock = Pool->Base;
    Pool->Rover = Pool->Base;
    return Pool;
}

void MemPoolFree(SMemPool* Pool) {
    if (Pool) {
        ::operator delete(Pool->Base);
        delete Pool;
    }
}

int MemPoolDump(const SMemPool* Pool) {
    LogPrintf("Dumping memory leaks...\n");
    int Used = 0;
    const UINT8* At = reinterpret_cast<const UINT8*>(Pool->Base);
    const UINT8* Last = reinterpret_cast<const UINT8*>(Pool->LastBlock);
    while (Pool->Size && At <= Last && Contains(Pool, At, sizeof(SMemBlock))) {
        const SMemBlock Header = HeaderAt(At);
        const UINT8* Data = At + sizeof(SMemBlock);
        const UINT32 Size = Header.SizeAndUse & ~MEM_BLOCK_USED;
        if (!Contains(Pool, Data, Size)) {
            break;
        }
        if (Header.SizeAndUse & MEM_BLOCK_USED) {
            DumpBlock(++Used, Data, Size);
        }
        At = Data + Size;
    }
    return Used;
}
