#include "Tools/ToolSchemas.h"

#include "Core/Base/Assert.h"
#include "Tools/HostTools.h"

namespace
{
TSharedPtr<FJsonObject> ParseSchema(const FString& Text)
{
	TSharedPtr<FJsonObject> Schema;
	const bool bParsed = Json::ParseObject(Text, Schema);
	checkf(bParsed, "a built-in schema is a JSON object");
	return Schema;
}

constexpr const char* OutputStart = R"({
"type": "object",
"properties": {
	"messages": {"type": "array", "description": "What the tool reports in words, in order.", "items": {"type": "object",
		"properties": {
			"type": {"type": "string", "enum": ["error", "warning", "success"], "description": "Severity."},
			"text": {"type": "string", "description": "The message."}},
		"required": ["type", "text"]}},
	)";
constexpr const char* OutputEnd = R"(
},
"required": ["messages"]
})";

/** Of a tool with one payload. */
TSharedPtr<FJsonObject> MakeOutput(const char* PayloadKey, const char* PayloadSchema)
{
	return ParseSchema(FString(OutputStart) + "\"" + PayloadKey + "\": " + PayloadSchema + OutputEnd);
}

constexpr const char* AssetSearchPayload = R"({"type": "object", "description": "What was found.",
		"properties": {
			"assets": {"type": "array", "description": "Assets in ascending path order.", "items": {"type": "object",
				"properties": {
					"asset": {"type": "string", "description": "Long package name, or a text file's path up to its first dot."},
					"class": {"type": "string", "description": "Asset type."},
					"truncated": {"type": "boolean", "description": "Hits of a kind were left out."},
					"hits": {"type": "array", "description": "Matches inside the asset.", "items": {"type": "object",
						"properties": {
							"kind": {"type": "string", "description": "What matched, such as ColumnName."},
							"name": {"type": "string", "description": "The matched text up to its first dot."},
							"container": {"type": "string", "description": "Where inside the asset."},
							"count": {"type": "integer", "description": "Number of occurrences."}},
						"required": ["kind", "name", "container", "count"]}}},
				"required": ["asset", "class", "truncated", "hits"]}},
			"truncated": {"type": "boolean", "description": "Assets were left out; narrow the search or raise the caps."}},
		"required": ["assets", "truncated"]})";

constexpr const char* AssetGraphPayload =
	R"({"type": "object", "description": "relations and summary; for both directions a pair for each instead.",
		"properties": {
			"root": {"type": "string", "description": "Long package name of the start; empty where the path names no package."},
			"direction": {"type": "string", "description": "The relation that was walked."},
			"truncated": {"type": "boolean", "description": "More relations qualify; raise max_nodes."},
			"relations": {"type": "array", "description": "Newest first; a leaf has no relations of its own.", "items": {"type": "object",
				"properties": {
					"path": {"type": "string", "description": "Long package name."},
					"kind": {"type": "string", "description": "Asset type."},
					"type": {"type": "string", "enum": ["Runtime", "Editor"], "description": "Editor: not needed by the running game."},
					"relations": {"type": "array", "description": "Found from this one.", "items": {"type": "object"}}},
				"required": ["path", "kind", "type"]}},
			"summary": {"type": "object", "description": "Counts over all levels.",
				"properties": {
					"total": {"type": "integer", "description": "Relations."},
					"by_kind": {"type": "object", "description": "Relations of each kind.", "additionalProperties": {"type": "integer"}},
					"by_type": {"type": "object", "description": "Relations of each type.", "additionalProperties": {"type": "integer"}}},
				"required": ["total", "by_kind", "by_type"]},
			"dependencies": {"type": "array", "description": "As relations.", "items": {"type": "object"}},
			"dependencies_summary": {"type": "object", "description": "As summary."},
			"referencers": {"type": "array", "description": "As relations.", "items": {"type": "object"}},
			"referencers_summary": {"type": "object", "description": "As summary."}},
		"required": ["root", "direction", "truncated"]})";

FJsonArray MakeArray(const TArray<FString>& Words)
{
	FJsonArray Array;
	for (const FString& Word : Words)
		Array.Add(Word);
	return Array;
}

const char* GetTypeWord(EToolArgument Type)
{
	switch (Type)
	{
		case EToolArgument::Text:
			return "string";
		case EToolArgument::Flag:
			return "boolean";
		case EToolArgument::Integer:
			return "integer";
		case EToolArgument::TextList:
			break;
	}
	return "array";
}

TSharedPtr<FJsonObject> MakeArgument(const FToolArgument& Argument)
{
	auto Schema = MakeShared<FJsonObject>();
	Schema->SetStringField("type", GetTypeWord(Argument.Type));
	const auto Words = Argument.Type == EToolArgument::TextList ? MakeShared<FJsonObject>() : Schema; // where they are limited
	if (Argument.Type == EToolArgument::TextList)
		Words->SetStringField("type", GetTypeWord(EToolArgument::Text));
	if (Argument.MinLength > 0)
		Schema->SetNumberField("minLength", Argument.MinLength);
	if (!Argument.Choices.IsEmpty())
		Words->SetArrayField("enum", MakeArray(Argument.Choices));
	if (Argument.Type == EToolArgument::TextList)
		Schema->SetObjectField("items", Words);
	if (Argument.Maximum != INT32_MAX) // a range; what is below a cap's least value counts as that, and is not a fault
	{
		Schema->SetNumberField("minimum", Argument.Minimum);
		Schema->SetNumberField("maximum", Argument.Maximum);
	}
	if (!Argument.bRequired)
		Schema->SetField("default", Argument.Default);
	Schema->SetStringField("description", Argument.Help);
	return Schema;
}

TSharedPtr<FJsonObject> MakeInput(const FToolDeclaration& Tool)
{
	auto Properties = MakeShared<FJsonObject>();
	FJsonArray Required;
	for (const FToolArgument& Argument : Tool.Arguments)
	{
		Properties->SetObjectField(Argument.Key, MakeArgument(Argument));
		if (Argument.bRequired)
			Required.Add(Argument.Key);
	}
	auto Schema = MakeShared<FJsonObject>();
	Schema->SetStringField("type", "object");
	Schema->SetObjectField("properties", Properties);
	Schema->SetArrayField("required", std::move(Required));
	return Schema;
}

FToolSchema MakeSchema(const FToolDeclaration& Tool, const char* Title, const char* PayloadKey, const char* PayloadSchema)
{
	return {.Name = Tool.Name, .Title = Title, .Input = MakeInput(Tool), .Output = MakeOutput(PayloadKey, PayloadSchema)};
}

TArray<FToolSchema> MakeSchemas()
{
	TArray<FToolSchema> Schemas;
	Schemas.Add(MakeSchema(*FindTool(ToolNames::AssetSearch), "Search assets by name or value", "content", AssetSearchPayload));
	Schemas.Add(
		MakeSchema(*FindTool(ToolNames::AssetGraph), "Explore what assets depend on and refer to", "content", AssetGraphPayload));
	for (const FHostTool& Tool : GetHostTools())
		Schemas.Add(MakeSchema(Tool.Declaration, Tool.Title, Tool.PayloadKey, Tool.PayloadSchema));
	return Schemas;
}
}

const TArray<FToolSchema>& GetToolSchemas()
{
	static const TArray<FToolSchema> Schemas = MakeSchemas();
	return Schemas;
}

const FToolSchema* FindToolSchema(const FString& Name)
{
	return GetToolSchemas().FindByPredicate([&](const FToolSchema& Schema) { return Schema.Name == Name; });
}
