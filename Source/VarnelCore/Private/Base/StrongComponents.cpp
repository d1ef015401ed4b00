#include "Core/Base/StrongComponents.h"

#include <algorithm>
#include <unordered_map>

namespace
{
constexpr int32 NotReached = -1;

template <class T>
auto& At(T& List, int32 Node)
{
	return List[static_cast<std::size_t>(Node)];
}

/** One depth-first walk over all nodes, with a line of its own. */
class FComponentWalk
{
public:
	explicit FComponentWalk(const std::vector<std::vector<int32>>& InEdges)
		: Edges(InEdges)
		, Lowest(InEdges.size(), NotReached)
		, Groups(InEdges.size(), NotReached)
	{
	}

	std::vector<int32> Run()
	{
		for (int32 Node = 0; Node < static_cast<int32>(Edges.size()); ++Node)
		{
			if (At(Lowest, Node) == NotReached)
				WalkFrom(Node);
		}
		return std::move(Groups);
	}

private:
	struct FVisit
	{
		int32 Node;
		int32 Order; // of the node's first visit
		std::size_t NumSeen = 0;
	};

	void WalkFrom(int32 Root)
	{
		Enter(Root);
		while (!Line.empty())
		{
			FVisit& Visit = Line.back();
			const std::vector<int32>& Targets = At(Edges, Visit.Node);
			if (Visit.NumSeen < Targets.size())
				Follow(Visit.Node, Targets[Visit.NumSeen++]);
			else
				Leave();
		}
	}

	void Enter(int32 Node)
	{
		At(Lowest, Node) = NumReached;
		Line.push_back({Node, NumReached++});
		Ungrouped.push_back(Node);
	}

	void Follow(int32 Node, int32 Target)
	{
		if (At(Lowest, Target) == NotReached)
			Enter(Target);
		else if (At(Groups, Target) == NotReached)
			At(Lowest, Node) = std::min(At(Lowest, Node), At(Lowest, Target));
	}

	/** All that the node leads to has been walked. */
	void Leave()
	{
		const FVisit Visit = Line.back();
		Line.pop_back();
		const int32 NodeLowest = At(Lowest, Visit.Node);
		if (!Line.empty())
			At(Lowest, Line.back().Node) = std::min(At(Lowest, Line.back().Node), NodeLowest);
		if (NodeLowest != Visit.Order)
			return;
		int32 Member;
		do
		{
			Member = Ungrouped.back();
			Ungrouped.pop_back();
			At(Groups, Member) = NumGroups;
		} while (Member != Visit.Node);
		++NumGroups;
	}

	const std::vector<std::vector<int32>>& Edges;
	std::vector<int32> Lowest; // earliest first visit that a node is known to lead to
	std::vector<int32> Groups;
	std::vector<FVisit> Line; // from the root down
	std::vector<int32> Ungrouped;
	int32 NumReached = 0;
	int32 NumGroups = 0;
};
}

std::vector<int32> FindStrongComponents(const std::vector<std::vector<int32>>& Edges)
{
	return FComponentWalk(Edges).Run();
}

std::vector<int32> FindRing(const std::vector<std::vector<int32>>& Edges, const std::vector<int32>& Components, int32 Start)
{
	std::vector<int32> Way;
	std::unordered_map<int32, std::ptrdiff_t> Passed; // places on the way
	int32 Node = Start;
	while (Passed.emplace(Node, static_cast<std::ptrdiff_t>(Way.size())).second)
	{
		Way.push_back(Node);
		const std::vector<int32>& Targets = At(Edges, Node);
		const auto Onward = std::find_if(
			Targets.begin(), Targets.end(), [&](int32 Target) { return At(Components, Target) == At(Components, Start); });
		if (Onward == Targets.end())
			return {};
		Node = *Onward;
	}
	return {Way.begin() + Passed.at(Node), Way.end()};
}
