#include "Project/Project.h"

#include "BlueprintSearch/FindInBlueprintSearchManager.h"
#include "Core/Base/Checksum.h"
#include "Core/Files/File.h"
#include "Core/Files/ProjectFolder.h"
#include "Core/Threads/Tasks.h"
#include "CoreObject/Declarations/ScriptModule.h"
#include "CoreObject/Objects/PackageName.h"
#include "CoreObject/Packages/Loader.h"
#include "Project/PackageMemory.h"
#include "Project/ProjectFiles.h"
#include "Project/ProjectRegistry.h"
#include "Project/UserFolders.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <unistd.h>

namespace
{
struct FOpenProject
{
	bool bOpen = false;
	FProjectSummary Summary;
	TOptional<FFileStamp> SettingsStamp; // taken before the settings were read
	bool bSettingsSettled = false;		 // a later change of the file gives another stamp
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

FRegistryScanOptions MakeScanOptions(const FProjectOptions& Options, const FString& Folder, FDiagnosticSink& Diagnostics)
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
	Scan.Diagnostics = &Diagnostics;
	if (Options.Progress)
	{
		Scan.NumDone = &Options.Progress->NumDone;
		Scan.NumTotal = &Options.Progress->NumTotal;
	}
	return Scan;
}

FString MakeShort(const FString& File)
{
	const FString& ProjectDir = FPaths::ProjectDir();
	return File.StartsWith(ProjectDir, ESearchCase::CaseSensitive) ? File.Mid(ProjectDir.Len()) : File;
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
			.FileName = MakeShort(File),
			.Source = Source,
			.Read = [Folder = Mount.Folder, Relative](std::string& Buffer, uint64 MaxBytes, std::size_t)
			{ return FProjectFolder(Folder).Read(Relative, Buffer, MaxBytes); },
		};
	}
	return {};
}
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
	return MakeShort(GetProjectRegistry().GetPackageFileName(PackageName, Source));
}

void FProject::Close()
{
	PackageMemory::Forget();
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
	FProjectSummary Summary;
	if (!ProjectFiles::FindDescriptor(Options.Path, Summary.Folder, Summary.DescriptorFile, OutError))
		return false;
	if (!FPaths::SetProjectDir(Summary.Folder))
	{
		OutError = "the folder " + FString::FromExternal(Summary.Folder) + " cannot be opened: " + DescribeOpenError(errno);
		FPaths::SetProjectDir("");
		return false;
	}
	Summary.Folder = FPaths::ProjectDir();

	ProjectFiles::ReadDescriptor(Summary, Diagnostics);
	FOpenProject Opened;
	ReadSettings(Opened, Summary.Folder, Diagnostics);
	const TArray<FScriptModuleFile> Modules = ProjectFiles::ReadScriptModules(Summary.Folder, Diagnostics);
	DeclareScriptModules(Modules, &Diagnostics);
	for (const FScriptModuleFile& Module : Modules)
		Summary.ScriptModules.Add(Module.ModuleName);
	Summary.Plugins = ProjectFiles::FindPlugins(Summary.Folder, Diagnostics);
	MountRoots(Summary, Options.EngineContent);

	GetProjectRegistry().SetClassParents(GetClassParents());
	const FFindInBlueprintSearchManager::FIndexingRun Indexing(Options.Stop);
	FRegistryScanOptions Scan = MakeScanOptions(Options, Summary.Folder, Diagnostics);
	Scan.Stop = Indexing.GetStopToken();
	if (!GetProjectRegistry().Scan(Scan, Summary.Scan))
	{
		OutError = "opening was interrupted";
		return false;
	}
	SetPackageLocator(LocatePackage);
	SetObjectMemoryLimit(Options.ObjectMemory > 0 ? Options.ObjectMemory : GetDefaultObjectMemory());
	Summary.OpenSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - Start).count();
	Opened.bOpen = true;
	Opened.Summary = std::move(Summary);
	GetOpenProject() = std::move(Opened);
	return true;
}

bool FProject::RefreshSettings(FDiagnosticSink& Diagnostics)
{
	FOpenProject& Project = GetOpenProject();
	const FString& Folder = Project.Summary.Folder;
	if (!Project.bOpen || (Project.bSettingsSettled && ProjectFiles::GetSettingsStamp(Folder) == Project.SettingsStamp))
		return false;
	ReadSettings(Project, Folder, Diagnostics);
	return true;
}
