#include "Core/Program/Log.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <poll.h>
#include <string>
#include <unistd.h>

namespace
{
void AppendHex(std::string& Out, uint8 Byte)
{
	constexpr const char* Digits = "0123456789abcdef";
	Out += "\\x";
	Out += Digits[Byte >> 4];
	Out += Digits[Byte & 15];
}

/** Asset names and file texts reach the log; none of them may forge a line or command a terminal. */
void AppendEscaped(std::string& Out, FStringView Text)
{
	for (std::size_t At = 0; At < Text.size(); ++At)
	{
		const uint8 Byte = static_cast<uint8>(Text[At]);
		const bool bLateControl = Byte == 0xC2 && At + 1 < Text.size() && (Text[At + 1] & 0xE0) == 0x80; // U+0080 to U+009F
		if (Byte == '\n')
			Out += "\\n";
		else if (Byte < 0x20 || Byte == 0x7F)
			AppendHex(Out, Byte);
		else if (bLateControl)
			AppendHex(Out, static_cast<uint8>(Text[++At]));
		else
			Out += Text[At];
	}
}

/** A pipe that is writable takes PIPE_BUF bytes at once. */
bool IsWritable()
{
	pollfd Descriptor{.fd = STDERR_FILENO, .events = POLLOUT, .revents = 0};
	return poll(&Descriptor, 1, 0) == 1 && (Descriptor.revents & POLLOUT) != 0;
}

void WriteToStandardError(FStringView Line)
{
	while (!Line.empty() && IsWritable())
	{
		const ssize_t Written = write(STDERR_FILENO, Line.data(), std::min<std::size_t>(Line.size(), PIPE_BUF));
		if (Written >= 0)
			Line.remove_prefix(static_cast<std::size_t>(Written));
		else if (errno != EINTR)
			return;
	}
}
}

void Log::Write(const FLogCategory& Category, ELogVerbosity Verbosity, const FString& Text)
{
	std::string Line = std::string("[") + Category.Name + (Verbosity == ELogVerbosity::Error ? "] Error: " : "] Warning: ");
	AppendEscaped(Line, Text);
	WriteToStandardError(Line += '\n');
}
