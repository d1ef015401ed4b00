#pragma once

#include "Core/Base/Types.h"
#include "Files/SecureOpen.h"

#include <string>

/** Writing to open files and replacing files of an open folder. Functions that fail leave the reason in errno. Any thread. */
namespace WriteFile
{
/** Waits where a pipe is full, until a stop is requested, see Core/StopToken.h. */
bool All(const FFileHandle& File, FStringView Bytes);
/** Writes to a temporary name in the folder and renames it over the target, which keeps its permissions. When this fails, the
 * target is as it was. */
bool Replace(const FFileHandle& Folder, const std::string& TargetName, FStringView Bytes);
}
