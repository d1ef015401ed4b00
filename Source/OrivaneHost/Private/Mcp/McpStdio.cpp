#include "Mcp/McpStdio.h"

#include "Core/Files/WriteFile.h"
#include "Core/Program/Memory.h"
#include "Core/Threads/Tasks.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <poll.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace
{
constexpr std::size_t MaxBacklogBytes = 16 * 1024 * 1024; // of unread answers; reading rests above it
constexpr std::size_t LargeBytes = 1024 * 1024;			  // an answer of so much took many times as much memory to make
constexpr int BacklogMilliseconds = 50;					  // between two looks whether the backlog has shrunk
constexpr int MaxWaitMilliseconds = 60'000;

constexpr short GoneEvents = POLLERR | POLLHUP | POLLNVAL;
}

FMcpStdio::FMcpStdio(int InInput, int InOutput) : Input(InInput), Output(InOutput)
{
	if (!StopRequest.IsOpen())
		throw std::system_error(std::make_error_code(std::errc::too_many_files_open));
	Writer = std::thread([this] { RunWriter(); });
}

FMcpStdio::~FMcpStdio()
{
	{
		std::lock_guard Guard(Lock);
		bClosing = true;
	}
	Changed.notify_all();
	Writer.join();
}

void FMcpStdio::Write(std::string Line)
{
	{
		std::lock_guard Guard(Lock);
		if (bReaderGone)
			return;
		Queued += Line;
		Queued += '\n';
		NumUnwritten += Line.size() + 1;
	}
	Changed.notify_all();
}

EMcpEnd FMcpStdio::Read(IMcpLineHandler& Handler)
{
	FLineSplitter Lines(MaxMcpInputLineBytes);
	std::array<char, 65536> Buffer;
	for (;;)
	{
		const FWait Wait = WaitForInput(Handler);
		if (Wait.End)
			return *Wait.End;
		Handler.Tick();
		if (!Wait.bInput)
			continue;
		const ssize_t NumRead = read(Input, Buffer.data(), Buffer.size());
		if (NumRead > 0)
			Lines.Append({Buffer.data(), static_cast<std::size_t>(NumRead)}, Handler);
		else if (NumRead == 0 || (errno != EINTR && errno != EAGAIN))
		{
			Lines.Finish(Handler);
			return EMcpEnd::EndOfInput;
		}
	}
}

FMcpStdio::FWait FMcpStdio::WaitForInput(const IMcpLineHandler& Handler) const
{
	const bool bBacklog = HasBacklog();
	const short InputEvents = bBacklog ? 0 : POLLIN;
	std::array<pollfd, 3> Polls = {{
		{.fd = Input, .events = InputEvents, .revents = 0},
		{.fd = StopRequest.GetDescriptor(), .events = POLLIN, .revents = 0},
		{.fd = Output, .events = 0, .revents = 0},
	}};
	if (poll(Polls.data(), Polls.size(), GetWaitMilliseconds(Handler, bBacklog)) <= 0)
		return {};
	if (Polls[1].revents != 0)
		return {.End = EMcpEnd::Stopped};
	if ((Polls[2].revents & GoneEvents) != 0)
		return {.End = EMcpEnd::ReaderGone};
	// A client that has closed its end while it reads nothing will not come back for the answers to what it sent last.
	if (bBacklog && (Polls[0].revents & GoneEvents) != 0)
		return {.End = EMcpEnd::EndOfInput};
	return {.bInput = Polls[0].revents != 0, .End = {}};
}

int FMcpStdio::GetWaitMilliseconds(const IMcpLineHandler& Handler, bool bBacklog) const
{
	int Wait = bBacklog ? BacklogMilliseconds : MaxWaitMilliseconds;
	if (const auto Next = Handler.GetNextTickTime())
	{
		const auto Left = std::chrono::ceil<std::chrono::milliseconds>(*Next - std::chrono::steady_clock::now()).count();
		Wait = static_cast<int>(std::clamp<int64>(Left, 0, Wait));
	}
	return Wait;
}

bool FMcpStdio::Flush(std::chrono::milliseconds Limit)
{
	std::unique_lock Guard(Lock);
	return Changed.wait_for(Guard, Limit, [this] { return bReaderGone || NumUnwritten == 0; });
}

int FMcpStdio::GetWriteError() const
{
	std::lock_guard Guard(Lock);
	return WriteError;
}

bool FMcpStdio::HasBacklog() const
{
	std::lock_guard Guard(Lock);
	return NumUnwritten > MaxBacklogBytes;
}

void FMcpStdio::RunWriter()
{
	std::unique_lock Guard(Lock);
	for (;;)
	{
		Changed.wait(Guard, [this] { return bClosing || !Queued.empty(); });
		if (bClosing || bReaderGone)
			return;
		std::string Lines = std::exchange(Queued, std::string());
		Guard.unlock();
		const bool bWritten = WriteFile::All(Output, Lines);
		const int Error = bWritten || errno == EPIPE || errno == ECONNRESET ? 0 : errno;
		const std::size_t NumBytes = Lines.size();
		Lines = {};
		if (NumBytes > LargeBytes) // a task of its own: what made the answer may still be on that thread's stack
			AsyncTask(ENamedThreads::GameThread, ReturnUnusedMemory);
		Guard.lock();
		NumUnwritten -= NumBytes;
		bReaderGone = !bWritten;
		WriteError = Error;
		Changed.notify_all();
		if (bReaderGone)
			RequestStop();
	}
}
