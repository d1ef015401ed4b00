#include "Engine/BehaviorTree.h"

#include "CoreObject/Reflection/NativeClass.h"
#include "Engine/Blackboard.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace
{
constexpr FStringView ScriptRoot = "/Script/";
constexpr FStringView GeneratedSuffix = "_C";
constexpr FStringView NodePrefix = "BT";

constexpr int32 MaxSensibleDepth = 256;

/** Walks a tree once, each node at its first place, with a line of its own: trees may be deeper than the stack. */
class FTreeCheck
{
public:
	explicit FTreeCheck(const FDataFaultReport& InReport) : Report(InReport) {}

	void Check(const UBTCompositeNode* Root)
	{
		Enter(Root);
		while (!Line.empty())
		{
			FVisit& Visit = Line.back();
			if (Visit.NextChild < Visit.Node->Children.Num())
			{
				CheckChild(*Visit.Node, Visit.NextChild++);
				continue;
			}
			OnLine[Visit.Node] = false;
			Line.pop_back();
		}
		if (MaxDepth > MaxSensibleDepth)
			Report(EDiagnosticSeverity::Warning, "deep-tree",
				"nodes of the tree lie " + FString::FromInt(MaxDepth) + " levels deep");
	}

private:
	struct FVisit
	{
		const UBTCompositeNode* Node;
		int32 NextChild = 0;
	};

	void CheckChild(const UBTCompositeNode& Node, int32 Index)
	{
		const FBTCompositeChild& Child = Node.Children[Index];
		if (Child.ChildComposite.IsNull() && Child.ChildTask.IsNull())
			Report(EDiagnosticSeverity::Warning, "empty-child",
				"child " + FString::FromInt(Index) + " of node " + Node.GetPathName() + " is empty");
		Enter(Child.ChildComposite);
	}

	void Enter(const UBTCompositeNode* Node)
	{
		if (!Node)
			return;
		const auto [Known, bIsNew] = OnLine.emplace(Node, true);
		if (bIsNew)
			Line.push_back({Node});
		else if (Known->second)
			Report(EDiagnosticSeverity::Error, "tree-cycle", "node " + Node->GetPathName() + " is below itself");
		MaxDepth = std::max(MaxDepth, static_cast<int32>(Line.size()));
	}

	const FDataFaultReport& Report;
	std::vector<FVisit> Line;								  // from the root down
	std::unordered_map<const UBTCompositeNode*, bool> OnLine; // every node that was reached
	int32 MaxDepth = 0;
};

FStringView DisplayNameOf(const UClass& Class)
{
	FStringView Name = Class.GetFName().View();
	const bool bGenerated = !Class.GetStructPathName().PackageName.View().starts_with(ScriptRoot);
	if (bGenerated && Name.ends_with(GeneratedSuffix))
		Name.remove_suffix(GeneratedSuffix.size());
	const std::size_t Underscore = Name.find('_');
	const bool bHasPrefix = Name.starts_with(NodePrefix) && Underscore != FStringView::npos && Underscore + 1 < Name.size();
	return bHasPrefix ? Name.substr(Underscore + 1) : Name;
}
}

FString UBTNode::GetNodeName() const
{
	return NodeName.IsEmpty() ? FString(DisplayNameOf(*GetClass())) : NodeName;
}

UClass* UBTNode::StaticClass()
{
	static UClass* const Class = TClassBuilder<UBTNode>("/Script/Engine.BTNode", UObject::StaticClass())
									 .Member("NodeName", &UBTNode::NodeName)
									 .Member("Description", &UBTNode::Description)
									 .Build();
	return Class;
}

UScriptStruct* FBTCompositeChild::StaticStruct()
{
	static UScriptStruct* const Struct = TStructBuilder<FBTCompositeChild>("/Script/Engine.BTCompositeChild")
											 .Member("ChildComposite", &FBTCompositeChild::ChildComposite)
											 .Member("ChildTask", &FBTCompositeChild::ChildTask)
											 .Member("Decorators", &FBTCompositeChild::Decorators)
											 .Build();
	return Struct;
}

UClass* UBTCompositeNode::StaticClass()
{
	static UClass* const Class = TClassBuilder<UBTCompositeNode>("/Script/Engine.BTCompositeNode", UBTNode::StaticClass())
									 .Member("Children", &UBTCompositeNode::Children)
									 .Build();
	return Class;
}

UClass* UBTTaskNode::StaticClass()
{
	static UClass* const Class = TClassBuilder<UBTTaskNode>("/Script/Engine.BTTaskNode", UBTNode::StaticClass()).Build();
	return Class;
}

UClass* UBTAuxiliaryNode::StaticClass()
{
	static UClass* const Class =
		TClassBuilder<UBTAuxiliaryNode>("/Script/Engine.BTAuxiliaryNode", UBTNode::StaticClass()).Build();
	return Class;
}

UClass* UBTDecorator::StaticClass()
{
	static UClass* const Class =
		TClassBuilder<UBTDecorator>("/Script/Engine.BTDecorator", UBTAuxiliaryNode::StaticClass()).Build();
	return Class;
}

UClass* UBTService::StaticClass()
{
	static UClass* const Class = TClassBuilder<UBTService>("/Script/Engine.BTService", UBTAuxiliaryNode::StaticClass()).Build();
	return Class;
}

UClass* UBTTask_MoveTo::StaticClass()
{
	static UClass* const Class = TClassBuilder<UBTTask_MoveTo>("/Script/Engine.BTTask_MoveTo", UBTTaskNode::StaticClass())
									 .Member("BlackboardKey", &UBTTask_MoveTo::BlackboardKey)
									 .Build();
	return Class;
}

UClass* UBehaviorTree::StaticClass()
{
	static UClass* const Class = TClassBuilder<UBehaviorTree>("/Script/Engine.BehaviorTree", UObject::StaticClass())
									 .Member("BlackboardAsset", &UBehaviorTree::BlackboardAsset)
									 .Member("RootNode", &UBehaviorTree::RootNode)
									 .Build();
	return Class;
}

UClass* UBTTask_RunBehavior::StaticClass()
{
	static UClass* const Class =
		TClassBuilder<UBTTask_RunBehavior>("/Script/Engine.BTTask_RunBehavior", UBTTaskNode::StaticClass())
			.Member("BehaviorAsset", &UBTTask_RunBehavior::BehaviorAsset)
			.Build();
	return Class;
}

TArray<const UBTTask_RunBehavior*> UBehaviorTree::GetRunBehaviorTasks() const
{
	TArray<const UBTTask_RunBehavior*> Tasks;
	std::unordered_set<const UBTNode*> Reached;
	std::vector<const UBTCompositeNode*> Waiting = {RootNode};
	while (!Waiting.empty())
	{
		const UBTCompositeNode* const Node = Waiting.back();
		Waiting.pop_back();
		if (!Node || !Reached.insert(Node).second)
			continue;
		for (const FBTCompositeChild& Child : Node->Children)
		{
			Waiting.push_back(Child.ChildComposite);
			const auto* const Task = Cast<UBTTask_RunBehavior>(Child.ChildTask.Get());
			if (Task && Reached.insert(Task).second)
				Tasks.Add(Task);
		}
	}
	return Tasks;
}

void UBehaviorTree::CheckData(const FDataFaultReport& Report) const
{
	FTreeCheck(Report).Check(RootNode);
}
