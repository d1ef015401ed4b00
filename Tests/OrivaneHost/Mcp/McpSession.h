#pragma once

#include "Mcp/McpServer.h"
#include "Tools/ToolCaller.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

/** The program behind the protocol, as a test wants it: answers at once, or when told to. Used by one thread at a time. */
class FFakeToolHost final : public IMcpToolHost
{
public:
	struct FCall
	{
		FMcpCallNumber Number = 0;
		FString ToolName;
		FString ArgumentsJson;
		FOnAnswer OnAnswer;
	};

	/** "find" answers at once, "slow" when the test says so. */
	TArray<FMcpTool> GetTools() const override
	{
		TSharedPtr<FJsonObject> Input;
		Json::ParseObject(
			R"({"type":"object","properties":{"term":{"type":"string","description":"Text."},"max_total_hits":{"type":"integer","description":"Cap."}},"required":["term"]})",
			Input);
		TSharedPtr<FJsonObject> Any;
		Json::ParseObject(R"({"type":"object"})", Any);
		return {
			{.Name = "find",
				.Title = "Find",
				.Description = "Finds.",
				.InputSchema = Input,
				.OutputSchema = Any,
				.NarrowingArguments = {"max_total_hits"},
				.bReadOnly = true},
			{.Name = "slow", .Title = "", .Description = "Takes long.", .InputSchema = Any, .OutputSchema = nullptr},
		};
	}

	void StartCall(FMcpCallNumber Number, const FString& ToolName, const FString& ArgumentsJson, FOnAnswer OnAnswer) override
	{
		Calls.push_back({Number, ToolName, ArgumentsJson, OnAnswer});
		if (ToolName.View() == "find")
			OnAnswer(MakeResult());
	}

	void CancelCall(FMcpCallNumber Number) override { Cancelled.push_back(Number); }
	FMcpCallProgress GetCallProgress(FMcpCallNumber) const override { return Progress; }

	Orivane::FToolResult MakeResult() const
	{
		Orivane::FToolResult Result(Orivane::FToolCommand("", "find", ""));
		for (const FString& Error : Errors)
			Result.AddErrorMessage(Error);
		if (Errors.IsEmpty())
			Result.AddSuccessMessage("Found 1").SetData("content", FString(R"({"assets":["A"],"truncated":false})"));
		return Result;
	}

	TArray<FString> Errors; // what "find" answers, when there are any
	FMcpCallProgress Progress{.Text = "working"};
	std::vector<FCall> Calls;
	std::vector<FMcpCallNumber> Cancelled;
};

/** A client's session with the server: says lines, collects what comes back, moves the clock. */
class FMcpSession
{
public:
	explicit FMcpSession(FMcpServerOptions Options = {})
	{
		Options.Now = [this] { return Now; };
		Server = MakeShared<FMcpServer>(Host, Options, [this](std::string Line) { Sent.push_back(std::move(Line)); });
	}

	/** What the server sends while it handles the line, joined by line breaks. Each line must be one JSON object. */
	std::string Say(const std::string& Line)
	{
		Server->HandleLine(Line);
		return TakeSent();
	}

	std::string Wait(std::chrono::milliseconds Time)
	{
		Now += Time;
		Server->Tick();
		return TakeSent();
	}

	std::string TakeSent()
	{
		std::string Joined;
		for (const std::string& Line : std::exchange(Sent, {}))
		{
			EXPECT_TRUE(nlohmann::json::parse(Line, nullptr, false).is_object()) << Line;
			EXPECT_EQ(Line.find('\n'), std::string::npos) << Line;
			Joined += (Joined.empty() ? "" : "\n") + Line;
		}
		return Joined;
	}

	void ShakeHands()
	{
		Say(R"({"jsonrpc":"2.0","id":0,"method":"initialize","params":{"protocolVersion":"2025-11-25","capabilities":{},"clientInfo":{"name":"c","version":"0"}}})");
		Say(R"({"jsonrpc":"2.0","method":"notifications/initialized"})");
	}

	TSharedPtr<FFakeToolHost> Host = MakeShared<FFakeToolHost>();
	FMcpTime Now;
	TSharedPtr<FMcpServer> Server;
	std::vector<std::string> Sent;
};

/** A line of a legacy client, or of a modern one with what every modern request carries. */
inline std::string Legacy(const std::string& Id, const std::string& Method, const std::string& Params = "{}")
{
	return R"({"jsonrpc":"2.0","id":)" + Id + R"(,"method":")" + Method + R"(","params":)" + Params + "}";
}

inline std::string Modern(const std::string& Id, const std::string& Method, const std::string& Members = "")
{
	return Legacy(Id, Method,
		R"({"_meta":{"io.modelcontextprotocol/protocolVersion":"2026-07-28","io.modelcontextprotocol/clientCapabilities":{}})" +
			(Members.empty() ? "" : "," + Members) + "}");
}
