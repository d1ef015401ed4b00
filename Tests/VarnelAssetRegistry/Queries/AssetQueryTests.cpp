#include "RegistryFixture.h"
#include "Support/Cases.h"

namespace
{
void FillProject(FRegistryProject& Project)
{
	Project.SetClassParents({{"/Script/Engine.Child", "/Script/Engine.Base"}});
	Project.Package("A", "asset A /Script/Engine.Base\n");
	Project.Package("UI/B", "asset B /Script/Engine.Child\nasset B2 /Script/Engine.Base\n");
	Project.Package("ui2/C", "asset C /Script/Engine.Base\n");
	Project.Package("UI/Deep/D", "asset D /Script/Engine.Child\nasset Hidden /Script/Engine.Child filtered\n");
	Project.Package("ui/E", "asset E /Script/Engine.Base\n");
	Project.ScanAll();
}
}

TEST(AssetQuery, CombinesItsLists)
{
	FRegistryProject Project;
	FillProject(Project);
	const FTopLevelAssetPath Base("/Script/Engine.Base");
	const FTopLevelAssetPath Child("/Script/Engine.Child");
	const TCase<FARFilter> Cases[] = {
		{"an empty filter restricts nothing", {},
			"/Game/A.A /Game/UI/B.B /Game/UI/B.B2 /Game/UI/Deep/D.D /Game/ui/E.E /Game/ui2/C.C"},
		{"one class, exactly", {.ClassPaths = {Child}}, "/Game/UI/B.B /Game/UI/Deep/D.D"},
		{"classes that overlap list nothing twice", {.ClassPaths = {Base, Child, Base}, .bRecursiveClasses = true},
			"/Game/A.A /Game/UI/B.B /Game/UI/B.B2 /Game/UI/Deep/D.D /Game/ui/E.E /Game/ui2/C.C"},
		{"a folder by itself, in all its spellings", {.PackagePaths = {"/game/UI"}}, "/Game/UI/B.B /Game/UI/B.B2 /Game/ui/E.E"},
		{"a folder and those below, not one that only begins alike", {.PackagePaths = {"/Game/UI/"}, .bRecursivePaths = true},
			"/Game/UI/B.B /Game/UI/B.B2 /Game/UI/Deep/D.D /Game/ui/E.E"},
		{"a folder without packages of its own", {.PackagePaths = {"/Game/UI/Deep", "/Game/ui2"}},
			"/Game/UI/Deep/D.D /Game/ui2/C.C"},
		{"folders that overlap list nothing twice",
			{.PackagePaths = {"/Game/UI/Deep", "/Game", "/Game/UI"}, .bRecursivePaths = true},
			"/Game/A.A /Game/UI/B.B /Game/UI/B.B2 /Game/UI/Deep/D.D /Game/ui/E.E /Game/ui2/C.C"},
		{"packages, in registry order whatever theirs", {.PackageNames = {"/Game/UI2/c", "/Game/A", "/game/a", "/Game/None"}},
			"/Game/A.A /Game/ui2/C.C"},
		{"lists restrict together",
			{.PackageNames = {"/Game/A", "/Game/UI/B"}, .PackagePaths = {"/Game/UI"}, .ClassPaths = {Base}}, "/Game/UI/B.B2"},
		{"an unknown class lets nothing through", {.ClassPaths = {FTopLevelAssetPath("/Script/Engine.Gone")}}, ""},
		{"nor does an invalid one", {.ClassPaths = {FTopLevelAssetPath()}}, ""},
		{"an unknown folder", {.PackagePaths = {"/Game/Gone", FName()}, .bRecursivePaths = true}, ""},
		{"an unknown package", {.PackageNames = {"/Game/Gone", FName()}}, ""},
	};
	for (const auto& Case : Traced(Cases))
		EXPECT_EQ(RenderAssets(Project.Registry, Case.Given), Case.Expected);
	EXPECT_EQ(
		RenderAssets(Project.Registry, {.ClassPaths = {Child}}, false), "/Game/UI/B.B /Game/UI/Deep/D.D /Game/UI/Deep/D.Hidden")
		<< "filtered assets come when they are asked for";
}

TEST(AssetQuery, ARareClassAmongManyAssetsComesInOrder)
{
	FRegistryProject Project;
	Project.SetClassParents({{"/Script/Engine.R2", "/Script/Engine.R1"}, {"/Script/Engine.R0", "/Script/Engine.R1"}});
	std::string Expected;
	for (int32 Index = 100; Index < 200; ++Index)
	{
		const std::string Name = "P" + std::to_string(Index);
		const bool bRare = Index % 17 == 0;
		const std::string Folder = Index % 2 == 0 ? "Even/" : "Odd/";
		Project.Package(
			Folder + Name, "asset " + Name + " /Script/Engine." + (bRare ? "R" + std::to_string(Index % 3) : "Common") + "\n");
		if (bRare && Index % 2 == 0)
			Expected += (Expected.empty() ? "/Game/Even/" : " /Game/Even/") + Name + "." + Name;
	}
	Project.ScanAll();
	const FARFilter Filter{
		.PackagePaths = {"/Game/Even"}, .ClassPaths = {FTopLevelAssetPath("/Script/Engine.R1")}, .bRecursiveClasses = true};
	EXPECT_EQ(RenderAssets(Project.Registry, Filter), Expected);
}

TEST(AssetQuery, StopsWhenToldTo)
{
	FRegistryProject Project;
	const IAssetRegistry& Registry = Project.Registry;
	FillProject(Project);
	const FARFilter Filters[] = {{}, {.PackageNames = {"/Game/A", "/Game/UI/B"}},
		{.PackagePaths = {"/Game"}, .bRecursivePaths = true}, {.ClassPaths = {FTopLevelAssetPath("/Script/Engine.Base")}}};
	for (const FARFilter& Filter : Filters)
	{
		int32 NumVisited = 0;
		Registry.EnumerateAssets(Filter, [&NumVisited](const FAssetData&) { return ++NumVisited < 2; });
		EXPECT_EQ(NumVisited, 2);
	}
}

TEST(AssetQuery, FindsAssetsByObjectPath)
{
	FRegistryProject Project;
	const IAssetRegistry& Registry = Project.Registry;
	Project.Package("Maps/Town",
		"asset Town /Script/Engine.World\n"
		"asset Lamp /Script/Engine.Actor in=/Game/Maps/Town.Town:PersistentLevel\n"
		"asset Level /Script/Engine.Level in=/Game/Maps/Town.Town\n"
		"asset Ghost /Script/Engine.Actor filtered\n"
		"asset TOWN2 /Script/Engine.Actor\n");
	Project.ScanAll();
	const TCase<> Cases[] = {
		{"an asset", "/Game/Maps/Town.Town", "/Game/Maps/Town.Town"},
		{"any case; the answer keeps the file's", "/game/maps/town.town2", "/Game/Maps/Town.TOWN2"},
		{"inside of a sub-object: joined by a dot", "/Game/Maps/Town.Town:PersistentLevel.lamp",
			"/Game/Maps/Town.Town:PersistentLevel.Lamp"},
		{"inside of an asset: joined by a colon", "/Game/Maps/Town.Town:Level", "/Game/Maps/Town.Town:Level"},
		{"an asset with an outer is not directly in its package", "/Game/Maps/Town.Lamp", ""},
		{"a sub-object that is no asset", "/Game/Maps/Town.Town:PersistentLevel", ""},
		{"filtered", "/Game/Maps/Town.Ghost", ""},
		{"a package alone", "/Game/Maps/Town", ""},
		{"an unknown package", "/Game/Maps/Gone.Gone", ""},
	};
	for (const auto& Case : Traced(Cases))
	{
		const FAssetData Found = Registry.GetAssetByObjectPath(FSoftObjectPath(Case.Given));
		EXPECT_EQ(Found.IsValid() ? Found.GetObjectPathString().ToStdString() : "", Case.Expected);
	}
	EXPECT_TRUE(Registry.GetAssetByObjectPath(FSoftObjectPath("/Game/Maps/Town.Ghost"), false, false).IsValid());
	EXPECT_FALSE(Registry.GetAssetByObjectPath(FSoftObjectPath()).IsValid());

	TArray<FAssetData> Assets;
	Registry.GetAssetsByPackageName("/game/Maps/TOWN", Assets);
	EXPECT_EQ(RenderAssets(Assets),
		"/Game/Maps/Town.Town /Game/Maps/Town.Town:PersistentLevel.Lamp /Game/Maps/Town.Town:Level /Game/Maps/Town.TOWN2");
}

TEST(AssetQuery, RecordsHoldWhatTheFileSays)
{
	FRegistryProject Project;
	const IAssetRegistry& Registry = Project.Registry;
	Project.Package("Data/DT_Items",
		"asset DT_Items /Script/Engine.DataTable\ntag RowStruct=/Script/Lantern.Row\ntag Empty=\ntag Author=J\u00e9r\u00f4me = "
		"me\n");
	Project.ScanAll();
	const FAssetData Asset = Registry.GetAssetByObjectPath(FSoftObjectPath("/Game/Data/DT_Items.DT_Items"));
	EXPECT_EQ(Asset.PackageName.View(), "/Game/Data/DT_Items");
	EXPECT_EQ(Asset.PackagePath.View(), "/Game/Data");
	EXPECT_EQ(Asset.AssetName.View(), "DT_Items");
	EXPECT_EQ(Asset.AssetClassPath.ToString().View(), "/Script/Engine.DataTable");
	EXPECT_TRUE(Asset.OuterPath.IsNone());
	std::string Tags;
	for (const auto& [Key, Value] : Asset.GetTags())
		Tags += Key.ToStdString() + "=" + Value.ToStdString() + ";";
	EXPECT_EQ(Tags, "RowStruct=/Script/Lantern.Row;Empty=;Author=J\u00e9r\u00f4me = me;");
	FString Value = "kept";
	EXPECT_FALSE(Asset.GetTagValue("Missing", Value));
	EXPECT_EQ(Value.View(), "kept");
	EXPECT_TRUE(Asset.GetTagValue("EMPTY", Value));
	EXPECT_EQ(Value.View(), "");
	EXPECT_FALSE(FAssetData().GetTagValue("RowStruct", Value)) << "a record made by hand has no tags";
}

TEST(AssetQuery, AnEmptyRegistryAnswers)
{
	const FAssetRegistry Registry;
	EXPECT_EQ(RenderAssets(Registry, {}), "");
	EXPECT_EQ(RenderAssets(Registry, {.PackagePaths = {"/Game"}, .bRecursivePaths = true}), "");
	EXPECT_EQ(RenderAssets(Registry, {.ClassPaths = {FTopLevelAssetPath("/Script/Engine.Base")}}), "");
	EXPECT_TRUE(Registry.FindPackage("/Game/A").IsNone());
	EXPECT_EQ(RenderDependencies(Registry, "/Game/A"), "unknown");
	EXPECT_EQ(Registry.GetBlueprintIndex().NumBlueprints(), 0);
}
