#include "Scan/DerivedColumns.h"

#include "Scan/GroupByRow.h"

namespace
{
/** By class, whether it is Topmost or below it. */
std::vector<bool> FindClassesBelow(const std::vector<uint32>& Parents, uint32 Topmost)
{
	std::vector<bool> IsBelow(Parents.size());
	for (uint32 Class = 0; Class < IsBelow.size(); ++Class)
	{
		uint32 At = Class;
		while (At != NoId && At != Topmost)
			At = Parents[At];
		IsBelow[Class] = At != NoId;
	}
	return IsBelow;
}
}

void DerivedColumns::AddReferencers(FRegistryDraft& Draft)
{
	const std::size_t NumNodes = Draft.FirstDependencies.size() - 1;
	const auto ForEachEdge = [&Draft, NumNodes](const auto& Visit)
	{
		for (uint32 Node = 0; Node < NumNodes; ++Node)
		{
			const FRowRange Edges = FRegistryTables::RangeOf(Draft.FirstDependencies, Node);
			for (uint32 Edge = Edges.Begin; Edge < Edges.End; ++Edge)
				Visit(Draft.DependencyTargets[Edge], Node, Draft.DependencyFlags[Edge]);
		}
	};
	GroupByRow(NumNodes, ForEachEdge, Draft.FirstReferencers, Draft.ReferencerSources, Draft.ReferencerFlags);
}

void DerivedColumns::AddIndexedAssets(FRegistryDraft& Draft, uint32 Topmost)
{
	const std::vector<bool> IsBlueprint = FindClassesBelow(Draft.ClassParents, Topmost);
	for (uint32 Package = 0; Package < Draft.PackageFolders.size(); ++Package)
	{
		if (Draft.FirstEntries[Package] == Draft.FirstEntries[Package + 1])
			continue;
		uint32 Asset = Draft.FirstAssets[Package];
		while (Asset < Draft.FirstAssets[Package + 1] && !IsBlueprint[Draft.AssetClasses[Asset]])
			++Asset;
		if (Asset < Draft.FirstAssets[Package + 1])
			Draft.IndexedAssets.push_back(Asset);
	}
}

void DerivedColumns::AddUses(FRegistryDraft& Draft, uint32 NumTexts)
{
	// Entries of packages without a Blueprint mean nothing.
	const auto ForEachUse = [&Draft](const auto& Visit)
	{
		for (const uint32 Asset : Draft.IndexedAssets)
		{
			const FRowRange Entries = FRegistryTables::RangeOf(Draft.FirstEntries, Draft.AssetPackages[Asset]);
			for (uint32 Entry = Entries.Begin; Entry < Entries.End; ++Entry)
			{
				Visit(Draft.EntryTexts[Entry], Entry);
				if (Draft.EntryComments[Entry] != NoId && Draft.EntryComments[Entry] != Draft.EntryTexts[Entry])
					Visit(Draft.EntryComments[Entry], Entry);
			}
		}
	};
	GroupByRow(NumTexts, ForEachUse, Draft.FirstUses, Draft.Uses);
}
