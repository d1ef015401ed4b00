#include "Core/Base/HashMap.h"
#include "Core/Base/StrongComponents.h"
#include "Core/Threads/StopToken.h"
#include "Reports/PackageKinds.h"
#include "Reports/ProjectReports.h"

#include <algorithm>

namespace
{
using FNode = FPackageGraphView::FNode;

struct FCycle
{
	int32 Component;
	FNode First; // in registry order
	std::vector<FNode> Packages;
};

class FCycleFinder
{
public:
	FCycleFinder(const FPackageGraphView& InGraph, int32 InMaxRows) : Graph(InGraph), MaxRows(InMaxRows) {}

	FReport Run()
	{
		FindAll();
		const auto IsSmaller = [this](const FCycle& A, const FCycle& B) {
			return A.Packages.size() != B.Packages.size() ? A.Packages.size() < B.Packages.size()
														  : IsBefore(Graph, A.First, B.First);
		};
		const auto NumListed = std::min<std::ptrdiff_t>(std::ssize(Cycles), MaxRows); // each has rows
		std::partial_sort(Cycles.begin(), Cycles.begin() + NumListed, Cycles.end(), IsSmaller);
		for (int32 Number = 1; Number <= NumListed && HasRoom() && !IsStopRequested(); ++Number)
			List(Cycles[static_cast<std::size_t>(Number - 1)], Number);
		Conclude();
		return std::move(Report);
	}

private:
	void FindAll()
	{
		const auto GetTargets = [this](uint32 Node)
		{ return IsStopRequested() ? std::span<const uint32>() : Graph.GetDependencies(Node).Nodes; };
		Components = FindStrongComponents(Graph.NumNodes(), GetTargets);
		std::vector<int32> Sizes(Components.size()); // by component: there are not more of them than packages
		for (const int32 Component : Components)
			++Sizes[static_cast<std::size_t>(Component)];
		std::vector<int32> Places(Components.size(), INDEX_NONE); // in Cycles
		for (FNode Node = 0; Node < Graph.NumNodes(); ++Node)
		{
			const auto Component = static_cast<std::size_t>(Components[Node]);
			if (Sizes[Component] < 2)
				continue;
			if (Places[Component] == INDEX_NONE)
			{
				Places[Component] = static_cast<int32>(Cycles.size());
				Cycles.push_back({Components[Node], Node, {}});
			}
			FCycle& Cycle = Cycles[static_cast<std::size_t>(Places[Component])];
			Cycle.Packages.push_back(Node);
			if (IsBefore(Graph, Node, Cycle.First))
				Cycle.First = Node;
			ForEachLink(Node, [this](FNode, uint8) { ++Report.NumRows; });
		}
	}

	/** Inside the package's cycle, without one to itself. */
	template <class TVisit>
	void ForEachLink(FNode From, TVisit&& Visit) const
	{
		const auto Targets = Graph.GetDependencies(From);
		for (std::size_t Index = 0; Index < Targets.Nodes.size(); ++Index)
		{
			const FNode To = Targets.Nodes[Index];
			if (To != From && Components[To] == Components[From])
				Visit(To, Targets.Flags[Index]);
		}
	}

	bool HasRoom() const { return Report.Rows.Num() < MaxRows; }

	void List(FCycle& Cycle, int32 Number)
	{
		const THashMap<FNode, FNode> Ring = FindRing(Cycle.First);
		FNode From = Cycle.First;
		do
		{
			const FNode Next = Ring.at(From);
			ForEachLink(From,
				[&](FNode To, uint8 Flags)
				{
					if (To == Next)
						Add(Cycle, Number, From, To, Flags);
				});
			From = Next;
		} while (From != Cycle.First && HasRoom());
		PutFirst(Graph, Cycle.Packages, MaxRows);
		for (const FNode Package : Cycle.Packages)
		{
			if (!HasRoom())
				return;
			const auto OnRing = Ring.find(Package);
			ForEachLink(Package,
				[&](FNode To, uint8 Flags)
				{
					if (OnRing == Ring.end() || OnRing->second != To)
						Add(Cycle, Number, Package, To, Flags);
				});
		}
	}

	/** The next package for each of a shortest ring through Start: back from Start breadth first, until a package that Start
	 * leads to is met. */
	THashMap<FNode, FNode> FindRing(FNode Start) const
	{
		THashMap<FNode, FNode> Next;
		std::vector<FNode> Queue = {Start};
		for (std::size_t Place = 0; !Next.contains(Start); ++Place)
		{
			for (const FNode Referencer : Graph.GetReferencers(Queue[Place]).Nodes)
			{
				const bool bInCycle = Referencer != Queue[Place] && Components[Referencer] == Components[Start];
				if (bInCycle && Next.try_emplace(Referencer, Queue[Place]).second)
					Queue.push_back(Referencer);
			}
		}
		THashMap<FNode, FNode> Ring;
		for (FNode Node = Start; Ring.try_emplace(Node, Next.at(Node)).second;)
			Node = Next.at(Node);
		return Ring;
	}

	void Add(const FCycle& Cycle, int32 Number, FNode From, FNode To, uint8 Flags)
	{
		if (HasRoom())
			Report.Rows.Add({.Path = Graph.GetPackageName(To),
				.From = Graph.GetPackageName(From),
				.Type = DescribeLinkType(Flags),
				.Group = Number,
				.GroupSize = static_cast<int32>(Cycle.Packages.size())});
	}

	void Conclude()
	{
		int64 NumPackages = 0;
		std::size_t Largest = 0;
		for (const FCycle& Cycle : Cycles)
		{
			NumPackages += std::ssize(Cycle.Packages);
			Largest = std::max(Largest, Cycle.Packages.size());
		}
		Report.Totals.Add("cycles", std::ssize(Cycles));
		Report.Totals.Add("packages", NumPackages);
		Report.Totals.Add("links", Report.NumRows);
		Report.Totals.Add("largest", static_cast<int64>(Largest));
		Report.Sentence = CountThings(std::ssize(Cycles), "cycle", "cycles");
		if (!Cycles.empty())
			Report.Sentence += " of " + CountThings(NumPackages, "package", "packages") + " with " +
				CountThings(Report.NumRows, "link", "links") + ", the largest of " +
				FString::FromInt(static_cast<int64>(Largest));
	}

	const FPackageGraphView& Graph;
	const int32 MaxRows;
	std::vector<int32> Components; // by node
	std::vector<FCycle> Cycles;
	FReport Report;
};
}

FReport ProjectReports::FindCycles(const FPackageGraphView& Graph, int32 MaxRows)
{
	return FCycleFinder(Graph, MaxRows).Run();
}
