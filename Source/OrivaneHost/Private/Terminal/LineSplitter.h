#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/** Takes what comes line by line. */
class ILineHandler
{
public:
	virtual ~ILineHandler() = default;
	/** One line without its line break, not empty; the bytes are not checked. */
	virtual void HandleLine(std::string_view Line) = 0;
	/** In place of a line that was too long to be kept. */
	virtual void HandleOverlongLine() = 0;
};

/** Cuts bytes into lines. A line above the limit is reported once, when it passes the limit, and skipped up to its end. */
class FLineSplitter
{
public:
	explicit FLineSplitter(std::size_t InMaxLineBytes) : MaxLineBytes(InMaxLineBytes) {}

	void Append(std::string_view Bytes, ILineHandler& Handler);
	/** Nothing comes any more: what is left counts as a line. */
	void Finish(ILineHandler& Handler);

private:
	void AppendToLine(std::string_view Bytes, ILineHandler& Handler);

	const std::size_t MaxLineBytes;
	std::string Line; // its beginning
	bool bSkipping = false;
};
