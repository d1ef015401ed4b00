#pragma once

#include "Quellar/Search/AssetSearchService.h"

/**
 * Family "Blueprint": what the index lists of Blueprints, the widgets and animations of widget Blueprints, and the names of all
 * Blueprints. Loads widget Blueprints. OnDone is executed once, later, on the game thread; never for an empty term, which the
 * index does not search for, and never when another search takes this one's place.
 */
void SearchBlueprints(const FAssetSearchParams& Params, FOnAssetSearchComplete OnDone);
