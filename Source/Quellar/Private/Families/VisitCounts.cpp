#include "Families/VisitCounts.h"

#include "Core/Base/StrongComponents.h"

#include <algorithm>

namespace
{
template <class T>
auto& At(T& List, int32 Place)
{
	return List[static_cast<std::size_t>(Place)];
}

void AddTo(int64& Count, int64 Added)
{
	Count = std::min(Count + Added, FVisitCounts::Max); // both are at most Max, so the sum fits
}

}

/** Walks the ways inside rings, node by node. */
class FVisitCounts::FRingWalk
{
public:
	FRingWalk(
		const std::vector<std::vector<int32>>& InEdges, const std::vector<int32>& InComponents, std::vector<int64>& InVisits)
		: Edges(InEdges)
		, Components(InComponents)
		, Visits(InVisits)
		, OnLine(InEdges.size())
	{
	}

	/** From now on no walk enters the node, or one does again. */
	void Block(int32 Node, bool bBlocked) { At(OnLine, Node) = bBlocked; }

	/** Adds Times visits to each node of Start's ring for every way that leads to it from Start. */
	void Walk(int32 Start, int64 Times)
	{
		Enter(Start, Times);
		while (!Line.empty())
		{
			FVisit& Visit = Line.back();
			const std::vector<int32>& Targets = At(Edges, Visit.Node);
			if (Visit.NumSeen == Targets.size())
				Leave();
			else if (const int32 Target = Targets[Visit.NumSeen++]; At(Components, Target) == At(Components, Start))
				Enter(Target, Times);
		}
	}

private:
	struct FVisit
	{
		int32 Node;
		std::size_t NumSeen = 0;
	};

	void Enter(int32 Node, int64 Times)
	{
		const bool bIsLate = ++NumSteps > MaxRingSteps;
		if (At(OnLine, Node) || (bIsLate && At(Visits, Node) > 0))
			return;
		AddTo(At(Visits, Node), Times);
		At(OnLine, Node) = true;
		Line.push_back({Node});
	}

	void Leave()
	{
		At(OnLine, Line.back().Node) = false;
		Line.pop_back();
	}

	const std::vector<std::vector<int32>>& Edges;
	const std::vector<int32>& Components;
	std::vector<int64>& Visits;
	std::vector<uint8> OnLine; // or blocked
	std::vector<FVisit> Line;
	int64 NumSteps = 0;
};

FVisitCounts::FVisitCounts(const std::vector<std::vector<int32>>& InEdges)
	: Edges(InEdges)
	, Components(FindStrongComponents(InEdges))
	, Members(InEdges.size())
{
	for (int32 Node = 0; Node < static_cast<int32>(Edges.size()); ++Node)
		At(Members, At(Components, Node)).push_back(Node);
}

std::vector<int64> FVisitCounts::CountFrom(int32 Root) const
{
	return Count({{Root}}, {});
}

std::vector<int64> FVisitCounts::CountUntil(const std::vector<FStep>& Line) const
{
	std::vector<uint8> OnLine(Edges.size());
	std::vector<FStart> Starts;
	int32 NumLine = 0;
	for (const FStep& Step : Line)
	{
		At(OnLine, Step.Node) = true;
		++NumLine;
		for (int32 Edge = 0; Edge < Step.NumEdges; ++Edge)
		{
			if (const int32 Target = At(At(Edges, Step.Node), Edge); !At(OnLine, Target))
				Starts.push_back({Target, NumLine});
		}
	}
	std::vector<int64> Visits = Count(Starts, Line);
	for (const FStep& Step : Line)
		AddTo(At(Visits, Step.Node), 1);
	return Visits;
}

/** Starts of one component, in the order of the line, which passes through a component at one stretch. */
void FVisitCounts::WalkBelowLine(const std::vector<const FStart*>& Starts, const std::vector<FStep>& Line, FRingWalk& Rings) const
{
	if (Starts.empty())
		return;
	const int32 Component = At(Components, Starts.front()->Node);
	int32 First = Starts.front()->NumLine - 1;
	while (First > 0 && At(Components, At(Line, First - 1).Node) == Component)
		--First;
	int32 End = First;
	for (const FStart* Start : Starts)
	{
		for (; End < Start->NumLine; ++End)
			Rings.Block(At(Line, End).Node, true);
		Rings.Walk(Start->Node, 1);
	}
	while (End > First)
		Rings.Block(At(Line, --End).Node, false);
}

/** Edges lead to components with the same or a lower number, so all ways into one are counted before those out of it. */
std::vector<int64> FVisitCounts::Count(const std::vector<FStart>& Starts, const std::vector<FStep>& Line) const
{
	std::vector<int64> Visits(Edges.size());
	std::vector<int64> Entries(Edges.size());					  // from outside the node's component
	std::vector<std::vector<const FStart*>> Inside(Edges.size()); // starts below a line in the same component, by component
	for (const FStart& Start : Starts)
	{
		const int32 Component = At(Components, Start.Node);
		if (Start.NumLine > 0 && At(Components, At(Line, Start.NumLine - 1).Node) == Component)
			At(Inside, Component).push_back(&Start);
		else
			AddTo(At(Entries, Start.Node), 1);
	}
	FRingWalk Rings(Edges, Components, Visits);
	for (int32 Component = static_cast<int32>(Members.size()) - 1; Component >= 0; --Component)
	{
		WalkBelowLine(At(Inside, Component), Line, Rings);
		for (const int32 Node : At(Members, Component))
		{
			if (At(Members, Component).size() == 1)
				At(Visits, Node) = At(Entries, Node);
			else if (At(Entries, Node) > 0)
				Rings.Walk(Node, At(Entries, Node));
		}
		for (const int32 Node : At(Members, Component))
		{
			for (const int32 Target : At(Edges, Node))
			{
				if (At(Components, Target) != Component)
					AddTo(At(Entries, Target), At(Visits, Node));
			}
		}
	}
	return Visits;
}
