#pragma once

#include "Core/Base/Types.h"

#include <string_view>
#include <vector>

/** Numbers of the texts in ascending byte order; equal ones in ascending order of their numbers. Fast for texts with long common
 * beginnings, such as paths. */
std::vector<uint32> SortTexts(const std::vector<std::string_view>& Texts);
