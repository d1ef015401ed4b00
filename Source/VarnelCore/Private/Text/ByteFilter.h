#pragma once

#include "Core/Text/TextFinder.h"

/** Accepts the bytes that equal Value once the bits of Ignored are set in them: a set that holds what it must and little more. */
struct FByteClass
{
	uint8 Ignored = 0;
	uint8 Value = 0xFF; // a byte of no UTF-8 text

	bool Accepts(uint8 Byte) const { return (Byte | Ignored) == Value; }
	/** Widens the class to accept Byte too. The first byte given replaces the initial value. */
	void Add(uint8 Byte);
	friend bool operator==(FByteClass A, FByteClass B) { return A.Ignored == B.Ignored && A.Value == B.Value; }
};

/**
 * What a needle looks like to a fast look at the text: two classes of bytes at fixed distances from its start, and up to two
 * classes of lead bytes of letters that would shift those distances.
 */
struct FByteFilter
{
	static constexpr std::size_t BlockSize = 64; // positions looked at together
	static constexpr std::size_t MaxOffset = 63; // of a looked-at byte from the needle's start

	uint32 Offsets[2] = {};
	FByteClass Rare[2];
	bool bHasShifting = false;
	FByteClass Shifting[2];

	std::size_t FarthestOffset() const { return Offsets[0] > Offsets[1] ? Offsets[0] : Offsets[1]; }
};

/** Bit i stands for the position i bytes after the start of the block. */
struct FBlockHits
{
	uint64 Candidates = 0; // the needle may start here
	uint64 Shifting = 0;   // a letter that shifts distances may start here
};

/**
 * Goes through blocks of 64 positions, from Block on and as long as they start at or before LastBlock, to the first with a hit.
 * Blocks after the first lie at addresses that are multiples of 64, so the second may overlap the first. Returns its start and
 * fills Hits, or returns the start of the first block after LastBlock. Reads up to FarthestOffset() + 64 bytes from the start of
 * each block.
 */
using FNextHit = std::size_t (*)(
	const FByteFilter& Filter, const char* Text, std::size_t Block, std::size_t LastBlock, FBlockHits& Hits);

/** The fastest implementation for this processor that is not wider than asked. */
FNextHit ChooseNextHit(const FByteFilter& Filter, EVectorWidth Widest);

/** How common a byte is in program text, configuration and prose, about 1700 for all bytes together and 255 at most. */
uint32 EstimateFrequency(FByteClass Bytes);
