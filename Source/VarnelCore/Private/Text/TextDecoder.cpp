#include "Core/Text/TextDecoder.h"

#include "Core/Text/Unicode.h"
#include "Text/CaseFolding.h"

namespace
{
struct FMark
{
	std::string_view Bytes;
	ETextEncoding Encoding;
};

constexpr FMark Marks[] = {
	{"\xEF\xBB\xBF", ETextEncoding::Utf8},
	{"\xFF\xFE", ETextEncoding::Utf16Little},
	{"\xFE\xFF", ETextEncoding::Utf16Big},
};
constexpr std::size_t LongestMark = 3;
constexpr std::size_t LongestCharacter = 4; // in UTF-8

/** By its first byte, as far as that is sound. */
std::size_t GetLengthByLead(uint8 Lead)
{
	return Lead >= 0xF0 ? 4 : Lead >= 0xE0 ? 3 : Lead >= 0xC0 ? 2 : 1;
}

/** Bytes before a character that the end cuts. Decoding, also of ill-formed text, begins anew at every first byte. */
std::size_t CountWholeUtf8(std::string_view Bytes)
{
	for (std::size_t Back = 1; Back < LongestCharacter && Back <= Bytes.size(); ++Back)
	{
		const char* const Byte = Bytes.data() + Bytes.size() - Back;
		if (!Unicode::IsContinuation(Byte))
			return GetLengthByLead(static_cast<uint8>(*Byte)) > Back ? Bytes.size() - Back : Bytes.size();
	}
	return Bytes.size();
}

std::size_t CountWholeUtf16(std::string_view Bytes, bool bBigEndian)
{
	const std::size_t NumWhole = Bytes.size() & ~std::size_t{1};
	const bool bHighSurrogateLast = NumWhole > 0 && (static_cast<uint8>(Bytes[NumWhole - (bBigEndian ? 2 : 1)]) & 0xFC) == 0xD8;
	return bHighSurrogateLast ? NumWhole - 2 : NumWhole;
}
}

ETextEncoding TakeByteOrderMark(std::string_view& Bytes)
{
	for (const FMark& Mark : Marks)
	{
		if (!Bytes.starts_with(Mark.Bytes))
			continue;
		Bytes.remove_prefix(Mark.Bytes.size());
		return Mark.Encoding;
	}
	return ETextEncoding::Utf8;
}

void FTextDecoder::Append(std::string_view Piece, std::string& Out)
{
	std::string Joined;
	if (!Rest.empty())
	{
		Joined.swap(Rest);
		Joined += Piece;
		Piece = Joined;
	}
	if (!bStarted && Piece.size() >= LongestMark)
	{
		bStarted = true;
		Encoding = TakeByteOrderMark(Piece);
	}
	const std::size_t NumWhole = bStarted ? CountWhole(Piece) : 0;
	Decode(Piece.substr(0, NumWhole), Out);
	Rest = Piece.substr(NumWhole);
}

void FTextDecoder::Finish(std::string& Out)
{
	std::string_view Bytes = Rest;
	if (!bStarted)
		Encoding = TakeByteOrderMark(Bytes);
	Decode(Bytes, Out);
	Rest.clear();
	bStarted = false;
}

void FTextDecoder::Decode(std::string_view Bytes, std::string& Out) const
{
	if (Encoding != ETextEncoding::Utf8)
		Out += Unicode::Utf16ToUtf8(Bytes, Encoding == ETextEncoding::Utf16Big);
	else if (Unicode::IsValidUtf8(Bytes))
		Out += Bytes;
	else
		Out += Unicode::RepairUtf8(Bytes);
}

std::size_t FTextDecoder::CountWhole(std::string_view Bytes) const
{
	return Encoding == ETextEncoding::Utf8 ? CountWholeUtf8(Bytes) : CountWholeUtf16(Bytes, Encoding == ETextEncoding::Utf16Big);
}
