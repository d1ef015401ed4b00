#include "Core/Threads/StopToken.h"
#include "Reports/PackageKinds.h"
#include "Reports/ProjectReports.h"

#include <algorithm>

namespace
{
using FNode = FPackageGraphView::FNode;

constexpr int32 Unreached = -1;
constexpr int64 MostWays = int64{1} << 53; // exact in JSON; nobody counts further

/** All shortest ways along dependencies. */
class FWayFinder
{
public:
	FWayFinder(const FPackageGraphView& InGraph, FNode InFrom, FNode InTo)
		: Graph(InGraph)
		, From(InFrom)
		, To(InTo)
		, Distances(InGraph.NumNodes(), Unreached)
	{
		MeasureDistances();
	}

	bool HasWay() const { return Distances[From] != Unreached; }
	int32 GetLength() const { return Distances[From]; }

	/** Level by level from From on, over what lies on shortest ways alone. */
	int64 CountWays() const
	{
		std::vector<int64> Counts(Distances.size());
		std::vector<FNode> Level = {From};
		Counts[From] = 1;
		for (int32 Left = GetLength(); Left > 0 && !IsStopRequested(); --Left)
		{
			std::vector<FNode> Next;
			for (const FNode Node : Level)
			{
				for (const FNode Target : Graph.GetDependencies(Node).Nodes)
				{
					if (Distances[Target] != Left - 1)
						continue;
					if (Counts[Target] == 0)
						Next.push_back(Target);
					Counts[Target] = std::min(Counts[Target] + Counts[Node], MostWays);
				}
			}
			Level = std::move(Next);
		}
		return Counts[To];
	}

	/** Depth first in the order of dependencies. Every step leads on to To, so that nothing is walked in vain. */
	void List(int32 MaxRows, FReport& Report) const
	{
		FPackageKinds Kinds(Graph);
		std::vector<FPlace> Line = {{From, 0}};
		for (int32 Number = 1; !Line.empty() && !IsStopRequested();)
		{
			const FNode Node = Line.back().Node;
			if (Node == To)
			{
				if (Number > 1 && Report.Rows.Num() + std::ssize(Line) > MaxRows)
					return;
				AddRows(Line, Number++, Kinds, Report);
			}
			const FPackageGraphView::FNeighbours Targets = Graph.GetDependencies(Node);
			std::size_t& Next = Line.back().Next;
			while (Next < Targets.Nodes.size() && (Node == To || Distances[Targets.Nodes[Next]] != Distances[Node] - 1))
				++Next;
			if (Next < Targets.Nodes.size())
				Line.push_back({Targets.Nodes[Next++], 0}); // Next is of no use any more
			else
				Line.pop_back();
		}
	}

private:
	struct FPlace
	{
		FNode Node;
		std::size_t Next; // dependency to follow
	};

	/** To To, back from there until From is reached. */
	void MeasureDistances()
	{
		std::vector<FNode> Queue = {To};
		Distances[To] = 0;
		for (std::size_t Place = 0; Place < Queue.size() && !HasWay() && !IsStopRequested(); ++Place)
		{
			for (const FNode Referencer : Graph.GetReferencers(Queue[Place]).Nodes)
			{
				if (Distances[Referencer] != Unreached)
					continue;
				Distances[Referencer] = Distances[Queue[Place]] + 1;
				Queue.push_back(Referencer);
			}
		}
	}

	void AddRows(const std::vector<FPlace>& Line, int32 Number, FPackageKinds& Kinds, FReport& Report) const
	{
		for (std::size_t Place = 0; Place < Line.size(); ++Place)
		{
			FReportRow Row{.Path = Graph.GetPackageName(Line[Place].Node),
				.Kind = Kinds.Get(Line[Place].Node),
				.Depth = static_cast<int32>(Place),
				.Group = Number};
			if (Place > 0)
			{
				const FPlace& Before = Line[Place - 1];
				Row.Via = Graph.GetPackageName(Before.Node);
				Row.Type = DescribeLinkType(Graph.GetDependencies(Before.Node).Flags[Before.Next - 1]);
			}
			Report.Rows.Add(std::move(Row));
		}
	}

	const FPackageGraphView& Graph;
	const FNode From;
	const FNode To;
	std::vector<int32> Distances; // by node; complete up to the level before From's
};

FReport MakeReport(const FWayFinder& Finder, int32 MaxRows)
{
	FReport Report;
	const int64 NumWays = Finder.HasWay() ? Finder.CountWays() : 0;
	if (Finder.HasWay())
		Finder.List(MaxRows, Report);
	const int64 RowsOfWay = Finder.GetLength() + 1;
	Report.NumRows = NumWays > MostWays / std::max(RowsOfWay, int64{1}) ? MostWays : NumWays * RowsOfWay;
	Report.Totals.Add("ways", NumWays);
	Report.Totals.Add("length", std::max(Finder.GetLength(), 0));
	return Report;
}

FString Describe(const FPackageGraphView& Graph, FNode From, FNode To)
{
	return FString(" from ") + Graph.GetPackageName(From) + " to " + Graph.GetPackageName(To);
}

FString Describe(const FPackageGraphView& Graph, const FReport& Report, FNode From, FNode To)
{
	return CountThings(*Report.Totals.Find("ways"), "shortest way", "shortest ways") + " of " +
		CountThings(*Report.Totals.Find("length"), "link", "links") + Describe(Graph, From, To);
}
}

FReport ProjectReports::FindWays(const FPackageGraphView& Graph, FNode From, FNode To, int32 MaxRows)
{
	const FWayFinder There(Graph, From, To);
	if (There.HasWay())
	{
		FReport Report = MakeReport(There, MaxRows);
		Report.Totals.Add("reversed", 0);
		Report.Sentence = Describe(Graph, Report, From, To);
		return Report;
	}
	const FWayFinder Back(Graph, To, From);
	FReport Report = MakeReport(Back, MaxRows);
	Report.Totals.Add("reversed", Back.HasWay() ? 1 : 0);
	Report.Sentence = "No way" + Describe(Graph, From, To) +
		(Back.HasWay() ? ", but " + Describe(Graph, Report, To, From) : FString(", and none back"));
	return Report;
}
