#include "Core/Program/Console.h"
#include "Core/Threads/Tasks.h"
#include "Graph/GraphPicture.h"
#include "OrivaneToolkit/OrivaneSettings.h"
#include "Quellar/Families/SearchMemory.h"
#include "Support/Golden.h"
#include "Support/TestProject.h"
#include "Tools/HostTools.h"
#include "Tools/ToolCaller.h"
#include "Tools/ToolOutput.h"

namespace
{
/** The sample project as the whole program answers for it, in files that are compared as they are. Opened as a copy. */
class SampleAnswers : public testing::Test
{
protected:
	SampleAnswers()
	{
		std::filesystem::copy(SAMPLE_PROJECT, Project.GetFolder().GetRoot() + "/P", std::filesystem::copy_options::recursive);
		Project.GetFolder().Remove("P/Saved"); // of whoever has tried the sample
		Project.OpenFolder("P");
		RegisterHostTools();
	}

	static void Call(const char* Tool, const char* Arguments, const std::function<void(const Orivane::FToolResult&)>& OnAnswer)
	{
		EXPECT_TRUE(CallToolAndWait(Tool, Arguments, std::chrono::seconds(60), OnAnswer));
	}

	FTestProject Project;
};

constexpr const char* Hub = R"({"asset_path":"/Game/Characters/BP_LanternCharacter","relation":"both","depth":2})";
}

TEST_F(SampleAnswers, OfTools)
{
	const struct
	{
		const char* Tool;
		const char* Arguments;
		const char* File;
	} Calls[] = {
		{"asset_search", R"({"term":"Health"})", "Sample/asset_search.json"},
		{"asset_search", R"({"term":"lamp","max_total_hits":12,"max_hits_per_asset_type":3})", "Sample/asset_search_capped.json"},
		{"explore_asset_graph", Hub, "Sample/explore_asset_graph.json"},
		{"explore_asset_graph", R"({"asset_path":"/Game/Maps/L_Harbour","depth":2,"max_nodes":9})",
			"Sample/explore_asset_graph_capped.json"},
		{"asset_path_search", R"({"term":"BP_","detail_mode":"both"})", "Sample/asset_path_search.json"},
		{"show_asset", R"({"asset_path":"BT_Guard"})", "Sample/show_asset_tree.json"},
		{"show_asset", R"({"asset_path":"DT_Weapons","max_rows":3,"max_bytes":2048})", "Sample/show_asset_capped.json"},
	};
	for (const auto& [Tool, Arguments, File] : Calls)
		Call(Tool, Arguments,
			[File = File](const Orivane::FToolResult& Result)
			{ ExpectGolden(File, Json::WritePretty(*MakeEnvelopeJson(Result)).View()); });
}

/** What a search keeps must not show in any later one. */
TEST_F(SampleAnswers, OfSearchesDoNotDependOnEarlierOnes)
{
	std::vector<std::string> Searches;
	for (const char* Term : {"", "zqx", "health", "HEALTH", "Lamp", "lantern", "0.5", "BT_", "speed", "\u0130", "\u00c9", "a"})
	{
		for (const char* Options : {"", ",\"mode\":\"exact\"", ",\"case_sensitive\":true", ",\"max_total_hits\":3",
				 ",\"path_contains\":\"Characters\"", ",\"max_hits_per_asset_type\":1"})
		{
			const char* const Families =
				*Term ? "" : R"(,"include_asset_families":["Material","DataTable","BehaviorTree","Enum"])";
			Searches.push_back("{\"term\":\"" + std::string(Term) + "\"" + Options + Families + "}");
		}
	}
	const auto Search = [](const std::string& Arguments)
	{
		UOrivaneSettings::StaticClass()->GetDefaultObject<UOrivaneSettings>()->MaterialSearchMode = 1;
		std::string Answer;
		Call("asset_search", Arguments.c_str(),
			[&Answer](const Orivane::FToolResult& Result) { Answer = Json::Write(*MakeEnvelopeJson(Result)).ToStdString(); });
		return Answer;
	};
	SearchMemory::SetLimit(0);
	std::vector<std::string> First;
	for (const std::string& Arguments : Searches)
		First.push_back(Search(Arguments));
	SearchMemory::SetLimit(SearchMemory::DefaultLimit);
	for (std::size_t Index = 0; Index < 2 * Searches.size(); ++Index)
		EXPECT_EQ(Search(Searches[Index % Searches.size()]), First[Index % Searches.size()]) << Searches[Index % Searches.size()];
	EXPECT_GT(SearchMemory::GetBytes(), 0);
}

TEST_F(SampleAnswers, OfDrawings)
{
	FGraphPicture Picture;
	Call("explore_asset_graph", Hub,
		[&Picture](const Orivane::FToolResult& Result)
		{
			Picture = MakeGraphPicture({.Content = ToolOutput::GetContent(Result),
				.FindClass = [](const FString& Package) -> FString {
					return Package.Contains("/SK_") ? "SkeletalMesh" : Package.Contains("/BP_") ? "Blueprint" : "";
				},
				.Root = {},
				.Missing = {},
				.Notes = {"more \"qualify\""}});
		});
	ExpectGolden("Sample/graph.dot", GraphDrawing::WriteDot(Picture).View());
	ExpectGolden("Sample/graph.mermaid", GraphDrawing::WriteMermaid(Picture).View());

	constexpr std::string_view Begin = R"(<script type="application/json" id="data">)";
	const std::string Page = GraphDrawing::WriteHtml(Picture).ToStdString();
	const std::size_t At = Page.find(Begin) + Begin.size();
	TSharedPtr<FJsonObject> Shown;
	ASSERT_TRUE(Json::ParseObject(Page.substr(At, Page.find("</script>", At) - At), Shown));
	ExpectGolden("Sample/graph_page_data.json", Json::WritePretty(*Shown).View());
}

TEST_F(SampleAnswers, OfConsoleCommands)
{
	for (const auto& [Line, File] : {std::pair("Orivane.AssetSearch term=Health", "asset_search.json"),
			 std::pair("Orivane.DataTableSearch term=damage", "datatable_search.json")})
	{
		EXPECT_TRUE(IConsoleManager::Get().ProcessUserConsoleInput(Line));
		const auto Read = [this, File = File] { return Project.GetFolder().Read(std::string("P/Saved/Quellar/") + File); };
		EXPECT_TRUE(FGameThread::Get().RunUntil([&Read] { return !Read().empty(); }, std::chrono::seconds(60)));
		ExpectGolden(std::string("Sample/Console/") + File, Read());
	}
}
