#include "BlueprintSearch/StreamSearch.h"

#include "BlueprintSearch/FindInBlueprintSearchManager.h"
#include "IndexFixture.h"
#include "Support/Cases.h"
#include "Support/Seed.h"

#include <random>

namespace
{
using FResults = TArray<TSharedPtr<FImaginaryFiBData>>;

FResults Find(const FString& Value, const FStreamSearchOptions& Options = {})
{
	FStreamSearch Search(Value, Options);
	Search.EnsureCompletion();
	EXPECT_TRUE(Search.IsComplete());
	EXPECT_EQ(Search.GetPercentComplete(), 1.0f);
	FResults Results;
	Search.GetFilteredImaginaryResults(Results);
	TArray<TSharedPtr<FFindInBlueprintsResult>> Items;
	Search.GetFilteredItems(Items);
	EXPECT_EQ(Items.Num(), Results.Num());
	for (int32 Index = 0; Index < Results.Num(); ++Index)
		EXPECT_EQ(Items[Index].get(), &Results[Index]->GetResult()) << "both lists speak of the same lines";
	return Results;
}

/** "Node Set Health //why{Pin Health}": category, text, comment, what lies below. */
std::string Render(const FFindInBlueprintsResult& Line)
{
	std::string Text = Line.GetCategory().ToStdString() + " " + Line.GetDisplayString().ToStdString();
	if (!Line.GetCommentText().IsEmpty())
		Text += " //" + Line.GetCommentText().ToStdString();
	std::string Below;
	for (const FFindInBlueprintsResult& Child : Line.GetChildren())
	{
		EXPECT_EQ(Child.GetParent(), &Line);
		Below += (Below.empty() ? "" : "; ") + Render(Child);
	}
	return Below.empty() ? Text : Text + "{" + Below + "}";
}

std::string Render(const FResults& Results)
{
	std::string Text;
	for (const auto& Result : Results)
		Text += (Text.empty() ? "" : " | ") + Render(Result->GetResult());
	return Text;
}
}

TEST(StreamSearch, FindsEntriesWithTheirAncestors)
{
	FIndexProject Project;
	Project.Package("BP_Z",
		"asset BP_Z /Script/Engine.Blueprint\n"
		"entry 0 Var|MaxHealth|Hit points\nentry 0 Var|Speed|\nentry 0 Graph|EventGraph|\n"
		"entry 1 Node|Set Health|\nentry 2 Pin|Target|\nentry 2 Pin|HEALTH|\n"
		"entry 1 Node|Print|says the health\nentry 1 Node|Delay|\n"
		"entry 0 Graph|\u00c4rger|\nentry 3 Pin|Deep|\nentry 1 Node|Shallow|\n");
	Project.Package("BP_A", "asset BP_A /Script/Engine.WidgetBlueprint\nentry 0 Graph|Health|\n");
	Project.Package("BP_Hidden", "asset BP_Hidden /Script/Engine.Blueprint filtered\nentry 0 Graph|Health|\n");
	Project.Package("DA_None", "asset DA_None /Script/Engine.DataAsset\nentry 0 Graph|Health|\n");
	Project.ScanAll();
	const TCase<> Cases[] = {
		{"text and comment, any case; ancestors without a match lead there, siblings without one are left out", "health",
			"WidgetBlueprint /Game/BP_A.BP_A{Graph Health} | Blueprint /Game/BP_Z.BP_Z{Var MaxHealth //Hit points; "
			"Graph EventGraph{Node Set Health{Pin HEALTH}; Node Print //says the health}}"},
		{"a level left out in the file: the nearest entry with a smaller depth is the parent", "deep",
			"Blueprint /Game/BP_Z.BP_Z{Graph \u00c4rger{Pin Deep}}"},
		{"other letters fold too", "\u00e4RG", "Blueprint /Game/BP_Z.BP_Z{Graph \u00c4rger}"},
		{"an ancestor that matches is there once", "ra", "Blueprint /Game/BP_Z.BP_Z{Graph EventGraph}"},
		{"a category is not searched", "graph|node", ""},
		{"nor is the Blueprint's own name", "BP_Z", ""},
		{"nothing", "absent", ""},
	};
	for (const auto& Case : Traced(Cases))
		EXPECT_EQ(Render(Find(Case.Given)), Case.Expected);
	EXPECT_EQ(Find("health", {.MinimumVersion = BlueprintIndexVersion}).Num(), 2);
	EXPECT_EQ(Find("health", {.MinimumVersion = BlueprintIndexVersion + 1}).Num(), 0) << "a newer index is asked for";
}

TEST(StreamSearch, WithoutARegistryThereIsNothing)
{
	EXPECT_EQ(Find("health").Num(), 0);
	FIndexProject Project;
	EXPECT_EQ(Find("health").Num(), 0) << "an empty one";
}

TEST(StreamSearch, ResultsOutliveSearchAndRescan)
{
	FIndexProject Project;
	Project.Package("A", "asset A /Script/Engine.Blueprint\nentry 0 Var|Health|\n");
	Project.ScanAll();
	FResults Results = Find("health");
	Project.Remove("A");
	Project.ScanAll();
	const TSharedPtr<FFindInBlueprintsResult> Item = Results[0]->GetSharedResult();
	Results.Empty();
	EXPECT_EQ(Render(*Item), "Blueprint /Game/A.A{Var Health}");
}

TEST(StreamSearch, CountsWhatLookingAtEveryEntryCounts)
{
	std::mt19937 Random(GetSeed());
	FIndexProject Project;
	for (int32 Blueprint = 0; Blueprint < 40; ++Blueprint)
	{
		std::string Lines = Random() % 8 ? "asset P /Script/Engine.Blueprint\n" : "asset P /Script/Engine.Blueprint filtered\n";
		uint32 Depth = 0;
		for (std::size_t Entry = Random() % 1500; Entry > 0; --Entry)
		{
			const std::string Number = std::to_string(Random() % 20000);
			Lines += "entry " + std::to_string(Depth) + " Var|x" + Number + "|" + (Random() % 2 ? "" : Number) + "\n";
			Depth = static_cast<uint32>(Random() % (Depth + 2));
		}
		Project.Package("P" + std::to_string(Blueprint), Lines);
	}
	Project.ScanAll();
	const FBlueprintIndexView Index = FFindInBlueprintSearchManager::Get().GetIndex();
	for (const char* Value : {"x", "X1", "23", "7777", "x1234", "1234", "x20000"}) // many and few: both ways to gather entries
	{
		std::string Expected;
		for (int32 Blueprint = 0; Blueprint < Index.NumBlueprints(); ++Blueprint)
		{
			int32 NumMatches = 0;
			const auto [Begin, End] = Index.GetEntries(Blueprint);
			for (int32 Number = Begin; Number < End && !Index.IsHidden(Blueprint); ++Number)
			{
				const FBlueprintIndexView::FEntry Entry = Index.GetEntry(Number);
				const auto Matches = [&](int32 Text)
				{ return Text != INDEX_NONE && FString(Index.GetText(Text)).Contains(Value, ESearchCase::IgnoreCase); };
				NumMatches += Matches(Entry.Text) || Matches(Entry.Comment);
			}
			if (NumMatches > 0)
				Expected +=
					Index.GetBlueprint(Blueprint).GetObjectPathString().ToStdString() + " " + std::to_string(NumMatches) + "\n";
		}
		std::string Actual;
		for (const auto& Result : Find(Value))
			Actual += Result->GetObjectPath().ToStdString() + " " + std::to_string(Result->NumMatches()) + "\n";
		EXPECT_EQ(Actual, Expected) << Value;
	}
}

TEST(StreamSearch, EndsSoonWhenStopped)
{
	FIndexProject Project;
	std::string Lines = "asset P /Script/Engine.Blueprint\n";
	for (int32 Entry = 0; Entry < 30000; ++Entry)
		Lines += "entry 0 Var|Health" + std::to_string(Entry) + "|\n";
	for (int32 Package = 0; Package < 4; ++Package)
		Project.Package("P" + std::to_string(Package), Lines);
	Project.ScanAll();
	for (int32 Round = 0; Round < 50; ++Round)
	{
		FStreamSearch Search("health", {});
		for (int32 Wait = 0; Wait < Round && !Search.WaitForCompletion(0); ++Wait)
			std::this_thread::yield();
		Search.Stop();
		Search.EnsureCompletion();
		FResults Results;
		Search.GetFilteredImaginaryResults(Results);
		EXPECT_TRUE(Results.Num() == 0 || Results.Num() == 4) << "all or nothing";
		const FStreamSearch Dropped("health", {});
	}
}
