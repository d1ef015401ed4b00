#pragma once

#include "OrivaneToolkit/ToolExecutor.h"

#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <thread>

namespace Orivane
{
enum class EExecutorClock : uint8
{
	OwnThread, // a thread of the executor ends calls when their time is up
	Manual,	   // the owner calls EndOverdueCalls
};

/** The executor. See IToolExecutor for what callers rely on. */
class FToolExecutor final : public IToolExecutor, public std::enable_shared_from_this<FToolExecutor>
{
public:
	using FTime = std::chrono::steady_clock::time_point;

	explicit FToolExecutor(EExecutorClock InClock, std::function<FTime()> InNow = &std::chrono::steady_clock::now);
	~FToolExecutor() override;

	void RegisterTool(const FString& Name, const TSharedPtr<ITool>& Entry) override;
	void UnregisterTool(const FString& Name) override;
	TSharedPtr<ITool> FindTool(const FString& Name) const override;
	TArray<FString> GetToolNames() const override;
	FToolCallId Call(
		const FToolCommand& Command, const FToolCallOptions& Options, TDelegate<void(FToolResult&)> OnAnswer) override;
	bool Cancel(FToolCallId Id) override;
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
		bool bSequential = false;
		bool bDispatched = false;
		bool bStarted = false;
		FTime Deadline;
	};
	using FCallPtr = std::shared_ptr<FCall>;

	void Dispatch(const FCallPtr& Call);
	void DispatchNextSequential();
	void Run(const FCallPtr& Call);
	/** Takes the call off the books; false when somebody else has done so. */
	bool Close(const FCallPtr& Call);
	void Answer(const FCallPtr& Call, FToolResult& Result);
	void RunClock(std::stop_token Stop);

	const EExecutorClock Clock;
	const std::function<FTime()> Now;
	mutable std::mutex Lock; // guards everything below; never held while foreign code runs
	std::condition_variable_any DeadlinesChanged;
	TMap<FString, TSharedPtr<ITool>> Tools;
	std::map<FToolCallId, FCallPtr> OpenCalls;
	std::deque<FCallPtr> SequentialQueue;
	FCallPtr RunningSequential;
	FToolCallId LastId = 0;
	std::jthread ClockThread; // last: stops before the rest goes
};
}
