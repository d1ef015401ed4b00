#include "Core/Files/FileHandle.h"

#include <unistd.h>

bool FFileHandle::Close()
{
	return Descriptor < 0 || close(std::exchange(Descriptor, -1)) == 0;
}
