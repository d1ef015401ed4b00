#pragma once

#include "Core/Base/Containers.h"
#include "Core/Text/String.h"

/** Which class paths mean Blueprints. Headers are read on many threads, where no class object may be touched, so the paths are
 * kept as text. */
namespace BlueprintClasses
{
/** The class is Blueprint, one of its built-in kinds, or declared as derived from one. Any thread. */
bool Contains(FStringView ClassPath);
/** Game thread. */
void AddDeclared(const FString& ClassPath);
void RemoveAllDeclared();
}
