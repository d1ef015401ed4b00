#include "Quellar/Tools/ToolEntry.h"

#include "Quellar/Tools/AssetGraphOperation.h"
#include "Quellar/Tools/AssetSearchOperation.h"

FToolEntry::FToolEntry(FString InDescription, FString InMetadata)
	: Description(std::move(InDescription))
	, Metadata(std::move(InMetadata))
{
}

void FToolEntry::ValidateArguments(const FString& ArgumentsJson, Orivane::FToolResult& Result)
{
	TSharedPtr<FJsonObject> Object;
	if (!Json::ParseObject(ArgumentsJson, Object))
		Result.AddErrorMessage("Invalid JSON format");
}

FString FToolEntry::GetMetadata()
{
	if (MetadataGenerator && !bMetadataCached)
	{
		Metadata = MetadataGenerator();
		bMetadataCached = true;
		if (Metadata.IsEmpty())
			Metadata = "{}";
	}
	return Metadata;
}

void FToolEntry::InvalidateMetadata()
{
	if (MetadataGenerator)
		bMetadataCached = false;
}

void FToolEntry::Execute(const Orivane::FToolCommand& Command, TSharedPtr<Orivane::FToolResult> Result,
	TDelegate<void(Orivane::FToolResult&)> OnComplete)
{
	if (bClosed)
	{
		Result->AddErrorMessage("Tool '" + Command.ToolName + "' is not available any more: its module is shut down");
		OnComplete.ExecuteIfBound(*Result);
		return;
	}
	TSharedPtr<FJsonObject> Args;
	if (!Json::ParseObject(Command.ArgumentsJson, Args))
	{
		// Two messages: callers match on either.
		Result->AddErrorMessage("Invalid JSON command");
		Result->AddErrorMessage("Failed to parse command JSON");
		OnComplete.ExecuteIfBound(*Result);
		return;
	}
	RunOperation(*Args, *Result, OnComplete);
}

FAssetSearchTool::FAssetSearchTool()
	: FToolEntry(
		  "Search Varnel assets (Blueprints, DataAssets, DataTables, Enums, Structs, Text files, etc.) for names/values without "
		  "loading assets. Returns per-asset hit lists with kind/name/container context. Supports AssetRegistry + Editor "
		  "FindInBlueprints index for BP sub-elements. Use for: finding BP variables/functions, discovering DataAsset "
		  "properties, locating text content, identifying asset usage patterns.",
		  R"({"operation_type": "search","data_type": "asset","execution_mode": "sequential"})")
{
}

void FAssetSearchTool::RunOperation(
	const FJsonObject& Args, Orivane::FToolResult& Result, TDelegate<void(Orivane::FToolResult&)> OnComplete)
{
	FAssetSearchOperation::ExecuteAsync(Args, Result, std::move(OnComplete));
}

FAssetGraphTool::FAssetGraphTool()
	: FToolEntry(
		  "Explore asset dependency/referencer graph via AssetRegistry (no loading). Returns nested relations with "
		  "Runtime/Editor "
		  "classification based on Hard dependency Game flags. Supports BFS traversal with fanout protection and high-signal "
		  "filtering. Use for: understanding asset dependencies, finding referencer chains, discovering runtime vs editor-only "
		  "relationships, architecture analysis.",
		  R"({"operation_type": "search","data_type": "asset"})")
{
}

void FAssetGraphTool::RunOperation(
	const FJsonObject& Args, Orivane::FToolResult& Result, TDelegate<void(Orivane::FToolResult&)> OnComplete)
{
	FAssetGraphOperation::Execute(Args, Result);
	OnComplete.ExecuteIfBound(Result);
}
