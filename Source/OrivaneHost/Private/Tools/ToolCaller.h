#pragma once

#include "Core/Json/Json.h"
#include "OrivaneCore/ToolResult.h"

#include <chrono>
#include <functional>

/** Messages as JSON: [{"type": "error|warning|success", "text"}], in the order in which they were added; then what the answer
 * leaves out, as warnings. */
FJsonArray MakeMessagesJson(const Orivane::FToolResult& Result);
/** A payload as a JSON value: text that is JSON is embedded as JSON, any other text as a string. */
FJsonValue MakePayloadJson(const Orivane::FToolResult::FPayload& Payload);
/** {"success", "messages", "data": {KEY: payload}}. */
TSharedPtr<FJsonObject> MakeEnvelopeJson(const Orivane::FToolResult& Result);
/** The answer with a remark that the project cannot be opened again after a change, see FProject::GetTrouble: a warning where the
 * project is open nevertheless, else an error. */
Orivane::FToolResult WithTrouble(Orivane::FToolResult Result, const FString& Trouble, bool bProjectOpen);

/**
 * Calls a registered tool and runs the game thread's tasks until it is answered. The answer is handed to OnAnswer exactly once;
 * false when the wait was interrupted before. Game thread.
 */
bool CallToolAndWait(const FString& ToolName, const FString& ArgumentsJson, std::chrono::milliseconds TimeLimit,
	const std::function<void(const Orivane::FToolResult&)>& OnAnswer);
