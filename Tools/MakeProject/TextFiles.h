#pragma once

#include "ProjectPlan.h"

#include <array>

/** Words that stand in a known share of the text files and nowhere else, for searches with a known number of hits. */
constexpr std::array<std::string_view, 2> RareWords = {"glimmerroot", "Фонарщик"};

/** One file of plain text. Its buffers serve one file after another. */
struct FTextFile
{
	std::string Folder; // relative to the project
	std::string Name;
	std::string Content;
	bool bUtf16 = false;
	std::array<bool, RareWords.size()> bHasRareWord = {};
};

/** Makes text file Index of the project: kind, place, size and content are drawn from its own random numbers. */
void MakeTextFile(const FProjectPlan& Plan, uint32 Index, FTextFile& File);
