#pragma once

#include "Core/Base/HashMap.h"
#include "Queries/RegistrySnapshot.h"

/**
 * What has changed since an image was made: packages of it that are hidden, an image of the packages that stand in their place or
 * are new, and what follows from these for the graph and the classes. Small, made anew with every change; any thread.
 */
class FRegistryOverlay
{
public:
	/**
	 * Hidden are packages of the base, ascending. Null where the change cannot be told apart from what the base holds, so that
	 * only a new image is right: a name in two spellings, a package's name in two files, a class with parents from several
	 * packages, a class that becomes one of Blueprints.
	 */
	static TSharedPtr<const FRegistryOverlay> Make(
		const FRegistryPart& Base, TSharedPtr<const FRegistryPart> Part, std::vector<uint32> Hidden);

	bool IsHidden(uint32 Package) const;

	TSharedPtr<const FRegistryPart> Part;
	std::vector<uint32> Hidden; // packages of the base, ascending
	std::vector<uint32> Places; // by package of the part: the first package of the base that comes after it in registry order

	// Numbers of the snapshot by number of the part, and numbers of the part from the base's end on
	std::vector<uint32> Nodes;
	std::vector<uint32> OwnNodes;
	std::vector<uint32> Classes;
	std::vector<uint32> OwnClasses;
	std::vector<uint32> Folders;
	std::vector<uint32> OwnFolders;

	THashMap<uint32, uint32> PackageOfNode;	   // packages of the part by node of the snapshot
	std::vector<uint32> DependencyTargets;	   // the part's column in nodes of the snapshot
	THashMap<uint32, FRowRange> ReferencersOf; // by node of the snapshot, where they differ from the base's
	std::vector<uint32> ReferencerSources;	   //
	std::vector<uint8> ReferencerFlags;		   //
	THashMap<uint32, uint32> ParentOfClass;	   // where it differs from the base's, NoId: none
	THashMap<uint32, std::vector<uint32>> ChildrenOfClass;

	int64 NumHiddenAssets = 0;
	int64 NumHiddenDependencies = 0;

private:
	class FMaker;
};
