#include "Quellar/AssetPathSearchTypes.h"
#include "Quellar/AssetRegistryUtils.h"
#include "Quellar/AssetSearchService.h"

#include <algorithm>
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

	/** Hits that lie in one folder. */
	void Add(FAssetPathView::FRange Hits);
	void Finish();

private:
	struct FDirectory
	{
		FString Path;
		TArray<FString> Files;
	};

	int32 FindDirectory(int32 Folder);
	int32 FindOrAddDirectory(const FString& Path);
	/** Appends as many as there is room for below the cap and returns their number. */
	int32 AppendPaths(FAssetPathView::FRange Hits, int32 Cap, TArray<FString>& Out) const;
	void Record(const char* Reason);

	static constexpr int32 Unknown = -2; // of a folder's directory; INDEX_NONE: it was refused

	const FAssetPathView& Paths;
	FAssetPathSearchResult& Result;
	const int32 MaxFiles;
	const int32 MaxDirectories;
	const int32 MaxPerDirectory;
	TArray<FDirectory> Directories;
	TMap<FString, int32> DirectoryByPath; // two spellings of a folder share one
	std::vector<int32> DirectoryOfFolder; // from the first refusal on, when many folders may follow
};

int32 FHitCollector::FindOrAddDirectory(const FString& Path)
{
	if (const int32* const Found = DirectoryByPath.Find(Path))
		return *Found;
	if (Directories.Num() == MaxDirectories)
		return INDEX_NONE;
	return DirectoryByPath.Add(Path, Directories.Add({Path, {}}));
}

/** INDEX_NONE when there is no room for another directory. */
int32 FHitCollector::FindDirectory(int32 Folder)
{
	const auto Place = static_cast<std::size_t>(Folder);
	if (!DirectoryOfFolder.empty() && DirectoryOfFolder[Place] != Unknown)
		return DirectoryOfFolder[Place];
	const int32 Directory = FindOrAddDirectory(Paths.GetFolderPath(Folder));
	if (Directory == INDEX_NONE && DirectoryOfFolder.empty())
		DirectoryOfFolder.resize(static_cast<std::size_t>(Paths.NumFolders()), Unknown);
	if (!DirectoryOfFolder.empty())
		DirectoryOfFolder[Place] = Directory;
	return Directory;
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

void FHitCollector::Record(const char* Reason)
{
	Result.bTruncated = true;
	if (Result.TruncationReasons.Num() < 3 && !Result.TruncationReasons.Contains(Reason))
		Result.TruncationReasons.Add(Reason);
}

void FHitCollector::Add(FAssetPathView::FRange Hits)
{
	Result.TotalHits += Hits.Num();
	const int32 NumFiles = AppendPaths(Hits, MaxFiles, Result.Files);
	const int32 Directory = FindDirectory(Paths.GetFolder(Hits.Begin));
	const int32 NumInDirectory = Directory == INDEX_NONE ? 0 : AppendPaths(Hits, MaxPerDirectory, Directories[Directory].Files);

	// Hit for hit the list comes before the directory, so its cap is met first where both refuse the same one.
	if (NumFiles < Hits.Num() && NumFiles <= NumInDirectory)
		Record("max_file_results");
	if (NumInDirectory < Hits.Num())
	{
		Result.bDirectoriesTruncated = true;
		Record(Directory == INDEX_NONE ? "dir_bucket_cap" : "files_per_dir_cap");
	}
	if (NumFiles < Hits.Num())
		Record("max_file_results");
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
	const auto AddFolder = [&](FAssetPathView::FRange Range)
	{
		if (!Params.PathContains.IsEmpty() && !IsInFolder(Paths.GetFolder(Range.Begin)))
			return;
		if (ClassFilters.IsEmpty())
			return Hits.Add(Range);
		for (int32 Asset = Range.Begin; Asset < Range.End; ++Asset)
		{
			if (IsOfClass(Paths.GetClass(Asset)))
				Hits.Add({Asset, Asset + 1});
		}
	};
	Paths.Find({.Text = Params.Term, .bExact = Params.MatchMode == 1, .Case = Case},
		[&](FAssetPathView::FRange Range)
		{
			while (Range.Begin < Range.End)
			{
				const int32 End = Paths.FindEndOfFolder(Range);
				AddFolder({Range.Begin, End});
				Range.Begin = End;
			}
		});
	Hits.Finish();
}
