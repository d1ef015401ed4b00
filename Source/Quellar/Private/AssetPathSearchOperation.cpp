#include "Quellar/AssetPathSearchOperation.h"

#include "Core/Json.h"
#include "Core/StopToken.h"
#include "Quellar/AssetPathSearchJson.h"
#include "Quellar/AssetSearchService.h"

#include <algorithm>

DEFINE_LOG_CATEGORY(LogAssetPathSearchOperation);

namespace
{
EAssetPathDetailMode ReadDetailMode(const FJsonObject& Args)
{
	FString Word;
	Args.TryGetStringField("detail_mode", Word);
	if (Word == "files")
		return EAssetPathDetailMode::Files;
	return Word == "both" ? EAssetPathDetailMode::Both : EAssetPathDetailMode::Directories;
}

/** Elements that are no text, and empty ones, are left out; nothing is converted. */
TArray<FString> ReadClassFilters(const FJsonObject& Args)
{
	TArray<FString> Filters;
	const FJsonArray* Elements = nullptr;
	if (!Args.TryGetArrayField("class_filters", Elements))
		return Filters;
	for (const FJsonValue& Element : *Elements)
	{
		FString Text;
		if (Element.Type() == EJson::String && Element.TryGetString(Text) && !Text.IsEmpty())
			Filters.Add(std::move(Text));
	}
	return Filters;
}

void ReadCap(const FJsonObject& Args, FStringView Key, int32& Out)
{
	if (Args.TryGetNumberField(Key, Out))
		Out = std::max(Out, 1);
}

FAssetPathSearchParams ReadParams(const FJsonObject& Args)
{
	FAssetPathSearchParams Params;
	Args.TryGetStringField("term", Params.Term);
	FString Mode;
	Args.TryGetStringField("mode", Mode);
	Params.MatchMode = Mode == "exact" ? 1 : 0;
	Args.TryGetBoolField("case_sensitive", Params.bCaseSensitive);
	Params.DetailMode = ReadDetailMode(Args);
	Args.TryGetStringField("path_contains", Params.PathContains);
	Params.ClassFilters = ReadClassFilters(Args);
	ReadCap(Args, "max_file_results", Params.MaxFileResults);
	ReadCap(Args, "max_directory_buckets", Params.MaxDirectoryBuckets);
	ReadCap(Args, "max_files_per_directory", Params.MaxFilesPerDirectory);
	return Params;
}
}

void FAssetPathSearchOperation::Execute(const FJsonObject& Args, Orivane::FToolResult& Result)
{
	const FAssetPathSearchParams Params = ReadParams(Args);
	if (Params.Term.IsEmpty())
	{
		Result.AddErrorMessage("Missing required field 'term' (non-empty string).");
		return;
	}
	FAssetPathSearchResult Found;
	UAssetSearchService::Get().AssetPathSearch(Params, Found);
	if (IsStopRequested())
		return;

	FString Text;
	OrivaneToolUtils::WriteAssetPathSearchJson(Found, Text, Params.DetailMode);
	TSharedPtr<FJsonObject> Payload;
	FJsonError Error;
	if (!Json::ParseObject(Text, Payload, &Error))
	{
		Log::Write(LogAssetPathSearchOperation, ELogVerbosity::Error, FString("the payload cannot be read back: ") + Error.Text);
		Result.AddErrorMessage("asset_path_search: Failed to serialize JSON payload.");
		return;
	}
	Result.SetData("asset_path_search", Payload);
	Result.AddSuccessMessage(FString::Printf("Found %d matches across %d directories (truncated=%s).", Found.TotalHits,
		Found.TotalDirectories, Found.bTruncated ? "true" : "false"));
}
