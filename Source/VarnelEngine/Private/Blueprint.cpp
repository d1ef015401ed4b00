#include "Engine/Blueprint.h"

#include "CoreObject/NativeClass.h"
#include "CoreObject/PropertyReader.h"

namespace
{
constexpr FStringView ParentKey = "ParentClass";
constexpr FStringView VariablesKey = "NewVariables";
constexpr FStringView GeneratedSuffix = "_C";

/** Classes that describe classes and packages have no Blueprints. */
bool CanHaveBlueprints(const UClass& Class)
{
	return !Class.IsChildOf(UStruct::StaticClass()) && !Class.IsChildOf(UPackage::StaticClass());
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

void UBlueprint::PostReadProperties(const FJsonRef& Json, FPropertyReader& Reader)
{
	// The parent may be another Blueprint's class, and its package one that asks for this class: it must not find it before its
	// parent is known.
	UClass* const Parent = ParentClass;
	const FString ClassName = GetName() + GeneratedSuffix;
	auto* const Class = static_cast<UClass*>(NewObject(UClass::StaticClass(), GetOuter(), FName(ClassName)));
	if (!Class)
		return Reader.Report(Json, EDiagnosticSeverity::Error, "generated-class",
			"no class is made: there is an object " + ClassName + " already");
	GeneratedClass = TObjectPtr<UClass>(Class);

	const bool bHasParent = Parent && CanHaveBlueprints(*Parent) && Class->SetSuperStruct(Parent);
	if (!bHasParent && !ParentClass.IsNull())
		Reader.Report(Json.Find(ParentKey), EDiagnosticSeverity::Error, "bad-reference",
			"the parent class " + ParentClass.GetPath().ToString() +
				" cannot be had, so the Blueprint's class derives from Object");
	Reader.ReadDeclarations(*Class, Json.Find(VariablesKey));
}
