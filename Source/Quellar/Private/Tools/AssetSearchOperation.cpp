#include "Quellar/Tools/AssetSearchOperation.h"

#include "Core/Threads/StopToken.h"
#include "Core/Threads/Tasks.h"
#include "CoreObject/Objects/PackageName.h"
#include "OrivaneToolkit/AssetOperationBase.h"
#include "Quellar/Search/AssetSearchService.h"
#include "Quellar/Tools/ArgumentTable.h"
#include "Search/AssetSearchJson.h"

namespace
{
/** The results whose asset still exists. */
FAssetSearchResult KeepExisting(const FAssetSearchResult& Found)
{
	const FAssetExistsScope Scope; // most results of text are in the folders of others
	FAssetSearchResult Kept{.bTruncated = Found.bTruncated};
	for (const FAssetResult& Asset : Found.Results)
	{
		if (IsStopRequested())
			break;
		if (FAssetOperationBase::AssetExists(FPackageName::ObjectPathToPackageName(Asset.AssetPath)))
			Kept.Results.Add(Asset);
	}
	return Kept;
}

/** Joined, not formatted: a term may hold any character, a zero byte too. */
FString DescribeSuccess(const FAssetSearchParams& Params, int32 NumAssets)
{
	return FString("Found ") + FString::FromInt(NumAssets) + " asset(s) matching '" + Params.Term +
		"' (mode: " + (Params.bExact ? "exact" : "contains") + ", case_sensitive: " + (Params.bCaseSensitive ? "true" : "false") +
		")";
}

void WriteReport(const FAssetSearchParams& Params, const FAssetSearchResult& Found, Orivane::FToolResult& Result)
{
	const FAssetSearchResult Kept = KeepExisting(Found);
	Result.AddSuccessMessage(DescribeSuccess(Params, Kept.Results.Num()));
	if (Kept.bTruncated)
		Result.AddWarningMessage(FString::Printf("Results truncated at max_total_hits=%d", Params.MaxTotalHits));
	for (Orivane::FToolRemark& Remark : FAssetSearchOperation::MakeRemarks(Params, Found))
		Result.AddRemark(std::move(Remark));
	for (Orivane::FToolPlace& Place : FAssetSearchOperation::ListTextFiles(Kept))
		Result.AddPlace(std::move(Place));
	Result.SetData("content", MakeAssetSearchJson(Kept));
}
}

void FAssetSearchOperation::ExecuteAsync(
	const FJsonObject& Args, Orivane::FToolResult& Result, TDelegate<void(Orivane::FToolResult&)> OnComplete)
{
	checkGameThread();
	FAssetSearchParams Params;
	if (!ReadArguments(GetAssetSearchArguments(), Args, Params))
	{
		Result.AddErrorMessage("Missing required parameter 'term'");
		OnComplete.ExecuteIfBound(Result);
		return;
	}
	UAssetSearchService::Get().AssetSearch(Params,
		[Params, &Result, OnComplete](const FAssetSearchResult& Found)
		{
			WriteReport(Params, Found, Result);
			OnComplete.ExecuteIfBound(Result);
		});
}

bool FAssetSearchOperation::NeedsPackages(const FJsonObject& Args)
{
	FAssetSearchParams Params;
	return ReadArguments(GetAssetSearchArguments(), Args, Params) && UAssetSearchService::NeedsPackages(Params);
}

TArray<Orivane::FToolRemark> FAssetSearchOperation::MakeRemarks(const FAssetSearchParams& Params, const FAssetSearchResult& Found)
{
	TArray<Orivane::FToolRemark> Remarks;
	const auto Add = [&](const FString& Text, const char* Argument, int32 Cap)
	{ Remarks.Add({.Text = Text, .Argument = Argument, .Value = FString::FromInt(Cap), .Names = {}}); };
	const FAssetSearchLeftOut& LeftOut = Found.LeftOut;
	if (!LeftOut.OverTypeCap.IsEmpty())
		Add("more assets match: " + DescribeCounts(LeftOut.OverTypeCap), "max_hits_per_asset_type", Params.MaxHitsPerAssetType);
	if (LeftOut.NumOverTotal > 0)
		Add("more assets match: " + FString::FromInt(LeftOut.NumOverTotal), "max_total_hits", Params.MaxTotalHits);
	if (!LeftOut.EndedFamilies.IsEmpty())
		Add("more may match in " + FString::Join(LeftOut.EndedFamilies, ", ") + ", where the search ended after so many hits",
			"max_total_hits", Params.MaxTotalHits);
	if (!Found.Unread.IsEmpty())
		Remarks.Add({.Text = DescribeUnread(Found.Unread), .Argument = {}, .Value = {}, .Names = {}});
	return Remarks;
}

/** The payload cuts a file's name at its first dot. */
TArray<Orivane::FToolPlace> FAssetSearchOperation::ListTextFiles(const FAssetSearchResult& Found)
{
	TArray<Orivane::FToolPlace> Places;
	for (const FAssetResult& Asset : Found.Results)
	{
		if (Asset.AssetClass == "TextFile")
			Places.Add({.Asset = FPackageName::ObjectPathToPackageName(Asset.AssetPath), .File = Asset.AssetPath, .Text = {}});
	}
	return Places;
}
