#include "EngineFixture.h"

#include "CoreObject/Reflection/Properties.h"
#include "Engine/BehaviorTree.h"
#include "Engine/Blackboard.h"
#include "Engine/DataAsset.h"
#include "Engine/DataTable.h"
#include "Engine/EngineClasses.h"
#include "Engine/EnvQuery.h"
#include "Engine/Material.h"
#include "Engine/Niagara.h"
#include "Engine/UserDefinedEnum.h"
#include "Engine/UserDefinedStruct.h"
#include "Engine/WidgetBlueprint.h"
#include "Support/Cases.h"
#include "Support/Golden.h"

#include <set>

namespace
{
class EngineClasses : public FEngineFixture
{
protected:
	/** "Name:type Name:type ..." of a structure or class; those of native parents are left out. */
	static std::string Fields(const UStruct& Struct)
	{
		std::string Out;
		for (const FProperty* Field : PropertiesOf(Struct))
			if (!Field->GetOwnerStruct()->IsNativeStruct())
				Out += (Out.empty() ? "" : " ") + Field->GetAuthoredName().ToStdString() + ":" + *Field->GetTypeText();
		return Out;
	}
	static std::string DescribeEnum(const UEnum& Enum)
	{
		std::string Out;
		for (int32 Index = 0; Index < Enum.NumEnums(); ++Index)
			Out += *(Enum.GetNameByIndex(Index).ToString() + "=" + Enum.GetDisplayNameTextByIndex(Index).ToString() + ";");
		return Out;
	}
	/** Parameters in order as "Name=value", "Name=?" where the value cannot be read. */
	static std::string Scalars(const UMaterialInterface& Material)
	{
		TArray<FMaterialParameterInfo> Parameters;
		Material.GetAllScalarParameterInfo(Parameters);
		std::string Out;
		for (const FMaterialParameterInfo& Parameter : Parameters)
		{
			float Value = 0;
			const bool bHasValue = Material.GetScalarParameterValue(Parameter, Value);
			Out += (Out.empty() ? "" : " ") + Parameter.Name.ToString().ToStdString() + "=" +
				(bHasValue ? *FString::SanitizeFloat(Value) : "?");
		}
		return Out;
	}
};
}

TEST_F(EngineClasses, AreKnownByPathWithTheirParents)
{
	RegisterEngineClasses(); // once more, which changes nothing
	std::set<std::string> Classes;
	ForEachClass(
		[&Classes](UClass& Class)
		{
			EXPECT_EQ(FindClass(Class.GetPathName()), &Class) << *Class.GetPathName();
			const FString Parent = Class.GetSuperClass() ? Class.GetSuperClass()->GetName() : FString("none");
			EXPECT_TRUE(Classes.insert((Class.GetPathName() + ": " + Parent).ToStdString()).second) << *Class.GetPathName();
		});
	std::string Text;
	for (const std::string& Class : Classes)
		Text += Class + "\n";
	ExpectGolden("Engine/classes.txt", Text);
}

TEST_F(EngineClasses, DisplayNodesByNameOrClass)
{
	Declare(
		R"("classes":[{"name":"BTTask_Snuff_Lamp_C","super":"/Script/Engine.BTTaskNode"},{"name":"Patrol_C","super":"/Script/Engine.BTTaskNode"},
		{"name":"BT_","super":"/Script/Engine.BTTaskNode"},{"name":"BTNoMark","super":"/Script/Engine.BTTaskNode"}])");
	AddAsset("/Game/BTTask_Made", "Blueprint", R"("ParentClass":"/Script/Engine.BTTaskNode")");
	AddAsset("/Game/Walk_Home", "Blueprint", R"("ParentClass":"/Script/Engine.BTTaskNode")");
	const struct
	{
		const char* Why;
		const char* Class;
		const char* Name; // as the file has it
		const char* Displayed;
	} Cases[] = {
		{"its own name", "/Script/Engine.BTTask_Wait", "Warm the hands", "Warm the hands"},
		{"the class without its prefix", "/Script/Engine.BTTask_Wait", "", "Wait"},
		{"through the first underscore only", "/Script/Engine.BTComposite_Selector", "", "Selector"},
		{"a declared class keeps its _C", "/Script/Lantern.BTTask_Snuff_Lamp_C", "", "Snuff_Lamp_C"},
		{"a Blueprint's loses it", "/Game/BTTask_Made.BTTask_Made_C", "", "Made"},
		{"no prefix, no cut", "/Game/Walk_Home.Walk_Home_C", "", "Walk_Home"},
		{"", "/Script/Lantern.Patrol_C", "", "Patrol_C"},
		{"nothing would be left", "/Script/Lantern.BT_", "", "BT_"},
		{"no underscore", "/Script/Lantern.BTNoMark", "", "BTNoMark"},
	};
	for (const auto& Case : Traced(Cases))
	{
		Add("/Game/T",
			R"({"path":"T","class":")" + std::string(Case.Class) + R"(","properties":{"NodeName":")" + Case.Name +
				R"(","Description":"d"}})");
		const auto* const Node = LoadObject<UBTNode>("/Game/T.T");
		ASSERT_TRUE(Node) << Case.Class;
		EXPECT_EQ(Node->GetNodeName(), Case.Displayed);
		EXPECT_EQ(Node->GetStaticDescription(), "d");
		UnloadAllLoadedPackages();
	}
	EXPECT_EQ(TakeFaults(), "");
}

TEST_F(EngineClasses, ReadAssetsOfObjects)
{
	Add("/Game/BB", R"({"path":"BB","class":"/Script/Engine.BlackboardData","properties":{"Parent":"/Game/BB.BB","Keys":[
		{"EntryName":"Target","EntryDescription":"who","KeyType":"BB:T"},{"EntryName":"Plain","KeyType":null}]}},
		{"path":"BB:T","class":"/Script/Engine.BlackboardKeyType_Object"})");
	const auto* const Blackboard = LoadObject<UBlackboardData>("/Game/BB.BB");
	ASSERT_TRUE(Blackboard);
	EXPECT_EQ(Blackboard->Parent.Get(), Blackboard) << "a cycle is read as it stands";
	ASSERT_EQ(Blackboard->Keys.Num(), 2);
	EXPECT_EQ(Blackboard->Keys[0].EntryDescription, "who");
	EXPECT_EQ(Blackboard->Keys[0].KeyType->GetClass()->GetName(), "BlackboardKeyType_Object");
	EXPECT_FALSE(Blackboard->Keys[1].KeyType.Get());

	Add("/Game/Q", R"({"path":"Q","class":"/Script/Engine.EnvQuery","properties":{"Options":[null,"Q:O"]}},
		{"path":"Q:O","class":"/Script/Engine.EnvQueryOption","properties":{"Generator":"Q:O.G","Tests":["Q:O.T",null]}},
		{"path":"Q:O.G","class":"/Script/Engine.EnvQueryGenerator"},
		{"path":"Q:O.T","class":"/Script/Engine.EnvQueryTest","properties":{"TestPurpose":2,"TestComment":"why"}})");
	const auto* const Query = LoadObject<UEnvQuery>("/Game/Q.Q");
	ASSERT_TRUE(Query);
	ASSERT_EQ(Query->Options.Num(), 2);
	EXPECT_FALSE(Query->Options[0].Get());
	ASSERT_EQ(Query->Options[1]->Tests.Num(), 2);
	EXPECT_EQ(Query->Options[1]->Tests[0]->TestPurpose, 2);
	EXPECT_EQ(Query->Options[1]->Tests[0]->TestComment, "why");
	EXPECT_FALSE(Query->Options[1]->Tests[1].Get());

	Declare(R"("structs":[{"name":"Tint","properties":[{"name":"R","type":"float"}]}])");
	AddAsset("/Game/ET", "DataAsset", "");
	Add("/Game/NS", R"({"path":"NS","class":"/Script/Engine.NiagaraSystem","properties":{"EffectType":"/Game/ET.ET",
		"EmitterHandles":[{"Name":"Sparks","Emitter":"NS:E"},{"Name":"Empty","Emitter":null}],
		"UserParameters":[{"Name":"User.Tint","Type":"/Script/Lantern.Tint"},{"Name":"User.Mesh","Type":"/Script/Engine.StaticMesh"},
			{"Name":"User.Made","Type":"/Game/BP_Absent.BP_Absent_C"},{"Name":"User.Speed","Type":null}]}},
		{"path":"NS:E","class":"/Script/Engine.NiagaraEmitter","properties":{"Renderers":[null,"NS:E.R"]}},
		{"path":"NS:E.R","class":"/Script/Engine.NiagaraRendererProperties"})");
	const auto* const System = LoadObject<UNiagaraSystem>("/Game/NS.NS");
	ASSERT_TRUE(System);
	std::string Types;
	for (const FNiagaraUserParameter& Parameter : System->GetUserParameters())
		Types += *(Parameter.GetName().ToString() + ":" + Parameter.Type.GetPath().Asset.AssetName.ToString() + " ");
	EXPECT_EQ(Types, "User.Tint:Tint User.Mesh:StaticMesh User.Made:BP_Absent_C User.Speed:None ");
	EXPECT_EQ(FindPackage("/Game/ET"), nullptr) << "nothing is loaded before it is asked for";
	EXPECT_EQ(System->GetEffectType()->GetName(), "ET");
	EXPECT_EQ(System->GetEmitterHandles()[0].GetEmitterData()->GetRenderers().Num(), 2);
	EXPECT_EQ(System->GetEmitterHandles()[1].GetEmitterData(), nullptr);

	Add("/Game/W",
		R"({"path":"W","class":"/Script/Engine.WidgetBlueprint","properties":{"WidgetTree":"W:Tree","Animations":["W:Pulse"]}},
		{"path":"W:Tree","class":"/Script/Engine.WidgetTree","properties":{"RootWidget":"W:Tree.Z"}},
		{"path":"W:Tree.Z","class":"/Script/Engine.CanvasPanel"},{"path":"W:Tree.Note","class":"/Script/Engine.DataAsset"},
		{"path":"W:Tree.A","class":"/Script/Engine.Image"},{"path":"W:Tree.Z.Inner","class":"/Script/Engine.Button"},
		{"path":"W:Pulse","class":"/Script/Engine.WidgetAnimation"})");
	const auto* const Widget = LoadObject<UWidgetBlueprint>("/Game/W.W");
	ASSERT_TRUE(Widget);
	TArray<UWidget*> Widgets;
	Widget->WidgetTree->GetAllWidgets(Widgets);
	ASSERT_EQ(Widgets.Num(), 2) << "widgets directly in the tree, and nothing else";
	EXPECT_EQ(Widgets[0]->GetName(), "Z");
	EXPECT_EQ(Widget->Animations[0]->GetName(), "Pulse");
	EXPECT_EQ(TakeFaults(), "");
}

TEST_F(EngineClasses, CombineMaterialParametersAlongTheirParents)
{
	const auto Instance = [this](const std::string& Package, const std::string& Parent, const std::string& Scalars)
	{ AddAsset(Package, "MaterialInstanceConstant", R"("Parent":)" + Parent + R"(,"ScalarParameters":[)" + Scalars + "]"); };
	AddAsset("/Game/M", "Material",
		R"("ScalarParameters":[{"Name":"Rough","Value":0.5},{"Name":"Wet","Value":1},{"Name":"Old","Value":null}])");
	Instance("/Game/Mid", R"("/Game/M.M")", R"({"Name":"Added","Value":2},{"Name":"wet","Value":null})");
	Instance(
		"/Game/Low", R"("/Game/Mid.Mid")", R"({"Name":"Last","Value":3},{"Name":"Rough","Value":0.25},{"Name":"Old","Value":4})");
	Instance("/Game/Lost", R"("/Game/Nowhere.N")", R"({"Name":"A","Value":1})");
	Instance("/Game/Alone", "null", R"({"Name":"A","Value":1},{"Name":"A","Value":2})");
	Instance("/Game/Loop1", R"("/Game/Loop2.Loop2")", R"({"Name":"A","Value":1})");
	Instance("/Game/Loop2", R"("/Game/Loop1.Loop1")", R"({"Name":"A","Value":2},{"Name":"B","Value":2})");
	Instance("/Game/OfLoop", R"("/Game/Loop2.Loop2")", R"({"Name":"C","Value":3})");
	Instance("/Game/Self", R"("/Game/Self.Self")", R"({"Name":"A","Value":1})");
	const TCase<> Cases[] = {
		{"a material's own", "/Game/M.M", "Rough=0.5 Wet=1.0 Old=?"},
		{"an override of null hides the value; what is added comes last", "/Game/Mid.Mid", "Rough=0.5 Wet=? Old=? Added=2.0"},
		{"the nearest override counts", "/Game/Low.Low", "Rough=0.25 Wet=? Old=4.0 Added=2.0 Last=3.0"},
		{"a parent that is not there", "/Game/Lost.Lost", "A=1.0"},
		{"a name is listed once", "/Game/Alone.Alone", "A=1.0"},
		{"materials in a ring inherit nothing", "/Game/Loop1.Loop1", "A=1.0"},
		{"", "/Game/Loop2.Loop2", "A=2.0 B=2.0"},
		{"", "/Game/Self.Self", "A=1.0"},
		{"what derives from one of them has its parameters", "/Game/OfLoop.OfLoop", "A=2.0 B=2.0 C=3.0"},
	};
	for (const auto& Case : Traced(Cases))
	{
		const auto* const Material = LoadObject<UMaterialInterface>(Case.Given);
		ASSERT_TRUE(Material) << Case.Given;
		EXPECT_EQ(Scalars(*Material), Case.Expected);
	}
	TakeFaults();

	AddAsset("/Game/V", "Material", R"("VectorParameters":[{"Name":"Tint","Value":{"R":1,"G":0.5}}],
		"TextureParameters":[{"Name":"Base","Value":"/Game/T.T"},{"Name":"Mask","Value":null}],
		"ScalarParameters":[7,{"Value":1},{"Name":3},{"Name":"Odd","Value":"x","Kind":1}])");
	AddAsset("/Game/T", "Texture2D", "");
	const auto* const Vivid = LoadObject<UMaterialInterface>("/Game/V.V");
	ASSERT_TRUE(Vivid);
	FLinearColor Tint;
	EXPECT_TRUE(Vivid->GetVectorParameterValue({"Tint"}, Tint));
	EXPECT_EQ(FString::Printf("%g %g %g %g", double(Tint.R), double(Tint.G), double(Tint.B), double(Tint.A)), "1 0.5 0 1");
	TArray<FMaterialParameterInfo> Textures;
	Vivid->GetAllTextureParameterInfo(Textures);
	EXPECT_EQ(Textures.Num(), 2) << "one without a texture is a parameter too";
	EXPECT_EQ(Scalars(*Vivid), "Odd=?");
	EXPECT_EQ(TakeFaults(),
		"/Game/V:4:23: error: a parameter is an object with 'Name' and 'Value' [property-type]\n"
		"/Game/V:4:25: error: the parameter has no 'Name' [property-type]\n"
		"/Game/V:4:45: error: 'Name' of type name takes a string, not a number [property-type]\n"
		"/Game/V:4:70: error: 'Value' of type float takes a number, not a string [property-type]\n"
		"/Game/V:4:74: warning: 'Kind' is not a key that is known here; it is ignored [unknown-key]\n");
}

TEST_F(EngineClasses, FollowLongLinesOfMaterialParents)
{
	constexpr int32 NumLevels = 200;
	const auto PathOf = [](int32 Level) { return "/Game/M" + std::to_string(Level) + ".M" + std::to_string(Level); };
	for (int32 Level = 0; Level < NumLevels; ++Level)
	{
		const std::string Number = std::to_string(Level);
		AddAsset("/Game/M" + Number, "MaterialInstanceConstant",
			R"("Parent":")" + (Level > 0 ? PathOf(Level - 1) : "/Game/None.None") +
				R"(","ScalarParameters":[{"Name":"Shared","Value":)" + Number + R"(},{"Name":"P)" + Number + R"(","Value":1}])");
	}
	const auto ExpectAll = [&](int32 Level)
	{
		std::string Expected = "Shared=" + std::to_string(Level) + ".0";
		for (int32 Above = 0; Above <= Level; ++Above)
			Expected += " P" + std::to_string(Above) + "=1.0";
		const auto* const Material = LoadObject<UMaterialInterface>(PathOf(Level));
		ASSERT_TRUE(Material);
		EXPECT_EQ(Scalars(*Material), Expected);
		float Value = -1;
		EXPECT_TRUE(Material->GetScalarParameterValue({"Shared"}, Value)) << "asked for by name alone";
		EXPECT_EQ(Value, static_cast<float>(Level));
		EXPECT_FALSE(Material->GetScalarParameterValue({FName("P" + FString::FromInt(Level + 1))}, Value));
	};
	for (const int32 Level : {NumLevels - 1, 0, 63, 64, 65, 128, NumLevels - 1})
		ExpectAll(Level);
	UnloadPackage(FindPackage("/Game/M100"));
	AddAsset("/Game/M100", "MaterialInstanceConstant", R"("Parent":null,"ScalarParameters":[{"Name":"New","Value":5}])");
	const std::string Seen = Scalars(*LoadObject<UMaterialInterface>(PathOf(102)));
	EXPECT_EQ(Seen, "New=5.0 Shared=102.0 P101=1.0 P102=1.0") << "a parent that was loaded anew";
}

TEST_F(EngineClasses, GenerateClassesFromBlueprints)
{
	Declare(
		R"("classes":[{"name":"Weapon","super":"/Script/Engine.PrimaryDataAsset","properties":[{"name":"Damage","type":"int","default":10}]}])");
	AddAsset("/Game/BP_Blade", "Blueprint", R"("NewVariables":[{"name":"Length","type":"float","default":1.5},
		{"name":"Owner","type":"class</Game/BP_Blade.BP_Blade_C>","default":"/Game/BP_Blade.BP_Blade_C"}],"ParentClass":"/Script/Lantern.Weapon")");
	AddAsset("/Game/BP_Sword", "Blueprint",
		R"("ParentClass":"/Game/BP_Blade.BP_Blade_C","NewVariables":[{"name":"Edge","type":"string","default":"keen"},{"name":"Length","type":"int"}])");
	Add("/Game/DA_Sword", R"({"path":"DA_Sword","class":"/Game/BP_Sword.BP_Sword_C","properties":{"Edge":"dull","Damage":3}})");
	const UObject* const Sword = LoadObject<UDataAsset>("/Game/DA_Sword.DA_Sword");
	ASSERT_TRUE(Sword);
	EXPECT_EQ(Fields(*Sword->GetClass()), "Edge:string Length:float Owner:class</Game/BP_Blade.BP_Blade_C> Damage:int")
		<< "own first";
	const auto ReadText = [](const UObject* Object, const char* Name)
	{
		const FProperty* const Property = Object->GetClass()->FindPropertyByName(Name);
		const void* const Value = Property->ContainerPtrToValuePtr<void>(Object);
		const auto* const Number = CastField<FNumericProperty>(Property);
		return Number ? Number->GetFloatingPointPropertyValue(Value)
					  : CastField<FStrProperty>(Property)->GetPropertyValue(Value).NumBytes();
	};
	EXPECT_EQ(ReadText(Sword, "Length"), 1.5);
	EXPECT_EQ(ReadText(Sword, "Damage"), 3);
	EXPECT_EQ(ReadText(Sword->GetClass()->GetDefaultObject(), "Damage"), 10);
	EXPECT_EQ(ReadText(Sword->GetClass()->GetDefaultObject(), "Length"), 1.5);
	const auto* const Blade = LoadObject<UBlueprint>("/Game/BP_Blade.BP_Blade");
	EXPECT_EQ(Blade->GeneratedClass.Get(), Sword->GetClass()->GetSuperClass());
	EXPECT_EQ(Blade->ParentClass->GetName(), "Weapon");
	EXPECT_EQ(TakeFaults(), "/Game/BP_Sword:2:116: error: 'Length' is a property of BP_Blade_C already [repeated-property]\n");
}

TEST_F(EngineClasses, MakeClassesOfBlueprintsThatCannotHaveTheirParents)
{
	AddAsset("/Game/BP_A", "Blueprint", R"("ParentClass":"/Game/BP_B.BP_B_C","NewVariables":[{"name":"A","type":"int"}])");
	AddAsset("/Game/BP_B", "Blueprint", R"("ParentClass":"/Game/BP_A.BP_A_C","NewVariables":[{"name":"B","type":"int"}])");
	AddAsset("/Game/BP_Self", "Blueprint", R"("ParentClass":"/Game/BP_Self.BP_Self_C")");
	AddAsset("/Game/BP_Lost", "Blueprint", R"("ParentClass":"/Game/Nowhere.N_C")");
	AddAsset("/Game/BP_Meta", "Blueprint", R"("ParentClass":"/Script/CoreObject.Class")");
	AddAsset("/Game/BP_Maker", "Blueprint", R"("ParentClass":"/Script/Engine.Blueprint")");
	AddAsset("/Game/BP_Kind", "Blueprint", R"("ParentClass":"/Script/Engine.UserDefinedEnum")");
	AddAsset("/Game/BP_None", "Blueprint", "");
	// The structure's package asks for a class that leads to it.
	AddAsset("/Game/BP_Held", "Blueprint",
		R"("ParentClass":"/Script/Engine.Actor","NewVariables":[{"name":"S","type":"struct</Game/S_Back.S_Back>"},{"name":"After","type":"int"}])");
	Add("/Game/S_Back",
		R"({"path":"S_Back","class":"/Script/Engine.UserDefinedStruct","properties":{"Fields":[{"name":"F","type":"int"}]}},
		{"path":"BP_Inner","class":"/Script/Engine.Blueprint","properties":{"ParentClass":"/Game/BP_Held.BP_Held_C"}})");
	const struct
	{
		const char* Why;
		const char* Path;
		const char* Parent;
		const char* Fields;
	} Cases[] = {
		{"of two that are each other's parents none has its parent", "/Game/BP_A.BP_A_C", "Object", "A:int"},
		{"", "/Game/BP_B.BP_B_C", "Object", "B:int"},
		{"its own parent", "/Game/BP_Self.BP_Self_C", "Object", ""},
		{"no such class", "/Game/BP_Lost.BP_Lost_C", "Object", ""},
		{"nothing derives from what describes classes", "/Game/BP_Meta.BP_Meta_C", "Object", ""},
		{"none", "/Game/BP_None.BP_None_C", "Object", ""},
		{"nothing derives from what makes classes", "/Game/BP_Maker.BP_Maker_C", "Object", ""},
		{"nor from what describes other types", "/Game/BP_Kind.BP_Kind_C", "Object", ""},
		{"packages that need each other's types", "/Game/BP_Held.BP_Held_C", "Actor", "S:struct</Game/S_Back.S_Back> After:int"},
		{"", "/Game/S_Back.BP_Inner_C", "BP_Held_C", "S:struct</Game/S_Back.S_Back> After:int"},
	};
	for (const auto& Case : Traced(Cases))
	{
		const UClass* const Class = LoadObject<UClass>(Case.Path);
		ASSERT_TRUE(Class) << Case.Path;
		EXPECT_EQ(Class->GetSuperClass()->GetName(), Case.Parent);
		EXPECT_EQ(Fields(*Class), Case.Fields);
	}
	const std::string Told = TakeFaults();
	for (const char* File : {"BP_A", "BP_B", "BP_Self", "BP_Lost", "BP_Meta", "BP_Maker", "BP_Kind"})
		EXPECT_NE(Told.find(std::string("/Game/") + File + ":"), std::string::npos) << File << " in\n" << Told;
	EXPECT_EQ(Told.find("BP_None"), std::string::npos) << Told;
	EXPECT_EQ(Told.find("BP_Held"), std::string::npos) << Told;
}

TEST_F(EngineClasses, ReadEnumerationsAndStructures)
{
	AddAsset("/Game/E_Kind", "UserDefinedEnum",
		R"("Entries":[{"name":"NewEnumerator0","display":"Blunt"},{"name":"NewEnumerator2"}])");
	AddAsset("/Game/S_Base", "UserDefinedStruct", R"("Fields":[{"name":"Cost_1_AA","authored":"Cost","type":"int"},
		{"name":"Old_2_BB","authored":"Old","type":"bool","deprecated":true}])");
	AddAsset("/Game/S_Row", "UserDefinedStruct",
		R"("SuperStruct":"/Game/S_Base.S_Base","Category":"Items","MetaData":{"Tooltip":"One row"},
		"Fields":[{"name":"Kind_1_CC","authored":"Kind","type":"byte</Game/E_Kind.E_Kind>"},{"name":"Parts_2_DD","authored":"Parts",
		"type":"array<struct</Game/S_Base.S_Base>>"},{"name":"Base_3_EE","type":"struct</Game/S_Base.S_Base>"}])");
	const auto* const Row = LoadObject<UUserDefinedStruct>("/Game/S_Row.S_Row");
	ASSERT_TRUE(Row);
	EXPECT_EQ(Fields(*Row),
		"Kind:byte</Game/E_Kind.E_Kind> Parts:array<struct</Game/S_Base.S_Base>> Base_3_EE:struct</Game/S_Base.S_Base> Cost:int "
		"Old:bool");
	EXPECT_EQ(Row->GetOwnProperties()[0]->GetName(), "Kind_1_CC");
	EXPECT_EQ(Row->GetSuperStruct()->GetName(), "S_Base");
	EXPECT_EQ(FObjectEditorUtils::GetCategoryText(Row).ToString(), "Items");
	EXPECT_TRUE(FObjectEditorUtils::GetCategoryText(nullptr).IsEmpty());
	ASSERT_TRUE(Row->FindMetaData("TOOLTIP"));
	EXPECT_EQ(*Row->FindMetaData("tooltip"), "One row");
	EXPECT_EQ(Row->FindMetaData("Hint"), nullptr);
	EXPECT_EQ(DescribeEnum(*LoadObject<UUserDefinedEnum>("/Game/E_Kind.E_Kind")),
		"E_Kind::NewEnumerator0=Blunt;E_Kind::NewEnumerator2=NewEnumerator2;E_Kind::E_Kind_MAX=E_Kind_MAX;");
	EXPECT_EQ(TakeFaults(), "");

	AddAsset("/Game/E_None", "UserDefinedEnum", "");
	EXPECT_EQ(DescribeEnum(*LoadObject<UUserDefinedEnum>("/Game/E_None.E_None")), "E_None::E_None_MAX=E_None_MAX;");
	const auto* const Kind = static_cast<const FByteProperty*>(Row->FindPropertyByName("Kind_1_CC"));
	UnloadPackage(FindPackage("/Game/E_Kind"));
	ASSERT_TRUE(Kind->GetEnum()) << "the enumeration is loaded again when it is needed";
	EXPECT_EQ(Kind->GetEnum()->NumEnums(), 3);
}

TEST_F(EngineClasses, CountRowsAndCheckCellsOnlyForListeners)
{
	Declare(R"("structs":[{"name":"Row","properties":[{"name":"Damage","type":"int"},{"name":"Tags","type":"set<name>"}]}])");
	const auto Table = [this](const std::string& Package, const std::string& Properties)
	{ AddAsset(Package, "DataTable", Properties); };
	Table("/Game/Good", R"("Rows":{"A":{"Damage":1},"B":{}},"RowStruct":"/Script/Lantern.Row")");
	Table("/Game/Bad", R"("Rows":{"A":{"Damage":"x","Speed":1},"B":7,"a":{"Tags":["t","T"]}},"RowStruct":"/Script/Lantern.Row")");
	Table("/Game/Free", R"("Rows":{"A":{"Anything":1},"B":2})");
	Table("/Game/Lost", R"("RowStruct":"/Game/S_Lost.S_Lost","Rows":{"A":{"Anything":1}})");
	Table("/Game/NoRows", R"("RowStruct":"/Script/Lantern.Row","Rows":[1,2])");
	Table("/Game/Actor", R"("RowStruct":"/Script/Engine.Actor","Rows":{"A":{}})");
	const struct
	{
		const char* Path;
		int32 NumRows;
		const char* Faults;
	} Cases[] = {
		{"/Game/Good.Good", 2, ""},
		{"/Game/Bad.Bad", 2,
			"/Game/Bad:2:23: warning: 'Damage' of type int takes a number, not a string [property-type]\n"
			"/Game/Bad:2:27: warning: 'Speed' is not a property of Row [unknown-property]\n"
			"/Game/Bad:2:42: warning: properties are an object, not a number [property-type]\n"
			"/Game/Bad:2:48: warning: the table has a row 'a' already [repeated-row]\n"
			"/Game/Bad:2:61: warning: 'Tags' has this value already; a set keeps it once [repeated-value]\n"},
		{"/Game/Free.Free", 2, ""},
		{"/Game/Lost.Lost", 1, "/Game/Lost: warning: there is no package /Game/S_Lost [no-such-package]\n"},
		{"/Game/NoRows.NoRows", 0, "/Game/NoRows:2:42: error: 'Rows' is an object, row name to row [property-type]\n"},
		{"/Game/Actor.Actor", 1,
			"/Game/Actor:2:13: error: 'RowStruct' of type object</Script/CoreObject.ScriptStruct> cannot refer to "
			"/Script/Engine.Actor, which is of class Class [bad-reference]\n"},
	};
	TakeFaults();
	for (const auto& Case : Cases)
	{
		const auto* const Loaded = LoadObject<UDataTable>(Case.Path);
		ASSERT_TRUE(Loaded) << Case.Path;
		EXPECT_EQ(Loaded->GetRowMap().Num(), Case.NumRows) << Case.Path;
		EXPECT_EQ(TakeFaults(), Case.Faults) << Case.Path;
	}
	UnloadAllLoadedPackages();
	AddAsset("/Game/S_Heavy", "UserDefinedStruct", "");
	Table("/Game/Lazy", R"("RowStruct":"/Game/S_Heavy.S_Heavy","Rows":{"A":{}})");
	SetLoadDiagnostics(nullptr);
	EXPECT_EQ(LoadObject<UDataTable>("/Game/Lazy.Lazy")->GetRowMap().Num(), 1);
	EXPECT_EQ(FindPackage("/Game/S_Heavy"), nullptr) << "without a listener the structure is not needed";
}
