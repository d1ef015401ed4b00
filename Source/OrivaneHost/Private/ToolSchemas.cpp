#include "ToolSchemas.h"

#include "Core/Assert.h"
#include "Quellar/AssetSearchService.h"

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
			"type": {"type": "string", "enum": ["error", "warning", "success"], "description": "Weight of the message."},
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

constexpr const char* AssetSearchInput = R"({
"type": "object",
"properties": {
	"term": {"type": "string", "description": "Text to look for in names and values. Required; an empty text matches everything, but Blueprints are never searched for it: list other families."},
	"mode": {"type": "string", "enum": ["contains", "exact"], "default": "contains", "description": "contains: the term occurs in the text; exact: the whole text equals the term."},
	"case_sensitive": {"type": "boolean", "default": false, "description": "Whether upper and lower case differ."},
	"include_asset_families": {"type": "array", "items": {"type": "string"}, "default": [], "description": "Families of assets to search; empty: all. Material and NiagaraSystem match asset names only, unless the project's settings have them read in depth."},
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
							"count": {"type": "integer", "description": "How often it was met."}},
						"required": ["kind", "name", "container", "count"]}}},
				"required": ["asset", "class", "truncated", "hits"]}},
			"truncated": {"type": "boolean", "description": "Assets were left out; narrow the search or raise the caps."}},
		"required": ["assets", "truncated"]})";

constexpr const char* AssetGraphInput = R"({
"type": "object",
"properties": {
	"asset_path": {"type": "string", "description": "Asset to start from, such as /Game/UI/W_Menu; \"asset\" in what asset_search answers."},
	"relation": {"type": "string", "enum": ["Dependencies", "Referencers", "Both"], "default": "Dependencies", "description": "What it depends on, what refers to it, or both."},
	"depth": {"type": "integer", "minimum": 1, "maximum": 2, "default": 1, "description": "Levels to walk."},
	"max_nodes": {"type": "integer", "default": 150, "description": "Relations reported for a direction, at least 1."},
	"max_fanout_per_node": {"type": "integer", "default": 50, "description": "Assets with more neighbours are listed, not walked through."},
	"high_signal_only": {"type": "boolean", "default": true, "description": "Leave out materials, particle systems, meshes, textures and the like."}
},
"required": ["asset_path"]
})";

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

constexpr const char* PathSearchInput = R"({
"type": "object",
"properties": {
	"term": {"type": "string", "minLength": 1, "description": "Text to look for in object paths (/Game/UI/W_Menu.W_Menu)."},
	"mode": {"type": "string", "enum": ["contains", "exact"], "default": "contains", "description": "exact: equals the whole object path or asset name."},
	"case_sensitive": {"type": "boolean", "default": false, "description": "Whether upper and lower case differ."},
	"detail_mode": {"type": "string", "enum": ["directories", "files", "both"], "default": "directories", "description": "Hits by folder, as one list, or both."},
	"path_contains": {"type": "string", "default": "", "description": "Only assets whose folder contains this."},
	"class_filters": {"type": "array", "items": {"type": "string"}, "default": [], "description": "Only assets whose class path or asset type contains one of these."},
	"max_file_results": {"type": "integer", "default": 200, "description": "Paths in the list."},
	"max_directory_buckets": {"type": "integer", "default": 50, "description": "Folders."},
	"max_files_per_directory": {"type": "integer", "default": 10, "description": "Paths in a folder."}
},
"required": ["term"]
})";

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
			.Output = MakeOutput("content", AssetSearchPayload)},
		{.Name = "explore_asset_graph",
			.Title = "Explore what assets depend on and refer to",
			.Input = ParseSchema(AssetGraphInput),
			.Output = MakeOutput("content", AssetGraphPayload)},
		{.Name = "asset_path_search",
			.Title = "Find assets by path",
			.Input = ParseSchema(PathSearchInput),
			.Output = MakeOutput("asset_path_search", PathSearchPayload)},
	};
	return Schemas;
}

const FToolSchema* FindToolSchema(const FString& Name)
{
	return GetToolSchemas().FindByPredicate([&](const FToolSchema& Schema) { return Schema.Name == Name; });
}
