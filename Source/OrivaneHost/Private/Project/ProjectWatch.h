#pragma once

#include "Core/Files/FolderWatch.h"
#include "Project/ProjectOptions.h"

/** A watch over the folders of a project, and of its engine content; to be made before the first look at any of the files. Null
 * where the options say that nothing is to be watched. Folder with a slash at the end. */
TUniquePtr<FFolderWatch> MakeProjectWatch(const FProjectOptions& Options, const FString& Folder);
/** Folders directly below the project, by name, of which such a watch tells nothing. */
TArray<FString> ListUnwatchedFolders(const FProjectOptions& Options, const FString& Folder);
/** "watching (inotify)", or "folder times, because ..."; "off" for null. */
FString DescribeProjectWatch(const FFolderWatch* Watch);
