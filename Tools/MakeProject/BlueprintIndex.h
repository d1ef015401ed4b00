#pragma once

#include "Values.h"

#include <string>
#include <vector>

/** A variable that a Blueprint declares. */
struct FVariable
{
	std::string Name;
	EValue Type = EValue::Int;
};

/** Writes the search entries of a Blueprint, MeanEntries on average: its variables, and graphs with nodes, pins and comments. */
void WriteIndex(FJsonText& Index, FRandom& Random, const std::vector<FVariable>& Variables, uint32 MeanEntries);
