#include "Mcp/McpMessages.h"

#include "Core/Text/Unicode.h"

namespace
{
/** Requests with longer ids are refused: an id is repeated in the answer, whose size is limited. */
constexpr int32 MaxIdBytes = 4096;

FMcpMessage Refuse(FMcpMessage Message, int32 Code, const FString& Text)
{
	Message.Kind = EMcpMessage::Refused;
	Message.Error = {.Code = Code, .Message = Text};
	return Message;
}

bool IsUsableId(const FJsonValue& Id)
{
	return Id.Type() == EJson::String || Id.IsInteger();
}

bool IsTooLong(const FJsonValue& Id)
{
	FString Text;
	return AsJsonString(&Id, Text) && Text.NumBytes() > MaxIdBytes;
}

bool HasVersion(const FJsonObject& Object)
{
	FString Version;
	return AsJsonString(Object.FindField("jsonrpc"), Version) && Version.View() == "2.0";
}

/** Parameters by name; false for parameters by position and for other values. */
bool ReadParams(const FJsonObject& Object, FMcpMessage& Message)
{
	const FJsonValue* Params = Object.FindField("params");
	Message.Params = Params ? Params->AsObject() : MakeShared<FJsonObject>();
	if (!Message.Params || !Message.Params->TryGetObjectField("_meta", Message.Meta))
		Message.Meta = MakeShared<FJsonObject>();
	return Message.Params != nullptr;
}

FMcpMessage ReadObject(const FJsonObject& Object)
{
	FMcpMessage Message;
	const FJsonValue* Id = Object.FindField("id");
	const bool bHasMethod = AsJsonString(Object.FindField("method"), Message.Method);
	if (!bHasMethod && (Object.HasField("result") || Object.HasField("error")))
	{
		Message.Kind = EMcpMessage::Response;
		return Message;
	}
	if (Id && !IsUsableId(*Id))
		return Refuse(std::move(Message), EMcpErrorCode::InvalidRequest, "the id of a request is a string or an integer");
	if (Id)
		Message.Id = *Id;
	if (Id && IsTooLong(*Id)) // under this id all the same, so that its sender does not wait
		return Refuse(std::move(Message), EMcpErrorCode::InvalidRequest,
			FString::Printf("the id of a request has %d bytes at most", MaxIdBytes));
	if (!HasVersion(Object))
		return Refuse(std::move(Message), EMcpErrorCode::InvalidRequest, R"("jsonrpc": "2.0" is missing)");
	if (!bHasMethod)
		return Refuse(std::move(Message), EMcpErrorCode::InvalidRequest, R"("method" is missing or not a string)");

	Message.Kind = Id ? EMcpMessage::Request : EMcpMessage::Notification;
	if (!ReadParams(Object, Message) && Id)
		return Refuse(std::move(Message), EMcpErrorCode::InvalidParams, R"("params" is not an object)");
	return Message;
}

std::string WriteMessage(const TSharedPtr<FJsonObject>& Message)
{
	return Json::Write(*Message).ToStdString();
}

TSharedPtr<FJsonObject> MakeMessage()
{
	auto Message = MakeShared<FJsonObject>();
	Message->SetStringField("jsonrpc", "2.0");
	return Message;
}
}

FMcpMessage ReadMcpMessage(std::string_view Line)
{
	FJsonValue Value;
	FJsonError Error;
	if (!Json::Parse(Line, Value, &Error))
		return Refuse({}, EMcpErrorCode::ParseError, FString("the line is not JSON: ") + Error.Text);
	if (Value.Type() == EJson::Array)
		return Refuse({}, EMcpErrorCode::InvalidRequest, "batches are not supported: send one message a line");
	const TSharedPtr<FJsonObject> Object = Value.AsObject();
	return Object ? ReadObject(*Object) : Refuse({}, EMcpErrorCode::InvalidRequest, "a message is a JSON object");
}

std::string WriteMcpResult(const FJsonValue& Id, const TSharedPtr<FJsonObject>& Result)
{
	const auto Message = MakeMessage();
	Message->SetField("id", Id);
	Message->SetObjectField("result", Result);
	return WriteMessage(Message);
}

std::string OpenMcpResult(const FJsonValue& Id, const TSharedPtr<FJsonObject>& Result)
{
	std::string Line = WriteMcpResult(Id, Result);
	Line.resize(Line.size() - McpResultEnd.size());
	if (Result->Num() > 0)
		Line += ',';
	return Line;
}

std::string WriteMcpError(const FJsonValue& Id, const FMcpError& Error)
{
	auto Details = MakeShared<FJsonObject>();
	Details->SetNumberField("code", Error.Code);
	Details->SetStringField("message", Error.Message);
	if (Error.Data)
		Details->SetObjectField("data", Error.Data);
	const auto Message = MakeMessage();
	Message->SetField("id", Id);
	Message->SetObjectField("error", Details);
	return WriteMessage(Message);
}

std::string WriteMcpNotification(const char* Method, const TSharedPtr<FJsonObject>& Params)
{
	const auto Message = MakeMessage();
	Message->SetStringField("method", Method);
	Message->SetObjectField("params", Params);
	return WriteMessage(Message);
}

FString Abbreviate(FStringView Text, std::size_t MaxBytes)
{
	if (Text.size() <= MaxBytes)
		return FString(Text);
	const std::size_t End = Unicode::FloorToCodePoint(Text, MaxBytes);
	return FString(Text.substr(0, End)) + "... (" + FString::FromInt(static_cast<int64>(Text.size() - End)) + " more bytes)";
}

bool AsJsonString(const FJsonValue* Value, FString& Out)
{
	return Value && Value->Type() == EJson::String && Value->TryGetString(Out);
}
