#pragma once

#include <cstddef>
#include <string>
#include <string_view>

class IMcpLineHandler;

/** Cuts a client's bytes into lines. A line above the limit is reported once, when it passes the limit, and skipped up to its
 * end. */
class FMcpLineSplitter
{
public:
	explicit FMcpLineSplitter(std::size_t InMaxLineBytes) : MaxLineBytes(InMaxLineBytes) {}

	void Append(std::string_view Bytes, IMcpLineHandler& Handler);
	/** Nothing comes any more: what is left counts as a line. */
	void Finish(IMcpLineHandler& Handler);

private:
	void AppendToLine(std::string_view Bytes, IMcpLineHandler& Handler);

	const std::size_t MaxLineBytes;
	std::string Line; // its beginning
	bool bSkipping = false;
};
