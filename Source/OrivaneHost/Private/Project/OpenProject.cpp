#include "Project/OpenProject.h"

#include "Core/Files/File.h"
#include "Core/Files/FileTree.h"
#include "Project/PackageMemory.h"
#include "Project/Project.h"
#include "Project/ProjectRegistry.h"

#include <algorithm>

namespace
{
constexpr int32 MaxNamedFaults = 3;

/** The first errors with file and position; of faults that are no errors the first ones. */
FString NameFaults(const FDiagnosticSink& Sink)
{
	TArray<FDiagnostic> Faults = Sink.GetSorted();
	if (Sink.NumErrors() > 0)
		Faults.RemoveAll([](const FDiagnostic& Fault) { return Fault.Severity != EDiagnosticSeverity::Error; });
	TArray<FString> Names;
	for (int32 Index = 0; Index < std::min(Faults.Num(), MaxNamedFaults); ++Index)
		Names.Add(Faults[Index].ToString());
	return FString::Join(Names, "; ") + (Faults.Num() > MaxNamedFaults ? "; ..." : "");
}

/** Projects of other programs open too, and nothing is found in them. */
FString DescribeEmptyProject()
{
	const int32 NumFiles = FFileTree::List(FPaths::ProjectContentDir(), {}).Num();
	return FString::Printf("there is no package (*.vasset) below Content, but %d other %s; packages are text files, see "
						   "Docs/ProjectFolder.md",
		NumFiles, NumFiles == 1 ? "file" : "files");
}
}

FOpening OpenProject(const FProjectOptions& Options, FDiagnosticSink& Diagnostics)
{
	FOpening Opening;
	if (!FProject::Open(Options, Diagnostics, Opening.Error))
		return Opening;
	PackageMemory::FLoaded Preloaded;
	for (const FString& Path : Options.Preload)
	{
		if (PackageMemory::Load(Path, Preloaded, Opening.Error, Options.Progress, Options.Stop))
			continue;
		Opening.Error = "--preload: " + Opening.Error;
		return Opening;
	}
	Opening.bOpened = true;
	if (Preloaded.NumFailed > 0)
		Opening.PreloadRemark = FString::Printf(
			"--preload: %d of %d package(s) cannot be loaded; see: orivane check", Preloaded.NumFailed, Preloaded.NumPackages);
	if (Diagnostics.NumErrors() > 0)
		Opening.FaultRemark =
			FString::Printf("%d fault(s) in project files, what they concern is left out: ", Diagnostics.NumErrors()) +
			NameFaults(Diagnostics) + "; see: orivane check";
	if (GetProjectRegistry().NumPackages() == 0)
		Opening.EmptyRemark = DescribeEmptyProject();
	const FRegistryScanReport& Scan = FProject::GetSummary().Scan;
	if (!Scan.CacheError.IsEmpty())
		Opening.CacheRemark =
			"the registry's cache cannot be written, so that each start reads all packages again: " + Scan.CacheError;
	return Opening;
}

FString RefreshOpenProject(EFolderLook Look)
{
	FDiagnosticSink Faults;
	if (!FProject::Refresh(Faults, Look) || Faults.GetSorted().IsEmpty())
		return {};
	return "files were read again, with faults: " + NameFaults(Faults) + "; see: orivane check";
}
