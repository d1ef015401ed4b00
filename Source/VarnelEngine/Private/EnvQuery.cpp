#include "Engine/EnvQuery.h"

#include "CoreObject/Reflection/NativeClass.h"

UClass* UEnvQueryGenerator::StaticClass()
{
	static UClass* const Class =
		TClassBuilder<UEnvQueryGenerator>("/Script/Engine.EnvQueryGenerator", UObject::StaticClass()).Build();
	return Class;
}

UClass* UEnvQueryTest::StaticClass()
{
	static UClass* const Class = TClassBuilder<UEnvQueryTest>("/Script/Engine.EnvQueryTest", UObject::StaticClass())
									 .Member("TestPurpose", &UEnvQueryTest::TestPurpose)
									 .Member("TestComment", &UEnvQueryTest::TestComment)
									 .Build();
	return Class;
}

UClass* UEnvQueryOption::StaticClass()
{
	static UClass* const Class = TClassBuilder<UEnvQueryOption>("/Script/Engine.EnvQueryOption", UObject::StaticClass())
									 .Member("Generator", &UEnvQueryOption::Generator)
									 .Member("Tests", &UEnvQueryOption::Tests)
									 .Build();
	return Class;
}

UClass* UEnvQuery::StaticClass()
{
	static UClass* const Class = TClassBuilder<UEnvQuery>("/Script/Engine.EnvQuery", UObject::StaticClass())
									 .Member("Options", &UEnvQuery::Options)
									 .Build();
	return Class;
}
