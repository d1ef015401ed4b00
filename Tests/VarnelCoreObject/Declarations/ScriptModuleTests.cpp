#include "CoreObject/Declarations/ScriptModule.h"

#include "CoreObject/Packages/PackageSource.h"
#include "PackageFixture.h"
#include "Support/Cases.h"

namespace
{
class ScriptModule : public testing::Test
{
protected:
	ScriptModule()
	{
		UTestNode::StaticClass();
		UTestBlueprint::StaticClass();
	}
	~ScriptModule() override { RemoveScriptModules(); }

	/** Declares modules given as pairs of name and text; returns the faults. */
	static std::string Declare(std::initializer_list<std::pair<const char*, std::string>> Modules)
	{
		TArray<FScriptModuleFile> Files;
		for (const auto& [Name, Text] : Modules)
			Files.Add({Name, FString("Script/") + Name + ".vscript", Text});
		FDiagnosticSink Sink;
		DeclareScriptModules(Files, &Sink);
		return RenderFaults(Sink);
	}

	/** "Name : Parent; type Name = Value; ..." with declared properties and the values of ints alone; "-" where there is no such
	 * class or structure. */
	static std::string Describe(const char* Path)
	{
		const auto* const Struct = static_cast<const UStruct*>(StaticFindObject(UStruct::StaticClass(), Path));
		if (!Struct)
			return "-";
		std::string Out = *Struct->GetName();
		Out += Struct->GetSuperStruct() ? " : " + Struct->GetSuperStruct()->GetName().ToStdString() : "";
		std::vector<std::byte> Value(static_cast<std::size_t>(Struct->GetPropertiesSize()));
		const auto* const Class = Cast<UClass>(static_cast<const UObject*>(Struct));
		const auto* const ScriptStruct = Cast<UScriptStruct>(static_cast<const UObject*>(Struct));
		const void* const Defaults =
			Class ? static_cast<const void*>(const_cast<UClass*>(Class)->GetDefaultObject()) : Value.data();
		if (ScriptStruct)
			ScriptStruct->InitializeStruct(Value.data());
		for (const FProperty* Property : PropertiesOf(*Struct))
		{
			if (Property->GetOwnerStruct()->IsNativeStruct())
				continue;
			Out += "; " + Property->GetTypeText().ToStdString() + " " + *Property->GetName();
			Out += Property->IsDeprecated() ? " deprecated" : "";
			if (const auto* const Int = CastField<FIntProperty>(Property))
				Out += " = " + std::to_string(Int->GetSignedIntPropertyValue(Int->ContainerPtrToValuePtr<void>(Defaults)));
		}
		if (ScriptStruct)
			ScriptStruct->DestroyStruct(Value.data());
		return Out;
	}

	static std::string Module(const std::string& Members) { return R"({"varnel_script":1,)" + Members + "}"; }
	static std::string Class(const std::string& Name, const std::string& Super, const std::string& Properties = "")
	{
		return R"({"name":")" + Name + R"(","super":")" + Super + R"(","properties":[)" + Properties + "]}";
	}
	static std::string Struct(const std::string& Name, const std::string& Properties)
	{
		return R"({"name":")" + Name + R"(","properties":[)" + Properties + "]}";
	}
	static std::string Property(const std::string& Name, const std::string& Type, const std::string& More = "")
	{
		return R"({"name":")" + Name + R"(","type":")" + Type + "\"" + More + "}";
	}
};
}

TEST_F(ScriptModule, DeclaresInAnyOrderAcrossFiles)
{
	const std::string Late = Module(R"("classes":[)" +
		Class("Grandchild", "/Script/Early.Child",
			Property("Slot", "enum</Script/Late.ESlot>") + "," + Property("Row", "struct</Script/Late.Outer>")) +
		"," +
		Class("Base", "/Script/Test.Node",
			Property("Damage", "int", R"(,"default":100)") + "," + Property("Old", "bool", R"(,"deprecated":true)")) +
		R"(],"structs":[)" +
		Struct("Outer",
			Property("In", "struct</Script/Late.Inner>", R"(,"default":{"A":5})") + "," +
				Property("Count", "int", R"(,"default":2)")) +
		"," + Struct("Inner", Property("A", "int", R"(,"default":3)") + "," + Property("B", "int", R"(,"default":4)")) + "," +
		R"({"name":"Derived","super":"/script/late.outer","properties":[)" +
		Property("More", "array<struct</Script/Late.Derived>>") + "," +
		Property("ByName", "map<name,struct</Script/Late.Outer>>", R"(,"default":{"k":{"Count":9,"In":{"B":1}}})") + "]}" +
		R"(],"enums":[{"name":"ESlot","entries":[{"name":"Main","display":"Main hand"},{"name":"Off"}]}])");
	const std::string Early =
		Module(R"("classes":[)" + Class("Child", "/script/LATE.base", Property("Damage2", "int", R"(,"default":200)")) + "]");
	EXPECT_EQ(Declare({{"Early", Early}, {"Late", Late}}), "");

	EXPECT_EQ(Describe("/Script/Late.Base"), "Base : Node; int Damage = 100; bool Old deprecated");
	EXPECT_EQ(Describe("/Script/Late.Grandchild"),
		"Grandchild : Child; enum</Script/Late.ESlot> Slot; struct</Script/Late.Outer> Row; "
		"int Damage2 = 200; int Damage = 100; bool Old deprecated");
	EXPECT_EQ(Describe("/Script/Late.Outer"), "Outer; struct</Script/Late.Inner> In; int Count = 2");
	EXPECT_EQ(Describe("/Script/Late.Derived"),
		"Derived : Outer; array<struct</Script/Late.Derived>> More; map<name,struct</Script/Late.Outer>> ByName; "
		"struct</Script/Late.Inner> In; int Count = 2");

	const auto* const Slot = static_cast<const UEnum*>(StaticFindObject(UEnum::StaticClass(), "/Script/Late.ESlot"));
	ASSERT_NE(Slot, nullptr);
	ASSERT_EQ(Slot->NumEnums(), 3);
	EXPECT_EQ(Slot->GetNameByIndex(2).ToString().ToStdString(), "ESlot::ESlot_MAX");
	EXPECT_EQ(Slot->GetDisplayNameTextByIndex(0).ToString().ToStdString(), "Main hand");
	EXPECT_EQ(Slot->GetDisplayNameTextByIndex(1).ToString().ToStdString(), "Off");
}

/** An instance of Outer starts with Inner's defaults, but for what Outer's own default says. */
TEST_F(ScriptModule, GivesStructuresTheDefaultsOfWhatTheyHold)
{
	Declare({{"M",
		Module(R"("structs":[)" + Struct("Outer", Property("In", "struct</Script/M.Inner>", R"(,"default":{"A":5})")) + "," +
			Struct("Inner", Property("A", "int", R"(,"default":3)") + "," + Property("B", "int", R"(,"default":4)")) + "]")}});
	const auto* const Outer = static_cast<UScriptStruct*>(StaticFindObject(UScriptStruct::StaticClass(), "/Script/M.Outer"));
	const auto* const In = CastField<FStructProperty>(Outer->FindPropertyByName("In"));
	std::vector<std::byte> Value(static_cast<std::size_t>(Outer->GetPropertiesSize()));
	Outer->InitializeStruct(Value.data());
	const auto ReadInner = [&](const char* Name)
	{
		const auto* const Int = CastField<FIntProperty>(In->GetStruct().FindPropertyByName(Name));
		return Int->GetSignedIntPropertyValue(Int->ContainerPtrToValuePtr<void>(In->ContainerPtrToValuePtr<void>(Value.data())));
	};
	EXPECT_EQ(ReadInner("A"), 5);
	EXPECT_EQ(ReadInner("B"), 4);
	Outer->DestroyStruct(Value.data());
}

TEST_F(ScriptModule, LeavesOutFaultyDeclarationsAlone)
{
	const struct
	{
		const char* Why;
		std::string Text; // of module M, with marks; declares A where that can be
		const char* Faults;
		const char* A;
	} Cases[] = {
		{"no JSON", "{^", "error json-syntax", "-"},
		{"no object", "^[]", "error wrong-type", "-"},
		{"no version", R"(^{"classes":[]})", "error script-version", "-"},
		{"a version to come", R"({"varnel_script":^2})", "error script-version", "-"},
		{"lists that are none", Module(R"("classes":^{},"enums":^1,"structs":[)" + Struct("A", "") + "]"),
			"error wrong-type\nerror wrong-type", "A"},
		{"elements that are none", Module(R"("classes":[^1],"enums":[^null],"structs":[^"x",)" + Struct("A", "") + "]"),
			"error wrong-type\nerror wrong-type\nerror wrong-type", "A"},
		{"keys unknown and repeated",
			Module(
				R"(^"x":0,"structs":[{"name":"B",^"name":"A",^"y":0,"properties":[{"name":"P","type":"int",^"z":0}]}],"enums":[{"name":"E","entries":[],^"w":0}])"),
			"warning unknown-key\nwarning repeated-key\nwarning unknown-key\nwarning unknown-key\nwarning unknown-key",
			"A; int P = 0"},
		{"no name", Module(R"("structs":[^{"properties":[]}],"enums":[^{"entries":[]}])"),
			"error missing-name\nerror missing-name", "-"},
		{"names that nothing can refer to",
			Module(R"("structs":[{"name":^"A>"},{"name":^"A.B"},{"name":^""},{"name":^"None"},{"name":^"A B"}])"),
			"error bad-name\nerror bad-name\nerror bad-name\nerror bad-name\nerror bad-name", "-"},
		{"a name taken, whatever its kind and case",
			Module(R"("structs":[)" + Struct("A", "") + R"(,{"name":^"a"}],"enums":[{"name":^"A","entries":[]}])"),
			"error repeated-name\nerror repeated-name", "A"},
		{"an enumeration without entries", Module(R"("enums":[^{"name":"E"}])"), "error missing-entries", "-"},
		{"a class without a parent", Module(R"("classes":[{"name":^"A"},{"name":^"B","super":null}])"),
			"error missing-super\nerror missing-super", "-"},
		{"a parent that is no text", Module(R"("classes":[{"name":"A","super":^1}])"), "error wrong-type", "-"},
		{"a parent that nobody declares, and a child of what is left out",
			Module(R"("classes":[{"name":"A","super":^"/Script/M.B"},{"name":"B","super":^"/Script/M.Gone"}])"),
			"error unknown-parent\nerror unknown-parent", "-"},
		{"a parent of another kind",
			Module(R"("structs":[{"name":"A","super":^"/Script/Test.Node"}],"classes":[{"name":"B","super":^"/Script/M.A"}])"),
			"error unknown-parent\nerror unknown-parent", "-"},
		{"a parent that is declared as another kind",
			Module(R"("structs":[)" + Struct("A", "") + R"(],"classes":[{"name":"B","super":^"/Script/M.A"}])"),
			"error unknown-parent", "A"},
		{"a parent that only the program derives from",
			Module(
				R"("classes":[{"name":"A","super":^"/Script/CoreObject.Package"},{"name":"B","super":^"/Script/CoreObject.Class"}])"),
			"error bad-parent\nerror bad-parent", "-"},
		{"its own parent", Module(R"("structs":[{"name":"A","super":^"/Script/M.A"}])"), "error parent-cycle", "A"},
		{"structures that are each other's parents, and a child of them",
			Module(
				R"("structs":[{"name":"A","super":"/Script/M.B"},{"name":"B","super":^"/Script/M.C"},{"name":"C","super":^"/Script/M.B"}])"),
			"error parent-cycle\nerror parent-cycle", "A : B"},
		{"a cycle and a child of it, which stands before it",
			Module(
				R"("classes":[{"name":"A","super":^"/Script/M.B"},{"name":"B","super":^"/Script/M.C"},{"name":"C","super":^"/Script/M.B"}])"),
			"error unknown-parent\nerror parent-cycle\nerror parent-cycle", "-"},
		{"properties of no type, no name, and twice",
			Module(R"("structs":[{"name":"A","properties":[)" + Property("P", "int") +
				R"(,{"name":"Q","type":^"integer"},{"name":^"p","type":"bool"},)" + Property("R", "bool") + "]}]"),
			"warning unknown-type\nerror repeated-property", "A; int P = 0; integer Q; bool R"},
		{"a type that is left out",
			Module(
				R"("structs":[{"name":"A","properties":[{"name":"P","type":^"object</Script/M.B>"}]}],"classes":[{"name":"B","super":^"/Script/M.B"}])"),
			"warning unknown-type\nerror parent-cycle", "A; object</Script/M.B> P"},
		{"defaults that do not fit",
			Module(
				R"("structs":[{"name":"A","properties":[{"name":"P","type":"int","default":^"x"},{"name":"Q","type":"int","default":^5000000000}]}])"),
			"error property-type\nerror property-range", "A; int P = 0; int Q = 0"},
	};
	for (const auto& Case : Traced(Cases))
	{
		const FMarkedText Marked(Case.Text);
		EXPECT_EQ(Declare({{"M", Marked.GetText()}}), Marked.Place(Case.Faults));
		EXPECT_EQ(Describe("/Script/M.A"), Case.A);
		RemoveScriptModules();
	}
}

TEST_F(ScriptModule, RefusesStructuresThatWouldHoldThemselves)
{
	const std::string Text =
		Module(R"("structs":[)" + Struct("A", Property("B", "struct</Script/M.B>") + "," + Property("N", "int")) + "," +
			Struct("B", Property("A", "struct</Script/M.A>") + "," + Property("M", "int")) + "]");
	EXPECT_EQ(Declare({{"M", Text}}), "1:65 error value-cycle\n1:161 error value-cycle");
	EXPECT_EQ(Describe("/Script/M.A"), "A; struct</Script/M.B> B; int N = 0");
	EXPECT_EQ(Describe("/Script/M.B"), "B; struct</Script/M.A> A; int M = 0");
}

/** Each structure holds the one before twice: thirty of them would fill the memory of any machine. */
TEST_F(ScriptModule, RefusesStructuresThatGrowWithoutMeasure)
{
	std::string Structs = Struct("S0", Property("P", "int64"));
	for (int32 Index = 1; Index <= 40; ++Index)
	{
		const std::string Type = "struct</Script/M.S" + std::to_string(Index - 1) + ">";
		Structs += "," + Struct("S" + std::to_string(Index), Property("P", Type) + "," + Property("Q", Type));
	}
	EXPECT_NE(Declare({{"M", Module(R"("structs":[)" + Structs + "]")}}), "");
	const auto* const Last = static_cast<UScriptStruct*>(StaticFindObject(UScriptStruct::StaticClass(), "/Script/M.S40"));
	ASSERT_NE(Last, nullptr);
	EXPECT_LE(Last->GetPropertiesSize(), MaxInstanceBytes);
}

/** Every class derives from the next one: no line of parents may overflow the stack, and too long ones are cut. */
TEST_F(ScriptModule, CutsLongLinesOfParents)
{
	constexpr int32 NumClasses = 20000;
	std::string Classes;
	for (int32 Index = 0; Index < NumClasses; ++Index)
		Classes += Class("C" + std::to_string(Index), "/Script/M.C" + std::to_string(Index + 1)) + ",";
	const std::string Faults =
		Declare({{"M", Module(R"("classes":[)" + Classes + Class("C" + std::to_string(NumClasses), "/Script/Test.Node") + "]")}});
	EXPECT_NE(Faults.find("error too-deep"), std::string::npos);
	EXPECT_NE(FindClass("/Script/M.C19990"), nullptr);
	EXPECT_EQ(FindClass("/Script/M.C0"), nullptr);
	TArray<UObject*> Declared;
	GetObjectsWithOuter(FindPackage("/Script/M"), Declared, false);
	for (const UObject* Object : Declared)
		EXPECT_TRUE(static_cast<const UClass*>(Object)->IsLinked()) << *Object->GetName() << " is half made";
}

TEST_F(ScriptModule, NamesItsPackage)
{
	const std::string One = Module(R"("structs":[)" + Struct("A", "") + "]");
	const std::string Two = Module(R"("structs":[{"name":"A"},{"name":"Node"}])");
	EXPECT_EQ(Declare({{"Lantern", One}, {"LANTERN", Two}, {"Bad.Name", One}, {"", One}, {"A/B", One}}),
		"~ error bad-name\n~ error bad-name\n~ error bad-name\n~ error repeated-module");
	EXPECT_EQ(Describe("/Script/Lantern.A"), "A");
	SetPackageLocator(
		[](FName) -> TOptional<FPackageFile>
		{
			ADD_FAILURE() << "a declared package has no file to look for";
			return std::nullopt;
		});
	EXPECT_EQ(LoadPackage("/Script/Lantern"), FindPackage("/Script/Lantern"));
	SetPackageLocator(nullptr);
	RemoveScriptModules();
	EXPECT_EQ(FindPackage("/Script/Lantern"), nullptr);

	EXPECT_EQ(Declare({{"Test", Two}}), "1:52 error native-name") << "the program has classes in that package itself";
	EXPECT_EQ(Describe("/Script/Test.A"), "A");
	RemoveScriptModules();
	EXPECT_EQ(Describe("/Script/Test.A"), "-");
	EXPECT_EQ(FindClass("/Script/Test.Node"), UTestNode::StaticClass());
}

TEST_F(ScriptModule, CanBeDeclaredAnewInAnotherShape)
{
	for (const char* Type : {"int", "string", "array<struct</Script/M.S>>"})
	{
		const std::string Text = Module(R"("classes":[)" + Class("A", "/Script/Test.Node", Property("P", Type)) + "," +
			Class("B", "/Script/M.A") + R"(],"structs":[)" + Struct("S", Property("X", Type[0] == 'a' ? "int" : Type)) + "]");
		EXPECT_EQ(Declare({{"M", Text}}), "");
		UPackage* const Package = FindPackage("/Temp/Objects", true);
		UObject* const Object = NewObject(FindClass("/Script/M.B"), Package, "Object");
		ASSERT_NE(Object, nullptr);
		EXPECT_EQ(Object->GetClass()->FindPropertyByName("P")->GetTypeText().ToStdString(), Type);
		UnloadPackage(Package);
		RemoveScriptModules();
		EXPECT_EQ(FindClass("/Script/M.A"), nullptr);
		int32 NumLeft = 0;
		ForEachClass([&NumLeft](UClass& Class) { NumLeft += Class.GetPathName().StartsWith("/Script/M."); });
		EXPECT_EQ(NumLeft, 0);
	}
}

/** Search entries need a Blueprint asset; classes that a module derives from Blueprint are Blueprints to the header reader as
 * long as they are declared. */
TEST_F(ScriptModule, TellsHeadersOfItsBlueprintClasses)
{
	const auto ReadHeader = []
	{
		std::string Bytes =
			R"({"varnel_package":1,"assets":[{"name":"A","class":"/script/m.QuestBlueprint"}],"blueprint_index":[{"category":"Var","text":"x"}]})";
		FPackageHeader Header;
		FDiagnosticSink Sink;
		EXPECT_TRUE(GetVassetPackageSource().MakeReader()->ReadHeader(Bytes, "A.vasset", Header, &Sink));
		return RenderFaults(Sink);
	};
	const std::string Warning = "1:80 warning index-without-blueprint";
	EXPECT_EQ(ReadHeader(), Warning);
	Declare({{"M",
		Module(R"("classes":[)" + Class("QuestBlueprint", "/Script/M.Middle") + "," +
			Class("Middle", "/Script/Engine.Blueprint") + "]")}});
	EXPECT_EQ(ReadHeader(), "");
	RemoveScriptModules();
	EXPECT_EQ(ReadHeader(), Warning);
}
