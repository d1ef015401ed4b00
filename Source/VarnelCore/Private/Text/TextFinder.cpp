#include "Core/Text/TextFinder.h"

#include "Core/Text/Unicode.h"
#include "Text/ByteFilter.h"
#include "Text/CaseFolding.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <string>
#include <vector>

/**
 * The search in two speeds. Fast: two rare bytes at fixed distances, 64 positions at a time, candidates verified. Letters whose
 * case variants differ in encoded length (the Kelvin sign is a k of three bytes) shift those distances; where such a letter
 * occurs in the text, and where too many candidates fail, the text is gone through code point by code point with an automaton of
 * linear time.
 */
class FPreparedNeedle
{
public:
	FPreparedNeedle(std::string_view Needle, ESearchCase InCase, EVectorWidth Widest);
	std::size_t Find(std::string_view Text, std::size_t From) const;

private:
	struct FSlowResult
	{
		std::size_t Found;
		std::size_t Resume; // after the last shifting letter: what starts earlier has been looked at
	};

	void PrepareExact(std::vector<FByteClass>& Classes);
	void PrepareFolded(std::vector<FByteClass>& Classes);
	void PrepareSymbol(char32_t Symbol, std::vector<char32_t>& Variants, std::vector<FByteClass>& Classes);
	void PrepareBorders();
	void ChooseOffsets(const std::vector<FByteClass>& Classes);

	std::size_t NextBlockWithHit(std::string_view Text, std::size_t Position, FBlockHits& Hits) const;
	std::size_t FindShiftingLetter(std::string_view Text, std::size_t Block, uint64 Hits) const;
	bool Verify(std::string_view Text, std::size_t Start, std::size_t& Effort) const;
	std::size_t FindToEnd(std::string_view Text, std::size_t From) const;
	FSlowResult FindByCodePoint(std::string_view Text, std::size_t From, std::size_t Stop) const;

	ESearchCase Case;
	bool bIsIllFormed = false;
	std::string Bytes;			   // folded when case is ignored
	std::vector<char32_t> Symbols; // folded code points, empty when case matters
	std::vector<uint32> Borders;   // for each prefix of Symbols, the length of its longest proper prefix that is also its end
	FByteFilter Filter;
	FNextHit NextHit;
};

namespace
{
bool IsShifting(char32_t CodePoint, char32_t Folded)
{
	return Unicode::EncodedLength(CodePoint) != Unicode::EncodedLength(Folded);
}

/** Start of the Count code points, all well-formed, that end at End. */
std::size_t StepBack(std::string_view Text, std::size_t End, std::size_t Count)
{
	for (; Count > 0; --Count)
		End = Unicode::FloorToCodePoint(Text, End - 1);
	return End;
}
}

FPreparedNeedle::FPreparedNeedle(std::string_view Needle, ESearchCase InCase, EVectorWidth Widest) : Case(InCase)
{
	std::vector<FByteClass> Classes;
	if (Case == ESearchCase::CaseSensitive)
	{
		Bytes = Needle;
		PrepareExact(Classes);
	}
	else if (Unicode::IsValidUtf8(Needle))
	{
		Bytes = Unicode::Fold(Needle);
		PrepareFolded(Classes);
		PrepareBorders();
	}
	else
	{
		bIsIllFormed = true;
	}
	ChooseOffsets(Classes);
	NextHit = ChooseNextHit(Filter, Widest);
}

void FPreparedNeedle::PrepareExact(std::vector<FByteClass>& Classes)
{
	Classes.resize(std::min(Bytes.size(), FByteFilter::MaxOffset + 1));
	for (std::size_t Index = 0; Index < Classes.size(); ++Index)
		Classes[Index].Add(static_cast<uint8>(Bytes[Index]));
}

void FPreparedNeedle::PrepareFolded(std::vector<FByteClass>& Classes)
{
	std::vector<char32_t> Variants;
	for (std::size_t Position = 0; Position < Bytes.size();)
		PrepareSymbol(Unicode::DecodeNext(Bytes, Position), Variants, Classes);
}

void FPreparedNeedle::PrepareSymbol(char32_t Symbol, std::vector<char32_t>& Variants, std::vector<FByteClass>& Classes)
{
	Symbols.push_back(Symbol);
	Unicode::FindFoldVariants(Symbol, Variants);
	const uint32 SymbolLength = Unicode::EncodedLength(Symbol);
	const std::size_t Offset = Classes.size();
	Classes.resize(std::min(Offset + SymbolLength, FByteFilter::MaxOffset + 1));
	for (const char32_t Variant : Variants)
	{
		char Encoded[4];
		const uint32 Length = Unicode::Encode(Variant, Encoded);
		const auto Lead = static_cast<uint8>(Encoded[0]);
		if (Length != SymbolLength)
			Filter.Shifting[Lead < 0xE0 ? 0 : 1].Add(Lead);
		for (std::size_t Index = 0; Length == SymbolLength && Offset + Index < Classes.size(); ++Index)
			Classes[Offset + Index].Add(static_cast<uint8>(Encoded[Index]));
		Filter.bHasShifting |= Length != SymbolLength;
	}
}

void FPreparedNeedle::PrepareBorders()
{
	Borders.resize(Symbols.size());
	uint32 Border = 0;
	for (std::size_t Index = 1; Index < Symbols.size(); ++Index)
	{
		while (Border > 0 && Symbols[Border] != Symbols[Index])
			Border = Borders[Border - 1];
		Border += Symbols[Border] == Symbols[Index] ? 1u : 0u;
		Borders[Index] = Border;
	}
}

void FPreparedNeedle::ChooseOffsets(const std::vector<FByteClass>& Classes)
{
	if (Classes.empty())
		return;
	std::vector<uint32> Offsets(Classes.size());
	for (uint32 Index = 0; Index < Offsets.size(); ++Index)
		Offsets[Index] = Index;
	const auto IsRarer = [&Classes](uint32 A, uint32 B) { return EstimateFrequency(Classes[A]) < EstimateFrequency(Classes[B]); };
	const auto Rarest = std::min(Offsets.size(), std::size_t{2});
	std::partial_sort(Offsets.begin(), Offsets.begin() + static_cast<std::ptrdiff_t>(Rarest), Offsets.end(), IsRarer);
	for (std::size_t Index = 0; Index < 2; ++Index)
	{
		Filter.Offsets[Index] = Offsets[std::min(Index, Rarest - 1)];
		Filter.Rare[Index] = Classes[Filter.Offsets[Index]];
	}
}

std::size_t FPreparedNeedle::Find(std::string_view Text, std::size_t From) const
{
	if (From > Text.size() || bIsIllFormed)
		return std::string_view::npos;
	if (Bytes.empty())
		return From;
	std::size_t Floor = From; // nothing that starts earlier is wanted
	std::size_t Effort = 0;	  // bytes compared in vain
	FBlockHits Hits;
	for (std::size_t Block = From; (Block = NextBlockWithHit(Text, Block, Hits)) < Text.size();)
	{
		const std::size_t Letter = FindShiftingLetter(Text, Block, Hits.Shifting);
		if (Letter != std::string_view::npos)
		{
			// Before its first shifting letter a match is as long as the needle is there, so it starts no farther back.
			const std::size_t Earliest = Letter > Bytes.size() ? Letter - Bytes.size() : 0;
			const auto [Found, Resume] = FindByCodePoint(Text, std::max(Floor, std::min(Block, Earliest)), Letter + 1);
			if (Found != std::string_view::npos)
				return Found;
			Floor = Block = Resume;
			continue;
		}
		for (; Hits.Candidates != 0; Hits.Candidates &= Hits.Candidates - 1)
		{
			const std::size_t Start = Block + static_cast<std::size_t>(std::countr_zero(Hits.Candidates));
			if (Verify(Text, Start, Effort))
				return Start;
			if (Effort > 65536 + 16 * (Start - From))
				return FindToEnd(Text, Start + 1);
		}
		Block += FByteFilter::BlockSize;
	}
	return std::string_view::npos;
}

std::size_t FPreparedNeedle::NextBlockWithHit(std::string_view Text, std::size_t Position, FBlockHits& Hits) const
{
	const std::size_t Reach = FByteFilter::BlockSize + Filter.FarthestOffset();
	if (Position + Reach <= Text.size())
	{
		const std::size_t LastBlock = Text.size() - Reach;
		Position = NextHit(Filter, Text.data(), Position, LastBlock, Hits);
		if (Position <= LastBlock)
			return Position;
	}
	if (Position >= Text.size())
		return Text.size();
	// Fewer bytes are left than one look takes in, so they are looked at in a copy with room after it. Being aligned, it is
	// gone through in two blocks at most.
	alignas(FByteFilter::BlockSize) char Rest[2 * FByteFilter::BlockSize + FByteFilter::MaxOffset] = {};
	const std::size_t NumBytes = Text.size() - Position;
	std::memcpy(Rest, Text.data() + Position, NumBytes);
	const std::size_t Block = NextHit(Filter, Rest, 0, NumBytes - 1, Hits);
	if (Block >= NumBytes)
		return Text.size();
	if (NumBytes - Block < FByteFilter::BlockSize)
	{
		const uint64 InText = (uint64{1} << (NumBytes - Block)) - 1;
		Hits.Candidates &= InText;
		Hits.Shifting &= InText;
	}
	return Position + Block;
}

std::size_t FPreparedNeedle::FindShiftingLetter(std::string_view Text, std::size_t Block, uint64 Hits) const
{
	for (; Hits != 0; Hits &= Hits - 1)
	{
		const std::size_t Position = Block + static_cast<std::size_t>(std::countr_zero(Hits));
		const char32_t CodePoint = Unicode::Decode(Text.data() + Position, Text.data() + Text.size()).CodePoint;
		if (CodePoint != Unicode::IllFormed && IsShifting(CodePoint, Unicode::FoldCase(CodePoint)))
			return Position;
	}
	return std::string_view::npos;
}

bool FPreparedNeedle::Verify(std::string_view Text, std::size_t Start, std::size_t& Effort) const
{
	const char* At = Text.data() + Start;
	const char* const End = Text.data() + Text.size();
	const char* Byte = Bytes.data();
	const char* const EndBytes = Byte + Bytes.size();
	if (Case == ESearchCase::CaseSensitive)
		Byte = std::mismatch(Byte, EndBytes, At, End).first;
	else
		Unicode::SkipCommonFolded(At, End, Byte, EndBytes);
	Effort += static_cast<std::size_t>(Byte - Bytes.data());
	return Byte == EndBytes;
}

std::size_t FPreparedNeedle::FindToEnd(std::string_view Text, std::size_t From) const
{
	if (Case == ESearchCase::IgnoreCase)
		return FindByCodePoint(Text, From, Text.size()).Found;
	// Linear, unlike string_view::find.
	const void* const Found = memmem(Text.data() + From, Text.size() - From, Bytes.data(), Bytes.size());
	return Found ? static_cast<std::size_t>(static_cast<const char*>(Found) - Text.data()) : std::string_view::npos;
}

/** Stops when nothing that holds a shifting letter met so far can go on, and not before Stop. */
FPreparedNeedle::FSlowResult FPreparedNeedle::FindByCodePoint(std::string_view Text, std::size_t From, std::size_t Stop) const
{
	const char* const End = Text.data() + Text.size();
	std::size_t NumMatched = 0;
	std::size_t Resume = From;
	for (std::size_t Position = From; Position < std::min(Stop, Text.size());)
	{
		const auto [CodePoint, NumBytes] = Unicode::Decode(Text.data() + Position, End);
		const char32_t Folded = Unicode::FoldCase(CodePoint);
		Position += NumBytes;
		while (NumMatched > 0 && Symbols[NumMatched] != Folded)
			NumMatched = Borders[NumMatched - 1];
		NumMatched += Symbols[NumMatched] == Folded ? 1u : 0u;
		if (NumMatched == Symbols.size())
			return {StepBack(Text, Position, NumMatched), Position};
		if (CodePoint != Unicode::IllFormed && IsShifting(CodePoint, Folded))
		{
			Resume = Position;
			Stop = std::max(Stop, Position + Bytes.size());
		}
	}
	return {std::string_view::npos, Resume};
}

FTextFinder::FTextFinder(std::string_view Needle, ESearchCase Case, EVectorWidth Widest)
	: Prepared(std::make_shared<const FPreparedNeedle>(Needle, Case, Widest))
{
}

std::size_t FTextFinder::Find(std::string_view Text, std::size_t From) const
{
	return Prepared->Find(Text, From);
}
