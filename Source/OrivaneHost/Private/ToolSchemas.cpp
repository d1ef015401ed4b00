#include "ToolSchemas.h"

#include "Core/Assert.h"
#include "Quellar/AssetSearchService.h"

namespace
{
TSharedPtr<FJsonObject> ParseSchema(const char* Text)
{
	TSharedPtr<FJsonObject> Schema;
	const bool bParsed = Json::ParseObject(Text, Schema);
	checkf(bParsed, "a built-in schema is a JSON object");
	return Schema;
}

constexpr const char* AssetSearchInput = R"({
"type": "object",
"properties": {
	"term": {"type": "string", "description": "Text to look for in names and values. Required; an empty text matches everything, but Blueprints are never searched for it: list other families."},
	"mode": {"type": "string", "enum": ["contains", "exact"], "default": "contains", "description": "contains: the term occurs in the text; exact: the whole text equals the term."},
	"case_sensitive": {"type": "boolean", "default": false, "description": "Whether upper and lower case differ."},
	"include_asset_families": {"type": "array", "items": {"type": "string"}, "default": [], "description": "Families of assets to search; empty: all."},
	"include_kinds": {"type": "array", "items": {"type": "string"}, "default": [], "description": "Kinds of hits to ask for; only the widget kinds of Blueprints are selected by it."},
	"path_contains": {"type": "string", "default": "", "description": "Only assets whose folder (for text files: whose path) contains this text, such as /Game/UI."},
	"include_text_extensions": {"type": "array", "items": {"type": "string"}, "default": [], "description": "Read for compatibility; the project settings' TextSearchExtensions decide which text files are searched."},
	"max_hits_per_kind": {"type": "integer", "default": 10, "description": "Hits of one kind reported per asset, at least 1."},
	"max_total_hits": {"type": "integer", "default": 200, "description": "Hits per family and assets in all; below 1 the assets are capped at 200."},
	"max_hits_per_asset_type": {"type": "integer", "default": 25, "description": "Assets reported per asset type, at least 1."},
	"prefer_editor_index": {"type": "boolean", "default": true, "description": "Read for compatibility; Blueprint contents always come from the index."}
},
"required": ["term"]
})";

constexpr const char* AssetSearchOutput = R"({
"type": "object",
"properties": {
	"messages": {"type": "array", "description": "What the tool reports in words, in order.", "items": {"type": "object",
		"properties": {
			"type": {"type": "string", "enum": ["error", "warning", "success"], "description": "Weight of the message."},
			"text": {"type": "string", "description": "The message."}},
		"required": ["type", "text"]}},
	"content": {"type": "object", "description": "What was found.",
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
							"count": {"type": "integer", "description": "How often it was met."}},
						"required": ["kind", "name", "container", "count"]}}},
				"required": ["asset", "class", "truncated", "hits"]}},
			"truncated": {"type": "boolean", "description": "Assets were left out; narrow the search or raise the caps."}},
		"required": ["assets", "truncated"]}
},
"required": ["messages"]
})";

TSharedPtr<FJsonObject> GetMember(const TSharedPtr<FJsonObject>& Object, const char* Key)
{
	TSharedPtr<FJsonObject> Member;
	const bool bFound = Object->TryGetObjectField(Key, Member);
	checkf(bFound, "a built-in schema has the members that are filled in");
	return Member;
}

/** The families' names are the module's to say. */
TSharedPtr<FJsonObject> MakeAssetSearchInput()
{
	FJsonArray Families;
	for (const FString& Name : UAssetSearchService::GetFamilyNames())
		Families.Add(Name);
	const TSharedPtr<FJsonObject> Schema = ParseSchema(AssetSearchInput);
	const auto FamilyList = GetMember(GetMember(Schema, "properties"), "include_asset_families");
	GetMember(FamilyList, "items")->SetArrayField("enum", std::move(Families));
	return Schema;
}
}

const TArray<FToolSchema>& GetToolSchemas()
{
	static const TArray<FToolSchema> Schemas = {
		{.Name = "asset_search",
			.Title = "Search assets by name or value",
			.Input = MakeAssetSearchInput(),
			.Output = ParseSchema(AssetSearchOutput)},
	};
	return Schemas;
}

const FToolSchema* FindToolSchema(const FString& Name)
{
	return GetToolSchemas().FindByPredicate([&](const FToolSchema& Schema) { return Schema.Name == Name; });
}
