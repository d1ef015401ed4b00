#pragma once

#include "Quellar/Search/AssetSearchService.h"

/** Family "Blackboard": the parent, and the keys by name, description and type. Loads blackboards and their parents. */
void SearchBlackboards(const FAssetSearchParams& Params, FOnAssetSearchComplete OnDone);
