#include "Core/Text/String.h"

#include "Core/Base/Containers.h"
#include "Core/Text/TextFinder.h"
#include "Core/Text/Unicode.h"
#include "Text/CaseFolding.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace
{
constexpr std::size_t NotFound = FStringView::npos;

/** Byte offset; short texts are searched without preparing anything. */
std::size_t FindBytes(FStringView Text, FStringView Needle, ESearchCase Case, std::size_t From)
{
	constexpr std::size_t WorthPreparing = 1024; // bytes of text
	if (Text.size() >= WorthPreparing)
		return FTextFinder(Needle, Case).Find(Text, From);
	return Case == ESearchCase::CaseSensitive ? Text.find(Needle, From) : Unicode::FindFolded(Text, Needle, From);
}

/** Bytes that the first Count code points take up, all of them when there are fewer. */
std::size_t BytesOfCodePoints(FStringView Text, int32 Count)
{
	std::size_t Position = 0;
	for (; Count > 0 && Position < Text.size(); --Count)
		Unicode::DecodeNext(Text, Position);
	return Position;
}

/** Whether Text goes on with Prefix at Position; moves Position past it when it does. */
bool SkipPrefix(FStringView Text, std::size_t& Position, FStringView Prefix, ESearchCase Case)
{
	FStringView Rest = Text.substr(Position);
	if (Case == ESearchCase::IgnoreCase ? !Unicode::SkipFoldedPrefix(Rest, Prefix) : !Rest.starts_with(Prefix))
		return false;
	Position = Case == ESearchCase::IgnoreCase ? Text.size() - Rest.size() : Position + Prefix.size();
	return true;
}

template <char32_t (*Convert)(char32_t)>
FString ConvertCodePoints(FStringView Text)
{
	std::string Out;
	Out.reserve(Text.size());
	for (std::size_t Position = 0; Position < Text.size();)
		Unicode::AppendUtf8(Out, Convert(Unicode::DecodeNext(Text, Position)));
	return Out;
}

bool IsWhitespace(char32_t CodePoint)
{
	if (CodePoint <= 0x20)
		return CodePoint == ' ' || (CodePoint >= '\t' && CodePoint <= '\r');
	constexpr std::array<char32_t, 8> Spaces = {0x85, 0xA0, 0x1680, 0x2028, 0x2029, 0x202F, 0x205F, 0x3000};
	return (CodePoint >= 0x2000 && CodePoint <= 0x200A) || std::find(Spaces.begin(), Spaces.end(), CodePoint) != Spaces.end();
}
}

FString FString::FromExternal(FStringView Bytes)
{
	return Unicode::RepairUtf8(Bytes);
}

FString FString::FromInt(int64 Value)
{
	return std::to_string(Value);
}

FString FString::Printf(const char* Format, ...)
{
	std::va_list Arguments, SameArguments;
	va_start(Arguments, Format);
	va_copy(SameArguments, Arguments);
	char Short[256];
	const int NumBytes = std::vsnprintf(Short, sizeof(Short), Format, Arguments);
	va_end(Arguments);
	std::string Text(Short, NumBytes < 0 ? 0 : std::min(static_cast<std::size_t>(NumBytes), sizeof(Short) - 1));
	if (NumBytes >= static_cast<int>(sizeof(Short)))
	{
		Text.resize(static_cast<std::size_t>(NumBytes));
		std::vsnprintf(Text.data(), Text.size() + 1, Format, SameArguments);
	}
	va_end(SameArguments);
	return FromExternal(Text); // a precision may have cut a code point in two
}

FString FString::SanitizeFloat(double Value, int32 MinFractionalDigits)
{
	if (std::isnan(Value))
		return "nan";
	if (std::isinf(Value))
		return Value < 0 ? "-inf" : "inf";
	constexpr int MaxFractionalDigits = 6;
	char Digits[328]; // sign, 309 digits of the largest double, point, fraction
	const auto Written = std::to_chars(Digits, Digits + sizeof(Digits), Value, std::chars_format::fixed, MaxFractionalDigits);
	std::string Text(Digits, Written.ptr);
	const std::size_t Point = Text.find('.');
	Text.erase(Text.find_last_not_of('0') + 1);
	Text.resize(std::max(Text.size(), Point + 1 + static_cast<std::size_t>(std::max(MinFractionalDigits, 0))), '0');
	if (Text.back() == '.')
		Text.pop_back();
	if (Text.find_first_not_of("-0.") == std::string::npos && Text.front() == '-')
		Text.erase(0, 1);
	return Text;
}

int32 FString::Len() const
{
	return Unicode::CountCodePoints(Data);
}

bool FString::Equals(FStringView Other, ESearchCase Case) const
{
	return Case == ESearchCase::CaseSensitive ? View() == Other : Unicode::EqualsFolded(Data, Other);
}

int32 FString::Compare(FStringView Other, ESearchCase Case) const
{
	return Case == ESearchCase::CaseSensitive ? View().compare(Other) : Unicode::CompareFolded(Data, Other);
}

bool FString::Contains(FStringView Needle, ESearchCase Case) const
{
	return FindBytes(Data, Needle, Case, 0) != NotFound;
}

bool FString::StartsWith(FStringView Prefix, ESearchCase Case) const
{
	std::size_t Position = 0;
	return SkipPrefix(Data, Position, Prefix, Case);
}

bool FString::EndsWith(FStringView Suffix, ESearchCase Case) const
{
	if (Case == ESearchCase::CaseSensitive)
		return View().ends_with(Suffix);
	std::size_t Start = Data.size();
	for (int32 Count = Unicode::CountCodePoints(Suffix); Count > 0; --Count)
	{
		if (Start == 0)
			return false;
		Start = Unicode::FloorToCodePoint(Data, Start - 1);
	}
	return Unicode::EqualsFolded(View().substr(Start), Suffix);
}

int32 FString::Find(FStringView Needle, ESearchCase Case, int32 Start) const
{
	const int32 From = std::max(Start, 0);
	const std::size_t FromByte = BytesOfCodePoints(Data, From);
	if (FromByte == Data.size() && From > Len())
		return INDEX_NONE;
	const std::size_t Found = FindBytes(Data, Needle, Case, FromByte);
	return Found == NotFound ? INDEX_NONE : From + Unicode::CountCodePoints(View().substr(FromByte, Found - FromByte));
}

FString FString::ToLower() const
{
	return ConvertCodePoints<Unicode::ToLower>(Data);
}

FString FString::ToUpper() const
{
	return ConvertCodePoints<Unicode::ToUpper>(Data);
}

FString FString::Replace(FStringView From, FStringView To, ESearchCase Case) const
{
	if (From.empty())
		return *this;
	const FTextFinder Finder(From, Case);
	std::string Out;
	std::size_t Copied = 0;
	for (std::size_t Found = 0; (Found = Finder.Find(Data, Found)) != NotFound; Copied = Found)
	{
		Out.append(Data, Copied, Found - Copied).append(To);
		SkipPrefix(Data, Found, From, Case);
	}
	return Out.append(Data, Copied);
}

FString FString::Left(int32 Count) const
{
	return View().substr(0, BytesOfCodePoints(Data, Count));
}

FString FString::Right(int32 Count) const
{
	std::size_t Start = Data.size();
	for (; Count > 0 && Start > 0; --Count)
		Start = Unicode::FloorToCodePoint(Data, Start - 1);
	return View().substr(Start);
}

FString FString::Mid(int32 Start, int32 Count) const
{
	const FStringView Rest = View().substr(BytesOfCodePoints(Data, Start));
	return Rest.substr(0, BytesOfCodePoints(Rest, Count));
}

FString FString::TrimStartAndEnd() const
{
	std::size_t Begin = 0;
	for (std::size_t Next = 0; Next < Data.size() && IsWhitespace(Unicode::DecodeNext(Data, Next));)
		Begin = Next;
	std::size_t End = Data.size();
	while (End > Begin)
	{
		const std::size_t Last = Unicode::FloorToCodePoint(Data, End - 1);
		std::size_t Position = Last;
		if (!IsWhitespace(Unicode::DecodeNext(Data, Position)))
			break;
		End = Last;
	}
	return View().substr(Begin, End - Begin);
}

FString FString::TrimQuotes() const
{
	FStringView Rest = Data;
	if (Rest.starts_with('"'))
		Rest.remove_prefix(1);
	if (Rest.ends_with('"'))
		Rest.remove_suffix(1);
	return Rest;
}

int32 FString::ToInt() const
{
	return static_cast<int32>(std::clamp<long long>(std::strtoll(Data.c_str(), nullptr, 10), INT32_MIN, INT32_MAX));
}

TArray<FString> FString::ParseIntoArray(FStringView Separator, bool bCullEmpty) const
{
	TArray<FString> Pieces;
	const auto AddPiece = [&Pieces, bCullEmpty](FStringView Piece)
	{
		if (!Piece.empty() || !bCullEmpty)
			Pieces.Add(Piece);
	};
	std::size_t Begin = 0;
	for (std::size_t Found; !Separator.empty() && (Found = View().find(Separator, Begin)) != NotFound;
		 Begin = Found + Separator.size())
		AddPiece(View().substr(Begin, Found - Begin));
	AddPiece(View().substr(Begin));
	return Pieces;
}

FString FString::Join(const TArray<FString>& Texts, FStringView Separator)
{
	FString Joined;
	for (int32 Index = 0; Index < Texts.Num(); ++Index)
	{
		if (Index > 0)
			Joined += Separator;
		Joined += Texts[Index];
	}
	return Joined;
}

uint64 GetTypeHash(const FString& Text)
{
	return Unicode::HashFolded(Text.View());
}
