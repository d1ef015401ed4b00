#include "Core/Tasks.h"
#include "OrivaneToolkit/OrivaneToolkitModule.h"
#include "Quellar/QuellarModule.h"
#include "Support/TestProject.h"

namespace
{
std::string RenderMessages(const Orivane::FToolResult& Result)
{
	std::string Text;
	for (const Orivane::FToolMessage& Message : Result.GetMessages())
		Text += (Text.empty() ? "" : " | ") + Message.Text.ToStdString();
	return Text;
}
}

TEST(ToolEntry, IsRegisteredWithItsFixedTexts)
{
	const FHeadlessEngine Engine;
	const auto Executor = FOrivaneToolkitModule::GetToolExecutor();
	ASSERT_TRUE(Executor);
	const auto Tool = Executor->FindTool("asset_search");
	ASSERT_TRUE(Tool);
	EXPECT_FALSE(Executor->FindTool("asset_path_search")) << "its operation is public, but no tool";
	EXPECT_EQ(Tool->GetSchema().View(), "{}");
	const char* const Metadata = R"({"operation_type": "search","data_type": "asset","execution_mode": "sequential"})";
	EXPECT_EQ(Tool->GetMetadata().View(), Metadata);
	Tool->InvalidateMetadata();
	EXPECT_EQ(Tool->GetMetadata().View(), Metadata);
	EXPECT_TRUE(Tool->GetDescription().View().starts_with("Search Varnel assets (Blueprints, DataAssets,"));
	EXPECT_TRUE(Tool->GetDescription().View().ends_with("identifying asset usage patterns."));
}

TEST(ToolEntry, ChecksTheArgumentText)
{
	FTestProject Project;
	Project.Open();
	const auto Tool = FOrivaneToolkitModule::GetToolExecutor()->FindTool("asset_search");
	const struct
	{
		const char* Arguments;
		const char* Validated;
		const char* Executed;
	} Cases[] = {
		{"{}", "", "Missing required parameter 'term'"},
		{"[1]", "Invalid JSON format", "Invalid JSON command | Failed to parse command JSON"},
		{"12", "Invalid JSON format", "Invalid JSON command | Failed to parse command JSON"},
		{"", "Invalid JSON format", "Invalid JSON command | Failed to parse command JSON"},
		{"{\"term\": }", "Invalid JSON format", "Invalid JSON command | Failed to parse command JSON"},
		{"{\"term\": \"x\"} {}", "Invalid JSON format", "Invalid JSON command | Failed to parse command JSON"},
	};
	for (const auto& Case : Cases)
	{
		SCOPED_TRACE(Case.Arguments);
		const Orivane::FToolCommand Command("1", "asset_search", Case.Arguments);
		Orivane::FToolResult Validated(Command);
		Tool->ValidateArguments(Case.Arguments, Validated);
		EXPECT_EQ(RenderMessages(Validated), Case.Validated);

		const auto Result = MakeShared<Orivane::FToolResult>(Command);
		int32 NumCompletions = 0;
		Tool->Execute(Command, Result, [&](Orivane::FToolResult&) { ++NumCompletions; });
		EXPECT_EQ(RenderMessages(*Result), Case.Executed);
		EXPECT_EQ(NumCompletions, 1);
	}
}

TEST(QuellarModule, RunsWithoutAnExecutor)
{
	FQuellarModule Module;
	Module.StartupModule();
	Module.ShutdownModule();
}
