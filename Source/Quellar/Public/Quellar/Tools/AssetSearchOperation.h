#pragma once

#include "Core/Base/Delegate.h"
#include "OrivaneCore/ToolResult.h"
#include "Quellar/Hits/AssetSearchTypes.h"

/** Body of the tool "asset_search". */
class FAssetSearchOperation
{
public:
	/**
	 * Reads the arguments ("term" is required; unusable values keep their defaults), searches, and hands messages and the payload
	 * "content" to Result, which must live until OnComplete has run. OnComplete runs once. Game thread.
	 */
	static void ExecuteAsync(
		const FJsonObject& Args, Orivane::FToolResult& Result, TDelegate<void(Orivane::FToolResult&)> OnComplete);
	/** What such a search left out. */
	static TArray<Orivane::FToolRemark> MakeRemarks(const FAssetSearchParams& Params, const FAssetSearchResult& Found);
	/** The text files among the results, in their order; without lines, see FindFirstTextLine. */
	static TArray<Orivane::FToolPlace> ListTextFiles(const FAssetSearchResult& Found);
	/** False where the arguments ask for text files alone. Any thread. */
	static bool NeedsPackages(const FJsonObject& Args);
};
