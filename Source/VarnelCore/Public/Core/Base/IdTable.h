#pragma once

#include "Core/Base/Types.h"

#include <algorithm>
#include <bit>
#include <vector>

/**
 * Ids by hash: open addressing, at most two thirds full. The keys stay with the user, who hashes them (SeededHash.h where they
 * come from outside) and says whether the key of an id is the one that is looked for. FreeId is never added; no id ever leaves.
 * One thread at a time.
 */
template <uint32 FreeId>
class TIdTable
{
public:
	bool IsEmpty() const { return NumIds == 0; }
	/** Of its storage. */
	std::size_t GetNumBytes() const { return Slots.capacity() * sizeof(FSlot); }
	/** FreeId when there is none. IsSame(Id) is asked where the lower half of the hash is the same. */
	template <class TIsSame>
	uint32 Find(uint64 Hash, TIsSame IsSame) const
	{
		if (Slots.empty())
			return FreeId;
		for (std::size_t Index = Hash;; ++Index)
		{
			const FSlot& Slot = Slots[Index & (Slots.size() - 1)];
			if (Slot.Id == FreeId || (Slot.Hash == static_cast<uint32>(Hash) && IsSame(Slot.Id)))
				return Slot.Id;
		}
	}
	/** Does not look whether there is an id with the same key. */
	void Add(uint64 Hash, uint32 Id)
	{
		if (3 * (NumIds + 1) > 2 * Slots.size())
			Resize(std::max(MinSlots, 2 * Slots.size()));
		Insert({static_cast<uint32>(Hash), Id});
		++NumIds;
	}
	/** Makes room for that many ids in all. */
	void Reserve(std::size_t MaxIds)
	{
		if (const std::size_t NumSlots = CountSlots(MaxIds); NumSlots > Slots.size())
			Resize(NumSlots);
	}
	/** Empties the table, keeps its storage and makes room for that many ids. */
	void Reset(std::size_t MaxIds)
	{
		NumIds = 0;
		Slots.assign(CountSlots(MaxIds), {});
	}

private:
	struct FSlot
	{
		uint32 Hash = 0; // lower half of the key's hash
		uint32 Id = FreeId;
	};
	static constexpr std::size_t MinSlots = 16;

	static std::size_t CountSlots(std::size_t MaxIds) { return std::max(MinSlots, std::bit_ceil(MaxIds + MaxIds / 2 + 1)); }

	void Insert(FSlot New)
	{
		std::size_t Index = New.Hash & (Slots.size() - 1);
		while (Slots[Index].Id != FreeId)
			Index = (Index + 1) & (Slots.size() - 1);
		Slots[Index] = New;
	}
	void Resize(std::size_t NumSlots)
	{
		std::vector<FSlot> Old(NumSlots);
		Old.swap(Slots);
		for (const FSlot& Slot : Old)
		{
			if (Slot.Id != FreeId)
				Insert(Slot);
		}
	}

	std::vector<FSlot> Slots; // a power of two
	std::size_t NumIds = 0;
};
