#pragma once

#include "Image/RegistryImage.h"
#include "Scan/ListedFiles.h"

/** A package of the registry to be built: where its header's records lie. */
struct FPackageDraft
{
	std::string_view LongName;
	uint32 Source = 0; // index into FRegistryInput::Sources
	uint32 Record = 0; // row in that source's columns by package
	uint32 File = 0;   // among the listed files
};

struct FRegistryInput
{
	std::vector<FPackageDraft> Packages; // in registry order, every name once
	std::vector<FRegistryTables> Sources;
	const FListedFiles* Files = nullptr;
	TArray<std::pair<FTopLevelAssetPath, FTopLevelAssetPath>> ClassParents;
	FImageKey Key;
	int32 NumThreads = 0;
};

/** Merges the records into one image. The image depends on what the records say alone, not on the source that holds them. */
TSharedPtr<const FRegistryImage> BuildRegistry(const FRegistryInput& Input);
