#include "Show/FamilySections.h"

#include "CoreObject/Reflection/Properties.h"
#include "CoreObject/Reflection/StructValue.h"
#include "Engine/Blackboard.h"
#include "Engine/Blueprint.h"
#include "Engine/Material.h"
#include "Engine/UserDefinedStruct.h"
#include "Project/ProjectRegistry.h"
#include "Quellar/Assets/AssetPathUtils.h"
#include "Quellar/Families/AssetFamily.h"

namespace
{
constexpr int32 MaxNeighbours = 10;	 // listed of each direction
constexpr int32 MaxBlackboards = 64; // above one another

// Kinds of material parameters.
constexpr FStringView ScalarKind = "scalar";
constexpr FStringView VectorKind = "vector";
constexpr FStringView TextureKind = "texture";

void SetIfThere(FJsonObject& Object, const char* Key, FJsonValue Value)
{
	FString Text;
	if (!Value.IsNull() && !(Value.TryGetString(Text) && Text.IsEmpty()))
		Object.SetField(Key, std::move(Value));
}

/** The generated last entry is not the author's. */
int32 CountAuthored(const UEnum& Enum)
{
	const int32 Num = Enum.NumEnums();
	const FString Maximum = Enum.GetName() + "::" + Enum.GetName() + "_MAX";
	return Num > 0 && Enum.GetNameByIndex(Num - 1).ToString() == Maximum ? Num - 1 : Num;
}

TArray<const FProperty*> ListProperties(const UStruct& Struct, bool bIncludeSuper = true)
{
	TArray<const FProperty*> Listed;
	for (const FProperty* Property : PropertiesOf(Struct, {.bIncludeSuper = bIncludeSuper}))
		Listed.Add(Property);
	return Listed;
}

TSharedPtr<FJsonObject> MakeDeclared(
	const FProperty& Property, const UStruct& Of, const char* ValueKey, const void* Container, FShowPage& Page)
{
	auto Field = MakeShared<FJsonObject>();
	Field->SetStringField("name", Property.GetAuthoredName());
	Field->SetField("type", Page.Values.WriteText(Property.GetTypeText()));
	if (Container)
		Field->SetField(ValueKey, Page.Values.Write(Property, Property.ContainerPtrToValuePtr<void>(Container)));
	SetIfThere(*Field, "tooltip", Page.Values.WriteText(Property.GetMetaData("ToolTip")));
	if (Property.GetOwnerStruct() && Property.GetOwnerStruct() != &Of)
		Field->SetStringField("from", Property.GetOwnerStruct()->GetName());
	return Field;
}

FString GetKeyType(const UBlackboardKeyType* Type)
{
	constexpr FStringView Prefix = "BlackboardKeyType_";
	const FString Class = Type ? Type->GetClass()->GetName() : FString("none");
	return Class.StartsWith(Prefix) ? FString(Class.View().substr(Prefix.size())) : Class;
}

struct FKeyOf
{
	const FBlackboardEntry* Key;
	const UBlackboardData* Blackboard;
};

struct FParameterOf
{
	FMaterialParameterInfo Parameter;
	FStringView Kind;
};

/** Null where the parameter has no value. */
FJsonValue ReadParameter(const UMaterialInterface& Material, const FParameterOf& Of, FValueWriter& Values)
{
	static const FFloatProperty ScalarProperty{FName("Value")};
	static const FStructProperty VectorProperty{FName("Value"), *FLinearColor::StaticStruct()};
	static const FObjectPropertyBase TextureProperty{EObjectReference::Object, FName("Value"), &UObject::StaticClass};
	float Scalar = 0;
	FLinearColor Vector;
	FObjectPtr Texture;
	if (Of.Kind == ScalarKind && Material.GetScalarParameterValue(Of.Parameter, Scalar))
		return Values.Write(ScalarProperty, &Scalar);
	if (Of.Kind == VectorKind && Material.GetVectorParameterValue(Of.Parameter, Vector))
		return Values.Write(VectorProperty, &Vector);
	if (Of.Kind == TextureKind && Material.GetTextureParameterValue(Of.Parameter, Texture))
		return Values.Write(TextureProperty, &Texture);
	return {};
}

TArray<FParameterOf> ListParameters(const UMaterialInterface& Material)
{
	TArray<FParameterOf> Listed;
	const auto List = [&](FStringView Kind, auto GetAll)
	{
		TArray<FMaterialParameterInfo> Parameters;
		(Material.*GetAll)(Parameters);
		for (const FMaterialParameterInfo& Parameter : Parameters)
			Listed.Add({Parameter, Kind});
	};
	List(ScalarKind, &UMaterialInterface::GetAllScalarParameterInfo);
	List(VectorKind, &UMaterialInterface::GetAllVectorParameterInfo);
	List(TextureKind, &UMaterialInterface::GetAllTextureParameterInfo);
	return Listed;
}

int32 FindBlueprintInIndex(const FBlueprintIndexView& Index, const FAssetData& Asset)
{
	for (int32 Blueprint = 0; Blueprint < Index.NumBlueprints() && !IsStopRequested(); ++Blueprint)
	{
		const FAssetData Data = Index.GetBlueprint(Blueprint);
		if (Data.PackageName == Asset.PackageName && Data.AssetName == Asset.AssetName && !Index.IsHidden(Blueprint))
			return Blueprint;
	}
	return INDEX_NONE;
}

FJsonValue MakeNeighbour(const FPackageDependency& Neighbour)
{
	FAssetData Asset;
	const bool bHasAsset = AssetPathUtils::GetRepresentativeAsset(Neighbour.PackageName, Asset);
	const bool bHasFile = bHasAsset || !GetProjectRegistry().FindPackage(Neighbour.PackageName.View()).IsNone();
	auto Object = MakeShared<FJsonObject>();
	Object->SetStringField("path", Neighbour.PackageName.ToString());
	Object->SetStringField("kind",
		bHasAsset	   ? AssetTypeFromClassName(Asset.AssetClassPath.AssetName)
			: bHasFile ? FString("hidden")
					   : FString("missing"));
	Object->SetStringField("type", (Neighbour.Flags & EDependencyFlags::Game) != 0 ? "Runtime" : "Editor");
	return Object;
}

/** Native code has no packages. */
FJsonValue MakeNeighbours(TArray<FPackageDependency> Neighbours)
{
	Neighbours.RemoveAll([](const FPackageDependency& Each) { return Each.PackageName.ToString().StartsWith("/Script/"); });
	FJsonArray First;
	for (int32 Index = 0; Index < std::min(Neighbours.Num(), MaxNeighbours); ++Index)
		First.Add(MakeNeighbour(Neighbours[Index]));
	auto Object = MakeShared<FJsonObject>();
	Object->SetNumberField("count", Neighbours.Num());
	Object->SetArrayField("first", std::move(First));
	return Object;
}
}

void FamilySections::SetEntries(const UObject& Object, FShowPage& Page)
{
	const UEnum* const Enum = Cast<UEnum>(&Object);
	if (!Enum)
		return;
	Page.SetList("entries", "entry", CountAuthored(*Enum),
		[&](int32 Index) -> FJsonValue
		{
			const UEnum::FEntry& Entry = Enum->GetEntries()[Index];
			const FStringView Name = Entry.Name.View();
			auto Json = MakeShared<FJsonObject>();
			Json->SetField("name", Page.Values.WriteText(Name.substr(Name.rfind(':') + 1)));
			SetIfThere(*Json, "display", Page.Values.WriteText(Entry.DisplayName.ToString()));
			Json->SetNumberField("value", Entry.Value);
			return Json;
		});
}

void FamilySections::SetFields(const UObject& Object, FShowPage& Page)
{
	const UScriptStruct* const Struct = Cast<UScriptStruct>(&Object);
	if (!Struct)
		return;
	TOptional<FStructValue> Defaults;
	if (Struct->IsLinked())
		Defaults.emplace(*Struct);
	const TArray<const FProperty*> Fields = ListProperties(*Struct);
	Page.SetList("fields", "field", Fields.Num(),
		[&](int32 Index) -> FJsonValue
		{ return MakeDeclared(*Fields[Index], *Struct, "default", Defaults ? Defaults->Get() : nullptr, Page); });
}

void FamilySections::SetKeys(const UObject& Object, FShowPage& Page)
{
	const UBlackboardData* const Blackboard = Cast<UBlackboardData>(&Object);
	if (!Blackboard)
		return;
	TArray<FKeyOf> Keys;
	TArray<const UBlackboardData*> Seen; // parents may form a ring
	for (const UBlackboardData* Each = Blackboard; Each && !Seen.Contains(Each) && Seen.Num() < MaxBlackboards;
		 Each = Each->Parent.Get())
	{
		Seen.Add(Each);
		for (const FBlackboardEntry& Key : Each->Keys)
			Keys.Add({&Key, Each});
	}
	Page.SetList("keys", "key", Keys.Num(),
		[&](int32 Index) -> FJsonValue
		{
			const FBlackboardEntry& Key = *Keys[Index].Key;
			auto Json = MakeShared<FJsonObject>();
			Json->SetStringField("name", Key.EntryName.ToString());
			Json->SetStringField("type", GetKeyType(Key.KeyType.GetIfLoaded()));
			SetIfThere(*Json, "description", Page.Values.WriteText(Key.EntryDescription));
			if (Keys[Index].Blackboard != Blackboard)
				Json->SetStringField("from", Keys[Index].Blackboard->GetPathName());
			return Json;
		});
}

void FamilySections::SetParameters(const UObject& Object, FShowPage& Page)
{
	const UMaterialInterface* const Material = Cast<UMaterialInterface>(&Object);
	if (!Material)
		return;
	const TArray<FParameterOf> Parameters = ListParameters(*Material);
	Page.SetList("parameters", "parameter", Parameters.Num(),
		[&](int32 Index) -> FJsonValue
		{
			const FParameterOf& Of = Parameters[Index];
			auto Json = MakeShared<FJsonObject>();
			Json->SetStringField("name", Of.Parameter.Name.ToString());
			Json->SetStringField("kind", FString(Of.Kind));
			Json->SetField("value", ReadParameter(*Material, Of, Page.Values));
			const bool bOwn = !Of.Parameter.Stating || Of.Parameter.Stating == Material;
			Json->SetStringField("from", bOwn ? FString("own") : Of.Parameter.Stating->GetPathName());
			return Json;
		});
}

void FamilySections::SetVariables(const UObject& Object, FShowPage& Page)
{
	const UBlueprint* const Blueprint = Cast<UBlueprint>(&Object);
	UClass* const Class = Blueprint ? Blueprint->GeneratedClass.GetIfLoaded() : nullptr;
	if (!Class || !Class->IsLinked())
		return;
	const TArray<const FProperty*> Variables = ListProperties(*Class, Page.Params.bIncludeDefaults);
	const int32 NumInherited = ListProperties(*Class).Num() - Variables.Num();
	Page.SetList("variables", "variable", Variables.Num(),
		[&](int32 Index) -> FJsonValue
		{ return MakeDeclared(*Variables[Index], *Class, "value", Class->GetDefaultObject(), Page); });
	if (NumInherited > 0)
		Page.Remark(FShowPage::Count(NumInherited, "inherited variable"), "include_defaults", "true");
}

void FamilySections::SetIndex(const FAssetData& Asset, FShowPage& Page)
{
	const FBlueprintIndexView Index = GetProjectRegistry().GetBlueprintIndex();
	const int32 Blueprint = FindBlueprintInIndex(Index, Asset);
	if (Blueprint == INDEX_NONE)
		return;
	const FBlueprintIndexView::FEntryRange Range = Index.GetEntries(Blueprint);
	std::vector<int32> Tops;
	for (int32 Entry = Range.Begin; Entry < Range.End; ++Entry)
		if (Index.GetEntry(Entry).Depth == 0)
			Tops.push_back(Entry);
	Tops.push_back(Range.End);
	Page.SetList("index", "index entry", static_cast<int32>(Tops.size()) - 1,
		[&](int32 Place) -> FJsonValue
		{
			const auto At = static_cast<std::size_t>(Place);
			const FBlueprintIndexView::FEntry Entry = Index.GetEntry(Tops[At]);
			auto Json = MakeShared<FJsonObject>();
			Json->SetField("category", Page.Values.WriteText(Index.GetText(Entry.Category)));
			Json->SetField("text", Page.Values.WriteText(Index.GetText(Entry.Text)));
			if (Entry.Comment != INDEX_NONE)
				Json->SetField("comment", Page.Values.WriteText(Index.GetText(Entry.Comment)));
			if (const int32 NumBelow = Tops[At + 1] - Tops[At] - 1; NumBelow > 0)
				Json->SetNumberField("below", NumBelow);
			return Json;
		});
}

FJsonValue FamilySections::MakeReferences(FName Package)
{
	TArray<FPackageDependency> Dependencies;
	TArray<FPackageDependency> Referencers;
	GetProjectRegistry().GetDependencies(Package, Dependencies);
	GetProjectRegistry().GetReferencers(Package, Referencers);
	auto Object = MakeShared<FJsonObject>();
	Object->SetField("dependencies", MakeNeighbours(std::move(Dependencies)));
	Object->SetField("referencers", MakeNeighbours(std::move(Referencers)));
	return Object;
}
