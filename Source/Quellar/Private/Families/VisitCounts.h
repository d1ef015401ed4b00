#pragma once

#include "Core/Base/Types.h"

#include <vector>

/**
 * Counts how often a depth-first walk meets each node of a graph, without walking: a walk that enters a node that several nodes
 * share once for each way that leads there, but none below itself. Where branches are shared, these are many more visits than
 * there are nodes; counts stop growing at Max. Only ways within a ring of nodes that lead to one another are walked, MaxRingSteps
 * of them; beyond these, such nodes count their first visit alone.
 */
class FVisitCounts
{
public:
	static constexpr int64 Max = int64{1} << 61;
	static constexpr int32 MaxRingSteps = 200'000;

	/** Edges[Node] lists where the walk goes from Node, in this order. Must outlive this. */
	explicit FVisitCounts(const std::vector<std::vector<int32>>& InEdges);

	/** By node, of a walk from Root. */
	std::vector<int64> CountFrom(int32 Root) const;

	/** A node that the walk has met, and how many of its edges it has finished since. */
	struct FStep
	{
		int32 Node;
		int32 NumEdges;
	};
	/** By node, as many visits as there were when the walk stood at the end of a line that leads down from its root. */
	std::vector<int64> CountUntil(const std::vector<FStep>& Line) const;

private:
	class FRingWalk;
	/** Where walks begin: anywhere, or below the first nodes of a line, which they must not enter. */
	struct FStart
	{
		int32 Node;
		int32 NumLine = 0;
	};
	void WalkBelowLine(const std::vector<const FStart*>& Starts, const std::vector<FStep>& Line, FRingWalk& Rings) const;
	std::vector<int64> Count(const std::vector<FStart>& Starts, const std::vector<FStep>& Line) const;

	const std::vector<std::vector<int32>>& Edges;
	std::vector<int32> Components;
	std::vector<std::vector<int32>> Members; // of each component
};
