#pragma once

#include "Core/Base/Assert.h"
#include "Core/Base/Types.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <initializer_list>
#include <mutex>
#include <stop_token>
#include <thread>

/** Processors that work may be spread over; at least 1. */
int32 GetNumWorkers();

/**
 * Calls Work(Begin, End, Worker) for consecutive chunks of [0, Num) on up to NumThreads threads (the caller is one of them) and
 * Consume(Begin, End) for every finished chunk, in ascending order, never two at once (it may run on any of the threads). Work
 * writes into storage of its own index range; Consume may return false to end the run: no later chunk is consumed, and workers
 * stop at their next chunk. Results therefore never depend on the number of threads. Returns when all threads are done.
 * NumThreads 0: all processors. Worker is below the number of threads and names the calling thread's storage. Finished chunks
 * wait for their turn a bounded number at a time. What a callable throws ends the run and is thrown to the caller.
 */
void ParallelForOrdered(int32 Num, int32 ChunkSize, const std::function<void(int32 Begin, int32 End, int32 Worker)>& Work,
	const std::function<bool(int32 Begin, int32 End)>& Consume, int32 NumThreads = 0);

/** As above without a consumer: unordered, complete. */
void ParallelFor(
	int32 Num, int32 ChunkSize, const std::function<void(int32 Begin, int32 End, int32 Worker)>& Work, int32 NumThreads = 0);

/** Calls each of the functions once, on up to NumThreads threads, in no order; otherwise as above. */
void ParallelInvoke(std::initializer_list<std::function<void()>> Calls, int32 NumThreads = 0);

/**
 * The queue of the thread that runs the program's loop. Post from any thread; Pump and RunUntil only on the game thread, which is
 * the one that called BindToThisThread last.
 */
class FGameThread
{
public:
	static FGameThread& Get();

	static constexpr std::chrono::steady_clock::duration NoTimeLimit = std::chrono::steady_clock::duration::max();

	void BindToThisThread();
	/** False on every thread as long as none was bound. */
	bool IsGameThread() const;
	/** IsGameThread, and true as long as none was bound: programs without a loop may do on any one thread what is otherwise the
	 * game thread's. */
	bool MayActAsGameThread() const;
	void Post(std::function<void()> Task);
	/** Runs the tasks that are queued now, in order; those they post wait for the next call. Returns how many ran. */
	int32 Pump();
	/** Runs tasks as they come until Done() is true (asked between tasks and after every wake-up), the stop is requested or the
	 * time is up. True: done. */
	bool RunUntil(
		const std::function<bool()>& Done, std::chrono::steady_clock::duration Limit = NoTimeLimit, std::stop_token Stop = {});
	/** Wakes RunUntil so that it asks Done() again. */
	void Wake();
	/** Drops what is queued. */
	void Clear();

private:
	std::function<void()> TakeTask(uint64 Before);

	std::mutex Lock; // guards what follows, down to bWoken
	std::condition_variable_any Changed;
	std::deque<std::function<void()>> Queue;
	uint64 NumPosted = 0; // ever; the front task is therefore number NumPosted - Queue.size()
	bool bWoken = false;
	std::atomic<std::thread::id> Thread;
};

/** At the doors of what belongs to the game thread: ends the program on any other one. Costs nothing in builds without
 * assertions. */
#ifdef NDEBUG
#define checkGameThread() static_cast<void>(0)
#else
#define checkGameThread() checkf(FGameThread::Get().MayActAsGameThread(), "not the game thread")
#endif

/** Threads that tasks can be posted to. */
enum class ENamedThreads : uint8
{
	GameThread,
};

/** Posts a task to the named thread. */
void AsyncTask(ENamedThreads Thread, std::function<void()> Task);
