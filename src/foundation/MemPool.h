// SMemPool: an arena with a list of blocks that a dump at shut-down can tell apart as free or used.
//
// A block is an SMemBlock with its data behind it; the next block follows at once. Nothing in the program takes memory
// from the pool: it is for code that wants tracked blocks, and no leak detector for the ordinary heap.
// Lifetime: MemPoolCreate allocates arena and pool, MemPoolFree frees both. GMemPool is the program's one pool: the
// start-up creates it, the shut-down dumps and frees it, and it is null outside of that.
// Units: bytes. Cost: a dump walks the list. Bad input: without memory for the arena Size is 0 and the list is empty;
// a dump stops where a block would reach beyond the arena.
#pragma once

#include "foundation/Types.h"

constexpr UINT32 MEM_POOL_SIZE = 0x10000;
constexpr UINT32 MEM_BLOCK_USED = 0x80000000;

struct SMemBlock {
    UINT32 SizeAndUse; // bytes of data behind the header; MEM_BLOCK_USED is set while the block is in use
    UINT32 Reserved;   // zero
};
static_assert(sizeof(SMemBlock) == 8);

struct SMemPool {
    UINT32 Size;
    SMemBlock* LastBlock;
    SMemBlock* Base;
    SMemBlock* Rover; // where a search for free space begins
    UINT32 Lists[15];
};

extern SMemPool* GMemPool;

SMemPool* MemPoolCreate();
void MemPoolFree(SMemPool* Pool);

// Logs every used block with up to 32 bytes of its data; the result is their number.
int MemPoolDump(const SMemPool* Pool);
