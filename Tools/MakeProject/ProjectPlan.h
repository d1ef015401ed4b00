#pragma once

#include "FeatureTree.h"
#include "Options.h"

#include <string>
#include <vector>

/** What a generator of random numbers is for; each purpose has a sequence of its own per item. */
enum class EPurpose : uint8
{
	Features,
	Places,
	Names,
	Script,
	Package,
	Parent,
	Variables,
	Fields,
	Keys,
	Parameters,
	TextFile
};

/** A folder that holds packages. */
struct FFolder
{
	std::string LongPath; // "/Game/Characters/Wolf/Meshes"
	std::string DiskPath; // "Content/Characters/Wolf/Meshes", relative to the project
	uint32 Feature;		  // in the feature tree
	FRange Packages;	  // places in PackagesByFolder
	FRange Neighbours;	  // the same for all packages of the folder's feature
};

/**
 * Which packages a project has: class, folder and name of each, a few bytes a package. Packages are numbered class after
 * class in the order of EAssetClass. Read-only once made, so all threads share it. What a package says is not kept: it is
 * drawn again from the package's own random numbers whenever it is needed.
 */
class FProjectPlan
{
public:
	explicit FProjectPlan(const FProjectOptions& InOptions);

	const FProjectOptions& GetOptions() const { return Options; }
	uint32 NumPackages() const { return Options.NumAssets; }
	FRange PackagesOf(EAssetClass Class) const;
	EAssetClass ClassOf(uint32 Package) const;
	std::string_view NameOf(uint32 Package) const;

	const std::vector<FFolder>& GetFolders() const { return Folders; }
	const FFolder& FolderOf(uint32 Package) const { return Folders[FolderIndex[Package]]; }
	std::span<const uint32> PackagesIn(FRange Places) const
	{
		return std::span(PackagesByFolder).subspan(Places.Begin, Places.Num());
	}

	/** Appends "/Game/AI/BT_Guard". */
	void AppendLongName(std::string& Out, uint32 Package) const;

	/** Appends "/Game/AI/BT_Guard.BT_Guard". */
	void AppendObjectPath(std::string& Out, uint32 Package) const;

	FRandom MakeRandom(EPurpose Purpose, uint32 Item) const { return FRandom(Options.Seed, static_cast<uint64>(Purpose), Item); }

private:
	void CountClasses();
	void PlacePackages();
	void MakeFolders(const std::vector<bool>& bSlotUsed);
	void SortByFolder();
	void FindNeighbours();
	void NamePackages();

	FProjectOptions Options;
	FFeatureTree Tree;
	uint32 ClassEnd[NumAssetClasses] = {};
	std::vector<FFolder> Folders;
	std::vector<uint32> FolderIndex; // per package; while packages are being placed, a slot: feature and kind of folder
	std::vector<uint32> PackagesByFolder;
	std::string Names;
	std::vector<uint32> NameBegin; // per package, and one entry more
};
