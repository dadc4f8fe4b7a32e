#include "world/AllocationCount.h"

#include <cstdlib>
#include <new>

UINT64 GAllocations = 0;

void* operator new(std::size_t Size) {
    ++GAllocations;
    if (void* Memory = std::malloc(Size ? Size : 1)) {
        return Memory;
    }
    std::abort();
}
void* operator new[](std::size_t Size) {
    return operator new(Size);
}
void operator delete(void* Memory) noexcept {
    std::free(Memory);
}
void operator delete(void* Memory, std::size_t) noexcept {
    std::free(Memory);
}
void operator delete[](void* Memory) noexcept {
    std::free(Memory);
}
void operator delete[](void* Memory, std::size_t) noexcept {
    std::free(Memory);
}
