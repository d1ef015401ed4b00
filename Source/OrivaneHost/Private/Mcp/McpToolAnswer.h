#pragma once

#include "Mcp/McpEra.h"
#include "Mcp/McpToolHost.h"

/** Answers are never longer than this, whatever is asked for: clients end a connection on which a longer line comes. */
constexpr int64 MaxMcpLineBytes = 8 * 1024 * 1024;

/** How the answer to one call is written. */
struct FMcpAnswerForm
{
	FJsonValue Id; // of the request
	EMcpEra Era = EMcpEra::Legacy;
	const FMcpTool* Tool = nullptr;
	int64 MaxBytes = MaxMcpLineBytes; // of the whole line
	FString ErrorAdvice;			  // follows the errors, should there be any; may be empty
};

/**
 * Writes a tool's result as an answer line. The structured answer is {"messages": [{"type", "text"}], KEY: payload}, and a text
 * block repeats it as JSON; of a failed call the text block holds the errors, one a line, because some clients show nothing else
 * of it. A line above the limit is cut: long message texts first, then the payload's arrays from their ends; a warning among the
 * messages says what was left out and which arguments narrow the call.
 */
std::string WriteMcpToolAnswer(const Orivane::FToolResult& Result, const FMcpAnswerForm& Form);
