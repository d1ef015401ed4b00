#include "Mcp/McpProjectHost.h"

#include "Core/Threads/Tasks.h"
#include "CoreObject/Packages/Loader.h"
#include "Project/OpenProject.h"
#include "Quellar/Tools/AssetSearchOperation.h"
#include "Tools/HostTools.h"
#include "Tools/TimeOutAdvice.h"
#include "Tools/ToolCaller.h"
#include "Tools/ToolSchemas.h"

#include <utility>

DEFINE_LOG_CATEGORY(LogMcp);

namespace
{
/** A tool that no schema is kept for takes any object; nothing is promised about it. */
TSharedPtr<FJsonObject> MakeAnyObjectSchema()
{
	auto Schema = MakeShared<FJsonObject>();
	Schema->SetStringField("type", "object");
	return Schema;
}

/** Packages, of which there are many, may be left for a later call by one that asks nothing about them. */
EFolderLook ChooseLook(const Orivane::FToolCommand& Command)
{
	TSharedPtr<FJsonObject> Args;
	const bool bTextsAlone = Command.ToolName == ToolNames::AssetSearch && Json::ParseObject(Command.ArgumentsJson, Args) &&
		!FAssetSearchOperation::NeedsPackages(*Args);
	return bTextsAlone ? EFolderLook::WithoutBulk : EFolderLook::All;
}

TArray<FString> ListNarrowingArguments(const FToolDeclaration& Tool)
{
	TArray<FToolArgument> Narrowing = Tool.Arguments;
	Narrowing.RemoveAll([](const FToolArgument& Argument) { return Argument.Narrowing == 0; });
	Narrowing.StableSort([](const FToolArgument& A, const FToolArgument& B) { return A.Narrowing < B.Narrowing; });
	TArray<FString> Keys;
	for (const FToolArgument& Argument : Narrowing)
		Keys.Add(Argument.Key);
	return Keys;
}

FMcpTool MakeTool(const FString& Name, const Orivane::ITool& Entry)
{
	FMcpTool Tool{.Name = Name,
		.Title = {},
		.Description = Entry.GetDescription(),
		.InputSchema = MakeAnyObjectSchema(),
		.OutputSchema = {}};
	if (const FToolSchema* Schema = FindToolSchema(Name))
	{
		Tool.Title = Schema->Title;
		Tool.InputSchema = Schema->Input;
		Tool.OutputSchema = Schema->Output;
		Tool.bReadOnly = true;
	}
	if (const FToolDeclaration* Declaration = FindTool(Name))
		Tool.NarrowingArguments = ListNarrowingArguments(*Declaration);
	return Tool;
}
}

FMcpProjectHost::FMcpProjectHost(TSharedPtr<Orivane::IToolExecutor> InExecutor, std::chrono::milliseconds InTimeLimit)
	: Executor(std::move(InExecutor))
	, TimeLimit(InTimeLimit)
{
}

TArray<FMcpTool> FMcpProjectHost::GetTools() const
{
	TArray<FString> Names;
	for (const FToolSchema& Schema : GetToolSchemas())
		Names.Add(Schema.Name);
	for (const FString& Name : Executor->GetToolNames())
	{
		if (!Names.Contains(Name))
			Names.Add(Name);
	}

	TArray<FMcpTool> Tools;
	for (const FString& Name : Names)
	{
		if (const auto Entry = Executor->FindTool(Name))
			Tools.Add(MakeTool(Name, *Entry));
	}
	return Tools;
}

void FMcpProjectHost::StartCall(FMcpCallNumber Number, const FString& ToolName, const FString& ArgumentsJson, FOnAnswer OnAnswer)
{
	FCall Call{
		.Command = {FString::FromInt(static_cast<int64>(Number)), ToolName, ArgumentsJson}, .OnAnswer = std::move(OnAnswer)};
	std::unique_lock Guard(Lock);
	if (State == EState::Failed && Open)
		OpenAgain();
	if (State == EState::Failed)
	{
		Guard.unlock();
		return Fail(Call);
	}
	FCall& Kept = Calls.emplace(Number, std::move(Call)).first->second;
	if (State == EState::Open)
		Dispatch(Number, Kept);
}

/** The executor answers on other threads or later, so an answer finds the executor's id stored: it waits for the lock. */
void FMcpProjectHost::Dispatch(FMcpCallNumber Number, FCall& Call)
{
	const auto BeforeStart = [WeakThis = weak_from_this(), Number, Look = ChooseLook(Call.Command)]
	{
		if (const auto This = WeakThis.lock())
			This->PrepareCall(Number, Look);
	};
	Call.ExecutorId =
		Executor->Call(Call.Command, {.TimeLimit = TimeLimit, .ExplainTimeOut = ExplainTimeOut, .BeforeStart = BeforeStart},
			[WeakThis = weak_from_this(), Number](Orivane::FToolResult& Result)
			{
				if (const auto This = WeakThis.lock())
					This->OnCallAnswered(Number, Result);
			});
}

/** Objects go only when no tool may hold them. */
void FMcpProjectHost::PrepareCall(FMcpCallNumber Number, EFolderLook Look)
{
	if (!Executor->IsAnyToolRunning())
	{
		if (const FString Faults = RefreshOpenProject(Look); !Faults.IsEmpty())
			Log::Write(LogMcp, ELogVerbosity::Warning, Faults);
	}
	std::lock_guard Guard(Lock);
	if (const auto Found = Calls.find(Number); Found != Calls.end())
	{
		Found->second.Trouble = FProject::GetTrouble();
		Found->second.bProjectOpen = FProject::IsOpen();
	}
}

void FMcpProjectHost::OnCallAnswered(FMcpCallNumber Number, const Orivane::FToolResult& Result)
{
	FCall Call;
	{
		std::lock_guard Guard(Lock);
		const auto Found = Calls.find(Number);
		if (Found == Calls.end())
			return;
		Call = std::move(Found->second);
		Calls.erase(Found);
	}
	// Objects stay for the next call as far as memory allows. A task of its own, before that call's: the tool that has just
	// answered may still be on the stack.
	AsyncTask(ENamedThreads::GameThread,
		[Executor = Executor]
		{
			if (!Executor->IsAnyToolRunning())
				EvictLoadedPackages();
		});
	if (Call.Trouble.IsEmpty())
		Call.OnAnswer(Result);
	else
		Call.OnAnswer(WithTrouble(Result, Call.Trouble, Call.bProjectOpen));
}

void FMcpProjectHost::CancelCall(FMcpCallNumber Number)
{
	Orivane::FToolCallId ExecutorId = 0;
	{
		std::lock_guard Guard(Lock);
		const auto Found = Calls.find(Number);
		if (Found == Calls.end())
			return;
		ExecutorId = Found->second.ExecutorId;
		Calls.erase(Found);
	}
	if (ExecutorId != 0)
		Executor->Cancel(ExecutorId);
}

void FMcpProjectHost::CancelCalls()
{
	std::map<FMcpCallNumber, FCall> Cancelled;
	{
		std::lock_guard Guard(Lock);
		Cancelled.swap(Calls);
	}
	for (const auto& [Number, Call] : Cancelled)
	{
		if (Call.ExecutorId != 0)
			Executor->Cancel(Call.ExecutorId);
	}
}

FMcpCallProgress FMcpProjectHost::GetCallProgress(FMcpCallNumber) const
{
	std::lock_guard Guard(Lock);
	if (State == EState::Opening)
		return {.Text = "the project is being opened", .NumDone = Opening.NumDone, .NumTotal = Opening.NumTotal};
	return {.Text = "the tool is running or queued after an earlier call"};
}

void FMcpProjectHost::OpenBy(std::function<void()> InOpen)
{
	Open = std::move(InOpen);
	Open();
}

/** What was wrong may be mended by now. */
void FMcpProjectHost::OpenAgain()
{
	State = EState::Opening;
	AsyncTask(ENamedThreads::GameThread,
		[WeakThis = weak_from_this()]
		{
			if (const auto This = WeakThis.lock())
				This->Open();
		});
}

void FMcpProjectHost::OnProjectOpened()
{
	std::lock_guard Guard(Lock);
	State = EState::Open;
	for (auto& [Number, Call] : Calls)
		Dispatch(Number, Call);
}

void FMcpProjectHost::OnProjectFailed(const FString& Reason)
{
	std::map<FMcpCallNumber, FCall> Waiting;
	{
		std::lock_guard Guard(Lock);
		State = EState::Failed;
		FailureReason = Reason;
		Waiting.swap(Calls);
	}
	for (const auto& [Number, Call] : Waiting)
		Fail(Call);
}

void FMcpProjectHost::Fail(const FCall& Call) const
{
	Orivane::FToolResult Result(Call.Command);
	Result.AddErrorMessage(FString("The project cannot be opened: ") + FailureReason);
	Call.OnAnswer(Result);
}
