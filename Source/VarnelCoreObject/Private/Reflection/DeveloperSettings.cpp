#include "CoreObject/Reflection/DeveloperSettings.h"

#include "Core/Base/Map.h"
#include "CoreObject/Reflection/NativeClass.h"
#include "Objects/ObjectTable.h"

#include <vector>

namespace
{
constexpr FStringView ScriptRoot = "/Script/";

/** Applies the lines of one section to the default object of one settings class. */
class FSectionReader
{
public:
	FSectionReader(UClass& InClass, const FString& InFileName, FDiagnosticSink* InDiagnostics)
		: Class(InClass)
		, Defaults(InClass.GetDefaultObject())
		, FileName(InFileName)
		, Diagnostics(InDiagnostics)
	{
	}
	void Apply(const TArray<FConfigLine>& Lines);

private:
	void ApplyArray(const FProperty& Property, const TArray<FConfigLine>& Lines);
	void ApplyValue(const FProperty& Property, const FConfigLine& Line);
	void Report(const FConfigLine& Line, int32 Column, const char* Rule, FString Text);

	UClass& Class;
	UObject* Defaults;
	const FString& FileName;
	FDiagnosticSink* Diagnostics;
};

void FSectionReader::Apply(const TArray<FConfigLine>& Lines)
{
	TSet<FName> ArraysDone;
	for (const FConfigLine& Line : Lines)
	{
		const FProperty* const Property = Class.FindPropertyByName(FName(Line.Key));
		if (!Property)
			Report(Line, 0, "unknown-setting", "'" + Line.Key + "' is not a setting of " + Class.GetName());
		else if (!Property->HasAnyCastFlags(EFieldCast::Array))
			ApplyValue(*Property, Line);
		else if (ArraysDone.Add(Property->GetFName()))
			ApplyArray(*Property, Lines);
	}
}

void FSectionReader::ApplyArray(const FProperty& Property, const TArray<FConfigLine>& Lines)
{
	checkf(CastField<FArrayProperty>(&Property)->GetInner().HasAnyCastFlags(EFieldCast::Str),
		"settings that are lists are lists of strings");
	auto& Values = *Property.ContainerPtrToValuePtr<TArray<FString>>(Defaults);
	Values = FConfigFile::ApplyToArray(Lines, Property.GetName(), std::move(Values));
}

void FSectionReader::ApplyValue(const FProperty& Property, const FConfigLine& Line)
{
	if (Line.Operation != FConfigLine::EOperation::Set)
		Report(Line, 0, "setting-type", "'" + Line.Key + "' is not a list; write " + Line.Key + "=Value");
	else if (!Property.ReadText(Property.ContainerPtrToValuePtr<void>(Defaults), Line.Value))
		Report(Line, Line.ValueColumn, "setting-type",
			"'" + Line.Value + "' is not a value of type " + Property.GetTypeText() + " for '" + Line.Key + "'");
}

void FSectionReader::Report(const FConfigLine& Line, int32 Column, const char* Rule, FString Text)
{
	if (Diagnostics)
		Diagnostics->Add({FileName, Line.Line, Column, EDiagnosticSeverity::Warning, std::move(Text), Rule});
}

void RestoreDefaults(UClass& Class)
{
	UObject* const Defaults = Class.GetDefaultObject();
	UObject* const Fresh = FObjectTable::Construct(Class);
	for (const FProperty* Property : PropertiesOf(Class))
		Property->CopyValue(Property->ContainerPtrToValuePtr<void>(Defaults), Property->ContainerPtrToValuePtr<void>(Fresh));
	FObjectTable::Destruct(Fresh);
}
}

UClass* UDeveloperSettings::StaticClass()
{
	static UClass* const StaticClass =
		TClassBuilder<UDeveloperSettings>("/Script/CoreObject.DeveloperSettings", UObject::StaticClass()).Abstract().Build();
	return StaticClass;
}

bool IsSettingsClass(const UClass& Class)
{
	return Class.IsNative() && !Class.IsAbstract() && Class.IsChildOf(UDeveloperSettings::StaticClass());
}

void LoadDeveloperSettings(const FConfigFile& File, const FString& FileName, FDiagnosticSink* Diagnostics)
{
	ForEachClass(
		[](UClass& Class)
		{
			if (IsSettingsClass(Class))
				RestoreDefaults(Class);
		});
	for (const auto& [Section, Lines] : File.GetSections())
	{
		if (!Section.StartsWith(ScriptRoot))
			continue;
		UClass* const Class = FindClass(Section);
		if (Class && IsSettingsClass(*Class))
			FSectionReader(*Class, FileName, Diagnostics).Apply(Lines);
		else if (Diagnostics)
			Diagnostics->Add({FileName, Lines.IsEmpty() ? 0 : Lines[0].Line, 0, EDiagnosticSeverity::Warning,
				"there are no settings [" + Section + "]; its entries are ignored", "unknown-section"});
	}
}
