#include "TrigramIndex.h"

#include "Core/TextFinder.h"

#include <algorithm>
#include <numeric>
#include <string>

namespace
{
constexpr std::size_t TrigramBytes = 3;
// A block that is visited alone costs as much as this many in a scan of all texts.
constexpr std::size_t ScanAdvantage = 8;
// Looking into a block costs as much as reading this many bytes of a list.
constexpr std::size_t BlockCost = 32;

using FByteSpan = std::span<const uint8>;

uint32 MakeKey(std::string_view Bytes)
{
	const auto Byte = [Bytes](std::size_t Index) { return uint32{static_cast<uint8>(Bytes[Index])}; };
	return Byte(0) << 16 | Byte(1) << 8 | Byte(2);
}

/** Bytes that a number takes in groups of seven bits, the lowest first. */
uint32 CountPackedBytes(uint32 Number)
{
	uint32 Count = 1;
	while (Number >>= 7)
		++Count;
	return Count;
}

uint8* WritePacked(uint8* Out, uint32 Number)
{
	for (; Number >= 0x80; Number >>= 7)
		*Out++ = static_cast<uint8>(Number | 0x80);
	*Out++ = static_cast<uint8>(Number);
	return Out;
}

/** Reads a list of ascending numbers that are stored as packed differences. Ends at the first one that is not below Limit:
 * a damaged list may miss numbers, but leads nowhere outside. */
class FListReader
{
public:
	FListReader(FByteSpan InBytes, uint32 InLimit) : Bytes(InBytes), Limit(InLimit) {}

	/** The next number, NoId at the end. */
	uint32 Next()
	{
		uint64 Difference = 0;
		for (uint32 Shift = 0; At < Bytes.size() && Shift < 32; Shift += 7)
		{
			const uint8 Byte = Bytes[At++];
			Difference |= uint64{Byte & 0x7Fu} << Shift;
			if (Byte < 0x80)
			{
				Number += Difference;
				return Number < Limit ? static_cast<uint32>(Number) : End();
			}
		}
		return End();
	}

private:
	uint32 End()
	{
		At = Bytes.size();
		return NoId;
	}

	FByteSpan Bytes;
	const uint32 Limit;
	std::size_t At = 0;
	uint64 Number = 0;
};

uint32 CountBlocks(const FRegistryTables& Tables)
{
	return (Tables.NumTexts(EZone::Entries) + TrigramIndex::BlockTexts - 1) / TrigramIndex::BlockTexts;
}

/** The folded texts from one id up to another, with the zero bytes between and behind them. */
std::string_view GetFoldedRun(const FRegistryTables& Tables, uint32 Begin, uint32 End)
{
	const std::string_view First = Tables.GetFolded(EZone::Entries, Begin);
	const std::string_view Last = Tables.GetFolded(EZone::Entries, End - 1);
	return {First.data(), static_cast<std::size_t>(Last.data() + Last.size() + 1 - First.data())};
}

/**
 * Trigrams numbered densely: only bytes that occur count, so that the counters of all trigrams of usual texts fit a cache. A
 * trigram with a zero byte, as between two texts, is none.
 */
class FTrigramNumbers
{
public:
	explicit FTrigramNumbers(std::string_view Texts)
	{
		std::array<bool, 256> Occurs = {};
		for (const char Byte : Texts)
			Occurs[static_cast<uint8>(Byte)] = true;
		for (uint32 Byte = 1; Byte < Occurs.size(); ++Byte)
		{
			if (!Occurs[Byte])
				continue;
			Codes[Byte] = static_cast<uint8>(NumCodes);
			Bytes[NumCodes++] = static_cast<uint8>(Byte);
		}
		NumCodes = std::max(NumCodes, 1u); // where every text is empty
	}

	std::size_t Num() const { return std::size_t{NumCodes} * NumCodes * NumCodes; }
	uint32 GetKey(std::size_t Number) const
	{
		const std::size_t Upper = Number / NumCodes;
		return uint32{Bytes[Upper / NumCodes]} << 16 | uint32{Bytes[Upper % NumCodes]} << 8 | Bytes[Number % NumCodes];
	}
	template <class TVisit>
	void ForEach(std::string_view Text, TVisit&& Visit) const
	{
		std::size_t Number = 0;
		std::size_t Length = 0;
		const std::size_t Upper = std::size_t{NumCodes} * NumCodes;
		for (const char Byte : Text)
		{
			Length = Byte ? Length + 1 : 0;
			Number = (Number % Upper) * NumCodes + Codes[static_cast<uint8>(Byte)];
			if (Length >= TrigramBytes)
				Visit(Number);
		}
	}

private:
	std::array<uint8, 256> Codes = {};
	std::array<uint8, 256> Bytes = {};
	uint32 NumCodes = 0;
};

/** Visits every trigram of every block once per block, with the difference to the block where it was last. */
template <class TVisit>
void VisitBlocks(const FRegistryTables& Tables, const FTrigramNumbers& Numbers, TVisit&& Visit)
{
	std::vector<uint32> LastBlocks(Numbers.Num(), NoId);
	const uint32 NumTexts = Tables.NumTexts(EZone::Entries);
	for (uint32 Block = 0; Block < CountBlocks(Tables); ++Block)
	{
		const uint32 Begin = Block * TrigramIndex::BlockTexts;
		Numbers.ForEach(GetFoldedRun(Tables, Begin, std::min(NumTexts, Begin + TrigramIndex::BlockTexts)),
			[&](std::size_t Number)
			{
				uint32& Last = LastBlocks[Number];
				if (Last == Block)
					return;
				Visit(Number, Last == NoId ? Block : Block - Last);
				Last = Block;
			});
	}
}

/** The last text from Begin on, and before End, that starts at or before a place. Mostly a near one. */
uint32 FindTextAt(const FRegistryTables& Tables, const char* Place, uint32 Begin, uint32 End)
{
	const auto StartsBefore = [&Tables, Place](uint32 Text) { return Tables.GetFolded(EZone::Entries, Text).data() <= Place; };
	uint32 Step = 1;
	for (; End - Begin > Step && StartsBefore(Begin + Step); Step *= 2)
		Begin += Step;
	uint32 Above = std::min(End - Begin, Step) + Begin;
	while (Above - Begin > 1)
	{
		const uint32 Middle = Begin + (Above - Begin) / 2;
		(StartsBefore(Middle) ? Begin : Above) = Middle;
	}
	return Begin;
}

/** Appends the ids of the texts between Begin and End that contain the finder's value, which is Length bytes long. */
void FindInTexts(const FRegistryTables& Tables, const FTextFinder& Finder, std::size_t Length, uint32 Begin, uint32 End,
	std::vector<uint32>& Out)
{
	const std::string_view Run = GetFoldedRun(Tables, Begin, End);
	std::size_t From = 0;
	while ((From = Finder.Find(Run, From)) != std::string_view::npos)
	{
		const char* const Place = Run.data() + From;
		Begin = FindTextAt(Tables, Place, Begin, End);
		const std::string_view Text = Tables.GetFolded(EZone::Entries, Begin);
		const bool bInside = static_cast<std::size_t>(Text.data() + Text.size() - Place) >= Length; // not across a zero byte
		if (bInside)
			Out.push_back(Begin);
		From = bInside ? static_cast<std::size_t>(Text.data() + Text.size() + 1 - Run.data()) : From + 1;
		if (From >= Run.size())
			return;
	}
}

/** The lists of a value's trigrams, the shortest first; false when one of them occurs nowhere. */
bool GatherLists(const FRegistryTables& Tables, std::string_view Value, std::vector<FByteSpan>& Out)
{
	for (std::size_t Start = 0; Start + TrigramBytes <= Value.size(); ++Start)
	{
		const uint32 Key = MakeKey(Value.substr(Start, TrigramBytes));
		const auto Found = std::lower_bound(Tables.TrigramKeys.begin(), Tables.TrigramKeys.end(), Key);
		if (Found == Tables.TrigramKeys.end() || *Found != Key)
			return false;
		const auto Index = static_cast<std::size_t>(Found - Tables.TrigramKeys.begin());
		const uint64 Begin = Tables.TrigramListStarts[Index];
		Out.push_back(Tables.TrigramLists.subspan(Begin, Tables.TrigramListStarts[Index + 1] - Begin));
	}
	std::sort(Out.begin(), Out.end(), [](FByteSpan A, FByteSpan B) { return A.size() < B.size(); });
	return true;
}

/** Keeps the blocks that the list holds too. */
void Intersect(std::vector<uint32>& Blocks, FListReader List)
{
	uint32 Other = List.Next();
	std::erase_if(Blocks,
		[&](uint32 Block)
		{
			while (Other < Block)
				Other = List.Next();
			return Other != Block;
		});
}

std::vector<uint32> IntersectLists(const std::vector<FByteSpan>& Lists, uint32 NumBlocks)
{
	std::vector<uint32> Blocks;
	FListReader Shortest(Lists.front(), NumBlocks);
	for (uint32 Block = Shortest.Next(); Block != NoId; Block = Shortest.Next())
		Blocks.push_back(Block);
	for (std::size_t List = 1; List < Lists.size() && Lists[List].size() < BlockCost * Blocks.size(); ++List)
		Intersect(Blocks, FListReader(Lists[List], NumBlocks));
	return Blocks;
}
}

void TrigramIndex::Build(FRegistryDraft& Draft)
{
	Draft.TrigramListStarts = {0};
	const FRegistryTables Tables = Draft.View();
	const uint32 NumTexts = Tables.NumTexts(EZone::Entries);
	if (NumTexts == 0)
		return;
	const FTrigramNumbers Numbers(GetFoldedRun(Tables, 0, NumTexts));
	std::vector<uint64> Places(Numbers.Num()); // lengths of the lists, then where the next number of each goes
	VisitBlocks(
		Tables, Numbers, [&Places](std::size_t Number, uint32 Difference) { Places[Number] += CountPackedBytes(Difference); });
	uint64 End = 0;
	for (std::size_t Number = 0; Number < Places.size(); ++Number)
	{
		const uint64 Length = std::exchange(Places[Number], End);
		if (Length == 0)
			continue;
		End += Length;
		Draft.TrigramKeys.push_back(Numbers.GetKey(Number));
		Draft.TrigramListStarts.push_back(End);
	}
	Draft.TrigramLists.resize(End);
	uint8* const Lists = Draft.TrigramLists.data();
	VisitBlocks(Tables, Numbers,
		[&](std::size_t Number, uint32 Difference)
		{ Places[Number] = static_cast<uint64>(WritePacked(Lists + Places[Number], Difference) - Lists); });
}

std::vector<uint32> TrigramIndex::FindTexts(const FRegistryTables& Tables, std::string_view FoldedValue)
{
	std::vector<uint32> Found;
	const uint32 NumTexts = Tables.NumTexts(EZone::Entries);
	if (NumTexts == 0)
		return Found;
	if (FoldedValue.empty())
	{
		Found.resize(NumTexts);
		std::iota(Found.begin(), Found.end(), 0);
		return Found;
	}
	const FTextFinder Finder(FoldedValue, ESearchCase::CaseSensitive);
	const bool bHasLists = FoldedValue.size() >= TrigramBytes && FoldedValue.find('\0') == std::string_view::npos;
	std::vector<FByteSpan> Lists;
	if (bHasLists && !GatherLists(Tables, FoldedValue, Lists))
		return Found;
	const uint32 NumBlocks = CountBlocks(Tables);
	if (!bHasLists || Lists.front().size() > NumBlocks / ScanAdvantage)
	{
		FindInTexts(Tables, Finder, FoldedValue.size(), 0, NumTexts, Found);
		return Found;
	}
	for (const uint32 Block : IntersectLists(Lists, NumBlocks))
	{
		const uint32 Begin = Block * BlockTexts;
		FindInTexts(Tables, Finder, FoldedValue.size(), Begin, std::min(NumTexts, Begin + BlockTexts), Found);
	}
	return Found;
}
