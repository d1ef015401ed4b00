#include "ToolExecutor.h"

#include "Core/Json.h"
#include "Core/Tasks.h"

#include <algorithm>
#include <vector>

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

FString DescribeTimeOut(const FToolCommand& Command, const FToolCallOptions& Options)
{
	const int64 Seconds = std::chrono::ceil<std::chrono::seconds>(Options.TimeLimit).count();
	FString Text = FString::Printf("Tool '%s' did not complete within %d s", *Command.ToolName, static_cast<int>(Seconds));
	const FString Explanation = Options.ExplainTimeOut ? Options.ExplainTimeOut(Command) : FString();
	return Explanation.IsEmpty() ? Text : Text + ": " + Explanation;
}

FString DescribeUnknownTool(const FToolCommand& Command, const TArray<FString>& KnownNames)
{
	FString Text = FString::Printf("Unknown tool '%s'", *Command.ToolName);
	for (int32 Index = 0; Index < KnownNames.Num(); ++Index)
		Text += FString(Index == 0 ? "; registered: " : ", ") + KnownNames[Index];
	return Text;
}
}

FToolExecutor::FToolExecutor(EExecutorClock InClock, std::function<FTime()> InNow) : Clock(InClock), Now(std::move(InNow))
{
	if (Clock == EExecutorClock::OwnThread)
		ClockThread = std::jthread([this](std::stop_token Stop) { RunClock(Stop); });
}

FToolExecutor::~FToolExecutor() = default;

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
	DispatchNextSequential();
	return true;
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
		Call->Deadline = Now() + Call->Options.TimeLimit;
		Call->bDispatched = true;
	}
	DeadlinesChanged.notify_all();
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

void FToolExecutor::Run(const FCallPtr& Call)
{
	{
		std::lock_guard Guard(Lock);
		if (!OpenCalls.contains(Call->Id))
			return;
		Call->bStarted = true;
	}
	// Taken out of the call: a tool that keeps its completion, and with it the call, must not keep itself alive.
	const TSharedPtr<ITool> Tool = std::move(Call->Tool);
	const auto Result = MakeShared<FToolResult>(Call->Command);
	if (!Tool)
	{
		Result->AddErrorMessage(DescribeUnknownTool(Call->Command, GetToolNames()));
		Answer(Call, *Result);
		return;
	}
	// The completion owns the result, so a tool that completes late, after the caller was answered, still writes into live
	// memory.
	Tool->Execute(Call->Command, Result,
		[WeakThis = weak_from_this(), Call, Result](FToolResult& Completed)
		{
			if (const auto This = WeakThis.lock())
				This->Answer(Call, Completed);
		});
}

bool FToolExecutor::Close(const FCallPtr& Call)
{
	std::lock_guard Guard(Lock);
	if (OpenCalls.erase(Call->Id) == 0)
		return false;
	std::erase(SequentialQueue, Call);
	if (RunningSequential == Call)
		RunningSequential = nullptr;
	return true;
}

void FToolExecutor::Answer(const FCallPtr& Call, FToolResult& Result)
{
	if (!Close(Call))
		return;
	Call->OnAnswer.ExecuteIfBound(Result);
	Call->OnAnswer.Unbind();
	DispatchNextSequential();
}

void FToolExecutor::EndOverdueCalls()
{
	std::vector<FCallPtr> Overdue;
	{
		std::lock_guard Guard(Lock);
		for (const auto& [Id, Open] : OpenCalls)
		{
			if (Open->bDispatched && Open->Deadline <= Now())
				Overdue.push_back(Open);
		}
	}
	for (const FCallPtr& Call : Overdue)
	{
		FToolResult Result(Call->Command);
		Result.AddErrorMessage(DescribeTimeOut(Call->Command, Call->Options));
		Answer(Call, Result);
	}
}

void FToolExecutor::RunClock(std::stop_token Stop)
{
	while (!Stop.stop_requested())
	{
		{
			std::unique_lock Guard(Lock);
			FTime Earliest = FTime::max();
			for (const auto& [Id, Open] : OpenCalls)
			{
				if (Open->bDispatched)
					Earliest = std::min(Earliest, Open->Deadline);
			}
			if (Earliest == FTime::max())
				DeadlinesChanged.wait(Guard, Stop,
					[this] {
						return std::any_of(
							OpenCalls.begin(), OpenCalls.end(), [](const auto& Open) { return Open.second->bDispatched; });
					});
			else
				DeadlinesChanged.wait_until(Guard, Stop, Earliest,
					[this, Earliest]
					{
						return std::any_of(OpenCalls.begin(), OpenCalls.end(),
							[&](const auto& Open) { return Open.second->bDispatched && Open.second->Deadline < Earliest; });
					});
		}
		EndOverdueCalls();
	}
}
}
