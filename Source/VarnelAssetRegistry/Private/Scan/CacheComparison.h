#pragma once

#include "Image/RegistryImage.h"
#include "Scan/ListedFiles.h"

/** What has happened to the files since an image was made. */
struct FCacheComparison
{
	TSharedPtr<const FRegistryImage> Image; // null: there is none, so that all listed files are unknown
	std::vector<uint32>
		FileOfPackage; // by package of the image: its number among the listed files; NoId where the record is not to be used
	std::vector<uint32> Changed; // packages of the image whose files have another stamp
	std::vector<uint32> Unknown; // listed files of no package of the image, ascending
	uint32 NumRemoved = 0;

	std::size_t NumDifferences() const { return Changed.size() + Unknown.size() + NumRemoved; }
	/** The package of that name whose record is to be used; NoId when there is none. */
	uint32 FindCarriedOver(std::string_view LongName) const;
};

/** Compares path by path; roots are the same when name and folder are. The image may be null. Files that a scope holds have
 * changed, whatever their stamps say: two changes in one tick of the file system give the same. */
FCacheComparison CompareWithListed(
	TSharedPtr<const FRegistryImage> Image, const FListedFiles& Files, const FScanScope* Changed = nullptr);
