// How many blocks this program has taken with new so far.
#pragma once

#include "foundation/Types.h"

extern UINT64 GAllocations;
