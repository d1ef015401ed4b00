#pragma once

#include "AssetRegistry/IAssetRegistry.h"

/** Rules of the walk that callers may want to ask for. */
namespace GraphTraversalUtils
{
/** Whether the package has at most MaxFanout dependencies (or referencers), counted before any filter: a hub is shown, but not
 * walked through. Kept for callers. */
bool ShouldExpandNode(const IAssetRegistry& Registry, const FName& Package, int32 MaxFanout, bool bDependencies);

/** "RuntimeDependency", "RuntimeReferencer", "EditorDependency" or "EditorReferencer". Kept for callers. */
FString BuildRelationString(bool bRuntime, bool bDependency);
}
