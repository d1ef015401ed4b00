#include "EngineFixture.h"

#include "CoreObject/Declarations/ScriptModule.h"

#include <filesystem>
#include <fstream>
#include <sstream>

namespace
{
namespace Files = std::filesystem;

std::string ReadFile(const Files::path& Path)
{
	std::ifstream Stream(Path, std::ios::binary);
	std::ostringstream Text;
	Text << Stream.rdbuf();
	return Text.str();
}

/** The sample project, its packages as they lie on disk. */
class SampleProject : public FEngineFixture
{
protected:
	SampleProject()
	{
		AddFolder(Files::path(SAMPLE_PROJECT) / "Content", "/Game");
		for (const auto& Plugin : Files::directory_iterator(Files::path(SAMPLE_PROJECT) / "Plugins"))
			AddFolder(Plugin.path() / "Content", "/" + Plugin.path().filename().string());
		TArray<FScriptModuleFile> Modules;
		for (const auto& Module : Files::directory_iterator(Files::path(SAMPLE_PROJECT) / "Script"))
			Modules.Add({Module.path().stem().string(), "Script/" + Module.path().filename().string(), ReadFile(Module.path())});
		DeclareScriptModules(Modules, Faults.get());
	}

	void AddFolder(const Files::path& Folder, const std::string& Root)
	{
		for (const auto& Entry : Files::recursive_directory_iterator(Folder))
			if (Entry.path().extension() == ".vasset")
				FEngineFixture::Files[Root + "/" + Files::relative(Entry.path(), Folder).replace_extension().generic_string()] =
					ReadFile(Entry.path());
	}
};
}

TEST_F(SampleProject, LoadsWithoutAFault)
{
	int32 NumObjects = 0;
	for (const auto& [Name, Text] : FEngineFixture::Files)
	{
		const UPackage* const Package = LoadPackage(FName(FStringView(Name)));
		ASSERT_TRUE(Package) << Name;
		TArray<UObject*> Objects;
		GetObjectsWithOuter(Package, Objects, true);
		NumObjects += Objects.Num();
		EXPECT_GT(Objects.Num(), 0) << Name;
	}
	EXPECT_GT(NumObjects, 200);
	EXPECT_EQ(TakeFaults(), "");
}

TEST_F(SampleProject, CanBeLoadedInAnyOrderAndAgain)
{
	for (int32 Round = 0; Round < 2; ++Round)
	{
		for (auto File = FEngineFixture::Files.rbegin(); File != FEngineFixture::Files.rend(); ++File)
			EXPECT_TRUE(LoadPackage(FName(FStringView(File->first))));
		EXPECT_EQ(TakeFaults(), "");
		for (const auto& [Name, Text] : FEngineFixture::Files)
			UnloadPackage(FindPackage(FName(FStringView(Name))));
		UnloadAllLoadedPackages();
	}
}
