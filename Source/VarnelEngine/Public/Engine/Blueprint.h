#pragma once

#include "CoreObject/Objects/ObjectPtr.h"
#include "CoreObject/Reflection/Class.h"

/** Asset that makes a class: "BP_Door" makes "BP_Door_C" beside itself, with the Blueprint's variables as properties. */
class UBlueprint : public UObject
{
public:
	static UClass* StaticClass();

	/** What the class is made from. Null where the Blueprint names none, or one that cannot be had; the class then derives from
	 * UObject. */
	TObjectPtr<UClass> ParentClass;
	/** Null where something else has the class's name. */
	TObjectPtr<UClass> GeneratedClass;

	/** Makes the class, without parent or properties. */
	void MakeTypes(const FJsonRef& Json, FPropertyReader& Reader) override;
	bool ReadCustomProperty(FStringView Key, const FJsonRef& Value, FPropertyReader& Reader) override;
	void PostReadProperties(const FJsonRef& Json, FPropertyReader& Reader) override;
};

/** Blueprint of an animation instance. */
class UAnimBlueprint : public UBlueprint
{
public:
	static UClass* StaticClass();
};
