#pragma once

#include "Quellar/Search/AssetSearchService.h"

/** Family "DataTable": row structure, its first columns, and the row count. Cells are never read. Loads tables. */
void SearchDataTables(const FAssetSearchParams& Params, FOnAssetSearchComplete OnDone);
