// The integer types of the whole system.
#pragma once

#include <cstdint>

using UINT32 = std::uint32_t;
using INT32 = std::int32_t;
using INT64 = std::int64_t;
using UINT64 = std::uint64_t;
using UINT8 = std::uint8_t;
using UINT16 = std::uint16_t;
