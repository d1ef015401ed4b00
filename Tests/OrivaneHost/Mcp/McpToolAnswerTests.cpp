#include "Mcp/McpSession.h"

#include "Mcp/McpToolAnswer.h"

namespace
{
using FAny = nlohmann::ordered_json;

/** A payload of assets with hits, as the search tool gives it. */
FString MakePayload(int NumAssets, int NumHits)
{
	FAny Assets = FAny::array();
	for (int Asset = 0; Asset < NumAssets; ++Asset)
	{
		FAny Hits = FAny::array();
		for (int Hit = 0; Hit < NumHits; ++Hit)
			Hits.push_back({{"kind", "Row"}, {"name", "A \"quoted\\ name\" \xC3\xA4 " + std::to_string(Hit)}, {"count", 1}});
		Assets.push_back({{"asset", "/Game/A" + std::to_string(Asset)}, {"truncated", false}, {"hits", Hits}});
	}
	return FString(FAny{{"assets", Assets}, {"truncated", false}}.dump());
}

Orivane::FToolResult MakeResult()
{
	return Orivane::FToolResult(Orivane::FToolCommand("", "find", ""));
}

class McpToolAnswer : public testing::Test
{
protected:
	std::string Write(const Orivane::FToolResult& Result, int64 MaxBytes)
	{
		return WriteMcpToolAnswer(
			Result, {.Id = 1, .Era = EMcpEra::Modern, .Tool = &Tools[0], .MaxBytes = MaxBytes, .ErrorAdvice = {}});
	}
	static FAny Read(const std::string& Line) { return FAny::parse(Line)["result"]; }

	const TArray<FMcpTool> Tools = FFakeToolHost().GetTools();
};
}

TEST_F(McpToolAnswer, KeepsTheLimitAndCutsFromTheEnd)
{
	constexpr int NumAssets = 60;
	constexpr int NumHits = 20;
	Orivane::FToolResult Result = MakeResult();
	Result.AddSuccessMessage("Found 60").SetData("content", MakePayload(NumAssets, NumHits));
	const std::string Whole = Write(Result, MaxMcpLineBytes);
	const FAny All = Read(Whole)["structuredContent"]["content"]["assets"];
	ASSERT_EQ(All.size(), std::size_t{NumAssets});

	for (int64 MaxBytes = 4096; MaxBytes < static_cast<int64>(Whole.size()); MaxBytes += 7919)
	{
		SCOPED_TRACE(MaxBytes);
		const std::string Line = Write(Result, MaxBytes);
		EXPECT_LE(static_cast<int64>(Line.size()), MaxBytes);
		EXPECT_GE(static_cast<int64>(Line.size()), MaxBytes - 4096) << "room was left unused";

		const FAny Structured = Read(Line)["structuredContent"];
		EXPECT_EQ(FAny::parse(Read(Line)["content"][0]["text"].get<std::string>()), Structured);
		const FAny& Assets = Structured["content"]["assets"];
		ASSERT_LE(Assets.size(), All.size());
		for (std::size_t Index = 0; Index + 1 < Assets.size(); ++Index)
			EXPECT_EQ(Assets[Index], All[Index]) << "only the end is cut";
		EXPECT_EQ(Structured["content"]["truncated"], true);
		EXPECT_EQ(Structured["messages"][0]["text"], "Found 60");
		const std::string Warning = Structured["messages"][1]["text"];
		EXPECT_NE(Warning.find(std::to_string(Assets.size()) + " of 60 assets"), std::string::npos) << Warning;
		EXPECT_NE(Warning.find("max_total_hits"), std::string::npos) << "says how to narrow";
	}
	EXPECT_EQ(Write(Result, static_cast<int64>(Whole.size())), Whole) << "an answer of exactly the limit is whole";
	EXPECT_NE(Write(Result, static_cast<int64>(Whole.size()) - 1), Whole);
}

TEST_F(McpToolAnswer, CutsTheHitsOfTheLastAsset)
{
	Orivane::FToolResult Result = MakeResult();
	Result.SetData("content", MakePayload(1, 1000));
	const FAny Content = Read(Write(Result, 32768))["structuredContent"]["content"];
	ASSERT_EQ(Content["assets"].size(), 1U);
	EXPECT_GT(Content["assets"][0]["hits"].size(), 10U);
	EXPECT_LT(Content["assets"][0]["hits"].size(), 1000U);
	EXPECT_EQ(Content["assets"][0]["truncated"], true);
}

TEST_F(McpToolAnswer, NeverPassesWhatClientsTake)
{
	const FString Huge(std::string(1'600'000, '"')); // takes twice the bytes in JSON, four times in JSON inside JSON
	Orivane::FToolResult Success = MakeResult();
	Success.AddSuccessMessage(FString("Found 0 matching ") + Huge).SetData("content", MakePayload(1, 1));
	const std::string Line = Write(Success, INT64_MAX);
	EXPECT_LT(Line.size(), 16384U) << "a long text of a message is cut";
	EXPECT_EQ(Read(Line)["structuredContent"]["content"]["assets"].size(), 1U) << "and the payload stays whole";

	Orivane::FToolResult Failure = MakeResult();
	for (int Index = 0; Index < 100; ++Index)
		Failure.AddErrorMessage(std::string(50'000, 'x'));
	const std::string Errors = Write(Failure, MaxMcpLineBytes);
	EXPECT_LE(static_cast<int64>(Errors.size()), MaxMcpLineBytes);
	EXPECT_EQ(Read(Errors)["isError"], true);

	Orivane::FToolResult Text = MakeResult();
	Text.SetData("content", Huge);
	const FAny TooLong = Read(Write(Text, MaxMcpLineBytes));
	EXPECT_EQ(TooLong["isError"], true) << "a payload that cannot be cut";
	EXPECT_NE(TooLong["content"][0]["text"].get<std::string>().find("max_total_hits"), std::string::npos);
}

TEST_F(McpToolAnswer, EmbedsPayloads)
{
	const auto Object = MakeShared<FJsonObject>();
	Object->SetNumberField("n", 1);
	Orivane::FToolResult Result = MakeResult();
	Result.AddWarningMessage("w").SetData("a", Object).SetData("b", FString("no JSON")).SetData("c", FString("[1]"));
	EXPECT_EQ(Read(Write(Result, MaxMcpLineBytes))["structuredContent"].dump(),
		R"({"messages":[{"type":"warning","text":"w"}],"a":{"n":1},"b":"no JSON","c":[1]})");
}
