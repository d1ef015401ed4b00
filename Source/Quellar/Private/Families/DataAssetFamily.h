#pragma once

#include "Quellar/Search/AssetSearchService.h"

/** Family "DataAsset": input actions and mapping contexts, the class, and the defaults that it declares; values that the asset
 * itself sets are not seen. Loads data assets. */
void SearchDataAssets(const FAssetSearchParams& Params, FOnAssetSearchComplete OnDone);
