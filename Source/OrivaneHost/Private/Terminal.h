#pragma once

#include "Core/String.h"

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
bool IsStdinTerminal();
bool IsStdoutTerminal();
bool IsStderrTerminal();
bool UsesColor(EColor Color);
/** Writes and flushes; false when nobody reads any more. */
bool Print(FStringView Text);
void PrintError(FStringView Text);
/** Text fit for a terminal: control characters are shown as escapes, so that no file or asset name can steer the terminal. */
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
