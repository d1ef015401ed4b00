#pragma once

#include "Core/Files/FolderWatch.h"
#include "Core/Program/Diagnostics.h"
#include "Project/ProjectOptions.h"

/** What became of opening a project for a command or for a server. */
struct FOpening
{
	bool bOpened = false;
	FString Error;		   // a sentence that says what to do; "" when opened
	FString PreloadRemark; // what was to be in memory and is not; "" when nothing
	FString FaultRemark;   // what the project's faults cost, and where the first of them are; "" without any
	FString EmptyRemark;   // that there is not one package, and what is there instead; "" where there are some
	FString CacheRemark;   // that the next opening takes as long, and why; "" when it does not
};

/**
 * Opens the project and brings into memory what the options ask for. Faults in its files go to the sink and lose nothing else.
 * Where only the latter fails the project is open nevertheless, see FProject::IsOpen. Game thread.
 */
FOpening OpenProject(const FProjectOptions& Options, FDiagnosticSink& Diagnostics);

/** FProject::Refresh; that something is wrong with what was read, a sentence that names the first faults; "" when nothing is. */
FString RefreshOpenProject(EFolderLook Look = EFolderLook::All);
