#pragma once

#include "Core/Base/Types.h"

#include <string>
#include <string_view>

/**
 * UTF-8 and simple case folding (Unicode 15: status C and S of the case folding data; code point to code point).
 * All functions are pure and may be called from any thread; tables are built once on first use.
 */
namespace Unicode
{
constexpr char32_t ReplacementCharacter = 0xFFFD;

bool IsAscii(std::string_view Bytes);
bool IsValidUtf8(std::string_view Bytes);
/** Replaces every ill-formed sequence by one U+FFFD per maximal subpart. */
std::string RepairUtf8(std::string_view Bytes);
/** Appends the UTF-8 form; surrogates and values above U+10FFFF append U+FFFD. */
void AppendUtf8(std::string& Out, char32_t CodePoint);
/** Decodes the code point at Position (valid UTF-8) and moves Position past it. */
char32_t DecodeNext(std::string_view Text, std::size_t& Position);
int32 CountCodePoints(std::string_view Text);
/** Where the code point starts that the byte at Position lies in: a text that is cut there stays well-formed. The text's end for
 * positions at or after it. */
std::size_t FloorToCodePoint(std::string_view Text, std::size_t Position);
/** UTF-16 code units to UTF-8; lone surrogates become U+FFFD, an odd last byte too. */
std::string Utf16ToUtf8(std::string_view Bytes, bool bBigEndian);

char32_t FoldCase(char32_t CodePoint);
char32_t ToLower(char32_t CodePoint);
char32_t ToUpper(char32_t CodePoint);
/** Appends the folded text. Ill-formed bytes are copied as they are. The byte length may change, the number of code points does
 * not. */
void AppendFolded(std::string& Out, std::string_view Text);
std::string Fold(std::string_view Text);
/** Order of folded code points: negative, zero or positive. No allocation. */
int32 CompareFolded(std::string_view A, std::string_view B);
bool EqualsFolded(std::string_view A, std::string_view B);
/** Whether Text begins with Prefix; cuts it off when it does. The cut part may be longer or shorter in bytes than Prefix. */
bool SkipFoldedPrefix(std::string_view& Text, std::string_view Prefix);
/** Equal for texts that EqualsFolded calls equal. Seeded: differs from run to run, see SeededHash.h. */
uint64 HashFolded(std::string_view Text);
}
