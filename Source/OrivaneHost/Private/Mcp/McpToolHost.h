#pragma once

#include "Core/Json/Json.h"
#include "OrivaneCore/ToolResult.h"

#include <functional>

/** A tool as clients are told about it. */
struct FMcpTool
{
	FString Name;
	FString Title; // may be empty
	FString Description;
	TSharedPtr<FJsonObject> InputSchema;  // "type": "object"
	TSharedPtr<FJsonObject> OutputSchema; // of the structured answer; null: nothing is promised
	TArray<FString> NarrowingArguments;	  // those that make its answer smaller, the most useful first
	bool bReadOnly = false;				  // it changes nothing and uses nothing outside the project
};

/** How far a call has come. */
struct FMcpCallProgress
{
	FString Text; // what it is doing, a phrase for people: "reading packages"
	int64 NumDone = 0;
	int64 NumTotal = 0; // 0: not known
};

/** Chosen by the server, never used twice. */
using FMcpCallNumber = uint64;

/** What the protocol server knows of the program behind it. All functions are called on the server's thread and return at once.
 */
class IMcpToolHost
{
public:
	using FOnAnswer = std::function<void(const Orivane::FToolResult&)>;

	virtual ~IMcpToolHost() = default;

	/** In the order in which tools are listed; the same each time. */
	virtual TArray<FMcpTool> GetTools() const = 0;
	/** Starts a call of a listed tool. OnAnswer is called once at most, on any thread, also before this returns. */
	virtual void StartCall(FMcpCallNumber Number, const FString& ToolName, const FString& ArgumentsJson, FOnAnswer OnAnswer) = 0;
	/** The call's answer is not needed any more. Harmless for a call that has been answered. */
	virtual void CancelCall(FMcpCallNumber Number) = 0;
	/** Must not call OnAnswer of any call. */
	virtual FMcpCallProgress GetCallProgress(FMcpCallNumber Number) const = 0;
};
