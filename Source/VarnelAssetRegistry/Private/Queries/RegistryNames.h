#pragma once

#include "CoreObject/Objects/ObjectPath.h"
#include "Image/RegistryImage.h"

/**
 * The names of an image's texts as FName, interned when they are first handed out, so that opening a large registry interns
 * nothing. Any thread.
 */
class FRegistryNames
{
public:
	explicit FRegistryNames(const FRegistryImage& InImage);

	FName GetNode(uint32 Node) const;
	/** The folder that the package lies in. */
	FName GetFolder(uint32 Package) const;
	FName GetAssetName(uint32 Asset) const;
	FTopLevelAssetPath GetClass(uint32 Class) const;
	/** As FRegistryImage::FindNode; a name that was found before costs no look at its text. */
	uint32 FindNode(FName Name) const;
	/** The package of that name, which has a file; else NoId. */
	uint32 FindPackage(FName Name) const;

private:
	struct FFree
	{
		void operator()(void* Memory) const;
	};
	/** Zero until used: a page that no query touches costs no memory. */
	template <class T>
	using TLazyColumn = std::unique_ptr<T[], FFree>;
	template <class T>
	static TLazyColumn<T> MakeColumn(std::size_t Num);

	void Remember(FName Name, uint32 Node) const;

	const FRegistryImage& Image;
	const std::size_t NumSlots;
	TLazyColumn<FName> Nodes;
	TLazyColumn<FName> Folders;
	TLazyColumn<FName> AssetNames;
	TLazyColumn<FName> ClassPackages;
	TLazyColumn<FName> ClassNames;
	TLazyColumn<uint64> Slots; // comparison id in the upper half, node in the lower; at most half of them are taken
};
