#include "Json/JsonText.h"

#include "Core/Text/Unicode.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <limits>

namespace JsonText
{
namespace
{
constexpr bool IsDigit(char Character)
{
	return Character >= '0' && Character <= '9';
}

constexpr bool IsStructural(char Character)
{
	return Character == '{' || Character == '}' || Character == '[' || Character == ']' || Character == ':' || Character == ',';
}

constexpr bool IsLetter(char Character)
{
	return (Character >= 'a' && Character <= 'z') || (Character >= 'A' && Character <= 'Z') || Character == '_';
}

const char* SkipDigits(const char* At, const char* End)
{
	while (At < End && IsDigit(*At))
		++At;
	return At;
}

/** Value of the digits after an 'e', held within bounds that no text can outweigh. */
int64 ReadExponent(std::string_view Text)
{
	constexpr int64 Bound = 1'000'000'000'000;
	const bool bNegative = Text.front() == '-';
	int64 Value = 0;
	for (const char Character : Text)
	{
		if (IsDigit(Character))
			Value = std::min(Value * 10 + (Character - '0'), Bound);
	}
	return bNegative ? -Value : Value;
}

/** Tells too large from too close to zero, of a number that is known to be one of them: by the power of ten of its first digit.
 */
bool IsBeyondLargest(std::string_view Token)
{
	const std::size_t ExponentAt = Token.find_first_of("eE");
	const int64 Exponent = ExponentAt == std::string_view::npos ? 0 : ReadExponent(Token.substr(ExponentAt + 1));
	const std::string_view Mantissa = Token.substr(0, ExponentAt);
	const auto PointAt = static_cast<int64>(std::min(Mantissa.find('.'), Mantissa.size()));
	const auto FirstDigitAt = static_cast<int64>(Mantissa.find_first_of("123456789"));
	return PointAt - FirstDigitAt + Exponent > 0;
}

double ReadDouble(std::string_view Token)
{
	double Value = 0.0;
	if (std::from_chars(Token.data(), Token.data() + Token.size(), Value).ec != std::errc::result_out_of_range)
		return Value;
	const double Magnitude = IsBeyondLargest(Token) ? std::numeric_limits<double>::max() : 0.0;
	return Token.front() == '-' ? -Magnitude : Magnitude;
}

/** Null when what follows the digits before the point is a fraction, an exponent, both or nothing. */
const char* CheckNumberTail(const char* At, const char* End)
{
	if (At < End && *At == '.')
	{
		const char* const Fraction = At + 1;
		At = SkipDigits(Fraction, End);
		if (At == Fraction)
			return "a number needs a digit after its '.'";
	}
	if (At < End && (*At == 'e' || *At == 'E'))
	{
		++At;
		if (At < End && (*At == '+' || *At == '-'))
			++At;
		const char* const Exponent = At;
		At = SkipDigits(Exponent, End);
		if (At == Exponent)
			return "a number needs a digit in its exponent";
	}
	return At == End ? nullptr : "a number holds a character that does not belong there";
}

/** False when the digits exceed 64 bits. */
bool ReadInteger(std::string_view Token, int64& Out)
{
	return std::from_chars(Token.data(), Token.data() + Token.size(), Out).ec == std::errc();
}

/** The four digits after "\u", or a negative value. */
int32 ReadFourHexDigits(std::string_view Text)
{
	if (Text.size() < 4)
		return -1;
	uint32 Value = 0;
	const auto Result = std::from_chars(Text.data(), Text.data() + 4, Value, 16);
	return Result.ptr == Text.data() + 4 ? static_cast<int32>(Value) : -1;
}

char UnescapeCharacter(char Character)
{
	switch (Character)
	{
		case '"':
		case '\\':
		case '/':
			return Character;
		case 'b':
			return '\b';
		case 'f':
			return '\f';
		case 'n':
			return '\n';
		case 'r':
			return '\r';
		case 't':
			return '\t';
		default:
			return '\0';
	}
}

/** Reads one "\u" escape, or two that make a pair, and moves Position past it. False when hexadecimal digits are missing. */
bool UnescapeCodePoint(std::string_view Inside, std::size_t& Position, char*& Out)
{
	const int32 First = ReadFourHexDigits(Inside.substr(Position + 2));
	if (First < 0)
		return false;
	Position += 6;
	auto CodePoint = static_cast<char32_t>(First);
	if (First >= 0xD800 && First < 0xDC00 && Inside.substr(Position, 2) == "\\u")
	{
		const int32 Second = ReadFourHexDigits(Inside.substr(Position + 2));
		if (Second >= 0xDC00 && Second < 0xE000)
		{
			CodePoint = static_cast<char32_t>(0x10000 + ((First - 0xD800) << 10) + (Second - 0xDC00));
			Position += 6;
		}
	}
	std::string Utf8; // stays within the small buffer; a lone surrogate appends U+FFFD
	Unicode::AppendUtf8(Utf8, CodePoint);
	Out = std::copy(Utf8.begin(), Utf8.end(), Out);
	return true;
}

std::string DescribeControlCharacter(char Character)
{
	if (Character == '\n' || Character == '\r')
		return "the string is not closed before the end of its line; close it, or write a line break as \\n";
	char Text[80];
	std::snprintf(
		Text, sizeof(Text), "the control character U+%04X in a string must be written as \\u%04x", Character, Character);
	return Text;
}

/** Moves At from the opening quote past the closing one; false, with Broken filled, where there is none. */
bool SkipString(std::string_view Text, std::size_t& At, FBrokenString& Broken)
{
	const std::size_t Start = At++;
	for (; At < Text.size() && Text[At] != '"'; ++At)
	{
		if (static_cast<unsigned char>(Text[At]) < 0x20)
		{
			Broken = {Start, At, DescribeControlCharacter(Text[At])};
			return false;
		}
		if (Text[At] == '\\')
			++At;
	}
	if (At >= Text.size())
		Broken = {Start, Start, "the string that starts here is not closed"};
	++At;
	return Broken.Text.empty();
}
}

FPlace Locate(std::string_view Text, std::size_t Offset)
{
	const std::string_view Before = Text.substr(0, Offset);
	const std::size_t LineStart = Before.rfind('\n') + 1; // 0 in the first line
	return {.Line = 1 + static_cast<int32>(std::count(Before.begin(), Before.end(), '\n')),
		.Column = 1 + Unicode::CountCodePoints(Before.substr(LineStart))};
}

const char* ReadNumber(std::string_view Token, FNumber& Out)
{
	const char* const End = Token.data() + Token.size();
	const char* const Digits = Token.data() + (Token.front() == '-' ? 1 : 0);
	const char* const At = SkipDigits(Digits, End);
	if (At == Digits)
		return "a number needs a digit after its '-'";
	if (*Digits == '0' && At - Digits > 1)
		return "a number must not have a leading zero";
	Out.bIsInteger = At == End && ReadInteger(Token, Out.Integer);
	if (Out.bIsInteger)
		return nullptr;
	if (const char* const Fault = CheckNumberTail(At, End))
		return Fault;
	Out.Double = ReadDouble(Token);
	return nullptr;
}

bool Unescape(std::string_view Inside, char*& Out, FEscapeFault& Fault)
{
	std::size_t Position = 0;
	while (Position < Inside.size())
	{
		const std::size_t Escape = std::min(Inside.find('\\', Position), Inside.size());
		Out = std::copy(
			Inside.begin() + static_cast<std::ptrdiff_t>(Position), Inside.begin() + static_cast<std::ptrdiff_t>(Escape), Out);
		Position = Escape;
		if (Position == Inside.size())
			return true;
		const char Kind = Position + 1 < Inside.size() ? Inside[Position + 1] : '\0';
		if (Kind == 'u')
		{
			if (!UnescapeCodePoint(Inside, Position, Out))
			{
				Fault = {Escape, "\\u needs four hexadecimal digits"};
				return false;
			}
			continue;
		}
		const char Character = UnescapeCharacter(Kind);
		if (Character == '\0')
		{
			Fault = {Escape, "a '\\' must be written as \\\\ unless it starts one of \\\" \\\\ \\/ \\b \\f \\n \\r \\t \\u"};
			return false;
		}
		*Out++ = Character;
		Position += 2;
	}
	return true;
}

FBrokenString FindTokens(std::string_view Text, std::vector<uint32>& Tokens)
{
	FBrokenString Broken;
	std::size_t At = 0;
	while (At < Text.size())
	{
		const char First = Text[At];
		if (IsBlank(First))
		{
			++At;
			continue;
		}
		Tokens.push_back(static_cast<uint32>(At));
		if (First == '"')
		{
			if (!SkipString(Text, At, Broken))
				return Broken;
			continue;
		}
		++At;
		while (!IsStructural(First) && At < Text.size() && !IsBlank(Text[At]) && !IsStructural(Text[At]) && Text[At] != '"')
			++At;
	}
	return Broken;
}

std::string DescribeNoValue(std::string_view Rest)
{
	constexpr std::size_t LongestWord = 24; // longer ones are cut in the message
	const char First = Rest.front();
	std::size_t Length = 0;
	while (Length < Rest.size() && Length < LongestWord && (IsLetter(Rest[Length]) || IsDigit(Rest[Length])))
		++Length;
	const std::string Word(Rest.substr(0, Length));
	if (Word == "NaN" || Word == "Infinity")
		return "JSON has no " + Word + "; write a number or null";
	if (IsLetter(First))
		return "'" + Word + "' is not a JSON value; write true, false or null, and strings in double quotes";
	if (First == '\'')
		return "a string needs double quotes";
	if (First == '/' || First == '#')
		return "JSON has no comments";
	if (First == '+')
		return "a number must not start with '+'";
	if (First == '.')
		return "a number needs a digit before its '.'";
	if (IsStructural(First))
		return std::string("a value is missing before the '") + First + "'";
	std::size_t Position = 0;
	char Text[48];
	std::snprintf(Text, sizeof(Text), "unexpected character U+%04X", static_cast<unsigned>(Unicode::DecodeNext(Rest, Position)));
	return Text;
}
}
