#include "CoreObject/Reflection/Properties.h"

#include "CoreObject/Reflection/PropertyReader.h"

FString FField::GetMetaData(const FString& Key) const
{
	const FString* const Value = MetaData ? MetaData->Find(Key) : nullptr;
	return Value ? *Value : FString();
}

void FField::SetMetaData(FString Key, FString Value)
{
	if (Value.IsEmpty())
		return;
	if (!MetaData)
		MetaData = MakeUnique<FMetaData>();
	MetaData->Set(std::move(Key), std::move(Value));
}

void FProperty::GatherStructs(std::vector<UScriptStruct*>&) const
{
}

bool FProperty::ReadText(void*, FStringView) const
{
	return false;
}

namespace
{
constexpr FFieldClass BoolClass("BoolProperty", EFieldCast::Property | EFieldCast::Bool);
constexpr FFieldClass StrClass("StrProperty", EFieldCast::Property | EFieldCast::Str);
constexpr FFieldClass NameClass("NameProperty", EFieldCast::Property | EFieldCast::Name);
constexpr FFieldClass TextClass("TextProperty", EFieldCast::Property | EFieldCast::Text);

struct FUnreadRow
{
	FFieldClass Class;
	const char* Word;
};
constexpr FUnreadRow UnreadKinds[] = {
	{{"DelegateProperty", EFieldCast::Property | EFieldCast::Delegate}, "delegate"},
	{{"MulticastDelegateProperty", EFieldCast::Property | EFieldCast::MulticastDelegate}, "multicast_delegate"},
	{{"FieldPathProperty", EFieldCast::Property | EFieldCast::FieldPath}, "field_path"},
	{{"UndeclaredProperty", EFieldCast::Property | EFieldCast::Undeclared}, ""},
};

const FUnreadRow& RowOf(EUnreadKind Kind)
{
	return UnreadKinds[static_cast<std::size_t>(Kind)];
}
}

FBoolProperty::FBoolProperty(FName InName) : TValueProperty(BoolClass, InName)
{
}

bool FBoolProperty::ReadValue(void* Value, const FJsonRef& Json, FPropertyReader& Reader) const
{
	if (Json.IsBool())
		*static_cast<bool*>(Value) = Json.Bool();
	else
		Reader.ReportType(Json, *this, "true or false");
	return Json.IsBool();
}

bool FBoolProperty::ReadText(void* Value, FStringView Text) const
{
	const FString Word(Text);
	const bool bTrue = Word == FString("true") || Word == FString("1");
	if (!bTrue && !(Word == FString("false") || Word == FString("0")))
		return false;
	*static_cast<bool*>(Value) = bTrue;
	return true;
}

FString FBoolProperty::GetTypeText() const
{
	return "bool";
}

FStrProperty::FStrProperty(FName InName) : TValueProperty(StrClass, InName)
{
}

bool FStrProperty::ReadValue(void* Value, const FJsonRef& Json, FPropertyReader& Reader) const
{
	if (Json.IsString())
		return ReadText(Value, Json.Text());
	Reader.ReportType(Json, *this, "a string");
	return false;
}

bool FStrProperty::ReadText(void* Value, FStringView Text) const
{
	*static_cast<FString*>(Value) = FString(Text);
	return true;
}

FString FStrProperty::GetTypeText() const
{
	return "string";
}

FNameProperty::FNameProperty(FName InName) : TValueProperty(NameClass, InName)
{
}

bool FNameProperty::ReadValue(void* Value, const FJsonRef& Json, FPropertyReader& Reader) const
{
	if (Json.IsString())
		return ReadText(Value, Json.Text());
	Reader.ReportType(Json, *this, "a string");
	return false;
}

bool FNameProperty::ReadText(void* Value, FStringView Text) const
{
	*static_cast<FName*>(Value) = FName(Text);
	return true;
}

FString FNameProperty::GetTypeText() const
{
	return "name";
}

FTextProperty::FTextProperty(FName InName) : TValueProperty(TextClass, InName)
{
}

bool FTextProperty::ReadValue(void* Value, const FJsonRef& Json, FPropertyReader& Reader) const
{
	const FJsonRef Text = Json.IsObject() ? Json.Find("text") : Json;
	if (Text && Text.IsString())
		return ReadText(Value, Text.Text());
	Reader.ReportType(Json, *this, "a string or an object with the member 'text'");
	return false;
}

bool FTextProperty::ReadText(void* Value, FStringView Text) const
{
	*static_cast<FText*>(Value) = FText::FromString(Text);
	return true;
}

FString FTextProperty::GetTypeText() const
{
	return "text";
}

FUnreadProperty::FUnreadProperty(EUnreadKind InKind, FName InName)
	: FProperty(RowOf(InKind).Class, InName)
	, TypeText(RowOf(InKind).Word)
{
}

FUnreadProperty::FUnreadProperty(FName InName, FString InTypeText)
	: FProperty(RowOf(EUnreadKind::Undeclared).Class, InName)
	, TypeText(std::move(InTypeText))
{
}

bool FUnreadProperty::ReadValue(void*, const FJsonRef&, FPropertyReader&) const
{
	return true;
}

FString FUnreadProperty::GetTypeText() const
{
	return TypeText;
}
