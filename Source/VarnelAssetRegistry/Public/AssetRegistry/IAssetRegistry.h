#pragma once

#include "AssetRegistry/AssetData.h"
#include "AssetRegistry/AssetPaths.h"
#include "AssetRegistry/BlueprintIndex.h"
#include "AssetRegistry/PackageGraph.h"
#include "Core/Program/Module.h"

#include <functional>

/** Which assets a query asks for. Empty lists do not restrict; entries of one list are alternatives, lists restrict together. */
struct FARFilter
{
	TArray<FName> PackageNames;
	TArray<FName> PackagePaths;
	TArray<FTopLevelAssetPath> ClassPaths;
	bool bRecursiveClasses = false;		   // also derived classes: native, declared, and generated from Blueprints
	bool bRecursivePaths = false;		   // also folders below
	bool bIncludeOnlyOnDiskAssets = false; // every asset of the headless engine is on disk
};

/** A neighbour in the package dependency graph. */
struct FPackageDependency
{
	FName PackageName;
	uint8 Flags = 0; // EDependencyFlags
};

/**
 * What is known about the project's assets without loading any. Answers come in registry order: packages ascending by long name
 * without regard to case (ties in byte order), the assets of a package in file order. Queries may run on any thread once the
 * project is open; they see one state.
 */
class IAssetRegistry
{
public:
	virtual ~IAssetRegistry() = default;

	/** Appends the assets that pass the filter; an empty filter passes all. */
	virtual void GetAssets(const FARFilter& Filter, TArray<FAssetData>& OutAssets, bool bSkipARFilteredAssets = true) const = 0;
	/** Visits what GetAssets would append, until Visit returns false. */
	virtual void EnumerateAssets(const FARFilter& Filter, const std::function<bool(const FAssetData&)>& Visit,
		bool bSkipARFilteredAssets = true) const = 0;
	/** An invalid record when there is none. */
	virtual FAssetData GetAssetByObjectPath(
		const FSoftObjectPath& ObjectPath, bool bIncludeOnlyOnDiskAssets = false, bool bSkipARFilteredAssets = true) const = 0;
	virtual void GetAssetsByPackageName(FName PackageName, TArray<FAssetData>& OutAssets, bool bIncludeOnlyOnDiskAssets = false,
		bool bSkipARFilteredAssets = true) const = 0;
	/** The package of that long name, in the registry's spelling; None when no file holds one. For texts that callers give:
	 * making an FName of such a text keeps it for good, looking it up does not. */
	virtual FName FindPackage(FStringView LongName) const = 0;

	/**
	 * Appends the package's neighbours: dependencies in file order, referencers in registry order of the referencing package.
	 * False for an unknown package; one without a file that others refer to (missing, or a script package) is known, and has
	 * referencers only. Neighbours are named as their own files spell them.
	 */
	virtual bool GetDependencies(FName PackageName, TArray<FPackageDependency>& OutDependencies) const = 0;
	virtual bool GetReferencers(FName PackageName, TArray<FPackageDependency>& OutReferencers) const = 0;
	/** Numbers of the above, without listing them. */
	virtual int32 GetNumDependencies(FName PackageName) const = 0;
	virtual int32 GetNumReferencers(FName PackageName) const = 0;
	/** The same graph by numbers, for walks; empty for a registry that keeps none. */
	virtual FPackageGraphView GetPackageGraph() const { return {}; }

	/** Rises whenever answers may have changed, so that what was made from answers can be kept; always 0 for a registry that does
	 * not count. */
	virtual uint64 GetStateNumber() const { return 0; }

	/** Classes above a class path, nearest first, as far as they are known. */
	virtual void GetAncestorClasses(const FTopLevelAssetPath& ClassPath, TArray<FTopLevelAssetPath>& OutAncestors) const = 0;

	/** The object paths of all assets, for searches; empty for a registry that keeps no such columns. */
	virtual FAssetPathView GetAssetPaths() const { return {}; }
	/** What Blueprints list for searches; empty for a registry that keeps no such lists. */
	virtual FBlueprintIndexView GetBlueprintIndex() const { return {}; }
};

/** The module "AssetRegistry"; loaded while a project is open. */
class FAssetRegistryModule : public IModuleInterface
{
public:
	virtual IAssetRegistry& Get() = 0;
};
