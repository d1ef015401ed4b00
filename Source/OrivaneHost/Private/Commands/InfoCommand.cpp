#include "Commands/Commands.h"
#include "Core/Json/Json.h"
#include "CoreObject/Objects/PackageName.h"
#include "CoreObject/Packages/Loader.h"
#include "CoreObject/Reflection/DeveloperSettings.h"
#include "CoreObject/Reflection/Properties.h"
#include "Project/HeadlessEngine.h"
#include "Project/PackageMemory.h"
#include "Project/ProjectRegistry.h"
#include "Quellar/Families/AssetFamily.h"
#include "Quellar/Families/SearchMemory.h"
#include "Terminal/ExitCode.h"

#include <sys/resource.h>

namespace
{
int32 CountAssets(const FAssetFamily& Family)
{
	int32 Count = 0;
	FARFilter Filter{.bRecursiveClasses = true};
	for (UClass* (*const Class)() : Family.Classes)
		Filter.ClassPaths.Add(Class()->GetStructPathName());
	GetProjectRegistry().EnumerateAssets(
		Filter, [&](const FAssetData&) { return ++Count, true; }, true);
	return Count;
}

int64 GetPeakMemoryBytes()
{
	rusage Usage = {};
	getrusage(RUSAGE_SELF, &Usage);
	return Usage.ru_maxrss * 1024;
}

FJsonArray MakeArray(const TArray<FString>& Texts)
{
	FJsonArray Array;
	for (const FString& Text : Texts)
		Array.Add(Text);
	return Array;
}

TSharedPtr<FJsonObject> MakeCountsJson()
{
	const FAssetRegistry& Registry = GetProjectRegistry();
	auto Counts = MakeShared<FJsonObject>();
	Counts->SetNumberField("packages", Registry.NumPackages());
	Counts->SetNumberField("assets", Registry.NumAssets());
	Counts->SetNumberField("dependencies", Registry.NumDependencies());
	Counts->SetNumberField("preloaded", PackageMemory::Num());
	auto Families = MakeShared<FJsonObject>();
	for (const FAssetFamily& Family : GetAssetFamilies())
	{
		if (!Family.Classes.IsEmpty())
			Families->SetNumberField(Family.Name, CountAssets(Family));
	}
	Counts->SetObjectField("families", Families);
	auto Classes = MakeShared<FJsonObject>();
	for (const auto& [Class, Count] : Registry.CountAssetsByClass())
		Classes->SetNumberField(Class.ToString(), Count);
	Counts->SetObjectField("classes", Classes);
	return Counts;
}

TSharedPtr<FJsonObject> MakeMountsJson()
{
	auto Mounts = MakeShared<FJsonObject>();
	for (const FPackageName::FMountPoint& Mount : FPackageName::GetMountPoints())
		Mounts->SetStringField(Mount.Root, Mount.Folder);
	return Mounts;
}

/** Numbers, truth values, strings and lists of strings: what settings consist of. */
FJsonValue MakeValueJson(const FProperty& Property, const UObject& Object)
{
	const void* Value = Property.ContainerPtrToValuePtr<void>(&Object);
	if (CastField<FArrayProperty>(&Property))
		return MakeArray(*static_cast<const TArray<FString>*>(Value));
	if (const auto* Bool = CastField<FBoolProperty>(&Property))
		return Bool->GetPropertyValue(Value);
	if (const auto* String = CastField<FStrProperty>(&Property))
		return String->GetPropertyValue(Value);
	if (const auto* Number = CastField<FNumericProperty>(&Property))
		return Number->IsInteger() ? FJsonValue(Number->GetSignedIntPropertyValue(Value))
								   : FJsonValue(Number->GetFloatingPointPropertyValue(Value));
	return FJsonValue();
}

void ForEachSettingsClass(const std::function<void(UClass&, const UObject& Values)>& Visit)
{
	ForEachClass(
		[&Visit](UClass& Class)
		{
			if (IsSettingsClass(Class))
				Visit(Class, *Class.GetDefaultObject());
		});
}

TSharedPtr<FJsonObject> MakeSettingsJson()
{
	auto Settings = MakeShared<FJsonObject>();
	ForEachSettingsClass(
		[&Settings](UClass& Class, const UObject& Values)
		{
			for (const TUniquePtr<FProperty>& Property : Class.GetOwnProperties())
				Settings->SetField(Property->GetName(), MakeValueJson(*Property, Values));
		});
	return Settings;
}

/** Every setting with what people are told of it, by section of the settings file. */
TSharedPtr<FJsonObject> MakeSettingsReferenceJson()
{
	auto Sections = MakeShared<FJsonObject>();
	ForEachSettingsClass(
		[&Sections](UClass& Class, const UObject& Values)
		{
			auto Section = MakeShared<FJsonObject>();
			Section->SetStringField("about", Class.GetMetaData("ToolTip"));
			for (const TUniquePtr<FProperty>& Property : Class.GetOwnProperties())
			{
				auto Setting = MakeShared<FJsonObject>();
				Setting->SetField("value", MakeValueJson(*Property, Values));
				Setting->SetStringField("type", Property->GetTypeText());
				Setting->SetStringField("category", Property->GetMetaData("Category"));
				Setting->SetStringField("about", Property->GetMetaData("ToolTip"));
				Section->SetObjectField(Property->GetName(), Setting);
			}
			Sections->SetObjectField("[" + Class.GetPathName() + "]", Section);
		});
	return Sections;
}

TSharedPtr<FJsonObject> MakeScanJson(const FProjectSummary& Summary)
{
	auto Scan = MakeShared<FJsonObject>();
	Scan->SetNumberField("files", Summary.Scan.NumFiles);
	Scan->SetNumberField("parsed", Summary.Scan.NumParsed);
	Scan->SetNumberField("skipped", Summary.Scan.NumSkipped);
	Scan->SetStringField("cache", Summary.Scan.CacheState);
	Scan->SetStringField("cache_file", Summary.Scan.CacheFile);
	Scan->SetNumberField("list_seconds", Summary.Scan.ListSeconds);
	Scan->SetNumberField("parse_seconds", Summary.Scan.ParseSeconds);
	Scan->SetNumberField("build_seconds", Summary.Scan.BuildSeconds);
	Scan->SetNumberField("open_seconds", Summary.OpenSeconds);
	Scan->SetNumberField("registry_bytes", GetProjectRegistry().GetImageBytes());
	Scan->SetNumberField("object_memory_bytes", static_cast<double>(GetObjectMemory()));
	Scan->SetNumberField("search_memory_bytes", static_cast<double>(SearchMemory::GetBytes()));
	Scan->SetNumberField("peak_memory_bytes", GetPeakMemoryBytes());
	return Scan;
}

TSharedPtr<FJsonObject> MakeInfoJson(const FDiagnosticSink& Diagnostics)
{
	const FProjectSummary& Summary = FProject::GetSummary();
	auto Info = MakeShared<FJsonObject>();
	Info->SetStringField("name", Summary.Name);
	Info->SetStringField("description", Summary.Description);
	Info->SetStringField("folder", Summary.Folder);
	Info->SetStringField("descriptor", Summary.DescriptorFile);
	Info->SetArrayField("script_modules", MakeArray(Summary.ScriptModules));
	Info->SetObjectField("mounts", MakeMountsJson());
	Info->SetObjectField("counts", MakeCountsJson());
	Info->SetObjectField("settings", MakeSettingsJson());
	Info->SetObjectField("scan", MakeScanJson(Summary));
	Info->SetStringField("changes", FProject::DescribeWatch());
	Info->SetNumberField("errors", Diagnostics.NumErrors());
	Info->SetNumberField("warnings", Diagnostics.NumWarnings());
	return Info;
}

FString DescribeValue(const FJsonValue& Value)
{
	const FJsonArray* Array = Value.AsArray();
	if (!Array)
	{
		FString Text;
		Value.TryGetString(Text);
		return Terminal::Sanitize(Text.Replace("\n", " "));
	}
	FString List;
	for (const FJsonValue& Element : *Array)
		List += (List.IsEmpty() ? FString() : FString(", ")) + DescribeValue(Element);
	return List.IsEmpty() ? FString("(none)") : List;
}

/** A number whose name tells its unit, in one that people read: "open_seconds" and 0.0054 give "open" and "5.4 ms". */
bool DescribeQuantity(const FJsonObject::FField& Field, FString& OutName, FString& OutText)
{
	double Number = 0;
	const auto TakeName = [&](FStringView Suffix)
	{
		if (!Field.Key.EndsWith(Suffix) || !Field.Value.TryGetNumber(Number))
			return false;
		OutName = FString(Field.Key.View().substr(0, Field.Key.View().size() - Suffix.size()));
		return true;
	};
	if (TakeName("_seconds"))
		OutText = Number < 1 ? FString::Printf("%.1f ms", Number * 1000) : FString::Printf("%.2f s", Number);
	else if (TakeName("_bytes"))
		OutText = FString::Printf("%.1f MB", Number / 1'000'000);
	else if (Field.Key.EndsWith("SearchMode") && Field.Value.TryGetNumber(Number) && Number == 0)
	{
		OutName = Field.Key;
		OutText = "0 (by name alone; contents are not read)";
	}
	else
		return false;
	return true;
}

/** One line a value, members of objects indented below their name. */
void AppendReadable(FString& Out, const FJsonObject& Object, int32 Indent)
{
	constexpr int32 NameWidth = 24;
	for (const FJsonObject::FField& Field : Object.GetFields())
	{
		FString Shown = Field.Key;
		FString Text;
		const bool bQuantity = DescribeQuantity(Field, Shown, Text);
		const FString Name = FString(std::string(static_cast<std::size_t>(Indent), ' ')) + Terminal::Sanitize(Shown);
		Out += Name;
		if (const TSharedPtr<FJsonObject> Members = Field.Value.AsObject())
		{
			Out += Members->Num() == 0 ? "  (none)\n" : "\n";
			AppendReadable(Out, *Members, Indent + 2);
			continue;
		}
		const int32 Padding = std::max(NameWidth - Name.Len(), 1) + 1;
		Out +=
			FString(std::string(static_cast<std::size_t>(Padding), ' ')) + (bQuantity ? Text : DescribeValue(Field.Value)) + "\n";
	}
}
}

int RunInfo(const FInfoArguments& Arguments)
{
	const FHeadlessEngine Engine;
	FDiagnosticSink Diagnostics;
	int ExitCode = EExitCode::Found;
	FProjectOptions Options = Arguments.Project;
	Options.Watch = EProjectWatch::Auto; // to show how a server would notice changes
	if (!OpenProjectForCommand(Options, Diagnostics, true, ExitCode))
		return ExitCode;
	if (Arguments.bDumpRegistry)
	{
		GetProjectRegistry().Dump([](FStringView Line) { Terminal::Print(Terminal::Sanitize(Line) + "\n"); });
		return EExitCode::Found;
	}
	const TSharedPtr<FJsonObject> Info = Arguments.bSettings ? MakeSettingsReferenceJson() : MakeInfoJson(Diagnostics);
	FString Readable;
	AppendReadable(Readable, *Info, 0);
	Terminal::Print(Arguments.bJson ? Json::Write(*Info) + "\n" : Readable);
	return EExitCode::Found;
}
