#pragma once

#include "Core/Text/String.h"
#include "Image/RegistryImage.h"

/**
 * The image of one project in one cache folder. Below the project's folder no symbolic link is followed. Whatever goes wrong, a
 * cache that cannot be used is only slower, so the outcome is all that is told.
 */
class FRegistryCache
{
public:
	/** Both folders absolute; the cache folder need not exist. */
	FRegistryCache(const FString& ProjectFolder, const FString& CacheFolder);

	/** Absolute. In a folder that projects may share the name keeps them apart. */
	const FString& GetFileName() const { return FileName; }
	/** The image, read into memory; null when there is no sound one, with the reason. */
	TSharedPtr<const FRegistryImage> Read(EImageState& OutState) const;
	/** Creates the folder, writes to a temporary name in it and renames. False, with the reason in errno, when that does not
	 * work. */
	bool Write(const FRegistryImage& Image) const;

private:
	FString StartFolder; // links in this part of the path are the user's own
	FString InnerFolder; // links in this part are not followed; relative to the other
	FString FileName;
};
