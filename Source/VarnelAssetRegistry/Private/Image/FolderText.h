#pragma once

#include "Core/Text/String.h"

namespace FolderText
{
inline FString WithTrailingSlash(const FString& Folder)
{
	return Folder.IsEmpty() || Folder.View().ends_with('/') ? Folder : Folder + "/";
}

/** Both with a trailing slash. An empty project folder has nothing in it. */
inline bool IsInside(const FString& Folder, const FString& Project)
{
	return !Project.IsEmpty() && Folder.View().starts_with(Project.View());
}
}
