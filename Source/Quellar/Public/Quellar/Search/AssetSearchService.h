#pragma once

#include "Core/Base/Delegate.h"
#include "Core/Text/Name.h"
#include "Quellar/Hits/AssetSearchTypes.h"

struct FAssetPathSearchParams;
struct FAssetPathSearchResult;

/** Executed exactly once with what a search found. */
using FOnAssetSearchComplete = TDelegate<void(const FAssetSearchResult&)>;

/** Short asset type of an asset's class, such as "Blackboard" for BlackboardData; "uasset" for classes without one. Case is
 * ignored. */
FString AssetTypeFromClassName(FName ClassName);

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
	/**
	 * Finds assets by object path or name, registry-filtered ones too, and groups them by directory. Counts all hits; hits over a
	 * cap are only counted, in registry order, and the reason is recorded. Result is replaced.
	 */
	void AssetPathSearch(const FAssetPathSearchParams& Params, FAssetPathSearchResult& Result);
	/** The names that IncludeAssetFamilies may hold, in the order in which families are searched. */
	static TArray<FString> GetFamilyNames();
};
