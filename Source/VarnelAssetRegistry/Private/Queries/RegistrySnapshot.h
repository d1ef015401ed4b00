#pragma once

#include "AssetRegistry/AssetRegistry.h"
#include "Queries/RegistryNames.h"

/** One state of the registry: an image and what this process adds to it. Immutable but for names that are interned on demand; any
 * thread. */
struct FRegistrySnapshot
{
	FRegistrySnapshot(TSharedPtr<const FRegistryImage> InImage, const FRegistryScanOptions& Options);

	FAssetData MakeAssetData(uint32 Asset) const;

	TSharedPtr<const FRegistryImage> Image;
	FRegistryNames Names;
	std::vector<FString> RootFolders; // of the image's roots, absolute, with a trailing slash
	TArray<const IPackageSource*> Sources;
};
