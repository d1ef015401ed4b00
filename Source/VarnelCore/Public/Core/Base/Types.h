#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

using int8 = std::int8_t;
using int16 = std::int16_t;
using int32 = std::int32_t;
using int64 = std::int64_t;
using uint8 = std::uint8_t;
using uint16 = std::uint16_t;
using uint32 = std::uint32_t;
using uint64 = std::uint64_t;

template <class T>
using TOptional = std::optional<T>;

constexpr int32 INDEX_NONE = -1;

/** Whether text is compared exactly or by simple case folding, code point by code point. */
enum class ESearchCase : uint8
{
	CaseSensitive,
	IgnoreCase,
};
