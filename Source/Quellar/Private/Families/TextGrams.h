#pragma once

#include "Core/Text/String.h"

#include <string>
#include <string_view>
#include <vector>

/**
 * A term as FTextGrams is asked for it: whatever the case, and whether it is to be contained or to be the whole text.
 * Immutable.
 */
class FTermGrams
{
public:
	explicit FTermGrams(const FString& Term);

private:
	friend class FTextGrams;
	std::vector<uint32> Hashes; // none: any text may match
};

/**
 * Which two and three folded bytes in a row a text holds, as a filter: a term is in the text only if the bits of its grams are
 * set. It has at most a quarter of its bits set, unless the text is long and varied. A text of 30 KB takes about 4 KB.
 */
class FTextGrams
{
public:
	/** False before a builder has made it. */
	bool IsKnown() const { return !Bits.empty(); }
	bool MayMatch(const FTermGrams& Term) const;
	int64 GetBytes() const { return static_cast<int64>(Bits.capacity() * sizeof(uint64)); }

private:
	friend class FTextGramsBuilder;
	std::vector<uint64> Bits; // a power of two of words
};

/** Makes the grams of texts, one after the other; to be used again, as it holds scratch. */
class FTextGramsBuilder
{
public:
	FTextGramsBuilder();

	/** The next piece of the text, which is well-formed. */
	void Append(FStringView Text);
	/** Of what was appended since the last call. */
	FTextGrams Finish();

private:
	std::vector<uint64> Bits;
	std::string Folded; // scratch
	uint32 Last = 0;	// bytes, the newest lowest
	int32 NumLast = 0;	// how many of them count, at most 2
};
