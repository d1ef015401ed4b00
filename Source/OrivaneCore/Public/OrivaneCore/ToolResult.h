#pragma once

#include "Core/Json/Json.h"
#include "OrivaneCore/ToolCommand.h"

#include <variant>

namespace Orivane
{
enum class EToolMessage : uint8
{
	Error,
	Warning,
	Success,
};

struct FToolMessage
{
	EToolMessage Type = EToolMessage::Error;
	FString Text;
};

/** What a tool hands back: messages in the order in which they were added, and payloads by key. A call has failed when it holds
 * an error. One thread at a time. */
class FToolResult
{
public:
	/** JSON text, or a JSON object; null for an object that is not there. */
	using FPayload = std::variant<FString, TSharedPtr<FJsonObject>>;

	explicit FToolResult(const FToolCommand& Command) : ToolName(Command.ToolName) {}

	FToolResult& AddErrorMessage(const FString& Text);
	FToolResult& AddWarningMessage(const FString& Text);
	FToolResult& AddSuccessMessage(const FString& Text);
	/** Attaches a payload; setting a key again replaces it. An object must not change any more: whoever writes the answer out may
	 * do so on another thread. */
	FToolResult& SetData(const FString& Key, const TSharedPtr<FJsonObject>& Value);
	/** The same for serialized JSON, which is read again where the answer is written as JSON; any other text becomes a string. */
	FToolResult& SetData(const FString& Key, const FString& Value);

	bool HasErrors() const;
	const FString& GetToolName() const { return ToolName; }
	const TArray<FToolMessage>& GetMessages() const { return Messages; }
	const TMap<FString, FPayload>& GetData() const { return Data; }

private:
	FString ToolName;
	TArray<FToolMessage> Messages;
	TMap<FString, FPayload> Data;
};
}
