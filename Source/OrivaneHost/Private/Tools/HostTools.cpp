#include "Tools/HostTools.h"

#include "OrivaneToolkit/OrivaneToolkitModule.h"
#include "Quellar/Tools/AssetPathSearchOperation.h"
#include "Quellar/Tools/ToolEntry.h"
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
	static const TArray<FHostTool> Tools = {MakePathSearchTool(), MakeShowTool()};
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
