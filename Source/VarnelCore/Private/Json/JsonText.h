#pragma once

#include "Core/Base/Types.h"

#include <string>
#include <string_view>
#include <vector>

/** The lexical rules of JSON: pure functions over a text or one of its tokens. The texts are valid UTF-8. */
namespace JsonText
{
constexpr bool IsBlank(char Character)
{
	return Character == ' ' || Character == '\n' || Character == '\t' || Character == '\r';
}

struct FPlace
{
	int32 Line = 1;
	int32 Column = 1; // in code points
};

/** The place of a byte. Linear in its offset. */
FPlace Locate(std::string_view Text, std::size_t Offset);

struct FNumber
{
	bool bIsInteger = false; // fits int64
	int64 Integer = 0;
	double Double = 0.0;
};

/**
 * Reads a token that starts with '-' or a digit. Null when it is a number, otherwise what is wrong with it.
 * A number beyond the range of double becomes the largest finite one of its sign, one too close to zero becomes zero; "-0" is the
 * integer 0.
 */
const char* ReadNumber(std::string_view Token, FNumber& Out);

/** What is wrong with an escape, and where it starts in the string. */
struct FEscapeFault
{
	std::size_t Position = 0;
	const char* Text = nullptr;
};

/**
 * Writes what is between the quotes of a string without its escapes, at most as many bytes as it has, and moves Out past
 * them. A lone surrogate becomes U+FFFD. False at the first escape that is none.
 */
bool Unescape(std::string_view Inside, char*& Out, FEscapeFault& Fault);

/** A string that no token can be made of: it is not closed, or holds a control character. */
struct FBrokenString
{
	std::size_t Start = std::string_view::npos; // of its opening quote; npos when all strings are whole
	std::size_t Position = 0;					// of the fault
	std::string Text;
};

/**
 * Lists where the tokens of a text start: brackets, ':', ',', the opening quotes of strings, and runs of other characters.
 * A broken string is the last token listed. Much slower than the vector search that does the same for whole texts.
 */
FBrokenString FindTokens(std::string_view Text, std::vector<uint32>& Tokens);

/** Why the token at the start of Rest is not a value, as a sentence for people. Rest is not empty. */
std::string DescribeNoValue(std::string_view Rest);
}
