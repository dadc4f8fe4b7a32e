// Blocks that this program takes with new: how many so far, and how many it holds now. Both stay 0 under the address
// sanitizer, whose leak checker knows better.
#pragma once

#include "foundation/Types.h"

extern UINT64 GAllocations;
extern INT64 GLiveBlocks;
