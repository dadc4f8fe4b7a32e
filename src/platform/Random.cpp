#include "platform/Platform.h"

static std::uint32_t GRandomState = 1;

int PlatRand() {
    GRandomState = GRandomState * 214013u + 2531011u;
    return static_cast<int>((GRandomState >> 16) & PLAT_RAND_MAX);
}

void PlatSeedRand(std::uint32_t Seed) {
    GRandomState = Seed;
}
