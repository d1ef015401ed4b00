#include "Tools/HostTools.h"

#include "OrivaneToolkit/OrivaneToolkitModule.h"
#include "Quellar/Tools/AssetPathSearchOperation.h"
#include "Quellar/Tools/ToolEntry.h"
#include "Reports/ProjectReportOperation.h"
#include "Show/ShowAssetTool.h"

namespace
{
constexpr const char* PathSearchPayload = R"({"type": "object", "description": "What was found.",
		"properties": {
			"summary": {"type": "object", "description": "total_hits counts all; truncated: some are not listed.",
				"properties": {
					"total_hits": {"type": "integer", "description": "Matching assets."},
					"total_directories": {"type": "integer", "description": "Folders listed."},
					"truncated": {"type": "boolean", "description": "A cap was hit."},
					"detail_mode": {"type": "string", "description": "The view."}},
				"required": ["total_hits", "total_directories", "truncated", "detail_mode"]},
			"directories": {"type": "array", "description": "Ascending.", "items": {"type": "object",
				"properties": {
					"path": {"type": "string", "description": "Folder."},
					"count": {"type": "integer", "description": "Files listed."},
					"files": {"type": "array", "description": "Object paths below the folder.", "items": {"type": "string"}}},
				"required": ["path", "count", "files"]}},
			"files": {"type": "array", "description": "Object paths, ascending.", "items": {"type": "string"}}},
		"required": ["summary"]})";

constexpr const char* ProjectReportPayload = R"({"type": "object", "description": "What was found.",
		"properties": {
			"report": {"type": "string", "description": "As asked."},
			"summary": {"type": "object", "description": "Exact totals. path: reversed 1 where ways lead back only."},
			"truncated": {"type": "boolean", "description": "Rows were left out."},
			"rows": {"type": "array", "description": "A reference, asset, link of a cycle, or package of a way.", "items": {"type": "object",
				"properties": {
					"path": {"type": "string", "description": "Long package name; broken, cycles: what from refers to."},
					"kind": {"type": "string", "description": "Asset type."},
					"problem": {"type": "string", "description": "missing, or no assets."},
					"from": {"type": "string", "description": "Referring package."},
					"type": {"type": "string", "description": "Runtime, or Editor: not needed by the running game."},
					"depth": {"type": "integer", "description": "Links from the start."},
					"via": {"type": "string", "description": "Package before this one on the way."},
					"group": {"type": "integer", "description": "Number of the cycle or way."},
					"size": {"type": "integer", "description": "Packages in the cycle."},
					"soft": {"type": "boolean", "description": "Does not load its target."},
					"excluded": {"type": "boolean", "description": "In a folder that the settings exclude."},
					"file": {"type": "string", "description": "Of from."},
					"line": {"type": "integer", "description": "In file."}},
				"required": ["path"]}}},
		"required": ["report", "summary", "truncated", "rows"]})";

class FHostToolEntry final : public FToolEntry
{
public:
	explicit FHostToolEntry(const FHostTool& InTool)
		: FToolEntry(InTool.Description, R"({"operation_type": "search","data_type": "asset"})")
		, Tool(InTool)
	{
	}

protected:
	void RunOperation(
		const FJsonObject& Args, Orivane::FToolResult& Result, TDelegate<void(Orivane::FToolResult&)> OnComplete) override
	{
		Tool.Execute(Args, Result);
		OnComplete.ExecuteIfBound(Result);
	}

private:
	const FHostTool& Tool;
};

/** The module has it, and leaves it to its host to offer it. */
FHostTool MakePathSearchTool()
{
	return {.Declaration = *FindToolDeclaration(ToolNames::AssetPathSearch),
		.Title = "Find assets by path",
		.Description =
			"Find assets by a part of their path or name, grouped by folder, with exact counts. Nothing is loaded. Use "
			"for: finding where an asset is, listing the assets of a folder or of a class.",
		.PayloadKey = ToolNames::AssetPathSearch,
		.PayloadSchema = PathSearchPayload,
		.Execute = FAssetPathSearchOperation::Execute};
}

FHostTool MakeProjectReportTool()
{
	return {.Declaration = FProjectReportOperation::GetDeclaration(),
		.Title = "Report on the project's dependencies",
		.Description = "Answer about the dependencies of the whole project, with exact totals: broken references, unused assets, "
					   "cycles, what "
					   "a change of an asset reaches, and the ways from one asset to another. Nothing is loaded.",
		.PayloadKey = FProjectReportOperation::ToolName,
		.PayloadSchema = ProjectReportPayload,
		.Execute = FProjectReportOperation::Execute};
}

FHostTool MakeShowTool()
{
	return {.Declaration = ShowAssetTool::GetDeclaration(),
		.Title = "Show what is in an asset",
		.Description = ShowAssetTool::Description,
		.PayloadKey = ToolNames::ShowAsset,
		.PayloadSchema = ShowAssetTool::PayloadSchema,
		.Execute = ShowAssetTool::Execute};
}
}

const TArray<FHostTool>& GetHostTools()
{
	static const TArray<FHostTool> Tools = {MakePathSearchTool(), MakeShowTool(), MakeProjectReportTool()};
	return Tools;
}

const FToolDeclaration* FindTool(const FString& Name)
{
	if (const FToolDeclaration* const OfModule = FindToolDeclaration(Name))
		return OfModule;
	const FHostTool* const Tool =
		GetHostTools().FindByPredicate([&](const FHostTool& Each) { return Name == Each.Declaration.Name; });
	return Tool ? &Tool->Declaration : nullptr;
}

void RegisterHostTools(bool bPathSearch)
{
	for (const FHostTool& Tool : GetHostTools())
	{
		const FString Name = Tool.Declaration.Name;
		if (bPathSearch || Name != ToolNames::AssetPathSearch)
			FOrivaneToolkitModule::GetToolExecutor()->RegisterTool(Name, MakeShared<FHostToolEntry>(Tool));
	}
}
