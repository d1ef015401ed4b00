#pragma once

#include "Core/Json/JsonDocument.h"
#include "Core/Program/Diagnostics.h"
#include "CoreObject/Objects/ObjectPtr.h"
#include "CoreObject/Reflection/Class.h"

#include <unordered_map>
#include <vector>

class FObjectPropertyBase;

/** What reading of one package's property values needs to know: the package, its document for positions, and where faults go. */
class FPropertyReader
{
public:
	/** Package may be null where nothing of a package is read; references without a leading slash are faults then. Diagnostics
	 * null: none listens. */
	FPropertyReader(UPackage* InPackage, const FJsonDocument& InDocument, FString InFileName, FDiagnosticSink* InDiagnostics);

	/**
	 * Reads the members of a JSON object into a container's properties; unknown members go to Object->ReadCustomProperty (when
	 * Object is set), then become warnings. A member that is repeated counts in its last place. Ends with
	 * Object->PostReadProperties.
	 */
	void ReadProperties(const UStruct& Struct, void* Container, const FJsonRef& Json, UObject* Object);
	/**
	 * Adds a list of declarations { "name", "type", "authored"?, "default"?, "deprecated"? } to the own properties of a class or
	 * structure. Faulty declarations are left out; a type that nothing declares makes a property that is not read. Super is what
	 * names the parent, for reports; it may be empty.
	 */
	void AddDeclarations(UStruct& Struct, const FJsonRef& Declarations, const FJsonRef& Super);
	/** The types that declarations were added to since the last call, in that order. */
	std::vector<UStruct*> TakeDeclaredTypes() { return std::exchange(DeclaredTypes, {}); }
	/** Once a type is linked: reports what could not be laid out, and reads the defaults of what was added. What these are made
	 * of has its own already. */
	void FinishDeclarations(UStruct& Struct);
	/**
	 * Entries { "name", "display"? } of an enumeration, stored as "Enumeration::name" with values from 0 on, and after them the
	 * maximum entry "Enumeration::Enumeration_MAX", displayed without the prefix, also where an entry has that name already.
	 * Faulty and repeated entries are left out.
	 */
	TArray<UEnum::FEntry> ReadEnumEntries(const FJsonRef& Entries, FStringView EnumName);
	/** A reference as written: a full path, or a path inside the package being read; null path for JSON null. False and a
	 * diagnostic otherwise. */
	bool ReadObjectPath(const FJsonRef& Json, FSoftObjectPath& Out);
	/**
	 * The reference to the object at such a path, unresolved where the object lies in another package. None and a diagnostic
	 * where it is not an object that the property may refer to. One of another package is kept all the same: it reads as null
	 * once it is resolved.
	 */
	TOptional<FObjectPtr> ReadReference(const FJsonRef& Json, const FObjectPropertyBase& Property);
	/** Reports references into the package being read that no object was made for. Called once all its objects are made. */
	void ReportMissingObjects();

	/** Reports are received, so checks that only find faults are worth their time. */
	bool HasListener() const { return Diagnostics != nullptr; }
	/** An empty At means the whole file. */
	void Report(const FJsonRef& At, EDiagnosticSeverity Severity, const char* Rule, FString Text);
	/** A value of a kind that the property does not take; Expected is a noun with its article. */
	void ReportType(const FJsonRef& At, const FProperty& Property, const char* Expected);
	void ReportRange(const FJsonRef& At, const FProperty& Property);
	/** Members that nothing reads. */
	void ReportUnknownMember(const FJsonRef& Member);
	/** From now on nothing is reported as worse than that. Gives what held before. */
	EDiagnosticSeverity SetWorstSeverity(EDiagnosticSeverity Severity) { return std::exchange(WorstSeverity, Severity); }
	/** Counts memory for values against what one document may ask for; false and a diagnostic when that is used up. */
	bool TakeBytes(const FJsonRef& At, int64 NumBytes);
	UPackage* GetPackage() const { return Package; }

private:
	/** What was added to a type. */
	struct FPendingType
	{
		FJsonRef Super;
		std::vector<FJsonRef> Properties; // declarations, one for each own property
	};
	/** A reference to an object of the package that was not made yet. */
	struct FPendingReference
	{
		FObjectPtr Reference;
		FJsonRef Json;
		const FObjectPropertyBase* Property;
	};
	bool CheckReference(const UObject* Object, const FJsonRef& Json, const FObjectPropertyBase& Property);
	void TellOfForeignReference(const FSoftObjectPath& Target, const FJsonRef& Json, const FObjectPropertyBase& Property) const;
	void ReportAt(uint32 Offset, EDiagnosticSeverity Severity, const char* Rule, FString Text);

	UPackage* Package;
	const FJsonDocument& Document;
	FString FileName;
	FDiagnosticSink* Diagnostics;
	EDiagnosticSeverity WorstSeverity = EDiagnosticSeverity::Error;
	int32 NumReported = 0;
	int64 BytesTaken = 0;
	std::vector<UStruct*> DeclaredTypes;
	std::unordered_map<const UStruct*, FPendingType> PendingTypes;
	std::vector<FPendingReference> PendingReferences;
};

/**
 * Makes a property from a type text such as "array<object</Script/Engine.BTNode>>", "byte</Script/Lantern.EMood>",
 * "map<name,int>", nested up to 16 levels. Null and an explanation where the text is none or names something unknown. Structures
 * and enumerations of other packages are loaded for it, structures as far as they are declared; classes outside /Script are taken
 * at their word until a value is resolved.
 */
TUniquePtr<FProperty> MakeProperty(FStringView TypeText, FName Name, FString& OutError);
