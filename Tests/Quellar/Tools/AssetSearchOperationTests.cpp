#include "Quellar/Tools/AssetSearchOperation.h"

#include "Core/Files/File.h"
#include "Core/Json/Json.h"
#include "Core/Threads/Tasks.h"
#include "Support/Golden.h"
#include "Support/TestProject.h"
#include "Support/ToolResultText.h"

#include <filesystem>
#include <functional>

namespace
{
std::string Execute(FTestProject& Project, const std::string& ArgumentsJson)
{
	Project.Open();
	TSharedPtr<FJsonObject> Args;
	EXPECT_TRUE(Json::ParseObject(ArgumentsJson, Args)) << ArgumentsJson;
	Orivane::FToolResult Result({"1", "asset_search", ArgumentsJson});
	int32 NumCompletions = 0;
	FAssetSearchOperation::ExecuteAsync(*Args, Result,
		[&](Orivane::FToolResult& Completed)
		{
			++NumCompletions;
			EXPECT_EQ(&Completed, &Result);
		});
	FGameThread::Get().RunUntil([&] { return NumCompletions > 0; }, std::chrono::seconds(60));
	EXPECT_EQ(NumCompletions, 1);
	return RenderResult(Result);
}
}

TEST(AssetSearchOperation, ReportsMessagesAndPayload)
{
	FTestProject Project;
	Project.Table("/Game/Data/DT_Weapons", "WeaponRow").Column("Health", "float");
	Project.File("Docs/no.tes.md", "Health");
	ExpectGolden(
		"Quellar/asset_search.txt", Execute(Project, R"({"term": "Health"})") + Execute(Project, R"({"term": "no.tes"})"));
}

TEST(AssetSearchOperation, CutsHitNamesAtTheirFirstDot)
{
	FTestProject Project;
	Project.File("a.txt", "Section.Key=1");
	EXPECT_NE(Execute(Project, R"({"term": "Section.Key"})").find(R"("name":"Section")"), std::string::npos);
}

TEST(AssetSearchOperation, ReadsArgumentsWithTheirConversions)
{
	FTestProject Project;
	Project.Table("/Game/DT_A", "RowA").Column("Count12", "int");
	Project.Table("/Game/DT_B", "RowB").Column("Count12", "int");
	Project.File("a.txt", "12");
	const char* const Missing = "0 Missing required parameter 'term'\n";
	const TCase<> Cases[] = {
		{"no term", "{}", Missing},
		{"null is no text", R"({"term": null})", Missing},
		{"a list is no text", R"({"term": ["x"]})", Missing},
		{"a number is read as its text", R"({"term": 12})",
			"2 Found 3 asset(s) matching '12' (mode: contains, case_sensitive: false)\n"},
		{"mode in any case", R"({"term": "12", "mode": "EXACT"})",
			"2 Found 1 asset(s) matching '12' (mode: exact, case_sensitive: false)\n"},
		{"mode with a blank behind is unknown", R"({"term": "12", "mode": "Exact "})",
			"2 Found 3 asset(s) matching '12' (mode: contains, case_sensitive: false)\n"},
		{"bool from text", R"({"term": "count", "case_sensitive": "true"})",
			"2 Found 0 asset(s) matching 'count' (mode: contains, case_sensitive: true)\n"},
		{"a bool that cannot be read", R"({"term": "count", "case_sensitive": {}})",
			"2 Found 2 asset(s) matching 'count' (mode: contains, case_sensitive: false)\n"},
		{"elements that are no texts are skipped", R"({"term": "12", "include_asset_families": [null, {}, "Text"]})",
			"2 Found 1 asset(s) matching '12' (mode: contains, case_sensitive: false)\n"},
		{"the warning names the cap as given", R"({"term": "12", "max_total_hits": 1})",
			"2 Found 1 asset(s) matching '12' (mode: contains, case_sensitive: false)\n1 Results truncated at "
			"max_total_hits=1\n"},
		{"also one below 1, where another is in force",
			R"({"term": "e", "include_asset_families": ["Text"], "max_hits_per_asset_type": 1, "max_total_hits": 0})",
			"2 Found 1 asset(s) matching 'e' (mode: contains, case_sensitive: false)\n1 Results truncated at max_total_hits=0\n"},
		{"numbers as text, fractions are cut", R"({"term": "12", "max_total_hits": "1.9"})",
			"2 Found 1 asset(s) matching '12' (mode: contains, case_sensitive: false)\n1 Results truncated at "
			"max_total_hits=1\n"},
		{"a number out of range is the nearest one in range",
			R"({"term": "12", "max_total_hits": 1e300, "max_hits_per_asset_type": -1e300})",
			"2 Found 2 asset(s) matching '12' (mode: contains, case_sensitive: false)\n1 Results truncated at "
			"max_total_hits=2147483647\n"},
		{"an integer of any length is a number", R"({"term": "12", "max_total_hits": 123456789012345678901234567890})",
			"2 Found 3 asset(s) matching '12' (mode: contains, case_sensitive: false)\n"},
		{"negative caps act as one", R"({"term": "12", "max_hits_per_asset_type": -2147483648})",
			"2 Found 2 asset(s) matching '12' (mode: contains, case_sensitive: false)\n1 Results truncated at "
			"max_total_hits=200\n"},
	};
	for (const auto& Case : Traced(Cases))
	{
		const std::string Result = Execute(Project, Case.Given);
		EXPECT_EQ(Result.substr(0, Result.find("content=")), Case.Expected);
		EXPECT_EQ(Result.find("content=") != std::string::npos, Case.Expected != Missing);
	}
}

TEST(AssetSearchOperation, NamesWhatCouldNotBeSearched)
{
	FTestProject Project;
	Project.Table("/Game/DT_Sound", "RowA").Column("Health", "int");
	Project.File("Content/DT_Faulty.vasset",
		R"({"varnel_package": 1, "assets": [{"name": "DT_Faulty", "class": "/Script/Engine.DataTable"}], "objects": [{{{)");
	for (const char* File : {"Docs/b.md", "Docs/c.md", "Docs/a.md"})
	{
		Project.File(File, "");
		std::filesystem::resize_file(Project.GetFolder().GetRoot() + "/" + File, FFileHelper::MaxTextFileBytes + 1); // a hole
	}
	const TCase<> Cases[] = {
		{"a package", "DataTable", "1 1 file(s) or folder(s) could not be searched: /Game/DT_Faulty (cannot be loaded); "},
		{"the same for the next search, which does not try to load it", "DataTable", "1 1 file(s) or folder(s) "},
		{"the first of many texts", "Text",
			"1 3 file(s) or folder(s) could not be searched: Docs/a.md (larger than 256 MiB), Docs/b.md (larger than 256 MiB), "
			"Docs/c.md (larger than 256 MiB); orivane check names all"},
		{"all families together", "Text\", \"DataTable\", \"Struct", "Docs/b.md (larger than 256 MiB), ...; orivane check"},
	};
	for (const auto& Case : Traced(Cases))
	{
		const std::string Result =
			Execute(Project, R"({"term": "Health", "include_asset_families": [")" + std::string(Case.Given) + "\"]}");
		EXPECT_NE(Result.find(Case.Expected), std::string::npos) << Result;
	}
}

TEST(AssetSearchOperation, LeavesOutWhatIsGone)
{
	FTestProject Project;
	Project.Table("/Game/DT_A", "RowA").Column("Health", "int");
	Project.File("Docs/stays.txt", "Health").File("Docs/goes.txt", "Health").File(".hidden/kept.yml", "Health");
	Project.Open();

	TSharedPtr<FJsonObject> Args;
	ASSERT_TRUE(Json::ParseObject(R"({"term": "Health", "include_asset_families": ["Text"]})", Args));
	const auto CountAssets = [&]
	{
		Orivane::FToolResult Result({"1", "asset_search", ""});
		FAssetSearchOperation::ExecuteAsync(*Args, Result, [](Orivane::FToolResult&) {});
		return Result.GetMessages()[0].Text.ToStdString().substr(0, 13);
	};
	EXPECT_EQ(CountAssets(), "Found 3 asset");
	Project.GetFolder().Remove("Docs/goes.txt");
	EXPECT_EQ(CountAssets(), "Found 2 asset");
}

TEST(AssetSearchOperation, NobodyNeedsToListen)
{
	FTestProject Project;
	Project.File("a.txt", "lamp");
	Project.Open();
	for (const char* Arguments : {"{}", R"({"term": "lamp"})", R"({"term": "lamp", "include_asset_families": ["none"]})"})
	{
		SCOPED_TRACE(Arguments);
		TSharedPtr<FJsonObject> Args;
		ASSERT_TRUE(Json::ParseObject(Arguments, Args));
		Orivane::FToolResult Result({"1", "asset_search", Arguments});
		FAssetSearchOperation::ExecuteAsync(*Args, Result, {});
		EXPECT_TRUE(FGameThread::Get().RunUntil([&] { return !Result.GetMessages().IsEmpty(); }, std::chrono::seconds(60)));
	}
	for (const char* Family : {"Text", "none"})
		UAssetSearchService::Get().AssetSearch(MakeParams(Family, "lamp"), {});
}
