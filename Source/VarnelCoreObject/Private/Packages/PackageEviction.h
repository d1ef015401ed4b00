#pragma once

#include "Core/Base/Types.h"

#include <vector>

/** A loaded package as the choice of what stays in memory sees it. */
struct FLoadedPackageUse
{
	int64 NumBytes = 0;
	uint64 LastUse = 0; // higher: used later
	bool bPinned = false;
	std::vector<int32> References; // places of packages that this one refers to
};

/**
 * By place, whether a package stays. Pinned packages stay, with everything that they refer to. Of the others those stay that were
 * used last, after what they refer to, as long as all together take at most MaxBytes. No package that stays refers to one that
 * goes. Linear in packages and references.
 */
std::vector<uint8> ChooseKeptPackages(const std::vector<FLoadedPackageUse>& Packages, int64 MaxBytes);
/** By place, whether a package stays: those whose place is set in Kept, but none that refers to one that goes. */
void DropReferencers(const std::vector<FLoadedPackageUse>& Packages, std::vector<uint8>& Kept);
