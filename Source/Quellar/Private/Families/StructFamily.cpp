#include "Engine/UserDefinedStruct.h"
#include "Families/FamilyScan.h"
#include "Families/PropertyTypeName.h"

namespace
{
constexpr FPropertyWalk LiveFields = {.bIncludeSuper = true, .bIncludeDeprecated = false};

void AddIfSet(FHitSink& Hits, const char* Kind, const FString& Text)
{
	if (!Text.IsEmpty())
		Hits.Add(Kind, Text, "Struct");
}

void ReadStruct(const UUserDefinedStruct& Struct, FHitSink& Hits)
{
	if (const UStruct* Parent = Struct.GetSuperStruct())
		Hits.Add("SuperStruct", Parent->GetName(), "Struct");
	AddIfSet(Hits, "Category", FObjectEditorUtils::GetCategoryText(&Struct).ToString());
	if (const FString* Tooltip = Struct.FindMetaData("Tooltip"))
		AddIfSet(Hits, "Tooltip", *Tooltip);
	for (const FProperty* Field : PropertiesOf(Struct, LiveFields))
	{
		Hits.Add("PropertyName", Field->GetName(), "Properties");
		Hits.Add("PropertyType", GetFieldClassName(*Field), "Properties");
		if (Hits.IsFull())
			return;
	}
}
}

/** Parent, category, tooltip, and the fields by internal name and property class. Loads structures. */
void SearchStructs(const FAssetSearchParams& Params, FOnAssetSearchComplete OnDone)
{
	ScanFamily<UUserDefinedStruct>({.ClassText = "UserDefinedStruct", .NameContainer = "Struct"}, Params, OnDone, ReadStruct);
}
