#pragma once

#include "Quellar/Search/AssetSearchService.h"

/**
 * Family "Material": materials, material instances and material functions. By the settings' MaterialSearchMode it matches asset
 * names from the registry, or loads every one of them for parents, parameters and values; a material's own name is no hit then.
 */
void SearchMaterials(const FAssetSearchParams& Params, FOnAssetSearchComplete OnDone);
