#include "Families/TextGrams.h"

#include "Core/Text/Unicode.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace
{
constexpr uint32 MaxHashBits = 17;
constexpr std::size_t WordBits = 64;
constexpr std::size_t MaxWords = (std::size_t{1} << MaxHashBits) / WordBits;
constexpr std::size_t FillDivisor = 4; // of the bits, at most one in so many is set
constexpr uint32 PairMark = uint32{1} << 24;

/** The lower bits of a hash are the hash for a smaller filter. */
uint32 HashGram(uint32 Gram)
{
	constexpr uint32 GoldenRatio = 0x9E3779B1;
	return (Gram * GoldenRatio) >> (32 - MaxHashBits);
}

uint32 HashPair(uint32 Bytes)
{
	return HashGram((Bytes & 0xFFFF) | PairMark);
}

uint32 HashTriple(uint32 Bytes)
{
	return HashGram(Bytes & 0xFFFFFF);
}

uint32 PushByte(uint32 Bytes, char Byte)
{
	return Bytes << 8 | static_cast<uint8>(Byte);
}

void SetBit(uint64* Words, uint32 Hash)
{
	Words[Hash / WordBits] |= uint64{1} << (Hash % WordBits);
}

std::size_t CountFolded(const std::vector<uint64>& Bits, std::size_t NumWords)
{
	std::size_t Count = 0;
	for (std::size_t Word = 0; Word < NumWords; ++Word)
		Count += static_cast<std::size_t>(std::popcount(Bits[Word] | Bits[Word + NumWords]));
	return Count;
}

/** Lays the upper half of the filter over the lower one as long as it stays sparse; returns the words that are left. */
std::size_t Shrink(std::vector<uint64>& Bits)
{
	std::size_t NumWords = Bits.size();
	while (NumWords > 1 && CountFolded(Bits, NumWords / 2) * FillDivisor <= NumWords / 2 * WordBits)
	{
		NumWords /= 2;
		for (std::size_t Word = 0; Word < NumWords; ++Word)
			Bits[Word] |= Bits[Word + NumWords];
	}
	return NumWords;
}
}

FTermGrams::FTermGrams(const FString& Term)
{
	if (!Unicode::IsValidUtf8(Term.View())) // folding keeps whole code points alone
		return;
	const std::string Folded = Unicode::Fold(Term.View());
	uint32 Bytes = 0;
	for (std::size_t Index = 0; Index < Folded.size(); ++Index)
	{
		Bytes = PushByte(Bytes, Folded[Index]);
		if (Index >= 2)
			Hashes.push_back(HashTriple(Bytes));
	}
	if (Folded.size() == 2)
		Hashes.push_back(HashPair(Bytes));
}

bool FTextGrams::MayMatch(const FTermGrams& Term) const
{
	const auto Mask = static_cast<uint32>(Bits.size() * WordBits - 1);
	return std::all_of(Term.Hashes.begin(), Term.Hashes.end(),
		[&](uint32 Hash) { return (Bits[(Hash & Mask) / WordBits] >> (Hash % WordBits) & 1) != 0; });
}

FTextGramsBuilder::FTextGramsBuilder() : Bits(MaxWords)
{
}

void FTextGramsBuilder::Append(FStringView Text)
{
	Folded.clear();
	Unicode::AppendFolded(Folded, Text);
	uint64* const Words = Bits.data();
	uint32 Bytes = Last;
	std::size_t Index = 0;
	for (; Index < Folded.size() && NumLast < 2; ++Index, ++NumLast)
	{
		Bytes = PushByte(Bytes, Folded[Index]);
		if (NumLast == 1)
			SetBit(Words, HashPair(Bytes));
	}
	for (; Index < Folded.size(); ++Index)
	{
		Bytes = PushByte(Bytes, Folded[Index]);
		SetBit(Words, HashPair(Bytes));
		SetBit(Words, HashTriple(Bytes));
	}
	Last = Bytes;
}

FTextGrams FTextGramsBuilder::Finish()
{
	FTextGrams Grams;
	const auto NumWords = static_cast<std::ptrdiff_t>(Shrink(Bits));
	Grams.Bits.assign(Bits.begin(), Bits.begin() + NumWords);
	std::fill(Bits.begin(), Bits.end(), uint64{0});
	Last = 0;
	NumLast = 0;
	return Grams;
}
