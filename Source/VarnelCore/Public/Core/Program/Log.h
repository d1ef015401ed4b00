#pragma once

#include "Core/Text/String.h"

enum class ELogVerbosity : uint8
{
	Error,
	Warning,
	Display,
	Verbose,
};

/** Named source of log lines. */
struct FLogCategory
{
	const char* Name;
};

/**
 * Log lines go to standard error through a bounded queue and a writer thread: logging never blocks, also when nobody reads
 * standard error; when the queue is full the oldest lines are dropped and the next line that gets through tells how many. Any
 * thread.
 */
namespace Log
{
/** Lines above the level are dropped where they arise. Default: Warning. */
void SetLevel(ELogVerbosity Level);
bool IsEnabled(ELogVerbosity Verbosity);
void Write(const FLogCategory& Category, ELogVerbosity Verbosity, const FString& Text);
/** Waits until what was queued is written, at most MaxMilliseconds. */
void Flush(int32 MaxMilliseconds = 200);
}

#define DECLARE_LOG_CATEGORY(Category) extern const FLogCategory Category
#define DEFINE_LOG_CATEGORY(Category)                                                                                            \
	const FLogCategory Category                                                                                                  \
	{                                                                                                                            \
#Category                                                                                                                \
	}
