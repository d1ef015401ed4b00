#include "Quellar/Tools/ToolArguments.h"

#include "Quellar/Families/AssetFamily.h"
#include "Quellar/Graph/AssetGraphService.h"
#include "Quellar/Paths/AssetPathSearchTypes.h"
#include "Quellar/Tools/ArgumentTable.h"

namespace
{
void ReadMode(const FJsonValue& Value, FAssetSearchParams& Out)
{
	FString Word;
	Value.TryGetString(Word);
	Out.bExact = Word == "exact";
}

void ReadMatchMode(const FJsonValue& Value, FAssetPathSearchParams& Out)
{
	FString Word;
	Value.TryGetString(Word);
	Out.MatchMode = Word == "exact" ? EAssetPathMatchMode::Exact : EAssetPathMatchMode::Contains;
}

void ReadDetailMode(const FJsonValue& Value, FAssetPathSearchParams& Out)
{
	FString Word;
	Value.TryGetString(Word);
	Out.DetailMode = Word == "files" ? EAssetPathDetailMode::Files
		: Word == "both"			 ? EAssetPathDetailMode::Both
									 : EAssetPathDetailMode::Directories;
}

void ReadRelation(const FJsonValue& Value, FExploreAssetGraphParams& Out)
{
	FString Word;
	Value.TryGetString(Word);
	Out.Direction = Word == "Referencers" ? EAssetGraphDirection::Referencers
		: Word == "Both"				  ? EAssetGraphDirection::Both
										  : EAssetGraphDirection::Dependencies;
}

/** Elements that are not strings, and empty ones, are left out; nothing is converted. */
void ReadClassFilters(const FJsonValue& Value, FAssetPathSearchParams& Out)
{
	const FJsonArray* const Elements = Value.AsArray();
	for (const FJsonValue& Element : Elements ? *Elements : FJsonArray())
	{
		FString Text;
		if (Element.Type() == EJson::String && Element.TryGetString(Text) && !Text.IsEmpty())
			Out.ClassFilters.Add(std::move(Text));
	}
}
}

const TArray<TArgumentRow<FAssetSearchParams>>& GetAssetSearchArguments()
{
	using P = FAssetSearchParams;
	static const TArray<TArgumentRow<P>> Rows = {
		{{.Key = "term",
			 .Help = "Text to look for in names and values. Required; an empty text matches everything, but Blueprints are never "
					 "searched for it: list other families.",
			 .bRequired = true,
			 .Shell = {.Names = "TERM", .Help = "Text to look for; '' matches everything"},
			 .Console = {.Key = "term="}},
			&P::Term},
		{{.Key = "mode",
			 .Help = "contains: the term occurs in the text; exact: the whole text equals the term.",
			 .Choices = {"contains", "exact"},
			 .Shell = {.Names = "-x,--exact", .Help = "Match the whole name or value", .FlagValue = "exact"},
			 .Console = {.Key = "exact=", .Values = {"true", "false"}},
			 .Default = "contains"},
			&ReadMode},
		{{.Key = "case_sensitive",
			 .Type = EToolArgument::Flag,
			 .Help = "Whether upper and lower case differ.",
			 .Shell = {.Names = "-s,--case-sensitive", .Help = "Case-sensitive", .FlagValue = true}},
			&P::bCaseSensitive},
		{{.Key = "include_asset_families",
			 .Type = EToolArgument::TextList,
			 .Help = "Families of assets to search; empty: all. Material and NiagaraSystem match asset names only, unless the "
					 "project's settings have them read in depth.",
			 .Choices = GetAssetFamilyNames(),
			 .Narrowing = 2,
			 .Shell = {.Names = "-f,--family",
				 .Placeholder = "NAME",
				 .Help = "Only this family of assets (may be repeated, or a list with commas)"},
			 .Console = {.Key = "families=", .bExtra = true}},
			&P::IncludeAssetFamilies},
		{{.Key = "include_kinds",
			 .Type = EToolArgument::TextList,
			 .Help = "Kinds of hits to ask for; only the widget kinds of Blueprints are selected by it.",
			 .Shell = {.Names = "-k,--kind", .Placeholder = "NAME", .Help = "Kinds of hits to ask for (may be repeated)"},
			 .Console = {.Key = "kinds=", .bExtra = true}},
			&P::IncludeKinds},
		{{.Key = "path_contains",
			 .Help = "Only assets whose folder (for text files: whose path) contains this text, such as /Game/UI.",
			 .Narrowing = 1,
			 .Shell = {.Names = "--path",
				 .Placeholder = "TEXT",
				 .Help = "Only assets whose folder, or text files whose path, contains this"},
			 .Console = {.Key = "path=", .Names = EConsoleValue::Folder}},
			&P::PathContains},
		{{.Key = "include_text_extensions",
			 .Type = EToolArgument::TextList,
			 .Help = "Read for compatibility; the project settings' TextSearchExtensions decide which text files are searched.",
			 .Console = {.Key = "exts=", .bExtra = true}},
			&P::IncludeTextExtensions},
		{{.Key = "max_hits_per_kind",
			 .Type = EToolArgument::Integer,
			 .Help = "Hits of one kind reported per asset, at least 1.",
			 .Narrowing = 5,
			 .Shell = {.Names = "--max-hits-per-kind", .Placeholder = "N", .Help = "Hits of one kind per asset", .Least = 1}},
			&P::MaxHitsPerKind},
		{{.Key = "max_total_hits",
			 .Type = EToolArgument::Integer,
			 .Help = "Hits per family and assets in all; below 1 the assets are capped at 200.",
			 .Narrowing = 3,
			 .Shell = {.Names = "--max-total-hits", .Placeholder = "N", .Help = "Hits per family, and assets in all", .Least = 1},
			 .Console = {.Key = "max="}},
			&P::MaxTotalHits},
		{{.Key = "max_hits_per_asset_type",
			 .Type = EToolArgument::Integer,
			 .Help = "Assets reported per asset type, at least 1.",
			 .Narrowing = 4,
			 .Shell = {.Names = "--max-per-type", .Placeholder = "N", .Help = "Assets per asset type", .Least = 1}},
			&P::MaxHitsPerAssetType},
		{{.Key = "prefer_editor_index",
			 .Type = EToolArgument::Flag,
			 .Help = "Read for compatibility; Blueprint contents always come from the index."},
			&P::bPreferEditorIndex},
	};
	return Rows;
}

const TArray<TArgumentRow<FExploreAssetGraphParams>>& GetAssetGraphArguments()
{
	using P = FExploreAssetGraphParams;
	static const TArray<TArgumentRow<P>> Rows = {
		{{.Key = "asset_path",
			 .Help = "Asset to start from, such as /Game/UI/W_Menu; \"asset\" in what asset_search answers.",
			 .bRequired = true,
			 .Shell = {.Names = "ASSET", .Help = "The asset, such as /Game/UI/W_MainMenu"},
			 .Console = {.Key = "asset=", .Names = EConsoleValue::Package}},
			&P::AssetPath},
		{{.Key = "relation",
			 .Help = "What it depends on, what refers to it, or both.",
			 .Choices = {"Dependencies", "Referencers", "Both"},
			 .Narrowing = 1,
			 .Shell = {.Names = "-r,--relation", .Placeholder = "WHICH", .Help = "dependencies, referencers, both"},
			 .Console = {.Key = "relation="},
			 .Default = "Dependencies"},
			&ReadRelation},
		{{.Key = "depth",
			 .Type = EToolArgument::Integer,
			 .Help = "Levels to walk.",
			 .Minimum = 1,
			 .Maximum = 2,
			 .Narrowing = 2,
			 .Shell = {.Names = "-d,--depth", .Placeholder = "N", .Help = "Levels, 1 or 2", .Least = 1},
			 .Console = {.Key = "depth="}},
			&P::Depth},
		{{.Key = "max_nodes",
			 .Type = EToolArgument::Integer,
			 .Help = "Relations reported for a direction, at least 1.",
			 .Narrowing = 3,
			 .Shell = {.Names = "--max-nodes", .Placeholder = "N", .Help = "Maximum relations per direction", .Least = 1},
			 .Console = {.Key = "max_nodes="}},
			&P::MaxNodes},
		{{.Key = "max_fanout_per_node",
			 .Type = EToolArgument::Integer,
			 .Help = "Assets with more neighbours are listed, not walked through.",
			 .Narrowing = 4,
			 .Shell = {.Names = "--max-fanout",
				 .Placeholder = "N",
				 .Help = "Do not walk through packages with more neighbours",
				 .Least = 1},
			 .Console = {.Key = "max_fanout="}},
			&P::MaxFanoutPerNode},
		{{.Key = "high_signal_only",
			 .Type = EToolArgument::Flag,
			 .Help = "Leave out materials, particle systems, meshes, textures and the like.",
			 .Shell = {.Names = "-a,--all-kinds",
				 .Help = "All kinds of assets; the default here",
				 .FlagValue = false,
				 .OffNames = "--high-signal",
				 .OffHelp = "Leave out materials, particle systems, meshes, textures and the like"}},
			&P::bHighSignalOnly},
	};
	return Rows;
}

const TArray<TArgumentRow<FAssetPathSearchParams>>& GetAssetPathSearchArguments()
{
	using P = FAssetPathSearchParams;
	static const TArray<TArgumentRow<P>> Rows = {
		{{.Key = "term",
			 .Help = "Text to look for in object paths (/Game/UI/W_Menu.W_Menu).",
			 .bRequired = true,
			 .MinLength = 1,
			 .Shell = {.Names = "TERM", .Help = "Text to look for in object paths such as /Game/UI/W_Menu.W_Menu"}},
			&P::Term},
		{{.Key = "mode",
			 .Help = "exact: equals the whole object path or asset name.",
			 .Choices = {"contains", "exact"},
			 .Shell = {.Names = "-x,--exact", .Help = "Match the whole object path or asset name", .FlagValue = "exact"},
			 .Default = "contains"},
			&ReadMatchMode},
		{{.Key = "case_sensitive",
			 .Type = EToolArgument::Flag,
			 .Help = "Whether upper and lower case differ.",
			 .Shell = {.Names = "-s,--case-sensitive", .Help = "Case-sensitive", .FlagValue = true}},
			&P::bCaseSensitive},
		{{.Key = "detail_mode",
			 .Help = "Hits by folder, as one list, or both.",
			 .Choices = {"directories", "files", "both"},
			 .Shell = {.Names = "-v,--view", .Placeholder = "WHICH", .Help = "directories, files (one object path a line), both"},
			 .Default = "directories"},
			&ReadDetailMode},
		{{.Key = "path_contains",
			 .Help = "Only assets whose folder contains this.",
			 .Narrowing = 1,
			 .Shell = {.Names = "--path", .Placeholder = "TEXT", .Help = "Only assets whose folder contains this"}},
			&P::PathContains},
		{{.Key = "class_filters",
			 .Type = EToolArgument::TextList,
			 .Help = "Only assets whose class path or asset type contains one of these.",
			 .Narrowing = 2,
			 .Shell = {.Names = "-c,--class",
				 .Placeholder = "NAME",
				 .Help = "Only assets whose class or asset type contains this (may be repeated)"},
			 .Default = FJsonArray()},
			&ReadClassFilters},
		{{.Key = "max_file_results",
			 .Type = EToolArgument::Integer,
			 .Help = "Paths in the list.",
			 .Minimum = 1,
			 .Narrowing = 3,
			 .Shell = {.Names = "--max-files", .Placeholder = "N", .Help = "Object paths listed", .Least = 1}},
			&P::MaxFileResults},
		{{.Key = "max_directory_buckets",
			 .Type = EToolArgument::Integer,
			 .Help = "Folders.",
			 .Minimum = 1,
			 .Narrowing = 4,
			 .Shell = {.Names = "--max-directories", .Placeholder = "N", .Help = "Directories listed", .Least = 1}},
			&P::MaxDirectoryBuckets},
		{{.Key = "max_files_per_directory",
			 .Type = EToolArgument::Integer,
			 .Help = "Paths in a folder.",
			 .Minimum = 1,
			 .Narrowing = 5,
			 .Shell = {.Names = "--max-per-directory", .Placeholder = "N", .Help = "Assets listed in a directory", .Least = 1}},
			&P::MaxFilesPerDirectory},
	};
	return Rows;
}

const TArray<FToolDeclaration>& GetToolDeclarations()
{
	static const TArray<FToolDeclaration> Tools = {
		DeclareTool(ToolNames::AssetSearch, GetAssetSearchArguments()),
		DeclareTool(ToolNames::AssetGraph, GetAssetGraphArguments()),
		DeclareTool(ToolNames::AssetPathSearch, GetAssetPathSearchArguments()),
	};
	return Tools;
}

const FToolDeclaration* FindToolDeclaration(const FString& Name)
{
	return GetToolDeclarations().FindByPredicate([&](const FToolDeclaration& Tool) { return Name == Tool.Name; });
}
