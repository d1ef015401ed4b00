#include "Image/TrigramIndex.h"

#include "Image/TextRun.h"

#include <algorithm>

namespace
{
constexpr std::size_t TrigramBytes = 3;
constexpr std::size_t MaxTrigrams = 64; // of a long value; these alone leave hardly any block
// Visiting a block alone costs as much as this many in a scan of all texts. A byte of a list stands for a block, mostly.
constexpr std::size_t ScanAdvantage = 4;
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
void VisitBlocks(const FRegistryTables& Tables, const FBlockedTexts& Texts, const FTrigramNumbers& Numbers, TVisit&& Visit)
{
	std::vector<uint32> LastBlocks(Numbers.Num(), NoId);
	for (uint32 Block = 0; Block < Texts.NumBlocks(); ++Block)
	{
		Numbers.ForEach(FTextRun(Tables, true, Texts.Zone, Texts.GetBlock(Block)).Bytes,
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

/** The lists of a value's trigrams, the shortest first; false when one of them occurs nowhere. */
bool GatherLists(const TTrigramColumns<TColumnSpan>& Trigrams, std::string_view Value, std::vector<FByteSpan>& Out)
{
	for (std::size_t Start = 0; Start + TrigramBytes <= Value.size() && Start < MaxTrigrams; ++Start)
	{
		const uint32 Key = MakeKey(Value.substr(Start, TrigramBytes));
		const auto Found = std::lower_bound(Trigrams.Keys.begin(), Trigrams.Keys.end(), Key);
		if (Found == Trigrams.Keys.end() || *Found != Key)
			return false;
		const auto Index = static_cast<std::size_t>(Found - Trigrams.Keys.begin());
		const uint64 Begin = Trigrams.Starts[Index];
		Out.push_back(Trigrams.Lists.subspan(Begin, Trigrams.Starts[Index + 1] - Begin));
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

FRowRange FBlockedTexts::GetBlock(uint32 Block) const
{
	const uint32 Begin = Block * TextsPerBlock;
	return {Begin, Begin + std::min(NumTexts - Begin, TextsPerBlock)};
}

FBlockedTexts TrigramIndex::GetPackageNames(const FRegistryTables& Tables)
{
	return {.Zone = EZone::Nodes, .NumTexts = static_cast<uint32>(Tables.PackageFolders.size())};
}

FBlockedTexts TrigramIndex::GetEntryTexts(const FRegistryTables& Tables)
{
	return {.Zone = EZone::Entries, .NumTexts = Tables.NumTexts(EZone::Entries)};
}

TTrigramColumns<TColumnVector> TrigramIndex::Build(const FRegistryTables& Tables, const FBlockedTexts& Texts)
{
	const FTrigramNumbers Numbers(FTextRun(Tables, true, Texts.Zone, {0, Texts.NumTexts}).Bytes);
	std::vector<uint64> Places(Numbers.Num()); // lengths of the lists, then where the next number of each goes
	VisitBlocks(Tables, Texts, Numbers,
		[&Places](std::size_t Number, uint32 Difference) { Places[Number] += CountPackedBytes(Difference); });
	TTrigramColumns<TColumnVector> Columns;
	Columns.Starts = {0};
	uint64 End = 0;
	for (std::size_t Number = 0; Number < Places.size(); ++Number)
	{
		const uint64 Length = std::exchange(Places[Number], End);
		if (Length == 0)
			continue;
		End += Length;
		Columns.Keys.push_back(Numbers.GetKey(Number));
		Columns.Starts.push_back(End);
	}
	Columns.Lists.resize(End);
	uint8* const Lists = Columns.Lists.data();
	VisitBlocks(Tables, Texts, Numbers,
		[&](std::size_t Number, uint32 Difference)
		{ Places[Number] = static_cast<uint64>(WritePacked(Lists + Places[Number], Difference) - Lists); });
	return Columns;
}

std::vector<FRowRange> TrigramIndex::FindRuns(
	const TTrigramColumns<TColumnSpan>& Trigrams, const FBlockedTexts& Texts, std::string_view FoldedValue)
{
	const bool bHasLists = FoldedValue.size() >= TrigramBytes && FoldedValue.find('\0') == std::string_view::npos;
	std::vector<FByteSpan> Lists;
	if (bHasLists && !GatherLists(Trigrams, FoldedValue, Lists))
		return {};
	if (!bHasLists || Lists.front().size() > Texts.NumBlocks() / ScanAdvantage)
		return {{0, Texts.NumTexts}};
	std::vector<FRowRange> Runs;
	for (const uint32 Block : IntersectLists(Lists, Texts.NumBlocks()))
	{
		const FRowRange Run = Texts.GetBlock(Block);
		if (!Runs.empty() && Run.Begin <= Runs.back().End)
			Runs.back().End = Run.End;
		else
			Runs.push_back(Run);
	}
	return Runs;
}
