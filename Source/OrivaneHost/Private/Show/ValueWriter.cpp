#include "Show/ValueWriter.h"

#include "Core/Threads/StopToken.h"
#include "CoreObject/Reflection/Properties.h"

#include <charconv>
#include <cmath>

namespace
{
constexpr int32 MaxDepth = 12; // containers and structures inside one another
constexpr const char* Ellipsis = "...";
constexpr uint64 ReferenceFlags = EFieldCast::ObjectBase | EFieldCast::Interface;

/** What reads back as the same float: 0.1, not 0.10000000149. */
double GetShortest(float Value)
{
	char Digits[32];
	const auto Written = std::to_chars(Digits, std::end(Digits), Value);
	double Shortest = 0;
	std::from_chars(Digits, Written.ptr, Shortest);
	return std::isfinite(Value) ? Shortest : Value;
}

/** "Noon" of "EPhase::Noon"; the number where no entry has it. */
FJsonValue MakeEntry(const UEnum* Enum, int64 Value)
{
	const UEnum::FEntry* const Entry =
		Enum ? Enum->GetEntries().FindByPredicate([&](const UEnum::FEntry& Each) { return Each.Value == Value; }) : nullptr;
	if (!Entry)
		return Value;
	const FStringView Name = Entry->Name.View();
	return FString(Name.substr(Name.rfind(':') + 1));
}

FJsonValue MakeNumber(const FNumericProperty& Property, const void* Value)
{
	if (const auto* Float = CastField<FFloatProperty>(&Property))
		return GetShortest(Float->GetPropertyValue(Value));
	if (const auto* Byte = CastField<FByteProperty>(&Property))
		return MakeEntry(Byte->GetEnum(), Byte->GetPropertyValue(Value));
	const bool bNegative = Property.GetSignedIntPropertyValue(Value) < 0; // or unsigned, beyond the range
	if (!Property.IsInteger() || (bNegative && Property.HasAnyCastFlags(EFieldCast::UInt64)))
		return Property.GetFloatingPointPropertyValue(Value);
	return Property.GetSignedIntPropertyValue(Value);
}

FJsonValue MakeReference(const void* Value)
{
	const FSoftObjectPath Path = static_cast<const FObjectPtr*>(Value)->GetPath();
	return Path.IsNull() ? FJsonValue() : FJsonValue(Path.ToString());
}

const FPairProperty& GetPair(const FMapProperty& Map)
{
	return static_cast<const FPairProperty&>(Map.GetInner());
}

/** Keys that can be those of a JSON object. */
bool IsTextLike(const FProperty& Property)
{
	return Property.HasAnyCastFlags(
		EFieldCast::Str | EFieldCast::Name | EFieldCast::Text | EFieldCast::Numeric | EFieldCast::Enum | EFieldCast::Bool);
}
}

bool IsReference(const FProperty& Property)
{
	return Property.HasAnyCastFlags(ReferenceFlags);
}

bool IsDefaultValue(const FProperty& Property, const void* Container, const void* Defaults)
{
	if (!Defaults)
		return false;
	const void* const Value = Property.ContainerPtrToValuePtr<void>(Container);
	const void* const Default = Property.ContainerPtrToValuePtr<void>(Defaults);
	if (!Property.Identical(Value, Default))
		return false;
	constexpr int64 EnoughBytes = 64 * 1024; // texts that differ in case alone are identical: they are compared as written
	FValueWriter Writer(EnoughBytes);
	return Json::Write(Writer.Write(Property, Value)).Equals(Json::Write(Writer.Write(Property, Default)));
}

template <class TMake>
FJsonValue FValueWriter::Bound(TMake Make)
{
	Room = MaxBytes;
	bCut = false;
	FJsonValue Value = Make();
	NumCut += bCut ? 1 : 0;
	return Value;
}

FJsonValue FValueWriter::Write(const FProperty& Property, const void* Value)
{
	return Bound([&] { return MakeValue(Property, Value, 0); });
}

FJsonValue FValueWriter::WriteMembers(const UStruct& Struct, const void* Container)
{
	return Bound([&] { return MakeMembers(Struct, Container, 0); });
}

FJsonValue FValueWriter::WriteStored(const FJsonRef& Json)
{
	return Bound([&] { return MakeStored(Json, 0); });
}

FJsonValue FValueWriter::WriteText(FStringView Text)
{
	return Bound([&] { return MakeText(Text); });
}

FJsonValue FValueWriter::Cut()
{
	bCut = true;
	return Ellipsis;
}

FJsonValue FValueWriter::Charge(FJsonValue Value)
{
	Room -= Json::Measure(Value).NumBytes + 1;
	return Value;
}

FJsonValue FValueWriter::MakeText(FStringView Text)
{
	auto NumBytes = static_cast<std::size_t>(std::max<int64>(Room, 0));
	if (Text.size() <= NumBytes)
		return Charge(FString(Text));
	while (NumBytes > 0 && (static_cast<uint8>(Text[NumBytes]) & 0xC0) == 0x80) // not inside a character
		--NumBytes;
	bCut = true;
	return Charge(FString(Text.substr(0, NumBytes)) + Ellipsis);
}

FJsonValue FValueWriter::MakeValue(const FProperty& Property, const void* Value, int32 Depth)
{
	if (Room <= 0 || Depth == MaxDepth || IsStopRequested())
		return Cut();
	if (const auto* Struct = CastField<FStructProperty>(&Property))
		return MakeMembers(Struct->GetStruct(), Value, Depth);
	if (const auto* Map = CastField<FMapProperty>(&Property))
		return MakePairs(*Map, Value, Depth);
	if (Property.HasAnyCastFlags(EFieldCast::Array | EFieldCast::Set))
		return MakeElements(static_cast<const FContainerProperty&>(Property), Value, Depth);
	if (IsReference(Property))
		return Charge(MakeReference(Value));
	if (const auto* Bool = CastField<FBoolProperty>(&Property))
		return Charge(Bool->GetPropertyValue(Value));
	if (const auto* Enum = CastField<FEnumProperty>(&Property))
		return Charge(MakeEntry(Enum->GetEnum(), Enum->GetPropertyValue(Value)));
	if (const auto* Number = CastField<FNumericProperty>(&Property))
		return Charge(MakeNumber(*Number, Value));
	if (const auto* String = CastField<FStrProperty>(&Property))
		return MakeText(String->GetPropertyValue(Value));
	if (const auto* Name = CastField<FNameProperty>(&Property))
		return MakeText(Name->GetPropertyValue(Value).ToString());
	if (const auto* Text = CastField<FTextProperty>(&Property))
		return MakeText(Text->GetPropertyValue(Value).ToString());
	return Charge(FJsonValue());
}

FJsonValue FValueWriter::MakeMembers(const UStruct& Struct, const void* Container, int32 Depth)
{
	auto Members = MakeShared<FJsonObject>();
	for (const FProperty* Property : PropertiesOf(Struct))
	{
		if (Room <= 0)
		{
			Members->SetField(Ellipsis, Cut());
			break;
		}
		const FString Name = Property->GetAuthoredName();
		Room -= Name.NumBytes();
		Members->SetField(Name, MakeValue(*Property, Property->ContainerPtrToValuePtr<void>(Container), Depth + 1));
	}
	return Members;
}

FJsonValue FValueWriter::MakeElements(const FContainerProperty& Property, const void* Value, int32 Depth)
{
	FJsonArray Elements;
	const int32 Num = Property.Num(Value);
	for (int32 Index = 0; Index < Num; ++Index)
	{
		if (Room <= 0)
		{
			Cut();
			Elements.Add(FString::Printf("... %d more", Num - Index));
			break;
		}
		Elements.Add(MakeValue(Property.GetInner(), Property.GetElement(Value, Index), Depth + 1));
	}
	return Elements;
}

FJsonValue FValueWriter::MakePairs(const FMapProperty& Property, const void* Value, int32 Depth)
{
	const bool bByText = IsTextLike(Property.GetKeyProperty());
	auto Object = MakeShared<FJsonObject>();
	FJsonArray List;
	for (int32 Index = 0; Index < Property.Num(Value); ++Index)
	{
		const void* const Pair = Property.GetElement(Value, Index);
		const FJsonValue Key = MakeValue(Property.GetKeyProperty(), Pair, Depth + 1);
		if (Room <= 0)
		{
			Object->SetField(Ellipsis, Cut());
			List.Add(Ellipsis);
			break;
		}
		const FJsonValue Mapped = MakeValue(Property.GetValueProperty(), GetPair(Property).ValueOf(Pair), Depth + 1);
		FString KeyText;
		if (bByText && Key.TryGetString(KeyText))
			Object->SetField(KeyText, Mapped);
		else
			List.Add(FJsonArray{Key, Mapped});
	}
	return bByText ? FJsonValue(Object) : FJsonValue(List);
}

FJsonValue FValueWriter::MakeStored(const FJsonRef& Json, int32 Depth)
{
	if (Room <= 0 || Depth == MaxDepth || IsStopRequested())
		return Cut();
	if (Json.IsString())
		return MakeText(Json.Text());
	if (Json.IsBool())
		return Charge(Json.Bool());
	if (Json.IsNumber())
		return Charge(Json.Type() == EJsonNode::Integer ? FJsonValue(Json.Integer()) : FJsonValue(Json.Number()));
	auto Object = MakeShared<FJsonObject>();
	FJsonArray Array;
	for (const FJsonRef Child : Json)
	{
		const FString Key = Room > 0 ? FString(Child.Key()) : FString(Ellipsis);
		Room -= Key.NumBytes();
		const FJsonValue Value = MakeStored(Child, Depth + 1);
		if (Json.IsArray())
			Array.Add(Value);
		else
			Object->SetField(Key, Value);
		if (Room <= 0)
			break;
	}
	if (Json.IsNull())
		return Charge(FJsonValue());
	return Json.IsArray() ? FJsonValue(Array) : FJsonValue(Object);
}
