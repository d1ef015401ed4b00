#include "Mcp/McpToolAnswer.h"

#include "Mcp/McpTools.h"
#include "Tools/ToolCaller.h"

#include <algorithm>
#include <vector>

namespace
{
constexpr std::size_t MaxMessageBytes = 2000; // of one message in an answer that is too long
constexpr int32 MaxMessages = 50;			  // in an answer that is too long
constexpr int64 WarningReserveBytes = 2048;	  // for the warning that an answer was cut

/** An answer before it is written. */
struct FAnswer
{
	FJsonArray Messages;
	TSharedPtr<FJsonObject> Payloads; // by key
	bool bError = false;
};

FJsonValue MakeMessage(const char* Type, FString Text)
{
	auto Message = MakeShared<FJsonObject>();
	Message->SetStringField("type", Type);
	Message->SetStringField("text", std::move(Text));
	return Message;
}

FString ReadField(const FJsonValue& Message, FStringView Key)
{
	FString Text;
	Message.AsObject()->TryGetStringField(Key, Text);
	return Text;
}

FAnswer MakeAnswer(const Orivane::FToolResult& Result)
{
	FAnswer Answer{.Messages = MakeMessagesJson(Result), .Payloads = MakeShared<FJsonObject>(), .bError = Result.HasErrors()};
	for (const auto& [Key, Payload] : Result.GetData())
		Answer.Payloads->SetField(Key, MakePayloadJson(Payload));
	return Answer;
}

FString WriteErrorText(const FAnswer& Answer, const FMcpAnswerForm& Form)
{
	TArray<FString> Errors;
	for (const FJsonValue& Message : Answer.Messages)
	{
		if (ReadField(Message, "type").View() == "error")
			Errors.Add(ReadField(Message, "text"));
	}
	const FString Text = FString::Join(Errors, "\n");
	return Form.ErrorAdvice.IsEmpty() ? Text : Text + "\n" + Form.ErrorAdvice;
}

std::string WriteAnswer(const FAnswer& Answer, const FMcpAnswerForm& Form)
{
	auto Structured = MakeShared<FJsonObject>();
	Structured->SetArrayField("messages", Answer.Messages);
	for (const FJsonObject::FField& Payload : Answer.Payloads->GetFields())
		Structured->SetField(Payload.Key, Payload.Value);

	auto Block = MakeShared<FJsonObject>();
	Block->SetStringField("type", "text");
	Block->SetStringField("text", Answer.bError ? WriteErrorText(Answer, Form) : Json::Write(*Structured));

	const auto Result = McpEra::MakeResult(Form.Era);
	Result->SetArrayField("content", {Block});
	Result->SetObjectField("structuredContent", Structured);
	Result->SetBoolField("isError", Answer.bError);
	return WriteMcpResult(Form.Id, Result);
}

/** Keeps the first messages and the beginning of their texts: a message may repeat an argument of any length. */
void ShortenMessages(FAnswer& Answer)
{
	FJsonArray Short;
	for (const FJsonValue& Message : Answer.Messages)
	{
		if (Short.Num() < MaxMessages)
			Short.Add(MakeMessage(*ReadField(Message, "type"), Abbreviate(ReadField(Message, "text"), MaxMessageBytes)));
	}
	Answer.Messages = std::move(Short);
}

/** Bytes that a piece of JSON takes in an answer: it stands there once as it is and once inside a JSON string. */
int64 GetCost(FStringView JsonText)
{
	const auto NumEscaped = std::count_if(JsonText.begin(), JsonText.end(), [](char C) { return C == '"' || C == '\\'; });
	return 2 * static_cast<int64>(JsonText.size()) + NumEscaped;
}

constexpr int64 PunctuationCost = 2; // one character, twice

/** As GetCost, of a value whose arrays are empty. */
int64 GetCostWithoutElements(const FJsonValue& Value)
{
	if (Value.AsArray())
		return 2 * PunctuationCost;
	const TSharedPtr<FJsonObject> Object = Value.AsObject();
	if (!Object)
		return GetCost(Json::Write(Value));
	const int32 NumPunctuation = 2 + std::max(0, 2 * Object->Num() - 1); // braces, colons and commas
	int64 Cost = NumPunctuation * PunctuationCost;
	for (const FJsonObject::FField& Field : Object->GetFields())
		Cost += GetCost(Json::Write(FJsonValue(Field.Key))) + GetCostWithoutElements(Field.Value);
	return Cost;
}

/** Copies a payload as far as there is room: everything but arrays, and of those the first elements, until one does not fit. What
 * comes after that one is left out. */
class FPayloadCutter
{
public:
	explicit FPayloadCutter(int64 InRoom) : Room(InRoom) {}

	FJsonValue Cut(const FJsonValue& Value, const FString& Name)
	{
		if (const FJsonArray* Array = Value.AsArray())
			return CutArray(*Array, Name);
		if (const TSharedPtr<FJsonObject> Object = Value.AsObject())
			return CutObject(*Object);
		return Value;
	}

	/** "12 of 340 assets, 3 of 10 hits"; names no more than a few arrays. */
	FString Describe() const
	{
		constexpr int32 MaxArrays = 4;
		TArray<FString> Texts;
		for (int32 Index = std::max(0, CutArrays.Num() - MaxArrays); Index < CutArrays.Num(); ++Index)
		{
			const FCutArray& Array = CutArrays[Index];
			Texts.Add(FString::FromInt(Array.NumKept) + " of " + FString::FromInt(Array.Num) + " " + Abbreviate(Array.Name));
		}
		return FString::Join(Texts, ", ");
	}

private:
	struct FCutArray
	{
		FString Name;
		int32 NumKept = 0;
		int32 Num = 0;
	};

	FJsonValue CutArray(const FJsonArray& Array, const FString& Name)
	{
		FJsonArray Kept;
		for (const FJsonValue& Element : Array)
		{
			const int64 Cost = bFull ? 0 : GetCostWithoutElements(Element) + PunctuationCost;
			bFull = bFull || Cost > Room;
			if (bFull)
				break;
			Room -= Cost;
			Kept.Add(Cut(Element, Name));
		}
		if (Kept.Num() < Array.Num())
			CutArrays.Add({Name, Kept.Num(), Array.Num()});
		return Kept;
	}

	FJsonValue CutObject(const FJsonObject& Object)
	{
		const int32 NumCutBefore = CutArrays.Num();
		auto Copy = MakeShared<FJsonObject>();
		for (const FJsonObject::FField& Field : Object.GetFields())
			Copy->SetField(Field.Key, Cut(Field.Value, Field.Key));
		if (CutArrays.Num() > NumCutBefore && Copy->HasField("truncated"))
			Copy->SetBoolField("truncated", true);
		return Copy;
	}

	int64 Room;
	bool bFull = false;
	TArray<FCutArray> CutArrays; // inner ones before those that hold them
};

FString DescribeNarrowing(const FMcpAnswerForm& Form)
{
	const FString Arguments = Form.Tool ? McpTools::ListNarrowingArguments(*Form.Tool) : FString();
	return Arguments.IsEmpty() ? FString("; ask for less at a time")
							   : FString("; to see the rest, narrow the call with ") + Arguments;
}

std::string WriteTooLongAnswer(const FMcpAnswerForm& Form)
{
	FAnswer Answer{.Messages = {}, .Payloads = MakeShared<FJsonObject>(), .bError = true};
	Answer.Messages.Add(MakeMessage(
		"error", FString("The answer is longer than ") + FString::FromInt(Form.MaxBytes) + " bytes" + DescribeNarrowing(Form)));
	return WriteAnswer(Answer, Form);
}

std::string WriteCutAnswer(FAnswer Answer, const FMcpAnswerForm& Form)
{
	const FJsonValue Whole = Answer.Payloads;
	Answer.Payloads = FPayloadCutter(0).Cut(Whole, "").AsObject();
	const int64 NumBytesWithoutElements = static_cast<int64>(WriteAnswer(Answer, Form).size());
	const int64 Room = Form.MaxBytes - NumBytesWithoutElements - WarningReserveBytes;
	if (Room < 0)
		return WriteTooLongAnswer(Form);

	FPayloadCutter Cutter(Room);
	Answer.Payloads = Cutter.Cut(Whole, "").AsObject();
	Answer.Messages.Add(MakeMessage("warning",
		FString("Answer limited to ") + FString::FromInt(Form.MaxBytes) + " bytes: " + Cutter.Describe() + " shown" +
			DescribeNarrowing(Form)));
	return WriteAnswer(Answer, Form);
}
}

std::string WriteMcpToolAnswer(const Orivane::FToolResult& Result, const FMcpAnswerForm& Form)
{
	FMcpAnswerForm Limited = Form;
	Limited.MaxBytes = std::clamp<int64>(Form.MaxBytes, 0, MaxMcpLineBytes);
	const auto Fits = [&](const std::string& Line) { return static_cast<int64>(Line.size()) <= Limited.MaxBytes; };

	FAnswer Answer = MakeAnswer(Result);
	std::string Line = WriteAnswer(Answer, Limited);
	if (Fits(Line))
		return Line;
	ShortenMessages(Answer);
	Line = WriteAnswer(Answer, Limited);
	return Fits(Line) ? Line : WriteCutAnswer(std::move(Answer), Limited);
}
