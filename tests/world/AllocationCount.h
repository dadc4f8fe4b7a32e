// How many blocks this program has taken with new so far; always 0 under the address sanitizer.
#pragma once

#include "foundation/Types.h"

extern UINT64 GAllocations;
