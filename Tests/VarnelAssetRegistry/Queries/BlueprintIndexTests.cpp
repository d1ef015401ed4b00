#include "AssetRegistry/BlueprintIndex.h"
#include "Core/Text/Unicode.h"
#include "RegistryFixture.h"
#include "Support/Cases.h"
#include "Support/Seed.h"

#include <random>

namespace
{
/** "/Game/BP.BP[Var Health //Hit points; .Node Begin]": a dot for each level of depth. */
std::string Render(const FBlueprintIndexView& Index)
{
	std::string Text;
	for (int32 Blueprint = 0; Blueprint < Index.NumBlueprints(); ++Blueprint)
	{
		Text +=
			Index.GetBlueprint(Blueprint).GetObjectPathString().ToStdString() + (Index.IsHidden(Blueprint) ? "(filtered)[" : "[");
		const auto [Begin, End] = Index.GetEntries(Blueprint);
		for (int32 Number = Begin; Number < End; ++Number)
		{
			const FBlueprintIndexView::FEntry Entry = Index.GetEntry(Number);
			Text += (Number > Begin ? "; " : "") + std::string(static_cast<std::size_t>(Entry.Depth), '.');
			Text.append(Index.GetText(Entry.Category)).append(" ").append(Index.GetText(Entry.Text));
			if (Entry.Comment != INDEX_NONE)
				Text.append(" //").append(Index.GetText(Entry.Comment));
		}
		Text += "] ";
	}
	return Text;
}
}

TEST(BlueprintIndex, BelongsToTheFirstBlueprintOfAPackage)
{
	FRegistryProject Project;
	Project.SetClassParents({{"/Script/Engine.WidgetBlueprint", "/Script/Engine.Blueprint"}});
	Project.Package("BP_Z",
		"asset BP_Z /Script/Engine.Blueprint\nentry 0 Var|Health|Hit points\nentry 0 Graph|Main|\nentry 1 Node|Begin|\nentry 2 "
		"Pin|Health|\n");
	Project.Package("BP_A",
		"asset Icon /Script/Engine.Texture\nasset BP_A /script/engine.widgetblueprint filtered\nasset BP_B "
		"/Script/Engine.Blueprint\nentry 0 Var|\u00c4rger|\n");
	Project.Package("DA_NoBlueprint", "asset DA_NoBlueprint /Script/Engine.DataAsset\nentry 0 Var|Lost|\n");
	Project.Package("BP_Empty", "asset BP_Empty /Script/Engine.Blueprint\n");
	Project.ScanAll();
	const FBlueprintIndexView Index = Project.Registry.GetBlueprintIndex();
	EXPECT_EQ(Render(Index),
		"/Game/BP_A.BP_A(filtered)[Var \u00c4rger] /Game/BP_Z.BP_Z[Var Health //Hit points; Graph Main; .Node Begin; ..Pin "
		"Health] ");
}

TEST(BlueprintIndex, HoldsEveryTextOnce)
{
	FRegistryProject Project;
	Project.Package("A",
		"asset A /Script/Engine.Blueprint\nentry 0 Var|Health|\nentry 0 Var|Health|health\nentry 0 Var|\u00c4\u1e9e\u212a|Kelvin "
		"and sharp s change their length\n");
	Project.Package("B", "asset B /Script/Engine.Blueprint\nentry 0 Node|Health|Var\n");
	Project.ScanAll();
	const FBlueprintIndexView Index = Project.Registry.GetBlueprintIndex();
	std::string Texts;
	for (int32 Text = 0; Text < Index.NumTexts(); ++Text)
		Texts.append(Index.GetText(Text)).append(" ");
	EXPECT_EQ(Texts, "Var Health health \u00c4\u1e9e\u212a Kelvin and sharp s change their length Node ");
}

TEST(BlueprintIndex, AViewKeepsItsState)
{
	FRegistryProject Project;
	Project.Package("A", "asset A /Script/Engine.Blueprint\nentry 0 Var|Old|\n");
	Project.ScanAll();
	const FBlueprintIndexView Index = Project.Registry.GetBlueprintIndex();
	Project.Package("A", "asset A /Script/Engine.Blueprint\nentry 0 Var|New|\n");
	Project.ScanAll();
	EXPECT_EQ(Render(Index), "/Game/A.A[Var Old] ");
	EXPECT_EQ(Render(Project.Registry.GetBlueprintIndex()), "/Game/A.A[Var New] ");
}

namespace
{
/** Indices of all texts that contain the value, the slow way. */
std::vector<uint32> FindTextsOneByOne(const FBlueprintIndexView& Index, FStringView Value)
{
	std::vector<uint32> Found;
	for (int32 Text = 0; Text < Index.NumTexts(); ++Text)
	{
		if (FString(Index.GetText(Text)).Contains(FString(Value), ESearchCase::IgnoreCase))
			Found.push_back(static_cast<uint32>(Text));
	}
	return Found;
}

std::string RenderUses(const FBlueprintIndexView& Index, FStringView Value)
{
	std::string Text;
	for (const uint32 Found : Index.FindTexts(Value))
	{
		Text.append(Text.empty() ? "" : "; ").append(Index.GetText(static_cast<int32>(Found)));
		for (const uint32 Entry : Index.GetUses(Found).Numbers)
		{
			const FAssetData Blueprint = Index.GetBlueprint(Index.FindBlueprint(Entry));
			Text += " " + Blueprint.AssetName.ToString().ToStdString() + "/" + std::to_string(Entry);
		}
	}
	return Text;
}
}

TEST(BlueprintIndex, LeadsFromAValueToTheEntriesThatUseIt)
{
	FRegistryProject Project;
	Project.Package("A", "asset A /Script/Engine.Blueprint\nentry 0 Var|Health|Health\nentry 1 Health|Old|Health\n");
	Project.Package("B", "asset B /Script/Engine.Texture\nentry 0 Var|MaxHealth|\nentry 0 Var|Health|\n");
	Project.Package("C", "asset C /Script/Engine.Blueprint\nentry 0 Var||\nentry 0 Node|Gr\u00fc\u00dfe|\nentry 0 Var|Health|\n");
	Project.ScanAll();
	const FBlueprintIndexView Index = Project.Registry.GetBlueprintIndex();
	const TCase<> Cases[] = {
		{"as text or comment, once each; a category is no use, and entries without a Blueprint are none", "hEALTH",
			"Health A/0 A/1 C/6; MaxHealth"},
		{"other letters ignore case too", "GR\u00dc\u00df", "Gr\u00fc\u00dfe C/5"},
		{"shorter than the lists' keys", "ld", "Old A/1"},
		{"nowhere", "healthy", ""},
	};
	for (const auto& Case : Traced(Cases))
		EXPECT_EQ(RenderUses(Index, Case.Given), Case.Expected);
}

TEST(BlueprintIndex, FindsWhatLookingAtEveryTextFinds)
{
	std::mt19937 Random(GetSeed());
	const auto Below = [&](std::size_t Limit) { return Random() % Limit; };
	// Few letters make many near misses; texts of one letter meet at the borders of texts and blocks.
	const std::string Letters[] = {"a", "A", "b", "\u00e4", "\u00c4", "\u212a", "k", "_"};
	const auto MakeText = [&](std::size_t MaxLength)
	{
		std::string Text;
		for (std::size_t Length = Below(MaxLength + 1); Length > 0; --Length)
			Text += Letters[Below(std::size(Letters))];
		return Text;
	};
	FRegistryProject Project;
	std::string Lines = "asset P /Script/Engine.Blueprint\n";
	for (std::size_t Entry = Below(4000); Entry > 0; --Entry)
		Lines += "entry 0 Var|" + MakeText(12) + "|" + MakeText(3) + "\n";
	Project.Package("P", Lines);
	Project.ScanAll();
	const FBlueprintIndexView Index = Project.Registry.GetBlueprintIndex();
	for (int32 Round = 0; Round < 300; ++Round)
	{
		const std::string Value = MakeText(static_cast<std::size_t>(Round) % 12);
		EXPECT_EQ(Index.FindTexts(Value), FindTextsOneByOne(Index, Value)) << "value '" << Value << "'";
	}
	const std::string Across = Unicode::Fold(Index.GetText(0)) + std::string("\0", 1) +
		Unicode::Fold(Index.GetText(1)); // with the zero byte between two texts
	EXPECT_EQ(Index.FindTexts(Across), FindTextsOneByOne(Index, Across));
}
