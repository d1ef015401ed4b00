#pragma once

#include "Core/Text/String.h"

/** How much a line of the log matters. */
enum class ELogVerbosity : uint8
{
	Error,
	Warning,
};

/** Named source of log lines. */
struct FLogCategory
{
	const char* Name;
};

/** Lines for the people who run the program as a server. */
namespace Log
{
/**
 * Writes "[Category] Verbosity: text" as one line to standard error. Never blocks: what a full pipe does not take is dropped and
 * its number reported once they are read again; where they are not any more nothing happens, given that the process ignores
 * SIGPIPE. Any thread.
 */
void Write(const FLogCategory& Category, ELogVerbosity Verbosity, const FString& Text);
}

#define DECLARE_LOG_CATEGORY(Category) extern const FLogCategory Category
#define DEFINE_LOG_CATEGORY(Category)                                                                                            \
	const FLogCategory Category                                                                                                  \
	{                                                                                                                            \
#Category                                                                                                                \
	}
