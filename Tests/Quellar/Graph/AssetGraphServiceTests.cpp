#include "Quellar/Graph/AssetGraphService.h"

#include "Quellar/Assets/AssetPathUtils.h"
#include "Quellar/Assets/AssetRegistryUtils.h"
#include "Quellar/Graph/GraphTraversalUtils.h"
#include "Support/TestProject.h"

namespace
{
std::string ShortNameOf(const FString& Path)
{
	const std::string Text = Path.ToStdString();
	return Text.substr(Text.rfind('/') + 1);
}

/** "B(D E!) C": children in parentheses, "!" behind what only the editor needs. */
std::string RenderRelations(const TArray<FAssetRelation>& Relations)
{
	std::string Text;
	for (const FAssetRelation& Relation : Relations)
	{
		Text += (Text.empty() ? "" : " ") + ShortNameOf(Relation.Path) + (Relation.Type == "Runtime" ? "" : "!");
		if (!Relation.Relations.IsEmpty())
			Text += "(" + RenderRelations(Relation.Relations) + ")";
	}
	return Text;
}

std::string RenderCounts(const TMap<FString, int32>& Counts)
{
	std::string Text;
	for (const auto& [Name, Count] : Counts)
		Text += " " + Name.ToStdString() + "=" + std::to_string(Count);
	return Text;
}

std::string RenderSummary(const FAssetGraphSummary& Summary)
{
	return std::to_string(Summary.Total) + RenderCounts(Summary.ByKind) + RenderCounts(Summary.ByType);
}

std::string RenderGraph(const FExploreAssetGraphResult& Result)
{
	std::string Text = RenderRelations(Result.Relations);
	if (Result.Direction == "Both")
		Text = "-> " + RenderRelations(Result.DependencyRelations) + " <- " + RenderRelations(Result.ReferencerRelations);
	return Text + (Result.bTruncated ? " (truncated)" : "");
}

FExploreAssetGraphResult Explore(const FExploreAssetGraphParams& Params)
{
	FExploreAssetGraphResult Result;
	Result.Root = "left over from before";
	UAssetGraphService::ExploreGraph(Params, Result);
	return Result;
}

using EDirection = EAssetGraphDirection;
}

TEST(AssetGraphService, WalksWithinItsLimits)
{
	FTestProject Project;
	Project.Links(
		"/Game/Root", {"Root World"}, {"/Game/A", "/Game/B editor", "/Game/C soft editor", "/Script/Engine", "/Game/Gone"});
	Project.Links("/Game/A", {"A Blueprint"}, {"/Game/Shared", "/Game/Root", "/Game/A", "/Game/B"});
	Project.Links("/Game/B", {"B WidgetBlueprint"}, {"/Game/Shared soft", "/Game/A"});
	Project.Links("/Game/C", {"C DataTable"}, {"/Game/M", "/Game/Shared"});
	Project.Links("/Game/Shared", {"Shared UserDefinedEnum"}, {});
	Project.Links("/Game/M", {"M Material"}, {"/Game/Behind"});
	Project.Links("/Game/Behind", {"Behind DataAsset"}, {});
	Project.Links("/Game/Far", {"Far Blueprint"}, {"/Game/M"});
	Project.Links("/Game/Hub", {"Hub Blueprint"}, {"/Game/A", "/Game/B", "/Game/C"});
	Project.Links("/Game/Above", {"Above Blueprint"}, {"/Game/Hub"});
	Project.Links("/Game/Saved/Old", {"Old Blueprint"}, {"/Game/Above"});
	Project.Links("/Game/Below", {"Below Blueprint"}, {"/Game/Saved/Old", "/Game/Hidden", "/Game/Half"});
	Project.Links("/Game/Hidden", {"Hidden Blueprint filtered"}, {});
	Project.Links("/Game/Half", {"Half Blueprint filtered", "Other DataTable"}, {});
	Project.Open();

	const TCase<FExploreAssetGraphParams> Cases[] = {
		{"newest first; script packages and missing ones drop out", {.AssetPath = "/Game/Root"}, "C! B! A"},
		{"depth below one walks one level", {.AssetPath = "/Game/Root", .Depth = 0}, "C! B! A"},
		{"two levels: shared ones under each parent until they are dequeued; neither the root nor itself comes back",
			{.AssetPath = "/Game/Root", .Depth = 2}, "C!(Shared) B!(Shared) A(B Shared)"},
		{"never more than two", {.AssetPath = "/Game/Above", .Depth = 5}, "Hub(C B A)"},
		{"a kind of little signal is neither shown nor walked through", {.AssetPath = "/Game/Far", .Depth = 2}, ""},
		{"unless asked for", {.AssetPath = "/Game/Far", .Depth = 2, .bHighSignalOnly = false}, "M(Behind)"},
		{"as many as the budget: not truncated", {.AssetPath = "/Game/Root", .MaxNodes = 3}, "C! B! A"},
		{"one more than the budget", {.AssetPath = "/Game/Root", .MaxNodes = 2}, "B! A (truncated)"},
		{"a budget below one is one", {.AssetPath = "/Game/Root", .MaxNodes = 0}, "A (truncated)"},
		{"the budget counts both levels", {.AssetPath = "/Game/Root", .Depth = 2, .MaxNodes = 4}, "C! B! A(Shared) (truncated)"},
		{"what does not qualify does not truncate", {.AssetPath = "/Game/C", .MaxNodes = 1}, "Shared"},
		{"a hub is shown, not walked through", {.AssetPath = "/Game/Above", .Depth = 2, .MaxFanoutPerNode = 2}, "Hub"},
		{"three neighbours are within a fan-out of three", {.AssetPath = "/Game/Above", .Depth = 2, .MaxFanoutPerNode = 3},
			"Hub(C B A)"},
		{"the root is walked whatever its fan-out", {.AssetPath = "/Game/Hub", .MaxFanoutPerNode = -1}, "C B A"},
		{"referencers, in registry order before they are turned round",
			{.Direction = EDirection::Referencers, .AssetPath = "/Game/B"}, "Root! Hub A"},
		{"their fan-out is that of referencers",
			{.Direction = EDirection::Referencers, .AssetPath = "/Game/B", .Depth = 2, .MaxFanoutPerNode = 2},
			"Root! Hub(Above) A"},
		{"both, each with its own budget", {.Direction = EDirection::Both, .AssetPath = "/Game/Hub", .MaxNodes = 1},
			"-> A <- Above (truncated)"},
		{"excluded folders and hidden assets drop out; a package stands for its first visible asset",
			{.AssetPath = "/Game/Below", .Depth = 2}, "Half"},
		{"excluded referencers too", {.Direction = EDirection::Referencers, .AssetPath = "/Game/Above"}, ""},
		{"an object path, case ignored", {.AssetPath = "/game/above.Above"}, "Hub"},
		{"the file of a package", {.AssetPath = "Content/Above.vasset"}, "Hub"},
		{"an unknown package has no neighbours", {.AssetPath = "/Game/Nowhere", .Depth = 2}, ""},
	};
	for (const auto& Case : Traced(Cases))
		EXPECT_EQ(RenderGraph(Explore(Case.Given)), Case.Expected);

	const FExploreAssetGraphResult Both =
		Explore({.Direction = EDirection::Both, .AssetPath = "/Game/A.A", .Depth = 2, .bHighSignalOnly = false});
	EXPECT_EQ(Both.Root.View(), "/Game/A");
	EXPECT_TRUE(Both.Relations.IsEmpty());
	EXPECT_EQ(Both.Summary.Total, 0);
	EXPECT_EQ(RenderSummary(Both.DependencySummary), "5 Enum=1 World=1 WidgetBlueprint=2 DataTable=1 Runtime=3 Editor=2")
		<< RenderGraph(Both);
	EXPECT_EQ(RenderSummary(Explore({.AssetPath = "/Game/Below"}).Summary), "1 DataTable=1 Runtime=1");

	const FExploreAssetGraphResult Nothing = Explore({.Direction = EDirection::Both, .AssetPath = "Hero"});
	EXPECT_TRUE(Nothing.Root.IsEmpty() && Nothing.Direction.IsEmpty() && Nothing.DependencyRelations.IsEmpty());
}

TEST(AssetGraphService, NormalizesPaths)
{
	FTestProject Project;
	Project.File("Plugins/Fog/Fog.uplugin", R"({"name": "Fog"})");
	Project.Open();
	const std::string Folder = Project.GetFolder().Path().ToStdString();
	const struct
	{
		const char* Why;
		std::string Path;
		const char* Expected; // null: refused
	} Cases[] = {
		{"a package", "/Game/A/B", "/Game/A/B"},
		{"an object path", "/Game/A/B.B", "/Game/A/B"},
		{"cut at the last dot only", "/Game/A/B.B:C.D", "/Game/A/B.B:C"},
		{"case of the root does not matter", "/GAME/A", "/GAME/A"},
		{"a class", "/Script/Engine.Actor", "/Script/Engine"},
		{"a prefix is enough", "/GameData/X", "/GameData/X"},
		{"nothing", "", nullptr},
		{"a bare name", "Hero", nullptr},
		{"a bare name with an extension", "Hero.vasset", nullptr},
		{"a dot in a folder's name cuts too much", "/.Game", nullptr},
		{"a file of the project", "Content/UI/W_Menu.vasset", "/Game/UI/W_Menu"},
		{"with backslashes", "Content\\UI\\W_Menu.vasset", "/Game/UI/W_Menu"},
		{"absolute", Folder + "/Content/UI/W_Menu.vasset", "/Game/UI/W_Menu"},
		{"another mounted root", "/Fog/Dense.Dense", "/Fog/Dense"},
		{"no mounted root", "/Snow/Dense", nullptr},
		{"a file outside of the project", "/etc/passwd", nullptr},
		{"out of the content folder", "Content/../../x.vasset", nullptr},
		{"no package's file", "Docs/Notes.md", nullptr},
	};
	for (const auto& Case : Traced(Cases))
	{
		FName Package = "untouched";
		EXPECT_EQ(AssetPathUtils::NormalizeToPackageName(Case.Path, Package), Case.Expected != nullptr);
		EXPECT_EQ(Package.View(), Case.Expected ? Case.Expected : "untouched");
	}
}

TEST(AssetGraphService, PicksTheAssetThatStandsForItsPackage)
{
	FTestProject Project;
	Project.Links("/Game/Same", {"First Blueprint", "SAME DataTable"}, {"/Game/Other"});
	Project.Links("/Game/Other", {"First Blueprint", "Second DataTable"}, {"/Game/Same", "/Game/None", "/Game/Other"});
	Project.Links("/Game/None", {"None Blueprint filtered"}, {});
	Project.Open();
	FAssetData Asset;
	EXPECT_TRUE(AssetPathUtils::GetRepresentativeAsset("/Game/Same", Asset));
	EXPECT_EQ(Asset.AssetName.View(), "SAME");
	EXPECT_TRUE(AssetPathUtils::GetRepresentativeAsset("/game/other", Asset));
	EXPECT_EQ(Asset.AssetName.View(), "First");
	EXPECT_FALSE(AssetPathUtils::GetRepresentativeAsset("/Game/None", Asset));
	EXPECT_FALSE(AssetPathUtils::GetRepresentativeAsset("/Game/Unknown", Asset));

	const IAssetRegistry& Registry = *OrivaneAssetRegistryUtils::GetAssetRegistry();
	EXPECT_TRUE(GraphTraversalUtils::ShouldExpandNode(Registry, "/Game/Other", 3, true));
	EXPECT_FALSE(GraphTraversalUtils::ShouldExpandNode(Registry, "/Game/Other", 2, true)) << "counted before any filter";
	EXPECT_TRUE(GraphTraversalUtils::ShouldExpandNode(Registry, "/Game/Other", 2, false));
	EXPECT_EQ(GraphTraversalUtils::BuildRelationString(true, false).View(), "RuntimeReferencer");
	EXPECT_EQ(GraphTraversalUtils::BuildRelationString(false, true).View(), "EditorDependency");
	EXPECT_TRUE(AssetPathUtils::IsHighSignalKind("blueprint"));
	EXPECT_FALSE(AssetPathUtils::IsHighSignalKind("Material"));
}
