#include "Core/Threads/Tasks.h"

#include "Core/Base/Assert.h"
#include "Core/Threads/StopToken.h"

#include <algorithm>
#include <array>
#include <exception>
#include <utility>
#include <vector>

namespace
{
constexpr int32 MaxRunAhead = 64; // chunks that may be begun before the oldest unconsumed one is consumed

/** Equal pieces of [0, Num), the last one shorter. */
struct FChunks
{
	int32 Num = 0;
	int32 Size = 1;

	int32 Count() const { return static_cast<int32>((static_cast<int64>(Num) + Size - 1) / Size); }
	int32 Begin(int32 Chunk) const { return Chunk * Size; }
	int32 End(int32 Chunk) const { return static_cast<int32>(std::min<int64>(Num, (static_cast<int64>(Chunk) + 1) * Size)); }
};

FChunks MakeChunks(int32 Num, int32 ChunkSize)
{
	return {.Num = std::max(Num, 0), .Size = std::max(ChunkSize, 1)};
}

int32 ChooseNumThreads(const FChunks& Chunks, int32 NumThreads)
{
	return std::min(Chunks.Count(), NumThreads > 0 ? NumThreads : GetNumWorkers());
}

/** Keeps what the first of several threads has thrown. */
class FFirstFailure
{
public:
	/** Inside of a handler. */
	void Keep()
	{
		const std::lock_guard Guard(Lock);
		if (!Failure)
			Failure = std::current_exception();
	}
	/** When the other threads have ended. */
	void Rethrow() const
	{
		if (Failure)
			std::rethrow_exception(Failure);
	}

private:
	std::mutex Lock;
	std::exception_ptr Failure;
};

/** Runs the loop on the calling thread, as worker 0, and on further threads, under the caller's stop token; does with fewer where
 * the system gives no more. What they throw is thrown when all have ended. */
void RunOnThreads(int32 NumThreads, const std::function<void(int32 Worker)>& Loop)
{
	FFirstFailure Failure;
	const auto RunLoop = [&](int32 Worker)
	{
		try
		{
			Loop(Worker);
		}
		catch (...)
		{
			Failure.Keep();
		}
	};
	{
		std::vector<std::jthread> Threads;
		try
		{
			Threads.reserve(static_cast<std::size_t>(NumThreads));
			for (int32 Worker = 1; Worker < NumThreads; ++Worker)
				Threads.emplace_back(
					[&RunLoop, Worker, Token = GetStopToken()]
					{
						const FStopScope Scope(Token);
						RunLoop(Worker);
					});
		}
		catch (const std::exception&)
		{
		}
		RunLoop(0);
	}
	Failure.Rethrow();
}

/** The state that the threads of one ordered run share. */
class FOrderedRun
{
public:
	FOrderedRun(const FChunks& InChunks, const std::function<bool(int32, int32)>& InConsume)
		: Chunks(InChunks)
		, Consume(InConsume)
	{
	}

	/** The next chunk, waiting while the run is too far ahead; INDEX_NONE at the end. */
	int32 Claim();
	/** Marks the chunk and consumes what has become ready, unless another thread is doing so. */
	void Finish(int32 Chunk);
	/** No chunk is claimed or consumed any more. */
	void Stop();

private:
	const FChunks Chunks;
	const std::function<bool(int32, int32)>& Consume;
	std::mutex Lock;
	std::condition_variable Advanced;
	std::array<bool, MaxRunAhead> Finished = {}; // by chunk number modulo the size
	int32 NumClaimed = 0;
	int32 NumConsumed = 0;
	bool bStopped = false;
};

int32 FOrderedRun::Claim()
{
	std::unique_lock Guard(Lock);
	Advanced.wait(Guard, [this] { return bStopped || NumClaimed == Chunks.Count() || NumClaimed < NumConsumed + MaxRunAhead; });
	return bStopped || NumClaimed == Chunks.Count() ? INDEX_NONE : NumClaimed++;
}

void FOrderedRun::Finish(int32 Chunk)
{
	std::unique_lock Guard(Lock);
	Finished[static_cast<std::size_t>(Chunk % MaxRunAhead)] = true;
	// The mark of a chunk that is being consumed is gone while the chunk still counts as unconsumed: no second thread gets in
	// here.
	while (!bStopped && std::exchange(Finished[static_cast<std::size_t>(NumConsumed % MaxRunAhead)], false))
	{
		Guard.unlock();
		const bool bGoOn = Consume(Chunks.Begin(NumConsumed), Chunks.End(NumConsumed));
		Guard.lock();
		++NumConsumed;
		bStopped |= !bGoOn;
		Advanced.notify_all();
	}
}

void FOrderedRun::Stop()
{
	{
		const std::lock_guard Guard(Lock);
		bStopped = true;
	}
	Advanced.notify_all();
}

void RunOrderedHere(
	const FChunks& Chunks, const std::function<void(int32, int32, int32)>& Work, const std::function<bool(int32, int32)>& Consume)
{
	for (int32 Chunk = 0; Chunk < Chunks.Count(); ++Chunk)
	{
		Work(Chunks.Begin(Chunk), Chunks.End(Chunk), 0);
		if (!Consume(Chunks.Begin(Chunk), Chunks.End(Chunk)))
			return;
	}
}
}

int32 GetNumWorkers()
{
	static const int32 NumProcessors = std::max(1, static_cast<int32>(std::thread::hardware_concurrency()));
	return NumProcessors;
}

void ParallelForOrdered(int32 Num, int32 ChunkSize, const std::function<void(int32 Begin, int32 End, int32 Worker)>& Work,
	const std::function<bool(int32 Begin, int32 End)>& Consume, int32 NumThreads)
{
	const FChunks Chunks = MakeChunks(Num, ChunkSize);
	const int32 ChosenThreads = ChooseNumThreads(Chunks, NumThreads);
	if (ChosenThreads <= 1)
		return RunOrderedHere(Chunks, Work, Consume);
	FOrderedRun Run(Chunks, Consume);
	RunOnThreads(ChosenThreads,
		[&](int32 Worker)
		{
			try
			{
				for (int32 Chunk = Run.Claim(); Chunk != INDEX_NONE; Chunk = Run.Claim())
				{
					Work(Chunks.Begin(Chunk), Chunks.End(Chunk), Worker);
					Run.Finish(Chunk);
				}
			}
			catch (...)
			{
				Run.Stop(); // the others wait for this chunk
				throw;
			}
		});
}

void ParallelFor(
	int32 Num, int32 ChunkSize, const std::function<void(int32 Begin, int32 End, int32 Worker)>& Work, int32 NumThreads)
{
	const FChunks Chunks = MakeChunks(Num, ChunkSize);
	std::atomic<int32> NumClaimed = 0;
	RunOnThreads(ChooseNumThreads(Chunks, NumThreads),
		[&](int32 Worker)
		{
			try
			{
				for (int32 Chunk = NumClaimed++; Chunk < Chunks.Count(); Chunk = NumClaimed++)
					Work(Chunks.Begin(Chunk), Chunks.End(Chunk), Worker);
			}
			catch (...)
			{
				NumClaimed = Chunks.Count();
				throw;
			}
		});
}

void ParallelInvoke(std::initializer_list<std::function<void()>> Calls, int32 NumThreads)
{
	ParallelFor(
		static_cast<int32>(Calls.size()), 1, [&Calls](int32 Call, int32, int32) { Calls.begin()[Call](); }, NumThreads);
}

FGameThread& FGameThread::Get()
{
	static FGameThread& Instance = *new FGameThread; // outlives the threads that may still post while the program ends
	return Instance;
}

void FGameThread::BindToThisThread()
{
	Thread = std::this_thread::get_id();
}

bool FGameThread::IsGameThread() const
{
	return Thread.load() == std::this_thread::get_id();
}

bool FGameThread::MayActAsGameThread() const
{
	return IsGameThread() || Thread.load() == std::thread::id();
}

void FGameThread::Post(std::function<void()> Task)
{
	checkf(Task, "a task is needed");
	{
		const std::lock_guard Guard(Lock);
		Queue.push_back(std::move(Task));
		++NumPosted;
	}
	Changed.notify_all();
}

/** The front task when its number is below Before, else an empty function. */
std::function<void()> FGameThread::TakeTask(uint64 Before)
{
	const std::lock_guard Guard(Lock);
	if (Queue.empty() || NumPosted - Queue.size() >= Before)
		return nullptr;
	std::function<void()> Task = std::move(Queue.front());
	Queue.pop_front();
	return Task;
}

int32 FGameThread::Pump()
{
	// Tasks leave the queue one by one, so that a task that itself runs the loop meets the ones after it, in order.
	const uint64 Before = [this]
	{
		const std::lock_guard Guard(Lock);
		return NumPosted;
	}();
	int32 NumRun = 0;
	while (const std::function<void()> Task = TakeTask(Before))
	{
		Task();
		++NumRun;
	}
	return NumRun;
}

bool FGameThread::RunUntil(const std::function<bool()>& Done, std::chrono::steady_clock::duration Limit, std::stop_token Stop)
{
	using FClock = std::chrono::steady_clock;
	const FClock::time_point Start = FClock::now();
	const FClock::time_point Deadline = Limit < FClock::time_point::max() - Start ? Start + Limit : FClock::time_point::max();
	while (!Done())
	{
		if (Stop.stop_requested() || FClock::now() >= Deadline)
			return false;
		if (const std::function<void()> Task = TakeTask(UINT64_MAX))
		{
			Task();
			continue;
		}
		std::unique_lock Guard(Lock);
		Changed.wait_until(Guard, Stop, Deadline, [this] { return bWoken || !Queue.empty(); });
		bWoken = false;
	}
	return true;
}

void FGameThread::Wake()
{
	{
		const std::lock_guard Guard(Lock);
		bWoken = true;
	}
	Changed.notify_all();
}

void FGameThread::Clear()
{
	std::deque<std::function<void()>> Dropped; // destroyed outside the lock: what a task holds may post again
	const std::lock_guard Guard(Lock);
	Dropped.swap(Queue);
}

void AsyncTask(ENamedThreads Thread, std::function<void()> Task)
{
	if (Thread == ENamedThreads::GameThread)
		FGameThread::Get().Post(std::move(Task));
}
