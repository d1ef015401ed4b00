#pragma once

#include "Core/Files/FileTree.h"
#include "Core/Program/Diagnostics.h"
#include "CoreObject/Declarations/ScriptModule.h"
#include "Project/ProjectOptions.h"

/** The files that make a folder a project, apart from its packages. Faults go to the sink under names relative to the project. */
namespace ProjectFiles
{
/** The folder with a descriptor: Path itself, the folder of the *.uproject that Path names, or, with an empty Path, the nearest
 * one from the current folder upward. False and a sentence for people when there is none. */
bool FindDescriptor(const FString& Path, FString& OutFolder, FString& OutDescriptor, FString& OutError);
/** Fills name and description; a descriptor that cannot be read gives the file's name. */
void ReadDescriptor(FProjectSummary& Summary, FDiagnosticSink& Diagnostics);
/** What a file means for the project, by its path relative to the project. */
bool IsDescriptor(std::string_view Path);
bool IsSettings(std::string_view Path);
bool IsScriptModule(std::string_view Path);
bool IsPlugin(std::string_view Path);
/** Applies Config/DefaultGame.ini to the settings classes; without the file they have their defaults. */
void ReadSettings(const FString& Folder, FDiagnosticSink& Diagnostics);
/** Of Config/DefaultGame.ini; none without the file. */
TOptional<FFileStamp> GetSettingsStamp(const FString& Folder);
TArray<FScriptModuleFile> ReadScriptModules(const FString& Folder, FDiagnosticSink& Diagnostics);
/** Plugins in ascending byte order of their folders; a second one of a name is reported and left out. */
TArray<FProjectPlugin> FindPlugins(const FString& Folder, FDiagnosticSink& Diagnostics);
}
