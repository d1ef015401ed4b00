#include "Core/Threads/StopToken.h"
#include "Core/Threads/Tasks.h"
#include "Support/Cases.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <numeric>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{
using FRange = std::pair<int32, int32>;

std::vector<FRange> ChunksOf(int32 Num, int32 ChunkSize)
{
	std::vector<FRange> Chunks;
	for (int32 Begin = 0; Begin < Num; Begin += ChunkSize)
		Chunks.emplace_back(Begin, std::min(Num, Begin + ChunkSize));
	return Chunks;
}

constexpr int32 ThreadCounts[] = {0, 1, 2, 3, 8};
}

TEST(ParallelForOrdered, ConsumesEveryChunkInOrderAfterItsWork)
{
	const struct
	{
		const char* Why;
		int32 Num;
		int32 ChunkSize;
	} Cases[] = {
		{"many chunks, the last one short", 10'001, 7},
		{"chunks of one", 300, 1},
		{"one chunk", 5, 100},
		{"exactly full chunks", 64, 8},
		{"nothing to do", 0, 8},
	};
	for (const auto& Case : Cases)
	{
		for (const int32 NumThreads : ThreadCounts)
		{
			SCOPED_TRACE(std::string(Case.Why) + ", threads " + std::to_string(NumThreads));
			std::vector<int32> Squares(static_cast<std::size_t>(Case.Num), -1);
			std::vector<FRange> Consumed;
			std::atomic<int32> NumConsuming = 0;
			std::atomic<int32> BadWorkers = 0;
			const int32 MaxWorkers = NumThreads == 0 ? GetNumWorkers() : NumThreads;
			int64 Sum = 0;
			ParallelForOrdered(
				Case.Num, Case.ChunkSize,
				[&](int32 Begin, int32 End, int32 Worker)
				{
					BadWorkers += Worker < 0 || Worker >= MaxWorkers;
					for (int32 Index = Begin; Index < End; ++Index)
						Squares[static_cast<std::size_t>(Index)] = Index % 1000;
				},
				[&](int32 Begin, int32 End)
				{
					EXPECT_EQ(NumConsuming++, 0) << "never two at once";
					Consumed.emplace_back(Begin, End);
					for (int32 Index = Begin; Index < End; ++Index)
						Sum = Sum * 31 % 1'000'007 + Squares[static_cast<std::size_t>(Index)]; // depends on the order
					--NumConsuming;
					return true;
				},
				NumThreads);
			int64 Expected = 0;
			for (int32 Index = 0; Index < Case.Num; ++Index)
				Expected = Expected * 31 % 1'000'007 + Index % 1000;
			EXPECT_EQ(Consumed, ChunksOf(Case.Num, Case.ChunkSize));
			EXPECT_EQ(Sum, Expected);
			EXPECT_EQ(BadWorkers, 0);
		}
	}
}

TEST(ParallelForOrdered, StopsWhereTheConsumerSays)
{
	for (const int32 NumThreads : ThreadCounts)
	{
		SCOPED_TRACE(NumThreads);
		std::vector<int32> Consumed;
		std::atomic<int32> NumWorked = 0;
		ParallelForOrdered(
			1'000'000, 1, [&](int32, int32, int32) { ++NumWorked; },
			[&](int32 Begin, int32)
			{
				Consumed.push_back(Begin);
				return Begin < 2;
			},
			NumThreads);
		EXPECT_EQ(Consumed, (std::vector<int32>{0, 1, 2}));
		EXPECT_LE(NumWorked, 3 + 64) << "workers stop too";
	}
}

TEST(ParallelForOrdered, WorkersWaitForASlowConsumer)
{
	constexpr int32 MaxAhead = 64;
	std::atomic<int32> NumBegun = 0;
	std::atomic<int32> NumConsumed = 0;
	std::atomic<int32> NumTooEarly = 0;
	ParallelForOrdered(
		10'000, 1,
		[&](int32 Begin, int32, int32)
		{
			++NumBegun;
			NumTooEarly += Begin >= NumConsumed + MaxAhead;
		},
		[&](int32, int32)
		{
			while (NumConsumed == 0 && NumBegun < MaxAhead) // the first one lasts until the others have done all they may
				std::this_thread::yield();
			++NumConsumed;
			return true;
		},
		3);
	EXPECT_EQ(NumConsumed, 10'000);
	EXPECT_EQ(NumTooEarly, 0);
}

TEST(ParallelForOrdered, WhatIsThrownEndsTheRunAndReachesTheCaller)
{
	for (const int32 NumThreads : ThreadCounts)
	{
		SCOPED_TRACE(NumThreads);
		int32 NumConsumed = 0;
		const auto ThrowAt = [](int32 Begin, int32 Place)
		{
			if (Begin == Place)
				throw std::runtime_error("full");
		};
		const auto Run = [&](int32 WorkPlace, int32 ConsumePlace)
		{
			NumConsumed = 0;
			ParallelForOrdered(
				100'000, 1, [&](int32 Begin, int32, int32) { ThrowAt(Begin, WorkPlace); },
				[&](int32 Begin, int32)
				{
					ThrowAt(Begin, ConsumePlace);
					++NumConsumed;
					return true;
				},
				NumThreads);
		};
		EXPECT_THROW(Run(500, INDEX_NONE), std::runtime_error);
		EXPECT_LE(NumConsumed, 500);
		EXPECT_THROW(Run(INDEX_NONE, 500), std::runtime_error);
		EXPECT_EQ(NumConsumed, 500);
		EXPECT_THROW(ParallelFor(
						 1000, 1, [&](int32 Begin, int32, int32) { ThrowAt(Begin, 500); }, NumThreads),
			std::runtime_error);
	}
}

TEST(StopToken, BelongsToItsThreadAndGoesAlongToWorkers)
{
	EXPECT_FALSE(IsStopRequested());
	std::stop_source Outer;
	std::stop_source Inner;
	const FStopScope OuterScope(Outer.get_token());
	Outer.request_stop();
	EXPECT_TRUE(IsStopRequested());
	bool bElsewhere = true;
	std::jthread([&] { bElsewhere = IsStopRequested(); }).join();
	EXPECT_FALSE(bElsewhere);
	{
		const FStopScope InnerScope(Inner.get_token());
		EXPECT_FALSE(IsStopRequested()) << "the innermost one counts";
	}
	std::atomic<int32> NumStopped = 0;
	ParallelFor(
		100, 1, [&](int32, int32, int32) { NumStopped += IsStopRequested(); }, 4);
	EXPECT_EQ(NumStopped, 100);
}

TEST(ParallelFor, TouchesEveryIndexOnce)
{
	for (const int32 NumThreads : ThreadCounts)
	{
		std::vector<int32> Touched(1000, 0);
		ParallelFor(
			1000, 3,
			[&](int32 Begin, int32 End, int32)
			{
				for (int32 Index = Begin; Index < End; ++Index)
					++Touched[static_cast<std::size_t>(Index)];
			},
			NumThreads);
		EXPECT_EQ(std::count(Touched.begin(), Touched.end(), 1), 1000) << NumThreads << " threads";
	}
}

TEST(GameThread, PumpRunsOneRoundInOrder)
{
	FGameThread Loop;
	std::string Ran;
	Loop.Post(
		[&]
		{
			Ran += "a";
			Loop.Post([&] { Ran += "c"; });
		});
	Loop.Post([&] { Ran += "b"; });
	EXPECT_EQ(Loop.Pump(), 2);
	EXPECT_EQ(Ran, "ab") << "a task posted by a task waits for the next round";
	EXPECT_EQ(Loop.Pump(), 1);
	EXPECT_EQ(Ran, "abc");
	EXPECT_EQ(Loop.Pump(), 0);
}

TEST(GameThread, TaskMayRunTheLoopItself)
{
	FGameThread Loop;
	std::string Ran;
	bool bAnswered = false;
	Loop.Post(
		[&]
		{
			Ran += "(";
			EXPECT_TRUE(Loop.RunUntil([&] { return bAnswered; }));
			Ran += ")";
		});
	Loop.Post([&] { Ran += "x"; });
	Loop.Post([&] { bAnswered = true; });
	Loop.Post([&] { Ran += "y"; });
	EXPECT_EQ(Loop.Pump(), 2) << "the nested loop took two of the four";
	EXPECT_EQ(Ran, "(x)y");
}

TEST(GameThread, ClearDropsWhatHasNotRun)
{
	FGameThread Loop;
	std::string Ran;
	Loop.Post(
		[&]
		{
			Ran += "a";
			Loop.Clear();
			Loop.Post([&] { Ran += "c"; });
		});
	Loop.Post([&] { Ran += "b"; });
	EXPECT_EQ(Loop.Pump(), 1);
	EXPECT_EQ(Loop.Pump(), 1);
	EXPECT_EQ(Ran, "ac");
}

TEST(GameThread, ClearLetsGoOfTasksThatPostWhileTheyDie)
{
	struct FPostsAtTheEnd
	{
		FGameThread& Loop;
		~FPostsAtTheEnd()
		{
			Loop.Post([] {});
		}
	};
	FGameThread Loop;
	Loop.Post([Last = std::make_shared<FPostsAtTheEnd>(Loop)] {});
	Loop.Clear();
	EXPECT_EQ(Loop.Pump(), 1);
}

TEST(GameThread, RunUntilEnds)
{
	constexpr auto NoTime = std::chrono::steady_clock::duration::zero();
	FGameThread Loop;
	int32 NumRan = 0;
	for (int32 Count = 0; Count < 3; ++Count)
		Loop.Post([&] { ++NumRan; });
	EXPECT_TRUE(Loop.RunUntil([] { return true; }, NoTime)) << "done before anything ran";
	EXPECT_EQ(NumRan, 0);
	EXPECT_TRUE(Loop.RunUntil([&] { return NumRan == 2; })) << "asked between tasks";
	EXPECT_EQ(NumRan, 2);
	EXPECT_FALSE(Loop.RunUntil([] { return false; }, NoTime)) << "no time left";
	std::stop_source Stopped;
	Stopped.request_stop();
	EXPECT_FALSE(Loop.RunUntil([] { return false; }, std::chrono::hours(1), Stopped.get_token()));
	EXPECT_EQ(Loop.Pump(), 1) << "what did not run is still queued";
	EXPECT_FALSE(Loop.RunUntil([] { return false; }, std::chrono::milliseconds(1))) << "the time ends a wait for nothing";
	EXPECT_TRUE(Loop.RunUntil([&] { return NumRan == 3; }, std::chrono::steady_clock::duration::max()))
		<< "a limit beyond the clock's end";
}

TEST(GameThread, OtherThreadsWakeRunUntil)
{
	FGameThread Loop;
	std::stop_source Source;
	std::atomic<bool> bDone = false;
	const TCase<std::function<void()>, bool> Cases[] = {
		{"by a task", [&] { Loop.Post([&] { bDone = true; }); }, true},
		{"by a wake after the condition changed",
			[&]
			{
				bDone = true;
				Loop.Wake();
			},
			true},
		{"by a stop", [&] { Source.request_stop(); }, false},
	};
	for (const auto& Case : Traced(Cases))
	{
		bDone = false;
		const std::jthread Other(Case.Given);
		EXPECT_EQ(Loop.RunUntil([&] { return bDone.load(); }, std::chrono::hours(1), Source.get_token()), Case.Expected);
	}
}

TEST(GameThread, NoPostIsLost)
{
	constexpr int32 NumEach = 2000;
	FGameThread Loop;
	Loop.BindToThisThread();
	std::vector<int32> Order[2]; // by thread; written by tasks, which all run here
	bool bAllHere = true;
	const auto PostAll = [&](int32 Thread)
	{
		for (int32 Number = 0; Number < NumEach; ++Number)
			Loop.Post(
				[&, Thread, Number]
				{
					Order[Thread].push_back(Number);
					bAllHere = bAllHere && Loop.IsGameThread();
				});
	};
	bool bOtherIsGameThread = true;
	{
		const std::jthread First(
			[&]
			{
				bOtherIsGameThread = Loop.IsGameThread();
				PostAll(0);
			});
		const std::jthread Second(PostAll, 1);
		EXPECT_TRUE(Loop.RunUntil([&] { return Order[0].size() + Order[1].size() == 2 * NumEach; }));
	}
	std::vector<int32> Expected(NumEach);
	std::iota(Expected.begin(), Expected.end(), 0);
	EXPECT_EQ(Order[0], Expected);
	EXPECT_EQ(Order[1], Expected);
	EXPECT_TRUE(bAllHere);
	EXPECT_FALSE(bOtherIsGameThread);
}

TEST(GameThread, IsAnyThreadUntilOneIsBound)
{
	FGameThread Loop;
	const auto MayActElsewhere = [&]
	{
		bool bMayAct = false;
		std::jthread([&] { bMayAct = Loop.MayActAsGameThread(); }).join();
		return bMayAct;
	};
	EXPECT_TRUE(Loop.MayActAsGameThread() && MayActElsewhere());
	Loop.BindToThisThread();
	EXPECT_TRUE(Loop.MayActAsGameThread());
	EXPECT_FALSE(MayActElsewhere());
}
