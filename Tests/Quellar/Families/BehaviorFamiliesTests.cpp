#include "Support/Seed.h"
#include "Support/TestProject.h"

#include <random>

namespace
{
/** A guard's tree with one of everything, and the tree that it runs. */
void AddGuard(FTestProject& Project)
{
	Project.Script("Game", R"("classes": [
		{"name": "BTDecorator_Seen", "super": "/Script/Engine.BTDecorator"},
		{"name": "BTService_Alarm", "super": "/Script/Engine.BTService"},
		{"name": "BTTask_RunNumber", "super": "/Script/Engine.BTTask_RunBehavior",
		 "properties": [{"name": "BehaviorAsset", "type": "int", "default": 7}]}])");
	Project.Asset("/Game/BB_Guard", "BlackboardData");
	Project.Asset("/Game/BT_Sub", "BehaviorTree");
	Project.Asset("/Game/BT_Guard", "BehaviorTree")
		.Set("BlackboardAsset", R"("/Game/BB_Guard.BB_Guard")")
		.Set("RootNode", R"("^Root")")
		.Inner("Root", "BTComposite_Selector", R"("NodeName": "Choose", "Description": "first that works", "Children": [
			{"ChildComposite": "^Fight", "ChildTask": "^Rest", "Decorators": ["^Seen", null]},
			{"ChildTask": "^Sub", "Decorators": ["^Seen"]}, {"ChildTask": "^Number"}, {}])")
		.Inner("Root.Alarm", "/Script/Game.BTService_Alarm")
		.Inner("Seen", "/Script/Game.BTDecorator_Seen", R"("NodeName": "Hidden")")
		.Inner("Seen.Alarm", "/Script/Game.BTService_Alarm")
		.Inner("Fight", "BTComposite_Sequence", R"("Children": [{"ChildTask": "^Go"}])")
		.Inner("Go", "BTTask_MoveTo", R"("BlackboardKey": "EnemyActor")")
		.Inner("Go.Alarm", "/Script/Game.BTService_Alarm")
		.Inner("Go.Alarm.Deeper", "/Script/Game.BTService_Alarm")
		.Inner("Rest", "BTTask_Wait", R"("NodeName": "Repose")")
		.Inner("Sub", "BTTask_RunBehavior", R"("NodeName": "Call", "BehaviorAsset": "/Game/BT_Sub.BT_Sub")")
		.Inner("Number", "/Script/Game.BTTask_RunNumber", R"("NodeName": "Count")");
}
}

TEST(BehaviorTreeFamily, FindsNodesAndWhatHangsOnThem)
{
	FTestProject Project;
	AddGuard(Project);
	ExpectFound(Project, "BehaviorTree",
		{
			{"by blackboard", "BB_", "BT_Guard: BlackboardName BB_Guard @BehaviorTree"},
			{"by node name", "choose", "BT_Guard: NodeName Choose @BehaviorTree/Node"},
			{"by description", "WORKS", "BT_Guard: NodeComment first that works @BehaviorTree/Node"},
			{"depth first; a composite before the task beside it", "e",
				"BT_Guard: NodeName Choose @BehaviorTree/Node; NodeClass BTComposite_Selector @BehaviorTree/Node; Service "
				"BTService_Alarm @BehaviorTree/Service x2; Decorator BTDecorator_Seen @BehaviorTree/Decorator x2; NodeName "
				"Sequence "
				"@BehaviorTree/Node; NodeClass BTComposite_Sequence @BehaviorTree/Node; NodeName MoveTo @BehaviorTree/Node; "
				"NodeClass BTTask_MoveTo @BehaviorTree/Node; MoveToKey EnemyActor @BehaviorTree/Node; NodeName Repose "
				"@BehaviorTree/Node; NodeClass BTTask_RunBehavior @BehaviorTree/Node; NodeClass BTTask_RunNumber "
				"@BehaviorTree/Node"},
			{"goal of a move", "enemyactor", "BT_Guard: MoveToKey EnemyActor @BehaviorTree/Node"},
			{"the tree that a task runs, beside that tree itself", "BT_Sub",
				"BT_Guard: RunBehaviorAsset BT_Sub @BehaviorTree/Node | BT_Sub: AssetName BT_Sub @BehaviorTree"},
			{"once for each child that has it", "BTDecorator_Seen",
				"BT_Guard: Decorator BTDecorator_Seen @BehaviorTree/Decorator x2"},
			{"decorators are no nodes", "Hidden", ""},
			{"services of composites and tasks, directly inside", "BTService_Alarm",
				"BT_Guard: Service BTService_Alarm @BehaviorTree/Service x2"},
			{"a property of another type under that name names no tree", "7", ""},
			{"its own name only when nothing else matched", "BT_Guard", "BT_Guard: AssetName BT_Guard @BehaviorTree"},
		});
}

TEST(BehaviorTreeFamily, SurvivesWhateverTreesHold)
{
	FTestProject Project;
	Project.Asset("/Game/BT_Cycle", "BehaviorTree")
		.Set("RootNode", R"("^A")")
		.Inner("A", "BTComposite_Selector",
			R"("NodeName": "Upper", "Children": [{"ChildComposite": "^B"}, {"ChildComposite": "^B"}])")
		.Inner("B", "BTComposite_Selector", R"("NodeName": "Lower", "Children": [{"ChildComposite": "^A"}, {}])");
	FTestAsset& Deep = Project.Asset("/Game/BT_Deep", "BehaviorTree").Set("RootNode", R"("^N0")");
	FTestAsset& Diamonds = Project.Asset("/Game/BT_Diamonds", "BehaviorTree").Set("RootNode", R"("^N0")");
	constexpr int32 NumLevels = 10000;
	for (int32 Level = 0; Level <= NumLevels; ++Level)
	{
		const std::string Below = R"({"ChildComposite": "^N)" + std::to_string(Level + 1) + R"("})";
		const std::string Node = "N" + std::to_string(Level);
		if (Level == NumLevels)
			Deep.Inner(Node, "BTComposite_Selector", R"("NodeName": "Bottom")");
		else
			Deep.Inner(Node, "BTComposite_Selector", R"("NodeName": "Level", "Children": [)" + Below + "]");
		if (Level < 60) // as many ways down as there are seconds in the universe
			Diamonds.Inner(Node, "BTComposite_Selector", R"("NodeName": "Way", "Children": [)" + Below + ", " + Below + "]");
	}
	Diamonds.Inner("N60", "BTComposite_Selector", R"("NodeName": "Meeting")");
	Project.Asset("/Game/BT_Gone", "BehaviorTree")
		.Set("RootNode", R"("^Root")")
		.Inner("Root", "BTComposite_Selector", R"("NodeName": "Alone", "Children": [{"ChildTask": "^Gone"}])")
		.Inner("Gone", "/Script/Nowhere.BTTask_Gone", R"("NodeName": "Undeclared")");

	ExpectFound(Project, "BehaviorTree",
		{
			{"a node is not walked below itself, but twice beside itself", "Upper",
				"BT_Cycle: NodeName Upper @BehaviorTree/Node"},
			{"the same for the lower one", "Lower", "BT_Cycle: NodeName Lower @BehaviorTree/Node x2"},
			{"deeper than any stack", "Bottom", "BT_Deep: NodeName Bottom @BehaviorTree/Node"},
			{"every level counts", "Level", "BT_Deep: NodeName Level @BehaviorTree/Node x10000"},
			{"a node of a class that nothing declares", "Alone", "BT_Gone: NodeName Alone @BehaviorTree/Node"},
			{"is not there", "Undeclared", ""},
		});
	EXPECT_EQ(Render(Project.Search("BehaviorTree", "Meeting")), "BT_Diamonds: NodeName Meeting @BehaviorTree/Node x2147483647")
		<< "more often than can be counted";
	EXPECT_EQ(Project.Check(),
		"BT_Cycle.vasset warning empty-child\nBT_Cycle.vasset error tree-cycle\nBT_Deep.vasset warning deep-tree\n"
		"BT_Gone.vasset error bad-reference\nBT_Gone.vasset warning unknown-class");
}

namespace
{
/** A tree of composites that share branches, with services and decorators, and the walk over it that the search stands for. */
class FModelTree
{
public:
	explicit FModelTree(std::mt19937& Random) : Nodes(1 + Random() % 6)
	{
		const bool bMayReturn = Random() % 3 == 0;
		for (std::size_t Index = 0; Index < Nodes.size(); ++Index)
		{
			FNode& Node = Nodes[Index];
			Node.Name = "Node" + std::to_string(Random() % 4);
			Node.Services = PickSome(Random, 3);
			for (std::size_t Left = Random() % 4; Left > 0; --Left)
			{
				const std::size_t First = bMayReturn ? 0 : Index + 1;
				if (First < Nodes.size())
					Node.Children.push_back({First + Random() % (Nodes.size() - First), PickSome(Random, 2)});
			}
		}
	}

	void AddTo(FTestProject& Project, const std::string& Package) const
	{
		FTestAsset& Asset = Project.Asset(Package, "BehaviorTree").Set("RootNode", R"("^N0")");
		for (std::size_t Index = 0; Index < Nodes.size(); ++Index)
		{
			const std::string Path = "N" + std::to_string(Index);
			std::string Children;
			for (const FChild& Child : Nodes[Index].Children)
			{
				std::string Decorators;
				for (const std::size_t Kind : Child.Decorators)
					Decorators += (Decorators.empty() ? "\"^D" : ", \"^D") + std::to_string(Kind) + "\"";
				Children += (Children.empty() ? "" : ", ") + (R"({"ChildComposite": "^N)" + std::to_string(Child.Node)) +
					R"(", "Decorators": [)" + Decorators + "]}";
			}
			Asset.Inner(
				Path, "BTComposite_Selector", R"("NodeName": ")" + Nodes[Index].Name + R"(", "Children": [)" + Children + "]");
			for (std::size_t Place = 0; Place < Nodes[Index].Services.size(); ++Place)
				Asset.Inner(
					Path + ".S" + std::to_string(Place), "/Script/Game.Service" + std::to_string(Nodes[Index].Services[Place]));
		}
		for (const char* Kind : {"0", "1"})
			Asset.Inner(std::string("D") + Kind, std::string("/Script/Game.Decorator") + Kind);
	}

	void Walk(const FAssetSearchParams& Params, FAssetResult& Result, int32& TotalHits) const
	{
		std::vector<std::size_t> Line;
		Walk(0, Line, Params, Result, TotalHits);
	}

private:
	struct FChild
	{
		std::size_t Node;
		std::vector<std::size_t> Decorators;
	};
	struct FNode
	{
		std::string Name;
		std::vector<std::size_t> Services;
		std::vector<FChild> Children;
	};

	static std::vector<std::size_t> PickSome(std::mt19937& Random, std::size_t NumKinds)
	{
		std::vector<std::size_t> Kinds(Random() % 3);
		for (std::size_t& Kind : Kinds)
			Kind = Random() % NumKinds;
		return Kinds;
	}

	void Walk(std::size_t Index, std::vector<std::size_t>& Line, const FAssetSearchParams& Params, FAssetResult& Result,
		int32& TotalHits) const
	{
		if (std::find(Line.begin(), Line.end(), Index) != Line.end())
			return;
		Line.push_back(Index);
		const auto Add = [&](const char* Kind, const std::string& Name, const char* Container)
		{ OrivaneSearchUtils::AppendIfTermMatches(Result, Kind, FString(Name), Container, Params, TotalHits); };
		Add("NodeName", Nodes[Index].Name, "BehaviorTree/Node");
		Add("NodeComment", "", "BehaviorTree/Node");
		Add("NodeClass", "BTComposite_Selector", "BehaviorTree/Node");
		for (const std::size_t Kind : Nodes[Index].Services)
		{
			Add("Service", "Service" + std::to_string(Kind), "BehaviorTree/Service");
			if (TotalHits >= Params.MaxTotalHits)
				break;
		}
		for (const FChild& Child : Nodes[Index].Children)
		{
			for (const std::size_t Kind : Child.Decorators)
				Add("Decorator", "Decorator" + std::to_string(Kind), "BehaviorTree/Decorator");
			Walk(Child.Node, Line, Params, Result, TotalHits);
		}
		Line.pop_back();
	}

	std::vector<FNode> Nodes;
};
}

TEST(BehaviorTreeFamily, CountsAsAWalkOverEveryWayDown)
{
	std::mt19937 Random(GetSeed(5));
	for (int32 Round = 0; Round < 40; ++Round)
	{
		SCOPED_TRACE("round " + std::to_string(Round));
		FTestProject Project;
		Project.Script("Game", R"("classes": [{"name": "Decorator0", "super": "/Script/Engine.BTDecorator"},
			{"name": "Decorator1", "super": "/Script/Engine.BTDecorator"}, {"name": "Service0", "super": "/Script/Engine.BTService"},
			{"name": "Service1", "super": "/Script/Engine.BTService"}, {"name": "Service2", "super": "/Script/Engine.BTService"}])");
		const FModelTree Tree(Random);
		Tree.AddTo(Project, "/Game/BT_Model");
		for (int32 MaxTotal = 1; MaxTotal <= 10; ++MaxTotal)
		{
			FAssetSearchParams Params = MakeParams("BehaviorTree", Random() % 2 == 0 ? "" : "e1");
			Params.MaxTotalHits = MaxTotal;
			Params.MaxHitsPerKind = 1 + static_cast<int32>(Random() % 3);
			FAssetSearchResult Expected;
			FAssetResult Result{.AssetPath = "/Game/BT_Model.BT_Model", .AssetClass = "BehaviorTree"};
			int32 TotalHits = 0;
			Tree.Walk(Params, Result, TotalHits);
			if (!Result.Hits.IsEmpty())
				Expected.Results.Add(Result);
			EXPECT_EQ(Render(Project.Search(Params)), Render(Expected)) << *Params.Term << " " << MaxTotal;
		}
	}
}

/** A file of a few kilobytes: twenty branches that share the next twenty, and so on. */
TEST(BehaviorTreeFamily, CountsSharedBranchesWithoutWalkingThem)
{
	FTestProject Project;
	FTestAsset& Tree = Project.Asset("/Game/BT_Shared", "BehaviorTree").Set("RootNode", R"("^N0")");
	for (int32 Level = 0; Level < 4; ++Level)
	{
		std::string Children;
		for (int32 Child = 0; Child < 20; ++Child)
			Children +=
				(Child > 0 ? R"(, {"ChildComposite": "^N)" : R"({"ChildComposite": "^N)") + std::to_string(Level + 1) + R"("})";
		Tree.Inner("N" + std::to_string(Level), "BTComposite_Selector", R"("Children": [)" + Children + "]");
	}
	Tree.Inner("N4", "BTComposite_Selector", R"("NodeName": "Leaf")");
	EXPECT_EQ(Render(Project.Search("BehaviorTree", "Leaf")), "BT_Shared: NodeName Leaf @BehaviorTree/Node x160000");
}

TEST(BehaviorTreeFamily, WalksOnBeyondTheHitCap)
{
	FTestProject Project;
	Project.Script("Game", R"("classes": [{"name": "BTDecorator_Same", "super": "/Script/Engine.BTDecorator"},
		{"name": "BTService_Same", "super": "/Script/Engine.BTService"}])");
	Project.Asset("/Game/BT_A", "BehaviorTree")
		.Set("RootNode", R"("^A")")
		.Inner("A", "BTComposite_Selector", R"("NodeName": "Same", "Children": [
			{"ChildTask": "^B", "Decorators": ["^D"]}, {"ChildTask": "^B", "Decorators": ["^D", "^D"]}])")
		.Inner("A.First", "/Script/Game.BTService_Same")
		.Inner("A.Second", "/Script/Game.BTService_Same")
		.Inner("B", "BTTask_Wait", R"("NodeName": "Same")")
		.Inner("B.First", "/Script/Game.BTService_Same")
		.Inner("B.Second", "/Script/Game.BTService_Same")
		.Inner("D", "/Script/Game.BTDecorator_Same");
	FAssetSearchParams Params = MakeParams("BehaviorTree", "Same");
	Params.MaxTotalHits = 3;
	EXPECT_EQ(Render(Project.Search(Params)),
		"BT_A: NodeName Same @BehaviorTree/Node x3; Service BTService_Same @BehaviorTree/Service x4; "
		"Decorator BTDecorator_Same @BehaviorTree/Decorator x3")
		<< "only the services of a node end at the cap, which the first decorator reaches";
}

TEST(BlackboardFamily, FindsParentAndKeys)
{
	FTestProject Project;
	Project.Asset("/Game/BB_Base", "BlackboardData")
		.Set("Keys", R"([{"EntryName": "Self"}, {"EntryName": "Self", "EntryDescription": "Who asks"}])");
	Project.Asset("/Game/BB_Guard", "BlackboardData")
		.Set("Parent", R"("/Game/BB_Base.BB_Base")")
		.Set("Keys", R"([{"EntryName": "Enemy", "EntryDescription": "Whom we see", "KeyType": "^Type"},
			{"EntryName": "Alarm", "KeyType": "^Flag"}])")
		.Inner("Type", "BlackboardKeyType_Object")
		.Inner("Flag", "BlackboardKeyType_Bool");
	Project.Asset("/Game/BB_Lost", "BlackboardData").Set("Parent", R"("/Game/BB_None.BB_None")");
	ExpectFound(Project, "Blackboard",
		{
			{"parent, then the parent itself by name", "bb_base",
				"BB_Base: AssetName BB_Base @Blackboard | BB_Guard: Parent BB_Base @Blackboard"},
			{"key", "enemy", "BB_Guard: KeyName Enemy @Keys"},
			{"description", "whom", "BB_Guard: KeyDescription Whom we see @Keys"},
			{"type of a key", "KeyType_Bool", "BB_Guard: KeyType BlackboardKeyType_Bool @Keys"},
			{"key by key, an empty description never", "",
				"BB_Base: KeyName Self @Keys x2; KeyDescription Who asks @Keys | BB_Guard: Parent BB_Base @Blackboard; KeyName "
				"Enemy "
				"@Keys; KeyDescription Whom we see @Keys; KeyType BlackboardKeyType_Object @Keys; KeyName Alarm @Keys; KeyType "
				"BlackboardKeyType_Bool @Keys | BB_Lost: AssetName BB_Lost @Blackboard"},
			{"a parent that is not there", "BB_None", ""},
		});
}

TEST(BlackboardFamily, StopsAtTheHitCap)
{
	FTestProject Project;
	Project.Asset("/Game/BB_A", "BlackboardData")
		.Set("Keys", R"([{"EntryName": "Key1"}, {"EntryName": "Key2", "EntryDescription": "of Key2"}, {"EntryName": "Key1"}])");
	Project.Asset("/Game/BB_B", "BlackboardData").Set("Keys", R"([{"EntryName": "Key3"}])");
	FAssetSearchParams Params = MakeParams("Blackboard", "Key");
	Params.MaxTotalHits = 2;
	EXPECT_EQ(Render(Project.Search(Params)), "BB_A: KeyName Key1 @Keys; KeyName Key2 @Keys")
		<< "a later key would have been counted";
}

TEST(BlackboardFamily, SurvivesCyclesOfParents)
{
	FTestProject Project;
	Project.Asset("/Game/BB_A", "BlackboardData").Set("Parent", R"("/Game/BB_B.BB_B")");
	Project.Asset("/Game/BB_B", "BlackboardData").Set("Parent", R"("/Game/BB_A.BB_A")");
	Project.Asset("/Game/BB_C", "BlackboardData").Set("Parent", R"("/Game/BB_B.BB_B")");
	EXPECT_EQ(Render(Project.Search("Blackboard", "BB_A")), "BB_A: AssetName BB_A @Blackboard | BB_B: Parent BB_A @Blackboard");
	EXPECT_EQ(Project.Check(), "BB_A.vasset error parent-cycle") << "once for the cycle";
}

TEST(EnvQueryFamily, FindsOptionsGeneratorsAndTests)
{
	FTestProject Project;
	Project.Script("Game", R"("classes": [
		{"name": "Generator_Ring", "super": "/Script/Engine.EnvQueryGenerator", "properties": [
			{"name": "Radius", "type": "float", "default": 500}, {"name": "OldRadius", "type": "int", "deprecated": true}]},
		{"name": "Test_Far", "super": "/Script/Engine.EnvQueryTest", "properties": [{"name": "MaxFar", "type": "float"}]}])");
	Project.Asset("/Game/EQS_Hide", "EnvQuery")
		.Set("Options", R"([null, "^Doors", "^Bare"])")
		.Inner("Doors", "EnvQueryOption",
			R"("Generator": "^Doors.Ring", "Tests": [null, "^Doors.Far", "^Doors.Same", "^Doors.Odd"])")
		.Inner("Doors.Ring", "/Script/Game.Generator_Ring")
		.Inner("Doors.Far", "/Script/Game.Test_Far", R"("TestPurpose": 2, "TestComment": "Behind lamps")")
		.Inner("Doors.Same", "/Script/Game.Test_Far", R"("TestPurpose": 1)")
		.Inner("Doors.Odd", "EnvQueryTest", R"("TestPurpose": 9)")
		.Inner("Bare", "EnvQueryOption");
	ExpectFound(Project, "EnvQuery",
		{
			{"option", "doors", "EQS_Hide: OptionName Doors @EnvQuery/Option"},
			{"generator's class", "Generator_R", "EQS_Hide: GeneratorClass Generator_Ring @EnvQuery/Generator"},
			{"generator's properties, deprecated ones too", "radius",
				"EQS_Hide: GeneratorProperty Radius @EnvQuery/GeneratorProperties; GeneratorProperty OldRadius "
				"@EnvQuery/GeneratorProperties"},
			{"a value is no name", "500", ""},
			{"test's class", "test_far", "EQS_Hide: TestClass Test_Far @EnvQuery/Test x2"},
			{"purpose 2 holds the word of purpose 1", "score",
				"EQS_Hide: TestPurpose FilterAndScore @EnvQuery/Test; TestPurpose Score @EnvQuery/Test"},
			{"any other purpose", "unknown", "EQS_Hide: TestPurpose Unknown @EnvQuery/Test"},
			{"comment", "lamps", "EQS_Hide: TestComment Behind lamps @EnvQuery/Test"},
			{"test's properties, once for each test", "maxfar", "EQS_Hide: TestProperty MaxFar @EnvQuery/TestProperties x2"},
			{"inherited ones too", "testcomment", "EQS_Hide: TestProperty TestComment @EnvQuery/TestProperties x3"},
			{"its own name only when nothing else matched", "EQS", "EQS_Hide: AssetName EQS_Hide @EnvQuery"},
		});
}

TEST(EnvQueryFamily, StopsAtTheHitCap)
{
	FTestProject Project;
	Project.Script("Game", R"("classes": [
		{"name": "Ring", "super": "/Script/Engine.EnvQueryGenerator",
		 "properties": [{"name": "FarA", "type": "int"}, {"name": "FarB", "type": "int"}]},
		{"name": "Test_Far", "super": "/Script/Engine.EnvQueryTest",
		 "properties": [{"name": "FarC", "type": "int"}, {"name": "FarD", "type": "int"}]}])");
	Project.Asset("/Game/EQS_A", "EnvQuery")
		.Set("Options", R"(["^One", "^FarTwo", "^Three"])")
		.Inner("One", "EnvQueryOption", R"("Generator": "^Ring", "Tests": ["^Test"])")
		.Inner("FarTwo", "EnvQueryOption", R"("Generator": "^Ring", "Tests": ["^Test", "^Test"])")
		.Inner("Three", "EnvQueryOption", R"("Generator": "^Ring", "Tests": ["^Test"])")
		.Inner("Ring", "/Script/Game.Ring")
		.Inner("Test", "/Script/Game.Test_Far");
	FAssetSearchParams Params = MakeParams("EnvQuery", "far");
	Params.MaxTotalHits = 6;
	EXPECT_EQ(Render(Project.Search(Params)),
		"EQS_A: GeneratorProperty FarA @EnvQuery/GeneratorProperties x2; GeneratorProperty FarB @EnvQuery/GeneratorProperties; "
		"TestClass Test_Far @EnvQuery/Test x2; TestProperty FarC @EnvQuery/TestProperties x2; TestProperty FarD "
		"@EnvQuery/TestProperties; OptionName FarTwo @EnvQuery/Option")
		<< "of the option that reaches the cap: a property of its generator, a test with one property";
}
