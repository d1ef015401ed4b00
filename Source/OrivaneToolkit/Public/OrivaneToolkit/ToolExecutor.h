#pragma once

#include "OrivaneToolkit/Tool.h"

#include <chrono>
#include <functional>

namespace Orivane
{
/** Names one call of a process; never used again. */
using FToolCallId = uint64;

/** What a caller may ask of a call besides its answer. */
struct FToolCallOptions
{
	/** From the moment the tool starts to run; waiting for other tools does not count. */
	std::chrono::milliseconds TimeLimit = std::chrono::seconds(30);
	/** Appended to the time-out message when it gives a text: what the caller should know or do. May be empty. */
	std::function<FString(const FToolCommand&)> ExplainTimeOut;
	/** Run on the game thread directly before the tool, when it is the call's turn; does not count for the time limit. What it
	 * throws fails the call. May be empty. */
	std::function<void()> BeforeStart = {};
};

/**
 * Runs tools by name. Tools run on the game thread; sequential ones (see ITool::GetMetadata) one after another, first come first
 * served, across all sequential tools. All functions may be called from any thread.
 */
class IToolExecutor
{
public:
	virtual ~IToolExecutor() = default;

	/** Makes the entry callable under Name; a name that is taken gets the new entry. */
	virtual void RegisterTool(const FString& Name, const TSharedPtr<ITool>& Entry) = 0;
	/** Harmless for a name that is not registered. Calls that run go on. */
	virtual void UnregisterTool(const FString& Name) = 0;
	/** Null when there is none. Names compare without regard to case. */
	virtual TSharedPtr<ITool> FindTool(const FString& Name) const = 0;
	/** In the order of registration. */
	virtual TArray<FString> GetToolNames() const = 0;

	/**
	 * Queues a call. OnAnswer is executed exactly once unless the call is cancelled: on the game thread with the tool's result,
	 * or, when the time limit passes first, on the executor's clock thread with an error result (a busy game thread cannot hold
	 * that up). The tool is then asked to stop, see Core/StopToken.h, and a completion that comes later is dropped. A call that
	 * cannot start, because an earlier one keeps the game thread beyond that one's limit, is answered with an error that names
	 * it. An unknown tool is answered with an error, and so are a tool that throws, for want of memory, and the calls that are
	 * open when the executor goes.
	 */
	virtual FToolCallId Call(
		const FToolCommand& Command, const FToolCallOptions& Options, TDelegate<void(FToolResult&)> OnAnswer) = 0;
	/** The call's OnAnswer will not be executed any more; its place in the queue is free, and its tool is asked to stop. False
	 * when it has been answered (or is being answered) already. */
	virtual bool Cancel(FToolCallId Id) = 0;
	/**
	 * Answers every call whose tool has been started with an error. For the game thread's loop, when a task there has
	 * thrown: tools go on in tasks of their own, and nobody else knows that such a call will not complete.
	 */
	virtual void FailStartedCalls(const FString& Error) = 0;
	/** A tool has been started whose call is neither answered nor cancelled; calls that wait do not count. */
	virtual bool IsAnyToolRunning() const = 0;
};
}
