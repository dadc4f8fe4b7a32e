#include "support/AllocationCount.h"

#include <cstdlib>
#include <new>

UINT64 GAllocations = 0;
INT64 GLiveBlocks = 0;

// The address sanitizer has operators of its own, which match its malloc in the driver too; nothing is counted there.
#ifndef __SANITIZE_ADDRESS__

void* operator new(std::size_t Size) {
    ++GAllocations;
    ++GLiveBlocks;
    if (void* Memory = std::malloc(Size ? Size : 1)) {
        return Memory;
    }
    std::abort();
}
void operator delete(void* Memory) noexcept {
    GLiveBlocks -= Memory != nullptr;
    std::free(Memory);
}
void operator delete(void* Memory, std::size_t) noexcept {
    GLiveBlocks -= Memory != nullptr;
    std::free(Memory);
}

#endif
