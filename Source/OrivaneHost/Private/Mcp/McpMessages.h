#pragma once

#include "Core/Json/Json.h"

/** Error codes that the server answers with; the last one belongs to the modern protocol revision. */
namespace EMcpErrorCode
{
constexpr int32 ParseError = -32700;
constexpr int32 InvalidRequest = -32600;
constexpr int32 MethodNotFound = -32601;
constexpr int32 InvalidParams = -32602;
constexpr int32 InternalError = -32603;
constexpr int32 UnsupportedVersion = -32022;
}

/** Why a request is refused. */
struct FMcpError
{
	int32 Code = 0;
	FString Message;
	TSharedPtr<FJsonObject> Data = nullptr; // may stay null
};

enum class EMcpMessage : uint8
{
	Request,
	Notification,
	Response, // the server asks nothing, so these mean nothing to it
	Refused,
};

/** One message of a client. */
struct FMcpMessage
{
	EMcpMessage Kind = EMcpMessage::Refused;
	FJsonValue Id;					// of requests: a string or an integer. Of a refused message: null where it has no usable one
	FString Method;					// case matters
	TSharedPtr<FJsonObject> Params; // empty object when there are none
	TSharedPtr<FJsonObject> Meta;	// the parameters' "_meta", empty object when there is none
	FMcpError Error;				// of a refused message
};

/** Reads one line. Anything may stand in it. */
FMcpMessage ReadMcpMessage(std::string_view Line);

// Whole messages without the line break at their end; no line break inside.
std::string WriteMcpResult(const FJsonValue& Id, const TSharedPtr<FJsonObject>& Result);
/** What WriteMcpResult gives up to its end, for a result with further members that are large: their text is appended, as it
 * stands between the braces of an object, and then McpResultEnd. */
std::string OpenMcpResult(const FJsonValue& Id, const TSharedPtr<FJsonObject>& Result);
constexpr FStringView McpResultEnd = "}}";
std::string WriteMcpError(const FJsonValue& Id, const FMcpError& Error);
std::string WriteMcpNotification(const char* Method, const TSharedPtr<FJsonObject>& Params);

/** Text that came from outside, fit for a sentence: at most MaxBytes of it, with the number of bytes that are left out. */
FString Abbreviate(FStringView Text, std::size_t MaxBytes = 100);

/** The text of a JSON string. False, with Out as it was, for null and for values of other kinds, which are not converted. */
bool AsJsonString(const FJsonValue* Value, FString& Out);
