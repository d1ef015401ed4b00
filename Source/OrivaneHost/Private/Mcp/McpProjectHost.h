#pragma once

#include "Core/Program/Log.h"
#include "Mcp/McpToolHost.h"
#include "OrivaneToolkit/ToolExecutor.h"
#include "Project/Project.h"

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <mutex>

DECLARE_LOG_CATEGORY(LogMcp);

/**
 * Serves the registered tools to the protocol server. Calls that come before the project is open wait for it; when it cannot be
 * opened, they are answered with the reason, and the next call tries again. Files that have changed are read again before a tool
 * starts. Made with MakeShared on the game thread, when the modules run.
 */
class FMcpProjectHost final : public IMcpToolHost, public std::enable_shared_from_this<FMcpProjectHost>
{
public:
	/** TimeLimit is a tool's from the moment it starts to run. */
	FMcpProjectHost(TSharedPtr<Orivane::IToolExecutor> InExecutor, std::chrono::milliseconds InTimeLimit);

	/** To be filled while the project opens. */
	FScanProgress& GetOpeningProgress() { return Opening; }
	/** Opens the project by this function, now and for a call that comes after it has failed. It calls one of the two below. Game
	 * thread. */
	void OpenBy(std::function<void()> InOpen);
	void OnProjectOpened();
	void OnProjectFailed(const FString& Reason);
	/** No answer is needed any more; what runs is asked to stop. Any thread. */
	void CancelCalls();

	TArray<FMcpTool> GetTools() const override;
	void StartCall(FMcpCallNumber Number, const FString& ToolName, const FString& ArgumentsJson, FOnAnswer OnAnswer) override;
	void CancelCall(FMcpCallNumber Number) override;
	FMcpCallProgress GetCallProgress(FMcpCallNumber Number) const override;

private:
	enum class EState : uint8
	{
		Opening,
		Open,
		Failed,
	};
	struct FCall
	{
		Orivane::FToolCommand Command;
		FOnAnswer OnAnswer;
		Orivane::FToolCallId ExecutorId = 0; // once the project is open
		FString Trouble;					 // of the project when the tool started, see FProject
		bool bProjectOpen = true;			 // then
	};

	void Dispatch(FMcpCallNumber Number, FCall& Call);
	void PrepareCall(FMcpCallNumber Number, EFolderLook Look);
	void OnCallAnswered(FMcpCallNumber Number, const Orivane::FToolResult& Result);
	void OpenAgain();
	void Fail(const FCall& Call) const;

	const TSharedPtr<Orivane::IToolExecutor> Executor;
	const std::chrono::milliseconds TimeLimit;
	FScanProgress Opening;
	std::function<void()> Open; // null: there is no other try

	mutable std::mutex Lock; // guards what follows; never held while an answer is handed on
	EState State = EState::Opening;
	FString FailureReason;
	std::map<FMcpCallNumber, FCall> Calls; // in the order of arrival
};
