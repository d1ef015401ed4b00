#include "Core/Program/Log.h"

#include "Core/Files/WriteFile.h"
#include "Core/Text/Unicode.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <cstdlib>
#include <deque>
#include <mutex>
#include <pthread.h>
#include <string>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

namespace
{
constexpr std::size_t MaxQueuedLines = 1024;
constexpr std::size_t MaxQueuedBytes = 1024 * 1024;
constexpr std::size_t MaxTextBytes = 64 * 1024; // of one line; the rest is cut
constexpr int32 MillisecondsAtExit = 200;

constexpr const char* VerbosityNames[] = {"Error", "Warning", "Display", "Verbose"};

std::atomic<ELogVerbosity> Level = ELogVerbosity::Warning;

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

std::string FormatLine(const char* Category, ELogVerbosity Verbosity, FStringView Text)
{
	std::string Line = std::string("[") + Category + "] " + VerbosityNames[static_cast<std::size_t>(Verbosity)] + ": ";
	AppendEscaped(Line, Text.substr(0, Unicode::FloorToCodePoint(Text, MaxTextBytes)));
	Line += '\n';
	return Line;
}

/** The queue between the threads that log and the one that writes. */
class FLogQueue
{
public:
	static FLogQueue& Get();
	void Push(std::string Line);
	void WaitUntilWritten(std::chrono::milliseconds Limit);

private:
	void StartWriter();
	void RunWriter();
	std::string TakeLine();
	void DropOldest();
	void DropAll();

	std::mutex Lock;
	std::condition_variable Pushed;
	std::condition_variable Emptied;
	std::deque<std::string> Lines;
	std::size_t NumBytes = 0;
	uint64 NumDropped = 0; // since the last line that got through
	bool bStarted = false;
	bool bWriting = false;
};

FLogQueue& FLogQueue::Get()
{
	// Never destroyed and its thread never joined: a writer that is stuck in a full pipe must not keep the program from ending.
	static FLogQueue& Queue = *new FLogQueue;
	return Queue;
}

void FLogQueue::Push(std::string Line)
{
	{
		const std::lock_guard Guard(Lock);
		NumBytes += Line.size();
		Lines.push_back(std::move(Line));
		while (Lines.size() > MaxQueuedLines || NumBytes > MaxQueuedBytes)
			DropOldest();
		if (!bStarted)
			StartWriter();
	}
	Pushed.notify_one();
}

void FLogQueue::StartWriter()
{
	try
	{
		std::thread([this] { RunWriter(); }).detach();
		bStarted = true;
		std::atexit([] { Log::Flush(MillisecondsAtExit); });
	}
	catch (const std::system_error&)
	{
		DropAll(); // out of threads; the next line tries again
	}
}

void FLogQueue::RunWriter()
{
	// Signals belong to the program's own threads. Above all, SIGPIPE of a closed standard error stays pending here and ends
	// nothing.
	sigset_t All;
	sigfillset(&All);
	pthread_sigmask(SIG_BLOCK, &All, nullptr);
	for (;;)
		WriteFile::All(STDERR_FILENO, TakeLine()); // a line that nobody can ever read is dropped in silence
}

/** The oldest line, headed by the number of those lost before it. */
std::string FLogQueue::TakeLine()
{
	std::unique_lock Guard(Lock);
	bWriting = false;
	if (Lines.empty())
		Emptied.notify_all();
	Pushed.wait(Guard, [this] { return !Lines.empty(); });
	std::string Line = std::move(Lines.front());
	Lines.pop_front();
	NumBytes -= Line.size();
	bWriting = true;
	if (const uint64 NumLost = std::exchange(NumDropped, 0))
		Line.insert(
			0, FormatLine("Log", ELogVerbosity::Warning, std::to_string(NumLost) + " lines were dropped, nobody was reading"));
	return Line;
}

void FLogQueue::DropOldest()
{
	NumBytes -= Lines.front().size();
	Lines.pop_front();
	++NumDropped;
}

void FLogQueue::DropAll()
{
	while (!Lines.empty())
		DropOldest();
}

void FLogQueue::WaitUntilWritten(std::chrono::milliseconds Limit)
{
	std::unique_lock Guard(Lock);
	Emptied.wait_for(Guard, Limit, [this] { return Lines.empty() && !bWriting; });
}
}

void Log::SetLevel(ELogVerbosity NewLevel)
{
	Level = NewLevel;
}

bool Log::IsEnabled(ELogVerbosity Verbosity)
{
	return Verbosity <= Level.load(std::memory_order_relaxed);
}

void Log::Write(const FLogCategory& Category, ELogVerbosity Verbosity, const FString& Text)
{
	if (IsEnabled(Verbosity))
		FLogQueue::Get().Push(FormatLine(Category.Name, Verbosity, Text));
}

void Log::Flush(int32 MaxMilliseconds)
{
	FLogQueue::Get().WaitUntilWritten(std::chrono::milliseconds(std::max(MaxMilliseconds, 0)));
}
