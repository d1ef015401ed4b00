#pragma once

#include "Quellar/AssetSearchService.h"

/** Family "Text": project files with a searchable extension that contain the term (in exact mode: that are the term). Reads
 * files, touches no asset. */
void SearchTextFiles(const FAssetSearchParams& Params, FOnAssetSearchComplete OnDone);

/** The file's extension is one of the settings' text extensions, or of the default ones where the settings list none. Case is
 * ignored. Any thread. */
bool IsSearchableTextFile(FStringView Path);

/** Contains, or in exact mode equals as a whole. */
bool TextContentMatches(const FString& Content, const FAssetSearchParams& Params, bool bExact, bool bCaseSensitive);
