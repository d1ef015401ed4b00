#include "Quellar/Graph/AssetGraphService.h"

#include "Core/Base/HashMap.h"
#include "Core/Threads/StopToken.h"
#include "Core/Threads/Tasks.h"
#include "CoreObject/Packages/PackageSource.h"
#include "Quellar/Assets/AssetPathUtils.h"
#include "Quellar/Assets/AssetRegistryUtils.h"
#include "Quellar/Assets/OrivaneFindUtils.h"
#include "Quellar/Families/AssetFamily.h"

#include <algorithm>
#include <vector>

namespace
{
using FNode = FPackageGraphView::FNode;

constexpr int32 MaxDepth = 2;
constexpr int32 NoParent = INDEX_NONE;
constexpr int32 MaxReserved = 1000; // relations; callers may ask for any budget

/** The assets that the settings exclude from walks; their paths are compared once as long as registry and settings stay. */
class FExcludedAssets
{
public:
	/** To be called before each walk. */
	static FExcludedAssets& Get(const IAssetRegistry& Registry)
	{
		static FExcludedAssets Excluded;
		const uint64 State = Registry.GetStateNumber();
		const uint64 Rules = FOrivaneFindUtils::GetRulesNumber();
		if (State == 0 || Rules == 0 || State != Excluded.StateNumber || Rules != Excluded.RulesNumber)
			Excluded.Known.clear();
		Excluded.StateNumber = State;
		Excluded.RulesNumber = Rules;
		return Excluded;
	}

	bool Contains(const FPackageGraphView& Graph, uint32 Asset)
	{
		if (Asset >= Known.size())
			Known.resize(Asset + 1, EKnown::Unasked);
		if (Known[Asset] == EKnown::Unasked)
		{
			ObjectPath.Empty();
			Graph.AppendObjectPath(Asset, ObjectPath);
			Known[Asset] = FOrivaneFindUtils::ShouldExcludeFilePath(ObjectPath) ? EKnown::Excluded : EKnown::Included;
		}
		return Known[Asset] == EKnown::Excluded;
	}

private:
	enum class EKnown : uint8
	{
		Unasked,
		Included,
		Excluded,
	};

	uint64 StateNumber = 0;
	uint64 RulesNumber = 0;
	std::vector<EKnown> Known; // by asset
	FString ObjectPath;		   // kept for its storage
};

/** The walk in one direction. Works on the graph's numbers; a name is made for a relation that is recorded only. */
class FDirectionalWalk
{
public:
	FDirectionalWalk(const FPackageGraphView& InGraph, FExcludedAssets& InExcluded, const FExploreAssetGraphParams& Params,
		bool bInDependencies)
		: Graph(InGraph)
		, Excluded(InExcluded)
		, bDependencies(bInDependencies)
		, bHighSignalOnly(Params.bHighSignalOnly)
		, DepthLimit(std::clamp(Params.Depth, 1, MaxDepth))
		, NodeBudget(std::max(Params.MaxNodes, 1))
		, FanoutLimit(std::max(Params.MaxFanoutPerNode, 1))
	{
		const auto NumReserved = static_cast<std::size_t>(std::min(NodeBudget, MaxReserved));
		Relations.reserve(NumReserved);
		Parents.reserve(NumReserved);
	}

	void Run(FNode Root);
	/** Hands out what was recorded; once. */
	void Finish(TArray<FAssetRelation>& OutRelations, FAssetGraphSummary& OutSummary, FAssetGraphLeftOut& OutLeftOut);

private:
	struct FEntry
	{
		FNode Node;
		int32 Depth;
		int32 Parent; // index of the relation that led here
	};

	/** False when the budget, or a stop, ended the walk. */
	bool Expand(const FEntry& Entry);
	/** False when the relation did not fit any more. */
	bool Visit(const FEntry& From, FNode Neighbour, uint8 Flags);
	/** True for the first time. */
	bool IsFirstLeftOut(FNode Node) { return DepthLimit == 1 || LeftOutNodes.insert(Node).second; }
	void LeaveOutWithoutAsset(FNode Node);
	void Record(const FEntry& From, FNode Neighbour, uint8 Flags, FString Kind);

	const FPackageGraphView& Graph;
	FExcludedAssets& Excluded;
	const bool bDependencies;
	const bool bHighSignalOnly;
	const int32 DepthLimit;
	const int32 NodeBudget;
	const int32 FanoutLimit;

	std::vector<FEntry> Queue; // entries before NumDequeued are done
	std::size_t NumDequeued = 0;
	THashSet<FNode> Visited; // dequeued, not merely queued: a package may be recorded under several parents of one level
	std::vector<FAssetRelation> Relations;
	std::vector<int32> Parents; // of Relations
	FAssetGraphSummary Summary;
	FAssetGraphLeftOut LeftOut;
	THashSet<FNode> LeftOutNodes; // of walks that may meet a package twice
};

void FDirectionalWalk::Run(FNode Root)
{
	Queue.push_back({Root, 0, NoParent});
	while (NumDequeued < Queue.size())
	{
		const FEntry Entry = Queue[NumDequeued++];
		if (Visited.insert(Entry.Node).second && !Expand(Entry))
			return;
	}
}

bool FDirectionalWalk::Expand(const FEntry& Entry)
{
	const auto Neighbours = bDependencies ? Graph.GetDependencies(Entry.Node) : Graph.GetReferencers(Entry.Node);
	const bool bHub = Neighbours.Num() > FanoutLimit; // see GraphTraversalUtils::ShouldExpandNode
	if (bHub && Entry.Depth > 0)
	{
		++LeftOut.NumHubs;
		return true;
	}
	for (std::size_t Index = 0; Index < Neighbours.Nodes.size(); ++Index)
	{
		if (IsStopRequested() || !Visit(Entry, Neighbours.Nodes[Index], Neighbours.Flags[Index]))
			return false;
	}
	return true;
}

bool FDirectionalWalk::Visit(const FEntry& From, FNode Neighbour, uint8 Flags)
{
	if (Visited.contains(Neighbour))
		return true;
	const TOptional<uint32> Asset = AssetPathUtils::FindRepresentativeAsset(Graph, Neighbour);
	if (!Asset)
		return LeaveOutWithoutAsset(Neighbour), true;
	FString Kind = AssetTypeFromClassName(Graph.GetAssetClass(*Asset).AssetName);
	const bool bLowSignal = bHighSignalOnly && !AssetPathUtils::IsHighSignalKind(Kind);
	if (Excluded.Contains(Graph, *Asset))
	{
		LeftOut.NumExcluded += IsFirstLeftOut(Neighbour) ? 1 : 0;
		return true;
	}
	if (bLowSignal)
	{
		if (IsFirstLeftOut(Neighbour))
			++LeftOut.LowSignalByKind.FindOrAdd(Kind);
		return true;
	}
	LeftOut.bOverBudget = static_cast<int32>(Relations.size()) >= NodeBudget;
	if (!LeftOut.bOverBudget)
		Record(From, Neighbour, Flags, std::move(Kind));
	return !LeftOut.bOverBudget;
}

/** Native code ("/Script/Engine") has no packages, and is not missing. */
void FDirectionalWalk::LeaveOutWithoutAsset(FNode Node)
{
	const bool bHidden = Graph.GetAssets(Node).Begin < Graph.GetAssets(Node).End;
	const FString Name(Graph.GetPackageName(Node));
	const bool bMissing = bDependencies && !Graph.HasFile(Node) && !Name.StartsWith("/Script/");
	if ((!bHidden && !bMissing) || !IsFirstLeftOut(Node))
		return;
	LeftOut.NumHidden += bHidden ? 1 : 0;
	if (bMissing)
		LeftOut.Missing.Add(Name);
}

void FDirectionalWalk::Record(const FEntry& From, FNode Neighbour, uint8 Flags, FString Kind)
{
	FString Type = (Flags & EDependencyFlags::Game) != 0 ? "Runtime" : "Editor";
	++Summary.Total;
	++Summary.ByKind.FindOrAdd(Kind);
	++Summary.ByType.FindOrAdd(Type);
	const auto NewRelation = static_cast<int32>(Relations.size());
	Relations.push_back({FString(Graph.GetPackageName(Neighbour)), std::move(Kind), std::move(Type), {}});
	Parents.push_back(From.Parent);
	if (From.Depth + 1 < DepthLimit)
		Queue.push_back({Neighbour, From.Depth + 1, NewRelation});
}

void FDirectionalWalk::Finish(
	TArray<FAssetRelation>& OutRelations, FAssetGraphSummary& OutSummary, FAssetGraphLeftOut& OutLeftOut)
{
	// Children follow their parents, so going backwards every subtree is complete before it moves to its parent. Siblings
	// therefore come out newest first, which callers see and rely on.
	for (std::size_t Index = Relations.size(); Index-- > 0;)
	{
		const int32 Parent = Parents[Index];
		TArray<FAssetRelation>& Siblings =
			Parent == NoParent ? OutRelations : Relations[static_cast<std::size_t>(Parent)].Relations;
		Siblings.Add(std::move(Relations[Index]));
	}
	OutSummary = std::move(Summary);
	OutLeftOut = std::move(LeftOut);
}

void Walk(const FExploreAssetGraphParams& Params, FName Root, bool bDependencies, TArray<FAssetRelation>& OutRelations,
	FAssetGraphSummary& OutSummary, FAssetGraphLeftOut& OutLeftOut)
{
	const IAssetRegistry* Registry = OrivaneAssetRegistryUtils::GetAssetRegistry();
	if (!Registry)
		return;
	const FPackageGraphView Graph = Registry->GetPackageGraph();
	const FNode RootNode = Graph.FindNode(Root);
	if (RootNode == FPackageGraphView::NoNode)
		return;
	FDirectionalWalk DirectionalWalk(Graph, FExcludedAssets::Get(*Registry), Params, bDependencies);
	DirectionalWalk.Run(RootNode);
	DirectionalWalk.Finish(OutRelations, OutSummary, OutLeftOut);
}
}

void UAssetGraphService::ExploreGraph(const FExploreAssetGraphParams& Params, FExploreAssetGraphResult& Result)
{
	checkGameThread();
	Result = {};
	FName Root;
	if (!AssetPathUtils::NormalizeToPackageName(Params.AssetPath, Root))
		return;
	Result.Root = Root.ToString();
	switch (Params.Direction)
	{
		case EAssetGraphDirection::Dependencies:
			Result.Direction = "Dependencies";
			Walk(Params, Root, true, Result.Relations, Result.Summary, Result.LeftOut);
			break;
		case EAssetGraphDirection::Referencers:
			Result.Direction = "Referencers";
			Walk(Params, Root, false, Result.Relations, Result.Summary, Result.LeftOut);
			break;
		case EAssetGraphDirection::Both:
			Result.Direction = "Both";
			Walk(Params, Root, true, Result.DependencyRelations, Result.DependencySummary, Result.DependencyLeftOut);
			Walk(Params, Root, false, Result.ReferencerRelations, Result.ReferencerSummary, Result.ReferencerLeftOut);
			break;
	}
	Result.bTruncated =
		Result.LeftOut.bOverBudget || Result.DependencyLeftOut.bOverBudget || Result.ReferencerLeftOut.bOverBudget;
}
