#pragma once

#include "Core/Containers.h"
#include "Core/String.h"

namespace Orivane::Tarnwell
{
/** Folders that engines, build tools and version control generate: names or relative segments that searches leave out by default.
 */
extern const TArray<FString> DefaultExcludedDirectories;
}
