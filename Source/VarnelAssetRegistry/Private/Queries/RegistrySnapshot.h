#pragma once

#include "AssetRegistry/AssetRegistry.h"
#include "Queries/RegistryNames.h"

/** An image and what this process adds to it. Immutable but for names that are interned on demand; any thread. */
struct FRegistryPart
{
	FRegistryPart(TSharedPtr<const FRegistryImage> InImage, const FRegistryScanOptions& Options);

	FAssetData MakeAssetData(uint32 Asset) const;
	/** Absolute; "" for NoId. */
	FString GetFileName(uint32 Package, const IPackageSource*& OutSource) const;

	TSharedPtr<const FRegistryImage> Image;
	FRegistryNames Names;
	std::vector<FString> RootFolders; // of the image's roots, absolute, with a trailing slash
	TArray<const IPackageSource*> Sources;
};

class FRegistryOverlay;

/**
 * One state of the registry: an image of all packages and, where files have changed since it was made, an overlay that hides some
 * of them and adds others. Nodes, assets, classes and folders of both have one numbering: the image's own numbers, and those of
 * the overlay's from their end on. Any thread.
 */
struct FRegistrySnapshot
{
	explicit FRegistrySnapshot(TSharedPtr<const FRegistryPart> InBase, TSharedPtr<const FRegistryOverlay> InOverlay = nullptr)
		: Base(std::move(InBase))
		, Overlay(std::move(InOverlay))
	{
	}

	/** A row of one of the parts. */
	struct FRow
	{
		const FRegistryPart& Part;
		uint32 Row;

		const FRegistryTables& GetTables() const { return Part.Image->GetTables(); }
	};
	struct FNeighbours
	{
		std::span<const uint32> Nodes;
		std::span<const uint8> Flags;
	};

	uint32 NumNodes() const;
	/** NoId for a package that nothing is known of. */
	uint32 FindNode(FName Name) const;
	uint32 FindNode(std::string_view Name) const;
	FName GetNodeName(uint32 Node) const;
	std::string_view GetNodeText(uint32 Node) const;
	FNeighbours GetDependencies(uint32 Node) const;
	FNeighbours GetReferencers(uint32 Node) const;
	/** The package of a node in the part that holds it; its row is NoId where it has no file. */
	FRow FindPackage(uint32 Node) const;
	/** In registry order. */
	void ForEachPackage(const std::function<void(const FRow& Package)>& Visit) const;
	/** Of a package. */
	FRowRange GetAssets(const FRow& Package) const;

	FRow GetAsset(uint32 Asset) const;
	FAssetData MakeAssetData(uint32 Asset) const;
	bool IsFiltered(uint32 Asset) const;
	/** "/Game/A.A" */
	void AppendObjectPath(uint32 Asset, FString& Out) const;

	/** NoId for an unknown one. */
	uint32 FindClass(std::string_view Path) const;
	uint32 GetClassOf(uint32 Asset) const;
	FTopLevelAssetPath GetClassPath(uint32 Class) const;
	uint32 GetParentClass(uint32 Class) const;
	/** Appends the class and all below it, parents before children. */
	void GatherDerivedClasses(uint32 Class, std::vector<uint32>& OutClasses) const;
	uint32 NumClasses() const;

	uint32 NumFolders() const;
	uint32 GetFolderOf(uint32 Asset) const;
	std::string_view GetFolderPath(uint32 Folder) const;

	/** What is there, without what is hidden. */
	uint32 NumPackages() const;
	uint32 NumAssets() const;
	int64 NumDependencies() const;
	/** By class, registry-filtered assets included. */
	std::vector<int32> CountAssetsByClass() const;

	TSharedPtr<const FRegistryPart> Base;
	TSharedPtr<const FRegistryOverlay> Overlay; // null: nothing has changed

private:
	/** The node of the numbering has a file, or others refer to it; a change may have taken both away. */
	bool IsKnown(uint32 Node) const;
};
