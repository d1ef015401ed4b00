#pragma once

#include "AssetRegistry/AssetRegistry.h"
#include "Support/ScratchFolder.h"

#include <atomic>
#include <string>
#include <vector>

/**
 * A package format of lines, so that a test's packages fit where they are used:
 *
 *     asset NAME CLASS [filtered] [in=OUTER]
 *     tag KEY=VALUE              of the last asset
 *     needs PACKAGE [soft] [editor]
 *     entry DEPTH CATEGORY|TEXT|COMMENT
 *     odd LINE COLUMN TEXT       a warning
 *     bad                        the file is no package
 *
 * Files end in ".line" or ".LINE". Counts the headers that were read.
 */
class FLineSource final : public IPackageSource
{
public:
	bool IsPackageFile(std::string_view RelativePath) const override
	{
		return RelativePath.ends_with(".line") || RelativePath.ends_with(".LINE");
	}
	std::size_t GetExtensionLength() const override { return 5; }
	uint64 GetMaxFileBytes() const override { return 1 << 20; }
	TUniquePtr<IPackageReader> MakeReader() const override;
	uint32 GetHeaderVersion() const override { return Version; }

	uint32 Version = 1;
	mutable std::atomic<int32> NumRead = 0;
};

/** A project folder of line packages, with Content/ as /Game, and one registry for it. */
class FRegistryProject
{
public:
	using FClassParents = std::vector<std::pair<const char*, const char*>>;

	/** Relative to Content/, without the extension. */
	void Package(const std::string& Path, const std::string& Lines) const { Folder.Write("Content/" + Path + ".line", Lines); }
	void Remove(const std::string& Path) const { Folder.Remove("Content/" + Path + ".line"); }
	void SetClassParents(const FClassParents& ChildAndParent);

	FRegistryScanOptions MakeOptions() const;
	/** Reads everything anew, without a cache. */
	FRegistryScanReport ScanAll(int32 NumThreads = 0);
	/** Through the cache in Intermediate/. */
	FRegistryScanReport ScanCached();
	FRegistryScanReport Scan(FRegistryScanOptions Options);

	/** After files have changed; absolute paths. */
	FRegistryScanReport Update(const std::vector<std::string>& Files, const std::vector<std::string>& Folders = {});
	/** A registry that reads everything of a project anew. */
	struct FFresh
	{
		explicit FFresh(const FRegistryProject& Project);
		FAssetRegistry Registry;
	};

	/** The whole registry as text. */
	std::string Dump() const;
	/** Faults of the last scan, one a line. */
	std::string GetFaults() const;

	FScratchFolder Folder;
	FLineSource Source;
	FAssetRegistry Registry;
	TArray<FRegistryRoot> ExtraRoots;
	int32 FoldAt = 512;

private:
	TArray<std::pair<FTopLevelAssetPath, FTopLevelAssetPath>> Parents;
	std::string Faults;
};

/** "/Game/A.A /Game/B.B" */
std::string RenderAssets(const TArray<FAssetData>& Assets);
std::string RenderAssets(const FAssetRegistry& Registry, const FARFilter& Filter, bool bSkipFiltered = true);
/** "/Game/B(hard game) /Game/C(soft editor)"; "unknown" where the registry does not know the package. */
std::string RenderDependencies(const IAssetRegistry& Registry, const char* Package);
std::string RenderReferencers(const IAssetRegistry& Registry, const char* Package);
std::string RenderClasses(const TArray<FTopLevelAssetPath>& Classes);
