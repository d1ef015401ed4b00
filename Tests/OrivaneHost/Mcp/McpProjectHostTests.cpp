#include "Mcp/McpProjectHost.h"

#include "Core/Threads/Tasks.h"
#include "CoreObject/Packages/Loader.h"
#include "Mcp/McpTools.h"
#include "OrivaneToolkit/OrivaneToolkitModule.h"
#include "Project/HeadlessEngine.h"
#include "Support/Cases.h"
#include "Tools/HostTools.h"
#include "Tools/TimeOutAdvice.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace
{
using FAny = nlohmann::ordered_json;

class FFakeTool : public Orivane::ITool
{
public:
	FString GetSchema() const override { return "{}"; }
	FString GetDescription() const override { return "Answers with its arguments."; }
	void ValidateArguments(const FString&, Orivane::FToolResult&) override {}
	FString GetMetadata() override { return "{}"; }
	void InvalidateMetadata() override {}
	void Execute(const Orivane::FToolCommand& Command, TSharedPtr<Orivane::FToolResult> Result,
		TDelegate<void(Orivane::FToolResult&)> OnComplete) override
	{
		Result->AddSuccessMessage(Command.ArgumentsJson);
		OnComplete.ExecuteIfBound(*Result);
	}
};

/** Loads a package when it runs, and says whether it is there; without an answer for the arguments "never". */
class FLoadingTool final : public FFakeTool
{
public:
	void Execute(const Orivane::FToolCommand& Command, TSharedPtr<Orivane::FToolResult> Result,
		TDelegate<void(Orivane::FToolResult&)> OnComplete) override
	{
		Result->AddSuccessMessage(LoadPackage("/Game/A") ? "loaded" : "missing");
		if (Command.ArgumentsJson != "never")
			OnComplete.ExecuteIfBound(*Result);
	}
};

/** The program without a project, with a tool of the test's own. */
class McpProjectHost : public testing::Test
{
protected:
	McpProjectHost()
	{
		RegisterHostTools();
		FOrivaneToolkitModule::GetToolExecutor()->RegisterTool("fake", MakeShared<FFakeTool>());
		Host = MakeShared<FMcpProjectHost>(FOrivaneToolkitModule::GetToolExecutor(), std::chrono::seconds(30));
	}

	void Call(FMcpCallNumber Number)
	{
		Host->StartCall(Number, "fake", FString::FromInt(static_cast<int64>(Number)),
			[this](const Orivane::FToolResult& Result) { Answers.push_back(Result.GetMessages()[0].Text.ToStdString()); });
	}
	std::vector<std::string> TakeAnswers()
	{
		while (FGameThread::Get().Pump() > 0)
		{
		}
		return std::exchange(Answers, {});
	}

	const FHeadlessEngine Engine;
	TSharedPtr<FMcpProjectHost> Host;
	std::vector<std::string> Answers;
};

using FTexts = std::vector<std::string>;

/** One package that can be loaded, and room for none between calls. */
class FTightMemory
{
public:
	FTightMemory()
	{
		SetPackageLocator(
			[](FName) -> TOptional<FPackageFile>
			{
				return FPackageFile{.FileName = "A.vasset",
					.Source = &GetVassetPackageSource(),
					.Read = [](std::string& Buffer, uint64, std::size_t)
					{
						Buffer = R"({"varnel_package":1,"objects":[{"path":"A","class":"/Script/Engine.InputAction"}]})";
						return EFileRead::Ok;
					}};
			});
		SetObjectMemoryLimit(1);
	}
	~FTightMemory()
	{
		UnloadAllLoadedPackages();
		SetPackageLocator(nullptr);
		SetObjectMemoryLimit(0);
	}
};

/** What clients stumble over in a schema, anywhere below its top. */
void LintProperty(const FAny& Schema, const std::string& Path)
{
	SCOPED_TRACE(Path);
	ASSERT_TRUE(Schema.is_object());
	EXPECT_TRUE(Schema.contains("type") && Schema["type"].is_string()) << "one type, no list of types";
	if (Schema.value("type", "") == "array")
	{
		EXPECT_TRUE(Schema.contains("items") && !Schema["items"].empty());
	}
	if (Schema.contains("items"))
		LintProperty(Schema["items"], Path + "[]");
	const FAny Properties = Schema.value("properties", FAny::object());
	for (const auto& [Name, Property] : Properties.items())
	{
		EXPECT_FALSE(Property.value("description", "").empty()) << Path << "." << Name;
		LintProperty(Property, Path + "." + Name);
	}
}

void LintSchema(const FAny& Schema, const std::string& Path)
{
	SCOPED_TRACE(Path);
	ASSERT_EQ(Schema.value("type", ""), "object");
	for (const char* Unwelcome : {"anyOf", "oneOf", "allOf", "$ref", "$schema"})
		EXPECT_FALSE(Schema.contains(Unwelcome)) << Unwelcome;
	LintProperty(Schema, Path);
	const FAny AllRequired = Schema.value("required", FAny::array());
	for (const FAny& Required : AllRequired)
		EXPECT_TRUE(Schema["properties"].contains(Required.get<std::string>())) << Required;
}
}

TEST_F(McpProjectHost, EvictsObjectsBetweenCalls)
{
	const FTightMemory Memory;
	FOrivaneToolkitModule::GetToolExecutor()->RegisterTool("loading", MakeShared<FLoadingTool>());
	const auto CallLoading = [this](FMcpCallNumber Number, const char* Arguments)
	{
		Host->StartCall(Number, "loading", Arguments,
			[this](const Orivane::FToolResult& Result)
			{ Answers.push_back(FindPackage("/Game/A") ? "there" : Result.GetMessages()[0].Text.ToStdString()); });
	};
	Host->OnProjectOpened();
	CallLoading(1, "never");
	CallLoading(2, "{}");
	EXPECT_EQ(TakeAnswers(), FTexts{"there"});
	EXPECT_NE(FindPackage("/Game/A"), nullptr) << "a tool is still running";
	Host->CancelCall(1);
	CallLoading(3, "{}");
	EXPECT_EQ(TakeAnswers(), FTexts{"there"}) << "not while the call is being answered";
	EXPECT_EQ(FindPackage("/Game/A"), nullptr);

	LoadPackage("/Game/A");
	Call(4);
	const auto CallAgain = [this](const Orivane::FToolResult&)
	{
		Host->StartCall(6, "fake", "{}",
			[this](const Orivane::FToolResult&) { Answers.push_back(FindPackage("/Game/A") ? "there" : "gone"); });
	};
	Host->StartCall(5, "fake", "{}", CallAgain);
	EXPECT_EQ(TakeAnswers(), (FTexts{"4", "gone"})) << "a client that always has a call waiting cannot hold it up";
}

TEST_F(McpProjectHost, HoldsCallsUntilTheProjectIsOpen)
{
	Call(1);
	Call(2);
	Call(3);
	Host->CancelCall(2);
	EXPECT_EQ(TakeAnswers(), FTexts());
	Host->GetOpeningProgress().NumTotal = 10;
	Host->GetOpeningProgress().NumDone = 4;
	EXPECT_EQ(Host->GetCallProgress(1).NumDone, 4);
	EXPECT_EQ(Host->GetCallProgress(1).NumTotal, 10);

	Host->OnProjectOpened();
	EXPECT_EQ(Host->GetCallProgress(1).NumTotal, 0) << "a tool's own work is not counted";
	EXPECT_EQ(TakeAnswers(), (FTexts{"1", "3"})) << "in the order of arrival, without the cancelled one";
	Call(4);
	Call(5);
	Host->CancelCall(4);
	Host->CancelCall(77);
	EXPECT_EQ(TakeAnswers(), FTexts{"5"});
}

TEST_F(McpProjectHost, SaysWhyThereIsNoProject)
{
	Call(1);
	Host->OnProjectFailed("no *.uproject here; name one");
	const std::string Sentence = "The project cannot be opened: no *.uproject here; name one";
	EXPECT_EQ(TakeAnswers(), FTexts{Sentence}) << "the call that waited";
	Call(2);
	EXPECT_EQ(TakeAnswers(), FTexts{Sentence}) << "and every later one";
}

TEST_F(McpProjectHost, TriesAgainWhereThereWasNoProject)
{
	int32 NumTries = 0;
	Host->OpenBy([&] { return ++NumTries < 3 ? Host->OnProjectFailed("not yet") : Host->OnProjectOpened(); });
	EXPECT_EQ(NumTries, 1);
	Call(1);
	Call(2);
	EXPECT_EQ(TakeAnswers(), (FTexts{"The project cannot be opened: not yet", "The project cannot be opened: not yet"}));
	EXPECT_EQ(NumTries, 2) << "one try for calls that come together";
	Call(3);
	EXPECT_EQ(TakeAnswers(), FTexts{"3"});
	Call(4);
	EXPECT_EQ(TakeAnswers(), FTexts{"4"});
	EXPECT_EQ(NumTries, 3);
}

TEST_F(McpProjectHost, MayGoWhileACallRuns)
{
	Host->OnProjectOpened();
	Call(1);
	Host.reset();
	EXPECT_EQ(TakeAnswers(), FTexts());
}

TEST_F(McpProjectHost, ListsToolsThatClientsAccept)
{
	const TArray<FMcpTool> Tools = Host->GetTools();
	const FAny List = FAny::parse(Json::Write(FJsonValue(McpTools::MakeList(Tools))).View());
	ASSERT_EQ(List.size(), 6U);
	EXPECT_EQ(List[0]["name"], "asset_search");
	EXPECT_EQ(List.back()["name"], "fake") << "a tool without a schema of its own comes last";
	for (const FAny& Tool : List)
	{
		const std::string Name = Tool["name"];
		SCOPED_TRACE(Name);
		EXPECT_TRUE(!Name.empty() && Name.size() <= 128);
		EXPECT_EQ(Name.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_.-"), std::string::npos);
		EXPECT_FALSE(Tool["description"].get<std::string>().empty());
		LintSchema(Tool["inputSchema"], Name + " input");
		if (Name == "fake")
		{
			EXPECT_FALSE(Tool.contains("annotations")) << "nothing is known about it";
			continue;
		}
		LintSchema(Tool["outputSchema"], Name + " output");
		EXPECT_EQ(Tool["annotations"].dump(), R"({"readOnlyHint":true,"idempotentHint":true,"openWorldHint":false})");
	}
	EXPECT_LT(List.dump().size(), 16'000U) << "an agent reads all of it before its first question";

	const FString Instructions = McpTools::MakeInstructions(Tools);
	EXPECT_LT(Instructions.NumBytes(), 2048);
	EXPECT_TRUE(Instructions.Contains("Begin with asset_search"));
}

TEST(TimeOutAdvice, NamesTheSearchThatNeverEnds)
{
	const TCase<const char*, bool> Cases[] = {
		{"all families", R"({"term":""})", true},
		{"no families means all", R"({"term":"","include_asset_families":[]})", true},
		{"nothing but no texts means all", R"({"term":"","include_asset_families":[null]})", true},
		{"named, in any case", R"({"term":"","include_asset_families":["Enum","blueprint"]})", true},
		{"left out", R"({"term":"","include_asset_families":["Enum"]})", false},
		{"a term", R"({"term":"x"})", false},
		{"no arguments to speak of", "[]", false},
	};
	for (const auto& Case : Traced(Cases))
	{
		const FString Advice = ExplainTimeOut({"1", "asset_search", Case.Given});
		EXPECT_EQ(Advice.Contains("never ends"), Case.Expected) << *Advice;
		EXPECT_FALSE(Advice.IsEmpty());
	}
}
