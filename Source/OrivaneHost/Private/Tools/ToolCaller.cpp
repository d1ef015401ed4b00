#include "Tools/ToolCaller.h"

#include "Core/Threads/Tasks.h"
#include "OrivaneToolkit/OrivaneToolkitModule.h"
#include "Terminal/Terminal.h"
#include "Tools/TimeOutAdvice.h"
#include "Tools/ToolRemarks.h"

#include <mutex>
#include <stop_token>

namespace
{
const char* DescribeType(Orivane::EToolMessage Type)
{
	switch (Type)
	{
		case Orivane::EToolMessage::Error:
			return "error";
		case Orivane::EToolMessage::Warning:
			return "warning";
		case Orivane::EToolMessage::Success:
			break;
	}
	return "success";
}
}

FJsonArray MakeMessagesJson(const Orivane::FToolResult& Result)
{
	FJsonArray Messages;
	const auto Add = [&](Orivane::EToolMessage Type, const FString& Text)
	{
		auto Entry = MakeShared<FJsonObject>();
		Entry->SetStringField("type", DescribeType(Type));
		Entry->SetStringField("text", Text);
		Messages.Add(Entry);
	};
	for (const Orivane::FToolMessage& Message : Result.GetMessages())
		Add(Message.Type, Message.Text);
	for (const Orivane::FToolRemark& Remark : Result.GetRemarks())
		Add(Orivane::EToolMessage::Warning, DescribeRemark(Remark));
	return Messages;
}

FJsonValue MakePayloadJson(const Orivane::FToolResult::FPayload& Payload)
{
	if (const auto* Object = std::get_if<TSharedPtr<FJsonObject>>(&Payload))
		return *Object ? FJsonValue(*Object) : FJsonValue();
	const FString& Text = std::get<FString>(Payload);
	FJsonValue Parsed;
	return Json::Parse(Text, Parsed) ? Parsed : FJsonValue(Text);
}

TSharedPtr<FJsonObject> MakeEnvelopeJson(const Orivane::FToolResult& Result)
{
	auto Data = MakeShared<FJsonObject>();
	for (const auto& [Key, Payload] : Result.GetData())
		Data->SetField(Key, MakePayloadJson(Payload));
	auto Envelope = MakeShared<FJsonObject>();
	Envelope->SetBoolField("success", !Result.HasErrors());
	Envelope->SetArrayField("messages", MakeMessagesJson(Result));
	Envelope->SetObjectField("data", Data);
	return Envelope;
}

Orivane::FToolResult WithTrouble(Orivane::FToolResult Result, const FString& Trouble, bool bProjectOpen)
{
	const FString Text = "The project cannot be opened again after a change: " + Trouble;
	if (bProjectOpen)
		Result.AddWarningMessage(Text + "; this answer tells of its assets as they were before");
	else
		Result.AddErrorMessage(Text);
	return Result;
}

bool CallToolAndWait(const FString& ToolName, const FString& ArgumentsJson, std::chrono::milliseconds TimeLimit,
	const std::function<void(const Orivane::FToolResult&)>& OnAnswer)
{
	// The answer may come on the executor's clock thread, after this function has given up waiting.
	struct FAnswer
	{
		std::mutex Lock;
		TOptional<Orivane::FToolResult> Result;
	};
	const auto Answer = MakeShared<FAnswer>();
	const auto Executor = FOrivaneToolkitModule::GetToolExecutor();
	const Orivane::FToolCallId Id =
		Executor->Call({"1", ToolName, ArgumentsJson}, {.TimeLimit = TimeLimit, .ExplainTimeOut = ExplainTimeOut},
			[Answer](Orivane::FToolResult& Result)
			{
				{
					std::lock_guard Guard(Answer->Lock);
					Answer->Result = Result;
				}
				FGameThread::Get().Wake();
			});
	const auto IsAnswered = [Answer]
	{
		std::lock_guard Guard(Answer->Lock);
		return Answer->Result.has_value();
	};
	// The tool may be running on this very thread.
	const std::stop_callback OnInterrupt(Interrupt::GetToken(), [&] { Executor->Cancel(Id); });
	if (!FGameThread::Get().RunUntil(IsAnswered, FGameThread::NoTimeLimit, Interrupt::GetToken()))
		return false;
	OnAnswer(*Answer->Result);
	return true;
}
