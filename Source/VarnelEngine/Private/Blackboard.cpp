#include "Engine/Blackboard.h"

#include "CoreObject/Reflection/NativeClass.h"

UClass* UBlackboardKeyType::StaticClass()
{
	static UClass* const Class =
		TClassBuilder<UBlackboardKeyType>("/Script/Engine.BlackboardKeyType", UObject::StaticClass()).Build();
	return Class;
}

UScriptStruct* FBlackboardEntry::StaticStruct()
{
	static UScriptStruct* const Struct = TStructBuilder<FBlackboardEntry>("/Script/Engine.BlackboardEntry")
											 .Member("EntryName", &FBlackboardEntry::EntryName)
											 .Member("EntryDescription", &FBlackboardEntry::EntryDescription)
											 .Member("KeyType", &FBlackboardEntry::KeyType)
											 .Build();
	return Struct;
}

UClass* UBlackboardData::StaticClass()
{
	static UClass* const Class = TClassBuilder<UBlackboardData>("/Script/Engine.BlackboardData", UObject::StaticClass())
									 .Member("Parent", &UBlackboardData::Parent)
									 .Member("Keys", &UBlackboardData::Keys)
									 .Build();
	return Class;
}
