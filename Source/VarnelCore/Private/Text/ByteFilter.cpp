#include "Text/ByteFilter.h"

#include <bit>
#include <cstdint>
#include <cstring>
#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace
{
// Counted over headers, scripts, JSON and documents; the upper half is Russian prose, with guesses for other scripts.
constexpr uint8 Frequencies[256] = {
	0, 0, 0, 0, 0, 0, 0, 0, 0, 6, 48, 0, 0, 0, 0, 0,						// 00
	0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,							// 10
	255, 0, 19, 4, 0, 1, 1, 20, 13, 13, 10, 2, 27, 8, 15, 13,				// 20
	7, 5, 6, 3, 1, 1, 1, 1, 1, 2, 11, 4, 3, 5, 3, 1,						// 30
	2, 10, 3, 9, 5, 12, 5, 4, 3, 12, 0, 1, 9, 5, 9, 8,						// 40
	6, 0, 10, 11, 12, 5, 2, 2, 3, 2, 1, 2, 4, 2, 0, 44,						// 50
	1, 62, 14, 36, 31, 111, 22, 16, 23, 65, 1, 5, 38, 26, 62, 59,			// 60
	31, 2, 65, 58, 83, 26, 8, 8, 7, 14, 2, 3, 2, 3, 1, 0,					// 70
	40, 47, 54, 22, 3, 8, 4, 12, 6, 3, 2, 16, 14, 3, 5, 17,					// 80
	4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4,							// 90
	4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4,							// a0
	68, 14, 38, 14, 26, 72, 8, 14, 63, 10, 30, 37, 27, 57, 94, 24,			// b0
	0, 0, 80, 160, 80, 80, 40, 40, 40, 40, 40, 40, 40, 40, 160, 160,		// c0
	255, 255, 80, 40, 40, 40, 40, 80, 80, 80, 40, 40, 40, 40, 40, 40,		// d0
	80, 80, 160, 120, 120, 120, 120, 120, 120, 120, 40, 40, 40, 40, 40, 40, // e0
	40, 40, 40, 40, 40, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,					// f0
};

// Bytes. One page: texts larger than the caches come nearly half as fast again as with the processor's own guesses.
constexpr std::size_t PrefetchDistance = 4096;

/** Each of the following answers for 64 bytes at once which of them a class accepts, bit i for the byte at At + i. */
class FPortableMatcher
{
public:
	explicit FPortableMatcher(FByteClass Class) : Ignored(Class.Ignored * EveryByte), Value(Class.Value * EveryByte) {}
	uint64 Match(const char* At) const
	{
		uint64 Accepted = 0;
		for (uint32 Index = 0; Index < FByteFilter::BlockSize; Index += 8)
			Accepted |= MatchWord(At + Index) << Index;
		return Accepted;
	}

private:
	static constexpr uint64 EveryByte = 0x0101010101010101;

	uint64 MatchWord(const char* At) const
	{
		uint64 Bytes;
		std::memcpy(&Bytes, At, sizeof(Bytes));
		if constexpr (std::endian::native == std::endian::big)
			Bytes = __builtin_bswap64(Bytes);
		const uint64 Differences = (Bytes | Ignored) ^ Value;
		const uint64 LowDiffers = (Differences & 0x7F * EveryByte) + 0x7F * EveryByte;
		const uint64 Equal = ~(LowDiffers | Differences) >> 7 & EveryByte;
		return Equal * 0x0102040810204080 >> 56; // gathers the lowest bit of each byte
	}

	uint64 Ignored, Value;
};

#if defined(__x86_64__)

class FSse2Matcher
{
public:
	explicit FSse2Matcher(FByteClass Class)
		: Ignored(_mm_set1_epi8(static_cast<char>(Class.Ignored)))
		, Value(_mm_set1_epi8(static_cast<char>(Class.Value)))
	{
	}
	uint64 Match(const char* At) const
	{
		return MatchVector(At) | MatchVector(At + 16) << 16 | MatchVector(At + 32) << 32 | MatchVector(At + 48) << 48;
	}

private:
	uint64 MatchVector(const char* At) const
	{
		const __m128i Bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(At));
		return static_cast<uint32>(_mm_movemask_epi8(_mm_cmpeq_epi8(_mm_or_si128(Bytes, Ignored), Value)));
	}

	__m128i Ignored, Value;
};

class FAvx2Matcher
{
public:
	[[gnu::target("avx2")]] explicit FAvx2Matcher(FByteClass Class)
		: Ignored(_mm256_set1_epi8(static_cast<char>(Class.Ignored)))
		, Value(_mm256_set1_epi8(static_cast<char>(Class.Value)))
	{
	}
	[[gnu::target("avx2")]] uint64 Match(const char* At) const { return MatchVector(At) | MatchVector(At + 32) << 32; }

private:
	[[gnu::target("avx2")]] uint64 MatchVector(const char* At) const
	{
		const __m256i Bytes = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(At));
		return static_cast<uint32>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(_mm256_or_si256(Bytes, Ignored), Value)));
	}

	__m256i Ignored, Value;
};

class FAvx512Matcher
{
public:
	[[gnu::target("avx512bw")]] explicit FAvx512Matcher(FByteClass Class)
		: Ignored(_mm512_set1_epi8(static_cast<char>(Class.Ignored)))
		, Value(_mm512_set1_epi8(static_cast<char>(Class.Value)))
	{
	}
	[[gnu::target("avx512bw")]] uint64 Match(const char* At) const
	{
		return _mm512_cmpeq_epi8_mask(_mm512_or_si512(_mm512_loadu_si512(At), Ignored), Value);
	}

private:
	__m512i Ignored, Value;
};

#endif

/** Inlined into a function of the matcher's own instruction set, which then takes in the matcher's functions. */
template <class TMatcher, bool bHasShifting>
[[gnu::always_inline]] inline std::size_t NextHit(
	const FByteFilter& Filter, const char* Text, std::size_t Block, std::size_t LastBlock, FBlockHits& Hits)
{
	const TMatcher First(Filter.Rare[0]), Second(Filter.Rare[1]);
	const TMatcher ShiftingFirst(Filter.Shifting[0]), ShiftingSecond(Filter.Shifting[1]);
	const uint32 FirstOffset = Filter.Offsets[0], SecondOffset = Filter.Offsets[1];
	// Aligned blocks spare loads across cache lines.
	std::size_t Step = FByteFilter::BlockSize - reinterpret_cast<std::uintptr_t>(Text + Block) % FByteFilter::BlockSize;
	for (; Block <= LastBlock; Block += Step, Step = FByteFilter::BlockSize)
	{
		const char* const At = Text + Block;
		__builtin_prefetch(reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(At) + PrefetchDistance));
		const uint64 Candidates = First.Match(At + FirstOffset) & Second.Match(At + SecondOffset);
		const uint64 Shifting = bHasShifting ? ShiftingFirst.Match(At) | ShiftingSecond.Match(At) : 0;
		if ((Candidates | Shifting) != 0)
		{
			Hits = {Candidates, Shifting};
			break;
		}
	}
	return Block;
}

template <bool bHasShifting>
std::size_t NextHitPortable(
	const FByteFilter& Filter, const char* Text, std::size_t Block, std::size_t LastBlock, FBlockHits& Hits)
{
	return NextHit<FPortableMatcher, bHasShifting>(Filter, Text, Block, LastBlock, Hits);
}

#if defined(__x86_64__)

template <bool bHasShifting>
std::size_t NextHitSse2(const FByteFilter& Filter, const char* Text, std::size_t Block, std::size_t LastBlock, FBlockHits& Hits)
{
	return NextHit<FSse2Matcher, bHasShifting>(Filter, Text, Block, LastBlock, Hits);
}

template <bool bHasShifting>
[[gnu::target("avx2")]] std::size_t NextHitAvx2(
	const FByteFilter& Filter, const char* Text, std::size_t Block, std::size_t LastBlock, FBlockHits& Hits)
{
	return NextHit<FAvx2Matcher, bHasShifting>(Filter, Text, Block, LastBlock, Hits);
}

template <bool bHasShifting>
[[gnu::target("avx512bw")]] std::size_t NextHitAvx512(
	const FByteFilter& Filter, const char* Text, std::size_t Block, std::size_t LastBlock, FBlockHits& Hits)
{
	return NextHit<FAvx512Matcher, bHasShifting>(Filter, Text, Block, LastBlock, Hits);
}

#endif

template <bool bHasShifting>
FNextHit Choose(EVectorWidth Widest)
{
#if defined(__x86_64__)
	if (Widest >= EVectorWidth::Bits512 && __builtin_cpu_supports("avx512bw"))
		return NextHitAvx512<bHasShifting>;
	if (Widest >= EVectorWidth::Bits256 && __builtin_cpu_supports("avx2"))
		return NextHitAvx2<bHasShifting>;
	if (Widest >= EVectorWidth::Bits128)
		return NextHitSse2<bHasShifting>;
#endif
	return NextHitPortable<bHasShifting>;
}
}

void FByteClass::Add(uint8 Byte)
{
	if (*this == FByteClass())
	{
		Value = Byte;
		return;
	}
	Ignored |= Byte ^ Value;
	Value |= Ignored;
}

FNextHit ChooseNextHit(const FByteFilter& Filter, EVectorWidth Widest)
{
	return Filter.bHasShifting ? Choose<true>(Widest) : Choose<false>(Widest);
}

uint32 EstimateFrequency(FByteClass Bytes)
{
	uint32 Sum = 0;
	const uint32 Fixed = Bytes.Value ^ Bytes.Ignored;
	for (uint32 Free = Bytes.Ignored;; Free = (Free - 1) & Bytes.Ignored)
	{
		Sum += Frequencies[Fixed | Free];
		if (Free == 0)
			return Sum;
	}
}
