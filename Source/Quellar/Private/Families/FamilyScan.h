#pragma once

#include "Assets/ResolveAssetObject.h"
#include "Core/Threads/StopToken.h"
#include "CoreObject/Packages/Loader.h"
#include "Quellar/Assets/AssetRegistryUtils.h"
#include "Quellar/Hits/AssetSearchTypes.h"

#include <algorithm>
#include <limits>

// A new family:
// 1. Write <Name>Family.cpp in this folder: an anonymous Read<Asset>(const U<Asset>&, FHitSink&) that adds what the asset holds,
// most
//    telling first, and returns as soon as the sink is full.
// 2. End it with Search<Name>s, which calls ScanFamily<U<Asset>>. Families that load nothing use ScanAssets instead.
// 3. Add its row to AssetFamily.cpp, and the function's name to the list above the rows. The order of rows is the order of
// searching.
//    Schema, shell option, completion, console command, `info` and drawings take it from there.
// 4. Add <Name>FamilyTests.cpp; AssetFamilyTests.cpp walks all rows by itself.

/** What the scan needs to know of a family. */
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

	/** Appends when Name matches the term, as if called so many times. */
	void Add(const FString& Kind, const FString& Name, const FString& Container, int64 Times = 1)
	{
		if (Times > 0)
			OrivaneSearchUtils::AppendIfTermMatches(Result, Kind, Name, Container, Params, TotalHits,
				static_cast<int32>(std::min<int64>(Times, std::numeric_limits<int32>::max())));
	}
	/** Appends; the caller has matched already. */
	void AddMatched(const FString& Kind, const FString& Name, const FString& Container)
	{
		OrivaneSearchUtils::AppendHitWithCaps(Result, Kind, Name, Container, Params, TotalHits);
	}
	bool Matches(const FString& Text) const { return OrivaneSearchUtils::TermMatches(Text, Params); }
	/** Stop reading: the scan's hit cap is reached, or what it finds is not wanted any more. */
	bool IsFull() const { return IsStopRequested() || OrivaneSearchUtils::HasReachedCap(TotalHits, Params.MaxTotalHits); }
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
/** For an FPackagePrefetch: gives the packages of the assets in scope, one a call, None at the end or when stopped. Both
 * arguments outlive it. */
std::function<FName()> ListPackagesInScope(const TArray<FAssetData>& Assets, const FAssetSearchParams& Params);

/** What a scan's reader does with the assets' packages. */
enum class EPackageUse : uint8
{
	None,	  // it looks at records, and at what is in memory anyway
	LoadEach, // so they are parsed ahead of it
};

/**
 * Visits every asset of the classes and of those derived from them, in registry order, until the hit cap is reached, and lets
 * ReadAsset(const FAssetData&, FAssetResult&, FHitSink&) report on each and say its class text. Assets that are excluded or
 * outside the path filter are skipped in silence, those without a hit are left out. Loads nothing itself. A stop, see
 * Core/StopToken.h, ends it early. Game thread only. Executes OnDone once, before it returns.
 */
template <class TReadAsset>
void ScanAssets(const TArray<UClass*>& Classes, EPackageUse PackageUse, const FAssetSearchParams& Params,
	const FOnAssetSearchComplete& OnDone, TReadAsset&& ReadAsset)
{
	FAssetSearchResult Found;
	int32 TotalHits = 0;
	const TArray<FAssetData> Assets = OrivaneAssetRegistryUtils::FindAssetsByClasses(Classes, false);
	TOptional<FPackagePrefetch> Prefetch;
	if (PackageUse == EPackageUse::LoadEach)
		Prefetch.emplace(ListPackagesInScope(Assets, Params));
	for (const FAssetData& Asset : Assets)
	{
		if (IsStopRequested())
			break;
		if (!IsInScope(Asset, Params))
			continue;
		FAssetResult Result;
		FHitSink Hits(Result, Params, TotalHits);
		ReadAsset(Asset, Result, Hits);
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

/**
 * ScanAssets for families that read each asset's object: ReadAsset(const TAsset&, FHitSink&) reports on it. Loads packages that
 * are not in memory; assets that cannot be loaded or are of another class are skipped in silence.
 */
template <class TAsset, class TReadAsset>
void ScanFamily(
	const FFamilyTraits& Traits, const FAssetSearchParams& Params, FOnAssetSearchComplete OnDone, TReadAsset&& ReadAsset)
{
	ScanAssets({TAsset::StaticClass()}, EPackageUse::LoadEach, Params, OnDone,
		[&](const FAssetData& Asset, FAssetResult& Result, FHitSink& Hits)
		{
			const TAsset* Object = Cast<TAsset>(ResolveAssetObject(Asset, ELoad::IfMissing));
			if (!Object)
				return;
			Result.AssetClass = Traits.ClassText;
			ReadAsset(*Object, Hits);
			if (!Hits.HasHits())
				Hits.Add("AssetName", Asset.AssetName.ToString(), Traits.NameContainer);
		});
}
