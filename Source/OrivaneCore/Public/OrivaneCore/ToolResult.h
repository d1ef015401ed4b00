#pragma once

#include "Core/Base/Containers.h"
#include "Core/Base/Map.h"
#include "OrivaneCore/ToolCommand.h"

#include <variant>

class FJsonObject;

namespace Orivane
{
/** How serious a message is. One error makes the whole call a failed one. */
enum class EToolMessage : uint8
{
	Error,
	Warning,
	Success,
};

/** One sentence of a tool to its caller. */
struct FToolMessage
{
	EToolMessage Type = EToolMessage::Error;
	FString Text;
};

/** What an answer leaves out. The host tells it, in words that fit the caller: each kind knows an argument by another name. */
struct FToolRemark
{
	FString Text;		   // "at least 12 more assets match"; no full stop
	FString Argument;	   // key of the tool's argument that shows more; "" where none does
	FString Value;		   // of the argument: a cap's in this call, or what a flag is to be set to
	TArray<FString> Names; // of what is left out, where they are known
};

/** Where in a text file something was found, for people to open it. */
struct FToolPlace
{
	FString Asset;	// as the payload names it
	FString File;	// relative to the project
	int32 Line = 0; // from 1 on; 0: not known
	FString Text;	// of the line
};

/** What a tool hands back: messages in the order in which they were added, and payloads by key. A call has failed when it holds
 * an error. One thread at a time. */
class FToolResult
{
public:
	/** JSON text, or a JSON object; null for an object that is not there. */
	using FPayload = std::variant<FString, TSharedPtr<FJsonObject>>;

	explicit FToolResult(const FToolCommand&) {}

	FToolResult& AddErrorMessage(const FString& Text);
	FToolResult& AddWarningMessage(const FString& Text);
	FToolResult& AddSuccessMessage(const FString& Text);
	/** Attaches a payload; setting a key again replaces it. An object must not change any more: the code that writes the answer
	 * out may do so on another thread. */
	FToolResult& SetData(const FString& Key, const TSharedPtr<FJsonObject>& Value);
	/** The same for serialized JSON, which is read again where the answer is written as JSON; any other text becomes a string. */
	FToolResult& SetData(const FString& Key, const FString& Value);

	/** For the host; not among the messages. */
	FToolResult& AddRemark(FToolRemark Remark);
	FToolResult& AddPlace(FToolPlace Place);

	bool HasErrors() const;
	const TArray<FToolMessage>& GetMessages() const { return Messages; }
	const TMap<FString, FPayload>& GetData() const { return Data; }
	const TArray<FToolRemark>& GetRemarks() const { return Remarks; }
	const TArray<FToolPlace>& GetPlaces() const { return Places; }

private:
	TArray<FToolMessage> Messages;
	TMap<FString, FPayload> Data;
	TArray<FToolRemark> Remarks;
	TArray<FToolPlace> Places;
};
}
