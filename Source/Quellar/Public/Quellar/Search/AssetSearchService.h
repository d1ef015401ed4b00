#pragma once

#include "Quellar/Hits/AssetSearchTypes.h"

struct FAssetPathSearchParams;
struct FAssetPathSearchResult;

/** Searches over the project's assets. Game thread. */
class UAssetSearchService
{
public:
	static UAssetSearchService& Get();

	/**
	 * Searches the selected families and merges what they report: at most MaxHitsPerAssetType assets of a type in order of
	 * arrival, then the first MaxTotalHits in ascending path order without regard to case. OnComplete runs once, before this
	 * returns unless a family answers later.
	 */
	void AssetSearch(const FAssetSearchParams& Params, FOnAssetSearchComplete OnComplete);
	/** False for a search of text files alone. Any thread. */
	static bool NeedsPackages(const FAssetSearchParams& Params);
	/**
	 * Finds assets by object path or name, registry-filtered ones too, and groups them by directory. Counts all hits; hits over a
	 * cap are only counted, in registry order, and the reason is recorded. Result is replaced.
	 */
	void AssetPathSearch(const FAssetPathSearchParams& Params, FAssetPathSearchResult& Result);
};
