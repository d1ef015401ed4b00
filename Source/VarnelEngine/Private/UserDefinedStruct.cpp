#include "Engine/UserDefinedStruct.h"

#include "CoreObject/Reflection/NativeClass.h"
#include "CoreObject/Reflection/PropertyReader.h"

namespace
{
constexpr FStringView FieldsKey = "Fields";
constexpr FStringView MetaDataKey = "MetaData";
constexpr FStringView SuperKey = "SuperStruct";

void ReadMetaData(UScriptStruct& Struct, const FJsonRef& MetaData, FPropertyReader& Reader)
{
	if (!MetaData.IsObject())
		return Reader.Report(MetaData, EDiagnosticSeverity::Error, "property-type", "'MetaData' is an object, text to text");
	for (const FJsonRef Entry : MetaData)
	{
		if (Entry.IsString())
			Struct.SetMetaData(FString(Entry.Key()), FString(Entry.Text()));
		else
			Reader.Report(Entry, EDiagnosticSeverity::Error, "property-type", "metadata is text");
	}
}
}

UClass* UUserDefinedStruct::StaticClass()
{
	static UClass* const Class =
		TClassBuilder<UUserDefinedStruct>("/Script/Engine.UserDefinedStruct", UScriptStruct::StaticClass())
			.Member("SuperStruct", &UUserDefinedStruct::SuperStruct)
			.Member("Category", &UUserDefinedStruct::Category)
			.Build();
	return Class;
}

bool UUserDefinedStruct::ReadCustomProperty(FStringView Key, const FJsonRef& Value, FPropertyReader& Reader)
{
	if (Key == MetaDataKey)
		ReadMetaData(*this, Value, Reader);
	return Key == MetaDataKey || Key == FieldsKey;
}

void UUserDefinedStruct::PostReadProperties(const FJsonRef& Json, FPropertyReader& Reader)
{
	const FJsonRef SuperJson = Json.Find(SuperKey);
	UScriptStruct* const Parent = SuperStruct.GetPath().SubPath.IsEmpty() ? SuperStruct.Get() : nullptr;
	if (Parent)
		SetSuperStruct(Parent);
	else if (!SuperStruct.IsNull())
		Reader.Report(SuperJson, EDiagnosticSeverity::Error, "bad-reference",
			"the parent structure " + SuperStruct.GetPath().ToString() + " cannot be had, so there is none");
	Reader.AddDeclarations(*this, Json.Find(FieldsKey), SuperJson);
}

FText FObjectEditorUtils::GetCategoryText(const UUserDefinedStruct* Struct)
{
	return Struct ? FText::FromString(Struct->Category) : FText();
}
