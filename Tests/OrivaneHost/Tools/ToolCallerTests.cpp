#include "Tools/ToolCaller.h"

#include "Core/Threads/Tasks.h"
#include "OrivaneToolkit/OrivaneToolkitModule.h"
#include "Support/TestProject.h"

using namespace std::chrono_literals;

namespace
{
void Describe(FTestProject& Project)
{
	Project.Blueprint("/Game/BP_Door", R"({"category":"Var","text":"Health"})");
	Project.Open();
}

std::string CallAndRender(const char* Arguments, std::chrono::milliseconds TimeLimit)
{
	std::string Text;
	CallToolAndWait("asset_search", Arguments, TimeLimit,
		[&Text](const Orivane::FToolResult& Result) { Text = Result.GetMessages()[0].Text.ToStdString(); });
	return Text;
}
}

TEST(BlueprintCalls, OneThatNeverEndsIsAnsweredWithTheReasonAndHoldsNothingUp)
{
	FTestProject Project;
	Describe(Project);
	for (const char* Arguments : {R"({"term":""})", R"({"term":"","include_asset_families":["BLUEPRINT"]})"})
		EXPECT_EQ(CallAndRender(Arguments, 20ms),
			"Tool 'asset_search' did not complete within 1 s: a search of Blueprints never ends with an empty term; give a term, "
			"or list families without Blueprint in include_asset_families");
	EXPECT_EQ(CallAndRender(R"({"term":"","include_asset_families":["Text"]})", 30s).substr(0, 6), "Found ");
	EXPECT_EQ(
		CallAndRender(R"({"term":"Health"})", 30s), "Found 1 asset(s) matching 'Health' (mode: contains, case_sensitive: false)");
}

TEST(BlueprintCalls, ACancelledOneFreesItsPlace)
{
	FTestProject Project;
	Describe(Project);
	const auto Executor = FOrivaneToolkitModule::GetToolExecutor();
	const Orivane::FToolCallOptions Options{.TimeLimit = 30s, .ExplainTimeOut = {}};
	std::string Answers;
	const auto Call = [&](const char* Id, const char* Arguments)
	{
		return Executor->Call({Id, "asset_search", Arguments}, Options,
			[&Answers, Id](Orivane::FToolResult& Result)
			{ Answers += Id + (" " + Result.GetMessages()[0].Text.ToStdString().substr(0, 7) + ";"); });
	};
	const Orivane::FToolCallId Endless = Call("a", R"({"term":""})");
	const Orivane::FToolCallId Running = Call("b", R"({"term":"Health"})");
	Call("c", R"({"term":"Door"})");
	FGameThread::Get().Pump();
	EXPECT_TRUE(Executor->Cancel(Endless));
	FGameThread::Get().Pump(); // the next one starts its search
	EXPECT_TRUE(Executor->Cancel(Running));
	EXPECT_TRUE(FGameThread::Get().RunUntil([&] { return !Answers.empty(); }, 30s));
	EXPECT_EQ(Answers, "c Found 1;");
}
