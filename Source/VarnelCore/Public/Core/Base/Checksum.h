#pragma once

#include "Core/Base/Types.h"

#include <string_view>

/** 64-bit checksum of bytes, for what is stored: the same in every run, on every machine of the same byte order. Any thread. */
uint64 ChecksumOf(std::string_view Bytes);
