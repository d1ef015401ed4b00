#include "Quellar/Tools/AssetGraphOperation.h"

#include "Graph/AssetGraphJson.h"
#include "Support/Golden.h"
#include "Support/TestProject.h"
#include "Support/ToolResultText.h"

#include <functional>

namespace
{
std::string Execute(
	const std::string& ArgumentsJson, const std::function<std::string(const Orivane::FToolResult&)>& Render = RenderResult)
{
	TSharedPtr<FJsonObject> Args;
	EXPECT_TRUE(Json::ParseObject(ArgumentsJson, Args)) << ArgumentsJson;
	Orivane::FToolResult Result({"1", "explore_asset_graph", ArgumentsJson});
	FAssetGraphOperation::Execute(*Args, Result);
	return Render(Result);
}

/** The messages alone. */
std::string Tell(const std::string& ArgumentsJson)
{
	const std::string Text = Execute(ArgumentsJson);
	return Text.substr(0, Text.find("content="));
}

void DescribeProject(FTestProject& Project)
{
	Project.Links("/Game/Start", {"Start World"}, {"/Game/Map"});
	Project.Links("/Game/Map", {"Map World"}, {"/Game/Hero", "/Game/Items editor"});
	Project.Links("/Game/Hero", {"Hero Blueprint"}, {"/Game/Items"});
	Project.Links("/Game/Items", {"Items DataTable"}, {});
	Project.File("Docs/Notes.md", "text");
	Project.Open();
}
}

TEST(AssetGraphOperation, AnswersWithADocument)
{
	FTestProject Project;
	DescribeProject(Project);
	ExpectGolden("Quellar/explore_asset_graph.txt",
		Execute(
			R"({"asset_path": "/Game/Map", "relation": "Dependencies", "depth": 2, "max_nodes": 50, "high_signal_only": true})") +
			Execute(R"({"asset_path": "/Game/Hero.Hero", "relation": "both"})"));
}

TEST(AssetGraphOperation, ReadsItsArguments)
{
	FTestProject Project;
	DescribeProject(Project);
	const std::string MapFile = Project.GetFolder().GetRoot() + "/Content/Map.vasset";
	const TCase<std::string, std::string> Cases[] = {
		{"nothing is asked for", "{}", "0 Missing required parameter 'asset_path'\n"},
		{"an array is no path", R"({"asset_path": ["/Game/Map"]})", "0 Missing required parameter 'asset_path'\n"},
		{"a missing asset: two errors", R"({"asset_path": "/Game/Gone"})",
			"0 Asset does not exist: /Game/Gone\n"
			"0 Cannot explore graph for non-existent asset. The asset may have been deleted.\n"},
		{"a file outside of the project", R"({"asset_path": "/etc/passwd"})",
			"0 Asset does not exist: /etc/passwd\n"
			"0 Cannot explore graph for non-existent asset. The asset may have been deleted.\n"},
		{"the file of a package", R"({"asset_path": "Content/Map.vasset"})",
			"2 Explored asset graph for 'Content/Map.vasset' (direction: Dependencies, depth: 1, relations: 2)\n"},
		{"an unknown word means dependencies", R"({"asset_path": "/Game/Map", "relation": "Parents"})",
			"2 Explored asset graph for '/Game/Map' (direction: Dependencies, depth: 1, relations: 2)\n"},
		{"case of a word does not matter", R"({"asset_path": "/Game/Items", "relation": "REFERENCERS"})",
			"2 Explored asset graph for '/Game/Items' (direction: Referencers, depth: 1, relations: 2)\n"},
		{"the depth is clamped, and shown so", R"({"asset_path": "/Game/Map", "depth": 7})",
			"2 Explored asset graph for '/Game/Map' (direction: Dependencies, depth: 2, relations: 2)\n"},
		{"from below too", R"({"asset_path": "/Game/Map", "depth": 0})",
			"2 Explored asset graph for '/Game/Map' (direction: Dependencies, depth: 1, relations: 2)\n"},
		{"what is of another type keeps its default", R"({"asset_path": "/Game/Map", "depth": [2], "max_nodes": "many"})",
			"2 Explored asset graph for '/Game/Map' (direction: Dependencies, depth: 1, relations: 2)\n"},
		{"success, then the warning, with the number as given", R"({"asset_path": "/Game/Map", "max_nodes": -4})",
			"2 Explored asset graph for '/Game/Map' (direction: Dependencies, depth: 1, relations: 1)\n"
			"1 Graph truncated at max_nodes=-4\n"},
		{"a number out of range is the nearest one", R"({"asset_path": "/Game/Map", "depth": 3000000000, "max_nodes": 1e99})",
			"2 Explored asset graph for '/Game/Map' (direction: Dependencies, depth: 2, relations: 2)\n"},
		{"export form", R"({"asset_path": "World'/Game/Map.Map'"})",
			"2 Explored asset graph for 'World'/Game/Map.Map'' (direction: Dependencies, depth: 1, relations: 2)\n"},
		{"an absolute file", R"({"asset_path": ")" + MapFile + R"("})",
			"2 Explored asset graph for '" + MapFile + "' (direction: Dependencies, depth: 1, relations: 2)\n"},
		{"a second level spends the budget", R"({"asset_path": "/Game/Start", "depth": 2, "max_nodes": 1})",
			"2 Explored asset graph for '/Game/Start' (direction: Dependencies, depth: 2, relations: 1)\n"
			"1 Graph truncated at max_nodes=1\n"},
		{"unless its fan-out is above the limit",
			R"({"asset_path": "/Game/Start", "depth": 2, "max_nodes": 1, "max_fanout_per_node": 1})",
			"2 Explored asset graph for '/Game/Start' (direction: Dependencies, depth: 2, relations: 1)\n"},
		{"a text file exists, but names no package", R"({"asset_path": "Docs/Notes", "relation": "Both"})",
			"2 Explored asset graph for 'Docs/Notes' (direction: Both, depth: 1, dependencies: 0, referencers: 0)\n"},
	};
	for (const auto& Case : Traced(Cases))
		EXPECT_EQ(Tell(Case.Given), Case.Expected);
	const std::string OfTextFile = Execute(R"({"asset_path": "Docs/Notes", "relation": "Both"})");
	EXPECT_TRUE(OfTextFile.ends_with(
		R"(content={"root":"","direction":"","truncated":false,"relations":[],"summary":{"total":0,"by_kind":{},"by_type":{}}})"
		"\n"))
		<< OfTextFile;
	EXPECT_EQ(Execute(R"({"asset_path": "/Game/Gone"})").find("content="), std::string::npos);
}

TEST(AssetGraphOperation, RemarksWhatIsLeftOut)
{
	FTestProject Project;
	Project.Links("/Game/Map", {"Map World"},
		{"/Game/T_A", "/Game/T_B", "/Game/M_A", "/Game/Hero", "/Game/Hub", "/Game/Gone", "/Script/Engine", "/Game/Saved/BP_Old"});
	Project.Links("/Game/T_A", {"T_A Texture2D"}, {})
		.Links("/Game/T_B", {"T_B Texture2D"}, {})
		.Links("/Game/M_A", {"M_A Material"}, {});
	Project.Links("/Game/Hero", {"Hero Blueprint"}, {"/Game/T_A", "/Game/Gone", "/Game/Lost"});
	Project.Links("/Game/Hub", {"Hub Blueprint"}, {"/Game/T_A", "/Game/T_B", "/Game/M_A", "/Game/Hero"});
	Project.Links("/Game/Saved/BP_Old", {"BP_Old Blueprint"}, {});
	Project.Open();
	const TCase<> Cases[] = {
		{"low signal, excluded folders, missing packages", R"({"asset_path": "/Game/Map"})",
			"3 more dependencies of other kinds: uasset 2, Material 1 [high_signal_only=false]\n"
			"1 more dependency in folders or plugins that the settings exclude\n"
			"1 dependency does not exist /Game/Gone\n"},
		{"each once, however many need it", R"({"asset_path": "/Game/Map", "depth": 2, "high_signal_only": false})",
			"1 more dependency in folders or plugins that the settings exclude\n"
			"2 dependencies do not exist /Game/Gone /Game/Lost\n"},
		{"packages that were not walked through",
			R"({"asset_path": "/Game/Map", "depth": 2, "high_signal_only": false, "max_fanout_per_node": 3, "max_nodes": 9})",
			"1 package with many neighbours not walked through [max_fanout_per_node=3]\n"
			"1 more dependency in folders or plugins that the settings exclude\n"
			"2 dependencies do not exist /Game/Gone /Game/Lost\n"},
		{"the budget", R"({"asset_path": "/Game/Map", "max_nodes": 1, "high_signal_only": false})",
			"more dependencies qualify [max_nodes=1]\n"},
		{"both directions", R"({"asset_path": "/Game/Hero", "relation": "Both"})",
			"1 more dependency of other kinds: uasset 1 [high_signal_only=false]\n"
			"2 dependencies do not exist /Game/Gone /Game/Lost\n"},
		{"nothing", R"({"asset_path": "/Game/T_A", "relation": "Dependencies"})", ""},
	};
	for (const auto& Case : Traced(Cases))
		EXPECT_EQ(Execute(Case.Given, RenderRemarks), Case.Expected);
}

TEST(AssetGraphOperation, WritesTheConsoleDocument)
{
	FTestProject Project;
	DescribeProject(Project);
	FExploreAssetGraphResult Found;
	UAssetGraphService::ExploreGraph({.AssetPath = "/gAME/map", .MaxNodes = 1}, Found); // the registry's spelling comes out
	ExpectGolden("Quellar/console_graph_capped.json", WriteAssetGraphConsoleJson(Found).View());
	UAssetGraphService::ExploreGraph({.Direction = EAssetGraphDirection::Both, .AssetPath = "/Game/Items"}, Found);
	ExpectGolden("Quellar/console_graph.json", WriteAssetGraphConsoleJson(Found).View());
}
