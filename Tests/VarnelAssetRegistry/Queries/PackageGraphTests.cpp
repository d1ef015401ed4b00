#include "RegistryFixture.h"
#include "Support/Cases.h"

TEST(PackageGraph, IsKnownInBothDirections)
{
	FRegistryProject Project;
	Project.Package("A", "needs /Game/C\nneeds /Game/B soft\nneeds /Game/A editor\nneeds /Game/Gone soft editor\n");
	Project.Package("B", "needs /game/a\nneeds /Script/Engine\n");
	Project.Package("C", "needs /Game/C\nneeds /Game/gone\nneeds /SCRIPT/Engine soft\n");
	Project.Package("Alone", "");
	Project.ScanAll();
	const struct
	{
		const char* Why;
		const char* Package;
		const char* Dependencies;
		const char* Referencers;
	} Cases[] = {
		{"file order; references to itself stay", "/Game/A",
			"/Game/C(hard game) /Game/B(soft game) /Game/A(hard editor) /Game/Gone(soft editor)",
			"/Game/A(hard editor) /Game/B(hard game)"},
		{"a circle; neighbours are spelled as their files are", "/game/B", "/Game/A(hard game) /Script/Engine(hard game)",
			"/Game/A(soft game)"},
		{"referencers come in registry order", "/Game/C", "/Game/C(hard game) /Game/Gone(hard game) /Script/Engine(soft game)",
			"/Game/A(hard game) /Game/C(hard game)"},
		{"a package that is missing has referencers", "/Game/GONE", "", "/Game/A(soft editor) /Game/C(hard game)"},
		{"so has a script package, however it is spelled", "/Script/Engine", "", "/Game/B(hard game) /Game/C(soft game)"},
		{"no neighbours", "/Game/Alone", "", ""},
		{"never heard of", "/Game/Other", "unknown", "unknown"},
	};
	for (const auto& Case : Traced(Cases))
	{
		EXPECT_EQ(RenderDependencies(Project.Registry, Case.Package), Case.Dependencies);
		EXPECT_EQ(RenderReferencers(Project.Registry, Case.Package), Case.Referencers);
	}
	EXPECT_TRUE(Project.Registry.FindPackage("/Game/Gone").IsNone()) << "only what has a file is a package";
	EXPECT_EQ(Project.Registry.NumDependencies(), 9);
}

TEST(PackageGraph, AnswersAreAppended)
{
	FRegistryProject Project;
	Project.Package("A", "needs /Game/B\n");
	Project.ScanAll();
	TArray<FPackageDependency> Found;
	Project.Registry.GetDependencies("/Game/A", Found);
	Project.Registry.GetReferencers("/Game/B", Found);
	ASSERT_EQ(Found.Num(), 2);
	EXPECT_EQ(Found[0].PackageName.View(), "/Game/B");
	EXPECT_EQ(Found[1].PackageName.View(), "/Game/A");
}
