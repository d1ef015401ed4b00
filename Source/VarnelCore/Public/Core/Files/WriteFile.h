#pragma once

#include "Core/Files/FileHandle.h"
#include "Core/Text/String.h"

#include <string>

/** What is left of a file that was replaced just before the machine lost its power. */
enum class EPowerCut : uint8
{
	Survives, // the old or the new file; writing takes as long as the disk does
	MayLose,  // perhaps a file of the right length without content: for what is checked when it is read
};

/** Writing to open files and replacing files of an open folder. Functions that fail leave the reason in errno. Any thread. */
namespace WriteFile
{
/** The descriptor stays the caller's. Where a pipe is full, waits until the calling thread is asked to stop, see
 * Core/Threads/StopToken.h; without a stop token as long as it takes. */
bool All(int Descriptor, FStringView Bytes);
/** Writes to a temporary name in the folder and renames it over the target, which keeps its permissions. When this fails, the
 * target is as it was. A temporary file that a program has left behind, since it was killed, goes with the next one. */
bool Replace(const FFileHandle& Folder, const std::string& TargetName, FStringView Bytes, EPowerCut PowerCut);
}
