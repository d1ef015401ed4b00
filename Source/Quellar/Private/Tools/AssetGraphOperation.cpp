#include "Quellar/Tools/AssetGraphOperation.h"

#include "Core/Threads/StopToken.h"
#include "Graph/AssetGraphJson.h"
#include "OrivaneToolkit/AssetOperationBase.h"
#include "Tools/ArgumentTable.h"

namespace
{
/** Joined, not formatted: a path may hold any character, a zero byte too. The direction is the one that was asked for, also where
 * the path names no package. */
FString DescribeSuccess(const FExploreAssetGraphParams& Params, const FExploreAssetGraphResult& Found)
{
	const FString Start = FString("Explored asset graph for '") + Params.AssetPath + "' ";
	switch (Params.Direction)
	{
		case EAssetGraphDirection::Both:
			return Start +
				FString::Printf("(direction: Both, depth: %d, dependencies: %d, referencers: %d)", Params.Depth,
					Found.DependencyRelations.Num(), Found.ReferencerRelations.Num());
		case EAssetGraphDirection::Referencers:
			return Start +
				FString::Printf("(direction: Referencers, depth: %d, relations: %d)", Params.Depth, Found.Relations.Num());
		case EAssetGraphDirection::Dependencies:
			break;
	}
	return Start + FString::Printf("(direction: Dependencies, depth: %d, relations: %d)", Params.Depth, Found.Relations.Num());
}
}

void FAssetGraphOperation::Execute(const FJsonObject& Args, Orivane::FToolResult& Result)
{
	FExploreAssetGraphParams Params;
	if (!ReadArguments(GetAssetGraphArguments(), Args, Params))
	{
		Result.AddErrorMessage("Missing required parameter 'asset_path'");
		return;
	}
	if (!FAssetOperationBase::AssetExists(Params.AssetPath))
	{
		Result.AddErrorMessage(FString("Asset does not exist: ") + Params.AssetPath);
		Result.AddErrorMessage("Cannot explore graph for non-existent asset. The asset may have been deleted.");
		return;
	}
	FExploreAssetGraphResult Found;
	UAssetGraphService::ExploreGraph(Params, Found);
	if (IsStopRequested())
		return;
	Result.AddSuccessMessage(DescribeSuccess(Params, Found));
	if (Found.bTruncated)
		Result.AddWarningMessage(FString::Printf("Graph truncated at max_nodes=%d", Params.MaxNodes));
	Result.SetData("content", MakeAssetGraphJson(Found));
}
