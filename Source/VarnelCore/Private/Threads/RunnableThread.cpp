#include "Core/Threads/RunnableThread.h"

#include "Core/Base/Assert.h"

#include <condition_variable>
#include <mutex>
#include <pthread.h>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace
{
constexpr std::size_t MaxSystemNameBytes = 15;
constexpr std::size_t MaxIdleThreads = 2; // one that searches and one that watches it

void NameThisThread(const FString& Name)
{
	const std::string Short(Name.View().substr(0, MaxSystemNameBytes));
	pthread_setname_np(pthread_self(), Short.c_str());
}
}

/** A thread that runs one runnable after another. */
class FRunnableThread::FSystemThread
{
public:
	FSystemThread() : Thread([this] { RunAll(); }) {}

	/** When nothing runs. */
	~FSystemThread()
	{
		{
			const std::lock_guard Guard(Lock);
			bEnd = true;
		}
		Changed.notify_all();
		Thread.join();
	}

	/** When nothing runs. */
	void Start(FRunnable& InRunnable, const FString& InName)
	{
		{
			const std::lock_guard Guard(Lock);
			Name = InName;
			Runnable = &InRunnable;
		}
		Changed.notify_all();
	}

	void WaitUntilIdle()
	{
		std::unique_lock Guard(Lock);
		Changed.wait(Guard, [this] { return !Runnable; });
	}

	bool IsThisThread() const { return Thread.get_id() == std::this_thread::get_id(); }

private:
	void RunAll()
	{
		std::unique_lock Guard(Lock);
		while (true)
		{
			Changed.wait(Guard, [this] { return Runnable || bEnd; });
			if (!Runnable)
				return;
			Guard.unlock();
			NameThisThread(Name);
			if (Runnable->Init())
				Runnable->Run();
			Guard.lock();
			Runnable = nullptr;
			Changed.notify_all();
		}
	}

	std::mutex Lock;
	std::condition_variable Changed;
	FString Name;
	FRunnable* Runnable = nullptr; // null while idle
	bool bEnd = false;
	std::thread Thread; // last: it uses the rest
};

/** Threads that wait for the next runnable. Every FRunnableThread holds on to them, so that one which goes while the program ends
 * still finds them. */
class FRunnableThread::FIdleThreads
{
public:
	static const TSharedPtr<FIdleThreads>& Get()
	{
		static const TSharedPtr<FIdleThreads> Instance = MakeShared<FIdleThreads>();
		return Instance;
	}

	FIdleThreads() { Threads.reserve(MaxIdleThreads); }

	/** One that is kept, else a new one. */
	TUniquePtr<FSystemThread> Take()
	{
		{
			const std::lock_guard Guard(Lock);
			if (!Threads.empty())
			{
				TUniquePtr<FSystemThread> Kept = std::move(Threads.back());
				Threads.pop_back();
				return Kept;
			}
		}
		return MakeUnique<FSystemThread>();
	}

	/** Ends it when there are enough. Takes no memory. */
	void Keep(TUniquePtr<FSystemThread> Idle)
	{
		const std::lock_guard Guard(Lock);
		if (Threads.size() < MaxIdleThreads)
			Threads.push_back(std::move(Idle));
	}

private:
	std::mutex Lock;
	std::vector<TUniquePtr<FSystemThread>> Threads;
};

TSharedPtr<FRunnableThread> FRunnableThread::Create(FRunnable* Runnable, const FString& Name, uint32, int32, uint64, uint32)
{
	checkf(Runnable, "a thread needs something to run");
	try
	{
		return TSharedPtr<FRunnableThread>(new FRunnableThread(*Runnable, Name));
	}
	catch (const std::system_error&)
	{
		return nullptr;
	}
}

FRunnableThread::FRunnableThread(FRunnable& InRunnable, const FString& Name)
	: Runnable(InRunnable)
	, IdleThreads(FIdleThreads::Get())
	, Thread(IdleThreads->Take())
{
	Thread->Start(Runnable, Name);
}

FRunnableThread::~FRunnableThread()
{
	if (!Thread)
		return;
	checkf(!Thread->IsThisThread(), "a thread cannot wait for its own end");
	Runnable.Stop();
	WaitForCompletion();
}

void FRunnableThread::WaitForCompletion()
{
	if (!Thread)
		return;
	Thread->WaitUntilIdle();
	IdleThreads->Keep(std::move(Thread));
}
