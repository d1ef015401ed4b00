#include "Families/BehaviorTreeFamily.h"

#include "Core/HashMap.h"
#include "CoreObject/Properties.h"
#include "Engine/BehaviorTree.h"
#include "Engine/Blackboard.h"
#include "Families/FamilyScan.h"

#include <utility>
#include <vector>

namespace
{
constexpr const char* NodeContainer = "BehaviorTree/Node";
/** Branches may share branches that share branches: beyond so many steps only nodes that were not reached before are walked. */
constexpr int64 MaxStepsWithRepeats = 200'000;

/** Returns how many objects it has looked through. */
int32 SearchBehaviorTreeServices(const UBTNode& Node, FHitSink& Hits)
{
	TArray<UObject*> Inner;
	if (Node.IsA<UBTCompositeNode>() || Node.IsA<UBTTaskNode>())
		GetObjectsWithOuter(&Node, Inner, false);
	for (const UObject* Object : Inner)
	{
		if (!Object->IsA<UBTService>())
			continue;
		Hits.Add("Service", Object->GetClass()->GetName(), "BehaviorTree/Service");
		if (Hits.IsFull())
			break;
	}
	return Inner.Num();
}

/** Asked of the node's class by name: a derived class may have a property of its own under it. */
const UObject* FindSubTree(const UBTTask_RunBehavior& Task)
{
	const auto* Property = CastField<FObjectPropertyBase>(Task.GetClass()->FindPropertyByName("BehaviorAsset"));
	return Property ? Property->GetObjectPropertyValue(Property->ContainerPtrToValuePtr<void>(&Task)) : nullptr;
}

/** Walks nodes and what is below them, depth first. Keeps its own line of nodes: trees may be deeper than the stack. */
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
				Leave();
		}
	}

private:
	/** A composite whose children are being visited. A child's composite comes first, then its task. */
	struct FVisit
	{
		const UBTCompositeNode* Node;
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
		NumSteps += Child.Decorators.Num();
		for (const UBTDecorator* Decorator : Child.Decorators)
		{
			if (Decorator)
				Hits.Add("Decorator", Decorator->GetClass()->GetName(), "BehaviorTree/Decorator");
		}
		Enter(Child.ChildComposite);
	}

	/** A node reached twice is reported twice, but not below itself. */
	void Enter(const UBTNode* Node)
	{
		++NumSteps;
		if (!Node || OnLine.contains(Node) || (!Reached.insert(Node).second && NumSteps > MaxStepsWithRepeats))
			return;
		Read(*Node);
		const auto* Composite = Cast<UBTCompositeNode>(Node);
		if (!Composite || Composite->Children.IsEmpty())
			return;
		OnLine.insert(Node);
		Line.push_back({Composite});
	}

	void Leave()
	{
		OnLine.erase(Line.back().Node);
		Line.pop_back();
	}

	void Read(const UBTNode& Node)
	{
		Hits.Add("NodeName", Node.GetNodeName(), NodeContainer);
		Hits.Add("NodeComment", Node.GetStaticDescription(), NodeContainer);
		Hits.Add("NodeClass", Node.GetClass()->GetName(), NodeContainer);
		NumSteps += SearchBehaviorTreeServices(Node, Hits);
		if (const auto* MoveTo = Cast<UBTTask_MoveTo>(&Node))
			Hits.Add("MoveToKey", MoveTo->GetSelectedBlackboardKey().ToString(), NodeContainer);
		const auto* RunBehavior = Cast<UBTTask_RunBehavior>(&Node);
		if (const UObject* SubTree = RunBehavior ? FindSubTree(*RunBehavior) : nullptr)
			Hits.Add("RunBehaviorAsset", SubTree->GetName(), NodeContainer);
	}

	FHitSink& Hits;
	std::vector<FVisit> Line; // from the root down
	THashSet<const UBTNode*> OnLine;
	THashSet<const UBTNode*> Reached;
	int64 NumSteps = 0;
};

void ReadTree(const UBehaviorTree& Tree, FHitSink& Hits)
{
	if (const UBlackboardData* Blackboard = Tree.BlackboardAsset)
		Hits.Add("BlackboardName", Blackboard->GetName(), "BehaviorTree");
	FNodeWalk(Hits).SearchBehaviorTreeNode(Tree.RootNode);
}
}

void SearchBehaviorTrees(const FAssetSearchParams& Params, FOnAssetSearchComplete OnDone)
{
	ScanFamily<UBehaviorTree>({.ClassText = "BehaviorTree", .NameContainer = "BehaviorTree"}, Params, OnDone, ReadTree);
}
