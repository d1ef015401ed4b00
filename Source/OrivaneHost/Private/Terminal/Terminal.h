#pragma once

#include "Core/Text/String.h"

#include <stop_token>

/** Whether and how to colour, as users ask for it. */
enum class EColor : uint8
{
	Auto, // on a terminal, unless NO_COLOR is set; CLICOLOR_FORCE turns it on
	Always,
	Never,
};

/** What is written where: data to standard output, words about the work to standard error. */
namespace Terminal
{
/** Before anything is opened: a standard stream that is closed reads as empty and cannot be written, and its number goes to no
 * other file. */
void FillClosedStreams();
bool IsStdinTerminal();
bool IsStdoutTerminal();
bool IsStderrTerminal();
bool UsesColor(EColor Color);
/** Columns of the terminal that standard output is; 0 where it is none. */
int32 GetWidth();
/** Writes and flushes; false when it cannot be written; GetOutputError says so from then on. To a terminal nothing of the text
 * goes that steers it, but for lines, tabs and colours; other readers get it byte for byte. */
bool Print(FStringView Text);
/** Why standard output could not be written, an error number of the system; 0 as long as all is well. */
int GetOutputError();
/** Bytes of standard input, 0 at its end; negative on an error, with the reason in errno, and when the user interrupts the wait,
 * as Interrupt::IsRequested tells then. */
int64 ReadInput(char* Buffer, std::size_t MaxBytes);
void PrintError(FStringView Text);
/** Text fit for a line on a terminal: what would steer it is shown as escapes, see Core/Text/Printable.h, so that no file or
 * asset name can. */
FString Sanitize(FStringView Text);
}

/** Ctrl-C and termination requests. */
namespace Interrupt
{
/** From here on the first request stops the token; a second one ends the process at once. Once per process. */
void Install();
std::stop_token GetToken();
bool IsRequested();
}
