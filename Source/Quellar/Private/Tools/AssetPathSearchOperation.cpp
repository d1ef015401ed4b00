#include "Quellar/Tools/AssetPathSearchOperation.h"

#include "Core/Threads/StopToken.h"
#include "Quellar/Paths/AssetPathSearchJson.h"
#include "Quellar/Search/AssetSearchService.h"
#include "Quellar/Tools/ArgumentTable.h"

DEFINE_LOG_CATEGORY(LogAssetPathSearchOperation); // kept for callers: nothing here can fail

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
	Result.SetData(ToolNames::AssetPathSearch, OrivaneToolUtils::MakeAssetPathSearchJson(Found, Params.DetailMode));
	Result.AddSuccessMessage(FString::Printf("Found %d matches across %d directories (truncated=%s).", Found.TotalHits,
		Found.TotalDirectories, Found.bTruncated ? "true" : "false"));
}
