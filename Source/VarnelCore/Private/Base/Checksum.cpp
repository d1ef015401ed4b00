#include "Core/Base/Checksum.h"

#include <xxhash.h>

uint64 ChecksumOf(std::string_view Bytes)
{
	return XXH3_64bits(Bytes.data(), Bytes.size());
}
