#pragma once

#include "Core/String.h"

/** Whether a console word begins with a key such as "term=", whatever its case; OutValue is then the rest without its quotes. */
inline bool ReadWord(const FString& Word, FStringView Key, FString& OutValue)
{
	if (!Word.StartsWith(Key))
		return false;
	OutValue = FString(Word.View().substr(Key.size())).TrimQuotes();
	return true;
}
