#pragma once

#include "Core/Base/Containers.h"
#include "Image/ImageBytes.h"
#include "Image/RegistryTables.h"

#include <string>

/** What the content of an image depends on besides the files. */
struct FImageKey
{
	uint64 Readers = 0; // formats that were read and the versions of their readers
	uint64 Classes = 0; // the class parents that were declared
	friend bool operator==(const FImageKey&, const FImageKey&) = default;
};

enum class EImageState : uint8
{
	Sound,
	Missing, // no file
	Foreign, // of another version or machine, or no image at all
	Damaged,
};

/**
 * The registry at one moment: all columns in one block of bytes that holds no pointers. The same block lies in memory and in
 * the cache file. Immutable; any thread. The same project gives the same bytes, however it was read.
 */
class FRegistryImage
{
public:
	/** Lays the columns out and frees them on the way. */
	static TSharedPtr<const FRegistryImage> Build(FRegistryDraft&& Draft, const FImageKey& Key);
	/** Takes bytes of unknown origin: null, with the reason, unless they are an image, undamaged, of this version and machine. */
	static TSharedPtr<const FRegistryImage> Open(FImageBytes Bytes, EImageState& OutState);
	/** What the start of a file of that size shows: Sound when the rest is worth reading. */
	static EImageState LookAtStart(std::string_view Start, std::size_t NumFileBytes);
	static constexpr std::size_t NumStartBytes = 4096; // that tell
	/** An image without packages. */
	static TSharedPtr<const FRegistryImage> MakeEmpty();

	const FImageKey& GetKey() const { return Key; }
	const FRegistryTables& GetTables() const { return Tables; }
	std::string_view GetBytes() const { return Bytes.View(); }

	uint32 NumPackages() const { return static_cast<uint32>(Tables.PackageFolders.size()); }
	uint32 NumNodes() const { return Tables.NumTexts(EZone::Nodes); }
	uint32 NumAssets() const { return static_cast<uint32>(Tables.AssetPackages.size()); }
	uint32 NumClasses() const { return Tables.NumTexts(EZone::Classes); }

	/** The node of a long package name, the class of a class path, without regard to case; NoId when it is not known. */
	uint32 FindNode(std::string_view Name) const;
	uint32 FindClass(std::string_view Path) const;
	/** The package of that name, which has a file; else NoId. */
	uint32 FindPackage(std::string_view Name) const;
	/** The first package that does not come before a folded name in registry order; the end where there is none. */
	uint32 FindPlaceOfPackage(std::string_view Folded) const { return LowerBound(EZone::Nodes, {0, NumPackages()}, Folded); }
	/** The packages in a folder and all folders below it ("/Game/UI"), and the ids of the folder itself: one for each of its
	 * spellings. */
	FRowRange FindPackagesBelow(std::string_view Folder) const;
	FRowRange FindFolders(std::string_view Folder) const;
	/** Appends the class and all below it, parents before children. */
	void GatherDerivedClasses(uint32 Class, std::vector<uint32>& OutClasses) const;

	std::string_view GetAssetName(uint32 Asset) const;
	/** "" for an asset that lies directly in its package. */
	std::string_view GetAssetOuter(uint32 Asset) const;
	/** "/Game/A.A" */
	void AppendObjectPath(uint32 Asset, FString& Out) const;
	bool IsFiltered(uint32 Asset) const { return (Tables.AssetFlags[Asset] & EAssetFlags::RegistryFiltered) != 0; }
	/** Path of a package's file below its root's folder. */
	std::string GetRelativePath(uint32 File) const;
	uint32 GetRootOfFile(uint32 File) const;

	FRegistryImage() = default; // for the functions above

private:
	uint32 LowerBound(EZone Zone, FRowRange Sorted, std::string_view Folded) const;
	/** NoId when no text of the range equals the folded one. */
	uint32 FindSorted(EZone Zone, FRowRange Sorted, std::string_view Folded) const;

	FImageBytes Bytes;
	FImageKey Key;
	FRegistryTables Tables; // into Bytes
};
