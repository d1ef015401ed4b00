#include "Core/Program/Memory.h"

#include <malloc.h>

namespace
{
// Getting such blocks anew costs some tenths of a millisecond. Below that size, freed memory is soon used again.
constexpr int LargeBytes = 4 << 20;
}

void LimitUnusedMemory()
{
	mallopt(M_MMAP_THRESHOLD, LargeBytes);
	mallopt(M_TRIM_THRESHOLD, LargeBytes);
}

void ReturnUnusedMemory()
{
	malloc_trim(0);
}
