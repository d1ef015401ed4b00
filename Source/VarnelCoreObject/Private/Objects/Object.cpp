#include "CoreObject/Objects/Object.h"

#include "CoreObject/Reflection/Class.h"
#include "Objects/ObjectTable.h"
#include "Objects/PathText.h"

#include <algorithm>

namespace
{
/** Whether objects of the class start from a default object's values: those of C++ classes have theirs from the constructor. */
bool HasDynamicDefaults(const UClass& Class)
{
	return !Class.IsNativeStruct();
}

void CopyDefaults(UClass& Class, UObject& Object)
{
	const UObject* const Defaults = Class.GetDefaultObject();
	for (const FProperty* Property : PropertiesOf(Class))
		Property->CopyValue(Property->ContainerPtrToValuePtr<void>(&Object), Property->ContainerPtrToValuePtr<void>(Defaults));
}

/** The object at "Asset", "Asset:Sub" or "Asset:Sub.Deeper" below Root. */
UObject* FindBelow(UObject* Root, FStringView Path)
{
	while (Root && !Path.empty())
	{
		const std::size_t End = Path.find_first_of(".:");
		Root = StaticFindObjectFast(nullptr, Root, FName(Path.substr(0, End)));
		Path.remove_prefix(End == FStringView::npos ? Path.size() : End + 1);
	}
	return Root;
}

bool HasClass(const UObject* Object, const UClass* Class)
{
	return Object && (!Class || Object->IsA(Class));
}
}

UPackage* UObject::GetPackage() const
{
	const UObject* Root = this;
	while (Root->OuterPrivate)
		Root = Root->OuterPrivate;
	return const_cast<UPackage*>(::Cast<UPackage>(Root));
}

FString UObject::GetPathName() const
{
	std::vector<const UObject*> Line;
	for (const UObject* Object = this; Object; Object = Object->OuterPrivate)
		Line.push_back(Object);
	std::reverse(Line.begin(), Line.end());
	FString Path;
	for (std::size_t Index = 0; Index < Line.size(); ++Index)
	{
		if (Index > 0)
			Path += Index == 2 ? ':' : '.';
		Path += Line[Index]->NamePrivate.View();
	}
	return Path;
}

bool UObject::IsA(const UClass* InClass) const
{
	return ClassPrivate->IsChildOf(InClass);
}

bool UObject::ReadCustomProperty(FStringView, const FJsonRef&, FPropertyReader&)
{
	return false;
}

void UObject::PostReadProperties(const FJsonRef&, FPropertyReader&)
{
}

UObject* UPackage::FindInside(FStringView Path) const
{
	return Path.empty() ? nullptr : FindBelow(const_cast<UPackage*>(this), Path);
}

UObject* NewObject(UClass* Class, UObject* Outer, FName Name)
{
	FObjectTable& Table = FObjectTable::Get();
	const bool bOuterIsListed = Outer && FObjectTable::GetIndex(*Outer) != INDEX_NONE;
	if (!bOuterIsListed || Name.IsNone() || Class->IsAbstract() || !Class->IsLinked() || Table.Find(Outer, Name))
		return nullptr;
	UObject* const Object = FObjectTable::Construct(*Class);
	if (HasDynamicDefaults(*Class))
		CopyDefaults(*Class, *Object);
	Table.Add(*Object, *Class, Outer, Name);
	return Object;
}

UPackage* FindPackage(FName PackageName, bool bCreate)
{
	if (PackageName.IsNone())
		return nullptr;
	static uint64 NumUses = 0;
	static uint64 NumMade = 0;
	FObjectTable& Table = FObjectTable::Get();
	auto* Package = static_cast<UPackage*>(Table.Find(nullptr, PackageName));
	if (!Package && bCreate)
	{
		UClass& Class = *UPackage::StaticClass();
		Package = static_cast<UPackage*>(FObjectTable::Construct(Class));
		Table.Add(*Package, Class, nullptr, PackageName);
		Package->SerialNumber = ++NumMade;
	}
	if (Package)
		Package->LastUse = ++NumUses;
	return Package;
}

UObject* StaticFindObjectFast(UClass* Class, UObject* Outer, FName Name)
{
	UObject* const Found = FObjectTable::Get().Find(Outer, Name);
	return HasClass(Found, Class) ? Found : nullptr;
}

UObject* StaticFindObject(UClass* Class, FStringView ObjectPath)
{
	const FSoftObjectPath Path(ObjectPath);
	UObject* Found = FindPackage(Path.Asset.PackageName);
	if (Found && !Path.Asset.AssetName.IsNone())
		Found = StaticFindObjectFast(nullptr, Found, Path.Asset.AssetName);
	Found = FindBelow(Found, Path.SubPath);
	return HasClass(Found, Class) ? Found : nullptr;
}

void GetObjectsWithOuter(const UObject* Outer, TArray<UObject*>& Results, bool bIncludeNested)
{
	if (!Outer)
		return;
	if (bIncludeNested)
		return ForEachNested(*Outer, [&Results](UObject& Object) { Results.Add(&Object); });
	for (UObject* Child = FObjectTable::GetFirstChild(*Outer); Child; Child = FObjectTable::GetNextSibling(*Child))
		Results.Add(Child);
}

void UnloadPackage(UPackage* Package)
{
	DestroyObjects({Package});
}

void DestroyObjects(const TArray<UObject*>& Objects)
{
	FObjectTable::Get().Destroy(Objects);
}

uint64 GetNumDestructions()
{
	return FObjectTable::Get().GetNumDestructions();
}
