#pragma once

#include "Assets/ResolveAssetObject.h"
#include "Core/Threads/StopToken.h"
#include "CoreObject/Packages/Loader.h"
#include "Families/AssetTexts.h"
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

/**
 * Appends the hits of one asset, by the rules of OrivaneSearchUtils. The hit counter runs over all assets of one scan. One that
 * notes texts takes down what a reader compares, and matches nothing, so that the reader goes through all.
 */
class FHitSink
{
public:
	FHitSink(FAssetResult& InResult, const FAssetSearchParams& InParams, int32& InTotalHits, FNotedTexts& InNoted)
		: FHitSink(InResult, InParams, InTotalHits)
	{
		Noted = &InNoted;
	}
	FHitSink(FAssetResult& InResult, const FAssetSearchParams& InParams, int32& InTotalHits)
		: Result(InResult)
		, Params(InParams)
		, TotalHits(InTotalHits)
	{
	}

	/** Appends when Name matches the term, as if called so many times. */
	void Add(const FString& Kind, const FString& Name, const FString& Container, int64 Times = 1)
	{
		if (Noted)
			Note(Name);
		else if (Times > 0)
			OrivaneSearchUtils::AppendIfTermMatches(Result, Kind, Name, Container, Params, TotalHits,
				static_cast<int32>(std::min<int64>(Times, std::numeric_limits<int32>::max())));
	}
	/** Appends; the caller has matched already. */
	void AddMatched(const FString& Kind, const FString& Name, const FString& Container)
	{
		if (Noted)
			return Note(Name);
		OrivaneSearchUtils::AppendHitWithCaps(Result, Kind, Name, Container, Params, TotalHits);
	}
	bool Matches(const FString& Text) const
	{
		if (Noted)
			Note(Text);
		return !Noted && OrivaneSearchUtils::TermMatches(Text, Params);
	}
	/** Stop reading: the scan's hit cap is reached, or what it finds is not wanted any more. */
	bool IsFull() const
	{
		return IsStopRequested() || (!Noted && OrivaneSearchUtils::HasReachedCap(TotalHits, Params.MaxTotalHits));
	}
	bool HasHits() const { return !Result.Hits.IsEmpty(); }
	/** Null while hits are appended. */
	FNotedTexts* GetNoted() const { return Noted; }

private:
	void Note(const FString& Text) const { FNotedTexts::Append(Noted->Texts, Text); }

	FAssetResult& Result;
	const FAssetSearchParams& Params;
	int32& TotalHits;
	FNotedTexts* Noted = nullptr;
};

/** Contains test with the search's case, whatever the search's mode; an empty filter passes everything. */
bool PassesPathFilter(const FString& Path, const FAssetSearchParams& Params);
/** The entry is complete and not excluded by the settings. */
bool IsInScope(const FAssetData& Asset);
/** The assets of the classes and of those derived from them, in registry order, that are in scope. */
TArray<FAssetData> ListAssetsInScope(const TArray<UClass*>& Classes);

/** One scan, from its assets to those that have to be read. */
class FAssetScan
{
public:
	/** Name tells it from other scans, of other families and modes; see FAssetTexts. */
	FAssetScan(
		const FString& Name, ETextOrigin InOrigin, std::function<TArray<FAssetData>()> List, const FAssetSearchParams& InParams);

	/** Moves on to the next asset that may have hits and passes the path filter. False at the end, or when stopped. */
	bool Next();
	const FAssetData& GetAsset() const { return Texts.GetAssets()[Place]; }
	/** After the asset was read: adds its package where that could not be loaded. */
	void AddIfUnread(TArray<FUnreadFile>& Out) const;
	/** False when the asset cannot have hits, or when stopped. Read(FAssetResult&, FHitSink&) reads it, for its texts. */
	template <class TRead>
	bool MayHaveHits(TRead&& Read)
	{
		if (!Texts.WantsTexts(Place))
			return true;
		FAssetResult Unused;
		int32 NumHits = 0;
		FNotedTexts Noted{.For = &Texts};
		FHitSink Notes(Unused, Params, NumHits, Noted);
		Read(Unused, Notes);
		return !IsStopRequested() && Texts.Note(Place, Noted, FoldedTerm);
	}

private:
	bool PassesPathFilter(const FAssetData& Asset) const;
	FName FindNextPackage();

	FAssetTexts& Texts;
	const ETextOrigin Origin;
	const FAssetSearchParams& Params;
	const std::string FoldedTerm;
	std::vector<int32> Candidates;
	std::size_t NumDone = 0;
	std::size_t NumAhead = 0;
	int32 Place = INDEX_NONE;
	TOptional<FPackagePrefetch> Prefetch;
};

/**
 * Visits every asset of the classes and of those derived from them, in registry order, until the hit cap is reached, and lets
 * ReadAsset(const FAssetData&, FAssetResult&, FHitSink&) report on each and say its class text. Assets that are excluded or
 * outside the path filter are skipped in silence, those without a hit are left out. Loads nothing itself. A stop, see
 * Core/StopToken.h, ends it early. Game thread only. Executes OnDone once, before it returns.
 */
template <class TReadAsset>
void ScanAssets(const FString& Name, ETextOrigin Origin, const TArray<UClass*>& Classes, const FAssetSearchParams& Params,
	const FOnAssetSearchComplete& OnDone, TReadAsset&& ReadAsset)
{
	FAssetSearchResult Found;
	int32 TotalHits = 0;
	FAssetScan Scan(
		Name, Origin, [Classes] { return ListAssetsInScope(Classes); }, Params);
	while (Scan.Next())
	{
		const FAssetData& Asset = Scan.GetAsset();
		if (!Scan.MayHaveHits([&](FAssetResult& Result, FHitSink& Hits) { ReadAsset(Asset, Result, Hits); }))
			continue;
		FAssetResult Result;
		FHitSink Hits(Result, Params, TotalHits);
		ReadAsset(Asset, Result, Hits);
		Scan.AddIfUnread(Found.Unread);
		if (Hits.HasHits())
		{
			Result.AssetPath = Asset.GetSoftObjectPath().ToString();
			Found.Results.Add(std::move(Result));
		}
		Found.bEndedEarly = Hits.IsFull();
		if (Found.bEndedEarly)
			break;
	}
	OnDone.ExecuteIfBound(Found);
}

/**
 * ScanAssets for families that read each asset's object: ReadAsset(const TAsset&, FHitSink&) reports on it. Loads packages that
 * are not in memory; those that cannot be loaded are among what is unread, assets of another class are skipped in silence.
 */
template <class TAsset, class TReadAsset>
void ScanFamily(
	const FFamilyTraits& Traits, const FAssetSearchParams& Params, FOnAssetSearchComplete OnDone, TReadAsset&& ReadAsset)
{
	ScanAssets(Traits.ClassText, ETextOrigin::Package, {TAsset::StaticClass()}, Params, OnDone,
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
