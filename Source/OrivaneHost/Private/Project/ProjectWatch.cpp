#include "Project/ProjectWatch.h"

#include "Core/Files/File.h"
#include "OrivaneCore/DefaultExcludedDirectories.h"

namespace
{
/** Generated folders of the project's own are not watched, or what the program writes there would be a change. */
FFolderWatchOptions MakeWatchOptions(const FProjectOptions& Options, const FString& Folder, const FString& EngineContent)
{
	TArray<FString> Left;
	for (const FString& Name : Orivane::Tarnwell::DefaultExcludedDirectories)
	{
		if (!EngineContent.StartsWith(Folder + Name + "/", ESearchCase::CaseSensitive))
			Left.Add(Folder + Name);
	}
	FFolderWatchOptions Watch;
	Watch.EnterFolder = [Left](std::string_view Path)
	{ return !Left.ContainsByPredicate([Path](const FString& Each) { return Each.View() == Path; }); };
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
	const FString Engine =
		Options.EngineContent.IsEmpty() ? FString() : FPaths::ConvertRelativePathToFull(Options.EngineContent) + "/";
	if (!Engine.IsEmpty() && !Engine.StartsWith(Folder, ESearchCase::CaseSensitive))
		Roots.Add(Engine);
	return MakeUnique<FFolderWatch>(Roots, MakeWatchOptions(Options, Folder, Engine));
}

FString DescribeProjectWatch(const FFolderWatch* Watch)
{
	if (!Watch)
		return "off";
	return Watch->GetMode() == EFolderWatchMode::Events ? FString("watching (inotify)")
														: "folder times, because " + Watch->GetReason();
}
