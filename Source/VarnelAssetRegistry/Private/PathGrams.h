#pragma once

#include "Core/Containers.h"
#include "RegistryTables.h"

#include <string_view>
#include <vector>

/**
 * Which blocks of neighbouring package names hold which three bytes in a row, so that a rare text is looked for in a few blocks
 * only. Neighbours share most of their names, which keeps the lists short. Bytes are those of the folded names.
 */
namespace PathGrams
{
constexpr uint32 BlockPackages = 16;

/** Fills the columns PathGrams, FirstGramBlocks and GramBlocks from the names of the packages. */
void Build(FRegistryDraft& Draft, int32 NumThreads);
/** The blocks that may hold the folded text, ascending; nothing where looking at all of them is as good. */
TOptional<std::vector<uint32>> FindBlocks(const FRegistryTables& Tables, std::string_view Folded);
}
