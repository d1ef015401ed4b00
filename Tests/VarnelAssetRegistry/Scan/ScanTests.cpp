#include "RegistryFixture.h"
#include "Support/Cases.h"

#include <fstream>
#include <thread>

namespace
{
std::string RenderAll(const IAssetRegistry& Registry)
{
	TArray<FAssetData> Assets;
	Registry.GetAssets({}, Assets, false);
	return RenderAssets(Assets);
}

std::string MakeAssetLine(const std::string& Name)
{
	return "asset " + Name + " /Script/Engine.Thing\n";
}
}

TEST(RegistryScan, ListsAssetsInRegistryOrder)
{
	const TCase<std::vector<const char*>> Cases[] = {
		{"without regard to case", {"b", "A", "C"}, "/Game/A.x /Game/b.x /Game/C.x"},
		{"'_' stands before the letters, although capitals stand before '_' as bytes", {"BPX", "BP_Hero"},
			"/Game/BP_Hero.x /Game/BPX.x"},
		{"the whole long name counts, not folder by folder", {"A-B", "A/Z", "A0", "A"},
			"/Game/A.x /Game/A-B.x /Game/A/Z.x /Game/A0.x"},
		{"letters beyond ASCII fold too", {"\u00c4b", "\u00e4a"}, "/Game/\u00e4a.x /Game/\u00c4b.x"},
		{"a text before its continuation, across blocks of eight bytes", {"Abcdefgh1", "Abcdefgh", "abcdefgh/x", "Abcdefg"},
			"/Game/Abcdefg.x /Game/Abcdefgh.x /Game/abcdefgh/x.x /Game/Abcdefgh1.x"},
	};
	for (const auto& Case : Traced(Cases))
	{
		FRegistryProject Project;
		for (const char* Path : Case.Given)
			Project.Package(Path, MakeAssetLine("x"));
		Project.ScanAll();
		EXPECT_EQ(RenderAll(Project.Registry), Case.Expected);
	}
}

TEST(RegistryScan, KeepsFileOrderInsideOfAPackage)
{
	FRegistryProject Project;
	Project.Package("P", MakeAssetLine("Zebra") + MakeAssetLine("P") + MakeAssetLine("Ant"));
	Project.Package("Empty", "");
	const FRegistryScanReport Report = Project.ScanAll();
	EXPECT_EQ(RenderAll(Project.Registry), "/Game/P.Zebra /Game/P.P /Game/P.Ant");
	EXPECT_EQ(Project.Registry.FindPackage("/game/EMPTY").View(), "/Game/Empty") << "a package need not have assets";
	EXPECT_EQ(Report.NumSkipped, 0);
}

TEST(RegistryScan, ReportsFilesThatGiveNoPackage)
{
	FRegistryProject Project;
	Project.Package("Good", MakeAssetLine("Good"));
	Project.Package("Broken", "bad\n");
	Project.Package("Dotted.Name", MakeAssetLine("x"));
	Project.Package("Folder.d/Inside", MakeAssetLine("x"));
	Project.Package("Ill\xFF"
					"formed",
		MakeAssetLine("x"));
	Project.Folder.Write("Content/.line", MakeAssetLine("x"));
	Project.Package("Huge", std::string((1 << 20) + 1, '\n'));
	Project.Folder.Write("Content/Other.txt", "not ours");
	const FRegistryScanReport Report = Project.ScanAll();
	EXPECT_EQ(Project.GetFaults(),
		"Content/.line [bad-package-name]\n"
		"Content/Broken.line [bad-line]\n"
		"Content/Dotted.Name.line [bad-package-name]\n"
		"Content/Folder.d/Inside.line [bad-package-name]\n"
		"Content/Huge.line [too-large]\n"
		"Content/Ill\uFFFD"
		"formed.line [bad-package-name]\n");
	EXPECT_EQ(RenderAll(Project.Registry), "/Game/Good.Good");
	EXPECT_EQ(Report.NumFiles, 7);
	EXPECT_EQ(Report.NumParsed, 2);
	EXPECT_EQ(Report.NumSkipped, 6);
}

TEST(RegistryScan, ReportsWhatItMayNotRead)
{
	if (geteuid() == 0)
		GTEST_SKIP() << "everything may be read as root";
	FRegistryProject Project;
	Project.Package("Locked", MakeAssetLine("x"));
	Project.Package("Vault/Inside", MakeAssetLine("x"));
	Project.Folder.SetMode("Content/Locked.line", 0);
	Project.Folder.SetMode("Content/Vault", 0);
	Project.ScanAll();
	Project.Folder.SetMode("Content/Vault", 0700);
	EXPECT_EQ(Project.GetFaults(), "Content/Locked.line [unreadable-file]\nContent/Vault [unreadable-folder]\n");
}

TEST(RegistryScan, TheFirstFileInByteOrderKeepsAName)
{
	const struct
	{
		const char* Why;
		std::vector<const char*> Files;
		const char* Expected;
		const char* Faults;
	} Cases[] = {
		{"file names", {"Content/a.line", "Content/A.line"}, "/Game/A.x", "Content/a.line [duplicate-package]\n"},
		{"folder names", {"Content/ui/A.line", "Content/UI/A.line"}, "/Game/UI/A.x", "Content/ui/A.line [duplicate-package]\n"},
		{"extensions", {"Content/A.line", "Content/A.LINE"}, "/Game/A.x", "Content/A.line [duplicate-package]\n"},
		{"three of one name", {"Content/aa.line", "Content/aA.line", "Content/AA.line"}, "/Game/AA.x",
			"Content/aA.line [duplicate-package]\nContent/aa.line [duplicate-package]\n"},
		{"roots of one name: the folder decides, not the order of the roots", {"More/A.line", "Content/a.line"}, "/Game/a.x",
			"More/A.line [duplicate-package]\n"},
	};
	for (const auto& Case : Traced(Cases))
	{
		FRegistryProject Project;
		for (const char* File : Case.Files)
			Project.Folder.Write(File, MakeAssetLine("x"));
		FRegistryScanOptions Options = Project.MakeOptions();
		Options.Cache = ERegistryCache::Ignore;
		Options.Roots = {{"/Game", Project.Folder.Path("More/")}, {"/Game", Project.Folder.Path("Content/")}};
		Project.Scan(Options);
		EXPECT_EQ(RenderAll(Project.Registry), Case.Expected);
		EXPECT_EQ(Project.GetFaults(), Case.Faults);
	}
}

TEST(RegistryScan, ReadsSeveralRoots)
{
	FRegistryProject Project;
	const FScratchFolder Outside;
	Project.Package("A", MakeAssetLine("A"));
	Project.Folder.Write("Plugins/Deep/Lamp/Content/L.line", MakeAssetLine("L"));
	Project.Folder.Write("Content/Nested/N.line", MakeAssetLine("N"));
	Outside.Write("E.line", MakeAssetLine("E"));
	Outside.Write("Broken.line", "bad");
	Project.ExtraRoots = {{"/Lamp", Project.Folder.Path("Plugins/Deep/Lamp/Content")}, {"/Engine", Outside.Path() + "/"},
		{"/Nested", Project.Folder.Path("Content/Nested/")}, {"/Gone", Project.Folder.Path("Nowhere/")}};
	Project.ScanAll();
	EXPECT_EQ(RenderAll(Project.Registry), "/Engine/E.E /Game/A.A /Lamp/L.L /Nested/N.N")
		<< "a folder that is a root belongs to no other";
	EXPECT_EQ(Project.GetFaults(), Outside.GetRoot() + "/Broken.line [bad-line]\n");

	const IPackageSource* Source = nullptr;
	EXPECT_EQ(Project.Registry.GetPackageFileName("/lamp/l", Source).ToStdString(),
		Project.Folder.GetRoot() + "/Plugins/Deep/Lamp/Content/L.line");
	EXPECT_EQ(Source, &Project.Source);
	EXPECT_EQ(Project.Registry.GetPackageFileName("/Engine/E", Source).ToStdString(), Outside.GetRoot() + "/E.line");
	EXPECT_EQ(Project.Registry.GetPackageFileName("/Game/Missing", Source).ToStdString(), "");
	EXPECT_EQ(Source, nullptr);
}

TEST(RegistryScan, FollowsNoLinks)
{
	FRegistryProject Project;
	const FScratchFolder Outside;
	Outside.Write("Secret.line", MakeAssetLine("Secret"));
	Project.Package("A", MakeAssetLine("A"));
	Project.Folder.Link(Outside.GetRoot(), "Content/Linked");
	Project.Folder.Link(Outside.GetRoot() + "/Secret.line", "Content/File.line");
	Project.Folder.Pipe("Content/Pipe.line");
	Project.ScanAll();
	EXPECT_EQ(RenderAll(Project.Registry), "/Game/A.A");
}

TEST(RegistryScan, DoesNotDependOnThreads)
{
	FRegistryProject Project;
	for (int32 Index = 0; Index < 500; ++Index)
	{
		const std::string Number = std::to_string(Index);
		Project.Package("F" + std::to_string(Index % 7) + "/P" + Number,
			"asset P" + Number + " /Script/Engine.C" + std::to_string(Index % 13) + "\ntag K" + std::to_string(Index % 5) + "=V" +
				std::to_string(Index % 17) + "\nneeds /Game/F" + std::to_string((Index + 1) % 7) + "/P" +
				std::to_string(Index + 1) + "\nneeds /Game/gone" + std::to_string(Index % 3) + "\n");
	}
	Project.ScanAll(1);
	const std::string Expected = Project.Dump();
	for (const int32 NumThreads : {2, 3, 8})
	{
		Project.ScanAll(NumThreads);
		EXPECT_EQ(Project.Dump(), Expected) << NumThreads << " threads";
	}
}

/** More than are read at a time, and one that alone is more than that. */
TEST(RegistryScan, ReadsLargeFiles)
{
	FRegistryProject Project;
	const auto Write = [&Project](const std::string& Name, std::size_t NumBytes)
	{
		Project.Folder.Write("Content/" + Name + ".vasset",
			R"({"varnel_package": 1, "assets": [{"name": ")" + Name + R"(", "class": "/Script/Engine.World"}], "dependencies": [],
			"blueprint_index": [], "objects": [)" +
				std::string(NumBytes, ' ') + "]}");
	};
	for (const char* Name : {"A", "B", "C", "D", "E", "F", "G", "H"})
		Write(Name, 5 << 20);
	Write("Huge", 20 << 20);
	Write("Small", 10);
	FRegistryScanOptions Options = Project.MakeOptions();
	Options.Sources = {&GetVassetPackageSource()};
	Options.NumThreads = 4;
	Project.Scan(Options);
	EXPECT_EQ(RenderAll(Project.Registry),
		"/Game/A.A /Game/B.B /Game/C.C /Game/D.D /Game/E.E /Game/F.F /Game/G.G /Game/H.H /Game/Huge.Huge /Game/Small.Small");
	EXPECT_EQ(Project.GetFaults(), "");
}

TEST(RegistryScan, AStoppedScanChangesNothing)
{
	FRegistryProject Project;
	Project.Package("A", MakeAssetLine("A"));
	Project.ScanAll();
	Project.Package("B", MakeAssetLine("B"));
	std::stop_source Stop;
	Stop.request_stop();
	FRegistryScanOptions Options = Project.MakeOptions();
	Options.Stop = Stop.get_token();
	FRegistryScanReport Report;
	EXPECT_FALSE(Project.Registry.Scan(Options, Report));
	EXPECT_EQ(RenderAll(Project.Registry), "/Game/A.A");
}

TEST(RegistryScan, CountsItsProgress)
{
	FRegistryProject Project;
	for (const char* Path : {"A", "B", "b", "Not.Good"})
		Project.Package(Path, MakeAssetLine("x"));
	std::atomic<int32> NumDone = 0;
	std::atomic<int32> NumTotal = 0;
	FRegistryScanOptions Options = Project.MakeOptions();
	Options.NumDone = &NumDone;
	Options.NumTotal = &NumTotal;
	Project.Scan(Options);
	EXPECT_EQ(NumTotal, 4);
	EXPECT_EQ(NumDone, 4);
}

TEST(RegistryScan, QueriesSeeOneStateWhileItIsReplaced)
{
	FRegistryProject Project;
	Project.Package("A", MakeAssetLine("A") + "tag Version=1\nneeds /Game/B\n");
	Project.ScanAll();
	const IAssetRegistry& Registry = Project.Registry;
	TArray<FAssetData> Kept;
	Registry.GetAssets({}, Kept, false);
	std::atomic<bool> bDone = false;
	std::vector<std::jthread> Readers;
	for (int32 Reader = 0; Reader < 2; ++Reader)
		Readers.emplace_back(
			[&]
			{
				while (!bDone)
				{
					TArray<FPackageDependency> Found;
					Registry.GetDependencies("/Game/A", Found);
					const FString Path = Registry.GetAssetByObjectPath(FSoftObjectPath("/Game/A.A")).GetObjectPathString();
					EXPECT_EQ(Found.Num(), 1);
					EXPECT_TRUE(Path.Equals("/Game/A.A"));
				}
			});
	for (int32 Run = 0; Run < 20; ++Run)
		Project.ScanAll();
	bDone = true;
	Readers.clear();
	FString Version;
	EXPECT_TRUE(Kept[0].GetTagValue("version", Version)) << "records outlive the state that they come from";
	EXPECT_EQ(Version.ToStdString(), "1");
}

TEST(RegistryScan, ReadsPackagesOfTheProjectsOwnFormat)
{
	FRegistryProject Project;
	Project.Folder.Write("Content/AI/BT_Guard.vasset", R"({"varnel_package": 1,
		"assets": [{"name": "BT_Guard", "class": "/Script/Engine.BehaviorTree", "tags": {"BlackboardAsset": "/Game/AI/BB_Guard.BB_Guard"}}],
		"dependencies": [{"package": "/Game/AI/BB_Guard"}, {"package": "/Script/Engine", "hard": false, "game": false}]})");
	Project.Folder.Write("Content/Broken.vasset", "{");
	FRegistryScanOptions Options = Project.MakeOptions();
	Options.Sources = {&Project.Source, &GetVassetPackageSource()};
	Project.Package("Line", MakeAssetLine("Line"));
	Project.Scan(Options);
	EXPECT_EQ(RenderAll(Project.Registry), "/Game/AI/BT_Guard.BT_Guard /Game/Line.Line");
	EXPECT_EQ(
		RenderDependencies(Project.Registry, "/Game/AI/BT_Guard"), "/Game/AI/BB_Guard(hard game) /Script/Engine(soft editor)");
	EXPECT_EQ(Project.GetFaults(), "Content/Broken.vasset [json-syntax]\n");
	const IPackageSource* Source = nullptr;
	Project.Registry.GetPackageFileName("/Game/AI/BT_Guard", Source);
	EXPECT_EQ(Source, &GetVassetPackageSource());
}
