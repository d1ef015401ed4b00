#pragma once

#include "Core/Base/SeededHash.h"
#include "Core/Text/String.h"

#include <vector>

/**
 * Positions of members by their exact key: an open-addressing table whose slots hold a position + 1, or 0 where they are free.
 * The keys stay with the caller. The table's size is a power of two and it is never full.
 */
namespace JsonKeyIndex
{
/** Below this many members a scan is faster than the table, and no table is built. */
constexpr int32 MinMembers = 16;

/** Empties the table and makes it large enough for NumMembers, at most half full. Keeps its storage. */
void Reset(std::vector<uint32>& Slots, std::size_t NumMembers);

/** The slot that holds Key, or the free one where it belongs. KeyAt gives the key of a position. */
template <class TSlots, class TKeyAt>
auto& FindSlot(TSlots& Slots, FStringView Key, TKeyAt KeyAt)
{
	const std::size_t Mask = Slots.size() - 1;
	std::size_t At = SeededHash::HashBytes(Key) & Mask;
	while (Slots[At] != 0 && KeyAt(Slots[At] - 1) != Key)
		At = (At + 1) & Mask;
	return Slots[At];
}
}
