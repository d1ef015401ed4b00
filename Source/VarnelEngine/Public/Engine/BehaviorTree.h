#pragma once

#include "CoreObject/Objects/ObjectPtr.h"
#include "CoreObject/Reflection/Class.h"

class UBlackboardData;
class UBTCompositeNode;
/** Condition or loop around a node. */
class UBTDecorator;
class UBTTask_RunBehavior;
class UBTTaskNode;

/** Any node of a behaviour tree. */
class UBTNode : public UObject
{
public:
	static UClass* StaticClass();

	/**
	 * The name to display: NodeName, or without one the name of the node's class, cut to what its author called it: a Blueprint's
	 * class loses its "_C", a name that starts with "BT" everything through its first "_" ("BTTask_Wait" gives "Wait").
	 */
	FString GetNodeName() const;
	FString GetStaticDescription() const { return Description; }

	FString NodeName;
	FString Description;
};

/** A branch as its parent sees it: a composite or a task, behind decorators that may refuse it. */
struct FBTCompositeChild
{
	static UScriptStruct* StaticStruct();

	TObjectPtr<UBTCompositeNode> ChildComposite;
	TObjectPtr<UBTTaskNode> ChildTask;
	TArray<TObjectPtr<UBTDecorator>> Decorators;
};

/** Node that decides which of its children runs. Project data may close cycles. */
class UBTCompositeNode : public UBTNode
{
public:
	static UClass* StaticClass();

	TArray<FBTCompositeChild> Children;
};

/** Leaf that does something. */
class UBTTaskNode : public UBTNode
{
public:
	static UClass* StaticClass();
};

/** Node that is attached to another one; services are the objects inside the node that they belong to. */
class UBTAuxiliaryNode : public UBTNode
{
public:
	static UClass* StaticClass();
};

class UBTDecorator : public UBTAuxiliaryNode
{
public:
	static UClass* StaticClass();
};

/** Work repeated as long as a branch is active. */
class UBTService : public UBTAuxiliaryNode
{
public:
	static UClass* StaticClass();
};

/** Task that walks to a goal. */
class UBTTask_MoveTo : public UBTTaskNode
{
public:
	static UClass* StaticClass();

	/** Name of the blackboard key that holds the goal. */
	FName GetSelectedBlackboardKey() const { return BlackboardKey; }

	FName BlackboardKey;
};

/** The tree's root, and the blackboard that its nodes read. */
class UBehaviorTree : public UObject
{
public:
	static UClass* StaticClass();

	TObjectPtr<UBlackboardData> BlackboardAsset;
	TObjectPtr<UBTCompositeNode> RootNode;

	/** The tasks below the root that run other trees, each once. */
	TArray<const UBTTask_RunBehavior*> GetRunBehaviorTasks() const;

	/** Nodes below themselves, empty children, and trees too deep to be meant. */
	void CheckData(const FDataFaultReport& Report) const override;
};

/** Runs another tree in its place. */
class UBTTask_RunBehavior : public UBTTaskNode
{
public:
	static UClass* StaticClass();

	TObjectPtr<UBehaviorTree> BehaviorAsset;
};
