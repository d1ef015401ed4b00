#include "Json/JsonKeyIndex.h"

#include <bit>

namespace JsonKeyIndex
{
void Reset(std::vector<uint32>& Slots, std::size_t NumMembers)
{
	Slots.assign(std::bit_ceil(NumMembers * 2 + 2), 0);
}
}
