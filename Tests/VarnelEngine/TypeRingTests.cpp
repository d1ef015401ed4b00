#include "EngineFixture.h"

#include "CoreObject/Reflection/Class.h"
#include "CoreObject/Reflection/Properties.h"

#include <algorithm>

namespace
{
class TypeRings : public FEngineFixture
{
protected:
	void AddStruct(const std::string& Name, const std::string& Parent, const std::string& Fields)
	{
		AddAsset("/Game/" + Name, "UserDefinedStruct", R"("SuperStruct":)" + Parent + R"(,"Fields":[)" + Fields + "]");
	}
	void AddBlueprint(const std::string& Name, const std::string& Parent, const std::string& Variables)
	{
		AddAsset("/Game/" + Name, "Blueprint", R"("ParentClass":)" + Parent + R"(,"NewVariables":[)" + Variables + "]");
	}
	static std::string Field(const std::string& Name, const std::string& Type, const std::string& More = "")
	{
		return R"({"name":")" + Name + R"(","type":")" + Type + '"' + More + "}";
	}

	/** "Name:Parent own fields; ...", a '!' behind fields that are not read. */
	static std::string Describe(const std::vector<std::string>& Paths)
	{
		std::string Out;
		for (const std::string& Path : Paths)
		{
			const auto* const Type = LoadObject<UStruct>(Path);
			EXPECT_TRUE(Type && Type->IsLinked()) << Path;
			const UStruct* const Parent = Type->GetSuperStruct();
			Out += Type->GetName().ToStdString() + ":" + (Parent ? Parent->GetName().ToStdString() : "");
			for (const FProperty* Property : PropertiesOf(*Type, {.bIncludeSuper = false}))
				Out += " " + Property->GetAuthoredName().ToStdString() +
					(Property->HasAnyCastFlags(EFieldCast::Undeclared) ? "!" : "");
			Out += "; ";
		}
		return Out;
	}

	/** What is seen, and told, when packages are loaded in every order: the same each time. */
	std::string DescribeInEveryOrder(const std::vector<std::string>& Paths, std::string& OutFaults)
	{
		std::vector<std::string> Order;
		for (const auto& [Package, Text] : Files)
			Order.push_back(Package);
		std::string First;
		do
		{
			UnloadAllLoadedPackages();
			TakeFaults();
			for (const std::string& Package : Order)
				EXPECT_NE(LoadPackage(FName(FStringView(Package))), nullptr);
			const std::string Seen = Describe(Paths);
			const std::string Told = TakeFaults();
			if (First.empty())
				OutFaults = Told;
			First = First.empty() ? Seen : First;
			EXPECT_EQ(Seen, First) << "loaded first: " << Order.front();
			EXPECT_EQ(Told, OutFaults) << "loaded first: " << Order.front();
		} while (std::next_permutation(Order.begin(), Order.end()));
		Files.clear();
		UnloadAllLoadedPackages();
		return First;
	}
};
}

TEST_F(TypeRings, AreCutTheSameWayWhateverIsLoadedFirst)
{
	std::string Told;
	AddStruct("S_A", R"("/Game/S_B.S_B")", Field("A", "int"));
	AddStruct("S_B", R"("/Game/S_A.S_A")", Field("B", "int"));
	AddStruct("S_Child", R"("/Game/S_A.S_A")", Field("C", "int"));
	AddStruct("S_Self", R"("/Game/S_Self.S_Self")", Field("V", "struct</Game/S_Self.S_Self>"));
	EXPECT_EQ(DescribeInEveryOrder({"/Game/S_A.S_A", "/Game/S_B.S_B", "/Game/S_Child.S_Child", "/Game/S_Self.S_Self"}, Told),
		"S_A: A; S_B: B; S_Child:S_A C; S_Self: V!; ")
		<< "both lose the parent, the child outside keeps it";
	EXPECT_EQ(Told,
		"/Game/S_A:2:15: error: the parent /Game/S_B.S_B is left out: parents and values lead in a ring: /Game/S_A.S_A -> "
		"/Game/S_B.S_B -> /Game/S_A.S_A [parent-cycle]\n"
		"/Game/S_B:2:15: error: the parent /Game/S_A.S_A is left out: parents and values lead in a ring: /Game/S_A.S_A -> "
		"/Game/S_B.S_B -> /Game/S_A.S_A [parent-cycle]\n"
		"/Game/S_Self:2:15: error: the parent /Game/S_Self.S_Self is left out: parents and values lead in a ring: "
		"/Game/S_Self.S_Self -> /Game/S_Self.S_Self [parent-cycle]\n"
		"/Game/S_Self:2:55: error: values of property 'V' of type struct</Game/S_Self.S_Self> are not read: parents and values "
		"lead in a ring: /Game/S_Self.S_Self -> /Game/S_Self.S_Self [value-cycle]\n");

	AddBlueprint("BP_A", R"("/Game/BP_B.BP_B_C")", Field("A", "int"));
	AddBlueprint("BP_B", R"("/Game/BP_C.BP_C_C")", Field("B", "int"));
	AddBlueprint("BP_C", R"("/Game/BP_A.BP_A_C")", Field("A", "int") + "," + Field("C", "int"));
	AddBlueprint("BP_Child", R"("/Game/BP_B.BP_B_C")", Field("B", "int") + "," + Field("D", "int"));
	EXPECT_EQ(
		DescribeInEveryOrder({"/Game/BP_A.BP_A_C", "/Game/BP_B.BP_B_C", "/Game/BP_C.BP_C_C", "/Game/BP_Child.BP_Child_C"}, Told),
		"BP_A_C:Object A; BP_B_C:Object B; BP_C_C:Object A C; BP_Child_C:BP_B_C D; ")
		<< "three in a ring; what a lost parent would have had may be declared";

	AddStruct("S_X", "null", Field("Y", "struct</Game/S_Y.S_Y>") + "," + Field("N", "int"));
	AddStruct("S_Y", "null",
		Field("X", "struct</Game/S_X.S_X>") + "," + Field("Xs", "array<struct</Game/S_X.S_X>>", R"(,"default":[{"N":1}])"));
	AddStruct("S_Z", "null", Field("X", "struct</Game/S_X.S_X>") + "," + Field("ByName", "map<name,struct</Game/S_Q.S_Q>>"));
	AddStruct("S_Q", R"("/Game/S_Z.S_Z")", Field("Own", "int"));
	EXPECT_EQ(DescribeInEveryOrder({"/Game/S_X.S_X", "/Game/S_Y.S_Y", "/Game/S_Z.S_Z", "/Game/S_Q.S_Q"}, Told),
		"S_X: Y! N; S_Y: X! Xs; S_Z: X ByName; S_Q:S_Z Own; ")
		<< "values in a ring; elements of containers close none";

	AddStruct("S_Up", "null", Field("Down", "struct</Game/S_Down.S_Down>") + "," + Field("Free", "struct</Game/S_Free.S_Free>"));
	AddStruct("S_Down", R"("/Game/S_Up.S_Up")", Field("D", "int"));
	AddStruct("S_Free", "null", Field("F", "int"));
	EXPECT_EQ(DescribeInEveryOrder({"/Game/S_Up.S_Up", "/Game/S_Down.S_Down", "/Game/S_Free.S_Free"}, Told),
		"S_Up: Down! Free; S_Down: D; S_Free: F; ")
		<< "a parent and a value in one ring";
}

TEST_F(TypeRings, AreNoneWherePackagesAloneLeadInARing)
{
	std::string Told;
	Add("/Game/P", R"({"path":"S_1","class":"/Script/Engine.UserDefinedStruct","properties":{"SuperStruct":"/Game/Q.T",
			"Fields":[{"name":"A","type":"int"}]}},
		{"path":"S_2","class":"/Script/Engine.UserDefinedStruct","properties":{"Fields":[{"name":"B","type":"int"}]}},
		{"path":"BP","class":"/Script/Engine.Blueprint","properties":{"ParentClass":"Later_C"}},
		{"path":"Later","class":"/Script/Engine.Blueprint","properties":{"NewVariables":[{"name":"T","type":"struct</Game/Q.T>"}]}})");
	Add("/Game/Q", R"({"path":"T","class":"/Script/Engine.UserDefinedStruct","properties":{"SuperStruct":"/Game/P.S_2",
			"Fields":[{"name":"C","type":"int"}]}})");
	AddStruct("R", R"("/Game/P.S_1")", Field("B", "int") + "," + Field("D", "int"));
	EXPECT_EQ(DescribeInEveryOrder({"/Game/P.S_1", "/Game/P.S_2", "/Game/Q.T", "/Game/R.R", "/Game/P.BP_C"}, Told),
		"S_1:T A; S_2: B; T:S_2 C; R:S_1 D; BP_C:Later_C; ");
	EXPECT_EQ(Told, "/Game/R:2:47: error: 'B' is a property of S_2 already [repeated-property]\n");
}

/** Types are looked for where every load finds them: directly in a package. */
TEST_F(TypeRings, TakeNoParentsFromInsideObjects)
{
	std::string Told;
	AddBlueprint("BP_Made", R"("/Script/Engine.Actor")", "");
	Add("/Game/P", R"({"path":"A","class":"/Game/BP_Made.BP_Made_C"},{"path":"A:S","class":"/Script/Engine.UserDefinedStruct"})");
	AddStruct("S_Child", R"("/Game/P.A:S")", Field("C", "int"));
	EXPECT_EQ(DescribeInEveryOrder({"/Game/S_Child.S_Child"}, Told), "S_Child: C; ");
	EXPECT_EQ(
		Told, "/Game/S_Child:2:15: error: the parent structure /Game/P.A:S cannot be had, so there is none [bad-reference]\n");
}
