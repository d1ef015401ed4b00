#pragma once

#include "Core/Text/String.h"

#include <string>

/** Texts of files and callers on their way to people. Any thread. */
namespace Printable
{
/** A terminal takes it for a command, or shows the text around it in another order: control characters, separators of lines, and
 * what sets the direction of text. */
bool IsSteering(char32_t CodePoint);
/** Appends a text in which such characters are written as escapes ("\n", "\x1b", "\u202e"), and ill-formed bytes as U+FFFD. */
void Append(std::string& Out, FStringView Text);
/** What has its lines, tabs and colours on purpose: these stay, all else is written as "\u202e", which in JSON means the same. */
std::string FilterLaidOut(FStringView Text);
}
