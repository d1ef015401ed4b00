#include "CoreObject/Reflection/Class.h"
#include "CoreObject/Reflection/Properties.h"
#include "CoreObject/Reflection/PropertyReader.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <utility>

namespace
{
constexpr uint64 NumberBits = EFieldCast::Property | EFieldCast::Numeric;
constexpr FFieldClass EnumClass("EnumProperty", EFieldCast::Property | EFieldCast::Enum);

struct FNumberRow
{
	FFieldClass Class;
	const char* Word; // in type texts
};
constexpr FNumberRow NumberKinds[] = {
	{{"Int8Property", NumberBits | EFieldCast::Int8}, "int8"},
	{{"Int16Property", NumberBits | EFieldCast::Int16}, "int16"},
	{{"IntProperty", NumberBits | EFieldCast::Int}, "int"},
	{{"Int64Property", NumberBits | EFieldCast::Int64}, "int64"},
	{{"ByteProperty", NumberBits | EFieldCast::Byte}, "byte"},
	{{"UInt16Property", NumberBits | EFieldCast::UInt16}, "uint16"},
	{{"UInt32Property", NumberBits | EFieldCast::UInt32}, "uint32"},
	{{"UInt64Property", NumberBits | EFieldCast::UInt64}, "uint64"},
	{{"FloatProperty", NumberBits | EFieldCast::Float}, "float"},
	{{"DoubleProperty", NumberBits | EFieldCast::Double}, "double"},
};

const FNumberRow& RowOf(uint64 CastFlag)
{
	const auto* Row = std::begin(NumberKinds);
	while (!Row->Class.HasAnyCastFlags(CastFlag))
		++Row;
	return *Row;
}

enum class ENumberFault : uint8
{
	None,
	NotWhole,
	OutOfRange,
};

template <class T>
ENumberFault ConvertInteger(int64 Integer, T& Out)
{
	if constexpr (std::is_integral_v<T>)
	{
		if (!std::in_range<T>(Integer))
			return ENumberFault::OutOfRange;
	}
	Out = static_cast<T>(Integer);
	return ENumberFault::None;
}

template <class T>
ENumberFault ConvertDouble(double Number, T& Out)
{
	if constexpr (std::is_integral_v<T>)
	{
		constexpr T Lowest = std::numeric_limits<T>::lowest();
		constexpr T Highest = std::numeric_limits<T>::max();
		if (Number != std::trunc(Number))
			return ENumberFault::NotWhole;
		// Doubles near 2^64 lie 2048 apart: the highest 64-bit number and 2^64 read the same, so the one that exists is meant.
		const double End = std::ldexp(1.0, std::numeric_limits<T>::digits);
		if (Number < static_cast<double>(Lowest) || Number > End || (Number == End && sizeof(T) < sizeof(uint64)))
			return ENumberFault::OutOfRange;
		Out = Number == End ? Highest : static_cast<T>(Number);
	}
	else
	{
		if (std::abs(Number) > static_cast<double>(std::numeric_limits<T>::max()))
			return ENumberFault::OutOfRange;
		Out = static_cast<T>(Number);
	}
	return ENumberFault::None;
}

template <class T>
bool ReadNumber(T& Out, const FProperty& Property, const FJsonRef& Json, FPropertyReader& Reader)
{
	if (!Json.IsNumber())
	{
		Reader.ReportType(Json, Property, "a number");
		return false;
	}
	T Number{};
	const ENumberFault Fault =
		Json.Type() == EJsonNode::Integer ? ConvertInteger(Json.Integer(), Number) : ConvertDouble(Json.Number(), Number);
	if (Fault == ENumberFault::NotWhole)
		Reader.ReportType(Json, Property, "a whole number");
	else if (Fault == ENumberFault::OutOfRange)
		Reader.ReportRange(Json, Property);
	else
		Out = Number;
	return Fault == ENumberFault::None;
}

template <class T>
bool ParseNumber(T& Out, FStringView Text)
{
	T Number{};
	const char* const End = Text.data() + Text.size();
	const std::from_chars_result Result = std::from_chars(Text.data(), End, Number);
	if (Result.ec != std::errc() || Result.ptr != End)
		return false;
	Out = Number;
	return true;
}

/** An enumerator's name, or a number that fits T. */
template <class T>
bool ReadEnumerator(T& Out, const UEnum* Enum, const FProperty& Property, const FJsonRef& Json, FPropertyReader& Reader)
{
	if (!Json.IsString())
		return ReadNumber(Out, Property, Json, Reader);
	int64 Value = 0;
	if (!Enum || !Enum->TryGetValueByName(Json.Text(), Value))
	{
		const FString EnumName = Enum ? Enum->GetName() : FString("an enumeration that is gone");
		Reader.Report(Json, EDiagnosticSeverity::Error, "unknown-enumerator",
			FString("'") + Json.Text() + "' is not an enumerator of " + EnumName);
		return false;
	}
	const bool bFits = ConvertInteger(Value, Out) == ENumberFault::None;
	if (!bFits)
		Reader.ReportRange(Json, Property);
	return bFits;
}

template <class T>
bool ParseEnumerator(T& Out, const UEnum* Enum, FStringView Text)
{
	int64 Value = 0;
	if (!Enum || !Enum->TryGetValueByName(Text, Value))
		return ParseNumber(Out, Text);
	return ConvertInteger(Value, Out) == ENumberFault::None;
}
}

template <class T>
TNumericProperty<T>::TNumericProperty(FName InName) : TValueProperty<T, FNumericProperty>(RowOf(CastFlag).Class, InName)
{
}

template <class T>
int64 TNumericProperty<T>::GetSignedIntPropertyValue(const void* Value) const
{
	const T Number = this->GetPropertyValue(Value);
	if constexpr (std::is_integral_v<T>)
		return static_cast<int64>(Number);
	constexpr double End = 9223372036854775808.0; // 2^63, the first number that does not fit
	if (std::isnan(Number))
		return 0;
	if (static_cast<double>(Number) >= End)
		return std::numeric_limits<int64>::max();
	return static_cast<double>(Number) < -End ? std::numeric_limits<int64>::min() : static_cast<int64>(Number);
}

template <class T>
bool TNumericProperty<T>::ReadValue(void* Value, const FJsonRef& Json, FPropertyReader& Reader) const
{
	return ReadNumber(*static_cast<T*>(Value), *this, Json, Reader);
}

template <class T>
bool TNumericProperty<T>::ReadText(void* Value, FStringView Text) const
{
	return ParseNumber(*static_cast<T*>(Value), Text);
}

template <class T>
FString TNumericProperty<T>::GetTypeText() const
{
	return RowOf(CastFlag).Word;
}

template class TNumericProperty<int8>;
template class TNumericProperty<int16>;
template class TNumericProperty<int32>;
template class TNumericProperty<int64>;
template class TNumericProperty<uint8>;
template class TNumericProperty<uint16>;
template class TNumericProperty<uint32>;
template class TNumericProperty<uint64>;
template class TNumericProperty<float>;
template class TNumericProperty<double>;

FByteProperty::FByteProperty(FName InName, UEnum* InEnum) : TNumericProperty(InName)
{
	if (InEnum)
		Enum = FObjectPtr(FSoftObjectPath(InEnum->GetPathName().View()));
}

UEnum* FByteProperty::GetEnum() const
{
	return Cast<UEnum>(Enum.Get());
}

bool FByteProperty::ReadValue(void* Value, const FJsonRef& Json, FPropertyReader& Reader) const
{
	uint8& Byte = *static_cast<uint8*>(Value);
	return Enum.IsNull() ? ReadNumber(Byte, *this, Json, Reader) : ReadEnumerator(Byte, GetEnum(), *this, Json, Reader);
}

bool FByteProperty::ReadText(void* Value, FStringView Text) const
{
	uint8& Byte = *static_cast<uint8*>(Value);
	return Enum.IsNull() ? ParseNumber(Byte, Text) : ParseEnumerator(Byte, GetEnum(), Text);
}

FString FByteProperty::GetTypeText() const
{
	return Enum.IsNull() ? FString("byte") : "byte<" + Enum.GetPath().ToString() + ">";
}

FEnumProperty::FEnumProperty(FName InName, UEnum& InEnum)
	: TValueProperty(EnumClass, InName)
	, Enum(FSoftObjectPath(InEnum.GetPathName().View()))
{
}

UEnum* FEnumProperty::GetEnum() const
{
	return Cast<UEnum>(Enum.Get());
}

bool FEnumProperty::ReadValue(void* Value, const FJsonRef& Json, FPropertyReader& Reader) const
{
	return ReadEnumerator(*static_cast<int64*>(Value), GetEnum(), *this, Json, Reader);
}

bool FEnumProperty::ReadText(void* Value, FStringView Text) const
{
	return ParseEnumerator(*static_cast<int64*>(Value), GetEnum(), Text);
}

FString FEnumProperty::GetTypeText() const
{
	return "enum<" + Enum.GetPath().ToString() + ">";
}
