#pragma once

#include "BlueprintSearch/FindInBlueprintsResult.h"

#include <atomic>
#include <mutex>

/** The entries that contain a value, by Blueprint. Once found, only lines of results are added. */
struct FIndexMatches : std::enable_shared_from_this<FIndexMatches>
{
	FBlueprintIndexView Index;
	std::vector<uint32> Entries;			 // Blueprint after Blueprint, ascending in each
	std::vector<int32> Blueprints;			 // those with at least one, in registry order
	std::vector<std::size_t> FirstEntries;	 // by Blueprint, into Entries, and the end
	TUniquePtr<FImaginaryFiBData[]> Results; // by Blueprint
	mutable std::mutex ExpandLock;			 // held while lines of a result are made

	void MakeResults();
};

/** What the searching thread and those who wait for it share. */
struct FSearchProgress
{
	std::atomic<bool> bStop = false;
	std::atomic<float> Done = 0; // 0 to 1
};

/** Finds the entries whose text or comment contains Value without regard to case. Registry-filtered Blueprints are left out. Null
 * once stopped. */
TSharedPtr<FIndexMatches> FindIndexMatches(const FBlueprintIndexView& Index, FStringView Value, FSearchProgress& Progress);
