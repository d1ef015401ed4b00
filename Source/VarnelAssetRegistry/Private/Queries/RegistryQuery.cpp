#include "Queries/RegistryQuery.h"

#include "Queries/OverlayMerge.h"

#include <algorithm>

namespace
{
constexpr std::size_t DenseShare = 4; // from a quarter of all assets on, looking at each of them is cheaper than sorting rows

struct FWantedFolder
{
	FRowRange Packages;
	FRowRange Spellings; // ids of the folder itself, for a search that does not go below it
};

/** One query of one part: the filter's lists, as ids and rows of its image. */
class FAssetQuery
{
public:
	/** Classes are the part's own, each once. */
	FAssetQuery(const FRegistryPart& Part, const FARFilter& InFilter, std::vector<uint32> InClasses,
		const std::function<bool(uint32)>& InVisit);
	void Run();

private:
	void AddFolder(std::string_view Folder);

	bool RunNamedPackages();
	bool RunClasses();
	bool RunFolders();
	bool VisitPackages(FRowRange Packages);
	bool VisitAsset(uint32 Asset) { return !PassesClass(Asset) || Visit(Asset); }

	std::vector<FRowRange> ListPackages() const;
	std::size_t CountAssetsInFolders() const;
	bool PassesFolder(uint32 Package) const;
	bool PassesClass(uint32 Asset) const { return Filter.ClassPaths.IsEmpty() || IsWantedClass[Tables.AssetClasses[Asset]]; }

	const FRegistryImage& Image;
	const FRegistryTables& Tables;
	const FRegistryNames& Names;
	const FARFilter& Filter;
	const std::function<bool(uint32)>& Visit;
	std::vector<FWantedFolder> Folders;
	const std::vector<uint32> Classes;
	std::vector<bool> IsWantedClass;
	std::size_t NumClassAssets = 0;
};

FAssetQuery::FAssetQuery(const FRegistryPart& Part, const FARFilter& InFilter, std::vector<uint32> InClasses,
	const std::function<bool(uint32)>& InVisit)
	: Image(*Part.Image)
	, Tables(Image.GetTables())
	, Names(Part.Names)
	, Filter(InFilter)
	, Visit(InVisit)
	, Classes(std::move(InClasses))
{
	for (const FName Folder : Filter.PackagePaths)
		AddFolder(Folder.View());
	if (!Filter.ClassPaths.IsEmpty())
		IsWantedClass.resize(Image.NumClasses());
	for (const uint32 Class : Classes)
	{
		IsWantedClass[Class] = true;
		NumClassAssets += FRegistryTables::RangeOf(Tables.FirstClassAssets, Class).Num();
	}
}

void FAssetQuery::AddFolder(std::string_view Folder)
{
	if (Folder.ends_with('/'))
		Folder.remove_suffix(1);
	Folders.push_back({Image.FindPackagesBelow(Folder), Filter.bRecursivePaths ? FRowRange() : Image.FindFolders(Folder)});
}

void FAssetQuery::Run()
{
	if (!Filter.PackageNames.IsEmpty())
		RunNamedPackages();
	else if (!Filter.ClassPaths.IsEmpty() && NumClassAssets <= CountAssetsInFolders() / DenseShare)
		RunClasses();
	else
		RunFolders();
}

bool FAssetQuery::RunNamedPackages()
{
	std::vector<uint32> Packages;
	for (const FName Name : Filter.PackageNames)
		Packages.push_back(Names.FindPackage(Name));
	std::sort(Packages.begin(), Packages.end());
	Packages.erase(std::unique(Packages.begin(), Packages.end()), Packages.end());
	return std::all_of(Packages.begin(), Packages.end(),
		[this](uint32 Package) {
			return Package == NoId || VisitPackages({Package, Package + 1});
		});
}

bool FAssetQuery::RunClasses()
{
	std::vector<uint32> Assets;
	Assets.reserve(NumClassAssets);
	for (const uint32 Class : Classes)
	{
		const FRowRange Rows = FRegistryTables::RangeOf(Tables.FirstClassAssets, Class);
		Assets.insert(Assets.end(), Tables.ClassAssets.begin() + Rows.Begin, Tables.ClassAssets.begin() + Rows.End);
	}
	std::sort(Assets.begin(), Assets.end());
	return std::all_of(Assets.begin(), Assets.end(),
		[this](uint32 Asset) { return !PassesFolder(Tables.AssetPackages[Asset]) || Visit(Asset); });
}

bool FAssetQuery::RunFolders()
{
	const std::vector<FRowRange> Packages = ListPackages();
	return std::all_of(Packages.begin(), Packages.end(), [this](FRowRange Range) { return VisitPackages(Range); });
}

bool FAssetQuery::VisitPackages(FRowRange Packages)
{
	for (uint32 Package = Packages.Begin; Package < Packages.End; ++Package)
	{
		if (!PassesFolder(Package))
			continue;
		const FRowRange Assets = FRegistryTables::RangeOf(Tables.FirstAssets, Package);
		for (uint32 Asset = Assets.Begin; Asset < Assets.End; ++Asset)
		{
			if (!VisitAsset(Asset))
				return false;
		}
	}
	return true;
}

/** The packages that may pass by their folder, each once, ascending. */
std::vector<FRowRange> FAssetQuery::ListPackages() const
{
	if (Filter.PackagePaths.IsEmpty())
		return {{0, Image.NumPackages()}};
	std::vector<FRowRange> Ranges;
	for (const FWantedFolder& Folder : Folders)
		Ranges.push_back(Folder.Packages);
	std::sort(Ranges.begin(), Ranges.end(), [](FRowRange A, FRowRange B) { return A.Begin < B.Begin; });
	uint32 End = 0;
	for (FRowRange& Range : Ranges)
	{
		Range.Begin = std::max(Range.Begin, End);
		End = std::max(End, Range.End);
		Range.End = std::max(Range.Begin, Range.End);
	}
	return Ranges;
}

std::size_t FAssetQuery::CountAssetsInFolders() const
{
	std::size_t NumAssets = 0;
	for (const FRowRange Range : ListPackages())
		NumAssets += Tables.FirstAssets[Range.End] - Tables.FirstAssets[Range.Begin];
	return NumAssets;
}

bool FAssetQuery::PassesFolder(uint32 Package) const
{
	const uint32 Id = Tables.PackageFolders[Package];
	const auto Holds = [&](const FWantedFolder& Folder)
	{
		const bool bBelow = Folder.Packages.Begin <= Package && Package < Folder.Packages.End;
		return bBelow && (Filter.bRecursivePaths || (Folder.Spellings.Begin <= Id && Id < Folder.Spellings.End));
	};
	return Filter.PackagePaths.IsEmpty() || std::any_of(Folders.begin(), Folders.end(), Holds);
}

/** Classes of the snapshot, each once. */
std::vector<uint32> FindWantedClasses(const FRegistrySnapshot& Snapshot, const FARFilter& Filter)
{
	std::vector<uint32> Classes;
	for (const FTopLevelAssetPath& Path : Filter.ClassPaths)
	{
		const uint32 Class = Snapshot.FindClass(Path.ToString());
		if (Class != NoId && Filter.bRecursiveClasses)
			Snapshot.GatherDerivedClasses(Class, Classes);
		else if (Class != NoId)
			Classes.push_back(Class);
	}
	std::sort(Classes.begin(), Classes.end());
	Classes.erase(std::unique(Classes.begin(), Classes.end()), Classes.end());
	return Classes;
}

/** Rows of the overlay's part. */
std::vector<uint32> FindAdded(const FRegistryOverlay& Overlay, const FARFilter& Filter, const std::vector<uint32>& Classes)
{
	std::vector<uint32> OfPart;
	for (uint32 Class = 0; Class < Overlay.Classes.size(); ++Class)
	{
		if (std::binary_search(Classes.begin(), Classes.end(), Overlay.Classes[Class]))
			OfPart.push_back(Class);
	}
	std::vector<uint32> Added;
	const std::function<bool(uint32)> Take = [&Added](uint32 Asset)
	{
		Added.push_back(Asset);
		return true;
	};
	FAssetQuery(*Overlay.Part, Filter, std::move(OfPart), Take).Run();
	return Added;
}
}

void VisitAssets(const FRegistrySnapshot& Snapshot, const FARFilter& Filter, const std::function<bool(uint32 Asset)>& Visit)
{
	std::vector<uint32> Classes = FindWantedClasses(Snapshot, Filter);
	if (!Snapshot.Overlay)
		return FAssetQuery(*Snapshot.Base, Filter, std::move(Classes), Visit).Run();
	std::vector<uint32> Added = FindAdded(*Snapshot.Overlay, Filter, Classes);
	Classes.erase(std::lower_bound(Classes.begin(), Classes.end(), Snapshot.Base->Image->NumClasses()), Classes.end());
	FOverlayMerge Merge(Snapshot, std::move(Added),
		[&Visit](FRowRange Assets)
		{
			while (Assets.Begin < Assets.End && Visit(Assets.Begin))
				++Assets.Begin;
			return Assets.Begin == Assets.End;
		});
	const std::function<bool(uint32)> Take = [&Merge](uint32 Asset) { return Merge.Take({Asset, Asset + 1}); };
	FAssetQuery(*Snapshot.Base, Filter, std::move(Classes), Take).Run();
	Merge.Finish();
}
