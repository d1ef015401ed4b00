#pragma once

#include "Core/Base/Types.h"

#include <memory>
#include <string_view>

/** Finds where the tokens of a JSON text start, many bytes at a time. Keeps its memory from text to text. One thread at a time.
 */
class FJsonTokenFinder
{
public:
	FJsonTokenFinder();
	~FJsonTokenFinder();

	/** Bytes after a text that Find may read. */
	static std::size_t GetPadding();
	/**
	 * Gives the offsets of the tokens, ascending, with the text's size after the last one; they stay until the next call. False
	 * where a string is not closed or holds a control character, for ill-formed UTF-8, and when there is no token.
	 */
	bool Find(std::string_view Text, const uint32*& OutStarts, uint32& OutNum);
	std::size_t GetNumBytes() const;

private:
	struct FLibrary;
	std::unique_ptr<FLibrary> Library;
};
