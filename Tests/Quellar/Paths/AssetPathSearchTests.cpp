#include "Quellar/Paths/AssetPathSearchJson.h"
#include "Quellar/Paths/AssetPathSearchTypes.h"
#include "Quellar/Tools/AssetPathSearchOperation.h"
#include "Support/TestProject.h"
#include "Support/ToolResultText.h"

namespace
{
/** "4 hits; /Game/UI: /Game/UI/A.A /Game/UI/B.B; files: ...; reasons (directories too)" */
std::string Search(const FAssetPathSearchParams& Params)
{
	FAssetPathSearchResult Result;
	Result.TotalHits = 77; // what was there goes
	UAssetSearchService::Get().AssetPathSearch(Params, Result);
	EXPECT_EQ(Result.TotalDirectories, Result.Directories.Num());
	EXPECT_EQ(Result.bTruncated, !Result.TruncationReasons.IsEmpty());
	std::string Text = std::to_string(Result.TotalHits) + " hits;";
	for (const auto& [Directory, Files] : Result.Directories)
		Text += " " + Directory.ToStdString() + ": " + Join(Files) + ";";
	Text += " files: " + Join(Result.Files);
	if (Result.bTruncated)
		Text += "; " + Join(Result.TruncationReasons);
	return Text + (Result.bDirectoriesTruncated ? " (directories too)" : "");
}

std::string Execute(const std::string& ArgumentsJson)
{
	TSharedPtr<FJsonObject> Args;
	EXPECT_TRUE(Json::ParseObject(ArgumentsJson, Args)) << ArgumentsJson;
	Orivane::FToolResult Result({"1", "asset_path_search", ArgumentsJson});
	FAssetPathSearchOperation::Execute(*Args, Result);
	return RenderResult(Result);
}

/** Three blueprints and a material below two folders, one asset in the root. */
void DescribeProject(FTestProject& Project)
{
	Project.Links("/Game/UI/W_Menu", {"W_Menu WidgetBlueprint", "Icon Material"}, {});
	Project.Links("/Game/UI/W_Map", {"W_Map WidgetBlueprint filtered"}, {});
	Project.Links("/Game/BP_Menu", {"BP_Menu Blueprint"}, {});
	Project.Links("/Game/AI/BT_Menu", {"BT_Menu BehaviorTree"}, {});
	Project.Open();
}
}

TEST(AssetPathSearch, FindsAndGroups)
{
	FTestProject Project;
	DescribeProject(Project);
	const std::string Menu = "/Game/UI/W_Menu.Icon /Game/UI/W_Menu.W_Menu";
	const std::string Blueprints = "3 hits; /Game: /Game/BP_Menu.BP_Menu; /Game/UI: /Game/UI/W_Map.W_Map /Game/UI/W_Menu.W_Menu; "
								   "files: /Game/BP_Menu.BP_Menu /Game/UI/W_Map.W_Map /Game/UI/W_Menu.W_Menu";
	const TCase<FAssetPathSearchParams, std::string> Cases[] = {
		{"sorted by directory, then by path", {.Term = "menu"},
			"4 hits; /Game: /Game/BP_Menu.BP_Menu; /Game/AI: /Game/AI/BT_Menu.BT_Menu; /Game/UI: " + Menu +
				"; files: /Game/AI/BT_Menu.BT_Menu /Game/BP_Menu.BP_Menu " + Menu},
		{"exactly a name", {.Term = "icon", .MatchMode = EAssetPathMatchMode::Exact},
			"1 hits; /Game/UI: /Game/UI/W_Menu.Icon; files: /Game/UI/W_Menu.Icon"},
		{"case", {.Term = "menu", .bCaseSensitive = true}, "0 hits; files: "},
		{"directory", {.Term = "menu", .PathContains = "/ui"}, "2 hits; /Game/UI: " + Menu + "; files: " + Menu},
		{"directory, in its case", {.Term = "Menu", .bCaseSensitive = true, .PathContains = "/ui"}, "0 hits; files: "},
		{"part of a class name or type", {.Term = "/game", .ClassFilters = {"", "BLUE"}}, Blueprints},
		{"one filter of several", {.Term = "m", .ClassFilters = {"Sound", "engine.behavior"}},
			"1 hits; /Game/AI: /Game/AI/BT_Menu.BT_Menu; files: /Game/AI/BT_Menu.BT_Menu"},
		{"only empty filters are none", {.Term = "icon", .ClassFilters = {""}},
			"1 hits; /Game/UI: /Game/UI/W_Menu.Icon; files: /Game/UI/W_Menu.Icon"},
		{"no term", {.Term = ""}, "0 hits; files: "},
	};
	for (const auto& Case : Traced(Cases))
		EXPECT_EQ(Search(Case.Given), Case.Expected);
}

TEST(AssetPathSearch, CountsWhatItsCapsRefuse)
{
	FTestProject Project;
	DescribeProject(Project);
	const TCase<FAssetPathSearchParams> Cases[] = {
		{"the flat list alone: what it refuses still goes into its directory", {.Term = "menu", .MaxFileResults = 3},
			"4 hits; /Game: /Game/BP_Menu.BP_Menu; /Game/AI: /Game/AI/BT_Menu.BT_Menu; /Game/UI: /Game/UI/W_Menu.Icon "
			"/Game/UI/W_Menu.W_Menu; files: /Game/AI/BT_Menu.BT_Menu /Game/BP_Menu.BP_Menu /Game/UI/W_Menu.W_Menu; "
			"max_file_results"},
		{"directories", {.Term = "menu", .MaxDirectoryBuckets = 1},
			"4 hits; /Game/AI: /Game/AI/BT_Menu.BT_Menu; files: /Game/AI/BT_Menu.BT_Menu /Game/BP_Menu.BP_Menu "
			"/Game/UI/W_Menu.Icon /Game/UI/W_Menu.W_Menu; dir_bucket_cap (directories too)"},
		{"files of a directory", {.Term = "menu", .PathContains = "/UI", .MaxFilesPerDirectory = -3},
			"2 hits; /Game/UI: /Game/UI/W_Menu.W_Menu; files: /Game/UI/W_Menu.Icon /Game/UI/W_Menu.W_Menu; files_per_dir_cap "
			"(directories too)"},
		{"reasons in the order first hit",
			{.Term = "m", .MaxFileResults = 0, .MaxDirectoryBuckets = 2, .MaxFilesPerDirectory = 1},
			"5 hits; /Game: /Game/BP_Menu.BP_Menu; /Game/AI: /Game/AI/BT_Menu.BT_Menu; files: /Game/AI/BT_Menu.BT_Menu; "
			"max_file_results dir_bucket_cap (directories too)"},
	};
	for (const auto& Case : Traced(Cases))
		EXPECT_EQ(Search(Case.Given), Case.Expected);
}

TEST(AssetPathSearch, SpellingsOfAFolderShareADirectory)
{
	FTestProject Project;
	Project.Links("/Game/UI/W_A", {"W_A Blueprint"}, {});
	Project.Links("/Game/ui/W_B", {"W_B Blueprint"}, {});
	Project.Open();
	EXPECT_EQ(
		Search({.Term = "W_"}), "2 hits; /Game/UI: /Game/UI/W_A.W_A /Game/ui/W_B.W_B; files: /Game/UI/W_A.W_A /Game/ui/W_B.W_B");
	Project.Links("/Game/A/W_C", {"W_C Blueprint"}, {});
	Project.Links("/Game/UI/AW_0", {"AW_0 Blueprint"}, {});
	Project.Links("/Game/UI/M/W_D", {"W_D Blueprint"}, {});
	Project.Open();
	EXPECT_EQ(Search({.Term = "W_", .MaxFileResults = 1, .MaxDirectoryBuckets = 2, .MaxFilesPerDirectory = 2}),
		"5 hits; /Game/A: /Game/A/W_C.W_C; /Game/UI: /Game/UI/AW_0.AW_0 /Game/UI/W_A.W_A; files: /Game/A/W_C.W_C; "
		"max_file_results "
		"dir_bucket_cap files_per_dir_cap (directories too)")
		<< "also once no directory is added";
	Project.GetFolder().Remove("Content/A");
	Project.GetFolder().Remove("Content/UI/AW_0.vasset");
	Project.GetFolder().Remove("Content/UI/M");
	Project.Open();
	EXPECT_EQ(Execute(R"({"term": "W_"})"),
		"2 Found 2 matches across 1 directories (truncated=false).\n"
		R"(asset_path_search={"summary":{"total_hits":2,"total_directories":1,"truncated":false,"detail_mode":"directories"},)"
		R"("directories":[{"path":"/Game/UI","count":2,"files":["W_A.W_A","/Game/ui/W_B.W_B"]}]})"
		"\n")
		<< "a path is cut only where it is spelled like its directory";
}

TEST(AssetPathSearchOperation, ReadsItsArguments)
{
	FTestProject Project;
	DescribeProject(Project);
	const std::string Missing = "0 Missing required field 'term' (non-empty string).\n";
	const auto Answer = [](const char* Numbers, const char* Summary, const char* Lists)
	{ return std::string("2 Found ") + Numbers + ".\nasset_path_search={\"summary\":{" + Summary + "}," + Lists + "}\n"; };
	const std::string Files = Answer("1 matches across 1 directories (truncated=false)",
		R"("total_hits":1,"total_directories":1,"truncated":false,"detail_mode":"files")", R"("files":["/Game/UI/W_Menu.Icon"])");
	const std::string Both = Answer("1 matches across 1 directories (truncated=false)",
		R"("total_hits":1,"total_directories":1,"truncated":false,"detail_mode":"both")",
		R"("directories":[{"path":"/Game/UI","count":1,"files":["W_Menu.Icon"]}],"files":["/Game/UI/W_Menu.Icon"])");
	const std::string Capped = Answer("4 matches across 3 directories (truncated=true)",
		R"("total_hits":4,"total_directories":3,"truncated":true,"detail_mode":"files")",
		R"("files":["/Game/AI/BT_Menu.BT_Menu"])");
	const TCase<const char*, std::string> Cases[] = {
		{"no term", R"({"mode": "exact"})", Missing},
		{"empty", R"({"term": ""})", Missing},
		{"unreadable", R"({"term": ["x"]})", Missing},
		{"words in any case", R"({"term": "ICON", "mode": "Exact", "detail_mode": "FILES"})", Files},
		{"both", R"({"term": "icon", "detail_mode": "both"})", Both},
		{"case", R"({"term": "icon", "case_sensitive": true})",
			Answer("0 matches across 0 directories (truncated=false)",
				R"("total_hits":0,"total_directories":0,"truncated":false,"detail_mode":"directories")", R"("directories":[])")},
		{"unknown words fall back", R"({"term": "icon", "mode": "regex", "detail_mode": "tree"})",
			Answer("1 matches across 1 directories (truncated=false)",
				R"("total_hits":1,"total_directories":1,"truncated":false,"detail_mode":"directories")",
				R"("directories":[{"path":"/Game/UI","count":1,"files":["W_Menu.Icon"]}])")},
		{"a cap below 1", R"({"term": "menu", "max_file_results": -5, "detail_mode": "files"})", Capped},
		{"a cap is cut to a whole number", R"({"term": "menu", "max_file_results": 1.9, "detail_mode": "files"})", Capped},
		{"a cap beyond all numbers", R"({"term": "icon", "max_file_results": 1e300, "detail_mode": "files"})", Files},
		{"directories", R"({"term": "menu", "max_directory_buckets": 1.9})",
			Answer("4 matches across 1 directories (truncated=true)",
				R"("total_hits":4,"total_directories":1,"truncated":true,"detail_mode":"directories")",
				R"("directories":[{"path":"/Game/AI","count":1,"files":["BT_Menu.BT_Menu"]}])")},
		{"files of a directory", R"({"term": "menu", "path_contains": "/UI", "max_files_per_directory": 0})",
			Answer("2 matches across 1 directories (truncated=true)",
				R"("total_hits":2,"total_directories":1,"truncated":true,"detail_mode":"directories")",
				R"("directories":[{"path":"/Game/UI","count":1,"files":["W_Menu.W_Menu"]}])")},
		{"filters that are texts",
			R"({"term": "icon", "class_filters": ["", 3, "Material"], "path_contains": "/UI", "detail_mode": "files"})", Files},
		{"a number is no filter", R"({"term": "icon", "class_filters": [3], "detail_mode": "files"})", Files},
	};
	for (const auto& Case : Traced(Cases))
		EXPECT_EQ(Execute(Case.Given), Case.Expected);
}

TEST(AssetPathSearch, CapsWhatNobodyCapped)
{
	FTestProject Project;
	std::vector<std::string> Eleven;
	for (int32 Index = 0; Index < 11; ++Index)
		Eleven.push_back("A" + std::to_string(Index) + " World");
	Project.Links("/Game/A/P", Eleven, {});
	for (int32 Folder = 0; Folder < 50; ++Folder)
		Project.Links("/Game/F" + std::to_string(Folder) + "/P", {"A World", "B World", "C World", "D World"}, {});
	Project.Open();
	FAssetPathSearchResult Found;
	UAssetSearchService::Get().AssetPathSearch({.Term = "/P."}, Found);
	EXPECT_EQ(Found.TotalHits, 211);
	EXPECT_EQ(Found.Files.Num(), 200);
	EXPECT_EQ(Found.TotalDirectories, 50);
	EXPECT_EQ(Found.Directories.begin()->second.Num(), 10);
}
