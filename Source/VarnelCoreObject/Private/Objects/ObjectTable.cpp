#include "Objects/ObjectTable.h"

#include "Core/Threads/Tasks.h"

#include <algorithm>
#include <new>
#include <unordered_map>
#include <unordered_set>

namespace
{
constexpr uint64 NoOuter = 0xFFFFFFFF;

bool IsType(const UObject& Object)
{
	return Object.IsA<UStruct>();
}

/** The types themselves, their parents, and the structures that their values hold. */
std::unordered_set<const UStruct*> CollectNeeded(std::vector<const UStruct*> Types)
{
	std::unordered_set<const UStruct*> Needed;
	std::vector<UScriptStruct*> Held;
	while (!Types.empty())
	{
		const UStruct* const Type = Types.back();
		Types.pop_back();
		if (!Type || !Needed.insert(Type).second)
			continue;
		Held.clear();
		for (const TUniquePtr<FProperty>& Property : Type->GetOwnProperties())
			Property->GatherStructs(Held);
		Types.insert(Types.end(), Held.begin(), Held.end());
		Types.push_back(Type->GetSuperStruct());
	}
	return Needed;
}
}

FObjectTable& FObjectTable::Get()
{
	static FObjectTable& Table = *new FObjectTable();
	return Table;
}

UObject* FObjectTable::Construct(const UClass& Class)
{
	const UClass* Native = &Class;
	while (!Native->IsNative())
		Native = Native->GetSuperClass();
	void* const Memory = ::operator new(static_cast<std::size_t>(Class.GetPropertiesSize()));
	UObject* const Object = Native->NativeConstructor(Memory);
	Object->ClassPrivate = const_cast<UClass*>(&Class);
	Class.InitializeDynamicProperties(Object);
	return Object;
}

void FObjectTable::Destruct(UObject* Object)
{
	Object->ClassPrivate->DestroyDynamicProperties(Object);
	Object->~UObject();
	::operator delete(static_cast<void*>(Object));
}

void FObjectTable::Add(UObject& Object, UClass& Class, UObject* Outer, FName Name)
{
	checkGameThread();
	if (FreeSlots.empty())
	{
		FreeSlots.push_back(static_cast<int32>(Slots.size()));
		Slots.emplace_back();
	}
	Object.TableIndex = FreeSlots.back();
	FreeSlots.pop_back();
	Slots[static_cast<std::size_t>(Object.TableIndex)].Object = &Object;

	Object.NamePrivate = Name;
	Object.ClassPrivate = &Class;
	Object.OuterPrivate = Outer;
	++Class.NumInstances;
	ObjectsByName[MakeKey(Outer, Name)] = &Object;
	if (Outer)
		(Outer->LastChild ? Outer->LastChild->NextSibling : Outer->FirstChild) = &Object;
	if (Outer)
		Outer->LastChild = &Object;
	if (IsType(Object))
		Types.push_back(static_cast<UStruct*>(&Object));
}

UObject* FObjectTable::Find(const UObject* Outer, FName Name) const
{
	const auto Found = ObjectsByName.find(MakeKey(Outer, Name));
	return Found == ObjectsByName.end() ? nullptr : Found->second;
}

UObject* FObjectTable::Resolve(int32 Index, uint32 Serial) const
{
	if (Index == INDEX_NONE)
		return nullptr;
	const FSlot& Slot = Slots[static_cast<std::size_t>(Index)];
	return Slot.Serial == Serial ? Slot.Object : nullptr;
}

FObjectTable::FOuterAndName FObjectTable::MakeKey(const UObject* Outer, FName Name)
{
	const uint64 OuterKey = Outer ? static_cast<uint32>(Outer->TableIndex) : NoOuter;
	return OuterKey << 32 | Name.GetComparisonId();
}

std::vector<UObject*> FObjectTable::CollectWithNested(const TArray<UObject*>& Roots) const
{
	std::vector<UObject*> Objects;
	std::unordered_set<const UObject*> Seen;
	const auto AddOnce = [&Objects, &Seen](UObject& Object)
	{
		if (Seen.insert(&Object).second)
			Objects.push_back(&Object);
	};
	for (UObject* const Root : Roots)
	{
		if (!Root)
			continue;
		checkf(!IsType(*Root) || !static_cast<const UStruct*>(Root)->IsNativeStruct(),
			"native classes and structures stay for good");
		AddOnce(*Root);
		ForEachNested(*Root, AddOnce);
	}
	return Objects;
}

/** The object can no longer be found; it is not destroyed yet. */
void FObjectTable::TakeOut(UObject& Object)
{
	// A native class takes the name of a declared one, whose entry is then no longer its own.
	const auto Found = ObjectsByName.find(MakeKey(Object.OuterPrivate, Object.NamePrivate));
	if (Found != ObjectsByName.end() && Found->second == &Object)
		ObjectsByName.erase(Found);
	FSlot& Slot = Slots[static_cast<std::size_t>(Object.TableIndex)];
	Slot.Object = nullptr;
	++Slot.Serial;
}

/** Takes objects out of their outer's list of children. */
void FObjectTable::DropChildren(UObject& Outer, const std::vector<UObject*>& Removed)
{
	const std::unordered_set<const UObject*> Gone(Removed.begin(), Removed.end());
	UObject* Kept = nullptr;
	UObject* Next = std::exchange(Outer.FirstChild, nullptr);
	Outer.LastChild = nullptr;
	for (UObject* Child = Next; Child; Child = Next)
	{
		Next = std::exchange(Child->NextSibling, nullptr);
		if (Gone.contains(Child))
			continue;
		(Kept ? Kept->NextSibling : Outer.FirstChild) = Child;
		Outer.LastChild = Kept = Child;
	}
}

void FObjectTable::MoveToEnd(UObject& Outer, const std::vector<UObject*>& Children)
{
	DropChildren(Outer, Children);
	for (UObject* const Child : Children)
	{
		(Outer.LastChild ? Outer.LastChild->NextSibling : Outer.FirstChild) = Child;
		Outer.LastChild = Child;
	}
}

void FObjectTable::Destroy(const TArray<UObject*>& Roots)
{
	checkGameThread();
	const std::vector<UObject*> Doomed = CollectWithNested(Roots);
	NumDestructions += std::any_of(Doomed.begin(), Doomed.end(), [](const UObject* Object) { return Object->GetOuter(); });
	std::unordered_map<UObject*, std::vector<UObject*>> RootsByOuter;
	for (UObject* const Root : Roots)
		if (Root && Root->OuterPrivate)
			RootsByOuter[Root->OuterPrivate].push_back(Root);
	for (const auto& [Outer, Removed] : RootsByOuter)
		DropChildren(*Outer, Removed);

	std::vector<UStruct*> DoomedTypes;
	for (UObject* const Object : Doomed)
	{
		TakeOut(*Object);
		if (IsType(*Object))
			DoomedTypes.push_back(static_cast<UStruct*>(Object));
	}
	for (auto Object = Doomed.rbegin(); Object != Doomed.rend(); ++Object)
	{
		if (IsType(**Object))
			continue;
		FreeSlots.push_back((*Object)->TableIndex);
		--(*Object)->ClassPrivate->NumInstances;
		Destruct(*Object);
	}
	Retire(DoomedTypes);
}

/** Destroys classes and structures that nothing alive depends on any more, and keeps the others aside. */
void FObjectTable::Retire(const std::vector<UStruct*>& Removed)
{
	if (Removed.empty() && Retired.empty())
		return;
	for (UStruct* const Type : Removed)
	{
		Type->OuterPrivate = nullptr;
		Type->FirstChild = Type->LastChild = Type->NextSibling = nullptr;
		Retired.push_back(Type);
	}
	std::vector<const UStruct*> Used;
	const std::unordered_set<const UStruct*> Aside(Retired.begin(), Retired.end());
	for (const UStruct* const Type : Types)
		if (!Aside.contains(Type) || (Type->IsA<UClass>() && static_cast<const UClass*>(Type)->NumInstances > 0))
			Used.push_back(Type);
	const std::unordered_set<const UStruct*> Needed = CollectNeeded(std::move(Used));

	const auto FirstUnneeded =
		std::stable_partition(Retired.begin(), Retired.end(), [&Needed](const UStruct* Type) { return Needed.contains(Type); });
	const std::vector<UStruct*> Unneeded(FirstUnneeded, Retired.end());
	Retired.erase(FirstUnneeded, Retired.end());
	DestroyTypes(Unneeded);
}

void FObjectTable::DestroyTypes(const std::vector<UStruct*>& Unneeded)
{
	const std::unordered_set<const UStruct*> Gone(Unneeded.begin(), Unneeded.end());
	std::erase_if(Types, [&Gone](const UStruct* Type) { return Gone.contains(Type); });
	// Default values of one type may hold values of another, so all of them go before the first type does.
	for (UStruct* const Type : Unneeded)
		Type->DestroyDefaults();
	for (auto Type = Unneeded.rbegin(); Type != Unneeded.rend(); ++Type)
	{
		FreeSlots.push_back((*Type)->TableIndex);
		--(*Type)->ClassPrivate->NumInstances;
		Destruct(*Type);
	}
}
