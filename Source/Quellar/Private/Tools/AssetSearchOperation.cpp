#include "Quellar/Tools/AssetSearchOperation.h"

#include "Core/Threads/StopToken.h"
#include "Core/Threads/Tasks.h"
#include "CoreObject/Objects/PackageName.h"
#include "OrivaneToolkit/AssetOperationBase.h"
#include "Quellar/Search/AssetSearchService.h"
#include "Search/AssetSearchJson.h"
#include "Tools/ArgumentTable.h"

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
	if (!Found.Unread.IsEmpty())
		Result.AddWarningMessage(DescribeUnread(Found.Unread));
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
