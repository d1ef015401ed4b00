#pragma once

#include "Core/Files/FileHandle.h"
#include "Core/Text/String.h"

#include <string>

/** Writing to open files and replacing files of an open folder. Functions that fail leave the reason in errno. Any thread. */
namespace WriteFile
{
/** The descriptor stays the caller's. Where a pipe is full, waits until the calling thread is asked to stop, see
 * Core/Threads/StopToken.h; without a stop token as long as it takes. */
bool All(int Descriptor, FStringView Bytes);
/** Writes to a temporary name in the folder and renames it over the target, which keeps its permissions. When this fails, the
 * target is as it was. */
bool Replace(const FFileHandle& Folder, const std::string& TargetName, FStringView Bytes);
}
