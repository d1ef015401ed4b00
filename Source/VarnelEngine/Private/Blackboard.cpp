#include "Engine/Blackboard.h"

#include "CoreObject/NativeClass.h"

namespace
{
constexpr int32 MaxParents = 64;
}

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

void UBlackboardData::CheckData(const FDataFaultReport& Report) const
{
	const UBlackboardData* Ancestor = Parent;
	for (int32 NumParents = 1; Ancestor && Ancestor != this && NumParents <= MaxParents; ++NumParents)
		Ancestor = Ancestor->Parent;
	if (Ancestor == this)
		Report(EDiagnosticSeverity::Error, "parent-cycle", "blackboard " + GetPathName() + " is among its own parents");
	else if (Ancestor)
		Report(EDiagnosticSeverity::Warning, "many-parents",
			"blackboard " + GetPathName() + " has more than " + FString::FromInt(MaxParents) +
				" parents, or some of them form a cycle");
}
