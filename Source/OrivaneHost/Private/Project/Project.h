#pragma once

#include "Core/Program/Diagnostics.h"
#include "Project/ProjectOptions.h"

/**
 * The project that is open in this process; there is at most one. Game thread.
 */
class FProject
{
public:
	/**
	 * Opens a project: descriptor, settings, script modules, mounts, registry. Faults in its files go to Diagnostics and lose
	 * nothing else. False, with a sentence that says what to do, when there is no project to open; what was open before is closed
	 * either way.
	 */
	static bool Open(const FProjectOptions& Options, FDiagnosticSink& Diagnostics, FString& OutError);
	static void Close();
	static bool IsOpen();
	/** Reads the settings again where their file has changed since they were read; costs a look at the file otherwise. To be
	 * called before a search that is to obey them. True, and what is wrong with them in the sink, when they were read. */
	static bool RefreshSettings(FDiagnosticSink& Diagnostics);
	static const FProjectSummary& GetSummary();
	/** The file of a package, relative to the project where it lies there, as in diagnostics; "" when there is none. */
	static FString GetPackageFileName(FName PackageName);
};
