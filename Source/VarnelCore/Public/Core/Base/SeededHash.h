#pragma once

#include "Core/Base/Types.h"

#include <string_view>

/**
 * Hashes for tables in memory whose keys come from files or callers. They differ from run to run, so that nobody can prepare keys
 * that all collide; nothing that is stored, printed or ordered may depend on them. For what is stored see Checksum.h. Any thread.
 */
namespace SeededHash
{
/** Of this run: never 0. */
uint64 GetHashSeed();
/** Every bit of the result depends on every bit of both arguments; the order of the arguments counts. */
uint64 MixHash(uint64 A, uint64 B);
/** Hash of bytes, continued from the hash of what precedes them where there is such. */
uint64 HashBytes(std::string_view Bytes, uint64 Before = 0);

/** Hasher of tables with exact texts as keys; takes std::string and views alike. */
struct FHashText
{
	using is_transparent = void;
	std::size_t operator()(std::string_view Text) const { return HashBytes(Text); }
};
}
