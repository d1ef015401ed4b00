#pragma once

#include "Quellar/Hits/AssetSearchTypes.h"

/** The file's extension is one of the settings' text extensions, or of the default ones where the settings list none. Case is
 * ignored. Any thread. */
bool IsSearchableTextFile(FStringView Path);

/** Whether text contains the term, or in exact mode equals it as a whole; Params gives the term. For callers that have the text:
 * the search itself does not hold whole files. Kept for callers. */
bool TextContentMatches(const FString& Content, const FAssetSearchParams& Params, bool bExact, bool bCaseSensitive);

/** Files that a search of text files would have read and could not, relative to the project. */
struct FTextSearchGaps
{
	TArray<FString> TooLarge;	// above FFileHelper::MaxTextFileBytes
	TArray<FString> Unreadable; // folders too, with a slash at the end
};

/** Of the last search that included text files; empty before. Game thread; valid until the next search. */
const FTextSearchGaps& GetTextSearchGaps();
