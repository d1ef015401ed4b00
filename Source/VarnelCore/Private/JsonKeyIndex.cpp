#include "JsonKeyIndex.h"

#include <algorithm>
#include <bit>
#include <chrono>
#include <cstring>

namespace JsonKeyIndex
{
namespace
{
/** Both halves of the product, folded into one: every bit of the result depends on every bit of both factors. */
uint64 FoldedProduct(uint64 A, uint64 B)
{
	__extension__ using FWide = unsigned __int128;
	const FWide Product = static_cast<FWide>(A) * B;
	return static_cast<uint64>(Product) ^ static_cast<uint64>(Product >> 64);
}

uint64 MakeSeed()
{
	static const char Anchor = 0; // its address differs from run to run
	const auto Time = static_cast<uint64>(std::chrono::steady_clock::now().time_since_epoch().count());
	return FoldedProduct(Time ^ 0x9E3779B97F4A7C15ull, reinterpret_cast<std::uintptr_t>(&Anchor) ^ 0xD6E8FEB86659FD93ull) | 1;
}
}

uint64 HashKey(FStringView Key)
{
	static const uint64 Seed = MakeSeed();
	uint64 Hash = Seed ^ Key.size();
	for (std::size_t At = 0; At < Key.size(); At += 8)
	{
		uint64 Word = 0;
		std::memcpy(&Word, Key.data() + At, std::min<std::size_t>(8, Key.size() - At));
		Hash = FoldedProduct(Hash ^ Word, Seed ^ 0xA0761D6478BD642Full);
	}
	return Hash;
}

void Reset(std::vector<uint32>& Slots, std::size_t NumMembers)
{
	Slots.assign(std::bit_ceil(NumMembers * 2 + 2), 0);
}
}
