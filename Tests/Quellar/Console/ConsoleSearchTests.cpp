#include "Quellar/Console/ConsoleSearch.h"

#include "Console/ExploreAssetGraphCommand.h"
#include "Console/SearchCommands.h"
#include "Core/Files/File.h"
#include "Core/Program/Console.h"
#include "Core/Threads/Tasks.h"
#include "Quellar/Families/AssetFamily.h"
#include "Support/TestProject.h"

namespace
{
/** "term 'x' path '' families a|b kinds ... exts ... exact max 200" */
std::string Read(const FConsoleSearchTraits& Traits, const char* Line)
{
	const FAssetSearchParams Params = ReadSearchWords(Traits, IConsoleManager::SplitWords(Line));
	return "'" + Params.Term.ToStdString() + "' in '" + Params.PathContains.ToStdString() + "' families " +
		Join(Params.IncludeAssetFamilies, "|") + " kinds " + Join(Params.IncludeKinds, "|") + " exts " +
		Join(Params.IncludeTextExtensions, "|") + (Params.bExact ? " exact" : "") + " max " + std::to_string(Params.MaxTotalHits);
}

/** Runs a line and pumps the game thread until its search reports. */
std::string RunLine(const char* Line, FTestProject& Project)
{
	const int32 Number = FConsoleSearches::NumStarted() + 1;
	std::string Report;
	FConsoleSearches::SetOnFinished(
		[&](const FConsoleSearches::FReport& Finished)
		{
			EXPECT_EQ(Finished.Number, Number);
			Report = Finished.Command.ToStdString() + (Finished.bWritten ? " wrote " : " could not write ") +
				Finished.File.Mid(Project.GetFolder().Path().Len() + 1).ToStdString() + ": " + RenderAssets(Finished.Found);
		});
	EXPECT_TRUE(IConsoleManager::Get().ProcessUserConsoleInput(Line)) << Line;
	FGameThread::Get().RunUntil([&] { return !Report.empty(); }, std::chrono::seconds(60));
	FConsoleSearches::SetOnFinished({});
	return Report;
}
}

TEST(ConsoleSearch, RegistersACommandForEachFamilyAndForAll)
{
	FTestProject Project;
	Project.Open();
	const std::string Words = " Args: term=, path=, kinds=, exact=true|false, max=, summary=true|false";
	const std::string AllFamilies = Join(GetAssetFamilyNames(), "|");
	const struct
	{
		const char* Name;
		const char* Families;
		const char* File;
		std::string Help;
	} Commands[] = {
		{"AssetSearch", AllFamilies.c_str(), "asset_search",
			"Search all asset types. Args: term=, path=, families=, kinds=, exact=true|false, max=, summary=true|false"},
		{"BehaviorTreeSearch", "BehaviorTree", "behavior_tree_search", "Search Behavior Trees." + Words},
		{"BlackboardSearch", "Blackboard", "blackboard_search", "Search Blackboards." + Words},
		{"BlueprintSearch", "Blueprint", "blueprint_search",
			"Search Blueprints by term/path/kinds (summary=true|false). Args: term=, path=, kinds=Var,Graph,Node,Pin,Comment, "
			"exact=true|false, max=200, summary=true"},
		{"DataAssetSearch", "DataAsset", "dataasset_search", "Search DataAssets." + Words},
		{"DataTableSearch", "DataTable", "datatable_search",
			"Search DataTables (schema-only). Args: term=, path=, exact=true|false, max=, summary=true|false"},
		{"EnumSearch", "Enum", "enum_search", "Search UserDefinedEnums." + Words},
		{"EnvQuerySearch", "EnvQuery", "envquery_search", "Search EnvQueries." + Words},
		{"ExploreAssetGraph", "", "",
			R"(Explore asset dependency/referencer graph. Usage: Orivane.ExploreAssetGraph asset="/Game/..." )"
			"[relation=Dependencies|Referencers|Both] [depth=1] [max_nodes=150]"},
		{"MaterialSearch", "Material", "material_search",
			"Search Materials, Material Instances, and Material Functions." + Words},
		{"NiagaraSearch", "NiagaraSystem", "niagara_search", "Search Niagara Systems." + Words},
		{"StructSearch", "Struct", "struct_search", "Search UserDefinedStructs." + Words},
		{"TextSearch", "Text", "text_search",
			"Search whitelisted text files. Args: term=, path=, exts=cpp,h,ini, exact=true|false, max=, summary=true|false"},
	};
	for (const auto& Command : Commands)
	{
		const std::string Name = std::string("Orivane.") + Command.Name;
		SCOPED_TRACE(Name);
		const auto Registered = IConsoleManager::Get().FindConsoleCommand(FString(Name));
		ASSERT_TRUE(Registered);
		EXPECT_EQ(Registered->Name.View(), Name);
		EXPECT_EQ(Registered->Help.View(), Command.Help);
		EXPECT_EQ(Join(FConsoleSearches::ReadParams(FString(Name), {}).IncludeAssetFamilies, "|"), Command.Families);
		const std::string Report = *Command.File ? Name + " wrote Saved/Quellar/" + Command.File + ".json: " : "";
		EXPECT_EQ(*Command.File ? RunLine((Name + " term=zzz").c_str(), Project) : "", Report);
	}
}

TEST(ConsoleSearch, ReadsItsWords)
{
	const FConsoleSearchTraits All{.Command = {.ExtraWords = {"kinds=", "families="}}, .Families = {"A", "B"}};
	const FConsoleSearchTraits One{.Families = {"Blueprint"}};
	const FConsoleSearchTraits Table{.Command = {.ExtraWords = {}}, .Families = {"DataTable"}};
	const FConsoleSearchTraits Text{.Command = {.ExtraWords = {"exts="}}, .Families = {"Text"}};
	const struct
	{
		const char* Why;
		const FConsoleSearchTraits& Traits;
		const char* Line;
		const char* Expected;
	} Cases[] = {
		{"defaults", One, "", "'' in '' families Blueprint kinds  exts  max 200"},
		{"any case of a key", One, "TERM=Foo Path=/Game EXACT=TRUE",
			"'Foo' in '/Game' families Blueprint kinds  exts  exact max 200"},
		{"quotes keep blanks", One, R"(term="two words" path="/Game/A B")",
			"'two words' in '/Game/A B' families Blueprint kinds  exts  max 200"},
		{"a quoted word", One, R"("term=two words")", "'two words' in '' families Blueprint kinds  exts  max 200"},
		{"a cap of at least one", One, "term=Health max=0", "'Health' in '' families Blueprint kinds  exts  max 1"},
		{"no digits", One, "max=many", "'' in '' families Blueprint kinds  exts  max 1"},
		{"digits in front", One, R"(max="12 or so")", "'' in '' families Blueprint kinds  exts  max 12"},
		{"kinds", One, "kinds=Var,,Node", "'' in '' families Blueprint kinds Var|Node exts  max 200"},
		{"families replace the preset", All, "term=x families=DataTable,,Enum",
			"'x' in '' families DataTable|Enum kinds  exts  max 200"},
		{"families are one command's", One, "families=Enum", "'' in '' families Blueprint kinds  exts  max 200"},
		{"tables have no kinds", Table, "kinds=Var", "'' in '' families DataTable kinds  exts  max 200"},
		{"extensions", Text, "exts=cpp,h kinds=x", "'' in '' families Text kinds  exts cpp|h max 200"},
		{"not exact, and words nobody knows", One, "exact=yes summary=true term Health -x",
			"'' in '' families Blueprint kinds  exts  max 200"},
		{"the last one counts", One, "term=a term=b", "'b' in '' families Blueprint kinds  exts  max 200"},
	};
	for (const auto& Case : Traced(Cases))
		EXPECT_EQ(Read(Case.Traits, Case.Line), Case.Expected);
}

TEST(ConsoleSearch, WritesItsFile)
{
	FTestProject Project;
	Project.Table("/Game/DT_Items", "Row").Column("Wares", "string").Rows(2);
	Project.File("Docs/Notes.md", "wares");
	Project.Open();
	EXPECT_EQ(RunLine("orivane.datatablesearch term=wares", Project),
		"Orivane.DataTableSearch wrote Saved/Quellar/datatable_search.json: DT_Items");
	EXPECT_NE(Project.GetFolder().Read("Saved/Quellar/datatable_search.json").find("\"Wares:string\""), std::string::npos);
	EXPECT_EQ(RunLine("Orivane.AssetSearch term=wares families=Text,DataTable", Project),
		"Orivane.AssetSearch wrote Saved/Quellar/asset_search.json: DT_Items Docs/Notes.md");
	EXPECT_EQ(RunLine("Orivane.DataTableSearch term=nowhere", Project),
		"Orivane.DataTableSearch wrote Saved/Quellar/datatable_search.json: ");
	EXPECT_EQ(Project.GetFolder().Read("Saved/Quellar/datatable_search.json").find("Wares:string"), std::string::npos)
		<< "what was found before is gone";

	Project.GetFolder().Write("Saved/Quellar/enum_search.json/in.the.way", "");
	EXPECT_EQ(
		RunLine("Orivane.EnumSearch term=x", Project), "Orivane.EnumSearch could not write Saved/Quellar/enum_search.json: ");
}

TEST(ExploreAssetGraphCommand, ReadsItsWords)
{
	const auto Read = [](const char* Line)
	{
		const FExploreAssetGraphParams Params = ReadExploreAssetGraphWords(IConsoleManager::SplitWords(Line));
		EXPECT_TRUE(Params.bHighSignalOnly);
		return Params.AssetPath.ToStdString() + " " + std::to_string(static_cast<int>(Params.Direction)) + " " +
			std::to_string(Params.Depth) + " " + std::to_string(Params.MaxNodes) + " " + std::to_string(Params.MaxFanoutPerNode);
	};
	EXPECT_EQ(Read(""), " 0 1 150 50");
	EXPECT_EQ(Read(R"(Asset="/Game/A B" RELATION=referencers depth=9 max_nodes=-4 max_fanout=7)"), "/Game/A B 1 9 -4 7");
	EXPECT_EQ(Read("relation=Both high_signal=false asset=/Game/A depth=deep"), "/Game/A 2 0 150 50");
	EXPECT_EQ(Read("relation=sideways"), " 0 1 150 50");
}
