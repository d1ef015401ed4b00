#include "Core/Base/SeededHash.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <unistd.h>

namespace SeededHash
{
namespace
{
/** Both halves of the product, folded into one. */
uint64 FoldedProduct(uint64 A, uint64 B)
{
	__extension__ using FWide = unsigned __int128;
	const FWide Product = static_cast<FWide>(A) * B;
	return static_cast<uint64>(Product) ^ static_cast<uint64>(Product >> 64);
}

uint64 MakeSeed()
{
	uint64 Seed = 0;
	if (getentropy(&Seed, sizeof(Seed)) != 0)
		Seed = static_cast<uint64>(std::chrono::steady_clock::now().time_since_epoch().count()) * 0x9E3779B97F4A7C15;
	return Seed | 1;
}
}

uint64 GetHashSeed()
{
	static const uint64 Seed = MakeSeed();
	return Seed;
}

uint64 MixHash(uint64 A, uint64 B)
{
	const uint64 Seed = GetHashSeed();
	return FoldedProduct(A ^ Seed, FoldedProduct(B ^ 0xA0761D6478BD642F, Seed ^ 0xE7037ED1A0B428DB) ^ 0x8EBC6AF09C88C6E3);
}

uint64 HashBytes(std::string_view Bytes, uint64 Before)
{
	const uint64 Seed = GetHashSeed();
	uint64 Hash = Before ^ Seed ^ Bytes.size();
	for (std::size_t At = 0; At < Bytes.size(); At += 8)
	{
		uint64 Word = 0;
		std::memcpy(&Word, Bytes.data() + At, std::min<std::size_t>(8, Bytes.size() - At));
		Hash = FoldedProduct(Hash ^ Word, Seed ^ 0xA0761D6478BD642F);
	}
	return Hash;
}
}
