#include "Bodies.h"
#include "Phrases.h"
#include "Vocabulary.h"

#include <algorithm>
#include <vector>

namespace
{
constexpr uint32 MostTreeDepth = 6;
constexpr uint32 MostNodes = 300;

constexpr std::string_view KeyTypes[] = {
	"Bool", "Int", "Float", "String", "Name", "Vector", "Rotator", "Object", "Class", "Enum"};

/** The keys of a blackboard, the same for the blackboard itself and for the trees that use it. */
std::vector<std::string> KeysOf(const FProjectPlan& Plan, uint32 Blackboard)
{
	FRandom Random = Plan.MakeRandom(EPurpose::Keys, Blackboard);
	const uint32 NumActions = static_cast<uint32>(Vocabulary::Actions.size());
	FDistinctNumbers Words(Random, NumActions * static_cast<uint32>(Vocabulary::Quantities.size()));
	std::vector<std::string> Keys(2 + std::min(Random.HeavyTailed(6 * 256), 40u));
	for (std::string& Key : Keys)
	{
		const uint32 Pair = Words.Next();
		Key += Vocabulary::Actions[Pair % NumActions];
		Key += Vocabulary::Quantities[Pair / NumActions];
	}
	return Keys;
}

enum class ENode : uint8
{
	Selector,
	Sequence,
	Wait,
	MoveTo,
	RunBehavior,
	ScriptTask
};

constexpr std::string_view NodeNames[] = {"Selector", "Sequence", "Wait", "MoveTo", "RunBehavior", "Task"};
constexpr std::string_view NodeClasses[] = {"/Script/Engine.BTComposite_Selector", "/Script/Engine.BTComposite_Sequence",
	"/Script/Engine.BTTask_Wait", "/Script/Engine.BTTask_MoveTo", "/Script/Engine.BTTask_RunBehavior", ""};

constexpr ENode Composites[] = {ENode::Selector, ENode::Sequence};
constexpr ENode Tasks[] = {
	ENode::Wait, ENode::MoveTo, ENode::MoveTo, ENode::RunBehavior, ENode::ScriptTask, ENode::ScriptTask, ENode::ScriptTask};

struct FNode
{
	ENode Type = ENode::Selector;
	uint32 Depth = 0;
	uint32 NumDecorators = 0;
	uint32 NumServices = 0;
	FRange Children; // indices of nodes

	bool IsComposite() const { return Type == ENode::Selector || Type == ENode::Sequence; }
};

/** Writes one behaviour tree: first the shape, level by level, then an object for each node. */
class FBehaviorTreeWriter
{
public:
	explicit FBehaviorTreeWriter(FPackageDraft& InDraft) : Draft(InDraft), Json(InDraft.Objects), Random(InDraft.Random) {}

	void Write()
	{
		GrowTree();
		WriteTree();
		for (uint32 Node = 0; Node < Nodes.size(); ++Node)
			WriteNode(Node);
	}

private:
	void GrowTree()
	{
		const uint32 NumWanted = std::min(4 + Random.HeavyTailed(14 * 256), MostNodes);
		Nodes.emplace_back().Type = Random.Pick(Composites);
		for (uint32 Node = 0; Node < Nodes.size(); ++Node)
		{
			if (!Nodes[Node].IsComposite())
				continue;
			const uint32 First = static_cast<uint32>(Nodes.size());
			const uint32 NumChildren = First >= NumWanted ? 1 : Random.Between(1, 5);
			for (uint32 Child = 0; Child < NumChildren; ++Child)
				AddChild(Nodes[Node].Depth + 1, First < NumWanted);
			Nodes[Node].Children = {First, First + NumChildren};
		}
	}

	void AddChild(uint32 Depth, bool bMayBranch)
	{
		const bool bComposite = bMayBranch && Depth < MostTreeDepth && Random.Chance(110);
		FNode Node;
		Node.Type = bComposite ? Random.Pick(Composites) : Random.Pick(Tasks);
		Node.Depth = Depth;
		Node.NumDecorators = Random.Doublings(80, 3);
		Node.NumServices = Random.Doublings(bComposite ? 90 : 20, 2);
		Nodes.push_back(Node);
	}

	void WriteTree()
	{
		const auto Blackboard = Draft.Picker.PickOfClass(Random, EAssetClass::BlackboardData, Draft.Package);
		if (Blackboard)
		{
			Keys = KeysOf(Draft.Plan, *Blackboard);
			Draft.Tags.Key("BlackboardAsset");
			Draft.WriteReference(Draft.Tags, *Blackboard);
		}
		Draft.BeginAssetObject();
		if (Blackboard)
		{
			Json.Key("BlackboardAsset");
			Draft.WriteReference(Json, *Blackboard);
		}
		Json.Key("RootNode");
		Draft.WritePartPath(Json, PartOf(0));
		Draft.EndPart();
	}

	void WriteNode(uint32 Index)
	{
		const FNode& Node = Nodes[Index];
		Draft.BeginPart(PartOf(Index), ClassOf(Node));
		WriteTexts();
		if (Node.IsComposite())
			WriteChildren(Node);
		if (Node.Type == ENode::MoveTo && !Keys.empty())
			Json.Field("BlackboardKey", Random.Pick(Keys));
		if (Node.Type == ENode::RunBehavior)
			WriteSubtree();
		Draft.EndPart();

		for (uint32 Decorator = 0; Decorator < Node.NumDecorators; ++Decorator)
			WriteAuxiliary(Index, "Decorator_", Decorator, EScriptRole::BehaviorDecorator);
		for (uint32 Service = 0; Service < Node.NumServices; ++Service)
			WriteAuxiliary(Index, "Service_", Service, EScriptRole::BehaviorService);
	}

	void WriteTexts()
	{
		if (Random.Chance(180))
		{
			Json.Key("NodeName");
			Phrases::WriteTitle(Json, Random);
		}
		if (Random.Chance(70))
		{
			Json.Key("Description");
			Phrases::WriteSentence(Json, Random);
		}
	}

	void WriteChildren(const FNode& Node)
	{
		Json.BeginArray("Children");
		for (uint32 Child = Node.Children.Begin; Child < Node.Children.End; ++Child)
		{
			Json.BeginObject();
			Json.Key(Nodes[Child].IsComposite() ? "ChildComposite" : "ChildTask");
			Draft.WritePartPath(Json, PartOf(Child));
			Json.BeginArray("Decorators");
			for (uint32 Decorator = 0; Decorator < Nodes[Child].NumDecorators; ++Decorator)
				Draft.WritePartPath(Json, PartOf(Child) + ".Decorator_" + std::to_string(Decorator));
			Json.EndArray();
			Json.EndObject();
		}
		Json.EndArray();
	}

	void WriteSubtree()
	{
		Json.Key("BehaviorAsset");
		if (const auto Subtree = Draft.Picker.PickOfClass(Random, EAssetClass::BehaviorTree, Draft.Package))
			Draft.WriteReference(Json, *Subtree);
		else
			Json.Raw("null");
	}

	void WriteAuxiliary(uint32 Node, std::string_view Name, uint32 Number, EScriptRole Role)
	{
		std::string_view Class = "/Script/Engine.BTDecorator_Blackboard";
		if (Role == EScriptRole::BehaviorService || Random.Chance(128))
		{
			Class = Random.Pick(Draft.Script.TypesFor(Role)).Path;
			Draft.LinkTo(ScriptTarget, ELinkKind::Hard);
		}
		Draft.BeginPart(PartOf(Node) + "." + std::string(Name) + std::to_string(Number), Class);
		WriteTexts();
		Draft.EndPart();
	}

	std::string_view ClassOf(const FNode& Node)
	{
		if (Node.Type != ENode::ScriptTask)
			return NodeClasses[static_cast<uint32>(Node.Type)];
		Draft.LinkTo(ScriptTarget, ELinkKind::Hard);
		return Random.Pick(Draft.Script.TypesFor(EScriptRole::BehaviorTask)).Path;
	}

	std::string PartOf(uint32 Node) const
	{
		if (Node == 0)
			return "Root";
		return std::string(NodeNames[static_cast<uint32>(Nodes[Node].Type)]) + "_" + std::to_string(Node);
	}

	FPackageDraft& Draft;
	FJsonText& Json;
	FRandom& Random;
	std::vector<FNode> Nodes;
	std::vector<std::string> Keys; // of the tree's blackboard
};

/** An object of a class of the script module, with the values of some of its properties. */
void WriteScriptPart(FPackageDraft& Draft, const std::string& Part, EScriptRole Role)
{
	const FScriptType& Type = Draft.Random.Pick(Draft.Script.TypesFor(Role));
	Draft.LinkTo(ScriptTarget, ELinkKind::Hard);
	Draft.BeginPart(Part, Type.Path);
	if (Role == EScriptRole::QueryTest)
	{
		Draft.Objects.Field("TestPurpose", Draft.Random.Below(3));
		if (Draft.Random.Chance(100))
		{
			Draft.Objects.Key("TestComment");
			Phrases::WriteSentence(Draft.Objects, Draft.Random);
		}
	}
	for (const FScriptProperty& Property : Type.Properties)
	{
		if (Property.bDeprecated || Draft.Random.Chance(128))
			continue;
		Draft.Objects.Key(Property.Name);
		Draft.WriteValue(Draft.Objects, Property.Type);
	}
	Draft.EndPart();
}

void WriteOption(FPackageDraft& Draft, const std::string& Option)
{
	FJsonText& Json = Draft.Objects;
	const uint32 NumTests = Draft.Random.Below(6);
	const bool bEmptySlot = Draft.Random.OneIn(30);
	Draft.BeginPart(Option, "/Script/Engine.EnvQueryOption");
	Json.Key("Generator");
	Draft.WritePartPath(Json, Option + ".Generator");
	Json.BeginArray("Tests");
	for (uint32 Test = 0; Test < NumTests; ++Test)
		Draft.WritePartPath(Json, Option + ".Test_" + std::to_string(Test));
	if (bEmptySlot)
		Json.Raw("null");
	Json.EndArray();
	Draft.EndPart();

	WriteScriptPart(Draft, Option + ".Generator", EScriptRole::QueryGenerator);
	for (uint32 Test = 0; Test < NumTests; ++Test)
		WriteScriptPart(Draft, Option + ".Test_" + std::to_string(Test), EScriptRole::QueryTest);
}
}

void WriteBehaviorTree(FPackageDraft& Draft)
{
	FBehaviorTreeWriter(Draft).Write();
}

void WriteBlackboard(FPackageDraft& Draft)
{
	FJsonText& Json = Draft.Objects;
	const std::vector<std::string> Keys = KeysOf(Draft.Plan, Draft.Package);
	Draft.BeginAssetObject();
	if (const auto Parent = Draft.Picker.ParentOf(Draft.Package))
	{
		Json.Key("Parent");
		Draft.WriteReference(Json, *Parent);
	}
	Json.BeginArray("Keys");
	for (uint32 Key = 0; Key < Keys.size(); ++Key)
	{
		Json.BeginObject();
		Json.Field("EntryName", Keys[Key]);
		if (Draft.Random.Chance(100))
		{
			Json.Key("EntryDescription");
			Phrases::WriteSentence(Json, Draft.Random);
		}
		Json.Key("KeyType");
		Draft.WritePartPath(Json, "KeyType_" + std::to_string(Key));
		Json.EndObject();
	}
	Json.EndArray();
	Draft.EndPart();

	for (uint32 Key = 0; Key < Keys.size(); ++Key)
	{
		const std::string Class = "/Script/Engine.BlackboardKeyType_" + std::string(Draft.Random.Pick(KeyTypes));
		Draft.BeginPart("KeyType_" + std::to_string(Key), Class);
		Draft.EndPart();
	}
}

void WriteEnvQuery(FPackageDraft& Draft)
{
	FJsonText& Json = Draft.Objects;
	const uint32 NumOptions = Draft.Random.Between(1, 4);
	Draft.BeginAssetObject();
	Json.BeginArray("Options");
	for (uint32 Option = 0; Option < NumOptions; ++Option)
		Draft.WritePartPath(Json, "Option_" + std::to_string(Option));
	if (Draft.Random.OneIn(30))
		Json.Raw("null");
	Json.EndArray();
	Draft.EndPart();

	for (uint32 Option = 0; Option < NumOptions; ++Option)
		WriteOption(Draft, "Option_" + std::to_string(Option));
}
