#pragma once

#include "CoreObject/Objects/ObjectPtr.h"
#include "CoreObject/Reflection/Class.h"

/** Proposes places or objects; one subclass for each way to do so. */
class UEnvQueryGenerator : public UObject
{
public:
	static UClass* StaticClass();
};

/** Rates or refuses what was proposed. */
class UEnvQueryTest : public UObject
{
public:
	static UClass* StaticClass();

	uint8 TestPurpose = 0; // 0 filter, 1 score, 2 both
	FString TestComment;
};

/** One way to answer a query: what makes places, and what they are tested by. */
class UEnvQueryOption : public UObject
{
public:
	static UClass* StaticClass();

	TObjectPtr<UEnvQueryGenerator> Generator;
	TArray<TObjectPtr<UEnvQueryTest>> Tests; // with empty slots
};

/** Question to a level: which place or object fits best. Its options are tried in order. */
class UEnvQuery : public UObject
{
public:
	static UClass* StaticClass();

	TArray<TObjectPtr<UEnvQueryOption>> Options; // with empty slots
};
