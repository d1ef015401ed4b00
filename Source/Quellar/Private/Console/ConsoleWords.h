#pragma once

#include "Core/Text/String.h"
#include "Core/Text/Unicode.h"

/** Whether a console word begins with a key such as "term=", whatever its case; OutValue is then the rest without its quotes. */
inline bool ReadWord(const FString& Word, FStringView Key, FString& OutValue)
{
	FStringView Value = Word.View();
	if (!Unicode::SkipFoldedPrefix(Value, Key))
		return false;
	OutValue = FString(Value).TrimQuotes();
	return true;
}
