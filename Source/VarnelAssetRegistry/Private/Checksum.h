#pragma once

#include "Core/Types.h"

#include <string_view>

/** 64-bit hash of bytes: for checksums in files and for hash tables. The same on every machine of the same byte order. */
uint64 HashBytes(std::string_view Bytes);
