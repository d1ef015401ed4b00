#include "ToolExecutor.h"

#include "Core/Tasks.h"

#include <atomic>
#include <gtest/gtest.h>
#include <map>
#include <thread>

namespace
{
using namespace Orivane;
using namespace std::chrono_literals;

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
		Completions[Command.CommandId.ToStdString()] = {OnComplete, Result.get()};
	}

	/** The result is reached through a bare pointer: it must be alive because the completion is. */
	void Complete(const std::string& Id)
	{
		const FCompletion Completion = std::exchange(Completions[Id], {});
		Completion.Result->AddSuccessMessage("done");
		Completion.OnComplete.Execute(*Completion.Result);
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
	TSharedPtr<FManualTool> Sequential = MakeShared<FManualTool>(R"({"execution_mode": "sequential"})");
	TSharedPtr<FManualTool> Parallel = MakeShared<FManualTool>("{}");
	TSharedPtr<FToolExecutor> Executor = MakeShared<FToolExecutor>(EExecutorClock::Manual, [this] { return Now; });
	std::string Answers;
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

TEST_F(ToolExecutor, OutlivesItsOwner)
{
	Call("parallel", "a");
	Pump();
	Executor.reset();
	Parallel->Complete("a");
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
}
