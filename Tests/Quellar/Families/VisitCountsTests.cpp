#include "Families/VisitCounts.h"
#include "Support/Seed.h"

#include <gtest/gtest.h>
#include <random>

namespace
{
using FEdges = std::vector<std::vector<int32>>;

/** The walk that is counted, step by step: enters shared nodes again, but none below itself. */
class FPlainWalk
{
public:
	/** Stops before the visit of that number. */
	FPlainWalk(const FEdges& InEdges, int64 InMaxVisits) : Visits(InEdges.size()), Edges(InEdges), MaxVisits(InMaxVisits)
	{
		Enter(0);
	}

	std::vector<int64> Visits;
	std::vector<FVisitCounts::FStep> Line; // where it stopped
	int64 NumVisits = 0;

private:
	void Enter(int32 Node)
	{
		for (const FVisitCounts::FStep& Step : Line)
			if (Step.Node == Node)
				return;
		bStopped = NumVisits == MaxVisits;
		if (bStopped)
			return;
		++NumVisits;
		++Visits[static_cast<std::size_t>(Node)];
		Line.push_back({Node, 0});
		for (const int32 Target : Edges[static_cast<std::size_t>(Node)])
		{
			Enter(Target);
			if (bStopped)
				return;
			++Line.back().NumEdges;
		}
		Line.pop_back();
	}

	const FEdges& Edges;
	const int64 MaxVisits;
	bool bStopped = false;
};

/** Some have rings, all have shared branches, an edge may be there several times. */
FEdges MakeRandomGraph(std::mt19937& Random)
{
	FEdges Edges(1 + Random() % 9);
	const bool bMayReturn = Random() % 2 == 0;
	for (std::size_t Left = Random() % (2 * Edges.size()); Left > 0; --Left)
	{
		const std::size_t From = Random() % Edges.size();
		const std::size_t First = bMayReturn ? 0 : From + 1;
		if (First < Edges.size())
			Edges[From].push_back(static_cast<int32>(First + Random() % (Edges.size() - First)));
	}
	return Edges;
}
}

TEST(VisitCounts, EqualThoseOfAWalk)
{
	std::mt19937 Random(GetSeed(71));
	for (int32 Round = 0; Round < 2000; ++Round)
	{
		SCOPED_TRACE("round " + std::to_string(Round));
		const FEdges Edges = MakeRandomGraph(Random);
		const FVisitCounts Counts(Edges);
		const FPlainWalk Whole(Edges, INT64_MAX);
		EXPECT_EQ(Counts.CountFrom(0), Whole.Visits);
		for (int32 Stop = 0; Stop < 4; ++Stop)
		{
			const auto MaxVisits = static_cast<int64>(Random() % static_cast<uint64>(Whole.NumVisits));
			const FPlainWalk Part(Edges, MaxVisits);
			EXPECT_EQ(Counts.CountUntil(Part.Line), Part.Visits) << "before visit " << MaxVisits;
		}
	}
}

TEST(VisitCounts, EndSomewhere)
{
	FEdges Ways(1001); // each node leads to the next one twice
	FEdges Ring(1001); // every node leads to every other one
	for (int32 Node = 0; Node < 1000; ++Node)
	{
		Ways[static_cast<std::size_t>(Node)] = {Node + 1, Node + 1};
		for (int32 Other = 0; Other <= 1000; ++Other)
			Ring[static_cast<std::size_t>(Node)].push_back(Other);
	}
	EXPECT_EQ(FVisitCounts(Ways).CountFrom(0)[40], int64{1} << 40);
	EXPECT_EQ(FVisitCounts(Ways).CountFrom(0)[1000], FVisitCounts::Max);
	for (const int64 Visits : FVisitCounts(Ring).CountFrom(0))
		EXPECT_GT(Visits, 0);
}
