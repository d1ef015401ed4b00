#include "CoreObject/Reflection/Properties.h"
#include "Engine/DataAsset.h"
#include "Families/FamilyScan.h"

namespace
{
FString GetNumberText(const FNumericProperty& Property, const void* Value)
{
	if (Property.IsInteger())
		return FString::Printf("%lld", static_cast<long long>(Property.GetSignedIntPropertyValue(Value)));
	return FString::SanitizeFloat(Property.GetFloatingPointPropertyValue(Value), 1);
}

/** Empty for what has no short text: references, structures, containers, enumerations, delegates. */
FString GetValueText(const FProperty& Property, const UObject& Object)
{
	const void* Value = Property.ContainerPtrToValuePtr<void>(&Object);
	if (const auto* String = CastField<FStrProperty>(&Property))
		return String->GetPropertyValue(Value);
	if (const auto* Name = CastField<FNameProperty>(&Property))
		return Name->GetPropertyValue(Value).ToString();
	if (const auto* Text = CastField<FTextProperty>(&Property))
		return Text->GetPropertyValue(Value).ToString();
	if (const auto* Bool = CastField<FBoolProperty>(&Property))
		return Bool->GetPropertyValue(Value) ? "true" : "false";
	if (const auto* Number = CastField<FNumericProperty>(&Property))
		return GetNumberText(*Number, Value);
	return {};
}

/** What is searched are the defaults that the class declares, whatever the single asset sets. */
void ReadDefaults(UClass& Class, FHitSink& Hits)
{
	const UObject* Defaults = Class.GetDefaultObject();
	for (const FProperty* Property : PropertiesOf(Class))
	{
		Hits.Add("PropertyName", Property->GetName(), "Properties");
		const FString Value = Defaults ? GetValueText(*Property, *Defaults) : FString();
		if (!Value.IsEmpty())
			Hits.Add("PropertyValue", Value, "Properties");
		if (Hits.IsFull())
			return;
	}
}

void ReadDataAsset(const UDataAsset& Asset, FHitSink& Hits)
{
	if (Asset.IsA<UInputAction>())
		Hits.Add("InputAction", Asset.GetName(), "Action");
	else if (Asset.IsA<UInputMappingContext>())
		Hits.Add("InputMappingContext", Asset.GetName(), "MappingContext");
	Hits.Add("ClassName", Asset.GetClass()->GetName(), "Class");
	ReadDefaults(*Asset.GetClass(), Hits);
}
}

/** Input actions and mapping contexts, the class, and the defaults that it declares; values that the asset itself sets are not
 * seen. Loads data assets. */
void SearchDataAssets(const FAssetSearchParams& Params, FOnAssetSearchComplete OnDone)
{
	ScanFamily<UDataAsset>({.ClassText = "DataAsset", .NameContainer = "DataAsset"}, Params, OnDone, ReadDataAsset);
}
