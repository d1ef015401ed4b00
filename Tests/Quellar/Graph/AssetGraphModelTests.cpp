// The traversal against a second one, written from the rules alone over plain adjacency lists, on random graphs.

#include "Quellar/Graph/AssetGraphService.h"
#include "Support/Seed.h"
#include "Support/TestProject.h"

#include <algorithm>
#include <list>
#include <map>
#include <random>
#include <set>

namespace
{
constexpr int32 NumGraphs = 3000;

struct FModelEdge
{
	int32 Target = 0;
	bool bGame = true;
};

struct FModelPackage
{
	std::string Name;
	std::string Kind; // "" without a visible asset
	bool bHighSignal = false;
	bool bExcluded = false;
	std::vector<FModelEdge> Dependencies; // in file order
};

using FModelGraph = std::vector<FModelPackage>; // in registry order

struct FKindRow
{
	const char* Class;
	const char* Kind;
	bool bHighSignal;
};
constexpr FKindRow Kinds[] = {{"Blueprint", "Blueprint", true}, {"WidgetBlueprint", "WidgetBlueprint", true},
	{"AnimBlueprint", "AnimBlueprint", true}, {"BehaviorTree", "BehaviorTree", true}, {"EnvQuery", "EnvQuery", true},
	{"DataAsset", "DataAsset", true}, {"PrimaryDataAsset", "DataAsset", true}, {"DataTable", "DataTable", true},
	{"UserDefinedEnum", "Enum", true}, {"StateTree", "StateTree", true}, {"BlackboardData", "Blackboard", true},
	{"UserDefinedStruct", "Struct", true}, {"World", "World", true}, {"Material", "Material", false},
	{"NiagaraSystem", "NiagaraSystem", false}, {"StaticMesh", "uasset", false}};

class FDice
{
public:
	explicit FDice(uint32 Seed) : Random(Seed) {}
	int32 Below(int32 Bound) { return static_cast<int32>(Random() % static_cast<uint32>(Bound)); }
	bool OneIn(int32 Chance) { return Below(Chance) == 0; }

private:
	std::mt19937 Random;
};

/** Draws a graph and writes its packages. */
FModelGraph MakeGraph(FTestProject& Project, FDice& Dice, int32 Index)
{
	const std::string Folder = "/Game/G" + std::to_string(Index) + "/";
	FModelGraph Graph(static_cast<std::size_t>(1 + Dice.Below(9)));
	for (FModelPackage& Package : Graph)
	{
		Package.bExcluded = Dice.OneIn(9);
		Package.Name = Folder + (Package.bExcluded ? "Saved/" : "") + "P" + std::to_string(&Package - Graph.data());
	}
	std::sort(Graph.begin(), Graph.end(), [](const auto& A, const auto& B) { return A.Name < B.Name; });
	const auto Num = static_cast<int32>(Graph.size());
	const int32 Density = 1 + Dice.Below(5);
	for (FModelPackage& Package : Graph)
	{
		const FKindRow& Row = Kinds[Dice.Below(std::size(Kinds))];
		const bool bVisible = !Dice.OneIn(8);
		Package.Kind = bVisible ? Row.Kind : "";
		Package.bHighSignal = Row.bHighSignal;
		std::vector<std::string> Lines;
		std::set<int32> Taken;
		for (int32 Left = Dice.Below(Density * 2); Left > 0; --Left)
		{
			const int32 Target = Dice.Below(Num);
			if (!Taken.insert(Target).second)
				continue;
			Package.Dependencies.push_back({Target, !Dice.OneIn(3)});
			Lines.push_back(Graph[static_cast<std::size_t>(Target)].Name + (Dice.OneIn(2) ? " soft" : "") +
				(Package.Dependencies.back().bGame ? "" : " editor"));
		}
		Project.Links(Package.Name,
			{Package.Name.substr(Package.Name.rfind('/') + 1) + " " + Row.Class + (bVisible ? "" : " filtered")}, Lines);
	}
	return Graph;
}

std::vector<FModelEdge> NeighboursOf(const FModelGraph& Graph, int32 Package, bool bDependencies)
{
	if (bDependencies)
		return Graph[static_cast<std::size_t>(Package)].Dependencies;
	std::vector<FModelEdge> Referencers;
	for (std::size_t Source = 0; Source < Graph.size(); ++Source)
	{
		for (const FModelEdge& Edge : Graph[Source].Dependencies)
		{
			if (Edge.Target == Package)
				Referencers.push_back({static_cast<int32>(Source), Edge.bGame});
		}
	}
	return Referencers;
}

struct FModelTree
{
	std::string Label;
	int32 Package = 0;
	std::list<FModelTree> Children; // newest first
};

struct FModelResult
{
	FModelTree Root;
	int32 Total = 0;
	std::map<std::string, int32> Counts; // kinds and types
	bool bTruncated = false;
};

/** Level by level. */
FModelResult WalkModel(const FModelGraph& Graph, int32 Root, bool bDependencies, const FExploreAssetGraphParams& Params)
{
	FModelResult Result;
	Result.Root.Package = Root;
	std::set<int32> Done;
	std::vector<FModelTree*> Level = {&Result.Root};
	for (int32 Depth = 0; Depth < (Params.Depth >= 2 ? 2 : 1); ++Depth)
	{
		std::vector<FModelTree*> Next;
		for (FModelTree* Tree : Level)
		{
			const std::vector<FModelEdge> Neighbours = NeighboursOf(Graph, Tree->Package, bDependencies);
			const bool bTooMany = static_cast<int32>(Neighbours.size()) > std::max(1, Params.MaxFanoutPerNode);
			if (!Done.insert(Tree->Package).second || (Depth > 0 && bTooMany))
				continue;
			for (const FModelEdge& Edge : Neighbours)
			{
				const FModelPackage& Package = Graph[static_cast<std::size_t>(Edge.Target)];
				if (Done.contains(Edge.Target) || Package.Kind.empty() || Package.bExcluded)
					continue;
				if (Params.bHighSignalOnly && !Package.bHighSignal)
					continue;
				if (Result.Total == std::max(1, Params.MaxNodes))
				{
					Result.bTruncated = true;
					return Result;
				}
				const std::string Type = Edge.bGame ? "Runtime" : "Editor";
				Tree->Children.push_front({Package.Name + ":" + Package.Kind + ":" + Type, Edge.Target, {}});
				Next.push_back(&Tree->Children.front());
				++Result.Total;
				++Result.Counts[Package.Kind];
				++Result.Counts[Type];
			}
		}
		Level = Next;
	}
	return Result;
}

std::string RenderTree(const std::list<FModelTree>& Trees)
{
	std::string Text;
	for (const FModelTree& Tree : Trees)
		Text += "[" + Tree.Label + RenderTree(Tree.Children) + "]";
	return Text;
}

std::string RenderModel(const FModelResult& Result)
{
	std::string Text = RenderTree(Result.Root.Children) + " " + std::to_string(Result.Total);
	for (const auto& [Name, Count] : Result.Counts)
		Text += " " + Name + "=" + std::to_string(Count);
	return Text;
}

std::string RenderTree(const TArray<FAssetRelation>& Relations)
{
	std::string Text;
	for (const FAssetRelation& Relation : Relations)
		Text += "[" + Relation.Path.ToStdString() + ":" + Relation.Kind.ToStdString() + ":" + Relation.Type.ToStdString() +
			RenderTree(Relation.Relations) + "]";
	return Text;
}

std::string RenderFound(const TArray<FAssetRelation>& Relations, const FAssetGraphSummary& Summary)
{
	std::map<std::string, int32> Counts;
	for (const auto& [Kind, Count] : Summary.ByKind)
		Counts[Kind.ToStdString()] += Count;
	for (const auto& [Type, Count] : Summary.ByType)
		Counts[Type.ToStdString()] += Count;
	std::string Text = RenderTree(Relations) + " " + std::to_string(Summary.Total);
	for (const auto& [Name, Count] : Counts)
		Text += " " + Name + "=" + std::to_string(Count);
	return Text;
}

FExploreAssetGraphParams DrawParams(FDice& Dice, const std::string& Root)
{
	return {.Direction = static_cast<EAssetGraphDirection>(Dice.Below(3)),
		.AssetPath = Root,
		.Depth = Dice.Below(4),
		.MaxNodes = Dice.OneIn(2) ? Dice.Below(12) : 150,
		.MaxFanoutPerNode = Dice.OneIn(2) ? Dice.Below(5) : 50,
		.bHighSignalOnly = Dice.OneIn(2)};
}

void ExpectSame(const FModelGraph& Graph, int32 Root, const FExploreAssetGraphParams& Params)
{
	FExploreAssetGraphResult Found;
	UAssetGraphService::ExploreGraph(Params, Found);
	const bool bBoth = Params.Direction == EAssetGraphDirection::Both;
	const FModelResult Forward = WalkModel(Graph, Root, Params.Direction != EAssetGraphDirection::Referencers, Params);
	const FModelResult Backward = bBoth ? WalkModel(Graph, Root, false, Params) : FModelResult();
	EXPECT_EQ(
		bBoth ? RenderFound(Found.DependencyRelations, Found.DependencySummary) : RenderFound(Found.Relations, Found.Summary),
		RenderModel(Forward));
	EXPECT_EQ(RenderFound(Found.ReferencerRelations, Found.ReferencerSummary), RenderModel(Backward));
	EXPECT_EQ(Found.bTruncated, Forward.bTruncated || Backward.bTruncated);
}
}

TEST(AssetGraphModel, AgreesOnRandomGraphs)
{
	FTestProject Project;
	FDice Dice(GetSeed(20250417));
	std::vector<FModelGraph> Graphs;
	for (int32 Index = 0; Index < NumGraphs; ++Index)
		Graphs.push_back(MakeGraph(Project, Dice, Index));
	Project.Open();

	int32 NumRelations = 0;
	for (const FModelGraph& Graph : Graphs)
	{
		for (int32 Repeat = 0; Repeat < 4 && !testing::Test::HasFailure(); ++Repeat)
		{
			const int32 Root = Dice.Below(static_cast<int32>(Graph.size()));
			const FExploreAssetGraphParams Params = DrawParams(Dice, Graph[static_cast<std::size_t>(Root)].Name);
			SCOPED_TRACE(Params.AssetPath.ToStdString());
			ExpectSame(Graph, Root, Params);
			NumRelations += WalkModel(Graph, Root, true, Params).Total;
		}
	}
	EXPECT_GT(NumRelations, NumGraphs) << "graphs without links prove nothing";
}
