#pragma once

#include "Mcp/McpEra.h"
#include "Mcp/McpStdio.h"
#include "Mcp/McpToolAnswer.h"
#include "Mcp/McpToolHost.h"

#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>

using FMcpTime = std::chrono::steady_clock::time_point;

struct FMcpServerOptions
{
	/** From a call's arrival to its answer, at the latest. Clients give up after 60 s by themselves. */
	std::chrono::milliseconds Deadline = std::chrono::seconds(50);
	/** Of the answer to one call, line and all; never more than MaxMcpLineBytes. */
	int64 MaxAnswerBytes = 2 * 1024 * 1024;
	bool bFollowsFiles = true; // clients are told that changes of files are noticed
	std::function<FMcpTime()> Now = &std::chrono::steady_clock::now;
};

/**
 * The Model Context Protocol without its pipes: takes a client's lines and hands out answer lines. Serves both eras side by side,
 * and of the protocol the tools alone.
 *
 * One thread gives the lines and the time (HandleLine, HandleOverlongLine, Tick). Tools may answer on any thread. Lines go out
 * one at a time, without a line break.
 */
class FMcpServer final : public IMcpLineHandler, public std::enable_shared_from_this<FMcpServer>
{
public:
	/** Must not call the server. */
	using FSend = std::function<void(std::string Line)>;

	/** Made with MakeShared: tools that answer after the server has gone are not heard. */
	FMcpServer(TSharedPtr<IMcpToolHost> InHost, FMcpServerOptions InOptions, FSend InSend);

	void HandleLine(std::string_view Line) override;
	void HandleOverlongLine() override;
	/** Sends the progress and ends the calls whose time has come. */
	void Tick() override;
	TOptional<FMcpTime> GetNextTickTime() const override;

	/** Waits until no call is open, at most Limit. */
	bool WaitUntilIdle(std::chrono::milliseconds Limit);

private:
	struct FRequest
	{
		FMcpMessage Message;
		EMcpEra Era = EMcpEra::Legacy;
	};
	struct FMethod
	{
		const char* Name;
		void (FMcpServer::*Handle)(const FRequest&);
		bool bNeedsEnvelope;  // has no legacy form
		bool bNeedsHandshake; // in its legacy form
	};
	struct FOpenCall
	{
		FMcpAnswerForm Form;
		std::string IdText;		  // the request's id as JSON: a text and an integer that look alike differ
		FJsonValue ProgressToken; // null: the client wants no progress
		FMcpTime Deadline;
		FMcpTime NextProgress;
		int64 LastProgress = 0;
	};

	using FOpenCalls = std::map<FMcpCallNumber, FOpenCall>;

	static const FMethod Methods[];

	void HandleMessage(FMcpMessage Message);
	void HandleRequest(FMcpMessage Message);
	void Handle(const FMethod& Method, const FRequest& Request);
	void HandleNotification(const FMcpMessage& Message);
	void Initialize(const FRequest& Request);
	void Ping(const FRequest& Request);
	void Discover(const FRequest& Request);
	void ListTools(const FRequest& Request);
	void CallTool(const FRequest& Request);

	bool IsIdInUse(const FJsonValue& Id) const;
	bool IsFull() const;
	FOpenCalls::const_iterator FindCall(const FJsonValue& Id) const; // with the lock held
	FMcpCallNumber OpenCall(const FRequest& Request, const FMcpTool& Tool, const FJsonValue& Arguments);
	/** Answers an open call; does nothing when it is closed already. Any thread. */
	void AnswerCall(FMcpCallNumber Number, const Orivane::FToolResult& Result);
	void FailCall(FMcpCallNumber Number, const FMcpTool& Tool, const FString& Error);
	void GiveUp(FMcpCallNumber Number);
	void CancelCall(const FJsonValue& RequestId);
	bool WantsProgress(const FOpenCall& Call) const;
	void SendProgress(FMcpCallNumber Number, FOpenCall& Call);

	TSharedPtr<FJsonObject> MakeCapabilities() const;
	void Answer(const FRequest& Request, const TSharedPtr<FJsonObject>& Result);
	void Refuse(const FJsonValue& Id, const FMcpError& Error);
	void Refuse(const FJsonValue& Id, int32 Code, const FString& Text);
	void SendLine(std::string Line);

	const TSharedPtr<IMcpToolHost> Host;
	const FMcpServerOptions Options;
	const FSend Send;
	const TArray<FMcpTool> Tools;
	bool bShookHands = false;  // initialize was answered
	bool bInitialized = false; // the client is ready for more than answers

	mutable std::mutex Lock; // guards what follows, and the order of the lines that go out
	std::condition_variable BecameIdle;
	FOpenCalls OpenCalls;
	FMcpCallNumber LastNumber = 0;
};
