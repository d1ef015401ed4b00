#include "Core/Text/Unicode.h"

#include "Core/Base/Assert.h"
#include "Text/CaseFolding.h"

#include <algorithm>
#include <bit>
#include <utf8proc.h>
#include <utility>

namespace Unicode
{
namespace
{
/** Bytes before the first one that is not ASCII. */
std::size_t CountLeadingAscii(const char* At, const char* End)
{
	const char* const Begin = At;
	while (End - At >= 8 && IsAsciiWord(LoadWord(At)))
		At += 8;
	while (At < End && ByteAt(At) < 0x80)
		++At;
	return static_cast<std::size_t>(At - Begin);
}

struct FCodePointRange
{
	char32_t First, End;
};

// Only these blocks hold letters with case. Asking the library about every code point costs most of a millisecond at start-up.
constexpr FCodePointRange CasedRanges[] = {
	{0x0000, 0x0600},	// Latin, Greek, Cyrillic, Armenian
	{0x10A0, 0x1100},	// Georgian
	{0x13A0, 0x1400},	// Cherokee
	{0x1C80, 0x2000},	// Cyrillic and Georgian extensions, Latin and Greek with several marks
	{0x2100, 0x2190},	// letter-like signs, Roman numerals
	{0x2480, 0x2500},	// circled letters
	{0x2C00, 0x2E00},	// Glagolitic, Latin, Coptic, Georgian
	{0xA640, 0xA800},	// Cyrillic and Latin extensions
	{0xAB30, 0xAC00},	// Latin and Cherokee extensions
	{0xFB00, 0xFB20},	// ligatures
	{0xFF00, 0xFF80},	// full-width letters
	{0x10400, 0x10600}, // Deseret, Osage, Vithkuqi
	{0x10C80, 0x10E00}, // Old Hungarian
	{0x11880, 0x11900}, // Warang Citi
	{0x16E00, 0x16F00}, // Medefaidrin
	{0x1E900, 0x1E980}, // Adlam
};

char32_t ComputeFold(char32_t CodePoint)
{
	// The only other fold of this letter belongs to Turkic languages or is two code points long.
	constexpr char32_t CapitalIWithDot = 0x130;
	const auto Argument = static_cast<utf8proc_int32_t>(CodePoint);
	if (CodePoint == CapitalIWithDot || utf8proc_get_property(Argument)->casefold_seqindex == UINT16_MAX)
		return CodePoint;
	utf8proc_int32_t Folded[8];
	int BoundClass = 0;
	if (utf8proc_decompose_char(Argument, Folded, 8, UTF8PROC_CASEFOLD, &BoundClass) == 1)
		return static_cast<char32_t>(Folded[0]);
	return static_cast<char32_t>(utf8proc_tolower(Argument));
}

using FFoldPair = std::pair<char32_t, char32_t>; // folded, code point

std::vector<FFoldPair> ListFoldPairs()
{
	const FFoldTable& Table = GetFoldTable();
	std::vector<FFoldPair> Pairs;
	for (const auto& [First, End] : CasedRanges)
	{
		for (char32_t CodePoint = First; CodePoint < End; ++CodePoint)
		{
			if (const char32_t Folded = Table.Fold(CodePoint); Folded != CodePoint)
				Pairs.emplace_back(Folded, CodePoint);
		}
	}
	std::sort(Pairs.begin(), Pairs.end());
	return Pairs;
}

void AppendUtf16Unit(std::string& Out, char32_t Unit, char32_t& PendingHigh)
{
	const bool bIsLow = Unit >= 0xDC00 && Unit < 0xE000;
	if (PendingHigh != 0 && bIsLow)
	{
		AppendUtf8(Out, 0x10000 + ((PendingHigh - 0xD800) << 10) + (Unit - 0xDC00));
		PendingHigh = 0;
		return;
	}
	if (PendingHigh != 0)
		AppendUtf8(Out, ReplacementCharacter);
	PendingHigh = Unit >= 0xD800 && Unit < 0xDC00 ? Unit : 0;
	if (PendingHigh == 0)
		AppendUtf8(Out, Unit);
}
}

FFoldTable BuildFoldTable()
{
	FFoldTable Table;
	uint8 NumPages = 1;
	for (const auto& [First, End] : CasedRanges)
	{
		for (char32_t CodePoint = First; CodePoint < End; ++CodePoint)
		{
			const char32_t Folded = ComputeFold(CodePoint);
			if (Folded == CodePoint)
				continue;
			uint8& Page = Table.PageOf[CodePoint >> FFoldTable::PageBits];
			if (Page == 0)
			{
				checkf(NumPages < FFoldTable::MaxPages, "the library knows more letters with case than expected");
				Page = NumPages++;
			}
			Table.Pages[Page][CodePoint % (1u << FFoldTable::PageBits)] = Folded - CodePoint;
		}
	}
	return Table;
}

void FindFoldVariants(char32_t Folded, std::vector<char32_t>& Variants)
{
	static const std::vector<FFoldPair>& Pairs =
		*new std::vector<FFoldPair>(ListFoldPairs()); // other static objects may still ask
	Variants.assign(1, Folded);
	for (auto Pair = std::lower_bound(Pairs.begin(), Pairs.end(), FFoldPair(Folded, 0));
		 Pair != Pairs.end() && Pair->first == Folded; ++Pair)
		Variants.push_back(Pair->second);
}

bool IsAscii(std::string_view Bytes)
{
	return CountLeadingAscii(Bytes.data(), Bytes.data() + Bytes.size()) == Bytes.size();
}

bool IsValidUtf8(std::string_view Bytes)
{
	const char* const End = Bytes.data() + Bytes.size();
	for (const char* At = Bytes.data(); At < End;)
	{
		At += CountLeadingAscii(At, End);
		if (At == End)
			break;
		const FDecoded Next = Decode(At, End);
		if (Next.CodePoint == IllFormed)
			return false;
		At += Next.NumBytes;
	}
	return true;
}

std::string RepairUtf8(std::string_view Bytes)
{
	if (IsValidUtf8(Bytes))
		return std::string(Bytes);
	std::string Out;
	Out.reserve(Bytes.size() + 16);
	const char* const End = Bytes.data() + Bytes.size();
	for (const char* At = Bytes.data(); At < End;)
	{
		const FDecoded Next = Decode(At, End);
		if (Next.CodePoint == IllFormed)
			AppendUtf8(Out, ReplacementCharacter);
		else
			Out.append(At, Next.NumBytes);
		At += Next.NumBytes;
	}
	return Out;
}

void AppendUtf8(std::string& Out, char32_t CodePoint)
{
	const bool bIsSurrogate = CodePoint >= 0xD800 && CodePoint < 0xE000;
	char Encoded[4];
	Out.append(Encoded, Encode(bIsSurrogate || CodePoint > 0x10FFFF ? ReplacementCharacter : CodePoint, Encoded));
}

char32_t DecodeNext(std::string_view Text, std::size_t& Position)
{
	const FDecoded Next = Decode(Text.data() + Position, Text.data() + Text.size());
	Position += Next.NumBytes;
	return Next.CodePoint == IllFormed ? ReplacementCharacter : Next.CodePoint;
}

int32 CountCodePoints(std::string_view Text)
{
	const char* At = Text.data();
	const char* const End = At + Text.size();
	std::size_t NumContinuations = 0;
	for (; End - At >= 8; At += 8)
	{
		const uint64 Word = LoadWord(At);
		NumContinuations += static_cast<std::size_t>(std::popcount(Word & ~(Word << 1) & HighBits));
	}
	for (; At < End; ++At)
		NumContinuations += IsContinuation(At) ? 1u : 0u;
	return static_cast<int32>(Text.size() - NumContinuations);
}

std::size_t FloorToCodePoint(std::string_view Text, std::size_t Position)
{
	if (Position >= Text.size())
		return Text.size();
	while (Position > 0 && IsContinuation(Text.data() + Position))
		--Position;
	return Position;
}

std::string Utf16ToUtf8(std::string_view Bytes, bool bBigEndian)
{
	std::string Out;
	Out.reserve(Bytes.size());
	char32_t PendingHigh = 0;
	for (std::size_t Index = 0; Index + 1 < Bytes.size(); Index += 2)
	{
		const uint32 First = ByteAt(Bytes.data() + Index);
		const uint32 Second = ByteAt(Bytes.data() + Index + 1);
		AppendUtf16Unit(Out, bBigEndian ? First << 8 | Second : Second << 8 | First, PendingHigh);
	}
	if (PendingHigh != 0)
		AppendUtf8(Out, ReplacementCharacter);
	if (Bytes.size() % 2 != 0)
		AppendUtf8(Out, ReplacementCharacter);
	return Out;
}

char32_t ToLower(char32_t CodePoint)
{
	return static_cast<char32_t>(utf8proc_tolower(static_cast<utf8proc_int32_t>(CodePoint)));
}

char32_t ToUpper(char32_t CodePoint)
{
	return static_cast<char32_t>(utf8proc_toupper(static_cast<utf8proc_int32_t>(CodePoint)));
}
}
