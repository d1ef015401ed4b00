#include "Engine/UserDefinedEnum.h"
#include "Families/FamilyScan.h"

namespace
{
/** The generated maximum entry is searched like the others. */
void ReadEnum(const UUserDefinedEnum& Enum, FHitSink& Hits)
{
	for (int32 Index = 0; Index < Enum.NumEnums(); ++Index)
	{
		Hits.Add("ValueDisplayName", Enum.GetDisplayNameTextByIndex(Index).ToString(), "Values");
		Hits.Add("ValueInternalName", Enum.GetNameByIndex(Index).ToString(), "Values");
		if (Hits.IsFull())
			return;
	}
}
}

/** Entries of user-defined enumerations by display name and internal name. Loads enumerations. */
void SearchEnums(const FAssetSearchParams& Params, FOnAssetSearchComplete OnDone)
{
	ScanFamily<UUserDefinedEnum>({.ClassText = "UserDefinedEnum", .NameContainer = "Enum"}, Params, OnDone, ReadEnum);
}
