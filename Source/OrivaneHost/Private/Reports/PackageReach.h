#pragma once

#include "AssetRegistry/PackageGraph.h"

#include <vector>

enum class EReach : uint8
{
	Dependencies,
	Referencers,
};

/** What is reached from some packages over any number of links, nearest first. */
struct FPackageReach
{
	struct FStep
	{
		FPackageGraphView::FNode Node;
		FPackageGraphView::FNode Via; // what it was reached from, nearer by one; NoNode for a start
		int32 Depth;				  // links from the start
	};
	std::vector<FStep> Runtime; // over links alone that the running game needs; the starts are the first
	std::vector<FStep> Editor;	// the rest: over the shortest way from a start, or from a package of Runtime with its own way
};

/** Linear in what is reached. Siblings are in the graph's order. Incomplete after a stop. Any thread. */
FPackageReach FindReach(const FPackageGraphView& Graph, const std::vector<FPackageGraphView::FNode>& Starts, EReach Reach);
