#include "CoreObject/Reflection/Class.h"

#include "CoreObject/Reflection/NativeClass.h"
#include "CoreObject/Reflection/Properties.h"
#include "Objects/ObjectTable.h"

#include <algorithm>

namespace
{
int32 AlignUp(int32 Offset, int32 Alignment)
{
	return (Offset + Alignment - 1) / Alignment * Alignment;
}
}

UStruct::~UStruct() = default;

bool UStruct::IsChildOf(const UStruct* Other) const
{
	const UStruct* Struct = this;
	while (Struct && Struct != Other)
		Struct = Struct->Super;
	return Struct != nullptr;
}

FTopLevelAssetPath UStruct::GetStructPathName() const
{
	const UPackage* const Package = GetPackage();
	return Package ? FTopLevelAssetPath(Package->GetFName(), GetFName()) : FTopLevelAssetPath();
}

const FProperty* UStruct::FindPropertyByName(FName PropertyName) const
{
	for (const UStruct* Struct = this; Struct; Struct = Struct->Super)
	{
		if (const auto Index = Struct->PropertyIndices.find(PropertyName); Index != Struct->PropertyIndices.end())
			return Struct->Properties[static_cast<std::size_t>(Index->second)].get();
	}
	return nullptr;
}

FProperty* UStruct::FindOwnProperty(FName PropertyName)
{
	const auto Index = PropertyIndices.find(PropertyName);
	return Index != PropertyIndices.end() ? Properties[static_cast<std::size_t>(Index->second)].get() : nullptr;
}

FProperty* UStruct::AddProperty(TUniquePtr<FProperty> Property)
{
	if (IsLinked() || PropertyIndices.contains(Property->GetFName()))
		return nullptr;
	PropertyIndices.emplace(Property->GetFName(), static_cast<int32>(Properties.size()));
	Property->SetOwnerStruct(this);
	Properties.push_back(std::move(Property));
	return Properties.back().get();
}

bool UStruct::SetSuperStruct(UStruct* InSuper)
{
	if (!IsLinked())
		DeclaredSuper = InSuper;
	return !IsLinked();
}

void UStruct::Link(TArray<FLinkFault>* OutFaults)
{
	LinkTypes({this});
	if (OutFaults)
		OutFaults->Append(std::exchange(LinkFaults, {}));
}

void UStruct::LoseParent(const char* Rule, const FString& Why)
{
	LinkFaults.Add({.Rule = Rule, .Text = "the parent " + DeclaredSuper->GetPathName() + " is left out: " + Why});
	DeclaredSuper = nullptr;
}

void UStruct::LoseValue(int32 Index, const char* Rule, const FString& Why)
{
	TUniquePtr<FProperty>& Property = Properties[static_cast<std::size_t>(Index)];
	auto Unread = MakeUnique<FUnreadProperty>(Property->GetFName(), Property->GetTypeText());
	LinkFaults.Add({Index, Rule,
		"values of property '" + Property->GetName() + "' of type " + Property->GetTypeText() + " are not read: " + Why});
	Unread->SetOwnerStruct(this);
	Unread->SetDeprecated(Property->IsDeprecated());
	Unread->SetAuthoredName(Property->GetAuthoredName());
	Property = std::move(Unread);
}

void UStruct::Layout()
{
	PlaceParent();
	for (int32 Index = 0; Index < static_cast<int32>(Properties.size()); ++Index)
		PlaceProperty(Index);
	DropPropertiesOfParents();
	PropertiesSize = std::max(AlignUp(PropertiesSize, Alignment), 1);
	bLinked = true;
}

void UStruct::PlaceParent()
{
	if (DeclaredSuper && DeclaredSuper->Depth >= MaxStructDepth)
		LoseParent("too-deep", "it has too many parents itself");
	Super = DeclaredSuper;
	if (!Super && IsA<UClass>())
		Super = UObject::StaticClass();
	if (!Super)
		return;
	PropertiesSize = Super->PropertiesSize;
	Alignment = Super->Alignment;
	Depth = Super->Depth + 1;
	ValueDepth = Super->ValueDepth;
}

void UStruct::DropPropertiesOfParents()
{
	if (std::erase(Properties, nullptr) == 0)
		return;
	PropertyIndices.clear();
	for (std::size_t Index = 0; Index < Properties.size(); ++Index)
		PropertyIndices.emplace(Properties[Index]->GetFName(), static_cast<int32>(Index));
}

/** Why values of the property cannot lie in this structure; null when they can. */
const char* UStruct::FindFault(const FProperty& Property) const
{
	const auto* const Holder = CastField<FStructProperty>(&Property);
	if (Holder && Holder->GetStruct().ValueDepth >= MaxStructDepth)
		return "too many structures lie inside each other";
	if (Property.GetSize() > MaxInstanceBytes - AlignUp(PropertiesSize, Property.GetAlignment()))
		return "they would take too much memory";
	return nullptr;
}

/** Leaves nothing in the place of a property that a parent has too. */
void UStruct::PlaceProperty(int32 Index)
{
	TUniquePtr<FProperty>& Property = Properties[static_cast<std::size_t>(Index)];
	if (const FProperty* const Earlier = Super ? Super->FindPropertyByName(Property->GetFName()) : nullptr)
	{
		LinkFaults.Add({Index, "repeated-property",
			"'" + Property->GetName() + "' is a property of " + Earlier->GetOwnerStruct()->GetName() + " already"});
		Property = nullptr;
		return;
	}
	if (const char* const Fault = FindFault(*Property))
		LoseValue(Index, "declaration", Fault);
	if (const auto* const Holder = CastField<FStructProperty>(Property.get()))
		ValueDepth = std::max(ValueDepth, Holder->GetStruct().ValueDepth + 1);
	Property->SetOffset(AlignUp(PropertiesSize, Property->GetAlignment()));
	PropertiesSize = Property->GetOffset() + Property->GetSize();
	Alignment = std::max(Alignment, Property->GetAlignment());
}

bool UStruct::ReadDefault(FProperty&, const FJsonRef&, FPropertyReader&)
{
	return false;
}

void UStruct::InitializeDynamicProperties(void* Container) const
{
	for (const UStruct* Struct = this; Struct && !Struct->bNative; Struct = Struct->Super)
		for (const TUniquePtr<FProperty>& Property : Struct->Properties)
			Property->InitializeValue(Property->ContainerPtrToValuePtr<void>(Container));
}

void UStruct::DestroyDynamicProperties(void* Container) const
{
	for (const UStruct* Struct = this; Struct && !Struct->bNative; Struct = Struct->Super)
		for (auto Property = Struct->Properties.rbegin(); Property != Struct->Properties.rend(); ++Property)
			(*Property)->DestroyValue((*Property)->ContainerPtrToValuePtr<void>(Container));
}

UScriptStruct::~UScriptStruct()
{
	checkf(!Defaults, "default values go before their type");
}

const UScriptStruct* UScriptStruct::FindNative() const
{
	const UStruct* Struct = this;
	while (Struct && !Struct->IsNativeStruct())
		Struct = Struct->GetSuperStruct();
	return static_cast<const UScriptStruct*>(Struct);
}

void UScriptStruct::InitializeStruct(void* Value) const
{
	if (const UScriptStruct* const Native = FindNative())
		Native->NativeOps->Construct(Value);
	InitializeDynamicProperties(Value);
	for (const auto* Struct = this; Struct; Struct = static_cast<const UScriptStruct*>(Struct->GetSuperStruct()))
	{
		if (!Struct->Defaults)
			continue;
		for (const TUniquePtr<FProperty>& Property : Struct->GetOwnProperties())
			if (Property->HasDeclaredDefault())
				Property->CopyValue(
					Property->ContainerPtrToValuePtr<void>(Value), Property->ContainerPtrToValuePtr<void>(Struct->Defaults));
	}
}

void UScriptStruct::DestroyStruct(void* Value) const
{
	DestroyDynamicProperties(Value);
	if (const UScriptStruct* const Native = FindNative())
		Native->NativeOps->Destroy(Value);
}

void UScriptStruct::CopyStruct(void* To, const void* From) const
{
	if (const UScriptStruct* const Native = FindNative())
		Native->NativeOps->Assign(To, From);
	for (const UStruct* Struct = this; Struct && !Struct->IsNativeStruct(); Struct = Struct->GetSuperStruct())
		for (const TUniquePtr<FProperty>& Property : Struct->GetOwnProperties())
			Property->CopyValue(Property->ContainerPtrToValuePtr<void>(To), Property->ContainerPtrToValuePtr<void>(From));
}

bool UScriptStruct::ReadDefault(FProperty& Property, const FJsonRef& Json, FPropertyReader& Reader)
{
	if (!Defaults)
	{
		void* const Instance = ::operator new(static_cast<std::size_t>(GetPropertiesSize()));
		InitializeStruct(Instance);
		Defaults = Instance;
	}
	if (!Property.ReadValue(Property.ContainerPtrToValuePtr<void>(Defaults), Json, Reader))
		return false;
	Property.SetHasDeclaredDefault();
	return true;
}

void UScriptStruct::DestroyDefaults()
{
	if (!Defaults)
		return;
	DestroyStruct(Defaults);
	::operator delete(Defaults);
	Defaults = nullptr;
}

UClass::~UClass()
{
	checkf(!DefaultObject, "default objects go before their class");
}

UObject* UClass::GetDefaultObject()
{
	if (DefaultObject || !IsLinked())
		return DefaultObject;
	DefaultObject = FObjectTable::Construct(*this);
	UClass* const Parent = GetSuperClass();
	if (IsNativeStruct() || !Parent)
		return DefaultObject;
	const UObject* const Inherited = Parent->GetDefaultObject();
	for (const FProperty* Property : PropertiesOf(*Parent))
		Property->CopyValue(
			Property->ContainerPtrToValuePtr<void>(DefaultObject), Property->ContainerPtrToValuePtr<void>(Inherited));
	return DefaultObject;
}

bool UClass::ReadDefault(FProperty& Property, const FJsonRef& Json, FPropertyReader& Reader)
{
	UObject* const Defaults = GetDefaultObject();
	return Defaults && Property.ReadValue(Property.ContainerPtrToValuePtr<void>(Defaults), Json, Reader);
}

void UClass::DestroyDefaults()
{
	if (DefaultObject)
		FObjectTable::Destruct(std::exchange(DefaultObject, nullptr));
}

void UEnum::SetEntries(TArray<FEntry> InEntries)
{
	Entries = std::move(InEntries);
	ValuesByShortName.clear();
	for (const FEntry& Entry : Entries)
	{
		const FStringView Name = Entry.Name.View();
		ValuesByShortName.try_emplace(FString(Name.substr(Name.rfind(':') + 1)), Entry.Value); // npos + 1 is the start
	}
}

bool UEnum::TryGetValueByName(FStringView Name, int64& Out) const
{
	const std::size_t Colon = Name.rfind("::");
	if (Colon != FStringView::npos && !GetName().Equals(Name.substr(0, Colon), ESearchCase::IgnoreCase))
		return false;
	const auto Value = ValuesByShortName.find(FString(Colon == FStringView::npos ? Name : Name.substr(Colon + 2)));
	if (Value == ValuesByShortName.end())
		return false;
	Out = Value->second;
	return true;
}

FPropertyRange::FPropertyRange(const UStruct& InStruct, FPropertyWalk InWalk) : Begin(&InStruct, InWalk)
{
}

FPropertyRange::FIterator::FIterator(const UStruct* InStruct, FPropertyWalk InWalk) : Struct(InStruct), Walk(InWalk)
{
	SkipToListed();
}

const FProperty* FPropertyRange::FIterator::operator*() const
{
	return Struct->GetOwnProperties()[Index].get();
}

FPropertyRange::FIterator& FPropertyRange::FIterator::operator++()
{
	++Index;
	SkipToListed();
	return *this;
}

/** Stops at the next property that the walk includes; past the last one the iterator equals end(). */
void FPropertyRange::FIterator::SkipToListed()
{
	while (Struct)
	{
		const auto& Properties = Struct->GetOwnProperties();
		while (Index < Properties.size() && !Walk.bIncludeDeprecated && Properties[Index]->IsDeprecated())
			++Index;
		if (Index < Properties.size())
			return;
		Struct = Walk.bIncludeSuper ? Struct->GetSuperStruct() : nullptr;
		Index = 0;
	}
}

UClass* FindClass(FStringView Path)
{
	FAutoNativeClass::BuildAll();
	return static_cast<UClass*>(StaticFindObject(UClass::StaticClass(), Path));
}

void ForEachClass(const std::function<void(UClass&)>& Visit)
{
	FAutoNativeClass::BuildAll();
	const std::vector<UStruct*>& Types = FObjectTable::Get().GetTypes();
	for (std::size_t Index = 0; Index < Types.size(); ++Index)
		if (UClass* const Class = Cast<UClass>(static_cast<UObject*>(Types[Index])))
			Visit(*Class);
}
