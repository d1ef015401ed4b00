#pragma once

#include "CoreObject/Objects/ObjectPtr.h"
#include "CoreObject/Reflection/NativeClass.h"
#include "CoreObject/Reflection/PropertyReader.h"
#include "DiagnosticText.h"
#include "Support/PackageFiles.h"

/** A native class with a member of each sort that packages fill: a value, a reference, and a record of when PostLoad came. */
class UTestNode : public UObject
{
public:
	static UClass* StaticClass();
	void PostLoad() override;

	int32 Number = 7;
	TObjectPtr<UObject> Link;
	TArray<TObjectPtr<UTestNode>> Children;
	int32 PostLoadPlace = 0; // from 1, over all nodes of the program
};

/** Stands for the engine's Blueprints: makes the class NAME_C beside itself from "ParentClass" and "NewVariables". */
class UTestBlueprint : public UObject
{
public:
	static UClass* StaticClass();
	void MakeTypes(const FJsonRef& Properties, FPropertyReader& Reader) override;
	bool ReadCustomProperty(FStringView Key, const FJsonRef& Value, FPropertyReader& Reader) override;
	void PostReadProperties(const FJsonRef& Properties, FPropertyReader& Reader) override;
};

/** Goes through the steps of reading a package's body one after another; false where it is malformed. */
bool ReadBody(IPackageReader& Reader, const FString& FileName, UPackage& Package, FDiagnosticSink* Diagnostics);
/** Declares a type, links it and completes it. */
void DeclareAlone(FPropertyReader& Reader, UStruct& Type, const FJsonRef& Declarations);

class FPackageFixture : public FPackageFiles
{
protected:
	FPackageFixture();

	/** Adds a package with a Blueprint of the package's short name. */
	FFile& AddBlueprint(const std::string& PackageName, const std::string& Parent, const std::string& Variables = "",
		const std::string& Others = "");

	/** Objects of a package as "Path Class", one a line, in the order in which they are listed. */
	static std::string List(const UPackage* Package);
	/** The value of an int property wherever it is declared; -1 when the object has none. */
	static int32 GetInt(const UObject* Object, const char* Property);
};
