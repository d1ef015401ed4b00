#pragma once

#include "Core/Base/Types.h"

/** How often this thread has asked for memory with new since it began. */
int64 GetNumAllocations();
