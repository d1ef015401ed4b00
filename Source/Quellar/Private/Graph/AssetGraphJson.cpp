#include "Graph/AssetGraphJson.h"

#include "Core/Base/Map.h"
#include "OrivaneToolkit/AssetOperationBase.h"

namespace
{
/** What the two documents spell differently. */
struct FDialect
{
	const char* ByKindKey;
	const char* ByTypeKey;
	bool bLeavesListRelations;
};

constexpr FDialect ToolDialect = {.ByKindKey = "by_kind", .ByTypeKey = "by_type", .bLeavesListRelations = false};
constexpr FDialect ConsoleDialect = {.ByKindKey = "byKind", .ByTypeKey = "byType", .bLeavesListRelations = true};

FJsonArray MakeRelationsJson(const TArray<FAssetRelation>& Relations, const FDialect& Dialect)
{
	FJsonArray Array;
	Array.Reserve(Relations.Num());
	for (const FAssetRelation& Relation : Relations)
	{
		auto Json = MakeShared<FJsonObject>();
		Json->SetStringField("path", Relation.Path);
		Json->SetStringField("kind", Relation.Kind);
		Json->SetStringField("type", Relation.Type);
		if (Dialect.bLeavesListRelations || !Relation.Relations.IsEmpty())
			Json->SetArrayField("relations", MakeRelationsJson(Relation.Relations, Dialect));
		Array.Add(std::move(Json));
	}
	return Array;
}

TSharedPtr<FJsonObject> MakeCountsJson(const TMap<FString, int32>& Counts)
{
	auto Json = MakeShared<FJsonObject>();
	for (const auto& [Name, Count] : Counts)
		Json->SetNumberField(Name, Count);
	return Json;
}

TSharedPtr<FJsonObject> MakeSummaryJson(const FAssetGraphSummary& Summary, const FDialect& Dialect)
{
	auto Json = MakeShared<FJsonObject>();
	Json->SetNumberField("total", Summary.Total);
	Json->SetObjectField(Dialect.ByKindKey, MakeCountsJson(Summary.ByKind));
	Json->SetObjectField(Dialect.ByTypeKey, MakeCountsJson(Summary.ByType));
	return Json;
}

void SetRelations(
	FJsonObject& Json, const TArray<FAssetRelation>& Relations, const FAssetGraphSummary& Summary, const FDialect& Dialect)
{
	Json.SetArrayField("relations", MakeRelationsJson(Relations, Dialect));
	Json.SetObjectField("summary", MakeSummaryJson(Summary, Dialect));
}

TSharedPtr<FJsonObject> MakeDirectionJson(const TArray<FAssetRelation>& Relations, const FAssetGraphSummary& Summary)
{
	auto Json = MakeShared<FJsonObject>();
	SetRelations(*Json, Relations, Summary, ConsoleDialect);
	return Json;
}

/** An empty direction, of a path that names no package, is a single one. */
bool HasBothDirections(const FExploreAssetGraphResult& Result)
{
	return Result.Direction == "Both";
}
}

TSharedPtr<FJsonObject> MakeAssetGraphJson(const FExploreAssetGraphResult& Result)
{
	auto Json = MakeShared<FJsonObject>();
	Json->SetStringField("root", Result.Root);
	Json->SetStringField("direction", Result.Direction);
	Json->SetBoolField("truncated", Result.bTruncated);
	if (HasBothDirections(Result))
	{
		Json->SetArrayField("dependencies", MakeRelationsJson(Result.DependencyRelations, ToolDialect));
		Json->SetObjectField("dependencies_summary", MakeSummaryJson(Result.DependencySummary, ToolDialect));
		Json->SetArrayField("referencers", MakeRelationsJson(Result.ReferencerRelations, ToolDialect));
		Json->SetObjectField("referencers_summary", MakeSummaryJson(Result.ReferencerSummary, ToolDialect));
	}
	else
	{
		SetRelations(*Json, Result.Relations, Result.Summary, ToolDialect);
	}
	return Json;
}

FString WriteAssetGraphConsoleJson(const FExploreAssetGraphResult& Result)
{
	auto Json = MakeShared<FJsonObject>();
	Json->SetStringField("root", Result.Root);
	Json->SetStringField("direction", Result.Direction);
	if (HasBothDirections(Result))
	{
		Json->SetObjectField("dependencies", MakeDirectionJson(Result.DependencyRelations, Result.DependencySummary));
		Json->SetObjectField("referencers", MakeDirectionJson(Result.ReferencerRelations, Result.ReferencerSummary));
	}
	else
	{
		SetRelations(*Json, Result.Relations, Result.Summary, ConsoleDialect);
	}
	Json->SetBoolField("truncated", Result.bTruncated);
	return FAssetOperationBase::SerializeJson(Json);
}
