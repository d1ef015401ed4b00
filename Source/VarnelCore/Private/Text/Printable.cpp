#include "Core/Text/Printable.h"

#include "Core/Text/Unicode.h"

#include <algorithm>
#include <iterator>

namespace
{
struct FCodePointRange
{
	char32_t First;
	char32_t Last;
};
constexpr FCodePointRange Steering[] = {
	{0x00, 0x1F},
	{0x7F, 0x9F},
	{0x061C, 0x061C}, // the marks of direction, then embeddings and overrides, then isolates
	{0x200E, 0x200F},
	{0x2028, 0x2029}, // separators of lines and paragraphs
	{0x202A, 0x202E},
	{0x2066, 0x2069},
};

FString DescribeCodePoint(char32_t CodePoint)
{
	if (CodePoint == '\n')
		return "\\n";
	return FString::Printf(CodePoint < 0x100 ? "\\x%02x" : "\\u%04x", static_cast<unsigned>(CodePoint));
}

/** Length of a sequence that sets colour or weight at the text's beginning; 0 where there is none. */
std::size_t MeasureColor(FStringView Text)
{
	if (!Text.starts_with("\x1b["))
		return 0;
	const std::size_t End = Text.find_first_not_of("0123456789;", 2);
	return End != FStringView::npos && Text[End] == 'm' ? End + 1 : 0;
}
}

bool Printable::IsSteering(char32_t CodePoint)
{
	return std::any_of(std::begin(Steering), std::end(Steering),
		[CodePoint](const FCodePointRange& Range) { return Range.First <= CodePoint && CodePoint <= Range.Last; });
}

void Printable::Append(std::string& Out, FStringView Text)
{
	const std::string Repaired = Unicode::IsValidUtf8(Text) ? std::string() : Unicode::RepairUtf8(Text);
	const FStringView Valid = Repaired.empty() ? Text : FStringView(Repaired);
	for (std::size_t Position = 0; Position < Valid.size();)
	{
		const std::size_t Start = Position;
		const char32_t CodePoint = Unicode::DecodeNext(Valid, Position);
		if (IsSteering(CodePoint))
			Out += DescribeCodePoint(CodePoint).View();
		else
			Out.append(Valid.substr(Start, Position - Start));
	}
}

std::string Printable::FilterLaidOut(FStringView Text)
{
	std::string Out;
	Out.reserve(Text.size());
	const std::string Valid = Unicode::RepairUtf8(Text);
	for (std::size_t Position = 0; Position < Valid.size();)
	{
		const std::size_t Start = Position;
		const char32_t CodePoint = Unicode::DecodeNext(Valid, Position);
		const std::size_t ColorLength = MeasureColor(FStringView(Valid).substr(Start));
		Position = std::max(Position, Start + ColorLength);
		if (IsSteering(CodePoint) && CodePoint != '\n' && CodePoint != '\t' && ColorLength == 0)
			Out += FString::Printf("\\u%04x", static_cast<unsigned>(CodePoint)).View();
		else
			Out.append(FStringView(Valid).substr(Start, Position - Start));
	}
	return Out;
}
