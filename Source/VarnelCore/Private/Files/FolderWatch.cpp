#include "Core/Files/FolderWatch.h"

#include "Core/Files/File.h"
#include "Files/FolderEvents.h"
#include "Files/FolderTimes.h"

namespace
{
std::vector<std::string> NormalizeRoots(const TArray<FString>& Given)
{
	std::vector<std::string> Roots;
	for (const FString& Root : Given)
		Roots.push_back(FPaths::ConvertRelativePathToFull(Root).ToStdString() + (Root.View() == "/" ? "" : "/"));
	return Roots;
}
}

FFolderWatch::FFolderWatch(const TArray<FString>& InRoots, FFolderWatchOptions InOptions)
	: Roots(NormalizeRoots(InRoots))
	, Options(std::move(InOptions))
{
	if (Options.bTimesOnly)
		Reason = "that was asked for";
	else
		Events = MakeUnique<FFolderEvents>(Roots, Options);
	if (!Events || !Events->GetFailure().IsEmpty())
		CompareTimes();
}

FFolderWatch::~FFolderWatch() = default;

EFolderWatchMode FFolderWatch::GetMode() const
{
	return Events ? EFolderWatchMode::Events : EFolderWatchMode::Times;
}

void FFolderWatch::CompareTimes()
{
	Times = MakeUnique<FFolderTimes>(Roots, Options);
	if (Events)
		Reason = Events->GetFailure();
	Events = nullptr;
}

FFolderChanges FFolderWatch::Take(EFolderLook Look)
{
	if (!Events)
		return Times->Take(Look);
	FFolderChanges Changes = Events->Take();
	if (Events->GetFailure().IsEmpty())
		return Changes;
	CompareTimes(); // begins with a list of its own, before which anything may have changed
	return {.bAll = true, .Files = {}, .Folders = {}};
}
