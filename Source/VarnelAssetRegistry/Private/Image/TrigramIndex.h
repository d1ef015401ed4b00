#pragma once

#include "Image/RegistryTables.h"

/** Texts that an index covers: the first ones of a zone, in blocks of neighbours. */
struct FBlockedTexts
{
	EZone Zone = EZone::Num;
	uint32 NumTexts = 0;
	uint32 TextsPerBlock = 16;

	uint32 NumBlocks() const { return NumTexts / TextsPerBlock + (NumTexts % TextsPerBlock > 0 ? 1 : 0); }
	FRowRange GetBlock(uint32 Block) const;
};

/**
 * Where a folded text may stand: for every trigram, a run of three bytes, the blocks of texts where it occurs, as packed
 * differences. Blocks keep the lists short, the more so where neighbours are alike, and a block's bytes lie together, to be
 * searched in one go.
 */
namespace TrigramIndex
{
/** What the columns NameTrigrams and EntryTrigrams cover. */
FBlockedTexts GetPackageNames(const FRegistryTables& Tables);
FBlockedTexts GetEntryTexts(const FRegistryTables& Tables);

/** Indexes the folded texts. */
TTrigramColumns<TColumnVector> Build(const FRegistryTables& Tables, const FBlockedTexts& Texts);
/** Runs of texts, ascending, outside of which no text contains a folded value; all texts in one run where looking at single
 * blocks gains nothing. */
std::vector<FRowRange> FindRuns(
	const TTrigramColumns<TColumnSpan>& Trigrams, const FBlockedTexts& Texts, std::string_view FoldedValue);
}
