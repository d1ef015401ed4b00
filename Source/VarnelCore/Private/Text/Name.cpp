#include "Core/Text/Name.h"

#include "Core/Base/Assert.h"
#include "Core/Base/IdTable.h"
#include "Core/Base/SeededHash.h"
#include "Core/Text/Unicode.h"

#include <array>
#include <atomic>
#include <cstring>
#include <mutex>

namespace
{
// An id says where a name lies: the number of its block in the upper half, its distance from the block's start in granules below.
constexpr uint32 GranuleBytes = 8;
constexpr uint32 GranulesPerBlock = 1u << 16;
constexpr std::size_t BlockBytes = std::size_t{GranuleBytes} * GranulesPerBlock;
constexpr uint32 MaxBlocks = 1u << 16;

using FNameLength = uint32; // precedes the bytes of a name

// Outside of the table, so that reading a name needs no check whether the table is there yet.
// Block 0 stays empty: id 0 is the empty name.
constinit std::atomic<char*> Blocks[MaxBlocks] = {};
constinit std::atomic<uint32> NumBlocks = 1;
constinit std::atomic<int64> NumStoredBytes = 0;

char* AddressOf(uint32 Id)
{
	return Blocks[Id / GranulesPerBlock].load(std::memory_order_acquire) + std::size_t{Id % GranulesPerBlock} * GranuleBytes;
}

FStringView ViewOf(uint32 Id)
{
	const char* const Address = AddressOf(Id);
	FNameLength Length;
	std::memcpy(&Length, Address, sizeof(Length));
	return FStringView(Address + sizeof(Length), Length);
}

/** Takes a new block into the table for good; returns its number. */
uint32 AddBlock(std::size_t NumBytes)
{
	const uint32 Number = NumBlocks.fetch_add(1, std::memory_order_relaxed);
	checkf(Number < MaxBlocks, "names take up more than 32 GiB, so their ids exceed 32 bits");
	Blocks[Number].store(new char[NumBytes], std::memory_order_release);
	return Number;
}

/** Where one shard puts its names. */
class FNameArena
{
public:
	uint32 Store(FStringView Text)
	{
		checkf(Text.size() < UINT32_MAX, "a name of 4 GiB");
		const auto Length = static_cast<FNameLength>(Text.size());
		const uint32 Id = Allocate((sizeof(Length) + Text.size() + GranuleBytes - 1) / GranuleBytes);
		NumStoredBytes.fetch_add(static_cast<int64>(sizeof(Length) + Text.size()), std::memory_order_relaxed);
		std::memcpy(AddressOf(Id), &Length, sizeof(Length));
		std::memcpy(AddressOf(Id) + sizeof(Length), Text.data(), Text.size());
		return Id;
	}

private:
	uint32 Allocate(std::size_t NumGranules)
	{
		if (NumGranules > GranulesPerBlock / 4) // a block of its own, so that little of a shared one is left unused
			return AddBlock(NumGranules * GranuleBytes) * GranulesPerBlock;
		if (NumGranules > NumFree)
		{
			NextId = AddBlock(BlockBytes) * GranulesPerBlock;
			NumFree = GranulesPerBlock;
		}
		const uint32 Id = NextId;
		NextId += static_cast<uint32>(NumGranules);
		NumFree -= static_cast<uint32>(NumGranules);
		return Id;
	}

	uint32 NextId = 0;
	uint32 NumFree = 0;
};

/** A part of a table with its own lock and storage, so that threads seldom wait for each other. */
class alignas(64) FNameShard
{
public:
	template <class TIsSame>
	uint32 FindOrStore(FStringView Text, uint64 Hash, TIsSame IsSame)
	{
		const std::scoped_lock Lock(Mutex);
		if (const uint32 Found = Ids.Find(Hash, [IsSame](uint32 Id) { return IsSame(ViewOf(Id)); }))
			return Found;
		const uint32 Id = Arena.Store(Text);
		Ids.Add(Hash, Id);
		return Id;
	}

private:
	std::mutex Mutex;
	TIdTable<0> Ids;
	FNameArena Arena;
};

/** The first spelling of each text without regard to case, which is all there is of most names, and apart from them the others.
 */
class FNameTable
{
public:
	uint32 FindOrStoreFirst(FStringView Text)
	{
		const uint64 Hash = Unicode::HashFolded(Text);
		return FirstSpellings[Hash >> ShardShift].FindOrStore(
			Text, Hash, [Text](FStringView Other) { return Other == Text || Unicode::EqualsFolded(Other, Text); });
	}
	uint32 FindOrStoreOther(FStringView Text)
	{
		const uint64 Hash = SeededHash::HashBytes(Text);
		return OtherSpellings[Hash >> ShardShift].FindOrStore(Text, Hash, [Text](FStringView Other) { return Other == Text; });
	}

private:
	static constexpr uint32 NumShards = 32;
	static constexpr uint32 ShardShift = 64 - 5;

	std::array<FNameShard, NumShards> FirstSpellings;
	std::array<FNameShard, NumShards> OtherSpellings;
};

/** Never destroyed: names outlive all other static objects. */
FNameTable& GetNameTable()
{
	static FNameTable& Table = *new FNameTable;
	return Table;
}
}

FName::FName(FStringView Text)
{
	constexpr FStringView None = "None";
	if (Text.empty() || Text == None)
		return;
	if (Text.size() != None.size() || !Unicode::EqualsFolded(Text, None))
		ComparisonId = GetNameTable().FindOrStoreFirst(Text);
	DisplayId = ComparisonId != 0 && ViewOf(ComparisonId) == Text ? ComparisonId : GetNameTable().FindOrStoreOther(Text);
}

FStringView FName::View() const
{
	return DisplayId == 0 ? FStringView("None") : ViewOf(DisplayId);
}

int64 FName::GetNumBytes()
{
	return NumStoredBytes.load(std::memory_order_relaxed);
}

bool FName::LexicalLess(FName Other) const
{
	return Unicode::CompareFolded(View(), Other.View()) < 0;
}
