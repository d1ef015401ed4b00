#pragma once

#include "AssetRegistry/AssetData.h"

#include <functional>

struct FRegistrySnapshot;

/** Which assets a search by path asks for. */
struct FAssetPathQuery
{
	FString Text;		 // an empty one asks for nothing
	bool bExact = false; // equals the whole object path or the whole asset name; else the object path contains it
	ESearchCase Case = ESearchCase::IgnoreCase;
};

/**
 * The object paths of all assets, registry-filtered ones included, as columns: nothing is made for an asset that nobody asks
 * about. A view of one state of the registry, which it keeps: copies are cheap and stay valid across a rescan. Any thread. An
 * empty view has no assets.
 */
class FAssetPathView
{
public:
	/** Assets from Begin up to but not including End, in registry order. */
	struct FRange
	{
		int32 Begin = 0;
		int32 End = 0;

		int32 Num() const { return End - Begin; }
	};

	FAssetPathView() = default;
	explicit FAssetPathView(TSharedPtr<const FRegistrySnapshot> InSnapshot) : Snapshot(std::move(InSnapshot)) {}

	/** Visits the assets that match, each once, in registry order; not all of them once stopped, see Core/StopToken.h. */
	void Find(const FAssetPathQuery& Query, const std::function<void(FRange)>& Visit) const;

	int32 NumAssets() const;
	/** Appends what FAssetData::GetObjectPathString gives. */
	void AppendObjectPath(int32 Asset, FString& Out) const;

	/** Folders of packages ("/Game/UI"), numbered in registry order; two spellings of one folder have neighbouring
	 * numbers. */
	int32 NumFolders() const;
	int32 GetFolder(int32 Asset) const;
	FStringView GetFolderPath(int32 Folder) const;
	/** The end of the assets at the start of a range, which is not empty, that lie in the folder of its first one. */
	int32 FindEndOfFolder(FRange Assets) const;

	int32 NumClasses() const;
	int32 GetClass(int32 Asset) const;
	FTopLevelAssetPath GetClassPath(int32 Class) const;

private:
	TSharedPtr<const FRegistrySnapshot> Snapshot;
};
