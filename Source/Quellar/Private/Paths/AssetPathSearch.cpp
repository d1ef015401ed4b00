#include "Core/Threads/StopToken.h"
#include "Quellar/Assets/AssetRegistryUtils.h"
#include "Quellar/Families/AssetFamily.h"
#include "Quellar/Paths/AssetPathSearchTypes.h"
#include "Quellar/Search/AssetSearchService.h"

#include "Core/Threads/Tasks.h"
#include <algorithm>
#include <iterator>
#include <utility>
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
	return Filters.ContainsByPredicate(
		[&](const FString& Filter) { return IsStopRequested() || Path.Contains(Filter) || Kind.Contains(Filter); });
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

	/** Hits that lie in one folder. */
	void Add(FAssetPathView::FRange Hits);
	void Finish();

private:
	enum EReason : uint8
	{
		MaxFileResults,
		DirectoryBucketCap,
		FilesPerDirectoryCap,
	};
	static constexpr const char* ReasonWords[] = {"max_file_results", "dir_bucket_cap", "files_per_dir_cap"};

	struct FDirectory
	{
		int32 Folder = INDEX_NONE; // of the first hit
		FString Path;
		TArray<FString> Files;
	};

	int32 FindDirectory(int32 Folder);
	int32 FindOrAddDirectory(int32 Folder);
	void NumberFolders();
	/** Appends as many as there is room for below the cap and returns their number. */
	int32 AppendPaths(FAssetPathView::FRange Hits, int32 Cap, TArray<FString>& Out) const;
	void Record(EReason Reason);

	const FAssetPathView& Paths;
	FAssetPathSearchResult& Result;
	const int32 MaxFiles;
	const int32 MaxDirectories;
	const int32 MaxPerDirectory;
	bool bRecorded[std::size(ReasonWords)] = {};
	TArray<FDirectory> Directories;
	TMap<FString, int32> DirectoryByPath; // two spellings of a folder share one
	std::vector<int32> DirectoryOfFolder; // from the first refusal on, when any number of folders may follow
};

/** INDEX_NONE when there is no room for another directory. */
int32 FHitCollector::FindDirectory(int32 Folder)
{
	if (!DirectoryOfFolder.empty())
		return DirectoryOfFolder[static_cast<std::size_t>(Folder)];
	const int32 Directory = FindOrAddDirectory(Folder);
	if (Directory == INDEX_NONE)
		NumberFolders();
	return Directory;
}

int32 FHitCollector::FindOrAddDirectory(int32 Folder)
{
	const FString Path = Paths.GetFolderPath(Folder);
	if (const int32* const Found = DirectoryByPath.Find(Path))
		return *Found;
	if (Directories.Num() == MaxDirectories)
		return INDEX_NONE;
	return DirectoryByPath.Add(Path, Directories.Add({Folder, Path, {}}));
}

/** No directory comes any more: every spelling of those that are there gets its number, and all other folders none. */
void FHitCollector::NumberFolders()
{
	const int32 NumFolders = Paths.NumFolders();
	DirectoryOfFolder.resize(static_cast<std::size_t>(NumFolders), INDEX_NONE);
	for (int32 Index = 0; Index < Directories.Num(); ++Index)
	{
		const auto IsSpelling = [&](int32 Folder)
		{ return Folder >= 0 && Folder < NumFolders && Directories[Index].Path == FString(Paths.GetFolderPath(Folder)); };
		for (int32 Folder = Directories[Index].Folder; IsSpelling(Folder); --Folder)
			DirectoryOfFolder[static_cast<std::size_t>(Folder)] = Index;
		for (int32 Folder = Directories[Index].Folder; IsSpelling(Folder); ++Folder)
			DirectoryOfFolder[static_cast<std::size_t>(Folder)] = Index;
	}
}

int32 FHitCollector::AppendPaths(FAssetPathView::FRange Hits, int32 Cap, TArray<FString>& Out) const
{
	const int32 NumAppended = std::min(Hits.Num(), Cap - Out.Num());
	for (int32 Asset = Hits.Begin; Asset < Hits.Begin + NumAppended; ++Asset)
	{
		FString Path;
		Paths.AppendObjectPath(Asset, Path);
		Out.Add(std::move(Path));
	}
	return NumAppended;
}

void FHitCollector::Record(EReason Reason)
{
	if (std::exchange(bRecorded[Reason], true))
		return;
	Result.bTruncated = true;
	Result.bDirectoriesTruncated |= Reason != MaxFileResults;
	Result.TruncationReasons.Add(ReasonWords[Reason]);
}

void FHitCollector::Add(FAssetPathView::FRange Hits)
{
	Result.TotalHits += Hits.Num();
	const int32 NumFiles = AppendPaths(Hits, MaxFiles, Result.Files);
	const int32 Directory = FindDirectory(Paths.GetFolder(Hits.Begin));
	const int32 NumInDirectory = Directory == INDEX_NONE ? 0 : AppendPaths(Hits, MaxPerDirectory, Directories[Directory].Files);

	// Hit for hit the list comes before the directory, so its cap is met first where both refuse the same one.
	if (NumFiles < Hits.Num() && NumFiles <= NumInDirectory)
		Record(MaxFileResults);
	if (NumInDirectory < Hits.Num())
		Record(Directory == INDEX_NONE ? DirectoryBucketCap : FilesPerDirectoryCap);
	if (NumFiles < Hits.Num())
		Record(MaxFileResults);
}

void FHitCollector::Finish()
{
	if (IsStopRequested())
		return;
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
	checkGameThread();
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
	const auto AddFolder = [&](FAssetPathView::FRange Range)
	{
		if (!Params.PathContains.IsEmpty() && !IsInFolder(Paths.GetFolder(Range.Begin)))
			return;
		if (ClassFilters.IsEmpty())
			return Hits.Add(Range);
		for (int32 Asset = Range.Begin; Asset < Range.End && !IsStopRequested(); ++Asset)
		{
			if (IsOfClass(Paths.GetClass(Asset)))
				Hits.Add({Asset, Asset + 1});
		}
	};
	Paths.Find({.Text = Params.Term, .bExact = Params.MatchMode == EAssetPathMatchMode::Exact, .Case = Case},
		[&](FAssetPathView::FRange Range)
		{
			while (Range.Begin < Range.End && !IsStopRequested())
			{
				const int32 End = Paths.FindEndOfFolder(Range);
				AddFolder({Range.Begin, End});
				Range.Begin = End;
			}
		});
	Hits.Finish();
}
