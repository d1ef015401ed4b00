#pragma once

#include "Core/Base/Types.h"

namespace JsonKeyIndex
{
/** Below this many members of an object a scan over their keys is faster than a table. */
constexpr int32 MinMembers = 16;
}
