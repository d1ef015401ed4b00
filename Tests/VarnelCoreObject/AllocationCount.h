#pragma once

#include "Core/Types.h"

/** How often this thread has asked for memory with new since it began. */
int64 GetNumAllocations();
