#pragma once

#include <cstdint>

using uint8 = std::uint8_t;
using uint16 = std::uint16_t;
using uint32 = std::uint32_t;
using uint64 = std::uint64_t;

/** A run of consecutive indices, End not included. */
struct FRange
{
	uint32 Begin = 0;
	uint32 End = 0;

	uint32 Num() const { return End - Begin; }
};
