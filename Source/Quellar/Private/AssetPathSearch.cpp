#include "Quellar/AssetPathSearchTypes.h"
#include "Quellar/AssetRegistryUtils.h"
#include "Quellar/AssetSearchService.h"

#include <algorithm>
#include <unordered_map>
#include <vector>

namespace
{
/** Answers for numbered things (folders, classes), each asked for once. */
template <class TAsk>
class TAnswers
{
public:
	TAnswers(int32 Num, TAsk InAsk) : Ask(std::move(InAsk)), Known(static_cast<std::size_t>(Num), Unasked) {}
	bool operator()(int32 Index)
	{
		uint8& Answer = Known[static_cast<std::size_t>(Index)];
		if (Answer == Unasked)
			Answer = Ask(Index) ? 1 : 0;
		return Answer == 1;
	}

private:
	static constexpr uint8 Unasked = 2;
	TAsk Ask;
	std::vector<uint8> Known;
};

TArray<FString> LowerNonEmpty(const TArray<FString>& Texts)
{
	TArray<FString> Lowered;
	for (const FString& Text : Texts)
	{
		if (!Text.IsEmpty())
			Lowered.Add(Text.ToLower());
	}
	return Lowered;
}

bool PassesClassFilters(const FTopLevelAssetPath& Class, const TArray<FString>& Filters)
{
	const FString Path = Class.ToString(); // ends with the class name
	const FString Kind = AssetTypeFromClassName(Class.AssetName);
	return Filters.ContainsByPredicate([&](const FString& Filter) { return Path.Contains(Filter) || Kind.Contains(Filter); });
}

/** Takes hits in registry order, counts all and keeps what the caps allow. */
class FHitCollector
{
public:
	FHitCollector(const FAssetPathSearchParams& Params, const FAssetPathView& InPaths, FAssetPathSearchResult& InResult)
		: Paths(InPaths)
		, Result(InResult)
		, MaxFiles(std::max(Params.MaxFileResults, 1))
		, MaxDirectories(std::max(Params.MaxDirectoryBuckets, 1))
		, MaxPerDirectory(std::max(Params.MaxFilesPerDirectory, 1))
	{
		Result.Files.Reserve(std::min(MaxFiles, Paths.NumAssets()));
	}

	void Add(int32 Asset)
	{
		++Result.TotalHits;
		AddToFiles(Asset);
		AddToDirectory(Asset);
	}
	void Finish();

private:
	struct FDirectory
	{
		FString Path;
		TArray<FString> Files;
	};

	void AddToFiles(int32 Asset);
	void AddToDirectory(int32 Asset);
	FDirectory* FindDirectory(int32 Folder);
	int32 FindOrAddDirectory(const FString& Path);
	void Record(const char* Reason);
	FString GetObjectPath(int32 Asset) const;

	const FAssetPathView& Paths;
	FAssetPathSearchResult& Result;
	const int32 MaxFiles;
	const int32 MaxDirectories;
	const int32 MaxPerDirectory;
	TArray<FDirectory> Directories;
	TMap<FString, int32> DirectoryByPath;				// two spellings of a folder share one
	std::unordered_map<int32, int32> DirectoryOfFolder; // INDEX_NONE: refused
	int32 LastFolder = INDEX_NONE;						// neighbouring hits mostly lie in one folder
	int32 LastDirectory = INDEX_NONE;
};

FString FHitCollector::GetObjectPath(int32 Asset) const
{
	FString Path;
	Paths.AppendObjectPath(Asset, Path);
	return Path;
}

void FHitCollector::Record(const char* Reason)
{
	Result.bTruncated = true;
	if (!Result.TruncationReasons.Contains(Reason))
		Result.TruncationReasons.Add(Reason);
}

void FHitCollector::AddToFiles(int32 Asset)
{
	if (Result.Files.Num() < MaxFiles)
		Result.Files.Add(GetObjectPath(Asset));
	else
		Record("max_file_results");
}

void FHitCollector::AddToDirectory(int32 Asset)
{
	FDirectory* const Directory = FindDirectory(Paths.GetFolder(Asset));
	if (Directory && Directory->Files.Num() < MaxPerDirectory)
		return Directory->Files.Add(GetObjectPath(Asset)), void();
	Result.bDirectoriesTruncated = true;
	Record(Directory ? "files_per_dir_cap" : "dir_bucket_cap");
}

int32 FHitCollector::FindOrAddDirectory(const FString& Path)
{
	if (const int32* const Found = DirectoryByPath.Find(Path))
		return *Found;
	if (Directories.Num() == MaxDirectories)
		return INDEX_NONE;
	return DirectoryByPath.Add(Path, Directories.Add({Path, {}}));
}

/** Null when there is no room for another directory. */
FHitCollector::FDirectory* FHitCollector::FindDirectory(int32 Folder)
{
	if (Folder != LastFolder)
	{
		LastFolder = Folder;
		const auto [Known, bNew] = DirectoryOfFolder.try_emplace(Folder, INDEX_NONE);
		if (bNew)
			Known->second = FindOrAddDirectory(Paths.GetFolderPath(Folder));
		LastDirectory = Known->second;
	}
	return LastDirectory == INDEX_NONE ? nullptr : &Directories[LastDirectory];
}

void FHitCollector::Finish()
{
	const auto Less = [](const FString& A, const FString& B) { return A < B; };
	Result.Files.StableSort(Less);
	Directories.StableSort([](const FDirectory& A, const FDirectory& B) { return A.Path < B.Path; });
	for (FDirectory& Directory : Directories)
	{
		Directory.Files.StableSort(Less);
		Result.Directories.Add(std::move(Directory.Path), std::move(Directory.Files));
	}
	Result.TotalDirectories = Result.Directories.Num();
}
}

void UAssetSearchService::AssetPathSearch(const FAssetPathSearchParams& Params, FAssetPathSearchResult& Result)
{
	Result = {};
	const IAssetRegistry* Registry = OrivaneAssetRegistryUtils::GetAssetRegistry();
	if (Params.Term.IsEmpty() || !Registry)
		return;
	const FAssetPathView Paths = Registry->GetAssetPaths();
	const ESearchCase Case = Params.bCaseSensitive ? ESearchCase::CaseSensitive : ESearchCase::IgnoreCase;
	const TArray<FString> ClassFilters = LowerNonEmpty(Params.ClassFilters);
	TAnswers IsInFolder(Params.PathContains.IsEmpty() ? 0 : Paths.NumFolders(),
		[&](int32 Folder) { return FString(Paths.GetFolderPath(Folder)).Contains(Params.PathContains, Case); });
	TAnswers IsOfClass(ClassFilters.IsEmpty() ? 0 : Paths.NumClasses(),
		[&](int32 Class) { return PassesClassFilters(Paths.GetClassPath(Class), ClassFilters); });
	FHitCollector Hits(Params, Paths, Result);
	Paths.Find({.Text = Params.Term, .bExact = Params.MatchMode == 1, .Case = Case},
		[&](FAssetPathView::FRange Range)
		{
			for (int32 Asset = Range.Begin; Asset < Range.End; ++Asset)
			{
				const bool bPasses = (Params.PathContains.IsEmpty() || IsInFolder(Paths.GetFolder(Asset))) &&
					(ClassFilters.IsEmpty() || IsOfClass(Paths.GetClass(Asset)));
				if (bPasses)
					Hits.Add(Asset);
			}
		});
	Hits.Finish();
}
