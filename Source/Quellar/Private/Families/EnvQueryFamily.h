#pragma once

#include "Quellar/Search/AssetSearchService.h"

/** Family "EnvQuery": options, generators and tests, and what properties their classes have. Loads queries. */
void SearchEnvQueries(const FAssetSearchParams& Params, FOnAssetSearchComplete OnDone);
