#include "Core/Threads/Tasks.h"
#include "OrivaneToolkit/OrivaneToolkitModule.h"
#include "Quellar/Families/BlueprintFindUtils.h"
#include "Quellar/QuellarModule.h"
#include "Quellar/Tools/ToolEntry.h"
#include "Support/Golden.h"
#include "Support/TestProject.h"
#include "Support/ToolResultText.h"

namespace
{
std::string Validate(Orivane::ITool& Tool, const char* Arguments)
{
	Orivane::FToolResult Result({"1", "tool", Arguments});
	Tool.ValidateArguments(Arguments, Result);
	return RenderMessages(Result);
}

/** The messages after exactly one completion. */
std::string Execute(Orivane::ITool& Tool, const char* Arguments)
{
	const Orivane::FToolCommand Command("1", "tool", Arguments);
	const auto Result = MakeShared<Orivane::FToolResult>(Command);
	int32 NumCompletions = 0;
	Tool.Execute(Command, Result, [&](Orivane::FToolResult&) { ++NumCompletions; });
	EXPECT_EQ(NumCompletions, 1);
	return RenderMessages(*Result);
}
}

TEST(ToolEntry, IsRegisteredWithItsFixedTexts)
{
	const FHeadlessEngine Engine;
	const auto Executor = FOrivaneToolkitModule::GetToolExecutor();
	std::string Texts;
	for (const FString& Name : Executor->GetToolNames())
	{
		const auto Tool = Executor->FindTool(Name);
		for (const FString& Text : {Name, Tool->GetSchema(), Tool->GetMetadata(), Tool->GetDescription()})
			Texts += Text.ToStdString() + "\n";
	}
	ExpectGolden("Quellar/tools.txt", Texts);
}

TEST(QuellarModule, RegistersTwoToolsAndTakesThemBack)
{
	std::string Removed; // outlives every entry
	const FHeadlessEngine Engine;
	FModuleManager::Get().UnloadModule("Quellar");
	auto Executor = FOrivaneToolkitModule::GetToolExecutor();
	const auto Kept = MakeShared<FAssetGraphTool>();
	FQuellarModule Module;
	for (int32 Round = 0; Round < 2; ++Round)
	{
		Module.StartupModule();
		EXPECT_EQ(Join(Executor->GetToolNames()), "asset_search explore_asset_graph");
		const std::weak_ptr<Orivane::ITool> Own = Executor->FindTool("asset_search");
		for (const char* Name : {"asset_path_search", "explore_asset_graph", "asset_search"})
			Executor->RegisterTool(Name, {Kept.get(), [&Removed, Name](Orivane::ITool*) { Removed += std::string(Name) + " "; }});
		EXPECT_FALSE(Own.expired()) << "the module keeps its entry";
		Module.ShutdownModule();
		EXPECT_EQ(std::exchange(Removed, {}), "asset_search explore_asset_graph asset_path_search ");
		EXPECT_TRUE(Own.expired());
		Module.ShutdownModule();
	}

	Module.StartupModule();
	const std::weak_ptr<Orivane::ITool> Own = Executor->FindTool("explore_asset_graph");
	Executor.reset();
	FModuleManager::Get().UnloadModule("OrivaneToolkit");
	Module.ShutdownModule();
	EXPECT_FALSE(Own.expired()) << "without an executor the entries stay";
}

TEST(ToolEntry, ChecksTheArgumentText)
{
	FTestProject Project;
	Project.Open();
	for (const auto& [Name, MissingArgument] :
		{std::pair("asset_search", "term"), std::pair("explore_asset_graph", "asset_path")})
	{
		const auto Tool = FOrivaneToolkitModule::GetToolExecutor()->FindTool(Name);
		for (const char* NoObject : {"[1]", "12", "", "{\"term\": }", "{\"term\": \"x\"} {}"})
		{
			EXPECT_EQ(Validate(*Tool, NoObject), "Invalid JSON format") << NoObject;
			EXPECT_EQ(Execute(*Tool, NoObject), "Invalid JSON command | Failed to parse command JSON") << NoObject;
		}
		EXPECT_EQ(Validate(*Tool, "{}"), "");
		EXPECT_EQ(Execute(*Tool, "{}"), std::string("Missing required parameter '") + MissingArgument + "'");
	}
}

namespace
{
/** A Blueprint whose entries take a while to search, and a text file. */
void AddDoor(FTestProject& Project)
{
	std::string Entries = R"({"category":"Var","text":"Health"})";
	for (int32 Index = 0; Index < 200000; ++Index)
		Entries += R"(,{"category":"Var","text":"Health)" + std::to_string(Index) + "\"}";
	Project.File("Content/BP_Door.vasset",
		R"({"varnel_package":1,"assets":[{"name":"BP_Door","class":"/Script/Engine.Blueprint"}],"blueprint_index":[)" + Entries +
			R"(],"objects":[]})");
	Project.File("Docs/Door.txt", "Health");
	Project.Open();
}

/** A call of asset_search for what AddDoor describes, and how often it has completed. */
struct FDoorCall
{
	explicit FDoorCall(Orivane::ITool& Tool)
	{
		Tool.Execute(Command, Result, [this](Orivane::FToolResult&) { ++NumCompletions; });
	}
	/** Runs what is posted until it has completed; how often it has by then. */
	int32 Finish()
	{
		FGameThread::Get().RunUntil([this] { return NumCompletions > 0; }, std::chrono::seconds(60));
		return NumCompletions;
	}

	const Orivane::FToolCommand Command{"1", "asset_search", R"({"term":"Health"})"};
	const TSharedPtr<Orivane::FToolResult> Result = MakeShared<Orivane::FToolResult>(Command);
	int32 NumCompletions = 0;
};
}

TEST(QuellarModule, EndsWhatIsUnderWayWhenItIsShutDown)
{
	FTestProject Project;
	AddDoor(Project);
	const auto Tool = FOrivaneToolkitModule::GetToolExecutor()->FindTool("asset_search");
	FDoorCall UnderWay(*Tool);
	EXPECT_EQ(UnderWay.NumCompletions, 0) << "the Blueprint index is searched by another thread";
	FModuleManager::Get().UnloadModule("Quellar");
	EXPECT_EQ(UnderWay.Finish(), 1);
	EXPECT_TRUE(RenderMessages(*UnderWay.Result).starts_with("Found ")) << RenderMessages(*UnderWay.Result);

	FDoorCall Late(*Tool);
	EXPECT_EQ(Late.NumCompletions, 1);
	EXPECT_EQ(RenderMessages(*Late.Result), "Tool 'asset_search' is not available any more: its module is shut down");
	EXPECT_FALSE(FBlueprintFindUtils::Get().IsSearchInProgress());
	while (FGameThread::Get().Pump() > 0)
	{
	}
	EXPECT_EQ(UnderWay.NumCompletions, 1);
}

TEST(QuellarModule, RunsWithoutAnExecutor)
{
	FTestProject Project;
	AddDoor(Project);
	const auto Tool = FOrivaneToolkitModule::GetToolExecutor()->FindTool("asset_search");
	FModuleManager::Get().UnloadModule("OrivaneToolkit");
	FQuellarModule Another;
	Another.StartupModule();
	FDoorCall UnderWay(*Tool);
	Another.ShutdownModule();
	FModuleManager::Get().UnloadModule("Quellar");
	EXPECT_EQ(UnderWay.Finish(), 1) << "nothing is shut down";
	EXPECT_TRUE(RenderMessages(*UnderWay.Result).starts_with("Found 2")) << RenderMessages(*UnderWay.Result);
	EXPECT_EQ(FDoorCall(*Tool).Finish(), 1);
}
