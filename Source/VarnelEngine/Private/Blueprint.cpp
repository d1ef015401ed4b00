#include "Engine/Blueprint.h"

#include "CoreObject/Reflection/NativeClass.h"
#include "CoreObject/Reflection/PropertyReader.h"

namespace
{
constexpr FStringView ParentKey = "ParentClass";
constexpr FStringView VariablesKey = "NewVariables";
constexpr FStringView GeneratedSuffix = "_C";

/** What describes types, makes them or holds objects is what the program itself is made of. */
bool CanHaveBlueprints(const UClass& Class)
{
	return !Class.IsChildOf(UStruct::StaticClass()) && !Class.IsChildOf(UEnum::StaticClass()) &&
		!Class.IsChildOf(UBlueprint::StaticClass()) && !Class.IsChildOf(UPackage::StaticClass());
}
}

UClass* UBlueprint::StaticClass()
{
	static UClass* const Class = TClassBuilder<UBlueprint>("/Script/Engine.Blueprint", UObject::StaticClass())
									 .Member("ParentClass", &UBlueprint::ParentClass)
									 .Build();
	return Class;
}

UClass* UAnimBlueprint::StaticClass()
{
	static UClass* const Class = TClassBuilder<UAnimBlueprint>("/Script/Engine.AnimBlueprint", UBlueprint::StaticClass()).Build();
	return Class;
}

bool UBlueprint::ReadCustomProperty(FStringView Key, const FJsonRef&, FPropertyReader&)
{
	return Key == VariablesKey;
}

void UBlueprint::MakeTypes(const FJsonRef& Json, FPropertyReader& Reader)
{
	const FString ClassName = GetName() + GeneratedSuffix;
	const UObject* const Class = NewObject(UClass::StaticClass(), GetOuter(), FName(ClassName));
	GeneratedClass = TObjectPtr<UClass>(Class);
	if (!Class)
		Reader.Report(Json, EDiagnosticSeverity::Error, "generated-class",
			"no class is made: there is an object " + ClassName + " already");
}

void UBlueprint::PostReadProperties(const FJsonRef& Json, FPropertyReader& Reader)
{
	UClass* const Class = GeneratedClass;
	if (!Class)
		return;
	const FJsonRef ParentJson = Json.Find(ParentKey);
	UClass* const Parent = ParentClass.GetPath().SubPath.IsEmpty() ? ParentClass.Get() : nullptr;
	const bool bHasParent = Parent && CanHaveBlueprints(*Parent);
	if (bHasParent)
		Class->SetSuperStruct(Parent);
	else if (!ParentClass.IsNull())
		Reader.Report(ParentJson, EDiagnosticSeverity::Error, "bad-reference",
			"the parent class " + ParentClass.GetPath().ToString() +
				" cannot be had, so the Blueprint's class derives from Object");
	Reader.AddDeclarations(*Class, Json.Find(VariablesKey), ParentJson);
}
