#pragma once

#include "Core/Base/Map.h"
#include "OrivaneToolkit/ToolExecutor.h"

#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <stop_token>
#include <thread>
#include <vector>

namespace Orivane
{
enum class EExecutorClock : uint8
{
	OwnThread, // a thread of the executor ends calls when their time is up
	Manual,	   // the owner calls EndOverdueCalls
};

/**
 * The executor. See IToolExecutor for what callers rely on. A tool whose call is answered by the clock, cancelled, or left behind
 * by the executor itself is asked to stop (see FStopScope). It then has a grace time to leave the game thread before the calls
 * that wait for that thread are answered too.
 */
class FToolExecutor final : public IToolExecutor, public std::enable_shared_from_this<FToolExecutor>
{
public:
	using FTime = std::chrono::steady_clock::time_point;

	explicit FToolExecutor(EExecutorClock InClock, std::function<FTime()> InNow = &std::chrono::steady_clock::now);
	/** Answers the calls that are open with an error. Any thread, the executor's clock too. */
	~FToolExecutor() override;

	void RegisterTool(const FString& Name, const TSharedPtr<ITool>& Entry) override;
	void UnregisterTool(const FString& Name) override;
	TSharedPtr<ITool> FindTool(const FString& Name) const override;
	TArray<FString> GetToolNames() const override;
	FToolCallId Call(
		const FToolCommand& Command, const FToolCallOptions& Options, TDelegate<void(FToolResult&)> OnAnswer) override;
	bool Cancel(FToolCallId Id) override;
	void FailStartedCalls(const FString& Error) override;
	bool IsAnyToolRunning() const override;

	/** Answers the calls whose time is up. */
	void EndOverdueCalls();

private:
	struct FCall
	{
		FToolCallId Id = 0;
		FToolCommand Command;
		FToolCallOptions Options;
		TDelegate<void(FToolResult&)> OnAnswer;
		TSharedPtr<ITool> Tool;
		std::stop_source Stop = {};
		bool bSequential = false;
		bool bDispatched = false;
		bool bStarted = false;
		FTime Dispatched = {};
		FTime Deadline = {}; // once started
	};
	using FCallPtr = std::shared_ptr<FCall>;
	struct FOverdueCall
	{
		FCallPtr Call;
		FCallPtr Holder; // what it waited for; null when it ran itself, or when that is unknown
	};
	class FOnThread;

	void Dispatch(const FCallPtr& Call);
	void DispatchNextSequential();
	void Run(const FCallPtr& Call);
	/** These are false when it has been answered already. */
	bool Prepare(const FCallPtr& Call);
	bool Start(const FCallPtr& Call);
	void Execute(ITool& Tool, const FCallPtr& Call, const TSharedPtr<FToolResult>& Result);
	/** Takes the call off the books; false when that has been done already. */
	bool Close(const FCallPtr& Call);
	void Answer(const FCallPtr& Call, FToolResult& Result);
	/** Hands the answer of a call that is off the books to its caller. */
	void Deliver(const FCallPtr& Call, FToolResult& Result);
	void DeliverError(const FCallPtr& Call, const FString& Error);
	std::vector<FOverdueCall> TakeOverdueCalls();
	static FString DescribeEnd(const FOverdueCall& Overdue);
	void RunClock(std::stop_token Stop);
	void StopClock();

	// These are called under the lock.
	void Remove(const FCallPtr& Call);
	/** When the call is to be answered whatever its tool does. */
	FTime GetEnd(const FCall& Call) const;
	FTime FindNextEnd() const;
	void WakeClockIfSooner();

	const EExecutorClock Clock;
	const std::function<FTime()> Now;
	mutable std::mutex Lock; // guards everything below; never held while foreign code runs
	std::condition_variable_any DeadlinesChanged;
	FTime ClockWakes = FTime::max(); // by itself
	TMap<FString, TSharedPtr<ITool>> Tools;
	std::map<FToolCallId, FCallPtr> OpenCalls;
	std::deque<FCallPtr> SequentialQueue;
	FCallPtr RunningSequential;
	std::vector<FCallPtr> OnThread; // calls whose tool is on the game thread, the innermost last
	FToolCallId LastId = 0;
	std::jthread ClockThread; // last: stops before the rest goes
};
}
