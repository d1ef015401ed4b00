#include "Core/Base/StrongComponents.h"
#include "Support/Seed.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

namespace
{
using FEdges = std::vector<std::vector<int32>>;

/** Whether one can go from the first to the second, over at least one edge. */
std::vector<std::vector<bool>> FindReachable(const FEdges& Edges)
{
	const std::size_t Num = Edges.size();
	std::vector<std::vector<bool>> Reaches(Num, std::vector<bool>(Num));
	for (std::size_t From = 0; From < Num; ++From)
		for (const int32 To : Edges[From])
			Reaches[From][static_cast<std::size_t>(To)] = true;
	for (std::size_t Over = 0; Over < Num; ++Over)
		for (std::size_t From = 0; From < Num; ++From)
			for (std::size_t To = 0; To < Num; ++To)
				Reaches[From][To] = Reaches[From][To] || (Reaches[From][Over] && Reaches[Over][To]);
	return Reaches;
}
}

TEST(StrongComponents, GroupWhatLeadsToOneAnotherInRandomGraphs)
{
	std::mt19937 Random(GetSeed(20240607));
	for (int32 Round = 0; Round < 300; ++Round)
	{
		const auto Num = static_cast<int32>(1 + Random() % 12);
		FEdges Edges(static_cast<std::size_t>(Num));
		for (auto NumEdges = Random() % (2 * Edges.size()); NumEdges > 0; --NumEdges)
			Edges[Random() % Edges.size()].push_back(static_cast<int32>(Random() % Edges.size()));
		const std::vector<int32> Groups = FindStrongComponents(Edges);
		std::vector<std::vector<uint32>> Kept;
		for (const std::vector<int32>& Targets : Edges)
			Kept.emplace_back(Targets.begin(), Targets.end());
		EXPECT_EQ(
			FindStrongComponents(static_cast<uint32>(Num), [&](uint32 Node) { return std::span(std::as_const(Kept[Node])); }),
			Groups)
			<< "round " << Round;
		const auto Reaches = FindReachable(Edges);
		for (std::size_t A = 0; A < Edges.size(); ++A)
		{
			for (std::size_t B = 0; B < Edges.size(); ++B)
			{
				EXPECT_EQ(Groups[A] == Groups[B], A == B || (Reaches[A][B] && Reaches[B][A])) << "round " << Round;
				EXPECT_TRUE(!Reaches[A][B] || Groups[A] >= Groups[B]) << "round " << Round;
			}
			const std::vector<int32> Ring = FindRing(Edges, Groups, static_cast<int32>(A));
			EXPECT_EQ(Ring.empty(), !Reaches[A][A]) << "round " << Round;
			for (std::size_t Place = 0; Place < Ring.size(); ++Place)
			{
				const std::vector<int32>& Targets = Edges[static_cast<std::size_t>(Ring[Place])];
				const int32 Next = Ring[(Place + 1) % Ring.size()];
				EXPECT_NE(std::find(Targets.begin(), Targets.end(), Next), Targets.end()) << "round " << Round;
			}
		}
	}
}

TEST(StrongComponents, NeedNoStackForLongWays)
{
	FEdges Edges(1'000'000);
	for (std::size_t Node = 0; Node + 1 < Edges.size(); ++Node)
		Edges[Node].push_back(static_cast<int32>(Node + 1));
	EXPECT_EQ(FindStrongComponents(Edges).front(), 999'999);
	Edges.back().push_back(0);
	EXPECT_EQ(FindStrongComponents(Edges).front(), 0);
	EXPECT_EQ(FindRing(Edges, FindStrongComponents(Edges), 7).size(), Edges.size());
}
