#pragma once

#include "Quellar/Search/AssetSearchService.h"

/** Family "Enum": entries of user-defined enumerations by display name and internal name. Loads enumerations. */
void SearchEnums(const FAssetSearchParams& Params, FOnAssetSearchComplete OnDone);
