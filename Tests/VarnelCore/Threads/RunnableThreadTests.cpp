#include "Core/Threads/RunnableThread.h"

#include "Core/Base/Types.h"

#include <atomic>
#include <gtest/gtest.h>
#include <pthread.h>
#include <set>
#include <string>
#include <thread>
#include <unistd.h>

namespace
{
/** Notes what happens to it; goes on until it is stopped where it is told to wait. */
class FNotingRunnable final : public FRunnable
{
public:
	bool Init() override { return bInit; }
	uint32 Run() override
	{
		char SystemName[16] = {};
		pthread_getname_np(pthread_self(), SystemName, sizeof SystemName);
		Name = SystemName;
		Thread = gettid(); // other ids are used again by a new thread
		++NumRuns;
		while (bWaits && !bStopped)
			std::this_thread::yield();
		bEnded = true;
		return 0;
	}
	void Stop() override { bStopped = true; }

	bool bInit = true;
	bool bWaits = false;
	std::atomic<bool> bStopped = false;
	int32 NumRuns = 0; // this and what follows: once the thread has been waited for
	bool bEnded = false;
	std::string Name;
	pid_t Thread = 0;
};
}

TEST(RunnableThread, RunsOnceAndWaitsForTheEnd)
{
	FNotingRunnable Waits;
	Waits.bWaits = true;
	FRunnableThread::Create(&Waits, "Stopped").reset();
	EXPECT_TRUE(Waits.bStopped);
	EXPECT_TRUE(Waits.bEnded) << "gone, so nothing may run any more";

	FNotingRunnable Refuses;
	Refuses.bInit = false;
	FRunnableThread::Create(&Refuses, "Refused")->WaitForCompletion();
	EXPECT_EQ(Refuses.NumRuns, 0);
	EXPECT_FALSE(Refuses.bStopped) << "what has been waited for is not stopped";
}

TEST(RunnableThread, ThreadsAreKeptButNeverShared)
{
	std::set<pid_t> OneByOne;
	for (const char* Name : {"First", "Second", "Third"})
	{
		FNotingRunnable Runnable;
		FRunnableThread::Create(&Runnable, Name)->WaitForCompletion();
		EXPECT_EQ(Runnable.NumRuns, 1);
		EXPECT_EQ(Runnable.Name, Name);
		OneByOne.insert(Runnable.Thread);
	}
	EXPECT_EQ(OneByOne.size(), 1U);

	constexpr int32 NumAtOnce = 5; // more than are kept
	for (int32 Round = 0; Round < 3; ++Round)
	{
		FNotingRunnable Runnables[NumAtOnce];
		TSharedPtr<FRunnableThread> Threads[NumAtOnce];
		for (int32 Index = 0; Index < NumAtOnce; ++Index)
		{
			Runnables[Index].bWaits = true;
			Threads[Index] = FRunnableThread::Create(&Runnables[Index], "AtOnce");
		}
		std::set<pid_t> AtOnce;
		for (int32 Index = 0; Index < NumAtOnce; ++Index)
		{
			Runnables[Index].Stop();
			Threads[Index]->WaitForCompletion();
			AtOnce.insert(Runnables[Index].Thread);
			EXPECT_TRUE(Runnables[Index].bEnded);
		}
		EXPECT_EQ(AtOnce.size(), static_cast<std::size_t>(NumAtOnce));
	}
}
