#include "Project/PackageMemory.h"
#include "Project/ProjectRegistry.h"

#include "CoreObject/Objects/Object.h"
#include "Support/TestProject.h"

namespace
{
/** The packages below /Game that are in memory, by short name. */
std::string InMemory()
{
	std::string Text;
	for (const FName Package : ListProjectPackages())
		if (FindPackage(Package))
			Text += (Text.empty() ? "" : " ") + Package.ToString().ToStdString().substr(6);
	return Text;
}

void Describe(FTestProject& Project)
{
	Project.NiagaraSystem("/Game/FX/NS_A");
	Project.NiagaraSystem("/Game/FX/Fire/NS_B");
	Project.NiagaraSystem("/Game/FXtra/NS_C");
	Project.NiagaraSystem("/Game/FX/Fire"); // a package beside a folder of its name
	Project.Open();
}
}

TEST(PackageMemory, LoadsWhatAPathNames)
{
	FTestProject Project;
	Describe(Project);
	const struct
	{
		const char* Path;
		const char* Expected;
	} Cases[] = {
		{"/Game/FX/NS_A", "FX/NS_A"},
		{"/game/fx/ns_a.ns_a", "FX/NS_A"},
		{"Content/FX/NS_A.vasset", "FX/NS_A"},
		{"/Game/FX", "FX/Fire FX/Fire/NS_B FX/NS_A"},
		{"/Game/FX/", "FX/Fire FX/Fire/NS_B FX/NS_A"},
		{"/Game", "FX/Fire FX/Fire/NS_B FX/NS_A FXtra/NS_C"},
		{"/Game/FX/Fire", "FX/Fire"},
		{"/Game/FX/Fire/", "FX/Fire/NS_B"},
	};
	for (const auto& Case : Cases)
	{
		PackageMemory::FLoaded Loaded;
		FString Error;
		EXPECT_TRUE(PackageMemory::Load(Case.Path, Loaded, Error)) << Case.Path << *Error;
		EXPECT_EQ(InMemory(), Case.Expected) << Case.Path;
		EXPECT_EQ(PackageMemory::Num(), Loaded.NumPackages);
		int32 NumUnloaded = 0;
		EXPECT_TRUE(PackageMemory::Unload(Case.Path, NumUnloaded, Error));
		EXPECT_EQ(NumUnloaded, Loaded.NumPackages);
		EXPECT_EQ(InMemory(), "") << Case.Path;
		EXPECT_EQ(PackageMemory::Num(), 0);
	}
}

TEST(PackageMemory, SaysWhatIsNotThere)
{
	FTestProject Project;
	Project.File("Content/FX/NS_Cut.vasset", R"({"varnel_package": 1, "assets": [{"name": "NS_Cut", "class":
		"/Script/Engine.NiagaraSystem"}], "dependencies": [], "blueprint_index": [], "objects": [)");
	Describe(Project);
	PackageMemory::FLoaded Loaded;
	FString Error;
	for (const char* Path :
		{"", "/", "/Game/F", "/Game/FX/NS_Gone", "/Game/FX/NS_A.NS_B", "FX/NS_A", "/Script/Engine", "..", "/Game/../Game"})
	{
		EXPECT_FALSE(PackageMemory::Load(Path, Loaded, Error)) << Path;
		EXPECT_NE(*Error, std::string()) << Path;
	}
	Loaded = {};
	EXPECT_TRUE(PackageMemory::Load("/Game/FX", Loaded, Error)) << "a faulty package does not keep out the others";
	EXPECT_EQ(Loaded.NumPackages, 4);
	EXPECT_EQ(Loaded.NumFailed, 1);
	EXPECT_EQ(PackageMemory::Num(), 3);
	int32 NumUnloaded = 0;
	EXPECT_TRUE(PackageMemory::Unload("/Game/FX/Fire/", NumUnloaded, Error));
	EXPECT_EQ(InMemory(), "FX/Fire FX/NS_A") << "the others stay";
	EXPECT_FALSE(PackageMemory::Unload("/Game/F", NumUnloaded, Error));
	std::stop_source Stopped;
	Stopped.request_stop();
	EXPECT_FALSE(PackageMemory::Load("/Game/FX", Loaded, Error, nullptr, Stopped.get_token()));
}
