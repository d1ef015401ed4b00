#pragma once

#include "RegistryTables.h"

/**
 * Which folded texts of a zone may hold a value: for every run of three bytes the blocks of texts where it occurs. A block is
 * BlockTexts consecutive texts: lists stay short, and a block's bytes lie together, to be searched in one go.
 */
namespace TrigramIndex
{
inline constexpr uint32 BlockTexts = 16;

/** Fills the trigram columns from the folded texts of EZone::Entries. */
void Build(FRegistryDraft& Draft);
/** Ids, ascending, of the texts of EZone::Entries that contain a folded value. */
std::vector<uint32> FindTexts(const FRegistryTables& Tables, std::string_view FoldedValue);
}
