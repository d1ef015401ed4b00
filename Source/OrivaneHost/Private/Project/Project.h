#pragma once

#include "Core/Files/FolderWatch.h"
#include "Core/Program/Diagnostics.h"
#include "Project/ProjectOptions.h"

/** A file's path from the open project's folder, where it lies there; else as it is. */
FString MakeRelativeToProject(const FString& File);

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
	/**
	 * Reads again what has changed since it was read: settings, packages, or the whole project where its descriptor, plugins or
	 * script modules have. Loaded objects of changed packages, and those that depend on them, are dropped; what PackageMemory
	 * keeps is loaded again. To be called before a tool or command, when nobody holds a loaded object. Costs one system call
	 * where nothing has changed and the system tells of changes; without watching it looks at the settings alone. A stop of the
	 * options that the project was opened with ends it; the rest is made up for next time. A look without bulk may leave out
	 * packages, where looking at them takes time. True, and what is wrong with it in the sink, when something was read.
	 */
	static bool Refresh(FDiagnosticSink& Diagnostics, EFolderLook Look = EFolderLook::All);
	/** Why the project could not be opened again after a change, a sentence; "" when all is well. What was known before stands,
	 * where IsOpen. */
	static const FString& GetTrouble();
	/** How changes are noticed: "watching (inotify)", or "folder times, because ..."; "off" without watching. */
	static FString DescribeWatch();
	static const FProjectSummary& GetSummary();
	/** The file of a package, relative to the project where it lies there, as in diagnostics; "" when there is none. */
	static FString GetPackageFileName(FName PackageName);
};
