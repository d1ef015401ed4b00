#pragma once

#include "Core/Base/Types.h"

#include <array>
#include <cstring>
#include <string_view>
#include <vector>

/**
 * Strict decoding and simple case folding as inline code, for the loops of this target that stand on them.
 * Comparison, hash, short searches and FTextFinder all fold through this table, so they cannot disagree.
 */
namespace Unicode
{
/** What decoding ill-formed bytes gives: above every code point, folds to itself. */
constexpr char32_t IllFormed = 0x110000;

struct FDecoded
{
	char32_t CodePoint;
	uint32 NumBytes; // of an ill-formed sequence: its maximal subpart, 1 to 3
};

constexpr uint64 HighBits = 0x8080808080808080;

inline uint64 LoadWord(const char* At)
{
	uint64 Word;
	std::memcpy(&Word, At, sizeof(Word));
	return Word;
}

/** Whether all eight bytes are ASCII. */
inline bool IsAsciiWord(uint64 Word)
{
	return (Word & HighBits) == 0;
}

inline uint8 ByteAt(const char* At)
{
	return static_cast<uint8>(*At);
}

inline bool IsContinuation(const char* At)
{
	return (ByteAt(At) & 0xC0) == 0x80;
}

/** Decodes one code point; At < End. Overlong forms, surrogates and values above U+10FFFF are ill-formed. */
inline FDecoded Decode(const char* At, const char* End)
{
	const uint8 Lead = ByteAt(At);
	if (Lead < 0x80)
		return {Lead, 1};
	if (Lead < 0xC2 || Lead > 0xF4 || End - At < 2)
		return {IllFormed, 1};
	if (Lead < 0xE0)
		return IsContinuation(At + 1) ? FDecoded{(Lead & 0x1Fu) << 6 | (ByteAt(At + 1) & 0x3Fu), 2} : FDecoded{IllFormed, 1};
	const uint8 Second = ByteAt(At + 1);
	const uint8 Lowest = Lead == 0xE0 ? 0xA0 : Lead == 0xF0 ? 0x90 : 0x80;
	const uint8 Highest = Lead == 0xED ? 0x9F : Lead == 0xF4 ? 0x8F : 0xBF;
	if (Second < Lowest || Second > Highest)
		return {IllFormed, 1};
	const uint32 NumBytes = Lead < 0xF0 ? 3 : 4;
	char32_t CodePoint = (Lead & (0x7Fu >> NumBytes)) << 6 | (Second & 0x3Fu);
	for (uint32 Index = 2; Index < NumBytes; ++Index)
	{
		if (At + Index == End || !IsContinuation(At + Index))
			return {IllFormed, Index};
		CodePoint = CodePoint << 6 | (ByteAt(At + Index) & 0x3Fu);
	}
	return {CodePoint, NumBytes};
}

constexpr uint32 EncodedLength(char32_t CodePoint)
{
	return CodePoint < 0x80 ? 1 : CodePoint < 0x800 ? 2 : CodePoint < 0x10000 ? 3 : 4;
}

/** Writes the UTF-8 form of a valid code point into 4 bytes at Out and returns its length. */
inline uint32 Encode(char32_t CodePoint, char* Out)
{
	if (CodePoint < 0x80)
	{
		Out[0] = static_cast<char>(CodePoint);
		return 1;
	}
	if (CodePoint < 0x800)
	{
		Out[0] = static_cast<char>(0xC0 | CodePoint >> 6);
		Out[1] = static_cast<char>(0x80 | (CodePoint & 0x3F));
		return 2;
	}
	const uint32 NumBytes = EncodedLength(CodePoint);
	for (uint32 Index = NumBytes - 1; Index > 0; --Index, CodePoint >>= 6)
		Out[Index] = static_cast<char>(0x80 | (CodePoint & 0x3F));
	Out[0] = static_cast<char>(((0xF00u >> NumBytes) & 0xFF) | CodePoint);
	return NumBytes;
}

/** Differences between code points and their folded forms, in pages; pages without a difference share the first. */
struct FFoldTable
{
	static constexpr uint32 PageBits = 7;
	static constexpr char32_t Limit = 0x20000; // no letter with case lies above
	static constexpr uint32 MaxPages = 64;	   // 38 are in use

	using FPage = std::array<uint32, 1u << PageBits>;
	std::array<uint8, (Limit >> PageBits)> PageOf{};
	std::array<FPage, MaxPages> Pages{};

	char32_t Fold(char32_t CodePoint) const
	{
		if (CodePoint >= Limit)
			return CodePoint;
		return CodePoint + Pages[PageOf[CodePoint >> PageBits]][CodePoint & ((1u << PageBits) - 1)];
	}
};

FFoldTable BuildFoldTable();

inline const FFoldTable& GetFoldTable()
{
	static const FFoldTable Table = BuildFoldTable();
	return Table;
}

/** Replaces Variants by a folded code point and, after it, all others that fold to it. */
void FindFoldVariants(char32_t Folded, std::vector<char32_t>& Variants);

/** Moves A and B past what is equal in both after folding. Ill-formed bytes equal themselves. */
void SkipCommonFolded(const char*& A, const char* EndA, const char*& B, const char* EndB);

/** First position at or after From where Text goes on with Needle, ignoring case; for texts too short to prepare a finder for. */
std::size_t FindFolded(std::string_view Text, std::string_view Needle, std::size_t From);
}
