#include "AssetRegistry/BlueprintIndex.h"
#include "Core/Unicode.h"
#include "RegistryFixture.h"

namespace
{
/** "/Game/BP.BP[Var Health //Hit points; .Node Begin]": a dot for each level of depth. */
std::string Render(const FBlueprintIndexView& Index)
{
	std::string Text;
	for (int32 Blueprint = 0; Blueprint < Index.NumBlueprints(); ++Blueprint)
	{
		Text += Index.GetBlueprint(Blueprint).GetObjectPathString().ToStdString() +
			(Index.IsRegistryFiltered(Blueprint) ? "(filtered)[" : "[");
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

TEST(BlueprintIndex, HoldsEveryTextOnceAndFolded)
{
	FRegistryProject Project;
	Project.Package("A",
		"asset A /Script/Engine.Blueprint\nentry 0 Var|Health|\nentry 0 Var|Health|health\nentry 0 Var|\u00c4\u1e9e\u212a|Kelvin "
		"and sharp s change their length\n");
	Project.Package("B", "asset B /Script/Engine.Blueprint\nentry 0 Node|Health|Var\n");
	Project.ScanAll();
	const FBlueprintIndexView Index = Project.Registry.GetBlueprintIndex();
	std::string Folded;
	std::string Texts;
	for (int32 Text = 0; Text < Index.NumTexts(); ++Text)
	{
		EXPECT_EQ(Index.GetFoldedText(Text), Unicode::Fold(Index.GetText(Text)));
		Folded.append(Index.GetFoldedText(Text)).push_back('\0');
		Texts.append(Index.GetText(Text)).append(" ");
	}
	EXPECT_EQ(Texts, "Var Health health \u00c4\u1e9e\u212a Kelvin and sharp s change their length Node ");
	EXPECT_EQ(Index.GetFoldedTexts(), Folded);
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
