#pragma once

#include "Core/Base/Containers.h"
#include "Core/Text/String.h"

/** The file's extension is one of the settings' text extensions, or of the default ones where the settings list none. Case is
 * ignored. Any thread. */
bool IsSearchableTextFile(FStringView Path);

/** Files that a search of text files would have read and could not, relative to the project. */
struct FTextSearchGaps
{
	TArray<FString> TooLarge;	// above FFileHelper::MaxTextFileBytes
	TArray<FString> Unreadable; // folders too, with a slash at the end
};

/** Of the last search that included text files; empty before. Game thread; valid until the next search. */
const FTextSearchGaps& GetTextSearchGaps();
