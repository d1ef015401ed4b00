#pragma once

#include "Quellar/Families/TextSearch.h"
#include "Quellar/Search/AssetSearchService.h"

/** Family "Text": project files with a searchable extension that contain the term (in exact mode: that are the term). Reads
 * files, touches no asset. */
void SearchTextFiles(const FAssetSearchParams& Params, FOnAssetSearchComplete OnDone);

/** Contains, or in exact mode equals as a whole. */
bool TextContentMatches(const FString& Content, const FAssetSearchParams& Params, bool bExact, bool bCaseSensitive);
