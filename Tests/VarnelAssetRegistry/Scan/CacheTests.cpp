#include "RegistryFixture.h"
#include "Support/Cases.h"

#include <fcntl.h>
#include <functional>
#include <sys/stat.h>

namespace
{
struct stat GetStatus(const FScratchFolder& Folder, const std::string& File)
{
	struct stat Status = {};
	EXPECT_EQ(stat(*Folder.Path(File), &Status), 0);
	return Status;
}

void SetModified(const FScratchFolder& Folder, const std::string& File, const timespec& Time)
{
	const timespec Times[] = {Time, Time};
	EXPECT_EQ(utimensat(AT_FDCWD, *Folder.Path(File), Times, 0), 0);
}

/** Another content of the same size and modification time, in the same file: only the change time tells. */
void RewriteInPlace(const FScratchFolder& Folder, const std::string& File, const std::string& Bytes)
{
	const struct stat Before = GetStatus(Folder, File);
	struct stat Now = Before;
	while (Now.st_ctim.tv_sec == Before.st_ctim.tv_sec &&
		Now.st_ctim.tv_nsec == Before.st_ctim.tv_nsec) // clocks of file systems tick slowly
	{
		Folder.Write(File, Bytes);
		SetModified(Folder, File, Before.st_mtim);
		Now = GetStatus(Folder, File);
	}
	EXPECT_EQ(Now.st_ino, Before.st_ino);
	EXPECT_EQ(Now.st_size, Before.st_size);
}

/** The same by a new file that takes the name, as editors write. */
void ReplaceByRename(const FScratchFolder& Folder, const std::string& File, const std::string& Bytes)
{
	const struct stat Before = GetStatus(Folder, File);
	Folder.Write("Temporary", Bytes);
	SetModified(Folder, "Temporary", Before.st_mtim);
	Folder.Rename("Temporary", File);
	EXPECT_EQ(GetStatus(Folder, File).st_size, Before.st_size);
}

const std::string Blueprint =
	"asset BP /Script/Engine.Blueprint\ntag GeneratedClass=/Game/BP.BP_C\ntag ParentClass=/Script/Engine.Actor\n"
	"needs /Game/A soft\nneeds /Script/Engine\nentry 0 Var|Health|Hit points\nentry 1 Pin|Value|\n";

void FillProject(const FRegistryProject& Project)
{
	Project.Package("A", "asset A /Script/Engine.Thing\nneeds /Game/B\n");
	Project.Package("B", "asset B /Game/BP.BP_C\nneeds /Game/a\nneeds /Game/Gone\nodd 7 1 strange\n");
	Project.Package("BP", Blueprint);
	Project.Package(
		"UI/C", "asset C /script/engine.THING filtered\nasset In /Script/Engine.Thing in=/Game/UI/C.C\nneeds /game/GONE\n");
	Project.Package("UI/D", "asset D /Script/Engine.Thing\n");
}
}

TEST(RegistryCache, NothingIsReadTheSecondTime)
{
	FRegistryProject Project;
	FillProject(Project);
	const FRegistryScanReport First = Project.ScanCached();
	EXPECT_TRUE(First.bCacheWritten);
	EXPECT_FALSE(First.bCacheUsed);
	EXPECT_EQ(First.CacheState.View(), "created");
	EXPECT_EQ(First.NumParsed, 5);
	const std::string Expected = Project.Dump();

	const FRegistryScanReport Second = Project.ScanCached();
	EXPECT_FALSE(Second.bCacheWritten);
	EXPECT_TRUE(Second.bCacheUsed);
	EXPECT_EQ(Second.CacheState.View(), "up to date");
	EXPECT_EQ(Second.CacheFile, First.CacheFile);
	EXPECT_EQ(Second.NumParsed, 0);
	EXPECT_EQ(Project.Source.NumRead, 5);
	EXPECT_EQ(Project.Dump(), Expected);
}

TEST(RegistryCache, ReadsOnlyWhatChanged)
{
	const TCase<std::function<void(FRegistryProject&)>, int32> Cases[] = {
		{"another size", [](FRegistryProject& Project) { Project.Package("UI/D", "asset Renamed /Script/Engine.Other\n"); }, 1},
		{"another content in place, of the same size and time",
			[](FRegistryProject& Project)
			{ RewriteInPlace(Project.Folder, "Content/UI/D.line", "asset E /Script/Engine.Thing\n"); },
			1},
		{"another file of the same size and time",
			[](FRegistryProject& Project)
			{ ReplaceByRename(Project.Folder, "Content/UI/D.line", "asset E /Script/Engine.Thing\n"); },
			1},
		{"a new file", [](FRegistryProject& Project) { Project.Package("UI/A", "asset A /Game/BP.BP_C\nneeds /Game/UI/D\n"); },
			1},
		{"a new file in front of all", [](FRegistryProject& Project) { Project.Package("0", "needs /Game/A\n"); }, 1},
		{"a removed file", [](FRegistryProject& Project) { Project.Remove("BP"); }, 0},
		{"a removed file whose name others spell differently", [](FRegistryProject& Project) { Project.Remove("A"); }, 0},
		{"a renamed file", [](FRegistryProject& Project) { Project.Folder.Rename("Content/A.line", "Content/Z.line"); }, 1},
		{"a name in other case", [](FRegistryProject& Project) { Project.Folder.Rename("Content/A.line", "Content/a.line"); }, 1},
		{"a renamed folder", [](FRegistryProject& Project) { Project.Folder.Rename("Content/UI", "Content/Menu"); }, 1},
		{"a new spelling of a class, first in registry order",
			[](FRegistryProject& Project) { Project.Package("0", "asset 0 /SCRIPT/Engine.Thing\n"); }, 1},
		{"a file that stops being a package", [](FRegistryProject& Project) { Project.Package("UI/D", "bad\n"); }, 1},
		{"a file whose name is taken",
			[](FRegistryProject& Project) { Project.Package("UI/d", "asset d2 /Script/Engine.Thing\n"); }, 0},
		{"a file that takes the name of another",
			[](FRegistryProject& Project) { Project.Folder.Write("Content/UI/D.LINE", "asset D2 /Script/Engine.Thing\n"); }, 1},
		{"a file that takes a name and is no package",
			[](FRegistryProject& Project) { Project.Folder.Write("Content/UI/D.LINE", "bad\n"); }, 1},
		{"all at once",
			[](FRegistryProject& Project)
			{
				Project.Package("New", "needs /Game/BP\n");
				Project.Remove("BP");
				Project.Package("UI/D", "asset Other /Script/Engine.Thing\n");
			},
			2},
	};
	// Two packages write a class or a dependency in other case than the registry does. They are read with every change, as it may
	// change what the registry writes.
	constexpr int32 NumRespelled = 2;
	for (const auto& Case : Traced(Cases))
	{
		FRegistryProject Project;
		FillProject(Project);
		Project.ScanCached();
		Case.Given(Project);
		EXPECT_EQ(Project.ScanCached().NumParsed, Case.Expected + NumRespelled);
		const std::string Updated = Project.Dump();
		const std::string Faults = Project.GetFaults();
		Project.ScanAll();
		EXPECT_EQ(Updated, Project.Dump()) << "an updated registry equals one that was read anew";
		EXPECT_EQ(Faults, Project.GetFaults());
		const FRegistryScanReport Again = Project.ScanCached();
		EXPECT_FALSE(Again.bCacheWritten) << Again.CacheState.View();
		EXPECT_EQ(Updated, Project.Dump());
	}
}

TEST(RegistryCache, FaultsAreReportedAtEveryOpening)
{
	FRegistryProject Project;
	FillProject(Project);
	Project.Package("Broken", "bad\n");
	Project.Package("No.Name", "");
	Project.Package("bp", "needs /Game/A\n");
	Project.Package("Odd", "odd 3 14 a tag\nodd 2 1 Ärger\nasset Odd /Script/Engine.Thing\n");
	Project.ScanCached();
	const std::string Faults = Project.GetFaults();
	EXPECT_EQ(Faults,
		"Content/B.line:7:1: warning: strange [odd]\nContent/bp.line [duplicate-package]\nContent/Broken.line "
		"[bad-line]\nContent/No.Name.line [bad-package-name]\n"
		"Content/Odd.line:2:1: warning: Ärger [odd]\nContent/Odd.line:3:14: warning: a tag [odd]\n");
	const FRegistryScanReport Again = Project.ScanCached();
	EXPECT_EQ(Project.GetFaults(), Faults);
	EXPECT_EQ(Again.NumParsed, 3) << "the broken file, and those with spellings of their own, which are read when anything is";
	EXPECT_FALSE(Again.bCacheWritten);
	EXPECT_EQ(Again.CacheState.View(), "up to date");
	EXPECT_EQ(Again.NumSkipped, 3);

	Project.Package("A", "asset Other /Script/Engine.Thing\n");
	EXPECT_TRUE(Project.ScanCached().bCacheWritten);
	EXPECT_EQ(Project.GetFaults(), Faults) << "carried over into the next cache";
	Project.Package("Odd", "odd 5 5 again\n");
	Project.ScanCached();
	EXPECT_EQ(Project.GetFaults().find("Ärger"), std::string::npos) << "of a file as it is no more";
	EXPECT_NE(Project.GetFaults().find("Odd.line:5:5: warning: again"), std::string::npos);
}

TEST(RegistryCache, MayChangeInPlaceUnderItsReader)
{
	FRegistryProject Project;
	FillProject(Project);
	const std::string File = Project.ScanCached().CacheFile.ToStdString();
	ASSERT_EQ(Project.ScanCached().CacheState.View(), "up to date");
	const auto Dump = [&Project]
	{
		std::string Text;
		Project.Registry.Dump([&Text](FStringView Line) { Text.append(Line) += '\n'; });
		return Text;
	};
	const std::string Before = Dump();
	std::ofstream(File, std::ios::in | std::ios::out | std::ios::binary) << std::string(std::filesystem::file_size(File), '\xFF');
	EXPECT_EQ(Dump(), Before);
	std::filesystem::resize_file(File, 0);
	EXPECT_EQ(Dump(), Before);
}

TEST(RegistryCache, OtherClassParentsReadNoFile)
{
	FRegistryProject Project;
	Project.Package("A", "asset A /Script/Lantern.Sword\nentry 0 Var|Sharp|\n");
	Project.SetClassParents({{"/Script/Lantern.Sword", "/Script/Engine.DataAsset"}});
	Project.ScanCached();
	EXPECT_EQ(RenderAssets(
				  Project.Registry, {.ClassPaths = {FTopLevelAssetPath("/Script/Engine.Blueprint")}, .bRecursiveClasses = true}),
		"");
	EXPECT_EQ(Project.Registry.GetBlueprintIndex().NumBlueprints(), 0);

	Project.SetClassParents(
		{{"/Script/Lantern.Sword", "/Script/Engine.Blueprint"}, {"/Script/Engine.Blueprint", "/Script/CoreUObject.Object"}});
	const FRegistryScanReport Report = Project.ScanCached();
	EXPECT_EQ(Report.NumParsed, 0);
	EXPECT_TRUE(Report.bCacheWritten);
	EXPECT_EQ(RenderAssets(
				  Project.Registry, {.ClassPaths = {FTopLevelAssetPath("/Script/Engine.Blueprint")}, .bRecursiveClasses = true}),
		"/Game/A.A");
	EXPECT_EQ(Project.Registry.GetBlueprintIndex().NumBlueprints(), 1)
		<< "entries without a Blueprint are kept until there is one";

	Project.SetClassParents(
		{{"/Script/Engine.Blueprint", "/Script/CoreUObject.Object"}, {"/Script/Lantern.Sword", "/Script/Engine.Blueprint"}});
	EXPECT_EQ(Project.ScanCached().CacheState.View(), "up to date") << "the order in which classes are declared does not matter";
}

TEST(RegistryCache, AnotherReaderReadsEverything)
{
	FRegistryProject Project;
	FillProject(Project);
	Project.ScanCached();
	++Project.Source.Version;
	const FRegistryScanReport Report = Project.ScanCached();
	EXPECT_EQ(Report.NumParsed, 5);
	EXPECT_EQ(Report.CacheState.View(), "rebuilt: of another version");
	EXPECT_EQ(Project.ScanCached().NumParsed, 0);
}

TEST(RegistryCache, ModesDoWhatTheySay)
{
	FRegistryProject Project;
	FillProject(Project);
	FRegistryScanOptions Options = Project.MakeOptions();
	Options.Cache = ERegistryCache::Ignore;
	EXPECT_EQ(Project.Scan(Options).CacheState.View(), "off");
	EXPECT_FALSE(std::filesystem::exists(*Project.Folder.Path("Intermediate")));
	Options.Cache = ERegistryCache::Rebuild;
	for (int32 Run = 0; Run < 2; ++Run)
	{
		const FRegistryScanReport Report = Project.Scan(Options);
		EXPECT_EQ(Report.NumParsed, 5);
		EXPECT_TRUE(Report.bCacheWritten);
	}
	EXPECT_EQ(Project.ScanCached().NumParsed, 0);
}

TEST(RegistryCache, UsesTheFirstFolderThatWorks)
{
	FRegistryProject Project;
	const FScratchFolder Outside;
	FillProject(Project);
	Project.Folder.Write("File", "no folder");
	Project.Folder.Link(Outside.GetRoot(), "Link");
	FRegistryScanOptions Options = Project.MakeOptions();
	Options.CacheFolders = {Project.Folder.Path("File/Intermediate/"), Project.Folder.Path("Link/"),
		Project.Folder.Path("Link/Below"), Outside.Path("Deep/Cache"), Project.Folder.Path("Unused")};
	const FRegistryScanReport First = Project.Scan(Options);
	EXPECT_TRUE(First.CacheFile.StartsWith(Outside.Path("Deep/Cache/AssetRegistry-"))) << First.CacheFile.View();
	EXPECT_EQ(Project.GetFaults(), "Content/B.line:7:1: warning: strange [odd]\n");
	EXPECT_EQ(Project.Scan(Options).NumParsed, 0);
	EXPECT_FALSE(std::filesystem::exists(*Project.Folder.Path("Unused")));
	int32 NumOutside = 0;
	for ([[maybe_unused]] const auto& Entry : std::filesystem::recursive_directory_iterator(Outside.GetRoot()))
		++NumOutside;
	EXPECT_EQ(NumOutside, 3)
		<< "two folders and the cache: no link inside of the project was followed, no temporary file is left";

	Options.CacheFolders = {Project.Folder.Path("File/Intermediate/")};
	const FRegistryScanReport Nowhere = Project.Scan(Options);
	EXPECT_FALSE(Nowhere.bCacheWritten);
	EXPECT_EQ(Nowhere.CacheFile.View(), "");
	EXPECT_EQ(Nowhere.CacheState.View(), "created; no cache folder can be written");
	EXPECT_EQ(Nowhere.CacheError, Project.Folder.Path("File/Intermediate/AssetRegistry.cache") + " (Not a directory)");
}

TEST(RegistryCache, AReadOnlyFolderFallsToTheNext)
{
	if (geteuid() == 0)
		GTEST_SKIP() << "everything may be written as root";
	FRegistryProject Project;
	FillProject(Project);
	Project.Folder.MakeFolder("Intermediate");
	Project.Folder.SetMode("Intermediate", 0500);
	FRegistryScanOptions Options = Project.MakeOptions();
	Options.CacheFolders.Add(Project.Folder.Path("Other/"));
	EXPECT_EQ(Project.Scan(Options).CacheFile, Project.Folder.Path("Other/AssetRegistry.cache"));
	EXPECT_EQ(Project.Scan(Options).NumParsed, 0);
	Project.Folder.SetMode("Intermediate", 0700);
}

TEST(RegistryCache, TheFreshestCacheIsUsed)
{
	FRegistryProject Project;
	FillProject(Project);
	FRegistryScanOptions Options = Project.MakeOptions();
	Options.CacheFolders = {Project.Folder.Path("Old/")};
	Project.Scan(Options);
	Project.Package("New", "needs /Game/A\n");
	Options.CacheFolders = {Project.Folder.Path("New/")};
	Project.Scan(Options);
	Options.CacheFolders = {Project.Folder.Path("Old/"), Project.Folder.Path("New/")};
	const FRegistryScanReport Report = Project.Scan(Options);
	EXPECT_EQ(Report.NumParsed, 0);
	EXPECT_EQ(Report.CacheFile, Project.Folder.Path("New/AssetRegistry.cache"));
}

TEST(RegistryCache, RootsMayComeAndGo)
{
	FRegistryProject Project;
	FillProject(Project);
	Project.Folder.Write("Plugins/Lamp/Content/L.line", "asset L /Script/Engine.Thing\nneeds /Game/A\n");
	Project.ScanCached();
	Project.ExtraRoots = {{"/Lamp", Project.Folder.Path("Plugins/Lamp/Content/")}};
	EXPECT_EQ(Project.ScanCached().NumParsed, 1 + 2) << "the new root's file, and those with spellings of their own";
	EXPECT_FALSE(Project.Registry.FindPackage("/Lamp/L").IsNone());
	EXPECT_EQ(Project.ScanCached().NumParsed, 0);
	Project.ExtraRoots = {{"/Light", Project.Folder.Path("Plugins/Lamp/Content/")}};
	EXPECT_EQ(Project.ScanCached().NumParsed, 1 + 2) << "another name is another root";
	EXPECT_TRUE(Project.Registry.FindPackage("/Lamp/L").IsNone());
	EXPECT_EQ(RenderReferencers(Project.Registry, "/Game/A"), "/Game/B(hard game) /Game/BP(soft game) /Light/L(hard game)");
	Project.ExtraRoots = {};
	EXPECT_EQ(Project.ScanCached().NumParsed, 0 + 2);
	EXPECT_EQ(Project.Registry.NumPackages(), 5);
}

TEST(RegistryCache, MovesWithTheProject)
{
	const FScratchFolder Folder;
	const FLineSource Source;
	Folder.Write("Old/Content/A.line", "asset A /Script/Engine.Thing\n");
	FAssetRegistry Registry;
	const auto Scan = [&](const char* Project)
	{
		FRegistryScanOptions Options;
		Options.Roots = {{"/Game", Folder.Path(Project) + "/Content/"}};
		Options.Sources = {&Source};
		Options.ProjectFolder = Folder.Path(Project);
		Options.CacheFolders = {Folder.Path(Project) + "/Intermediate"};
		FRegistryScanReport Report;
		EXPECT_TRUE(Registry.Scan(Options, Report));
		return Report;
	};
	Scan("Old");
	Folder.Rename("Old", "New");
	EXPECT_EQ(Scan("New").NumParsed, 0);
	const IPackageSource* FileSource = nullptr;
	EXPECT_EQ(Registry.GetPackageFileName("/Game/A", FileSource), Folder.Path("New/Content/A.line"));
}

TEST(RegistryCache, ProjectsShareAFolder)
{
	const FScratchFolder Shared;
	FRegistryProject Projects[2];
	for (FRegistryProject& Project : Projects)
	{
		FillProject(Project);
		Project.Folder.Write("Content/" + std::to_string(&Project - Projects) + ".line", "asset Own /Script/Engine.Thing\n");
	}
	for (int32 Run = 0; Run < 2; ++Run)
	{
		for (FRegistryProject& Project : Projects)
		{
			FRegistryScanOptions Options = Project.MakeOptions();
			Options.CacheFolders = {Shared.Path("Caches")};
			EXPECT_EQ(Project.Scan(Options).NumParsed, Run == 0 ? 6 : 0);
		}
	}
}
