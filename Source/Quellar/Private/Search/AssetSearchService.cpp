#include "Quellar/Search/AssetSearchService.h"

#include "Core/Base/Map.h"
#include "Core/Threads/StopToken.h"
#include "Core/Threads/Tasks.h"
#include "Quellar/Assets/AssetRegistryUtils.h"
#include "Quellar/Families/AssetFamily.h"

#include <algorithm>
#include <mutex>

namespace
{
constexpr int32 DefaultMaxAssets = 200; // where the total cap is below 1

/** What the family completions of one search share. */
class FAssetSearchAggregate
{
public:
	FAssetSearchAggregate(const FAssetSearchParams& Params, int32 NumFamilies, FOnAssetSearchComplete InOnComplete)
		: MaxPerAssetType(std::max(Params.MaxHitsPerAssetType, 1))
		, MaxTotal(Params.MaxTotalHits > 0 ? Params.MaxTotalHits : DefaultMaxAssets)
		, PendingFamilies(NumFamilies)
		, OnComplete(std::move(InOnComplete))
	{
	}

	/** Takes one family's report; after the last one the caller's delegate runs, still under the lock. */
	void Merge(const FAssetSearchResult& Report)
	{
		std::lock_guard Guard(Lock);
		for (const FAssetResult& Result : Report.Results)
			Admit(Result);
		Unread.Append(Report.Unread);
		bTruncated |= Results.Num() > MaxTotal;
		if (--PendingFamilies == 0)
			Finish();
	}

	void FinishWithoutFamilies()
	{
		std::lock_guard Guard(Lock);
		Finish();
	}

private:
	void Admit(const FAssetResult& Result)
	{
		int32& Count = CountPerAssetType.FindOrAdd(GetAssetTypeGroup(Result.AssetClass));
		if (Count >= MaxPerAssetType)
		{
			bTruncated = true;
			return;
		}
		++Count;
		Results.Add(Result);
	}

	void Finish()
	{
		Results.StableSort([](const FAssetResult& A, const FAssetResult& B) { return A.AssetPath < B.AssetPath; });
		if (Results.Num() > MaxTotal)
		{
			Results.SetNum(MaxTotal);
			bTruncated = true;
		}
		SortUnread();
		OnComplete.ExecuteIfBound({.Results = std::move(Results), .bTruncated = bTruncated, .Unread = std::move(Unread)});
	}

	/** Several families may have asked for one package. */
	void SortUnread()
	{
		Unread.Sort([](const FUnreadFile& A, const FUnreadFile& B) { return A.Path.View() < B.Path.View(); });
		const auto Last = std::unique(Unread.begin(), Unread.end(),
			[](const FUnreadFile& A, const FUnreadFile& B) { return A.Path.View() == B.Path.View(); });
		Unread.SetNum(static_cast<int32>(Last - Unread.begin()));
	}

	const int32 MaxPerAssetType;
	const int32 MaxTotal;
	std::mutex Lock; // guards everything below
	TArray<FAssetResult> Results;
	TArray<FUnreadFile> Unread;
	TMap<FString, int32> CountPerAssetType;
	int32 PendingFamilies;
	bool bTruncated = false;
	FOnAssetSearchComplete OnComplete;
};

TArray<const FAssetFamily*> SelectFamilies(const TArray<FString>& Names)
{
	TArray<const FAssetFamily*> Selected;
	for (const FAssetFamily& Family : GetAssetFamilies())
	{
		if (Names.IsEmpty() || Names.Contains(Family.Name))
			Selected.Add(&Family);
	}
	return Selected;
}
}

UAssetSearchService& UAssetSearchService::Get()
{
	static UAssetSearchService Service;
	return Service;
}

bool UAssetSearchService::NeedsPackages(const FAssetSearchParams& Params)
{
	return SelectFamilies(Params.IncludeAssetFamilies)
		.ContainsByPredicate([](const FAssetFamily* Family) { return !Family->Classes.IsEmpty(); });
}

void UAssetSearchService::AssetSearch(const FAssetSearchParams& Params, FOnAssetSearchComplete OnComplete)
{
	checkGameThread();
	if (!OrivaneAssetRegistryUtils::GetAssetRegistry())
	{
		OnComplete.ExecuteIfBound({});
		return;
	}
	const TArray<const FAssetFamily*> Families = SelectFamilies(Params.IncludeAssetFamilies);
	const auto Aggregate = MakeShared<FAssetSearchAggregate>(Params, Families.Num(), std::move(OnComplete));
	if (Families.IsEmpty())
		Aggregate->FinishWithoutFamilies();
	for (const FAssetFamily* Family : Families)
	{
		if (IsStopRequested())
			Aggregate->Merge({});
		else
			Family->Search(Params, [Aggregate](const FAssetSearchResult& Report) { Aggregate->Merge(Report); });
	}
}
