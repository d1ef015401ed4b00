#include "Project/ProjectWatch.h"

#include "Core/Files/File.h"
#include "CoreObject/Packages/Loader.h"
#include "OrivaneCore/DefaultExcludedDirectories.h"

namespace
{
/** With a slash at the end; "" for none. */
FString GetEngineContent(const FProjectOptions& Options)
{
	return Options.EngineContent.IsEmpty() ? FString() : FPaths::ConvertRelativePathToFull(Options.EngineContent) + "/";
}

FFolderWatchOptions MakeWatchOptions(const FProjectOptions& Options, const FString& Folder)
{
	TArray<FString> Left;
	for (const FString& Name : ListUnwatchedFolders(Options, Folder))
		Left.Add(Folder + Name);
	FFolderWatchOptions Watch;
	Watch.EnterFolder = [Left](std::string_view Path)
	{ return !Left.ContainsByPredicate([Path](const FString& Each) { return Each.View() == Path; }); };
	Watch.IsBulk = [](std::string_view Path) { return GetVassetPackageSource().IsPackageFile(Path); };
	Watch.bTimesOnly = Options.Watch == EProjectWatch::Times;
	Watch.TimesInterval = Options.WatchInterval;
	Watch.Stop = Options.Stop;
	return Watch;
}
}

TUniquePtr<FFolderWatch> MakeProjectWatch(const FProjectOptions& Options, const FString& Folder)
{
	if (Options.Watch == EProjectWatch::Off)
		return nullptr;
	TArray<FString> Roots = {Folder};
	const FString Engine = GetEngineContent(Options);
	if (!Engine.IsEmpty() && !Engine.StartsWith(Folder, ESearchCase::CaseSensitive))
		Roots.Add(Engine);
	return MakeUnique<FFolderWatch>(Roots, MakeWatchOptions(Options, Folder));
}

/** Generated folders of the project's own are not watched, or what the program writes there would be a change. */
TArray<FString> ListUnwatchedFolders(const FProjectOptions& Options, const FString& Folder)
{
	TArray<FString> Names = Orivane::Tarnwell::DefaultExcludedDirectories;
	Names.RemoveAll([Folder, Engine = GetEngineContent(Options)](const FString& Name)
		{ return Engine.StartsWith(Folder + Name + "/", ESearchCase::CaseSensitive); });
	return Names;
}

FString DescribeProjectWatch(const FFolderWatch* Watch)
{
	if (!Watch)
		return "off";
	return Watch->GetMode() == EFolderWatchMode::Events ? FString("watching (inotify)")
														: "folder times, because " + Watch->GetReason();
}
