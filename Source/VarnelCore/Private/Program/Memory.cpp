#include "Core/Program/Memory.h"

#include <malloc.h>

void ReturnUnusedMemory()
{
	malloc_trim(0);
}
