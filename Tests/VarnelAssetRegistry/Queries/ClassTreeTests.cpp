#include "RegistryFixture.h"
#include "Support/Cases.h"

namespace
{
const FRegistryProject::FClassParents EngineClasses = {
	{"/Script/Engine.WidgetBlueprint", "/Script/Engine.Blueprint"},
	{"/Script/Engine.PrimaryDataAsset", "/Script/Engine.DataAsset"},
	{"/Script/Engine.Pawn", "/Script/Engine.Actor"},
	{"/Script/Lantern.WeaponData", "/Script/Engine.PrimaryDataAsset"},
};

/** A Blueprint package: its class, the parent in the export form, and an asset of that class elsewhere may follow. */
std::string MakeBlueprint(const std::string& Name, const std::string& Tags)
{
	return "asset " + Name + " /Script/Engine.Blueprint\n" + Tags;
}

std::string RenderClass(const FAssetRegistry& Registry, const char* Class)
{
	return RenderAssets(Registry, {.ClassPaths = {FTopLevelAssetPath(Class)}, .bRecursiveClasses = true});
}

std::string RenderAncestors(const FAssetRegistry& Registry, const char* Class)
{
	TArray<FTopLevelAssetPath> Classes;
	Registry.GetAncestorClasses(FTopLevelAssetPath(Class), Classes);
	return RenderClasses(Classes);
}
}

TEST(RegistryClasses, RecursiveFiltersFollowEveryKindOfClass)
{
	FRegistryProject Project;
	Project.SetClassParents(EngineClasses);
	Project.Package("A_Plain", "asset A_Plain /Script/Engine.DataAsset\n");
	Project.Package("B_Declared", "asset B_Declared /Script/Lantern.WeaponData\n");
	Project.Package("C_Base",
		MakeBlueprint(
			"C_Base", "tag GeneratedClass=Class'/Game/C_Base.C_Base_C'\ntag ParentClass=Class'/Script/Lantern.WeaponData'\n"));
	Project.Package("D_Derived",
		MakeBlueprint("D_Derived", "tag generatedclass=/Game/D_Derived.D_Derived_C\ntag PARENTCLASS=/game/c_base.c_base_c\n"));
	Project.Package("E_OfBase", "asset E_OfBase /Game/C_Base.C_Base_C\n");
	Project.Package("F_OfDerived", "asset F_OfDerived /Game/D_Derived.D_Derived_C\n");
	Project.Package("G_Unknown", "asset G_Unknown /Script/Nowhere.Thing\n");
	Project.Package("H_Widget", "asset H_Widget /Script/Engine.WidgetBlueprint\n");
	Project.Package("I_OtherCase", "asset I_OtherCase /script/engine.DATAASSET\n");
	Project.ScanAll();

	const TCase<> Cases[] = {
		{"native, declared and generated, two levels deep", "/Script/Engine.DataAsset",
			"/Game/A_Plain.A_Plain /Game/B_Declared.B_Declared /Game/E_OfBase.E_OfBase /Game/F_OfDerived.F_OfDerived "
			"/Game/I_OtherCase.I_OtherCase"},
		{"from the middle", "/Script/Lantern.WeaponData",
			"/Game/B_Declared.B_Declared /Game/E_OfBase.E_OfBase /Game/F_OfDerived.F_OfDerived"},
		{"a generated class", "/Game/C_Base.C_Base_C", "/Game/E_OfBase.E_OfBase /Game/F_OfDerived.F_OfDerived"},
		{"Blueprints themselves, not what they generate", "/Script/Engine.Blueprint",
			"/Game/C_Base.C_Base /Game/D_Derived.D_Derived /Game/H_Widget.H_Widget"},
		{"a class that nothing declares keeps its assets", "/Script/Nowhere.Thing", "/Game/G_Unknown.G_Unknown"},
		{"a class without assets", "/Script/Engine.Pawn", ""},
		{"a class that nobody names", "/Script/Nowhere.Other", ""},
	};
	for (const auto& Case : Traced(Cases))
		EXPECT_EQ(RenderClass(Project.Registry, Case.Given), Case.Expected);

	EXPECT_EQ(RenderAncestors(Project.Registry, "/Game/D_Derived.D_Derived_C"),
		"/Game/C_Base.C_Base_C /Script/Lantern.WeaponData /Script/Engine.PrimaryDataAsset /Script/Engine.DataAsset");
	EXPECT_EQ(RenderAncestors(Project.Registry, "/Script/Nowhere.Other"), "");
}

TEST(RegistryClasses, TakesTheBestParentThatTheTagsName)
{
	const TCase<> Cases[] = {
		{"the native parent where the parent is missing",
			"tag GeneratedClass=/Game/B.B_C\ntag NativeParentClass=Class'/Script/Engine.Pawn'\n",
			"/Script/Engine.Pawn /Script/Engine.Actor"},
		{"the native parent where the parent is no class path",
			"tag GeneratedClass=/Game/B.B_C\ntag ParentClass=None\ntag NativeParentClass=/Script/Engine.Actor\n",
			"/Script/Engine.Actor"},
		{"any class word before the quotes",
			"tag GeneratedClass=BlueprintGeneratedClass'/Game/B.B_C'\ntag ParentClass=/Script/Engine.Actor\n",
			"/Script/Engine.Actor"},
		{"an unclosed quote names nothing", "tag GeneratedClass=Class'/Game/B.B_C\ntag ParentClass=/Script/Engine.Actor\n", ""},
		{"no generated class", "tag ParentClass=/Script/Engine.Actor\n", ""},
		{"no parent", "tag GeneratedClass=/Game/B.B_C\n", ""},
		{"itself is no parent",
			"tag GeneratedClass=/Game/B.B_C\ntag ParentClass=/Game/B.b_c\ntag NativeParentClass=/Script/Engine.Actor\n", ""},
		{"a parent that nobody declares", "tag GeneratedClass=/Game/B.B_C\ntag ParentClass=/Game/Gone.Gone_C\n",
			"/Game/Gone.Gone_C"},
		{"a sub-object is no class", "tag GeneratedClass=/Game/B.B_C\ntag ParentClass=/Game/A.A:B\n", ""},
	};
	for (const auto& Case : Traced(Cases))
	{
		FRegistryProject Project;
		Project.SetClassParents(EngineClasses);
		Project.Package("B", MakeBlueprint("B", Case.Given));
		Project.ScanAll();
		EXPECT_EQ(RenderAncestors(Project.Registry, "/Game/B.B_C"), Case.Expected);
	}
}

TEST(RegistryClasses, TagsCannotChangeDeclaredClasses)
{
	FRegistryProject Project;
	Project.SetClassParents(EngineClasses);
	Project.Package(
		"A", MakeBlueprint("A", "tag GeneratedClass=/Script/Engine.Pawn\ntag ParentClass=/Script/Engine.DataAsset\n"));
	Project.Package("B", MakeBlueprint("B", "tag GeneratedClass=/Game/X.X_C\ntag ParentClass=/Script/Engine.Pawn\n"));
	Project.Package("C", MakeBlueprint("C", "tag GeneratedClass=/Game/X.X_C\ntag ParentClass=/Script/Engine.DataAsset\n"));
	Project.ScanAll();
	EXPECT_EQ(RenderAncestors(Project.Registry, "/Script/Engine.Pawn"), "/Script/Engine.Actor");
	EXPECT_EQ(RenderAncestors(Project.Registry, "/Game/X.X_C"), "/Script/Engine.Pawn /Script/Engine.Actor")
		<< "the first package in registry order counts";
}

TEST(RegistryClasses, CirclesInTagsEnd)
{
	FRegistryProject Project;
	const auto AddBlueprint = [&Project](const std::string& Name, const std::string& Parent)
	{
		Project.Package(Name,
			MakeBlueprint(Name,
				"tag GeneratedClass=/Game/" + Name + "." + Name + "_C\ntag ParentClass=/Game/" + Parent + "." + Parent + "_C\n"));
		Project.Package("Of" + Name, "asset Of" + Name + " /Game/" + Name + "." + Name + "_C\n");
	};
	AddBlueprint("A", "B");
	AddBlueprint("B", "C");
	AddBlueprint("C", "A");
	AddBlueprint("Tail", "B");
	Project.ScanAll();
	for (const char* Member : {"/Game/A.A_C", "/Game/B.B_C", "/Game/C.C_C"})
		EXPECT_EQ(RenderAncestors(Project.Registry, Member), "") << Member;
	EXPECT_EQ(RenderAncestors(Project.Registry, "/Game/Tail.Tail_C"), "/Game/B.B_C") << "outside the circle";
	EXPECT_EQ(RenderClass(Project.Registry, "/Game/B.B_C"), "/Game/OfB.OfB /Game/OfTail.OfTail");
}

TEST(RegistryClasses, CountsAssetsByClass)
{
	FRegistryProject Project;
	Project.Package("A", "asset A /Script/Engine.Two\nasset B /Script/Engine.One filtered\nasset C /Script/Engine.Two\n");
	Project.SetClassParents({{"/Script/Engine.Two", "/Script/Engine.Zero"}});
	Project.ScanAll();
	std::string Rendered;
	for (const auto& [Class, Count] : Project.Registry.CountAssetsByClass())
		Rendered += Class.ToString().ToStdString() + "=" + std::to_string(Count) + " ";
	EXPECT_EQ(Rendered, "/Script/Engine.One=1 /Script/Engine.Two=2 ");
}
