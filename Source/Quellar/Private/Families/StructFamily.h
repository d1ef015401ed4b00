#pragma once

#include "Quellar/Search/AssetSearchService.h"

/** Family "Struct": parent, category, tooltip, and the fields by internal name and property class. Loads structures. */
void SearchStructs(const FAssetSearchParams& Params, FOnAssetSearchComplete OnDone);
