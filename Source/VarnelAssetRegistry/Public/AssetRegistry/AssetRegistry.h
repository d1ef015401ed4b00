#pragma once

#include "AssetRegistry/IAssetRegistry.h"
#include "Core/Program/Diagnostics.h"
#include "CoreObject/Packages/PackageSource.h"

#include <atomic>
#include <span>
#include <stop_token>
#include <string>

/** Folder whose packages a registry lists. */
struct FRegistryRoot
{
	FString Root;	// "/Game"
	FString Folder; // absolute, with a trailing slash
};

/** What a scan does with the cache file. */
enum class ERegistryCache : uint8
{
	Use,	 // read it, and write it when something changed
	Ignore,	 // neither read nor write
	Rebuild, // write a new one without looking at the old
};

/** What a scan looks at. What it points to must outlive the scan. */
struct FRegistryScanOptions
{
	TArray<FRegistryRoot> Roots;
	TArray<const IPackageSource*> Sources;
	FString ProjectFolder;		  // for the names in diagnostics
	TArray<FString> CacheFolders; // tried in order for reading and for writing; the file in them is named by the registry
	ERegistryCache Cache = ERegistryCache::Use;
	int32 NumThreads = 0; // 0: all processors
	/** An update: packages that have changed, kept beside the image, from which on a new image is made in the background. */
	int32 FoldAt = 512;
	FDiagnosticSink* Diagnostics = nullptr; // null: faults are not told
	/** Files done so far and in all, for progress; may be null. */
	std::atomic<int32>* NumDone = nullptr;
	std::atomic<int32>* NumTotal = nullptr;
	std::stop_token Stop;
};

/** What a scan did, for `info` and benchmarks. Seconds are wall-clock. */
struct FRegistryScanReport
{
	int32 NumFiles = 0;
	int32 NumParsed = 0;  // files whose header was read; the others came from the cache
	int32 NumSkipped = 0; // files that gave no package
	bool bCacheUsed = false;
	bool bCacheWritten = false;
	FString CacheFile;	// where it was read from or written to; "" when nowhere
	FString CacheError; // why it could not be written anywhere, for people; "" when it was, or needed not be
	FString CacheState; // one phrase for people: "up to date", "updated (12 files)", "rebuilt: damaged", ...
	double ListSeconds = 0;
	double ParseSeconds = 0;
	double BuildSeconds = 0;
};

/** What became of FAssetRegistry::Update. */
enum class ERegistryUpdate : uint8
{
	Unchanged, // no package was concerned
	Updated,
	Stopped, // the registry keeps what it held, and the change is not forgotten: the next update makes up for it
};

class FLiveRegistry;

/**
 * The headless registry: one immutable image of columns, swapped whole by a scan, and what has changed since in a small overlay.
 */
class FAssetRegistry : public IAssetRegistry
{
public:
	FAssetRegistry();
	~FAssetRegistry() override;

	/**
	 * Lists the packages below the roots, reads the headers that the cache does not know, and replaces what the registry holds. A
	 * file that cannot be read or parsed, a name that is taken (without regard to case; the first in byte order stays) or no
	 * valid package name is reported and skipped. False only when stopped: the registry then keeps what it held.
	 */
	bool Scan(const FRegistryScanOptions& Options, FRegistryScanReport& OutReport);
	/**
	 * Brings a registry that has been scanned up to date after files have changed, appeared or gone, and whatever is at or below
	 * folders (with a trailing slash); absolute, bytes of the file system, others than packages may be among them. Costs the
	 * changed files and those of the last updates, not the project; only where names clash, or very many files have changed, is
	 * everything listed again. The options are those of the scan. Afterwards queries answer as after a new scan.
	 */
	ERegistryUpdate Update(const FRegistryScanOptions& Options, std::span<const std::string> Files,
		std::span<const std::string> Folders, FRegistryScanReport& OutReport);
	/** Declares the parents of classes that are not Blueprint-generated (native and declared ones), before a scan. */
	void SetClassParents(const TArray<std::pair<FTopLevelAssetPath, FTopLevelAssetPath>>& ChildAndParent);

	int32 NumPackages() const;
	int32 NumAssets() const;
	int64 NumDependencies() const;
	/** Bytes of the image in memory. */
	int64 GetImageBytes() const;
	/** Number of assets per class path, registry-filtered ones included, in ascending order of the class path. */
	TArray<std::pair<FTopLevelAssetPath, int32>> CountAssetsByClass() const;
	/** All packages with a file, those without assets too, in registry order. */
	TArray<FName> ListPackages() const;
	/** The file of a package, absolute; "" when the registry does not know it. */
	FString GetPackageFileName(FName PackageName, const IPackageSource*& OutSource) const;
	/** Readable dump of all columns, for people who look for a fault; what has changed since the last scan is left out. */
	void Dump(const std::function<void(FStringView Line)>& Write) const;

	// IAssetRegistry
	void GetAssets(const FARFilter& Filter, TArray<FAssetData>& OutAssets, bool bSkipARFilteredAssets) const override;
	void EnumerateAssets(
		const FARFilter& Filter, const std::function<bool(const FAssetData&)>& Visit, bool bSkipARFilteredAssets) const override;
	FAssetData GetAssetByObjectPath(
		const FSoftObjectPath& ObjectPath, bool bIncludeOnlyOnDiskAssets, bool bSkipARFilteredAssets) const override;
	void GetAssetsByPackageName(FName PackageName, TArray<FAssetData>& OutAssets, bool bIncludeOnlyOnDiskAssets,
		bool bSkipARFilteredAssets) const override;
	FName FindPackage(FStringView LongName) const override;
	bool GetDependencies(FName PackageName, TArray<FPackageDependency>& OutDependencies) const override;
	bool GetReferencers(FName PackageName, TArray<FPackageDependency>& OutReferencers) const override;
	int32 GetNumDependencies(FName PackageName) const override;
	int32 GetNumReferencers(FName PackageName) const override;
	FPackageGraphView GetPackageGraph() const override;
	uint64 GetStateNumber() const override;
	void GetAncestorClasses(const FTopLevelAssetPath& ClassPath, TArray<FTopLevelAssetPath>& OutAncestors) const override;
	FAssetPathView GetAssetPaths() const override;
	FBlueprintIndexView GetBlueprintIndex() const override;

private:
	TUniquePtr<FLiveRegistry> Live;
};
