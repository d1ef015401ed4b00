#include "Quellar/Tools/AssetGraphOperation.h"

#include "Core/Threads/StopToken.h"
#include "Graph/AssetGraphJson.h"
#include "OrivaneToolkit/AssetOperationBase.h"
#include "Quellar/Hits/AssetSearchTypes.h"
#include "Quellar/Tools/ArgumentTable.h"

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

FString Count(int32 Number, const char* One, const char* Several)
{
	return FString::FromInt(Number) + " " + (Number == 1 ? One : Several);
}

void AddRemarks(const FExploreAssetGraphParams& Params, const FAssetGraphLeftOut& LeftOut, const char* One, const char* Several,
	Orivane::FToolResult& Result)
{
	int32 NumLowSignal = 0;
	for (const auto& [Kind, Number] : LeftOut.LowSignalByKind)
		NumLowSignal += Number;
	if (LeftOut.bOverBudget)
		Result.AddRemark({.Text = FString("more ") + Several + " qualify",
			.Argument = "max_nodes",
			.Value = FString::FromInt(Params.MaxNodes)});
	if (NumLowSignal > 0)
		Result.AddRemark({.Text = FString::FromInt(NumLowSignal) + " more " + (NumLowSignal == 1 ? One : Several) +
				" of other kinds: " + DescribeCounts(LeftOut.LowSignalByKind),
			.Argument = "high_signal_only",
			.Value = "false"});
	if (LeftOut.NumHubs > 0)
		Result.AddRemark({.Text = Count(LeftOut.NumHubs, "package", "packages") + " with many neighbours not walked through",
			.Argument = "max_fanout_per_node",
			.Value = FString::FromInt(Params.MaxFanoutPerNode)});
	if (LeftOut.NumExcluded > 0)
		Result.AddRemark({.Text = FString::FromInt(LeftOut.NumExcluded) + " more " + (LeftOut.NumExcluded == 1 ? One : Several) +
				" in folders or plugins that the settings exclude"});
	if (LeftOut.NumHidden > 0)
		Result.AddRemark({.Text = FString::FromInt(LeftOut.NumHidden) + " more " + (LeftOut.NumHidden == 1 ? One : Several) +
				" hidden from queries"});
	if (!LeftOut.Missing.IsEmpty())
		Result.AddRemark({.Text = Count(LeftOut.Missing.Num(), "dependency does not exist", "dependencies do not exist"),
			.Names = LeftOut.Missing});
}

void AddRemarks(const FExploreAssetGraphParams& Params, const FExploreAssetGraphResult& Found, Orivane::FToolResult& Result)
{
	const bool bReferencers = Params.Direction == EAssetGraphDirection::Referencers;
	AddRemarks(
		Params, Found.LeftOut, bReferencers ? "referencer" : "dependency", bReferencers ? "referencers" : "dependencies", Result);
	AddRemarks(Params, Found.DependencyLeftOut, "dependency", "dependencies", Result);
	AddRemarks(Params, Found.ReferencerLeftOut, "referencer", "referencers", Result);
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
	AddRemarks(Params, Found, Result);
	Result.SetData("content", MakeAssetGraphJson(Found));
}
