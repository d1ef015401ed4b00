#include "Image/TextTable.h"

#include "Core/Base/SeededHash.h"
#include "Core/Text/Unicode.h"

#include <bit>

uint64 FTextTable::HashOf(std::string_view Text) const
{
	return Case == ESearchCase::IgnoreCase ? Unicode::HashFolded(Text) : SeededHash::HashBytes(Text);
}

bool FTextTable::IsSame(std::string_view A, std::string_view B) const
{
	return Case == ESearchCase::IgnoreCase ? Unicode::EqualsFolded(A, B) : A == B;
}

uint32 FTextTable::FindHashed(std::string_view Text, uint64 Hash) const
{
	for (std::size_t Index = Hash;; ++Index)
	{
		const FSlot& Slot = Slots[Index & (Slots.size() - 1)];
		if (Slot.Id == NoId || (Slot.Hash == static_cast<uint32>(Hash) && IsSame(Get(Slot.Id), Text)))
			return Slot.Id;
	}
}

uint32 FTextTable::Find(std::string_view Text) const
{
	return FindHashed(Text, HashOf(Text));
}

uint32 FTextTable::Add(std::string_view Text)
{
	const uint64 Hash = HashOf(Text);
	const uint32 Found = FindHashed(Text, Hash);
	return Found != NoId ? Found : AddHashed(Text, Hash);
}

uint32 FTextTable::AddHashed(std::string_view Text, uint64 Hash)
{
	if (3 * (std::size_t{Num()} + 1) > 2 * Slots.size())
		Resize(2 * Slots.size());
	const uint32 Id = Num();
	Insert({static_cast<uint32>(Hash), Id});
	Bytes.insert(Bytes.end(), Text.begin(), Text.end());
	Bytes.push_back('\0');
	Starts.push_back(Bytes.size());
	return Id;
}

void FTextTable::Insert(FSlot New)
{
	std::size_t Index = New.Hash & (Slots.size() - 1);
	while (Slots[Index].Id != NoId)
		Index = (Index + 1) & (Slots.size() - 1);
	Slots[Index] = New;
}

void FTextTable::Resize(std::size_t NumSlots)
{
	std::vector<FSlot> Old(NumSlots);
	Old.swap(Slots);
	for (const FSlot& Slot : Old)
	{
		if (Slot.Id != NoId)
			Insert(Slot);
	}
}

void FTextTable::Reserve(std::size_t NumTexts, std::size_t NumBytes)
{
	Starts.reserve(NumTexts + 1);
	Bytes.reserve(NumBytes);
	const std::size_t Needed = std::bit_ceil(NumTexts + NumTexts / 2 + 1);
	if (Needed > Slots.size())
		Resize(Needed);
}
