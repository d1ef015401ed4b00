#include "Tools/SearchOutput.h"

#include "Support/Cases.h"

namespace
{
FAssetSearchResult MakeFound()
{
	FAssetSearchResult Found;
	Found.Results.Add({.AssetPath = "/Game/UI/WBP_HUD",
		.AssetClass = "Blueprint",
		.Hits = {{.Kind = "WidgetBlueprint", .Name = "/Game/UI/WBP_HUD.WBP_HUD"},
			{.Kind = "Graph", .Name = "Main", .Container = "/Game/UI/WBP_HUD.WBP_HUD"},
			{.Kind = "Node", .Name = "Set Health", .Container = "Main"},
			{.Kind = "Pin", .Name = "HEALTH", .Container = "Set Health", .Count = 3},
			{.Kind = "Graph", .Name = "Other", .Container = "/Game/UI/WBP_HUD.WBP_HUD"}}});
	Found.Results.Add({.AssetPath = "/Game/UI/wbp_HUD.WBP_HUD",
		.AssetClass = "WidgetBlueprint",
		.bTruncated = true,
		.Hits = {{.Kind = "Widget", .Name = "HealthBar", .Container = "WidgetTree"}}});
	Found.Results.Add({.AssetPath = "Docs/A", .AssetClass = "TextFile", .Hits = {{.Kind = "TextMatch", .Name = "health"}}});
	return Found;
}
}

TEST(SearchOutput, ShowsAnAssetAsOneBlock)
{
	FSearchView View{
		.Term = "health", .TextPlaces = {{.Asset = "Docs/A", .File = "Docs/A.b.md", .Line = 7, .Text = "of \x1b health"}}};
	EXPECT_EQ(RenderSearchResults(MakeFound(), View).View(),
		"/Game/UI/WBP_HUD  Blueprint, WidgetBlueprint\n"
		"  Graph   Main\n"
		"  Node      Set Health\n"
		"  Pin         HEALTH  x3\n"
		"  Graph   Other\n"
		"  Widget  HealthBar  WidgetTree\n"
		"  (more hits of a kind were left out; raise --max-hits-per-kind)\n"
		"Docs/A.b.md:7: of \\x1b health\n");
	EXPECT_EQ(GroupByAsset(MakeFound()).size(), 2U);
	View.Width = 20;
	EXPECT_TRUE(RenderSearchResults(MakeFound(), View).Contains("  Widget  HealthBar  \u2026\n"))
		<< *RenderSearchResults(MakeFound(), View);
}

TEST(SearchOutput, HighlightsWhatTheSearchFound)
{
	const TCase<std::pair<const char*, const char*>> Cases[] = {
		{"every place, whatever the case", {"ab", "xABxab"}, "x[AB]x[ab]"},
		{"letters of other lengths", {"k", "1\u212A2"}, "1[\u212A]2"},
		{"a sharp s is no pair of letters", {"ss", "stra\u00DFe"}, "stra\u00DFe"},
		{"nothing to find", {"", "ab"}, "ab"},
	};
	for (const auto& Case : Traced(Cases))
	{
		FAssetSearchResult Found;
		Found.Results.Add({.AssetPath = "/Game/A", .Hits = {{.Kind = "K", .Name = Case.Given.second}}});
		const FString Plain = RenderSearchResults(Found, {.Term = Case.Given.first, .Paint = FPainter(true)});
		FString Marked = Plain.Replace("\033[1;31m", "[").Replace("\033[0m", "]");
		EXPECT_TRUE(Marked.Contains(Case.Expected)) << *Marked;
	}
}
