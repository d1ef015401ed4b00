#pragma once

#include "AssetRegistry/AssetData.h"

#include <span>

struct FRegistrySnapshot;

/**
 * The package dependency graph by numbers, for walks over many packages: the same neighbours in the same order as
 * IAssetRegistry::GetDependencies and GetReferencers, without making a name for each. A view of one state of the registry, which
 * it keeps: copies are cheap and stay valid across a rescan. Any thread. An empty view has no packages.
 *
 * A node is a package with a file or one that others refer to, from 0 on; nodes that differ in case alone are one.
 */
class FPackageGraphView
{
public:
	using FNode = uint32;
	static constexpr FNode NoNode = UINT32_MAX;

	/** Parallel lists, valid as long as a copy of the view. */
	struct FNeighbours
	{
		std::span<const FNode> Nodes;
		std::span<const uint8> Flags; // EDependencyFlags

		int32 Num() const { return static_cast<int32>(Nodes.size()); }
	};
	/** Assets from Begin up to but not including End, in file order. */
	struct FAssetRange
	{
		uint32 Begin = 0;
		uint32 End = 0;
	};

	FPackageGraphView() = default;
	explicit FPackageGraphView(TSharedPtr<const FRegistrySnapshot> InSnapshot) : Snapshot(std::move(InSnapshot)) {}

	/** Nodes are below it; one that a change has left without a file and without referencers may be among them. */
	FNode NumNodes() const;
	/** NoNode for a package that nothing is known of. */
	FNode FindNode(FName PackageName) const;
	FNeighbours GetDependencies(FNode Node) const;
	FNeighbours GetReferencers(FNode Node) const;
	/** Long package name. */
	FStringView GetPackageName(FNode Node) const;

	/** False for a package that others refer to and that does not exist, or is none of the project's ("/Script/Engine"). */
	bool HasFile(FNode Node) const;
	/** All assets, registry-filtered ones included; none for a package without a file. */
	FAssetRange GetAssets(FNode Node) const;
	bool IsRegistryFiltered(uint32 Asset) const;
	FStringView GetAssetName(uint32 Asset) const;
	FTopLevelAssetPath GetAssetClass(uint32 Asset) const;
	/** Classes and folders by number, for counting: below NumClasses and NumFolders. */
	uint32 GetClassNumber(uint32 Asset) const;
	uint32 NumClasses() const;
	FTopLevelAssetPath GetClassPath(uint32 Class) const;
	uint32 GetFolderNumber(uint32 Asset) const;
	uint32 NumFolders() const;
	/** "/Game/UI" */
	FStringView GetFolderPath(uint32 Folder) const;
	/** Appends what FAssetData::GetObjectPathString gives. */
	void AppendObjectPath(uint32 Asset, FString& Out) const;

private:
	TSharedPtr<const FRegistrySnapshot> Snapshot;
};
