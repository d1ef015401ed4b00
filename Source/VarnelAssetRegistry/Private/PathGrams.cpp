#include "PathGrams.h"

#include "Core/Tasks.h"

#include <algorithm>
#include <array>

namespace
{
constexpr uint32 BitsPerByte = 6;
constexpr uint32 NumGrams = 1u << (3 * BitsPerByte);
constexpr std::size_t MaxNeedleGrams = 64; // of a long text; these alone leave hardly any block
constexpr std::size_t MaxLists = 4;		   // intersected, the shortest first
constexpr std::size_t WorthScanning = 4;   // as few blocks as these need no further list

/** Letters, digits and the commonest signs have a class of their own; all others share the rest. */
constexpr std::array<uint8, 256> MakeByteClasses()
{
	std::array<uint8, 256> Classes = {};
	constexpr std::string_view Own = "abcdefghijklmnopqrstuvwxyz0123456789/_-";
	for (std::size_t Byte = 0; Byte < Classes.size(); ++Byte)
		Classes[Byte] = static_cast<uint8>(Own.size() + Byte % ((1u << BitsPerByte) - Own.size()));
	for (std::size_t Index = 0; Index < Own.size(); ++Index)
		Classes[static_cast<uint8>(Own[Index])] = static_cast<uint8>(Index);
	return Classes;
}
constexpr std::array<uint8, 256> ByteClasses = MakeByteClasses();

template <class TVisit>
void ForEachGram(std::string_view Text, TVisit&& Visit)
{
	uint32 Gram = 0;
	for (std::size_t Index = 0; Index < Text.size(); ++Index)
	{
		Gram = (Gram << BitsPerByte | ByteClasses[static_cast<uint8>(Text[Index])]) & (NumGrams - 1);
		if (Index >= 2)
			Visit(Gram);
	}
}

/** The grams of a block's names, each once, in the order in which they are met. */
std::vector<uint32> GatherGrams(const FRegistryTables& Tables, FRowRange Packages, std::vector<uint64>& Seen)
{
	std::vector<uint32> Grams;
	for (uint32 Package = Packages.Begin; Package < Packages.End; ++Package)
	{
		ForEachGram(Tables.GetFolded(EZone::Nodes, Package),
			[&](uint32 Gram)
			{
				uint64& Word = Seen[Gram / 64];
				const uint64 Bit = uint64{1} << Gram % 64;
				if ((Word & Bit) == 0)
					Grams.push_back(Gram);
				Word |= Bit;
			});
	}
	for (const uint32 Gram : Grams)
		Seen[Gram / 64] = 0;
	return Grams;
}

std::span<const uint32> GetBlocks(const FRegistryTables& Tables, uint32 Gram)
{
	const auto Found = std::lower_bound(Tables.PathGrams.begin(), Tables.PathGrams.end(), Gram);
	if (Found == Tables.PathGrams.end() || *Found != Gram)
		return {};
	const FRowRange Range =
		FRegistryTables::RangeOf(Tables.FirstGramBlocks, static_cast<uint32>(Found - Tables.PathGrams.begin()));
	return Tables.GramBlocks.subspan(Range.Begin, Range.Num());
}

/** Keeps the blocks that are in the other list too; both ascend. */
void Intersect(std::vector<uint32>& Blocks, std::span<const uint32> Other)
{
	auto At = Other.begin();
	std::erase_if(Blocks,
		[&](uint32 Block)
		{
			std::ptrdiff_t Step = 1;
			while (Other.end() - At > Step && At[Step] < Block)
			{
				At += Step;
				Step *= 2;
			}
			At = std::lower_bound(At, At + std::min(Step + 1, Other.end() - At), Block);
			return At == Other.end() || *At != Block;
		});
}
}

void PathGrams::Build(FRegistryDraft& Draft, int32 NumThreads)
{
	const FRegistryTables Tables = Draft.View();
	const auto NumPackages = static_cast<uint32>(Tables.PackageFolders.size());
	const uint32 NumBlocks = (NumPackages + BlockPackages - 1) / BlockPackages;
	std::vector<std::vector<uint32>> GramsOfBlocks(NumBlocks);
	ParallelFor(
		static_cast<int32>(NumBlocks), 256,
		[&](int32 Begin, int32 End, int32)
		{
			std::vector<uint64> Seen(NumGrams / 64);
			for (auto Block = static_cast<uint32>(Begin); Block < static_cast<uint32>(End); ++Block)
				GramsOfBlocks[Block] =
					GatherGrams(Tables, {Block * BlockPackages, std::min(NumPackages, (Block + 1) * BlockPackages)}, Seen);
		},
		NumThreads);

	std::vector<uint32> Places(NumGrams); // first how many blocks a gram has, then where its next block goes
	for (const std::vector<uint32>& Grams : GramsOfBlocks)
	{
		for (const uint32 Gram : Grams)
			++Places[Gram];
	}
	uint32 End = 0;
	Draft.FirstGramBlocks = {0};
	for (uint32 Gram = 0; Gram < NumGrams; ++Gram)
	{
		if (Places[Gram] == 0)
			continue;
		Draft.PathGrams.push_back(Gram);
		End += std::exchange(Places[Gram], End);
		Draft.FirstGramBlocks.push_back(End);
	}
	Draft.GramBlocks.resize(End);
	for (uint32 Block = 0; Block < NumBlocks; ++Block)
	{
		for (const uint32 Gram : GramsOfBlocks[Block])
			Draft.GramBlocks[Places[Gram]++] = Block;
	}
}

TOptional<std::vector<uint32>> PathGrams::FindBlocks(const FRegistryTables& Tables, std::string_view Folded)
{
	if (Folded.size() < 3)
		return {};
	std::vector<std::span<const uint32>> Lists;
	ForEachGram(Folded.substr(0, MaxNeedleGrams + 2), [&](uint32 Gram) { Lists.push_back(GetBlocks(Tables, Gram)); });
	const std::size_t NumUsed = std::min(Lists.size(), MaxLists);
	std::partial_sort(Lists.begin(), Lists.begin() + static_cast<std::ptrdiff_t>(NumUsed), Lists.end(),
		[](const auto& A, const auto& B) { return A.size() < B.size(); });
	const std::size_t NumBlocks = (Tables.PackageFolders.size() + BlockPackages - 1) / BlockPackages;
	if (Lists[0].size() > NumBlocks / 4)
		return {};
	std::vector<uint32> Blocks(Lists[0].begin(), Lists[0].end());
	for (std::size_t List = 1; List < NumUsed && Blocks.size() > WorthScanning; ++List)
		Intersect(Blocks, Lists[List]);
	return Blocks;
}
