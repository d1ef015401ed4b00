#pragma once

#include "Core/Base/Containers.h"
#include "Core/Text/String.h"

namespace Orivane::Tarnwell
{
/** Folders that engines, build tools and version control generate: names or relative segments that searches leave out by default.
 */
extern const TArray<FString> DefaultExcludedDirectories;
}
