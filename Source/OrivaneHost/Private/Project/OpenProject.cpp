#include "Project/OpenProject.h"

#include "Project/PackageMemory.h"
#include "Project/Project.h"

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
		Opening.FaultRemark = FString::Printf(
			"%d fault(s) in project files, what they concern is left out; see: orivane check", Diagnostics.NumErrors());
	return Opening;
}
