#include "Core/Program/Log.h"

#include "Core/Text/Printable.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <poll.h>
#include <string>
#include <unistd.h>

namespace
{
/** A pipe that is writable takes PIPE_BUF bytes at once. */
bool IsWritable()
{
	pollfd Descriptor{.fd = STDERR_FILENO, .events = POLLOUT, .revents = 0};
	return poll(&Descriptor, 1, 0) == 1 && (Descriptor.revents & POLLOUT) != 0;
}

/** False when only a part of it, or nothing, could be written. */
bool WriteToStandardError(FStringView Line)
{
	while (!Line.empty() && IsWritable())
	{
		const ssize_t Written = write(STDERR_FILENO, Line.data(), std::min<std::size_t>(Line.size(), PIPE_BUF));
		if (Written >= 0)
			Line.remove_prefix(static_cast<std::size_t>(Written));
		else if (errno != EINTR)
			return false;
	}
	return Line.empty();
}

std::atomic<int64> NumLost = 0; // lines since the last one that came through
}

void Log::Write(const FLogCategory& Category, ELogVerbosity Verbosity, const FString& Text)
{
	std::string Line = std::string("[") + Category.Name + (Verbosity == ELogVerbosity::Error ? "] Error: " : "] Warning: ");
	Printable::Append(Line, Text); // asset names and file texts reach the log; none of them may forge a line
	Line += '\n';
	// The newline ends a line that was cut.
	const int64 NumLostBefore = NumLost.exchange(0);
	if (NumLostBefore > 0 &&
		!WriteToStandardError(
			FString::Printf("\n[Log] Warning: %lld line(s) lost, nobody read them\n", static_cast<long long>(NumLostBefore))))
		NumLost += NumLostBefore + 1;
	else if (!WriteToStandardError(Line))
		++NumLost;
}
