#include "ToolExecutor.h"

#include "Core/Threads/StopToken.h"
#include "Core/Threads/Tasks.h"

#include <atomic>
#include <gtest/gtest.h>
#include <map>
#include <new>
#include <stdexcept>
#include <stop_token>
#include <thread>

namespace
{
using namespace Orivane;
using namespace std::chrono_literals;

/** Keeps the game thread for as long as the test's function runs, then completes. */
class FHoldingTool final : public ITool
{
public:
	explicit FHoldingTool(std::function<void()> InHold) : Hold(std::move(InHold)) {}

	FString GetSchema() const override { return "{}"; }
	FString GetDescription() const override { return "test"; }
	void ValidateArguments(const FString&, FToolResult&) override {}
	FString GetMetadata() override { return "{}"; }
	void InvalidateMetadata() override {}
	void Execute(const FToolCommand&, TSharedPtr<FToolResult> Result, TDelegate<void(FToolResult&)> OnComplete) override
	{
		Hold();
		Result->AddSuccessMessage("done");
		OnComplete.Execute(*Result);
	}

private:
	const std::function<void()> Hold;
};

/** A tool that completes when the test says so. */
class FManualTool final : public ITool
{
public:
	explicit FManualTool(FString InMetadata) : Metadata(std::move(InMetadata)) {}

	FString GetSchema() const override { return "{}"; }
	FString GetDescription() const override { return "test"; }
	void ValidateArguments(const FString&, FToolResult& Result) override { Result.AddErrorMessage("only for those who ask"); }
	FString GetMetadata() override { return Metadata; }
	void InvalidateMetadata() override {}
	void Execute(const FToolCommand& Command, TSharedPtr<FToolResult> Result, TDelegate<void(FToolResult&)> OnComplete) override
	{
		Started += Command.CommandId.ToStdString();
		Tokens[Command.CommandId.ToStdString()] = GetStopToken();
		Completions[Command.CommandId.ToStdString()] = {OnComplete, Result.get()};
	}

	/** The result is reached through a bare pointer: it must be alive because the completion is. */
	void Complete(const std::string& Id)
	{
		const FCompletion Completion = std::exchange(Completions[Id], {});
		Completion.Result->AddSuccessMessage("done");
		Completion.OnComplete.Execute(*Completion.Result);
	}

	/** Those that were asked to stop, in the order of their ids. */
	std::string GetStopped() const
	{
		std::string Stopped;
		for (const auto& [Id, Token] : Tokens)
			Stopped += Token.stop_requested() ? Id : "";
		return Stopped;
	}

	std::string Started;

private:
	struct FCompletion
	{
		TDelegate<void(FToolResult&)> OnComplete;
		FToolResult* Result = nullptr;
	};
	FString Metadata;
	std::map<std::string, FCompletion> Completions;
	std::map<std::string, std::stop_token> Tokens;
};

class ToolExecutor : public testing::Test
{
protected:
	ToolExecutor()
	{
		FGameThread::Get().BindToThisThread();
		FGameThread::Get().Clear();
		Executor->RegisterTool("sequential", Sequential);
		Executor->RegisterTool("parallel", Parallel);
	}

	FToolCallId Call(const char* Tool, const char* Id, std::chrono::milliseconds TimeLimit = 30s)
	{
		const FToolCallOptions Options{.TimeLimit = TimeLimit, .ExplainTimeOut = {}};
		return Executor->Call({Id, Tool, "{}"}, Options,
			[this, Id](FToolResult& Result)
			{ Answers += std::string(Answers.empty() ? "" : " | ") + Id + ": " + Result.GetMessages()[0].Text.ToStdString(); });
	}
	static void Pump()
	{
		while (FGameThread::Get().Pump() > 0)
		{
		}
	}
	void Pass(std::chrono::milliseconds Time)
	{
		Now += Time;
		Executor->EndOverdueCalls();
		Pump();
	}

	FToolExecutor::FTime Now;
	std::string Answers;
	TSharedPtr<FManualTool> Sequential = MakeShared<FManualTool>(R"({"execution_mode": "sequential"})");
	TSharedPtr<FManualTool> Parallel = MakeShared<FManualTool>("{}");
	TSharedPtr<FToolExecutor> Executor = MakeShared<FToolExecutor>(EExecutorClock::Manual, [this] { return Now; });
};

TEST_F(ToolExecutor, SequentialCallsWaitForEachOther)
{
	Call("sequential", "a");
	Call("sequential", "b");
	Call("parallel", "p");
	Pump();
	EXPECT_EQ(Sequential->Started, "a");
	EXPECT_EQ(Parallel->Started, "p") << "other tools do not wait";
	Sequential->Complete("a");
	Pump();
	EXPECT_EQ(Sequential->Started, "ab");
	Sequential->Complete("b");
	EXPECT_EQ(Answers, "a: done | b: done");
}

TEST_F(ToolExecutor, ACallThatNeverCompletesIsAnsweredAndTheNextOneWorks)
{
	Call("sequential", "a", 2500ms);
	Call("sequential", "b", 2500ms);
	Pump();
	Pass(2499ms);
	EXPECT_EQ(Answers, "");
	Pass(1ms);
	EXPECT_EQ(Answers, "a: Tool 'sequential' did not complete within 3 s");
	EXPECT_EQ(Sequential->Started, "ab") << "its place in the queue is free";
	Sequential->Complete("a");
	EXPECT_EQ(Answers, "a: Tool 'sequential' did not complete within 3 s") << "the late completion is dropped";
	Sequential->Complete("b");
	EXPECT_EQ(Answers, "a: Tool 'sequential' did not complete within 3 s | b: done") << "waiting did not count";
}

TEST_F(ToolExecutor, PreparesACallWhenItIsItsTurn)
{
	const auto CallPrepared = [this](const char* Id, std::function<void()> BeforeStart)
	{
		Executor->Call({Id, "sequential", "{}"}, {.TimeLimit = 1s, .ExplainTimeOut = {}, .BeforeStart = std::move(BeforeStart)},
			[this, Id](FToolResult& Result)
			{ Answers += std::string(Id) + ": " + Result.GetMessages()[0].Text.ToStdString() + "; "; });
	};
	const auto Note = [this]
	{
		Sequential->Started += "+";
		Now += 2s; // does not count
	};
	CallPrepared("a", Note);
	CallPrepared("b", [] { throw std::runtime_error("no memory"); });
	CallPrepared("c", Note);
	Pump();
	EXPECT_EQ(Sequential->Started, "+a") << "not before the call that is waited for is done";
	Sequential->Complete("a");
	Pump();
	EXPECT_EQ(Sequential->Started, "+a+c");
	Sequential->Complete("c");
	EXPECT_EQ(Answers, "a: done; b: Tool 'sequential' failed: no memory; c: done; ");
}

TEST_F(ToolExecutor, TimeOutsSayWhy)
{
	const FToolCallOptions Options{
		.TimeLimit = 1s, .ExplainTimeOut = [](const FToolCommand& Command) { return Command.CommandId + " hangs"; }};
	FString Text;
	Executor->Call({"a", "parallel", "{}"}, Options, [&](FToolResult& Result) { Text = Result.GetMessages()[0].Text; });
	Pump();
	Pass(1s);
	EXPECT_EQ(Text.View(), "Tool 'parallel' did not complete within 1 s: a hangs");
}

TEST_F(ToolExecutor, CancelledCallsAreNotAnswered)
{
	const FToolCallId A = Call("sequential", "a");
	const FToolCallId B = Call("sequential", "b");
	Call("sequential", "c");
	Pump();
	EXPECT_TRUE(Executor->Cancel(B)) << "one that waits";
	EXPECT_TRUE(Executor->Cancel(A)) << "one that runs";
	EXPECT_FALSE(Executor->Cancel(A));
	Pump();
	EXPECT_EQ(Sequential->Started, "ac");
	Sequential->Complete("a");
	Sequential->Complete("c");
	EXPECT_EQ(Answers, "c: done");
	EXPECT_FALSE(Executor->Cancel(999));
}

TEST_F(ToolExecutor, UnknownToolsAreAnswered)
{
	Call("PARALLEL", "p");
	Call("nonsense", "x");
	Executor->UnregisterTool("parallel");
	Executor->UnregisterTool("never registered");
	Call("parallel", "y");
	Pump();
	EXPECT_EQ(Parallel->Started, "p") << "names ignore case; a call that was accepted runs";
	EXPECT_EQ(Answers, "x: Unknown tool 'nonsense'; registered: sequential | y: Unknown tool 'parallel'; registered: sequential");
}

TEST_F(ToolExecutor, CallsThatItLeavesBehindAreAnsweredOnce)
{
	Call("parallel", "a");
	Pump();
	Call("parallel", "b");
	Executor.reset();
	const std::string Both =
		"a: Tool 'parallel' did not complete: its executor is shut down | b: Tool 'parallel' did not complete: its executor is "
		"shut down";
	EXPECT_EQ(Answers, Both);
	Parallel->Complete("a");
	Pump();
	EXPECT_EQ(Answers, Both);
	EXPECT_EQ(Parallel->Started, "a") << "what waited does not start any more";
}

TEST_F(ToolExecutor, WaitingForAToolThatHoldsTheThreadDoesNotCount)
{
	Executor->RegisterTool("holding", MakeShared<FHoldingTool>([this] { Now += 9s; }));
	Call("holding", "a", 10s);
	Call("parallel", "b", 2s);
	Pump();
	Pass(1999ms);
	EXPECT_EQ(Answers, "a: done") << "though it was posted longer ago than its limit";
	Pass(1ms);
	EXPECT_EQ(Answers, "a: done | b: Tool 'parallel' did not complete within 2 s");
}

TEST_F(ToolExecutor, ACallThatCannotStartIsAnsweredWithWhatItWaitedFor)
{
	const auto Hold = [this]
	{
		Now += 3s;
		Executor->EndOverdueCalls();
		EXPECT_EQ(Answers, "a: Tool 'holding' did not complete within 3 s") << "it may still stop";
		EXPECT_TRUE(IsStopRequested());
		Now += 499ms;
		Call("parallel", "late", 30s);
		Executor->EndOverdueCalls();
		EXPECT_EQ(Answers.find("b:"), std::string::npos);
		Now += 1ms;
		Executor->EndOverdueCalls();
		Executor->EndOverdueCalls(); // for the sequential one, whose turn has come
	};
	Executor->RegisterTool("holding", MakeShared<FHoldingTool>(Hold));
	Call("holding", "a", 3s);
	Call("parallel", "b", 1s);
	Call("sequential", "c", 1s);
	Pump();
	const std::string Why = "it waited for tool 'holding', which still holds the game thread after its limit of 3 s";
	EXPECT_EQ(Answers,
		"a: Tool 'holding' did not complete within 3 s | b: Tool 'parallel' could not start: " + Why +
			" | c: Tool 'sequential' could not start: " + Why);
	EXPECT_EQ(Parallel->Started, "late") << "and whoever came later runs when the thread is free";
	Call("parallel", "d", 1s);
	Pass(1s);
	EXPECT_NE(Answers.find("d: Tool 'parallel' could not start within 1 s: the game thread is busy"), std::string::npos)
		<< "nobody knows with what";
}

TEST_F(ToolExecutor, AsksToolsToStop)
{
	Call("parallel", "a", 1s);
	const FToolCallId B = Call("parallel", "b");
	Call("parallel", "c");
	Call("parallel", "d");
	Pump();
	EXPECT_FALSE(IsStopRequested());
	Parallel->Complete("d");
	Pass(1s);
	Executor->Cancel(B);
	EXPECT_EQ(Parallel->GetStopped(), "ab") << "its time is up; cancelled";
	Executor.reset();
	EXPECT_EQ(Parallel->GetStopped(), "abc") << "left behind; the last one was done";
}

TEST_F(ToolExecutor, AToolThatThrowsFailsItsOwnCall)
{
	const auto Throw = [] { throw std::bad_alloc(); };
	Executor->RegisterTool("throwing", MakeShared<FHoldingTool>(Throw));
	Call("throwing", "a");
	Call("sequential", "b");
	Pump();
	EXPECT_EQ(Answers, "a: Tool 'throwing' failed: out of memory");
	Call("parallel", "c");
	Call("sequential", "d");
	Pump();
	Executor->FailStartedCalls("out of memory"); // a task of theirs has thrown
	Pump();
	EXPECT_EQ(Answers,
		"a: Tool 'throwing' failed: out of memory | b: Tool 'sequential' failed: out of memory | c: Tool 'parallel' failed: out "
		"of memory");
	EXPECT_EQ(Parallel->GetStopped() + Sequential->GetStopped(), "cb");
	EXPECT_EQ(Sequential->Started, "bd") << "and the queue goes on";
}

TEST_F(ToolExecutor, LimitsBeyondTheClocksEndAreNone)
{
	Call("parallel", "a", std::chrono::milliseconds::max());
	Pump();
	Pass(std::chrono::hours(24 * 365));
	EXPECT_EQ(Answers, "");
}

TEST(ToolExecutorClock, EndsCallsWhileTheGameThreadIsBusy)
{
	FGameThread::Get().BindToThisThread();
	FGameThread::Get().Clear();
	const auto Executor = MakeShared<FToolExecutor>(EExecutorClock::OwnThread);
	Executor->RegisterTool("parallel", MakeShared<FManualTool>("{}"));
	std::atomic<int32> NumAnswers = 0;
	for (int32 Index = 0; Index < 20; ++Index)
	{
		const FToolCallOptions Options{.TimeLimit = std::chrono::milliseconds(Index % 5), .ExplainTimeOut = {}};
		const FToolCallId Id = Executor->Call({"a", "parallel", "{}"}, Options,
			[&](FToolResult&)
			{
				++NumAnswers;
				NumAnswers.notify_all();
			});
		if (Index % 4 == 3 && Executor->Cancel(Id))
			++NumAnswers;
	}
	// The game thread runs no task here: only the executor's own thread can answer.
	for (int32 Seen = NumAnswers; Seen < 20; Seen = NumAnswers)
		NumAnswers.wait(Seen);
	EXPECT_EQ(NumAnswers, 20);
	FGameThread::Get().Clear();
}
TEST(ToolExecutorClock, MayLetGoOfTheExecutor)
{
	FGameThread::Get().BindToThisThread();
	FGameThread::Get().Clear();
	for (int32 Round = 0; Round < 50; ++Round)
	{
		auto Executor = MakeShared<FToolExecutor>(EExecutorClock::OwnThread);
		Executor->RegisterTool("parallel", MakeShared<FManualTool>("{}"));
		std::atomic<int32> NumAnswers = 0;
		for (const char* Id : {"a", "b"})
			Executor->Call({Id, "parallel", "{}"}, {.TimeLimit = 0ms, .ExplainTimeOut = {}},
				[&NumAnswers, Kept = Executor](FToolResult&) mutable
				{
					Kept.reset();
					++NumAnswers;
					NumAnswers.notify_all();
				});
		Executor.reset();
		for (int32 Seen = NumAnswers; Seen < 2; Seen = NumAnswers)
			NumAnswers.wait(Seen);
		EXPECT_EQ(NumAnswers, 2);
		FGameThread::Get().Clear();
	}
}
}
