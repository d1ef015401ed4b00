#pragma once

#include "Types.h"

#include <cstddef>
#include <numeric>
#include <span>
#include <vector>

/**
 * Random numbers whose sequence depends on nothing but the seed. The standard library's distributions differ between
 * implementations and floating point differs between machines, so everything here is integer arithmetic. Draw once in a
 * call's arguments at most: compilers differ in the order in which they evaluate them.
 */
class FRandom
{
public:
	explicit FRandom(uint64 Seed) : State(Seed) {}

	/** A generator of its own for item Index of one purpose: what is drawn for an item depends on no other item. */
	FRandom(uint64 Seed, uint64 Purpose, uint64 Index) : State(Mix(Mix(Seed + Purpose * 0x9E3779B97F4A7C15ull) + Index)) {}

	uint64 Next64()
	{
		State += 0x9E3779B97F4A7C15ull;
		return Mix(State);
	}

	uint32 Next32() { return static_cast<uint32>(Next64() >> 32); }

	/** A number from 0 to Limit - 1; 0 when Limit is 0. */
	uint32 Below(uint32 Limit) { return static_cast<uint32>((static_cast<uint64>(Next32()) * Limit) >> 32); }

	/** A number from Least to Most, both included. */
	uint32 Between(uint32 Least, uint32 Most) { return Least + Below(Most - Least + 1); }

	/** True in Of256 out of 256 draws. */
	bool Chance(uint32 Of256) { return (Next32() >> 24) < Of256; }

	/** True once in Times draws on average. */
	bool OneIn(uint32 Times) { return Below(Times) == 0; }

	template <class TItem, std::size_t Extent>
	const TItem& Pick(std::span<const TItem, Extent> Items)
	{
		return Items[Below(static_cast<uint32>(Items.size()))];
	}

	template <class TItem>
	const TItem& Pick(const std::vector<TItem>& Items)
	{
		return Items[Below(static_cast<uint32>(Items.size()))];
	}

	template <class TItem, std::size_t Num>
	const TItem& Pick(const TItem (&Items)[Num])
	{
		return Items[Below(static_cast<uint32>(Num))];
	}

	/** How often a value is doubled: k with probability about (ContinueOf256 / 256)^k, at most Most. */
	uint32 Doublings(uint32 ContinueOf256, uint32 Most)
	{
		uint32 Times = 0;
		while (Times < Most && Chance(ContinueOf256))
			++Times;
		return Times;
	}

	/**
	 * A heavy-tailed count whose mean is MeanOf256 / 256 and whose median is about half of that.
	 * The largest possible value is about 200 times the mean.
	 */
	uint32 HeavyTailed(uint32 MeanOf256)
	{
		constexpr uint32 ContinueOf256 = 96; // 3 in 8: each octave holds three quarters of the mass of the one below it
		constexpr uint32 MostDoublings = 8;
		const uint64 Span = (static_cast<uint64>(MeanOf256) * 110 / 128) << Doublings(ContinueOf256, MostDoublings);
		const uint64 Value = (Span * Next32()) >> 32;
		return static_cast<uint32>((Value + Below(256)) >> 8);
	}

private:
	static uint64 Mix(uint64 Value)
	{
		Value = (Value ^ (Value >> 30)) * 0xBF58476D1CE4E5B9ull;
		Value = (Value ^ (Value >> 27)) * 0x94D049BB133111EBull;
		return Value ^ (Value >> 31);
	}

	uint64 State;
};

/** Visits the numbers below Range in a scattered order without repeating one before all have come. */
class FDistinctNumbers
{
public:
	FDistinctNumbers(FRandom& Random, uint32 InRange) : Range(InRange), Current(Random.Below(InRange))
	{
		Stride = Range < 2 ? 0 : Random.Between(1, Range - 1);
		while (Range > 2 && std::gcd(Stride, Range) != 1)
			Stride = Stride % (Range - 1) + 1;
	}

	uint32 Next()
	{
		const uint32 Result = Current;
		Current = static_cast<uint32>((static_cast<uint64>(Current) + Stride) % Range);
		return Result;
	}

private:
	uint32 Range;
	uint32 Current;
	uint32 Stride = 0;
};
