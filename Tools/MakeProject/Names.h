#pragma once

#include "AssetClasses.h"
#include "Random.h"

#include <string>
#include <vector>

/** Makes names for assets and keeps them different within a folder, without regard to case. */
class FNameBook
{
public:
	explicit FNameBook(uint32 NumNames);

	/** Appends a name that no asset of the folder has yet. Subject is the word that the folder is about. */
	void AppendNew(std::string& Out, const FAssetClassRow& Row, uint32 Folder, std::string_view Subject, FRandom& Random);

private:
	bool Claim(uint32 Folder, std::string_view Name);

	// Open addressing over hashes alone: two names with one hash cost a needless number, never a double name.
	std::vector<uint64> Taken;
	uint64 Mask = 0;
};
