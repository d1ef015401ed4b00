#pragma once

#include "Core/Base/Containers.h"
#include "Core/Text/String.h"

/** What a thread of its own does. */
class FRunnable
{
public:
	virtual ~FRunnable() = default;

	/** On the new thread, before Run; false ends the thread at once. */
	virtual bool Init() { return true; }
	/** The thread's work; the returned code is for debuggers. */
	virtual uint32 Run() = 0;
	/** Asks Run to return soon. Any thread, also more than once. */
	virtual void Stop() {}
};

/** A named thread that runs one runnable, once. A few of the system's threads are kept for those that follow, as starting one
 * takes longer than a short search; they end with the program. */
class FRunnableThread
{
public:
	/**
	 * Starts the thread. The runnable must outlive this object. StackSize in bytes, 0 for the system's own; it, Priority,
	 * AffinityMask (0: any processor) and CreationFlags are hints that this platform leaves to the system. Null where there are
	 * no more threads.
	 */
	static TSharedPtr<FRunnableThread> Create(FRunnable* Runnable, const FString& Name, uint32 StackSize = 0, int32 Priority = 0,
		uint64 AffinityMask = 0, uint32 CreationFlags = 0);
	/** Stops the runnable and waits for the thread. Not on the thread itself. */
	~FRunnableThread();
	FRunnableThread(const FRunnableThread&) = delete;
	FRunnableThread& operator=(const FRunnableThread&) = delete;

	/** Not on the thread itself. */
	void WaitForCompletion();

private:
	class FSystemThread;
	class FIdleThreads;

	FRunnableThread(FRunnable& InRunnable, const FString& Name);

	FRunnable& Runnable;
	const TSharedPtr<FIdleThreads> IdleThreads;
	TUniquePtr<FSystemThread> Thread; // null when what it ran has ended and been waited for
};
