#pragma once

#include "Core/Text/String.h"
#include "Image/RegistryImage.h"

#include <functional>

/** Every column, readably: roots, packages with everything they own, nodes without a file, classes. One call for each line. */
void DumpRegistry(const FRegistryImage& Image, const std::function<void(FStringView Line)>& Write);
