#include "Project/OpenProject.h"
#include "Project/PackageMemory.h"
#include "Project/Project.h"
#include "Project/ProjectRegistry.h"

#include "Core/Threads/Tasks.h"
#include "CoreObject/Objects/Object.h"
#include "Project/HeadlessEngine.h"
#include "Quellar/Families/BlueprintFindUtils.h"
#include "Support/Cases.h"
#include "Support/PackageText.h"
#include "Support/ScratchFolder.h"

#include <functional>

namespace
{
/** A project that is open and watched, and whose files change. */
class FLiving
{
public:
	explicit FLiving(EProjectWatch Watch, std::initializer_list<const char*> Preload = {})
	{
		Disk.Write("Living.uproject", "{}");
		Disk.Write("Config/DefaultGame.ini", "");
		Disk.Write("Script/Types.vscript", R"({"varnel_script": 1, "classes": []})");
		Disk.Write("Plugins/Extra/Extra.uplugin", "{}");
		Disk.Write("Notes/Read.md", "text");
		for (const char* Package : {"FX/NS_A", "FX/NS_B", "Other/NS_C"})
			WritePackage(Package);
		FProjectOptions Options;
		Options.Path = Disk.Path();
		Options.Watch = Watch;
		Options.WatchInterval = {};
		for (const char* Path : Preload)
			Options.Preload.Add(Path);
		FDiagnosticSink Faults;
		const FOpening Opening = OpenProject(Options, Faults);
		EXPECT_TRUE(Opening.bOpened) << *Opening.Error;
	}

	void WritePackage(const std::string& Path) const
	{
		const std::string Name = Path.substr(Path.rfind('/') + 1);
		Disk.Write("Content/" + Path + ".vasset",
			R"({"varnel_package":1,"assets":[{"name":")" + Name +
				R"(","class":"/Script/Engine.NiagaraSystem"}],"objects":[{"path":")" + Name +
				R"(","class":"/Script/Engine.NiagaraSystem"}]})");
	}
	bool Refresh()
	{
		FDiagnosticSink Faults;
		return FProject::Refresh(Faults);
	}
	/** "FX/NS_A FX/NS_B": packages in memory, by the registry's list. */
	static std::string ListLoaded()
	{
		std::string Text;
		for (const FName Package : ListProjectPackages())
			if (FindPackage(Package))
				Text += (Text.empty() ? "" : " ") + Package.ToString().ToStdString().substr(6);
		return Text;
	}

	const FScratchFolder Disk;
	const FHeadlessEngine Engine;
};

constexpr EProjectWatch Watches[] = {EProjectWatch::Events, EProjectWatch::Times};
}

TEST(LivingProject, ReadsAgainWhatAChangeConcerns)
{
	using FDisk = FScratchFolder;
	const TCase<std::function<void(const FDisk&)>, bool> Cases[] = {
		{"nothing", [](const FDisk&) {}, false},
		{"a text", [](const FDisk& Disk) { Disk.Write("Notes/Read.md", "other"); }, false},
		{"a text beside packages", [](const FDisk& Disk) { Disk.Write("Content/FX/New.txt", "x"); }, false},
		{"what the program writes", [](const FDisk& Disk) { Disk.Write("Intermediate/x.vasset", "x"); }, false},
		{"a package outside of every root", [](const FDisk& Disk) { Disk.Write("Notes/x.vasset", "x"); }, false},
		{"a package", [](const FDisk& Disk) { Disk.Remove("Content/FX/NS_A.vasset"); }, true},
		{"a package of a plugin", [](const FDisk& Disk) { Disk.Write("Plugins/Extra/Content/x.vasset", "x"); }, true},
		{"a folder", [](const FDisk& Disk) { Disk.Rename("Content/FX", "Content/FY"); }, true},
		{"settings", [](const FDisk& Disk) { Disk.Write("Config/DefaultGame.ini", ";"); }, true},
		{"no settings", [](const FDisk& Disk) { Disk.Remove("Config"); }, true},
		{"script modules", [](const FDisk& Disk) { Disk.Write("Script/More.vscript", "{}"); }, true},
		{"a plugin less", [](const FDisk& Disk) { Disk.Rename("Plugins/Extra", "Extra"); }, true},
		{"the descriptor", [](const FDisk& Disk) { Disk.Write("Living.uproject", R"({"name": "Other"})"); }, true},
	};
	for (const EProjectWatch Watch : Watches)
	{
		for (const auto& [Why, Change, bRead] : Traced(Cases))
		{
			if (!bRead && Watch == EProjectWatch::Times) // files are too young for their times to tell
				continue;
			FLiving Project(Watch);
			Change(Project.Disk);
			EXPECT_EQ(Project.Refresh(), bRead) << *FProject::DescribeWatch();
			EXPECT_EQ(FProject::GetTrouble(), "");
		}
	}
}

TEST(LivingProject, KeepsInMemoryWhatWasAskedFor)
{
	for (const EProjectWatch Watch : Watches)
	{
		FLiving Project(Watch, {"/Game/FX", "/Game/Other/NS_C"});
		PackageMemory::FLoaded Loaded;
		FString Error;
		int32 NumUnloaded = 0;
		const TCase<std::function<void()>> Cases[] = {
			{"as it was opened", [] {}, "FX/NS_A FX/NS_B Other/NS_C"},
			{"a new one in a folder that was asked for", [&] { Project.WritePackage("FX/NS_N"); },
				"FX/NS_A FX/NS_B FX/NS_N Other/NS_C"},
			{"changed, it is loaded again", [&] { Project.WritePackage("FX/NS_A"); }, "FX/NS_A FX/NS_B FX/NS_N Other/NS_C"},
			{"half written", [&] { Project.Disk.Write("Content/FX/NS_A.vasset", R"({"varnel_package":1,)"); },
				"FX/NS_B FX/NS_N Other/NS_C"},
			{"completed", [&] { Project.WritePackage("FX/NS_A"); }, "FX/NS_A FX/NS_B FX/NS_N Other/NS_C"},
			{"unloaded by hand", [&] { PackageMemory::Unload("/Game/FX/NS_B", NumUnloaded, Error); },
				"FX/NS_A FX/NS_N Other/NS_C"},
			{"and still after a change", [&] { Project.WritePackage("FX/NS_B"); }, "FX/NS_A FX/NS_N Other/NS_C"},
			{"all gone", [&] { Project.Disk.Remove("Content/Other"); }, "FX/NS_A FX/NS_N"},
			{"and there again", [&] { Project.WritePackage("Other/NS_C"); }, "FX/NS_A FX/NS_N Other/NS_C"},
			{"the whole project opened again", [&] { Project.Disk.Write("Living.uproject", "{ }"); },
				"FX/NS_A FX/NS_N Other/NS_C"},
			{"without a descriptor all stays", [&] { Project.Disk.Rename("Living.uproject", "away"); },
				"FX/NS_A FX/NS_N Other/NS_C"},
		};
		for (const auto& [Why, Do, Expected] : Traced(Cases))
		{
			Do();
			Project.Refresh();
			EXPECT_EQ(FLiving::ListLoaded(), Expected);
		}
		EXPECT_TRUE(FProject::GetTrouble().StartsWith("no *.uproject in ")) << *FProject::GetTrouble();
		EXPECT_TRUE(FProject::IsOpen());
		Project.Disk.Rename("away", "Living.uproject");
		EXPECT_TRUE(Project.Refresh());
		EXPECT_EQ(FProject::GetTrouble(), "");
		EXPECT_EQ(PackageMemory::Num(), 3);
	}
}

TEST(LivingProject, LetsGoOfWhatWasFoundBeforeAChange)
{
	FLiving Project(EProjectWatch::Events);
	Project.Disk.Write("Content/BP_Door.vasset",
		R"({"varnel_package":1,"assets":[{"name":"BP_Door","class":"/Script/Engine.Blueprint"}],)"
		R"("blueprint_index":[{"category":"Var","text":"Health"}]})");
	Project.Refresh();
	FBlueprintFindUtils& Utils = FBlueprintFindUtils::Get();
	bool bAnswered = false;
	Utils.MakeSearchQuery("health", {}, [&](TArray<TSharedPtr<FImaginaryFiBData>>&) { bAnswered = true; });
	ASSERT_TRUE(FGameThread::Get().RunUntil([&] { return bAnswered; }, std::chrono::seconds(60)));
	ASSERT_EQ(Utils.GetItemsFound().Num(), 1);
	const std::weak_ptr Found = Utils.GetItemsFound()[0];
	Project.WritePackage("FX/NS_N");
	Project.Refresh();
	EXPECT_TRUE(Found.expired()) << "it holds the registry's former image";
}
