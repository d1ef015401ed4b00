#include "Families/PropertyTypeName.h"

#include "CoreObject/Reflection/Properties.h"

namespace
{
struct FTypeNameRow
{
	uint64 CastFlag;
	const char* Text;
};

// First match wins. A class reference is an object reference too, so "UClass" is never reached; callers rely on that.
constexpr FTypeNameRow RowsBeforeNumbers[] = {
	{EFieldCast::Str, "string"},
	{EFieldCast::Name, "FName"},
	{EFieldCast::Text, "FText"},
};
constexpr FTypeNameRow RowsAfterNumbers[] = {
	{EFieldCast::Bool, "bool"},
	{EFieldCast::ObjectBase, "UObject"},
	{EFieldCast::Class, "UClass"},
	{EFieldCast::Struct, "UStruct"},
	{EFieldCast::Array, "TArray"},
	{EFieldCast::Map, "TMap"},
	{EFieldCast::Set, "TSet"},
	{EFieldCast::Enum, "enum"},
};

template <std::size_t NumRows>
const char* FindText(const FTypeNameRow (&Rows)[NumRows], const FProperty& Property)
{
	for (const FTypeNameRow& Row : Rows)
	{
		if (Property.HasAnyCastFlags(Row.CastFlag))
			return Row.Text;
	}
	return nullptr;
}
}

FString GetPropertyTypeName(const FProperty* Property)
{
	if (!Property)
		return "unknown";
	if (const char* Text = FindText(RowsBeforeNumbers, *Property))
		return Text;
	// Byte-sized enumerations are numeric to the reflection system, so they read "int" like any byte.
	if (const FNumericProperty* Numeric = CastField<FNumericProperty>(Property))
		return Numeric->IsInteger() ? "int" : "float";
	if (const char* Text = FindText(RowsAfterNumbers, *Property))
		return Text;
	return GetFieldClassName(*Property);
}

FString GetFieldClassName(const FProperty& Property)
{
	return Property.HasAnyCastFlags(EFieldCast::Undeclared) ? Property.GetTypeText() : Property.GetClass()->GetName();
}
