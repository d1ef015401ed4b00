#include "Core/Base/StrongComponents.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace
{
constexpr int32 NotReached = -1;

template <class T>
auto& At(T& List, int32 Node)
{
	return List[static_cast<std::size_t>(Node)];
}

/** One depth-first walk over all nodes, with a line of its own. TGetTargets gives a span of integers for a node. */
template <class TGetTargets>
class FComponentWalk
{
public:
	FComponentWalk(std::size_t NumNodes, const TGetTargets& InGetTargets)
		: GetTargets(InGetTargets)
		, Lowest(NumNodes, NotReached)
		, Groups(NumNodes, NotReached)
	{
	}

	std::vector<int32> Run()
	{
		for (int32 Node = 0; Node < static_cast<int32>(Lowest.size()); ++Node)
		{
			if (At(Lowest, Node) == NotReached)
				WalkFrom(Node);
		}
		return std::move(Groups);
	}

private:
	using FTargets = decltype(std::declval<TGetTargets>()(0));

	struct FVisit
	{
		int32 Node;
		int32 Order; // of the node's first visit
		FTargets Unseen;
	};

	void WalkFrom(int32 Root)
	{
		Enter(Root);
		while (!Line.empty())
		{
			FVisit& Visit = Line.back();
			if (Visit.Unseen.empty())
			{
				Leave();
				continue;
			}
			const auto Target = static_cast<int32>(Visit.Unseen.front());
			Visit.Unseen = Visit.Unseen.subspan(1);
			Follow(Visit.Node, Target);
		}
	}

	void Enter(int32 Node)
	{
		At(Lowest, Node) = NumReached;
		Line.push_back({Node, NumReached++, GetTargets(Node)});
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

	const TGetTargets& GetTargets;
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
	const auto GetTargets = [&Edges](int32 Node) { return std::span(At(Edges, Node)); };
	return FComponentWalk(Edges.size(), GetTargets).Run();
}

std::vector<int32> FindStrongComponents(uint32 NumNodes, const std::function<std::span<const uint32>(uint32 Node)>& GetTargets)
{
	const auto GetTargetsOf = [&GetTargets](int32 Node) { return GetTargets(static_cast<uint32>(Node)); };
	return FComponentWalk(NumNodes, GetTargetsOf).Run();
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
