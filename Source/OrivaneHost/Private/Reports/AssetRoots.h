#pragma once

#include "AssetRegistry/PackageGraph.h"

#include <vector>

/** Where the use of assets begins. Game thread, the project is open. */
namespace AssetRoots
{
/** Levels, primary data assets, and what the settings files in the folder Config name. */
std::vector<FPackageGraphView::FNode> FindDefault(const FPackageGraphView& Graph);
/** Adds what a path names, in any form that explorations take, or, with a slash at its end, all packages below a folder. False,
 * and no addition, where there is no asset. */
bool AddNamed(const FPackageGraphView& Graph, const FString& Path, std::vector<FPackageGraphView::FNode>& Roots);
}
