#pragma once

#include "AssetRegistry/PackageGraph.h"

/** What the graph asks of a path, a package and a kind. */
namespace AssetPathUtils
{
/**
 * The package that a text names: a long package name or object path below /Game, /Script or /Engine (what follows the last "."
 * is cut; the package need not exist), or whatever FPackageName::TryConvertFilenameToLongPackageName accepts, such as a package's
 * file or a path below another mounted root. Named as the registry spells it, where that knows the package. False, and Out as it
 * was, for an empty text, a bare name, a name longer than any package's, and everything else.
 */
bool NormalizeToPackageName(const FString& Path, FName& Out);

/** The asset named like its package without regard to case, else the package's first one; false for a package without assets.
 * Registry-filtered assets do not count. */
bool GetRepresentativeAsset(const FName& Package, FAssetData& Out);
/** The same by numbers. */
TOptional<uint32> FindRepresentativeAsset(const FPackageGraphView& Graph, FPackageGraphView::FNode Node);

/** Whether an asset type says something about a game's structure, so that a graph is worth walking through it. Case is ignored.
 */
bool IsHighSignalKind(const FString& Kind);
}
