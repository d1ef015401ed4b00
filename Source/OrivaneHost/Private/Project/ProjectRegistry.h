#pragma once

#include "AssetRegistry/AssetRegistry.h"

/** The registry of the open project; lives as long as the program, and is empty while no project is open. Game thread, but for
 * what the registry itself allows. */
FAssetRegistry& GetProjectRegistry();
/** Packages with an asset that passes the filter, registry-filtered ones included, in registry order. */
TArray<FName> ListProjectPackages(const FARFilter& Filter = {});
