#include "Core/Json/Json.h"

#include "Core/Base/SeededHash.h"
#include "Core/Json/JsonDocument.h"
#include "Json/JsonKeyIndex.h"

#include <charconv>
#include <cmath>

namespace
{
/** Numbers in text, as people write them: see FJsonObject. Too large, and too close to zero for a double, is not a number. */
bool ReadDecimal(FStringView Text, double& Out)
{
	const bool bHasPlus = Text.starts_with('+');
	if (bHasPlus)
		Text.remove_prefix(1);
	const std::size_t First = !bHasPlus && Text.starts_with('-') ? 1 : 0;
	if (Text.find_first_of("0123456789.", First) != First) // the library would also take nan and inf
		return false;
	double Value = 0.0;
	const auto Result = std::from_chars(Text.data(), Text.data() + Text.size(), Value);
	if (Result.ec != std::errc() || Result.ptr != Text.data() + Text.size())
		return false;
	Out = Value;
	return true;
}

bool ReadInteger(FStringView Text, int64& Out)
{
	int64 Value = 0;
	const auto Result = std::from_chars(Text.data(), Text.data() + Text.size(), Value);
	if (Result.ec != std::errc() || Result.ptr != Text.data() + Text.size())
		return false;
	Out = Value;
	return true;
}

/** Toward zero; what does not fit becomes the nearest end of the range. Value is a number. */
template <class TInteger>
TInteger Truncate(double Value)
{
	// -2^(n-1) and 2^(n-1) are exact as double, the largest integer of 64 bits is not.
	constexpr auto Lowest = static_cast<double>(std::numeric_limits<TInteger>::min());
	if (Value >= -Lowest)
		return std::numeric_limits<TInteger>::max();
	return Value <= Lowest ? std::numeric_limits<TInteger>::min() : static_cast<TInteger>(Value);
}

template <class TInteger>
bool ReadTruncated(const FJsonValue& Json, TInteger& Out)
{
	double Value = 0.0;
	if (!Json.TryGetNumber(Value) || !std::isfinite(Value))
		return false;
	Out = Truncate<TInteger>(Value);
	return true;
}

bool ReadBool(const FString& Text, bool& Out)
{
	const bool bTrue = Text.Equals("true", ESearchCase::IgnoreCase) || Text.View() == "1";
	if (!bTrue && !Text.Equals("false", ESearchCase::IgnoreCase) && Text.View() != "0")
		return false;
	Out = bTrue;
	return true;
}

FJsonValue MakeValue(FJsonRef Source);

FJsonArray MakeArray(FJsonRef Source)
{
	FJsonArray Array;
	Array.Reserve(Source.Num());
	for (const FJsonRef Element : Source)
		Array.Add(MakeValue(Element));
	return Array;
}

TSharedPtr<FJsonObject> MakeObject(FJsonRef Source)
{
	TSharedPtr<FJsonObject> Object = MakeShared<FJsonObject>();
	for (const FJsonRef Member : Source)
		Object->SetField(FString(Member.Key()), MakeValue(Member));
	return Object;
}

FJsonValue MakeValue(FJsonRef Source)
{
	switch (Source.Type())
	{
		case EJsonNode::Null:
			return FJsonValue();
		case EJsonNode::False:
		case EJsonNode::True:
			return FJsonValue(Source.Bool());
		case EJsonNode::Integer:
			return FJsonValue(Source.Integer());
		case EJsonNode::Double:
			return FJsonValue(Source.Number());
		case EJsonNode::String:
			return FJsonValue(FString(Source.Text()));
		case EJsonNode::Array:
			return FJsonValue(MakeArray(Source));
		case EJsonNode::Object:
			return FJsonValue(MakeObject(Source));
	}
	return FJsonValue();
}
}

FJsonValue::FJsonValue(FJsonArray Value) : Data(std::make_shared<const FJsonArray>(std::move(Value)))
{
}

FJsonValue::FJsonValue(TSharedPtr<FJsonObject> Value)
{
	if (Value)
		Data = std::move(Value);
}

EJson FJsonValue::Type() const
{
	constexpr EJson TypeOfAlternative[] = {
		EJson::Null, EJson::Boolean, EJson::Number, EJson::Number, EJson::String, EJson::Array, EJson::Object};
	return TypeOfAlternative[Data.index()];
}

bool FJsonValue::TryGetString(FString& Out) const
{
	if (const FString* Text = std::get_if<FString>(&Data))
		Out = *Text;
	else if (const bool* Bool = std::get_if<bool>(&Data))
		Out = *Bool ? "true" : "false";
	else if (const int64* Integer = std::get_if<int64>(&Data))
		Out = FString::FromInt(*Integer);
	else if (const double* Double = std::get_if<double>(&Data); Double && std::isfinite(*Double))
	{
		std::string Number;
		Json::AppendNumber(Number, *Double);
		Out = FString(std::move(Number));
	}
	else
		return false;
	return true;
}

bool FJsonValue::TryGetNumber(double& Out) const
{
	if (const FString* Text = std::get_if<FString>(&Data))
		return ReadDecimal(*Text, Out);
	if (const double* Double = std::get_if<double>(&Data))
		Out = *Double;
	else if (const int64* Integer = std::get_if<int64>(&Data))
		Out = static_cast<double>(*Integer);
	else if (const bool* Bool = std::get_if<bool>(&Data))
		Out = *Bool ? 1.0 : 0.0;
	else
		return false;
	return true;
}

bool FJsonValue::TryGetNumber(int32& Out) const
{
	return ReadTruncated(*this, Out); // a double holds every int32
}

bool FJsonValue::TryGetNumber(int64& Out) const
{
	if (const int64* Integer = std::get_if<int64>(&Data))
	{
		Out = *Integer;
		return true;
	}
	if (const FString* Text = std::get_if<FString>(&Data); Text && ReadInteger(*Text, Out))
		return true;
	return ReadTruncated(*this, Out);
}

bool FJsonValue::TryGetBool(bool& Out) const
{
	if (const FString* Text = std::get_if<FString>(&Data))
		return ReadBool(*Text, Out);
	double Value = 0.0;
	if (!TryGetNumber(Value) || !std::isfinite(Value))
		return false;
	Out = Value != 0.0;
	return true;
}

const FJsonArray* FJsonValue::AsArray() const
{
	const FArrayBox* Box = std::get_if<FArrayBox>(&Data);
	return Box ? Box->get() : nullptr;
}

TSharedPtr<FJsonObject> FJsonValue::AsObject() const
{
	const TSharedPtr<FJsonObject>* Object = std::get_if<TSharedPtr<FJsonObject>>(&Data);
	return Object ? *Object : nullptr;
}

int32 FJsonObject::FindPosition(FStringView Key) const
{
	if (!Positions.IsEmpty())
	{
		const auto HasKey = [&](uint32 Position) { return Fields.GetData()[Position].Key.View() == Key; };
		return static_cast<int32>(Positions.Find(SeededHash::HashBytes(Key), HasKey)); // INDEX_NONE where there is none
	}
	for (int32 Position = 0; Position < Fields.Num(); ++Position)
	{
		if (Fields.GetData()[Position].Key.View() == Key)
			return Position;
	}
	return INDEX_NONE;
}

const FJsonValue* FJsonObject::FindField(FStringView Key) const
{
	const int32 Position = FindPosition(Key);
	return Position == INDEX_NONE ? nullptr : &Fields[Position].Value;
}

void FJsonObject::SetField(FString Key, FJsonValue Value)
{
	const int32 Position = FindPosition(Key);
	if (Position == INDEX_NONE)
		AddField(std::move(Key), std::move(Value));
	else
		Fields[Position].Value = std::move(Value);
}

void FJsonObject::AddField(FString Key, FJsonValue Value)
{
	Fields.Add({std::move(Key), std::move(Value)});
	const int32 Num = Fields.Num();
	if (Num < JsonKeyIndex::MinMembers)
		return;
	for (int32 Position = Positions.IsEmpty() ? 0 : Num - 1; Position < Num; ++Position)
		Positions.Add(SeededHash::HashBytes(Fields[Position].Key), static_cast<uint32>(Position));
}

bool FJsonObject::TryGetStringField(FStringView Key, FString& Out) const
{
	const FJsonValue* Value = FindField(Key);
	return Value && Value->TryGetString(Out);
}

bool FJsonObject::TryGetNumberField(FStringView Key, double& Out) const
{
	const FJsonValue* Value = FindField(Key);
	return Value && Value->TryGetNumber(Out);
}

bool FJsonObject::TryGetNumberField(FStringView Key, int32& Out) const
{
	const FJsonValue* Value = FindField(Key);
	return Value && Value->TryGetNumber(Out);
}

bool FJsonObject::TryGetBoolField(FStringView Key, bool& Out) const
{
	const FJsonValue* Value = FindField(Key);
	return Value && Value->TryGetBool(Out);
}

bool FJsonObject::TryGetArrayField(FStringView Key, const FJsonArray*& Out) const
{
	const FJsonValue* Value = FindField(Key);
	const FJsonArray* Array = Value ? Value->AsArray() : nullptr;
	if (Array)
		Out = Array;
	return Array != nullptr;
}

bool FJsonObject::TryGetObjectField(FStringView Key, TSharedPtr<FJsonObject>& Out) const
{
	const FJsonValue* Value = FindField(Key);
	TSharedPtr<FJsonObject> Object = Value ? Value->AsObject() : nullptr;
	const bool bIsObject = Object != nullptr;
	if (bIsObject)
		Out = std::move(Object);
	return bIsObject;
}

namespace Json
{
bool Parse(std::string_view Text, FJsonValue& Out, FJsonError* Error, int32 MaxDepth)
{
	constexpr std::size_t MaxKeptText =
		1 << 20; // the buffers of longer texts are not kept, they would stay with the thread for good
	thread_local FJsonDocument Document;
	// Messages have a limit of their own, and the other texts are the program's: answers may be large.
	const bool bParsed =
		Document.Parse(Text, {.MaxDepth = std::min(MaxDepth, MaxPackageDepth), .MaxValues = INT64_MAX, .StopBefore = {}});
	if (bParsed)
		Out = MakeValue(Document.Root());
	else if (Error)
		*Error = Document.GetError();
	if (Text.size() > MaxKeptText)
		Document = FJsonDocument();
	return bParsed;
}

bool ParseObject(std::string_view Text, TSharedPtr<FJsonObject>& Out, FJsonError* Error, int32 MaxDepth)
{
	FJsonValue Value;
	if (!Parse(Text, Value, Error, MaxDepth))
		return false;
	if (Value.Type() == EJson::Object)
	{
		Out = Value.AsObject();
		return true;
	}
	if (Error)
		*Error = {.Offset = 0, .Line = 1, .Column = 1, .Text = "a JSON object is needed"};
	return false;
}
}
