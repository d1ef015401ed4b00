#pragma once

#include "Core/Base/Map.h"
#include "CoreObject/Declarations/ScriptModule.h"
#include "CoreObject/Reflection/PropertyReader.h"
#include "Reflection/JsonFaults.h"

#include <vector>

/** The text of one script module, parsed, and what reports its faults. */
struct FScriptFile
{
	FScriptFile(const FScriptModuleFile& InModule, UPackage& InPackage, FDiagnosticSink* Diagnostics)
		: Package(InPackage)
		, Faults(Document, InModule.FileName, Diagnostics)
		, Reader(&InPackage, Document, InModule.FileName, Diagnostics)
	{
	}

	UPackage& Package; // "/Script/<Module>"
	FJsonDocument Document;
	FJsonFaults Faults;
	FPropertyReader Reader;
};

/**
 * Turns the declarations of script modules into classes, structures and enumerations. Names are collected from all modules first,
 * then parents are settled, then properties are added, then everything is laid out and gets its defaults: so declarations may
 * stand in any order. Game thread.
 */
class FScriptDeclarations
{
public:
	/** Collects the names of a module that was not read before; makes its enumerations. The file must outlive this. */
	void Collect(FScriptFile& File);
	/** Makes the classes and structures. Called once, when all modules are collected. */
	void Make();
	/** Everything that was made. */
	const TArray<UObject*>& GetMade() const { return Made; }

private:
	/** A class or structure to be made. */
	struct FDeclaration
	{
		enum class EState : uint8
		{
			Open,
			Waiting, // for its parent
			Settled, // made, or left out
		};
		FScriptFile* File = nullptr;
		std::string_view Name;
		uint32 NameOffset = 0;
		bool bIsClass = false;
		FJsonRef Super;
		FJsonRef Properties; // may be empty
		EState State = EState::Open;
		int32 NumParents = 0;
		UStruct* Struct = nullptr; // null where it is left out
	};

	void CollectStructs(FScriptFile& File, const FJsonRef& Json, bool bAreClasses);
	void CollectEnums(FScriptFile& File, const FJsonRef& Json);
	bool TakeName(FScriptFile& File, const FJsonRef& Owner, const FJsonRef& Json, std::string_view& Out);
	void Settle(FDeclaration& First);
	void CutRing(const std::vector<FDeclaration*>& Members);
	void MakeStruct(FDeclaration& Declaration);
	bool FindParent(const FDeclaration& Declaration, UStruct*& Out);
	FDeclaration* FindDeclaredParent(const FDeclaration& Declaration);
	void Finish();

	std::vector<FDeclaration> Declarations;
	TMap<FString, int32> Places;		// of declarations by object path; INDEX_NONE for enumerations
	std::vector<FDeclaration*> Settled; // those that were made, parents first
	TArray<UObject*> Made;
};
