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

/**
 * The line of an answer. Its structured answer is a piece of the line twice, as JSON and as a string in the text block, but is
 * written only once: its text is what the string repeats. How long the line will be is known before it is written.
 */
class FAnswerLine
{
public:
	FAnswerLine(const FAnswer& Answer, const FMcpAnswerForm& Form)
		: Structured(MakeStructured(Answer))
		, Size(Json::Measure(Structured))
		, Start(OpenMcpResult(Form.Id, McpEra::MakeResult(Form.Era)))
		, bError(Answer.bError)
	{
		if (bError)
			Json::AppendQuoted(Errors, WriteErrorText(Answer, Form));
	}

	int64 NumBytes() const
	{
		const int64 NumBlockBytes = bError ? static_cast<int64>(Errors.size()) : Size.NumBytesInString + 2;
		const std::size_t NumFrameBytes = Start.size() + BeforeBlock.size() + BeforeStructured.size() + GetEnd().size();
		return static_cast<int64>(NumFrameBytes) + NumBlockBytes + Size.NumBytes;
	}

	std::string Write() const
	{
		std::string Text;
		Text.reserve(static_cast<std::size_t>(Size.NumBytes));
		Json::Append(Text, *Structured);
		std::string Line;
		Line.reserve(static_cast<std::size_t>(NumBytes()));
		Line.append(Start).append(BeforeBlock);
		if (bError)
			Line += Errors;
		else
			Json::AppendQuoted(Line, Text);
		return Line.append(BeforeStructured).append(Text).append(GetEnd());
	}

private:
	static constexpr FStringView BeforeBlock = R"("content":[{"type":"text","text":)";
	static constexpr FStringView BeforeStructured = R"(}],"structuredContent":)";

	static TSharedPtr<FJsonObject> MakeStructured(const FAnswer& Answer)
	{
		auto Object = MakeShared<FJsonObject>();
		Object->SetArrayField("messages", Answer.Messages);
		for (const FJsonObject::FField& Payload : Answer.Payloads->GetFields())
			Object->SetField(Payload.Key, Payload.Value);
		return Object;
	}
	std::string GetEnd() const { return std::string(bError ? R"(,"isError":true)" : R"(,"isError":false)").append(McpResultEnd); }

	const TSharedPtr<FJsonObject> Structured;
	const FJsonSize Size; // of Structured
	const std::string Start;
	const bool bError;
	std::string Errors; // as a JSON string
};

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

/** Bytes that a value takes in an answer: once as it is and once inside a JSON string. */
int64 GetCost(const FJsonValue& Value)
{
	const FJsonSize Size = Json::Measure(Value);
	return Size.NumBytes + Size.NumBytesInString;
}

constexpr int64 PunctuationCost = 2; // one character, twice

/** As GetCost, of a value whose arrays are empty. */
int64 GetCostWithoutElements(const FJsonValue& Value)
{
	if (Value.AsArray())
		return 2 * PunctuationCost;
	const TSharedPtr<FJsonObject> Object = Value.AsObject();
	if (!Object)
		return GetCost(Value);
	const int32 NumPunctuation = 2 + std::max(0, 2 * Object->Num() - 1); // braces, colons and commas
	int64 Cost = NumPunctuation * PunctuationCost;
	for (const FJsonObject::FField& Field : Object->GetFields())
		Cost += GetCost(Field.Key) + GetCostWithoutElements(Field.Value);
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
	return FAnswerLine(Answer, Form).Write();
}

std::string WriteCutAnswer(FAnswer Answer, const FMcpAnswerForm& Form)
{
	const FJsonValue Whole = Answer.Payloads;
	Answer.Payloads = FPayloadCutter(0).Cut(Whole, "").AsObject();
	const int64 Room = Form.MaxBytes - FAnswerLine(Answer, Form).NumBytes() - WarningReserveBytes;
	if (Room < 0)
		return WriteTooLongAnswer(Form);

	FPayloadCutter Cutter(Room);
	Answer.Payloads = Cutter.Cut(Whole, "").AsObject();
	Answer.Messages.Add(MakeMessage("warning",
		FString("Answer limited to ") + FString::FromInt(Form.MaxBytes) + " bytes: " + Cutter.Describe() + " shown" +
			DescribeNarrowing(Form)));
	return FAnswerLine(Answer, Form).Write();
}
}

std::string WriteMcpToolAnswer(const Orivane::FToolResult& Result, const FMcpAnswerForm& Form)
{
	FMcpAnswerForm Limited = Form;
	Limited.MaxBytes = std::clamp<int64>(Form.MaxBytes, 0, MaxMcpLineBytes);
	const auto Fits = [&](const FAnswerLine& Line) { return Line.NumBytes() <= Limited.MaxBytes; };

	FAnswer Answer = MakeAnswer(Result);
	if (const FAnswerLine Line(Answer, Limited); Fits(Line))
		return Line.Write();
	ShortenMessages(Answer);
	if (const FAnswerLine Line(Answer, Limited); Fits(Line))
		return Line.Write();
	return WriteCutAnswer(std::move(Answer), Limited);
}
