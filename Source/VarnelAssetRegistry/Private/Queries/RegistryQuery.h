#pragma once

#include "AssetRegistry/IAssetRegistry.h"
#include "Queries/RegistrySnapshot.h"

/**
 * Visits the assets that pass a filter, in registry order, until Visit returns false. Costs the number of assets that the
 * narrowest list of the filter lets through.
 */
void VisitAssets(const FRegistrySnapshot& Snapshot, const FARFilter& Filter, const std::function<bool(uint32 Asset)>& Visit);
