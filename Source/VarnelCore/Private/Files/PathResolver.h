#pragma once

#include "Core/Text/String.h"
#include "Files/SecureOpen.h"

/** The one place that turns a path of the program into an open file. */
namespace PathResolver
{
/**
 * Opens an absolute path, or one relative to the current folder. Below the opened project no symbolic link is followed, so
 * nothing in a project leads out of it, and nothing can be opened where its folder cannot; any other path is the user's own
 * and is followed. A closed handle leaves the reason in
 * errno. Creates nothing. Any thread.
 */
FFileHandle Open(FStringView Path, int Flags);
/** What of an absolute path lies below the opened project, "" for its folder; empty for a path elsewhere. A view into FullPath.
 */
TOptional<FStringView> GetPathInProject(FStringView FullPath);
}
