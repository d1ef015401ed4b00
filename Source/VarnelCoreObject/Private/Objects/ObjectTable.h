#pragma once

#include "Core/Base/HashMap.h"
#include "CoreObject/Reflection/Class.h"

#include <vector>

/** All objects in memory, found by place in the table, by name inside their outer, and classes and structures by order of
 * creation. Game thread. */
class FObjectTable
{
public:
	/** Never destroyed: native classes live as long as the program. */
	static FObjectTable& Get();

	/** An object with its class's native and dynamic properties constructed, which nothing knows of yet. */
	static UObject* Construct(const UClass& Class);
	/** For objects that are not in the table. */
	static void Destruct(UObject* Object);

	void Add(UObject& Object, UClass& Class, UObject* Outer, FName Name);
	/** Directly inside Outer, or the package of that name when Outer is null. */
	UObject* Find(const UObject* Outer, FName Name) const;
	/** Null when the place has another serial by now. */
	UObject* Resolve(int32 Index, uint32 Serial) const;
	uint32 GetSerial(int32 Index) const { return Slots[static_cast<std::size_t>(Index)].Serial; }
	static int32 GetIndex(const UObject& Object) { return Object.TableIndex; }
	static UObject* GetFirstChild(const UObject& Object) { return Object.FirstChild; }
	static UObject* GetNextSibling(const UObject& Object) { return Object.NextSibling; }
	/** Lists children of Outer after its other ones, in the order given. */
	static void MoveToEnd(UObject& Outer, const std::vector<UObject*>& Children);
	/** Classes and structures in the order in which they were made. */
	const std::vector<UStruct*>& GetTypes() const { return Types; }

	void Destroy(const TArray<UObject*>& Roots);
	uint64 GetNumDestructions() const { return NumDestructions; }

private:
	struct FSlot
	{
		UObject* Object = nullptr;
		uint32 Serial = 0;
	};
	using FOuterAndName = uint64;
	/** Thousands of objects share a name in distinct outers, so both halves must reach the low bits. */
	struct FPlaceHash
	{
		std::size_t operator()(FOuterAndName Key) const
		{
			const uint64 Mixed = Key * 0x9E3779B97F4A7C15ull;
			return Mixed ^ (Mixed >> 32);
		}
	};
	static FOuterAndName MakeKey(const UObject* Outer, FName Name);

	std::vector<UObject*> CollectWithNested(const TArray<UObject*>& Roots) const;
	void TakeOut(UObject& Object);
	static void DropChildren(UObject& Outer, const std::vector<UObject*>& Removed);
	void Retire(const std::vector<UStruct*>& Removed);
	void DestroyTypes(const std::vector<UStruct*>& Unneeded);

	std::vector<FSlot> Slots;
	std::vector<int32> FreeSlots;
	THashMap<FOuterAndName, UObject*, FPlaceHash> ObjectsByName;
	std::vector<UStruct*> Types;
	uint64 NumDestructions = 0;	   // that took more than empty packages
	std::vector<UStruct*> Retired; // destroyed classes and structures that survivors still need
};

/** Visits everything below Root, outers before what they hold, siblings in the order of their creation. No recursion, whatever
 * the depth. */
template <class TVisit>
void ForEachNested(const UObject& Root, TVisit&& Visit)
{
	for (UObject* Object = FObjectTable::GetFirstChild(Root); Object;)
	{
		Visit(*Object);
		if (UObject* const Child = FObjectTable::GetFirstChild(*Object))
		{
			Object = Child;
			continue;
		}
		while (Object != &Root && !FObjectTable::GetNextSibling(*Object))
			Object = Object->GetOuter();
		Object = Object == &Root ? nullptr : FObjectTable::GetNextSibling(*Object);
	}
}
