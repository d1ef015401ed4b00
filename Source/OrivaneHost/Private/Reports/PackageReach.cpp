#include "Reports/PackageReach.h"

#include "Core/Threads/StopToken.h"
#include "CoreObject/Packages/PackageSource.h"

namespace
{
using FNode = FPackageGraphView::FNode;
using FStep = FPackageReach::FStep;

class FReachWalk
{
public:
	FReachWalk(const FPackageGraphView& InGraph, EReach InReach) : Graph(InGraph), Reach(InReach), Seen(InGraph.NumNodes()) {}

	FPackageReach Run(const std::vector<FNode>& Starts)
	{
		for (const FNode Start : Starts)
			Add({Start, FPackageGraphView::NoNode, 0}, Found.Runtime);
		for (std::size_t Next = 0; Next < Found.Runtime.size() && !IsStopRequested(); ++Next)
		{
			const FStep Step = Found.Runtime[Next];
			if (!Expand(Step, EDependencyFlags::Game, Found.Runtime))
				LeadingOn.push_back(Step);
		}
		RunEditor();
		return std::move(Found);
	}

private:
	/** Depth by depth, as packages of both parts lead on to what only the editor reaches. */
	void RunEditor()
	{
		std::size_t NextRuntime = 0;
		std::size_t NextEditor = 0;
		for (int32 Depth = 0; NextRuntime < LeadingOn.size() || NextEditor < Found.Editor.size(); ++Depth)
		{
			ExpandDepth(LeadingOn, NextRuntime, Depth);
			ExpandDepth(Found.Editor, NextEditor, Depth);
			if (IsStopRequested())
				return;
		}
	}

	void ExpandDepth(const std::vector<FStep>& Steps, std::size_t& Next, int32 Depth)
	{
		for (; Next < Steps.size() && Steps[Next].Depth == Depth && !IsStopRequested(); ++Next)
		{
			const FStep Step = Steps[Next]; // the list may grow
			Expand(Step, 0, Found.Editor);
		}
	}

	/** False where links without the flags lead on to what has not been seen. */
	bool Expand(const FStep& Step, uint8 WantedFlags, std::vector<FStep>& Out)
	{
		const auto Neighbours =
			Reach == EReach::Dependencies ? Graph.GetDependencies(Step.Node) : Graph.GetReferencers(Step.Node);
		bool bWhole = true;
		for (std::size_t Index = 0; Index < Neighbours.Nodes.size(); ++Index)
		{
			const FNode Neighbour = Neighbours.Nodes[Index];
			if (Seen[Neighbour])
				continue;
			if ((Neighbours.Flags[Index] & WantedFlags) == WantedFlags)
				Add({Neighbour, Step.Node, Step.Depth + 1}, Out);
			else
				bWhole = false;
		}
		return bWhole;
	}

	void Add(FStep Step, std::vector<FStep>& Out)
	{
		if (!Seen[Step.Node])
			Out.push_back(Step);
		Seen[Step.Node] = true;
	}

	const FPackageGraphView& Graph;
	const EReach Reach;
	std::vector<uint8> Seen;	  // by node
	std::vector<FStep> LeadingOn; // of the runtime part: those with other links that may lead further
	FPackageReach Found;
};
}

FPackageReach FindReach(const FPackageGraphView& Graph, const std::vector<FNode>& Starts, EReach Reach)
{
	return FReachWalk(Graph, Reach).Run(Starts);
}
