#include "Project/Project.h"

#include "BlueprintSearch/FindInBlueprintSearchManager.h"
#include "Core/Base/Checksum.h"
#include "Core/Base/Failure.h"
#include "Core/Files/File.h"
#include "Core/Files/ProjectFolder.h"
#include "Core/Threads/Tasks.h"
#include "CoreObject/Declarations/ScriptModule.h"
#include "CoreObject/Objects/PackageName.h"
#include "CoreObject/Packages/Loader.h"
#include "OrivaneToolkit/AssetOperationBase.h"
#include "Project/PackageMemory.h"
#include "Project/ProjectChanges.h"
#include "Project/ProjectFiles.h"
#include "Project/ProjectRegistry.h"
#include "Project/ProjectWatch.h"
#include "Project/UserFolders.h"
#include "Quellar/Families/BlueprintFindUtils.h"
#include "Quellar/Families/TextSearch.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <unistd.h>

namespace
{
struct FOpenProject
{
	bool bOpen = false;
	FProjectOptions Options;   // as they are to be used again
	FRegistryScanOptions Scan; // the same
	FProjectSummary Summary;
	TOptional<FFileStamp> SettingsStamp; // taken before the settings were read
	bool bSettingsSettled = false;		 // a later change of the file gives another stamp
	TUniquePtr<FFolderWatch> Watch;		 // null: off
	FProjectChanges Changes;			 // not dealt with yet
	FString Trouble;
};

/** The stamp first: what is written after it shows in the next comparison. */
void ReadSettings(FOpenProject& Project, const FString& Folder, FDiagnosticSink& Diagnostics)
{
	Project.SettingsStamp = ProjectFiles::GetSettingsStamp(Folder);
	Project.bSettingsSettled = !Project.SettingsStamp || Project.SettingsStamp->IsSettled();
	ProjectFiles::ReadSettings(Folder, Diagnostics);
}

FOpenProject& GetOpenProject()
{
	static FOpenProject Project;
	return Project;
}

/** Where caches of projects go whose own folder cannot be written: a folder of the user's, one below it for each project. */
FString GetUserCacheFolder(const FString& ProjectFolder)
{
	const FString Base = GetUserFolder("XDG_CACHE_HOME", ".cache");
	if (Base.IsEmpty())
		return {};
	return Base + FString::Printf("/orivane/%016llx/", static_cast<unsigned long long>(ChecksumOf(ProjectFolder)));
}

int64 GetDefaultObjectMemory()
{
	return static_cast<int64>(sysconf(_SC_PHYS_PAGES)) * sysconf(_SC_PAGESIZE) / 4;
}

FString DescribeOpenError(int ErrorNumber)
{
	if (ErrorNumber == EILSEQ)
		return "its path is not valid UTF-8; rename the folders on it";
	return FString::FromExternal(std::strerror(ErrorNumber));
}

void MountRoots(const FProjectSummary& Summary, const FString& EngineContent)
{
	FPackageName::MountRoot("/Game", Summary.Folder + "Content/");
	for (const FProjectPlugin& Plugin : Summary.Plugins)
		FPackageName::MountRoot(FString("/") + Plugin.Name, Summary.Folder + Plugin.Folder + "/Content/");
	if (!EngineContent.IsEmpty())
		FPackageName::MountRoot("/Engine", FPaths::ConvertRelativePathToFull(EngineContent) + "/");
}

TArray<std::pair<FTopLevelAssetPath, FTopLevelAssetPath>> GetClassParents()
{
	TArray<std::pair<FTopLevelAssetPath, FTopLevelAssetPath>> Parents;
	ForEachClass(
		[&](UClass& Class)
		{
			if (const UClass* Super = Class.GetSuperClass())
				Parents.Add({Class.GetStructPathName(), Super->GetStructPathName()});
		});
	return Parents;
}

/** For an opening later: what the first one was given may be gone by then. */
FProjectOptions MakeLastingOptions(const FProjectOptions& Options, const FString& Folder)
{
	FProjectOptions Lasting = Options;
	Lasting.Path = Options.Path.IsEmpty() ? Folder : FPaths::ConvertRelativePathToFull(Options.Path);
	Lasting.Progress = nullptr;
	if (Lasting.Cache == ERegistryCache::Rebuild)
		Lasting.Cache = ERegistryCache::Use; // it is new now
	return Lasting;
}

FRegistryScanOptions MakeScanOptions(const FProjectOptions& Options, const FString& Folder)
{
	FRegistryScanOptions Scan;
	for (const FPackageName::FMountPoint& Mount : FPackageName::GetMountPoints())
		Scan.Roots.Add({Mount.Root, Mount.Folder});
	Scan.Sources.Add(&GetVassetPackageSource());
	Scan.ProjectFolder = Folder;
	Scan.CacheFolders.Add(FPaths::ProjectIntermediateDir());
	if (FString UserFolder = GetUserCacheFolder(Folder); !UserFolder.IsEmpty())
		Scan.CacheFolders.Add(std::move(UserFolder));
	Scan.Cache = Options.Cache;
	Scan.NumThreads = Options.NumThreads;
	if (Options.Progress)
	{
		Scan.NumDone = &Options.Progress->NumDone;
		Scan.NumTotal = &Options.Progress->NumTotal;
	}
	return Scan;
}

/** The loader's way to a package's file: the registry knows the spelling on disk. */
TOptional<FPackageFile> LocatePackage(FName PackageName)
{
	const IPackageSource* Source = nullptr;
	const FString File = GetProjectRegistry().GetPackageFileName(PackageName, Source);
	for (const FPackageName::FMountPoint& Mount : FPackageName::GetMountPoints())
	{
		if (!File.StartsWith(Mount.Folder, ESearchCase::CaseSensitive))
			continue;
		const FString Relative = File.Mid(Mount.Folder.Len());
		return FPackageFile{
			.FileName = MakeRelativeToProject(File),
			.Source = Source,
			.Read = [Folder = Mount.Folder, Relative](std::string& Buffer, uint64 MaxBytes, std::size_t)
			{ return FProjectFolder(Folder).Read(Relative, Buffer, MaxBytes); },
		};
	}
	return {};
}
}

FString MakeRelativeToProject(const FString& File)
{
	const FString& ProjectDir = FPaths::ProjectDir();
	return File.StartsWith(ProjectDir, ESearchCase::CaseSensitive) ? File.Mid(ProjectDir.Len()) : File;
}

bool FProject::IsOpen()
{
	return GetOpenProject().bOpen;
}

const FProjectSummary& FProject::GetSummary()
{
	return GetOpenProject().Summary;
}

FString FProject::GetPackageFileName(FName PackageName)
{
	const IPackageSource* Source = nullptr;
	return MakeRelativeToProject(GetProjectRegistry().GetPackageFileName(PackageName, Source));
}

void FProject::Close()
{
	FAssetOperationBase::ForgetTextFiles();
	StopKeepingTextFiles();
	PackageMemory::Forget();
	SearchMemory::Forget();
	FBlueprintFindUtils::Get().ClearResults();
	UnloadAllLoadedPackages();
	SetPackageLocator(nullptr);
	FRegistryScanReport Report;
	GetProjectRegistry().Scan({.Cache = ERegistryCache::Ignore}, Report);
	RemoveScriptModules();
	FPackageName::UnmountAll();
	GetOpenProject() = {};
}

bool FProject::Open(const FProjectOptions& Options, FDiagnosticSink& Diagnostics, FString& OutError)
{
	checkGameThread();
	Close();
	const auto Start = std::chrono::steady_clock::now();
	FOpenProject Opened;
	FProjectSummary& Summary = Opened.Summary;
	if (!ProjectFiles::FindDescriptor(Options.Path, Summary.Folder, Summary.DescriptorFile, OutError))
		return false;
	if (!FPaths::SetProjectDir(Summary.Folder))
	{
		OutError = "the folder " + FString::FromExternal(Summary.Folder) + " cannot be opened: " + DescribeOpenError(errno);
		FPaths::SetProjectDir("");
		return false;
	}
	Summary.Folder = FPaths::ProjectDir();
	Opened.Options = MakeLastingOptions(Options, Summary.Folder);
	Opened.Watch = MakeProjectWatch(Options, Summary.Folder);
	if (Options.Watch == EProjectWatch::Events && Opened.Watch->GetMode() != EFolderWatchMode::Events)
	{
		OutError = "it cannot be watched by events, because " + Opened.Watch->GetReason() + "; open it with --watch auto";
		return false;
	}

	ProjectFiles::ReadDescriptor(Summary, Diagnostics);
	ReadSettings(Opened, Summary.Folder, Diagnostics);
	const TArray<FScriptModuleFile> Modules = ProjectFiles::ReadScriptModules(Summary.Folder, Diagnostics);
	DeclareScriptModules(Modules, &Diagnostics);
	for (const FScriptModuleFile& Module : Modules)
		Summary.ScriptModules.Add(Module.ModuleName);
	Summary.Plugins = ProjectFiles::FindPlugins(Summary.Folder, Diagnostics);
	MountRoots(Summary, Options.EngineContent);

	GetProjectRegistry().SetClassParents(GetClassParents());
	const FFindInBlueprintSearchManager::FIndexingRun Indexing(Options.Stop);
	FRegistryScanOptions Scan = MakeScanOptions(Options, Summary.Folder);
	Scan.Stop = Indexing.GetStopToken();
	Scan.Diagnostics = &Diagnostics;
	if (!GetProjectRegistry().Scan(Scan, Summary.Scan))
	{
		OutError = "opening was interrupted";
		return false;
	}
	SetPackageLocator(LocatePackage);
	SearchMemory::SetLimit(Options.SearchMemory);
	SetObjectMemoryLimit(Options.ObjectMemory > 0 ? Options.ObjectMemory : GetDefaultObjectMemory());
	Summary.OpenSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - Start).count();
	Opened.Scan = MakeScanOptions(Opened.Options, Summary.Folder);
	if (Opened.Watch)
		StartKeepingTextFiles(ListUnwatchedFolders(Options, Summary.Folder), Opened.Watch->GetMode());
	Opened.bOpen = true;
	GetOpenProject() = std::move(Opened);
	return true;
}

namespace
{
bool RefreshSettings(FOpenProject& Project, FDiagnosticSink& Diagnostics)
{
	const FString& Folder = Project.Summary.Folder;
	if (Project.bSettingsSettled && ProjectFiles::GetSettingsStamp(Folder) == Project.SettingsStamp)
		return false;
	ReadSettings(Project, Folder, Diagnostics);
	return true;
}

void TakeChanges(FOpenProject& Project, EFolderLook Look)
{
	try
	{
		const FFolderChanges Taken = Project.Watch->Take(Look);
		NoteTextFileChanges(Taken);
		Project.Changes.Add(Taken, Project.Summary.Folder, Project.Scan.Sources);
	}
	catch (...) // out of memory: what was taken is not told again
	{
		Project.Changes.bReopen = true;
		throw;
	}
}

bool HavePluginsChanged(const FProjectSummary& Summary)
{
	FDiagnosticSink Ignored;
	return ProjectFiles::FindPlugins(Summary.Folder, Ignored) != Summary.Plugins;
}

/** What is missing since the project was opened, a sentence; "" when it can be opened again. */
FString FindTrouble(const FOpenProject& Project)
{
	std::error_code Ignored;
	FString Folder = Project.Summary.Folder;
	if (!std::filesystem::is_directory(Folder.ToStdString(), Ignored))
		return "there is no folder " + Folder + " any more";
	FString Descriptor;
	FString Error;
	FPaths::SetProjectDir(Folder); // it may be another one under the same path
	ProjectFiles::FindDescriptor(Project.Options.Path, Folder, Descriptor, Error);
	return Error;
}

/** Loads again what the user wants in memory. */
void RenewMemory(const TArray<PackageMemory::FRequest>& Requests, std::stop_token Stop, FDiagnosticSink& Diagnostics)
{
	PackageMemory::FLoaded Loaded;
	TArray<FString> Missing;
	PackageMemory::Renew(Requests, Loaded, Missing, std::move(Stop));
	for (const FString& Path : Missing)
		Diagnostics.Add({.File = Path,
			.Severity = EDiagnosticSeverity::Warning,
			.Text = "it was to be in memory, and is gone",
			.Rule = "not-in-memory"});
}

/** False where that cannot be done: what is open stays, unless it fails in the very middle. */
bool Reopen(FDiagnosticSink& Diagnostics)
{
	FOpenProject& Project = GetOpenProject();
	Project.Trouble = FindTrouble(Project);
	if (!Project.Trouble.IsEmpty())
		return false;
	const TArray<PackageMemory::FRequest> Requests = PackageMemory::GetRequests();
	const FProjectOptions Options = Project.Options;
	const FProjectSummary Summary = Project.Summary;
	const auto TryAgainNextTime = [&](const FString& Why)
	{
		Project.Options = Options;
		Project.Summary = Summary;
		Project.Changes.bReopen = true;
		Project.Trouble = Why;
		FDiagnosticSink Ignored;
		RenewMemory(Requests, Options.Stop, Ignored); // remembers them
	};
	try
	{
		FString Error;
		if (FProject::Open(Options, Diagnostics, Error))
			RenewMemory(Requests, Options.Stop, Diagnostics);
		else
			TryAgainNextTime(Error);
	}
	catch (const std::exception& Failure)
	{
		TryAgainNextTime(DescribeFailure(Failure));
		throw;
	}
	return Project.bOpen;
}

ERegistryUpdate RefreshPackages(const FOpenProject& Project, FDiagnosticSink& Diagnostics)
{
	const FFindInBlueprintSearchManager::FIndexingRun Indexing(Project.Options.Stop);
	FRegistryScanOptions Scan = Project.Scan;
	Scan.Stop = Indexing.GetStopToken();
	Scan.Diagnostics = &Diagnostics;
	FRegistryScanReport Report;
	const ERegistryUpdate Done = GetProjectRegistry().Update(Scan, Project.Changes.Files, Project.Changes.Folders, Report);
	if (Done == ERegistryUpdate::Updated)
	{
		FBlueprintFindUtils::Get().ClearResults(); // they keep the registry's former image in memory
		DropLoadedPackages([&](FName Package) { return Project.Changes.Concerns(Package); });
		RenewMemory(PackageMemory::GetRequests(), Project.Options.Stop, Diagnostics);
	}
	return Done;
}
}

bool FProject::Refresh(FDiagnosticSink& Diagnostics, EFolderLook Look)
{
	checkGameThread();
	FOpenProject& Project = GetOpenProject();
	if (!Project.Watch && Project.Changes.IsEmpty())
		return Project.bOpen && RefreshSettings(Project, Diagnostics);
	if (Project.Watch)
		TakeChanges(Project, Look);
	if (Project.Changes.IsEmpty())
		return false;
	if (Project.Changes.bReopen || (Project.Changes.bPlugins && HavePluginsChanged(Project.Summary)))
		return Reopen(Diagnostics);
	if (Project.Changes.bSettings)
		ReadSettings(Project, Project.Summary.Folder, Diagnostics);
	const ERegistryUpdate Packages =
		Project.Changes.HasPackages() ? RefreshPackages(Project, Diagnostics) : ERegistryUpdate::Unchanged;
	if (Packages == ERegistryUpdate::Stopped)
		return false;
	const bool bRead = Project.Changes.bSettings || Packages == ERegistryUpdate::Updated;
	Project.Changes = {};
	return bRead;
}

const FString& FProject::GetTrouble()
{
	return GetOpenProject().Trouble;
}

FString FProject::DescribeWatch()
{
	return DescribeProjectWatch(GetOpenProject().Watch.get());
}
