#include "CoreObject/Reflection/PropertyReader.h"
#include "CoreObject/Objects/ReferenceListener.h"

#include "Core/Base/HashMap.h"
#include "Core/Base/SeededHash.h"
#include "CoreObject/Reflection/Properties.h"
#include "Objects/ObjectLoading.h"
#include "Objects/PathText.h"
#include "Reflection/JsonFaults.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace
{
constexpr int32 MaxReports = 100;				   // of one reader; finding a fault's line costs a walk through the file
constexpr int64 MaxValueBytes = 256 * 1024 * 1024; // of containers of one document

constexpr uint32 NoOffset = UINT32_MAX; // the whole file is meant

constexpr FStringView ScriptRoot = "/Script/"; // what lies below is in memory before any package is read

constexpr std::array<FStringView, 7> JsonNouns = {"null", "false", "true", "a number", "a number", "a string", "an array"};

FString Describe(const FJsonRef& Json)
{
	const auto Type = static_cast<std::size_t>(Json.Type());
	return FString(Type < JsonNouns.size() ? JsonNouns[Type] : FStringView("an object"));
}

bool IsHard(EObjectReference Kind)
{
	return Kind == EObjectReference::Object || Kind == EObjectReference::Class || Kind == EObjectReference::Interface;
}

FString GetInnerPath(const FSoftObjectPath& Path)
{
	const FString Asset = Path.Asset.AssetName.ToString();
	return Path.SubPath.IsEmpty() ? Asset : Asset + ":" + Path.SubPath;
}

/** The object at a path; null also as long as its package is being loaded. */
const UObject* FindComplete(const FSoftObjectPath& Path)
{
	const UObject* const Object = FObjectPtr(Path).GetIfLoaded();
	return Object && Object->GetPackage()->IsFullyLoaded() ? Object : nullptr;
}

/** Position of the last member of each key. Needed only where a document repeats keys at all, which is rare. */
class FLastMembers
{
public:
	FLastMembers(const FJsonDocument& Document, const FJsonRef& Json)
	{
		if (Document.GetRepeatedKeys().empty())
			return;
		for (const FJsonRef Member : Json)
			OffsetByKey[Member.Key()] = Member.KeyOffset();
	}
	bool Counts(const FJsonRef& Member) const
	{
		return OffsetByKey.empty() || OffsetByKey.at(Member.Key()) == Member.KeyOffset();
	}

private:
	THashMap<std::string_view, uint32, SeededHash::FHashText> OffsetByKey;
};
}

FPropertyReader::FPropertyReader(
	UPackage* InPackage, const FJsonDocument& InDocument, FString InFileName, FDiagnosticSink* InDiagnostics)
	: Package(InPackage)
	, Document(InDocument)
	, FileName(std::move(InFileName))
	, Diagnostics(InDiagnostics)
{
}

void FPropertyReader::ReadProperties(const UStruct& Struct, void* Container, const FJsonRef& Json, UObject* Object)
{
	if (!Json.IsObject())
	{
		Report(Json, EDiagnosticSeverity::Error, "property-type", "properties are an object, not " + Describe(Json));
		return;
	}
	const FLastMembers LastMembers(Document, Json);
	for (const FJsonRef Member : Json)
	{
		if (!LastMembers.Counts(Member))
			continue;
		if (const FProperty* const Property = Struct.FindPropertyByName(FName(Member.Key())))
			Property->ReadValue(Property->ContainerPtrToValuePtr<void>(Container), Member, *this);
		else if (!Object || !Object->ReadCustomProperty(Member.Key(), Member, *this))
			ReportAt(Member.KeyOffset(), EDiagnosticSeverity::Warning, "unknown-property",
				FJsonFaults::Quote(Member.Key()) + " is not a property of " + Struct.GetName());
	}
	if (Object)
		Object->PostReadProperties(Json, *this);
}

bool FPropertyReader::ReadObjectPath(const FJsonRef& Json, FSoftObjectPath& Out)
{
	if (Json.IsNull())
	{
		Out = FSoftObjectPath();
		return true;
	}
	if (!Json.IsString())
	{
		Report(Json, EDiagnosticSeverity::Error, "property-type",
			"a reference is the path of an object or null, not " + Describe(Json));
		return false;
	}
	const FStringView Text = Json.Text();
	if (Package && PathText::IsInnerPath(Text))
		Out = FSoftObjectPath(FString(Package->GetName() + "." + Text).View());
	else
		Out = FSoftObjectPath(Text);
	if (!Out.IsValid())
		Report(Json, EDiagnosticSeverity::Error, "bad-reference", FJsonFaults::Quote(Text) + " is not the path of an object");
	return Out.IsValid();
}

TOptional<FObjectPtr> FPropertyReader::ReadReference(const FJsonRef& Json, const FObjectPropertyBase& Property)
{
	FSoftObjectPath Path;
	if (!ReadObjectPath(Json, Path))
		return std::nullopt;
	// Paths inside the package are not made into references where an object is there: a name would be kept for good for each of
	// them.
	const bool bInPackage = Package && Path.Asset.PackageName == Package->GetFName();
	const UObject* const Object = bInPackage ? Package->FindInside(GetInnerPath(Path)) : FindComplete(Path);
	const bool bMustExist = Path.Asset.PackageName.View().starts_with(ScriptRoot);
	const bool bFits = !(Object || bMustExist) || CheckReference(Object, Json, Property);
	// What is read must not depend on whether another package is in memory: its objects are looked at for the report alone.
	if (!bFits && (bInPackage || bMustExist))
		return std::nullopt;
	if (!bInPackage && !Path.IsNull() && IsHard(Property.GetKind()))
		ObjectLoading::NoteReferenceToPackage(Path.Asset.PackageName);
	if (!Object && bInPackage && HasListener())
		PendingReferences.push_back({FObjectPtr(Path), Json, &Property});
	if (!Object && !bInPackage)
		TellOfForeignReference(Path, Json, Property);
	return Object && bInPackage ? FObjectPtr(Object) : FObjectPtr(Path);
}

bool FPropertyReader::CheckReference(const UObject* Object, const FJsonRef& Json, const FObjectPropertyBase& Property)
{
	const bool bAccepted = Object && Property.Accepts(*Object);
	if (bAccepted || !HasListener())
		return bAccepted;
	if (!Object)
		Report(Json, EDiagnosticSeverity::Error, "bad-reference", "there is no object " + FJsonFaults::Quote(Json.Text()));
	else
		Report(Json, EDiagnosticSeverity::Error, "bad-reference",
			"'" + Property.GetName() + "' of type " + Property.GetTypeText() + " cannot refer to " + Object->GetPathName() +
				", which is of class " + Object->GetClass()->GetName());
	return false;
}

void FPropertyReader::TellOfForeignReference(
	const FSoftObjectPath& Target, const FJsonRef& Json, const FObjectPropertyBase& Property) const
{
	const EObjectReference Kind = Property.GetKind();
	if (!GetReferenceListener() || !IsHard(Kind) || Target.IsNull())
		return;
	const UClass* const Class = Property.GetPropertyClass();
	FForeignReference Reference{.Target = Target,
		.Class = Class ? Class->GetStructPathName() : FTopLevelAssetPath(),
		.bIsClassReference = Kind == EObjectReference::Class,
		.At = {.File = FileName}};
	Document.Locate(Json.Offset(), Reference.At.Line, Reference.At.Column);
	GetReferenceListener()(Reference);
}

void FPropertyReader::ReportMissingObjects()
{
	for (const FPendingReference& Pending : std::exchange(PendingReferences, {}))
		CheckReference(Pending.Reference.GetIfLoaded(), Pending.Json, *Pending.Property);
}

void FPropertyReader::Report(const FJsonRef& At, EDiagnosticSeverity Severity, const char* Rule, FString Text)
{
	ReportAt(At ? At.Offset() : NoOffset, Severity, Rule, std::move(Text));
}

void FPropertyReader::ReportType(const FJsonRef& At, const FProperty& Property, const char* Expected)
{
	if (HasListener())
		Report(At, EDiagnosticSeverity::Error, "property-type",
			"'" + Property.GetName() + "' of type " + Property.GetTypeText() + " takes " + Expected + ", not " + Describe(At));
}

void FPropertyReader::ReportRange(const FJsonRef& At, const FProperty& Property)
{
	if (HasListener())
		Report(At, EDiagnosticSeverity::Error, "property-range",
			"the number is out of range for '" + Property.GetName() + "' of type " + Property.GetTypeText());
}

void FPropertyReader::ReportUnknownMember(const FJsonRef& Member)
{
	if (HasListener())
		ReportAt(Member.KeyOffset(), EDiagnosticSeverity::Warning, "unknown-key",
			FJsonFaults::Quote(Member.Key()) + " is not a key that is known here; it is ignored");
}

bool FPropertyReader::TakeBytes(const FJsonRef& At, int64 NumBytes)
{
	BytesTaken += NumBytes;
	if (BytesTaken <= MaxValueBytes)
		return true;
	Report(At, EDiagnosticSeverity::Error, "property-size",
		"the values of this file take more than 256 MiB of memory; this one is left out");
	return false;
}

void FPropertyReader::ReportAt(uint32 Offset, EDiagnosticSeverity Severity, const char* Rule, FString Text)
{
	if (!Diagnostics || NumReported > MaxReports)
		return;
	if (NumReported++ == MaxReports)
		return Diagnostics->Add(
			{FileName, 0, 0, EDiagnosticSeverity::Warning, "the file has more faults than are listed here", "more-faults"});
	FDiagnostic Diagnostic{FileName, 0, 0, std::min(Severity, WorstSeverity), std::move(Text), Rule};
	if (Offset != NoOffset)
		Document.Locate(Offset, Diagnostic.Line, Diagnostic.Column);
	Diagnostics->Add(std::move(Diagnostic));
}
