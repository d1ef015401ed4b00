#include "ToolExecutor.h"

#include "Core/Base/Failure.h"
#include "Core/Json/Json.h"
#include "Core/Threads/StopToken.h"
#include "Core/Threads/Tasks.h"

#include <algorithm>

namespace Orivane
{
namespace
{
bool IsSequential(ITool& Tool)
{
	TSharedPtr<FJsonObject> Metadata;
	FString Mode;
	return Json::ParseObject(Tool.GetMetadata(), Metadata) && Metadata->TryGetStringField("execution_mode", Mode) &&
		Mode == FString("sequential");
}

/** What a tool that was asked to stop may take to leave the game thread. */
constexpr auto GraceTime = std::chrono::milliseconds(500);

FToolExecutor::FTime Add(FToolExecutor::FTime Time, std::chrono::milliseconds Span)
{
	const auto Left = std::chrono::duration_cast<std::chrono::milliseconds>(FToolExecutor::FTime::max() - Time);
	return Span < Left ? Time + Span : FToolExecutor::FTime::max();
}

FString DescribeSeconds(std::chrono::milliseconds Time)
{
	return FString::FromInt(std::chrono::ceil<std::chrono::seconds>(Time).count()) + " s";
}

FString DescribeTimeOut(const FToolCommand& Command, const FToolCallOptions& Options)
{
	const FString Text = "Tool '" + Command.ToolName + "' did not complete within " + DescribeSeconds(Options.TimeLimit);
	const FString Explanation = Options.ExplainTimeOut ? Options.ExplainTimeOut(Command) : FString();
	return Explanation.IsEmpty() ? Text : Text + ": " + Explanation;
}

FString DescribeToolFailure(const FToolCommand& Command, const FString& Error)
{
	return "Tool '" + Command.ToolName + "' failed: " + Error;
}

FString DescribeUnknownTool(const FToolCommand& Command, const TArray<FString>& KnownNames)
{
	const FString Text = FString::Printf("Unknown tool '%s'", *Command.ToolName);
	return KnownNames.IsEmpty() ? Text : Text + "; registered: " + FString::Join(KnownNames, ", ");
}
}

FToolExecutor::FToolExecutor(EExecutorClock InClock, std::function<FTime()> InNow) : Clock(InClock), Now(std::move(InNow))
{
	if (Clock == EExecutorClock::OwnThread)
		ClockThread = std::jthread([this](std::stop_token Stop) { RunClock(Stop); });
}

FToolExecutor::~FToolExecutor()
{
	StopClock();
	std::map<FToolCallId, FCallPtr> Left;
	{
		std::lock_guard Guard(Lock);
		Left.swap(OpenCalls);
	}
	for (const auto& [Id, Call] : Left)
	{
		Call->Stop.request_stop();
		FToolResult Result(Call->Command);
		Result.AddErrorMessage("Tool '" + Call->Command.ToolName + "' did not complete: its executor is shut down");
		Call->OnAnswer.ExecuteIfBound(Result);
		Call->OnAnswer.Unbind();
	}
}

/** The clock's thread may be the last to let go of the executor, in the middle of an answer. */
void FToolExecutor::StopClock()
{
	if (!ClockThread.joinable())
		return;
	ClockThread.request_stop();
	if (ClockThread.get_id() == std::this_thread::get_id())
		ClockThread.detach();
	else
		ClockThread.join();
}

void FToolExecutor::RegisterTool(const FString& Name, const TSharedPtr<ITool>& Entry)
{
	std::lock_guard Guard(Lock);
	Tools.Add(Name, Entry);
}

void FToolExecutor::UnregisterTool(const FString& Name)
{
	std::lock_guard Guard(Lock);
	Tools.Remove(Name);
}

TSharedPtr<ITool> FToolExecutor::FindTool(const FString& Name) const
{
	std::lock_guard Guard(Lock);
	const TSharedPtr<ITool>* Found = Tools.Find(Name);
	return Found ? *Found : nullptr;
}

TArray<FString> FToolExecutor::GetToolNames() const
{
	std::lock_guard Guard(Lock);
	TArray<FString> Names;
	for (const auto& [Name, Tool] : Tools)
		Names.Add(Name);
	return Names;
}

FToolCallId FToolExecutor::Call(
	const FToolCommand& Command, const FToolCallOptions& Options, TDelegate<void(FToolResult&)> OnAnswer)
{
	auto NewCall = std::make_shared<FCall>(FCall{.Command = Command, .Options = Options, .OnAnswer = std::move(OnAnswer)});
	NewCall->Tool = FindTool(Command.ToolName);
	NewCall->bSequential = NewCall->Tool && IsSequential(*NewCall->Tool);
	{
		std::lock_guard Guard(Lock);
		NewCall->Id = ++LastId;
		OpenCalls.emplace(NewCall->Id, NewCall);
		if (NewCall->bSequential)
			SequentialQueue.push_back(NewCall);
	}
	if (NewCall->bSequential)
		DispatchNextSequential();
	else
		Dispatch(NewCall);
	return NewCall->Id;
}

bool FToolExecutor::Cancel(FToolCallId Id)
{
	FCallPtr Found;
	{
		std::lock_guard Guard(Lock);
		if (const auto Open = OpenCalls.find(Id); Open != OpenCalls.end())
			Found = Open->second;
	}
	if (!Found || !Close(Found))
		return false;
	Found->Stop.request_stop();
	DispatchNextSequential();
	return true;
}

void FToolExecutor::FailStartedCalls(const FString& Error)
{
	std::vector<FCallPtr> Started;
	{
		std::lock_guard Guard(Lock);
		for (const auto& [Id, Open] : OpenCalls)
		{
			if (Open->bStarted)
				Started.push_back(Open);
		}
	}
	for (const FCallPtr& Call : Started)
	{
		Call->Stop.request_stop();
		if (Close(Call))
			DeliverError(Call, DescribeToolFailure(Call->Command, Error));
	}
}

bool FToolExecutor::IsAnyToolRunning() const
{
	std::lock_guard Guard(Lock);
	return std::any_of(OpenCalls.begin(), OpenCalls.end(), [](const auto& Open) { return Open.second->bStarted; });
}

void FToolExecutor::Dispatch(const FCallPtr& Call)
{
	{
		std::lock_guard Guard(Lock);
		Call->Dispatched = Now();
		Call->bDispatched = true;
		WakeClockIfSooner();
	}
	AsyncTask(ENamedThreads::GameThread,
		[WeakThis = weak_from_this(), Call]
		{
			if (const auto This = WeakThis.lock())
				This->Run(Call);
		});
}

void FToolExecutor::DispatchNextSequential()
{
	FCallPtr Next;
	{
		std::lock_guard Guard(Lock);
		if (RunningSequential || SequentialQueue.empty())
			return;
		Next = RunningSequential = SequentialQueue.front();
		SequentialQueue.pop_front();
	}
	Dispatch(Next);
}

/** Lives while a call's tool is on the game thread. */
class FToolExecutor::FOnThread
{
public:
	FOnThread(FToolExecutor& InExecutor, const FCallPtr& Call) : Executor(InExecutor), Scope(Call->Stop.get_token())
	{
		std::lock_guard Guard(Executor.Lock);
		Executor.OnThread.push_back(Call);
	}
	~FOnThread()
	{
		std::lock_guard Guard(Executor.Lock);
		Executor.OnThread.pop_back();
	}
	FOnThread(const FOnThread&) = delete;
	FOnThread& operator=(const FOnThread&) = delete;

private:
	FToolExecutor& Executor;
	const FStopScope Scope;
};

void FToolExecutor::Run(const FCallPtr& Call)
{
	if (!Prepare(Call) || !Start(Call))
		return;
	// Taken out of the call: a tool that keeps its completion, and with it the call, must not keep itself alive.
	const TSharedPtr<ITool> Tool = std::move(Call->Tool);
	const auto Result = MakeShared<FToolResult>(Call->Command);
	if (Tool)
		return Execute(*Tool, Call, Result);
	Result->AddErrorMessage(DescribeUnknownTool(Call->Command, GetToolNames()));
	Answer(Call, *Result);
}

bool FToolExecutor::Prepare(const FCallPtr& Call)
{
	{
		std::lock_guard Guard(Lock);
		if (!OpenCalls.contains(Call->Id))
			return false;
	}
	try
	{
		if (Call->Options.BeforeStart)
			Call->Options.BeforeStart();
	}
	catch (const std::exception& Failure)
	{
		if (Close(Call))
			DeliverError(Call, DescribeToolFailure(Call->Command, DescribeFailure(Failure)));
		return false;
	}
	return true;
}

bool FToolExecutor::Start(const FCallPtr& Call)
{
	std::lock_guard Guard(Lock);
	if (!OpenCalls.contains(Call->Id))
		return false;
	Call->bStarted = true;
	Call->Deadline = Add(Now(), Call->Options.TimeLimit);
	WakeClockIfSooner();
	return true;
}

/** The completion owns the result, so a tool that completes late, after the caller was answered, still writes into live memory.
 */
void FToolExecutor::Execute(ITool& Tool, const FCallPtr& Call, const TSharedPtr<FToolResult>& Result)
{
	try
	{
		const FOnThread Here(*this, Call);
		Tool.Execute(Call->Command, Result,
			[WeakThis = weak_from_this(), Call, Result](FToolResult& Completed)
			{
				if (const auto This = WeakThis.lock())
					This->Answer(Call, Completed);
			});
	}
	catch (const std::exception& Failure)
	{
		if (!Close(Call)) // the failure was in the callback that took the answer
			throw;
		DeliverError(Call, DescribeToolFailure(Call->Command, DescribeFailure(Failure)));
	}
}

bool FToolExecutor::Close(const FCallPtr& Call)
{
	std::lock_guard Guard(Lock);
	if (!OpenCalls.contains(Call->Id))
		return false;
	Remove(Call);
	return true;
}

void FToolExecutor::Remove(const FCallPtr& Call)
{
	OpenCalls.erase(Call->Id);
	std::erase(SequentialQueue, Call);
	if (RunningSequential == Call)
		RunningSequential = nullptr;
}

void FToolExecutor::Answer(const FCallPtr& Call, FToolResult& Result)
{
	if (Close(Call))
		Deliver(Call, Result);
}

void FToolExecutor::Deliver(const FCallPtr& Call, FToolResult& Result)
{
	Call->OnAnswer.ExecuteIfBound(Result);
	Call->OnAnswer.Unbind();
	DispatchNextSequential();
}

void FToolExecutor::DeliverError(const FCallPtr& Call, const FString& Error)
{
	FToolResult Result(Call->Command);
	Result.AddErrorMessage(Error);
	Deliver(Call, Result);
}

FToolExecutor::FTime FToolExecutor::GetEnd(const FCall& Call) const
{
	if (Call.bStarted)
		return Call.Deadline;
	if (!Call.bDispatched)
		return FTime::max();
	if (!OnThread.empty())
		return Add(std::max(OnThread.back()->Deadline, Call.Dispatched), GraceTime);
	return Add(Call.Dispatched, Call.Options.TimeLimit); // something else than a tool holds the thread
}

FToolExecutor::FTime FToolExecutor::FindNextEnd() const
{
	FTime Next = FTime::max();
	for (const auto& [Id, Open] : OpenCalls)
		Next = std::min(Next, GetEnd(*Open));
	return Next;
}

void FToolExecutor::WakeClockIfSooner()
{
	if (FindNextEnd() < ClockWakes)
		DeadlinesChanged.notify_all();
}

void FToolExecutor::EndOverdueCalls()
{
	const auto Self = weak_from_this().lock(); // whom an answer reaches may let go of the executor
	for (const FOverdueCall& Overdue : TakeOverdueCalls())
	{
		Overdue.Call->Stop.request_stop();
		DeliverError(Overdue.Call, DescribeEnd(Overdue));
	}
}

std::vector<FToolExecutor::FOverdueCall> FToolExecutor::TakeOverdueCalls()
{
	std::lock_guard Guard(Lock);
	const FTime Time = Now();
	std::vector<FOverdueCall> Overdue;
	for (const auto& [Id, Open] : OpenCalls)
	{
		if (GetEnd(*Open) <= Time)
			Overdue.push_back({Open, Open->bStarted || OnThread.empty() ? nullptr : OnThread.back()});
	}
	for (const FOverdueCall& Each : Overdue)
		Remove(Each.Call);
	return Overdue;
}

FString FToolExecutor::DescribeEnd(const FOverdueCall& Overdue)
{
	const FCall& Call = *Overdue.Call;
	if (Call.bStarted)
		return DescribeTimeOut(Call.Command, Call.Options);
	const FString CouldNotStart = "Tool '" + Call.Command.ToolName + "' could not start";
	if (!Overdue.Holder)
		return CouldNotStart + " within " + DescribeSeconds(Call.Options.TimeLimit) + ": the game thread is busy";
	return CouldNotStart + ": it waited for tool '" + Overdue.Holder->Command.ToolName +
		"', which still holds the game thread after its limit of " + DescribeSeconds(Overdue.Holder->Options.TimeLimit);
}

void FToolExecutor::RunClock(std::stop_token Stop)
{
	while (!Stop.stop_requested())
	{
		{
			std::unique_lock Guard(Lock);
			ClockWakes = FindNextEnd();
			DeadlinesChanged.wait_until(Guard, Stop, ClockWakes, [this] { return FindNextEnd() < ClockWakes; });
			ClockWakes = FTime::min(); // awake: it looks before it sleeps again
		}
		EndOverdueCalls();
	}
}
}
