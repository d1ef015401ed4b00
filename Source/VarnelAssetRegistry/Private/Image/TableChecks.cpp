#include "Image/TableChecks.h"

#include <algorithm>

namespace
{
template <class T>
bool IsStrictlyAscending(std::span<const T> Column)
{
	bool bAscending = true; // no early exit: sound columns are the rule, and this loop runs many elements at once
	for (std::size_t Index = 1; Index < Column.size(); ++Index)
		bAscending &= Column[Index - 1] < Column[Index];
	return bAscending;
}

bool AreStarts(std::span<const uint64> Starts, std::span<const char> Bytes)
{
	return !Starts.empty() && Starts.front() == 0 && Starts.back() == Bytes.size() && IsStrictlyAscending(Starts);
}

/** A column of ranges for NumRows rows that covers all elements. */
bool AreRanges(std::span<const uint32> First, std::size_t NumRows, std::size_t NumElements)
{
	if (First.size() != NumRows + 1 || First.front() != 0 || First.back() != NumElements)
		return false;
	bool bAscending = true;
	for (std::size_t Row = 0; Row < NumRows; ++Row)
		bAscending &= First[Row] <= First[Row + 1];
	return bAscending;
}

bool AreIds(std::span<const uint32> Column, std::size_t NumRows, std::size_t Limit)
{
	bool bBelow = true;
	for (const uint32 Id : Column)
		bBelow &= Id < Limit;
	return bBelow && Column.size() == NumRows;
}

bool AreIdsOrNone(std::span<const uint32> Column, std::size_t NumRows, std::size_t Limit)
{
	bool bBelow = true;
	for (const uint32 Id : Column)
		bBelow &= (Id < Limit) | (Id == NoId);
	return bBelow && Column.size() == NumRows;
}

bool AreTextsSound(const FRegistryTables& Tables)
{
	if (!AreStarts(Tables.TextStarts, Tables.TextBytes))
		return false;
	const std::span<const uint64> FoldedStarts = Tables.FoldedStarts.empty() ? Tables.TextStarts : Tables.FoldedStarts;
	if (FoldedStarts.size() != Tables.TextStarts.size() || !AreStarts(FoldedStarts, Tables.FoldedBytes))
		return false;
	return Tables.ZoneStarts.front() == 0 && Tables.ZoneStarts.back() == Tables.TextStarts.size() - 1 &&
		std::is_sorted(Tables.ZoneStarts.begin(), Tables.ZoneStarts.end());
}

bool ArePackagesSound(const FRegistryTables& Tables)
{
	const std::size_t NumPackages = Tables.PackageFolders.size();
	return NumPackages <= Tables.NumTexts(EZone::Nodes) &&
		AreIds(Tables.PackageFolders, NumPackages, Tables.NumTexts(EZone::Folders)) &&
		AreIds(Tables.PackageFiles, NumPackages, NumPackages) &&
		AreRanges(Tables.FirstAssets, NumPackages, Tables.AssetPackages.size()) &&
		AreRanges(Tables.FirstEntries, NumPackages, Tables.EntryTexts.size()) &&
		AreIds(Tables.RespelledPackages, Tables.RespelledPackages.size(), NumPackages);
}

bool AreAssetsSound(const FRegistryTables& Tables)
{
	const std::size_t NumAssets = Tables.AssetPackages.size();
	return AreIds(Tables.AssetPackages, NumAssets, Tables.PackageFolders.size()) &&
		AreIdsOrNone(Tables.AssetNames, NumAssets, Tables.NumTexts(EZone::Names)) &&
		AreIds(Tables.AssetClasses, NumAssets, Tables.NumTexts(EZone::Classes)) &&
		AreIdsOrNone(Tables.AssetOuters, NumAssets, Tables.NumTexts(EZone::Names)) && Tables.AssetFlags.size() == NumAssets &&
		AreRanges(Tables.FirstTags, NumAssets, Tables.TagKeys.size()) &&
		AreIds(Tables.TagKeys, Tables.TagKeys.size(), Tables.NumTexts(EZone::TagKeys)) &&
		AreIds(Tables.TagValues, Tables.TagKeys.size(), Tables.NumTexts(EZone::TagValues)) &&
		AreIds(Tables.OwnNamedAssets, Tables.OwnNamedAssets.size(), NumAssets) && IsStrictlyAscending(Tables.OwnNamedAssets);
}

bool AreEntriesSound(const FRegistryTables& Tables)
{
	const std::size_t NumEntries = Tables.EntryTexts.size();
	const uint32 NumTexts = Tables.NumTexts(EZone::Entries);
	return AreIds(Tables.EntryCategories, NumEntries, NumTexts) && AreIds(Tables.EntryTexts, NumEntries, NumTexts) &&
		AreIdsOrNone(Tables.EntryComments, NumEntries, NumTexts) && Tables.EntryDepths.size() == NumEntries &&
		AreIds(Tables.IndexedAssets, Tables.IndexedAssets.size(), Tables.AssetPackages.size()) &&
		IsStrictlyAscending(Tables.IndexedAssets) && (Tables.Uses.empty() || !Tables.IndexedAssets.empty()) &&
		AreRanges(Tables.FirstUses, NumTexts, Tables.Uses.size()) && AreIds(Tables.Uses, Tables.Uses.size(), NumEntries);
}

/** What the lists hold is checked where they are read: looking into each would make opening slower than searching. */
bool AreTrigramsSound(const TTrigramColumns<TColumnSpan>& Trigrams)
{
	return Trigrams.Starts.size() == Trigrams.Keys.size() + 1 && Trigrams.Starts.front() == 0 &&
		Trigrams.Starts.back() == Trigrams.Lists.size() && IsStrictlyAscending(Trigrams.Starts) &&
		IsStrictlyAscending(Trigrams.Keys);
}

/** Walks from every class up to the first one that is known to end. */
bool HasNoCircle(std::span<const uint32> Parents)
{
	enum EState : uint8
	{
		Unseen,
		OnPath,
		Done,
	};
	std::vector<uint8> States(Parents.size(), Unseen);
	for (uint32 Class = 0; Class < Parents.size(); ++Class)
	{
		uint32 At = Class;
		for (; At != NoId && States[At] == Unseen; At = Parents[At])
			States[At] = OnPath;
		if (At != NoId && States[At] == OnPath)
			return false;
		for (At = Class; At != NoId && States[At] == OnPath; At = Parents[At])
			States[At] = Done;
	}
	return true;
}

/** Every class is listed once at most, and below its parent: the lists then have no circle when the parents have none. */
bool AreChildrenSound(const FRegistryTables& Tables)
{
	for (uint32 Class = 0; Class < Tables.ClassParents.size(); ++Class)
	{
		const FRowRange Children = FRegistryTables::RangeOf(Tables.FirstClassChildren, Class);
		for (uint32 Child = Children.Begin; Child < Children.End; ++Child)
		{
			const bool bRepeated = Child > Children.Begin && Tables.ClassChildren[Child - 1] >= Tables.ClassChildren[Child];
			if (bRepeated || Tables.ClassParents[Tables.ClassChildren[Child]] != Class)
				return false;
		}
	}
	return true;
}

bool AreClassesSound(const FRegistryTables& Tables)
{
	const uint32 NumClasses = Tables.NumTexts(EZone::Classes);
	return AreIdsOrNone(Tables.ClassParents, NumClasses, NumClasses) && HasNoCircle(Tables.ClassParents) &&
		AreRanges(Tables.FirstClassAssets, NumClasses, Tables.ClassAssets.size()) &&
		AreIds(Tables.ClassAssets, Tables.AssetPackages.size(), Tables.AssetPackages.size()) &&
		AreRanges(Tables.FirstClassChildren, NumClasses, Tables.ClassChildren.size()) &&
		AreIds(Tables.ClassChildren, Tables.ClassChildren.size(), NumClasses) && AreChildrenSound(Tables);
}

bool IsGraphSound(const FRegistryTables& Tables)
{
	const uint32 NumNodes = Tables.NumTexts(EZone::Nodes);
	const std::size_t NumEdges = Tables.DependencyTargets.size();
	return AreRanges(Tables.FirstDependencies, NumNodes, NumEdges) && AreIds(Tables.DependencyTargets, NumEdges, NumNodes) &&
		Tables.DependencyFlags.size() == NumEdges && AreRanges(Tables.FirstReferencers, NumNodes, NumEdges) &&
		AreIds(Tables.ReferencerSources, NumEdges, NumNodes) && Tables.ReferencerFlags.size() == NumEdges;
}

bool AreFilesSound(const FRegistryTables& Tables)
{
	const std::size_t NumFiles = Tables.PackageFolders.size();
	const std::size_t NumRoots = Tables.RootNames.size();
	const uint32 NumTexts = Tables.NumTexts(EZone::Files);
	return AreIds(Tables.FilePackages, NumFiles, NumFiles) && Tables.FileStamps.size() == NumFiles &&
		AreIds(Tables.FileExtensions, NumFiles, NumTexts) && Tables.FileSources.size() == NumFiles &&
		AreIds(Tables.RootNames, NumRoots, NumTexts) && AreIds(Tables.RootFolders, NumRoots, NumTexts) &&
		AreRanges(Tables.FirstRootFiles, NumRoots, NumFiles);
}
}

bool AreTablesSound(const FRegistryTables& Tables)
{
	return AreTextsSound(Tables) && ArePackagesSound(Tables) && AreTrigramsSound(Tables.NameTrigrams) && AreAssetsSound(Tables) &&
		AreEntriesSound(Tables) && AreTrigramsSound(Tables.EntryTrigrams) && AreClassesSound(Tables) && IsGraphSound(Tables) &&
		AreFilesSound(Tables);
}
