#include "Text/CaseFolding.h"

#include "Core/Base/SeededHash.h"
#include "Core/Text/Unicode.h"

#include <algorithm>
#include <string>

namespace Unicode
{
namespace
{
constexpr uint64 EveryByte = 0x0101010101010101;

constexpr char FoldAscii(char Character)
{
	return Character >= 'A' && Character <= 'Z' ? static_cast<char>(Character | 0x20) : Character;
}

/** Lowers the capital letters of eight ASCII bytes. */
uint64 FoldAsciiWord(uint64 Word)
{
	const uint64 FromA = Word + EveryByte * (0x80 - 'A');
	const uint64 BehindZ = Word + EveryByte * (0x7F - 'Z');
	return Word | ((FromA ^ BehindZ) & HighBits) >> 2;
}

/** Folds ASCII bytes into Out until one is not ASCII; returns how many. */
std::size_t FoldLeadingAscii(const char* At, std::size_t NumBytes, char* Out)
{
	std::size_t Index = 0;
	for (; Index + 8 <= NumBytes; Index += 8)
	{
		const uint64 Word = LoadWord(At + Index);
		if (!IsAsciiWord(Word))
			break;
		const uint64 Folded = FoldAsciiWord(Word);
		std::memcpy(Out + Index, &Folded, sizeof(Folded));
	}
	for (; Index < NumBytes && ByteAt(At + Index) < 0x80; ++Index)
		Out[Index] = FoldAscii(At[Index]);
	return Index;
}

/** The high bit of each byte that is zero. */
uint64 FindZeroBytes(uint64 Word)
{
	return ~(((Word & ~HighBits) + ~HighBits) | Word) & HighBits;
}

// Inlined everywhere: returned through a register, the length would wait for the table, and the next code point for the length.
/** Decodes and folds; ill-formed bytes come one by one, each as its own value above all code points. */
[[gnu::always_inline]] inline FDecoded NextFolded(const char* At, const char* End)
{
	if (ByteAt(At) < 0x80)
		return {static_cast<uint8>(FoldAscii(*At)), 1};
	const auto [CodePoint, NumBytes] = Decode(At, End);
	if (CodePoint == IllFormed)
		return {IllFormed + ByteAt(At), 1};
	return {GetFoldTable().Fold(CodePoint), NumBytes};
}

/** Whether a needle can start in the next eight bytes, judged by the first two symbols. */
class FAsciiPair
{
public:
	explicit FAsciiPair(std::string_view Needle)
	{
		const char* const End = Needle.data() + Needle.size();
		const FDecoded FirstSymbol = NextFolded(Needle.data(), End);
		const char* const AtSecond = Needle.data() + FirstSymbol.NumBytes;
		First = FillWith(FirstSymbol.CodePoint);
		Distance = AtSecond < End ? 1 : 0;
		Second = AtSecond < End ? FillWith(NextFolded(AtSecond, End).CodePoint) : First;
	}

	/** Says nothing (false) where other than ASCII letters could match too. */
	bool IsAbsentFromWord(const char* At, const char* End) const
	{
		if (End - At < 8 + Distance)
			return false;
		const uint64 Word = LoadWord(At);
		const uint64 Next = LoadWord(At + Distance);
		return IsAsciiWord(Word | Next) &&
			(FindZeroBytes(FoldAsciiWord(Word) ^ First) & FindZeroBytes(FoldAsciiWord(Next) ^ Second)) == 0;
	}

private:
	/** A byte that no ASCII text holds stands for every other symbol. */
	static uint64 FillWith(char32_t Symbol) { return EveryByte * (Symbol < 0x80 ? Symbol : 0xFF); }

	uint64 First, Second;
	int32 Distance;
};

/** Folded text of at most Size bytes. */
template <std::size_t Size>
class TFoldedPiece
{
public:
	/**
	 * Holds the beginning of the folded text and moves At past what that stands for. Where it stops depends on the folded text
	 * alone, so equal texts come in equal pieces.
	 */
	std::string_view Take(const char*& At, const char* End)
	{
		const char* From = At;
		std::size_t NumWritten = 0;
		while (From < End && NumWritten < Size)
		{
			const std::size_t NumFree = Size - NumWritten;
			if (ByteAt(From) < 0x80)
			{
				const std::size_t Most = std::min(NumFree, static_cast<std::size_t>(End - From));
				const std::size_t NumAscii = FoldLeadingAscii(From, Most, Bytes + NumWritten);
				From += NumAscii;
				NumWritten += NumAscii;
				continue;
			}
			const FDecoded Next = NextFolded(From, End);
			Bytes[NumWritten] = *From;
			const uint32 NumEncoded = Next.CodePoint < IllFormed ? Encode(Next.CodePoint, Bytes + NumWritten) : 1;
			if (NumEncoded > NumFree)
				break;
			From += Next.NumBytes;
			NumWritten += NumEncoded;
		}
		At = From;
		return std::string_view(Bytes, NumWritten);
	}

private:
	char Bytes[Size + 4]; // room for a last code point that turns out too long
};
}

char32_t FoldCase(char32_t CodePoint)
{
	if (CodePoint < 0x80)
		return static_cast<char32_t>(FoldAscii(static_cast<char>(CodePoint)));
	return GetFoldTable().Fold(CodePoint);
}

void SkipCommonFolded(const char*& A, const char* EndA, const char*& B, const char* EndB)
{
	while (A < EndA && B < EndB)
	{
		if (EndA - A >= 8 && EndB - B >= 8)
		{
			const uint64 WordA = LoadWord(A);
			const uint64 WordB = LoadWord(B);
			if (IsAsciiWord(WordA | WordB) && FoldAsciiWord(WordA) == FoldAsciiWord(WordB))
			{
				A += 8;
				B += 8;
				continue;
			}
		}
		const FDecoded NextA = NextFolded(A, EndA);
		const FDecoded NextB = NextFolded(B, EndB);
		if (NextA.CodePoint != NextB.CodePoint)
			return;
		A += NextA.NumBytes;
		B += NextB.NumBytes;
	}
}

std::size_t FindFolded(std::string_view Text, std::string_view Needle, std::size_t From)
{
	if (From > Text.size())
		return std::string_view::npos;
	if (Needle.empty())
		return From;
	const char* const End = Text.data() + Text.size();
	const char* const EndNeedle = Needle.data() + Needle.size();
	const FDecoded First = NextFolded(Needle.data(), EndNeedle);
	const FAsciiPair Pair(Needle);
	for (const char* Start = Text.data() + From; Start < End;)
	{
		if (Pair.IsAbsentFromWord(Start, End))
		{
			Start += 8;
			continue;
		}
		const FDecoded Next = NextFolded(Start, End);
		if (Next.CodePoint == First.CodePoint)
		{
			const char* At = Start + Next.NumBytes;
			const char* AtNeedle = Needle.data() + First.NumBytes;
			SkipCommonFolded(At, End, AtNeedle, EndNeedle);
			if (AtNeedle == EndNeedle)
				return static_cast<std::size_t>(Start - Text.data());
		}
		Start += Next.NumBytes;
	}
	return std::string_view::npos;
}

void AppendFolded(std::string& Out, std::string_view Text)
{
	TFoldedPiece<512> Piece;
	const char* const End = Text.data() + Text.size();
	for (const char* At = Text.data(); At < End;)
		Out.append(Piece.Take(At, End));
}

std::string Fold(std::string_view Text)
{
	std::string Out;
	Out.reserve(Text.size());
	AppendFolded(Out, Text);
	return Out;
}

int32 CompareFolded(std::string_view A, std::string_view B)
{
	const char* AtA = A.data();
	const char* AtB = B.data();
	const char* const EndA = AtA + A.size();
	const char* const EndB = AtB + B.size();
	SkipCommonFolded(AtA, EndA, AtB, EndB);
	if (AtA == EndA || AtB == EndB)
		return (AtA == EndA ? 0 : 1) - (AtB == EndB ? 0 : 1);
	return NextFolded(AtA, EndA).CodePoint < NextFolded(AtB, EndB).CodePoint ? -1 : 1;
}

bool EqualsFolded(std::string_view A, std::string_view B)
{
	return CompareFolded(A, B) == 0;
}

bool SkipFoldedPrefix(std::string_view& Text, std::string_view Prefix)
{
	const char* At = Text.data();
	const char* AtPrefix = Prefix.data();
	SkipCommonFolded(At, At + Text.size(), AtPrefix, AtPrefix + Prefix.size());
	if (AtPrefix != Prefix.data() + Prefix.size())
		return false;
	Text.remove_prefix(static_cast<std::size_t>(At - Text.data()));
	return true;
}

uint64 HashFolded(std::string_view Text)
{
	TFoldedPiece<256> Piece;
	uint64 Hash = 0;
	const char* const End = Text.data() + Text.size();
	for (const char* At = Text.data(); At < End;)
		Hash = SeededHash::HashBytes(Piece.Take(At, End), Hash);
	return Hash;
}
}
