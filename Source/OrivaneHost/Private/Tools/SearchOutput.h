#pragma once

#include "OrivaneCore/ToolResult.h"
#include "Quellar/Hits/AssetSearchTypes.h"
#include "Tools/ToolOutput.h"

#include <span>
#include <vector>

/** How results of a search are shown to people. */
struct FSearchView
{
	FString Term;
	ESearchCase Case = ESearchCase::IgnoreCase;
	int32 Width = 0;						// columns; 0: lines are not shortened
	TArray<Orivane::FToolPlace> TextPlaces; // where text files hold the term
	FPainter Paint{false};
};

/** The places with the first line that holds the term, for as many as people read. Reads the files. */
TArray<Orivane::FToolPlace> FindLines(TArray<Orivane::FToolPlace> Places, const FAssetSearchParams& Params);
/** From the payload of asset_search. */
FAssetSearchResult ReadSearchPayload(const FJsonObject& Content);
/** Results of one asset that follow each other belong together: the families of Blueprints and widgets report each by itself. */
std::vector<std::span<const FAssetResult>> GroupByAsset(const FAssetSearchResult& Found);
/**
 * A block for each asset, with a line a hit: what the Blueprint index lists below its parents, all else with its container; text
 * files as "FILE:LINE: text". The term is highlighted.
 */
FString RenderSearchResults(const FAssetSearchResult& Found, const FSearchView& View);
