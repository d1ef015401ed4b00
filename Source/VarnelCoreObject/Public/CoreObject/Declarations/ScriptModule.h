#pragma once

#include "Core/Program/Diagnostics.h"

#include <string>

/** A file of a script module, as it was read. */
struct FScriptModuleFile
{
	FString ModuleName; // file name without extension; the script package is /Script/<ModuleName>
	FString FileName;	// for diagnostics
	std::string Text;
};

/**
 * Declares the classes, structures and enumerations of all script modules of a project, in any order among themselves and across
 * files: parents are linked first. A declaration with an unknown parent, a cycle, a repeated or native name, an unknown property
 * type or a default out of range is reported, and what can be kept is kept (a class without a usable parent is left out). Game
 * thread, while a project opens.
 */
void DeclareScriptModules(const TArray<FScriptModuleFile>& Files, FDiagnosticSink* Diagnostics);
/** Destroys all declared classes, structures and enumerations; every loaded package must be unloaded before. */
void RemoveScriptModules();
