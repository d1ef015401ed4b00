#include "Show/ShowAssetTool.h"

#include "Quellar/Tools/ArgumentTable.h"
#include "Show/AssetShow.h"

namespace
{
constexpr int32 LeastBytes = 1024;
constexpr int32 MostBytes = 16 * 1024 * 1024;

const TArray<TArgumentRow<FShowAssetParams>>& GetArguments()
{
	using P = FShowAssetParams;
	static const TArray<TArgumentRow<P>> Rows = {
		{{.Key = "asset_path",
			 .Help = "Path, file or unique name.",
			 .bRequired = true,
			 .Shell = {.Names = "ASSET", .Help = "The asset: its path, its file, or its name where no other has it"}},
			&P::AssetPath},
		{{.Key = "sections",
			 .Type = EToolArgument::TextList,
			 .Help = "Only these.",
			 .Choices = GetShowSections(),
			 .Narrowing = 1,
			 .Shell = {.Names = "-s,--section",
				 .Placeholder = "NAME",
				 .Help = "Only this section (may be repeated, or a list with commas)"}},
			&P::Sections},
		{{.Key = "object",
			 .Help = "Another object of the package.",
			 .Shell = {.Names = "--object", .Placeholder = "NAME", .Help = "Show this object of the package, by name or path"}},
			&P::Object},
		{{.Key = "row_names",
			 .Type = EToolArgument::TextList,
			 .Help = "Rows of a table.",
			 .Shell = {.Names = "--row", .Placeholder = "NAME", .Help = "Only this row of a table (may be repeated)"}},
			&P::RowNames},
		{{.Key = "max_rows",
			 .Type = EToolArgument::Integer,
			 .Help = "First rows.",
			 .Minimum = 0,
			 .Narrowing = 2,
			 .Shell = {.Names = "--rows", .Placeholder = "N", .Help = "Rows of a table", .Least = 0}},
			&P::MaxRows},
		{{.Key = "include_defaults",
			 .Type = EToolArgument::Flag,
			 .Help = "Also what is not stored.",
			 .Shell = {.Names = "--defaults",
				 .Help = "Also properties with the defaults of their class, and inherited variables",
				 .FlagValue = true}},
			&P::bIncludeDefaults},
		{{.Key = "max_bytes",
			 .Type = EToolArgument::Integer,
			 .Help = "Of the answer.",
			 .Minimum = LeastBytes,
			 .Maximum = MostBytes,
			 .Narrowing = 3,
			 .Shell = {.Names = "--max-bytes", .Placeholder = "N", .Help = "Length of the payload", .Least = LeastBytes}},
			&P::MaxBytes},
	};
	return Rows;
}
}

const TArray<FString>& GetShowSections()
{
	static const TArray<FString> Sections = {"tags", "properties", "rows", "entries", "fields", "keys", "parameters", "variables",
		"index", "tree", "objects", "references"};
	return Sections;
}

FString DescribeUnknownSection(const TArray<FString>& Sections)
{
	for (const FString& Section : Sections)
	{
		if (!GetShowSections().Contains(Section))
			return "There is no section '" + Section + "'; sections: " + FString::Join(GetShowSections(), ", ");
	}
	return {};
}

const FToolDeclaration& ShowAssetTool::GetDeclaration()
{
	static const FToolDeclaration Declaration = DeclareTool(ToolNames::ShowAsset, GetArguments());
	return Declaration;
}

const char* const ShowAssetTool::Description = "Show what is in an asset: values of properties, table rows, enum entries, keys, "
											   "parameters, variables, the tree of its nodes "
											   "or widgets, references.";

const char* const ShowAssetTool::PayloadSchema =
	R"({"type": "object", "description": "Only the sections that the asset has.",
		"properties": {
			"asset": {"type": "string", "description": "Object path."},
			"class": {"type": "string", "description": "Class path."},
			"properties": {"type": "array", "description": "name, type, value; default: as its class has it.", "items": {"type": "object"}},
			"rows": {"type": "array", "description": "name and cells; num_rows counts all.", "items": {"type": "object"}},
			"tree": {"type": "array", "description": "object, class, as (the property that leads to it), values, children.",
				"items": {"type": "object"}},
			"references": {"type": "object", "description": "Counts, and the first of each direction."}}})";

void ShowAssetTool::Execute(const FJsonObject& Args, Orivane::FToolResult& Result)
{
	FShowAssetParams Params;
	if (!ReadArguments(GetArguments(), Args, Params))
	{
		Result.AddErrorMessage("Missing required parameter 'asset_path'");
		return;
	}
	if (const FString Error = DescribeUnknownSection(Params.Sections); !Error.IsEmpty())
	{
		Result.AddErrorMessage(Error);
		return;
	}
	FString Error;
	const TOptional<FNamedAsset> Named = FindNamedAsset(Params.AssetPath, Error);
	if (!Named)
	{
		Result.AddErrorMessage(Error);
		return;
	}
	const FTemporaryLoads Loads;
	FShowPage Page(Params, Result);
	if (!FAssetShow(*Named, Page).Show(Error))
	{
		Result.AddErrorMessage(Error);
		return;
	}
	Result.AddSuccessMessage("Showed asset '" + Named->Asset.GetObjectPathString() + "'");
	Result.SetData(ToolNames::ShowAsset, Page.Payload);
}
