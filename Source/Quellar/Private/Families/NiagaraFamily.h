#pragma once

#include "Quellar/Search/AssetSearchService.h"

/**
 * Family "NiagaraSystem": particle systems. By the settings' NiagaraSearchMode it matches asset names from the registry, or reads
 * effect types, emitters, renderers and user parameters of the systems that are in memory. Loads nothing in either mode.
 */
void SearchNiagaraSystems(const FAssetSearchParams& Params, FOnAssetSearchComplete OnDone);
