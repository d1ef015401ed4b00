#pragma once

#include "Core/Base/Types.h"
#include "Terminal/LineSplitter.h"
#include "Terminal/WakePipe.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

/** Longer lines of a client are skipped. */
constexpr std::size_t MaxMcpInputLineBytes = 4 * 1024 * 1024;

/** Takes what comes from a client. All functions are called on the thread that reads. */
class IMcpLineHandler : public ILineHandler
{
public:
	/** Time has passed. */
	virtual void Tick() = 0;
	/** When Tick has something to do next, should nothing else happen. */
	virtual TOptional<std::chrono::steady_clock::time_point> GetNextTickTime() const = 0;
};

/** Why reading ended. */
enum class EMcpEnd : uint8
{
	EndOfInput, // the client will send nothing more but may still read
	ReaderGone, // nobody reads the answers any more
	Stopped,	// see RequestStop
};

/**
 * The two pipes to a client, given as file descriptors that stay the caller's. Lines go out whole and in order through one thread
 * of its own, so that the thread that has an answer never waits for the client. While the client leaves too many answers unread,
 * nothing more is read from it. The process must ignore SIGPIPE.
 */
class FMcpStdio
{
public:
	/** Throws std::system_error where the process has no descriptors left. */
	FMcpStdio(int InInput, int InOutput);
	/** Drops the lines that are not written; waits for the one that is being written. */
	~FMcpStdio();
	FMcpStdio(const FMcpStdio&) = delete;
	FMcpStdio& operator=(const FMcpStdio&) = delete;

	/** Queues a line; the line break is added. Any thread. */
	void Write(std::string Line);
	/** Reads until the end. One thread. */
	EMcpEnd Read(IMcpLineHandler& Handler);
	/** Makes Read return soon. Any thread, also from a signal handler. */
	void RequestStop() noexcept { StopRequest.Signal(); }
	/** Waits until all lines are written, at most Limit. */
	bool Flush(std::chrono::milliseconds Limit);
	/** Why lines could not be written, an error number of the system; 0 when they were, or nobody wanted to read them. */
	int GetWriteError() const;

private:
	struct FWait
	{
		bool bInput = false; // there is something to read, an end of input too
		TOptional<EMcpEnd> End;
	};
	FWait WaitForInput(const IMcpLineHandler& Handler) const;
	int GetWaitMilliseconds(const IMcpLineHandler& Handler, bool bBacklog) const;
	bool HasBacklog() const;
	void RunWriter();

	const int Input;
	const int Output;
	FWakePipe StopRequest;

	mutable std::mutex Lock; // guards what follows
	std::condition_variable Changed;
	std::string Queued;			  // whole lines
	std::size_t NumUnwritten = 0; // bytes: what is queued and what is being written
	bool bReaderGone = false;
	int WriteError = 0;
	bool bClosing = false;
	std::thread Writer; // last: starts when all else is there
};
