#pragma once

#include "AssetClasses.h"

#include <optional>
#include <string>

/** What the user asked for. */
struct FProjectOptions
{
	std::string Folder;
	uint32 NumAssets = 0;
	uint64 Seed = 1;
	uint32 NumTextFiles = 0;
	FFamilySet Families = FFamilySet().set();
	uint32 BlueprintEntries = 60; // average number of search entries of a Blueprint
	uint32 Dependencies = 8;	  // average number of links of a package
	uint32 NumThreads = 1;
	bool bForce = false;
	bool bHelp = false;
};

/** Reads the command line. On wrong use returns nothing and says why in OutError. */
std::optional<FProjectOptions> ReadOptions(int NumArguments, const char* const* Arguments, std::string& OutError);

/** The help text, with examples. */
const char* GetUsage();
