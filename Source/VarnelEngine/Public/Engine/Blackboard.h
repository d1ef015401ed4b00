#pragma once

#include "CoreObject/Objects/ObjectPtr.h"
#include "CoreObject/Reflection/Class.h"

/** What a blackboard key holds; one subclass for each kind of value. */
class UBlackboardKeyType : public UObject
{
public:
	static UClass* StaticClass();
};

/** One key of a blackboard: a named value of a type. The type may be null. */
struct FBlackboardEntry
{
	static UScriptStruct* StaticStruct();

	FName EntryName;
	FString EntryDescription;
	TObjectPtr<UBlackboardKeyType> KeyType;
};

/** The memory of a behaviour tree: named values. */
class UBlackboardData : public UObject
{
public:
	static UClass* StaticClass();

	TObjectPtr<UBlackboardData> Parent; // its keys come on top of these; parents may form a cycle
	TArray<FBlackboardEntry> Keys;
};
