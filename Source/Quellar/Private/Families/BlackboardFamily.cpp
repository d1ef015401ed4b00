#include "Engine/Blackboard.h"
#include "Families/FamilyScan.h"

namespace
{
void ReadKey(const FBlackboardEntry& Key, FHitSink& Hits)
{
	Hits.Add("KeyName", Key.EntryName.ToString(), "Keys");
	if (!Key.EntryDescription.IsEmpty())
		Hits.Add("KeyDescription", Key.EntryDescription, "Keys");
	if (const UBlackboardKeyType* Type = Key.KeyType)
		Hits.Add("KeyType", Type->GetClass()->GetName(), "Keys");
}

void ReadBlackboard(const UBlackboardData& Blackboard, FHitSink& Hits)
{
	if (const UBlackboardData* Parent = Blackboard.Parent)
		Hits.Add("Parent", Parent->GetName(), "Blackboard");
	for (const FBlackboardEntry& Key : Blackboard.Keys)
	{
		ReadKey(Key, Hits);
		if (Hits.IsFull())
			return;
	}
}
}

/** The parent, and the keys by name, description and type. Loads blackboards and their parents. */
void SearchBlackboards(const FAssetSearchParams& Params, FOnAssetSearchComplete OnDone)
{
	ScanFamily<UBlackboardData>({.ClassText = "Blackboard", .NameContainer = "Blackboard"}, Params, OnDone, ReadBlackboard);
}
