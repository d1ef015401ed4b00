#include "Show/ObjectTree.h"

#include "CoreObject/Reflection/Properties.h"

#include <functional>

namespace
{
constexpr int32 MaxTreeDepth = 48; // levels shown; payloads nest no deeper than messages may

using FVisitObject = std::function<void(const UObject&)>;

bool MayRefer(const FProperty& Property)
{
	if (Property.HasAnyCastFlags(EFieldCast::Map | EFieldCast::Struct) || IsReference(Property))
		return true;
	return Property.HasAnyCastFlags(EFieldCast::Array | EFieldCast::Set) &&
		MayRefer(static_cast<const FContainerProperty&>(Property).GetInner());
}

/** The objects of Package that a value leads to. Structures nest no deeper than they can be declared. */
void VisitObjects(const FProperty& Property, const void* Value, const UPackage& Package, const FVisitObject& Visit)
{
	if (IsStopRequested() || !MayRefer(Property))
		return;
	if (IsReference(Property))
	{
		const UObject* const Object = static_cast<const FObjectPtr*>(Value)->GetIfLoaded();
		if (Object && Object->GetPackage() == &Package && !Object->IsA<UStruct>())
			Visit(*Object);
	}
	else if (const auto* Struct = CastField<FStructProperty>(&Property))
	{
		for (const FProperty* Member : PropertiesOf(Struct->GetStruct()))
			VisitObjects(*Member, Member->ContainerPtrToValuePtr<void>(Value), Package, Visit);
	}
	else
	{
		const auto& Container = static_cast<const FContainerProperty&>(Property);
		const auto* const Map = CastField<FMapProperty>(&Property);
		for (int32 Index = 0; Index < Container.Num(Value) && !IsStopRequested(); ++Index)
		{
			const void* const Element = Container.GetElement(Value, Index);
			if (!Map)
			{
				VisitObjects(Container.GetInner(), Element, Package, Visit);
				continue;
			}
			const auto& Pair = static_cast<const FPairProperty&>(Container.GetInner());
			VisitObjects(Pair.GetKey(), Element, Package, Visit);
			VisitObjects(Pair.GetValue(), Pair.ValueOf(Element), Package, Visit);
		}
	}
}

bool LeadsInside(const FProperty& Property, const UObject& Object)
{
	bool bFound = false;
	VisitObjects(Property, Property.ContainerPtrToValuePtr<void>(&Object), *Object.GetPackage(),
		[&bFound](const UObject&) { bFound = true; });
	return bFound;
}
}

FString GetShownPath(const UObject& Object, const UObject& Asset)
{
	const FString Path = Object.GetPathName();
	const FString Base = Asset.GetPathName();
	if (Path.StartsWith(Base + ":") || Path.StartsWith(Base + "."))
		return Path.View().substr(Base.View().size() + 1);
	return Path.View().substr(Object.GetPackage()->GetName().View().size() + 1);
}

FJsonArray FObjectTree::Write(const UObject& Root)
{
	Met = {&Asset, &Root};
	return WriteBelow(Root, 0);
}

std::vector<FObjectTree::FBranch> FObjectTree::CollectReferred(const UObject& Parent)
{
	std::vector<FBranch> Branches;
	for (const FProperty* Property : PropertiesOf(*Parent.GetClass()))
		VisitObjects(*Property, Property->ContainerPtrToValuePtr<void>(&Parent), *Parent.GetPackage(),
			[&](const UObject& Object)
			{
				if (Met.insert(&Object).second)
					Branches.push_back({&Object, Property->GetAuthoredName()});
			});
	return Branches;
}

std::vector<FObjectTree::FBranch> FObjectTree::CollectInside(const UObject& Parent)
{
	std::vector<FBranch> Branches;
	TArray<UObject*> Inside;
	GetObjectsWithOuter(&Parent, Inside, false);
	for (const UObject* Object : Inside)
		if (!Object->IsA<UStruct>() && Met.insert(Object).second)
			Branches.push_back({Object, {}});
	return Branches;
}

FJsonArray FObjectTree::WriteBelow(const UObject& Parent, int32 Depth)
{
	FJsonArray Nodes;
	if (Depth == MaxTreeDepth)
		return Nodes;
	WriteBranches(CollectReferred(Parent), Depth, Nodes);
	WriteBranches(CollectInside(Parent), Depth, Nodes); // afterwards: most of it belongs further down among what is referred to
	return Nodes;
}

void FObjectTree::WriteBranches(const std::vector<FBranch>& Branches, int32 Depth, FJsonArray& Out)
{
	for (const FBranch& Branch : Branches)
	{
		auto Node = MakeShared<FJsonObject>();
		Node->SetStringField("object", GetShownPath(*Branch.Object, Asset));
		Node->SetStringField("class", Branch.Object->GetClass()->GetName());
		if (!Branch.Property.IsEmpty())
			Node->SetStringField("as", Branch.Property);
		if (FJsonValue Values = WriteValues(*Branch.Object); Values.AsObject()->Num() > 0)
			Node->SetField("values", std::move(Values));
		if (IsStopRequested() || !Page.Take(Node, R"("children":[])"))
			return;
		Shown.insert(Branch.Object);
		if (FJsonArray Children = WriteBelow(*Branch.Object, Depth + 1); !Children.IsEmpty())
			Node->SetArrayField("children", std::move(Children));
		Out.Add(Node);
	}
}

/** What differs from the class's defaults, but for what the tree itself shows. */
FJsonValue FObjectTree::WriteValues(const UObject& Object)
{
	auto Values = MakeShared<FJsonObject>();
	const UObject* const Defaults = Object.GetClass()->GetDefaultObject();
	for (const FProperty* Property : PropertiesOf(*Object.GetClass()))
	{
		if (!IsDefaultValue(*Property, &Object, Defaults) && !LeadsInside(*Property, Object))
			Values->SetField(
				Property->GetAuthoredName(), Page.Values.Write(*Property, Property->ContainerPtrToValuePtr<void>(&Object)));
	}
	return Values;
}
