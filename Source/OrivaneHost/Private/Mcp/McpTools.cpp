#include "Mcp/McpTools.h"

#include "Quellar/Tools/ToolArguments.h"
#include "Show/ShowAssetTool.h"

namespace
{
struct FToolAdvice
{
	const char* Tool;
	const char* Sentence;
};

/** In the order in which an agent meets the tools. */
constexpr FToolAdvice Advice[] = {
	{ToolNames::AssetSearch,
		"Begin with asset_search: it finds the assets and text files that contain a name or value, with the places inside them. "
		"The argument term is required; path_contains and include_asset_families narrow the search."},
	{ToolNames::AssetPathSearch,
		"asset_path_search finds assets by their path alone; use it when a part of the asset's name or folder is known."},
	{ToolNames::AssetGraph,
		"explore_asset_graph takes the path of an asset (\"asset\" in what asset_search answers) and lists what it depends on "
		"and what "
		"refers to it."},
	{ToolNames::ShowAsset, "show_asset tells what is in one asset: its values, rows, nodes."},
};

TSharedPtr<FJsonObject> MakeAnnotations()
{
	auto Annotations = MakeShared<FJsonObject>();
	Annotations->SetBoolField("readOnlyHint", true);
	Annotations->SetBoolField("idempotentHint", true);
	Annotations->SetBoolField("openWorldHint", false);
	return Annotations;
}

TSharedPtr<FJsonObject> MakeEntry(const FMcpTool& Tool)
{
	auto Entry = MakeShared<FJsonObject>();
	Entry->SetStringField("name", Tool.Name);
	if (!Tool.Title.IsEmpty())
		Entry->SetStringField("title", Tool.Title);
	Entry->SetStringField("description", Tool.Description);
	Entry->SetObjectField("inputSchema", Tool.InputSchema);
	if (Tool.OutputSchema)
		Entry->SetObjectField("outputSchema", Tool.OutputSchema);
	if (Tool.bReadOnly)
		Entry->SetObjectField("annotations", MakeAnnotations());
	return Entry;
}

TArray<FString> GetRequiredArguments(const FMcpTool& Tool)
{
	TArray<FString> Names;
	const FJsonArray* Required = nullptr;
	if (!Tool.InputSchema->TryGetArrayField("required", Required))
		return Names;
	for (const FJsonValue& Element : *Required)
	{
		FString Name;
		if (Element.TryGetString(Name))
			Names.Add(Name);
	}
	return Names;
}

TArray<FString> GetArguments(const FMcpTool& Tool)
{
	TArray<FString> Names;
	TSharedPtr<FJsonObject> Properties;
	if (!Tool.InputSchema->TryGetObjectField("properties", Properties))
		return Names;
	for (const FJsonObject::FField& Property : Properties->GetFields())
		Names.Add(Property.Key);
	return Names;
}
}

FJsonArray McpTools::MakeList(const TArray<FMcpTool>& Tools)
{
	FJsonArray List;
	for (const FMcpTool& Tool : Tools)
		List.Add(MakeEntry(Tool));
	return List;
}

FString McpTools::MakeInstructions(const TArray<FMcpTool>& Tools, bool bFollowsFiles)
{
	FString Text =
		"Answers questions about one game project, the one that was named when the server was started. All tools only read.";
	for (const FToolAdvice& Row : Advice)
	{
		if (Find(Tools, Row.Tool))
			Text += FString(" ") + Row.Sentence;
	}
	return Text + " The project is opened in the background: the first call may wait for it." +
		(bFollowsFiles ? " Files that change while the server runs are read again before the next call, or within a second where "
						 "the system does not tell of changes."
					   : " Assets that change while the server runs are not noticed.") +
		" Answers are capped; a "
		"warning in "
		"\"messages\" says so, and narrower arguments show the rest.";
}

const FMcpTool* McpTools::Find(const TArray<FMcpTool>& Tools, FStringView Name)
{
	return Tools.FindByPredicate([&](const FMcpTool& Tool) { return Tool.Name.View() == Name; });
}

FString McpTools::ListNames(const TArray<FMcpTool>& Tools)
{
	TArray<FString> Names;
	for (const FMcpTool& Tool : Tools)
		Names.Add(Tool.Name);
	return FString::Join(Names, ", ");
}

bool McpTools::LacksRequiredArgument(const FMcpTool& Tool, const FJsonValue& Arguments)
{
	const TSharedPtr<FJsonObject> Given = Arguments.AsObject();
	const auto IsMissing = [&](const FString& Name)
	{
		const FJsonValue* Value = Given ? Given->FindField(Name) : nullptr;
		return !Value || Value->IsNull();
	};
	return GetRequiredArguments(Tool).ContainsByPredicate(IsMissing);
}

FString McpTools::DescribeArguments(const FMcpTool& Tool)
{
	const TArray<FString> Required = GetRequiredArguments(Tool);
	TArray<FString> Words;
	for (const FString& Name : GetArguments(Tool))
		Words.Add(Required.Contains(Name) ? Name + " (required)" : Name);
	return Tool.Name + " takes a JSON object" + (Words.IsEmpty() ? FString() : FString(" with: ") + FString::Join(Words, ", "));
}

FString McpTools::ListNarrowingArguments(const FMcpTool& Tool)
{
	return FString::Join(Tool.NarrowingArguments, ", ");
}
