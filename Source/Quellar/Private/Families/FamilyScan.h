#pragma once

#include "CoreObject/Loader.h"
#include "Quellar/AssetRegistryUtils.h"
#include "Quellar/AssetSearchService.h"
#include "ResolveAssetObject.h"

/** What a family tells the scan about itself. */
struct FFamilyTraits
{
	FString ClassText;	   // written into FAssetResult::AssetClass
	FString NameContainer; // container of the "AssetName" hit used when nothing else matched
};

/** Appends the hits of one asset, by the rules of OrivaneSearchUtils. The hit counter runs over all assets of one scan. */
class FHitSink
{
public:
	FHitSink(FAssetResult& InResult, const FAssetSearchParams& InParams, int32& InTotalHits)
		: Result(InResult)
		, Params(InParams)
		, TotalHits(InTotalHits)
	{
	}

	/** Appends when Name matches the term. */
	void Add(const FString& Kind, const FString& Name, const FString& Container)
	{
		OrivaneSearchUtils::AppendIfTermMatches(Result, Kind, Name, Container, Params, TotalHits);
	}
	/** Appends; the caller has matched already. */
	void AddMatched(const FString& Kind, const FString& Name, const FString& Container)
	{
		OrivaneSearchUtils::AppendHitWithCaps(Result, Kind, Name, Container, Params, TotalHits);
	}
	bool Matches(const FString& Text) const { return OrivaneSearchUtils::TermMatches(Text, Params); }
	/** The scan's hit cap is reached; stop reading. */
	bool IsFull() const { return OrivaneSearchUtils::HasReachedCap(TotalHits, Params.MaxTotalHits); }
	bool HasHits() const { return !Result.Hits.IsEmpty(); }

private:
	FAssetResult& Result;
	const FAssetSearchParams& Params;
	int32& TotalHits;
};

/** Contains test with the search's case, whatever the search's mode; an empty filter passes everything. */
bool PassesPathFilter(const FString& Path, const FAssetSearchParams& Params);
/** The entry is complete, not excluded, and its folder passes the search's path filter. */
bool IsInScope(const FAssetData& Asset, const FAssetSearchParams& Params);
/** Lets the packages of the assets in scope be parsed ahead of a scan that visits them in this order. Both outlive the prefetch.
 */
FPackagePrefetch PrefetchInScope(const TArray<FAssetData>& Assets, const FAssetSearchParams& Params);

/**
 * Visits every asset of TAsset's class and its subclasses in registry order and lets ReadAsset(const TAsset&, FHitSink&) report
 * on each. Assets that are excluded, outside the path filter, not loadable or of another class are skipped in silence. Loads
 * packages that are not in memory. Game thread only. Executes OnDone once, before it returns.
 */
template <class TAsset, class TReadAsset>
void ScanFamily(
	const FFamilyTraits& Traits, const FAssetSearchParams& Params, FOnAssetSearchComplete OnDone, TReadAsset&& ReadAsset)
{
	FAssetSearchResult Found;
	int32 TotalHits = 0;
	const TArray<FAssetData> Assets = OrivaneAssetRegistryUtils::FindAssetsByClass(TAsset::StaticClass(), false);
	const FPackagePrefetch Prefetch = PrefetchInScope(Assets, Params);
	for (const FAssetData& Asset : Assets)
	{
		const TAsset* Object = IsInScope(Asset, Params) ? Cast<TAsset>(ResolveAssetObject(Asset, ELoad::IfMissing)) : nullptr;
		if (!Object)
			continue;
		FAssetResult Result{.AssetClass = Traits.ClassText};
		FHitSink Hits(Result, Params, TotalHits);
		ReadAsset(*Object, Hits);
		if (!Hits.HasHits())
			Hits.Add("AssetName", Object->GetName(), Traits.NameContainer);
		if (Hits.HasHits())
		{
			Result.AssetPath = Asset.GetSoftObjectPath().ToString();
			Found.Results.Add(std::move(Result));
		}
		if (Hits.IsFull())
			break;
	}
	OnDone.ExecuteIfBound(Found);
}
