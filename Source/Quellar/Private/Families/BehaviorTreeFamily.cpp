#include "Core/Base/HashMap.h"
#include "CoreObject/Reflection/Properties.h"
#include "Engine/BehaviorTree.h"
#include "Engine/Blackboard.h"
#include "Families/FamilyScan.h"
#include "Families/VisitCounts.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace
{
constexpr const char* NodeContainer = "BehaviorTree/Node";

/** Visits to a node beyond its first one. */
struct FRepeats
{
	int64 NumVisits = 0;
	int64 NumBeforeCap = 0; // of these; once the hit cap is reached, a visit reads no further than the first service
};

/** Repeats: null for the first visit. */
void SearchBehaviorTreeServices(const UBTNode& Node, FHitSink& Hits, const FRepeats* Repeats)
{
	TArray<UObject*> Inner;
	if (Node.IsA<UBTCompositeNode>() || Node.IsA<UBTTaskNode>())
		GetObjectsWithOuter(&Node, Inner, false);
	int64 Times = Repeats ? Repeats->NumVisits : 1;
	for (const UObject* Object : Inner)
	{
		if (!Object->IsA<UBTService>())
			continue;
		Hits.Add("Service", Object->GetClass()->GetName(), "BehaviorTree/Service", Times);
		Times = Repeats ? Repeats->NumBeforeCap : !Hits.IsFull();
		if (Times == 0)
			break;
	}
}

/** Asked of the node's class by name: a derived class may have a property of its own under it. */
const UObject* FindSubTree(const UBTTask_RunBehavior& Task)
{
	const auto* Property = CastField<FObjectPropertyBase>(Task.GetClass()->FindPropertyByName("BehaviorAsset"));
	return Property ? Property->GetObjectPropertyValue(Property->ContainerPtrToValuePtr<void>(&Task)) : nullptr;
}

/**
 * Reports on nodes and what is below them, as a depth-first walk that reports a node that is reached twice twice, but not below
 * itself. Branches may share branches that share branches: each node is walked once, which finds every hit in its place, and its
 * further visits, which can only repeat hits, are counted afterwards. Keeps its own line of nodes: trees may be deeper than the
 * stack.
 */
class FNodeWalk
{
public:
	explicit FNodeWalk(FHitSink& InHits) : Hits(InHits) {}

	void SearchBehaviorTreeNode(const UBTNode* Root)
	{
		Enter(Root);
		while (!Line.empty())
		{
			if (Line.back().NextChild < Line.back().Node->Children.Num())
				VisitChild();
			else
				Line.pop_back();
		}
		if (bHasRepeats)
			AddRepeats();
	}

private:
	/** A composite whose children are being visited. A child's composite comes first, then its task. */
	struct FVisit
	{
		const UBTCompositeNode* Node;
		int32 Place;
		int32 NextChild = 0;
		bool bCompositeDone = false;
	};

	void VisitChild()
	{
		FVisit& Visit = Line.back();
		const FBTCompositeChild& Child = Visit.Node->Children[Visit.NextChild];
		if (std::exchange(Visit.bCompositeDone, !Visit.bCompositeDone))
		{
			++Visit.NextChild;
			return Enter(Child.ChildTask);
		}
		ReadDecorators(Child, 1);
		NoteCap(0);
		Enter(Child.ChildComposite);
	}

	void Enter(const UBTNode* Node)
	{
		if (!Node)
			return;
		const auto [Known, bIsNew] = Places.insert({Node, static_cast<int32>(Nodes.size())});
		const int32 Place = Known->second;
		if (!Line.empty())
			Edges[static_cast<std::size_t>(Line.back().Place)].push_back(Place);
		bHasRepeats = bHasRepeats || !bIsNew;
		if (!bIsNew)
			return;
		Nodes.push_back(Node);
		Edges.emplace_back();
		Read(*Node, nullptr);
		NoteCap(1);
		if (const auto* Composite = Cast<UBTCompositeNode>(Node))
			Line.push_back({Composite, Place});
	}

	/** Keeps the line on which the hit cap is reached. NumOpen edges of its last node are not finished. */
	void NoteCap(int32 NumOpen)
	{
		if (LineAtCap || !Hits.IsFull())
			return;
		LineAtCap.emplace();
		for (const FVisit& Visit : Line)
		{
			const auto NumEdges = static_cast<int32>(Edges[static_cast<std::size_t>(Visit.Place)].size());
			const bool bIsLast = &Visit == &Line.back();
			LineAtCap->push_back({Visit.Place, NumEdges - (bIsLast ? NumOpen : 1)});
		}
	}

	void AddRepeats()
	{
		const FVisitCounts Counts(Edges);
		const std::vector<int64> Visits = Counts.CountFrom(0);
		const std::vector<int64> BeforeCap = LineAtCap ? Counts.CountUntil(*LineAtCap) : Visits;
		for (std::size_t Place = 0; Place < Nodes.size(); ++Place)
		{
			const FRepeats Repeats = {
				.NumVisits = Visits[Place] - 1,
				.NumBeforeCap = std::max<int64>(BeforeCap[Place] - 1, 0),
			};
			if (Repeats.NumVisits <= 0)
				continue;
			Read(*Nodes[Place], &Repeats);
			if (const auto* Composite = Cast<UBTCompositeNode>(Nodes[Place]))
			{
				for (const FBTCompositeChild& Child : Composite->Children)
					ReadDecorators(Child, Repeats.NumVisits);
			}
		}
	}

	void ReadDecorators(const FBTCompositeChild& Child, int64 Times)
	{
		for (const UBTDecorator* Decorator : Child.Decorators)
		{
			if (Decorator)
				Hits.Add("Decorator", Decorator->GetClass()->GetName(), "BehaviorTree/Decorator", Times);
		}
	}

	void Read(const UBTNode& Node, const FRepeats* Repeats)
	{
		const int64 Times = Repeats ? Repeats->NumVisits : 1;
		Hits.Add("NodeName", Node.GetNodeName(), NodeContainer, Times);
		Hits.Add("NodeComment", Node.GetStaticDescription(), NodeContainer, Times);
		Hits.Add("NodeClass", Node.GetClass()->GetName(), NodeContainer, Times);
		SearchBehaviorTreeServices(Node, Hits, Repeats);
		if (const auto* MoveTo = Cast<UBTTask_MoveTo>(&Node))
			Hits.Add("MoveToKey", MoveTo->GetSelectedBlackboardKey().ToString(), NodeContainer, Times);
		const auto* RunBehavior = Cast<UBTTask_RunBehavior>(&Node);
		if (const UObject* SubTree = RunBehavior ? FindSubTree(*RunBehavior) : nullptr)
			Hits.Add("RunBehaviorAsset", SubTree->GetName(), NodeContainer, Times);
	}

	FHitSink& Hits;
	std::vector<FVisit> Line;		   // from the root down
	std::vector<const UBTNode*> Nodes; // in the order of their first visits; the root first
	THashMap<const UBTNode*, int32> Places;
	std::vector<std::vector<int32>> Edges;
	bool bHasRepeats = false;
	TOptional<std::vector<FVisitCounts::FStep>> LineAtCap;
};

void ReadTree(const UBehaviorTree& Tree, FHitSink& Hits)
{
	if (const UBlackboardData* Blackboard = Tree.BlackboardAsset)
		Hits.Add("BlackboardName", Blackboard->GetName(), "BehaviorTree");
	FNodeWalk(Hits).SearchBehaviorTreeNode(Tree.RootNode);
}
}

/** The blackboard, and every node, service and decorator by name, description and class. Loads trees, and what they refer to. */
void SearchBehaviorTrees(const FAssetSearchParams& Params, FOnAssetSearchComplete OnDone)
{
	ScanFamily<UBehaviorTree>({.ClassText = "BehaviorTree", .NameContainer = "BehaviorTree"}, Params, OnDone, ReadTree);
}
