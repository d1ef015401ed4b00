#include "Quellar/AssetSearchOperation.h"

#include "AssetSearchJson.h"
#include "Core/StopToken.h"
#include "CoreObject/PackageName.h"
#include "OrivaneToolkit/AssetOperationBase.h"
#include "Quellar/AssetSearchService.h"

namespace
{
/** Elements that are no strings are left out; a key that holds no array leaves the list as it is. */
void ReadStrings(const FJsonObject& Args, FStringView Key, TArray<FString>& Out)
{
	const FJsonArray* Elements = nullptr;
	if (!Args.TryGetArrayField(Key, Elements))
		return;
	Out.Empty();
	for (const FJsonValue& Element : *Elements)
	{
		FString Text;
		if (Element.TryGetString(Text))
			Out.Add(std::move(Text));
	}
}

/** False without a term. */
bool ReadParams(const FJsonObject& Args, FAssetSearchParams& Params)
{
	if (!Args.TryGetStringField("term", Params.Term))
		return false;
	FString Mode;
	Args.TryGetStringField("mode", Mode);
	Params.bExact = Mode == "exact";
	Args.TryGetBoolField("case_sensitive", Params.bCaseSensitive);
	ReadStrings(Args, "include_asset_families", Params.IncludeAssetFamilies);
	ReadStrings(Args, "include_kinds", Params.IncludeKinds);
	Args.TryGetStringField("path_contains", Params.PathContains);
	ReadStrings(Args, "include_text_extensions", Params.IncludeTextExtensions);
	Args.TryGetNumberField("max_hits_per_kind", Params.MaxHitsPerKind);
	Args.TryGetNumberField("max_total_hits", Params.MaxTotalHits);
	Args.TryGetNumberField("max_hits_per_asset_type", Params.MaxHitsPerAssetType);
	Args.TryGetBoolField("prefer_editor_index", Params.bPreferEditorIndex);
	return true;
}

/** The results whose asset still exists. */
FAssetSearchResult KeepExisting(const FAssetSearchResult& Found)
{
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
	Result.SetData("content", FAssetOperationBase::SerializeJson(MakeAssetSearchJson(Kept)));
}
}

void FAssetSearchOperation::ExecuteAsync(
	const FJsonObject& Args, Orivane::FToolResult& Result, TDelegate<void(Orivane::FToolResult&)> OnComplete)
{
	FAssetSearchParams Params;
	if (!ReadParams(Args, Params))
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
