#include "Reports/ProjectReportOperation.h"

#include "Core/Threads/StopToken.h"
#include "Support/Cases.h"
#include "Support/TestProject.h"
#include "Support/ToolResultText.h"
#include "Tools/ToolOutput.h"

namespace
{
Orivane::FToolResult Execute(const std::string& ArgumentsJson)
{
	TSharedPtr<FJsonObject> Args;
	EXPECT_TRUE(Json::ParseObject(ArgumentsJson, Args)) << ArgumentsJson;
	Orivane::FToolResult Result({"1", FProjectReportOperation::ToolName, ArgumentsJson});
	FProjectReportOperation::Execute(*Args, Result);
	return Result;
}

/** "1/2 Hero <Map ~Lamp 2 Blueprint Editor excluded": group and its size, path, from, via, depth and the other fields. */
std::string RenderRow(const FJsonObject& Row)
{
	constexpr std::pair<const char*, const char*> Marks[] = {{"group", ""}, {"size", "/"}, {"path", " "}, {"from", " <"},
		{"via", " ~"}, {"depth", " "}, {"kind", " "}, {"type", " "}, {"problem", " "}, {"soft", " soft="},
		{"excluded", " excluded="}, {"file", " "}, {"line", ":"}};
	std::string Text;
	for (const auto& [Key, Mark] : Marks)
	{
		FString Value;
		if (!Row.TryGetStringField(Key, Value))
			continue;
		const std::string Whole = Value.ToStdString();
		Text += Mark + (Whole.starts_with("/Game/") ? Whole.substr(6) : Whole);
	}
	return Text;
}

/** Messages, then a row a line, then remarks. */
std::string Report(const std::string& ArgumentsJson)
{
	const Orivane::FToolResult Result = Execute(ArgumentsJson);
	std::string Text = RenderMessages(Result);
	if (const TSharedPtr<FJsonObject> Payload = ToolOutput::GetContent(Result, FProjectReportOperation::ToolName))
	{
		for (const FJsonValue& Row : ToolOutput::GetArray(*Payload, "rows"))
			Text += "\n" + RenderRow(*Row.AsObject());
	}
	const std::string Remarks = RenderRemarks(Result);
	return Text + (Remarks.empty() ? "" : "\n" + Remarks.substr(0, Remarks.size() - 1));
}

std::string GetSummary(const std::string& ArgumentsJson)
{
	TSharedPtr<FJsonObject> Summary;
	ToolOutput::GetContent(Execute(ArgumentsJson), FProjectReportOperation::ToolName)->TryGetObjectField("summary", Summary);
	return Json::Write(*Summary).ToStdString();
}

void DescribeProject(FTestProject& Project)
{
	Project.Links("/Game/Map", {"Map World"}, {"/Game/Hero", "/Game/Lamp editor"});
	Project.Links("/Game/Hero", {"Hero Blueprint"}, {"/Game/Items", "/Game/Gone soft", "/Script/Engine"});
	Project.Links("/Game/Items", {"Items DataTable"}, {"/Game/Hero", "/Engine/Cube", "/Game/Items"});
	Project.Links("/Game/Lamp", {"Lamp Material"}, {"/Game/Empty editor", "/Game/Glow"});
	Project.Links("/Game/Glow", {"Glow Texture"}, {});
	Project.Links("/Game/Empty", {}, {});
	Project.Links("/Game/Stray", {"Stray DataTable"}, {"/Game/Items editor"});
	Project.Links("/Game/Saved/Old", {"Old DataTable"}, {"/Game/Stray"});
	Project.Links("/Game/Hidden", {"Hidden Blueprint filtered"}, {"/Game/Stray"});
	Project.Links("/Game/Label", {"Label PrimaryDataAsset"}, {"/Game/Boss soft"});
	Project.Links("/Game/Boss", {"Boss Blueprint"}, {"/Game/Boss"});
	Project.Links("/Game/Start", {"Start Texture"}, {});
	Project.File("Config/DefaultEngine.ini", "[Maps]\nStart=(Path=\"/Game/start.Start\",Next=\"/Game/Nowhere\")");
	Project.File("Docs/Notes.md", "text");
	Project.Open();
}
}

TEST(ProjectReport, AnswersFromTheGraph)
{
	FTestProject Project;
	DescribeProject(Project);
	const TCase<> Cases[] = {
		{"native code and closed engine content are not missing; a package without assets is", R"({"report": "broken"})",
			"2 broken references to 2 packages\n"
			" Empty <Lamp Editor no assets Content/Lamp.vasset:1\n"
			" Gone <Hero Runtime missing soft=true Content/Hero.vasset:1\n"
			"1 reference to engine content, which is not opened"},
		{"roots are levels, primary data assets and what settings name; hidden assets are not reported",
			R"({"report": "unused"})",
			"2 assets are reached from none of 3 roots, 1 of them in excluded folders; 2 more are reached by editor links alone\n"
			" Saved/Old DataTable excluded=true\n"
			" Stray DataTable"},
		{"a root of one's own", R"({"report": "unused", "roots": ["/Game/Stray.Stray"]})",
			"1 asset is reached from none of 4 roots, 1 of them in excluded folders; 2 more are reached by editor links alone\n"
			" Saved/Old DataTable excluded=true"},
		{"a folder of roots", R"({"report": "unused", "roots": ["/game/saved/", "/Game/Stray"]})",
			"0 assets are reached from none of 5 roots, 0 of them in excluded folders; 2 more are reached by editor links alone"},
		{"a root that is not there", R"({"report": "unused", "roots": ["/Game/Stray/", "/Game/Nope", ""]})",
			"Asset does not exist: /Game/Stray/ | Asset does not exist: /Game/Nope | Asset does not exist: "},
		{"a package that depends on itself is no cycle", R"({"report": "cycles"})",
			"1 cycle of 2 packages with 2 links, the largest of 2\n"
			"1/2 Items <Hero Runtime\n"
			"1/2 Hero <Items Runtime"},
		{"the editor's part comes last, and leads over what is reached at run time",
			R"({"report": "impact", "asset_path": "/Game/Items"})",
			"A change of /Game/Items reaches 5 packages: 2 at run time, 3 in the editor alone\n"
			" Hero ~Items 1 Blueprint Runtime\n"
			" Map ~Hero 2 World Runtime\n"
			" Stray ~Items 1 DataTable Editor\n"
			" Hidden ~Stray 2 Editor\n"
			" Saved/Old ~Stray 2 DataTable Editor"},
		{"a way with its kinds and links",
			R"({"report": "path", "asset_path": "/Game/Map", "target_path": "Content/Glow.vasset"})",
			"1 shortest way of 2 links from /Game/Map to /Game/Glow\n"
			"1 Map 0 World\n"
			"1 Lamp ~Map 1 Material Editor\n"
			"1 Glow ~Lamp 2 uasset Runtime"},
		{"only back", R"({"report": "path", "asset_path": "/Game/Glow", "target_path": "/Game/Lamp"})",
			"No way from /Game/Glow to /Game/Lamp, but 1 shortest way of 1 link from /Game/Lamp to /Game/Glow\n"
			"1 Lamp 0 Material\n"
			"1 Glow ~Lamp 1 uasset Runtime"},
		{"neither", R"({"report": "path", "asset_path": "/Game/Glow", "target_path": "/Game/Boss"})",
			"No way from /Game/Glow to /Game/Boss, and none back"},
		{"the asset itself", R"({"report": "path", "asset_path": "/Game/Hero", "target_path": "/Game/HERO"})",
			"1 shortest way of 0 links from /Game/Hero to /Game/Hero\n"
			"1 Hero 0 Blueprint"},
		{"capped, with the totals and how to see the rest",
			R"({"report": "impact", "asset_path": "/Game/Items", "max_results": 1})",
			"A change of /Game/Items reaches 5 packages: 2 at run time, 3 in the editor alone\n"
			" Hero ~Items 1 Blueprint Runtime\n"
			"4 more rows [max_results=1]"},
		{"at least one whole way",
			R"({"report": "path", "asset_path": "/Game/Map", "target_path": "/Game/Glow", "max_results": -3})",
			"1 shortest way of 2 links from /Game/Map to /Game/Glow\n"
			"1 Map 0 World\n"
			"1 Lamp ~Map 1 Material Editor\n"
			"1 Glow ~Lamp 2 uasset Runtime"},
		{"nothing asked for", "{}", "Missing required parameter 'report'"},
		{"a word that is not a report's", R"({"report": "size"})",
			"Unknown report 'size'; reports: broken, unused, cycles, impact, path"},
		{"no asset", R"({"report": "impact"})", "Missing required parameter 'asset_path'"},
		{"each asset is looked at", R"({"report": "path", "asset_path": "/Game/Nope"})",
			"Asset does not exist: /Game/Nope | Missing required parameter 'target_path'"},
		{"a text file is not a package", R"({"report": "impact", "asset_path": "Docs/Notes"})", "Not a package: Docs/Notes"},
	};
	for (const auto& Case : Traced(Cases))
		EXPECT_EQ(Report(Case.Given), Case.Expected);
	EXPECT_EQ(GetSummary(R"({"report": "impact", "asset_path": "/Game/Items", "max_results": 1})"),
		R"({"runtime":2,"editor":3,"runtime_by_kind":{"Blueprint":1,"World":1},"editor_by_kind":{"DataTable":2}})")
		<< "all count, listed or not";
}

TEST(ProjectReport, ListsSmallCyclesFirstAndTheRingBeforeOtherLinks)
{
	FTestProject Project;
	Project.Links("/Game/A", {"A Blueprint"}, {"/Game/B", "/Game/C"});
	Project.Links("/Game/B", {"B Blueprint"}, {"/Game/C", "/Game/D"});
	Project.Links("/Game/C", {"C Blueprint"}, {"/Game/A editor"});
	Project.Links("/Game/D", {"D Blueprint"}, {"/Game/Y"});
	Project.Links("/Game/Y", {"Y Blueprint"}, {"/Game/Z"});
	Project.Links("/Game/Z", {"Z Blueprint"}, {"/Game/Y"});
	Project.Open();
	EXPECT_EQ(Report(R"({"report": "cycles"})"),
		"2 cycles of 5 packages with 6 links, the largest of 3\n"
		"1/2 Z <Y Runtime\n"
		"1/2 Y <Z Runtime\n"
		"2/3 C <A Runtime\n"
		"2/3 A <C Editor\n"
		"2/3 B <A Runtime\n"
		"2/3 C <B Runtime");
	EXPECT_EQ(Report(R"({"report": "cycles", "max_results": 3})"),
		"2 cycles of 5 packages with 6 links, the largest of 3\n"
		"1/2 Z <Y Runtime\n"
		"1/2 Y <Z Runtime\n"
		"2/3 C <A Runtime\n"
		"3 more rows [max_results=3]");
}

TEST(ProjectReport, CountsMoreWaysThanItLists)
{
	FTestProject Project;
	constexpr int32 NumSteps = 70; // of two ways each: more ways than a number holds
	for (int32 Step = 0; Step < NumSteps; ++Step)
	{
		const std::string Name = "/Game/S" + std::to_string(Step);
		const std::string Next = "/Game/S" + std::to_string(Step + 1);
		Project.Links(Name, {"S" + std::to_string(Step) + " Blueprint"}, {Name + "a", Name + "b"});
		Project.Links(Name + "a", {"A Blueprint"}, {Next});
		Project.Links(Name + "b", {"B Blueprint"}, {Next});
	}
	Project.Links("/Game/S70", {"S70 Blueprint"}, {});
	Project.Open();
	EXPECT_EQ(Report(R"({"report": "path", "asset_path": "/Game/S0", "target_path": "/Game/S2", "max_results": 12})"),
		"4 shortest ways of 4 links from /Game/S0 to /Game/S2\n"
		"1 S0 0 Blueprint\n1 S0a ~S0 1 Blueprint Runtime\n1 S1 ~S0a 2 Blueprint Runtime\n"
		"1 S1a ~S1 3 Blueprint Runtime\n1 S2 ~S1a 4 Blueprint Runtime\n"
		"2 S0 0 Blueprint\n2 S0a ~S0 1 Blueprint Runtime\n2 S1 ~S0a 2 Blueprint Runtime\n"
		"2 S1b ~S1 3 Blueprint Runtime\n2 S2 ~S1b 4 Blueprint Runtime\n"
		"10 more rows [max_results=12]");
	EXPECT_EQ(GetSummary(R"({"report": "path", "asset_path": "/Game/S0", "target_path": "/Game/S70"})"),
		R"({"ways":9007199254740992,"length":140,"reversed":0})");
}

TEST(ProjectReport, StopsWhenItIsAskedTo)
{
	FTestProject Project;
	DescribeProject(Project);
	std::stop_source Source;
	Source.request_stop();
	const FStopScope Scope(Source.get_token());
	for (const char* Arguments : {R"({"report": "broken"})", R"({"report": "unused"})", R"({"report": "cycles"})",
			 R"({"report": "impact", "asset_path": "/Game/Items"})",
			 R"({"report": "path", "asset_path": "/Game/Map", "target_path": "/Game/Glow"})"})
		EXPECT_EQ(Report(Arguments), "") << Arguments;
}
