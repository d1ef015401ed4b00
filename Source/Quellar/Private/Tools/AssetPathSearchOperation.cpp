#include "Quellar/Tools/AssetPathSearchOperation.h"

#include "Core/Json/Json.h"
#include "Core/Threads/StopToken.h"
#include "Quellar/Paths/AssetPathSearchJson.h"
#include "Quellar/Search/AssetSearchService.h"
#include "Tools/ArgumentTable.h"

DEFINE_LOG_CATEGORY(LogAssetPathSearchOperation);

void FAssetPathSearchOperation::Execute(const FJsonObject& Args, Orivane::FToolResult& Result)
{
	FAssetPathSearchParams Params;
	if (!ReadArguments(GetAssetPathSearchArguments(), Args, Params) || Params.Term.IsEmpty())
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
	Result.SetData(ToolNames::AssetPathSearch, Payload);
	Result.AddSuccessMessage(FString::Printf("Found %d matches across %d directories (truncated=%s).", Found.TotalHits,
		Found.TotalDirectories, Found.bTruncated ? "true" : "false"));
}
