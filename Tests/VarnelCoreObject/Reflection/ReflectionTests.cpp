#include "PackageFixture.h"
#include "Support/Cases.h"

#include <string>
#include <vector>

namespace
{
/** A class that refers to itself, with members of each container and a structure. */
struct FTestPair
{
	static UScriptStruct* StaticStruct();

	FName Key;
	TArray<FString> Values = {"one"};
};

UScriptStruct* FTestPair::StaticStruct()
{
	static UScriptStruct* const Struct = TStructBuilder<FTestPair>("/Script/Test.Pair")
											 .Member("Key", &FTestPair::Key)
											 .Member("Values", &FTestPair::Values)
											 .Build();
	return Struct;
}

class UTestThing : public UObject
{
public:
	static UClass* StaticClass();

	int32 Count = 3;
	float Scale = 0.5f;
	FString Title = "untitled";
	bool bOpen = true;
	uint8 Level = 200;
	TObjectPtr<UTestThing> Next;
	TSoftObjectPtr<UTestThing> Soft;
	TObjectPtr<UClass> Kind;
	FTestPair Pair;
	TArray<FTestPair> Pairs;
};

UClass* UTestThing::StaticClass()
{
	static UClass* const Class = TClassBuilder<UTestThing>("/Script/Test.Thing", UObject::StaticClass())
									 .Member("Count", &UTestThing::Count)
									 .Member("Scale", &UTestThing::Scale)
									 .Member("Title", &UTestThing::Title)
									 .Member("bOpen", &UTestThing::bOpen)
									 .Member("Level", &UTestThing::Level)
									 .Member("Next", &UTestThing::Next)
									 .Member("Soft", &UTestThing::Soft)
									 .Member("Kind", &UTestThing::Kind)
									 .Member("Pair", &UTestThing::Pair)
									 .Member("Pairs", &UTestThing::Pairs)
									 .Build();
	return Class;
}

class UTestNothing : public UTestThing
{
public:
	static UClass* StaticClass();
};

UClass* UTestNothing::StaticClass()
{
	static UClass* const Class =
		TClassBuilder<UTestNothing>("/Script/Test.Nothing", UTestThing::StaticClass()).Abstract().Build();
	return Class;
}

/** A package that goes with the test, and what the test puts there. */
class Reflection : public FPackageFixture
{
protected:
	Reflection()
	{
		UTestThing::StaticClass();
		FTestPair::StaticStruct();
	}
	~Reflection() override { UnloadPackage(Package); }

	template <class T = UObject>
	T* Make(UClass* Class, const char* Name, UObject* Outer = nullptr)
	{
		return static_cast<T*>(NewObject(Class, Outer ? Outer : Package, Name));
	}
	/** A linked structure of properties given as "type name" pairs. */
	UScriptStruct* MakeStruct(const char* Name, const std::vector<std::pair<const char*, const char*>>& Properties)
	{
		auto* const Struct = Make<UScriptStruct>(UScriptStruct::StaticClass(), Name);
		AddProperties(*Struct, Properties);
		return Struct;
	}
	static void AddProperties(UStruct& Struct, const std::vector<std::pair<const char*, const char*>>& Properties)
	{
		for (const auto& [Type, Name] : Properties)
		{
			FString Error;
			TUniquePtr<FProperty> Property = MakeProperty(Type, Name, Error);
			ASSERT_TRUE(Property) << *Error;
			Struct.AddProperty(std::move(Property));
		}
	}
	static std::string Names(const UStruct& Struct, FPropertyWalk Walk = {})
	{
		std::string Out;
		for (const FProperty* Property : PropertiesOf(Struct, Walk))
			Out += (Out.empty() ? "" : " ") + Property->GetName().ToStdString();
		return Out;
	}

	UPackage* Package = FindPackage("/Game/Reflection", true);
};
}

TEST_F(Reflection, ReadsTypeTextsAndWritesThemBack)
{
	MakeStruct("Point", {{"float", "X"}})->Link();
	Make<UEnum>(UEnum::StaticClass(), "EColour")->SetEntries({{"EColour::Red", FText(), 0}});
	// Classes of packages are not loaded for a type; a byte with an enumeration stays a byte; 16 levels are allowed.
	const std::pair<const char*, const char*> Types[] = {{"int8", "Int8Property"}, {"int16", "Int16Property"},
		{"int", "IntProperty"}, {"int64", "Int64Property"}, {"byte", "ByteProperty"}, {"uint16", "UInt16Property"},
		{"uint32", "UInt32Property"}, {"uint64", "UInt64Property"}, {"float", "FloatProperty"}, {"double", "DoubleProperty"},
		{"bool", "BoolProperty"}, {"string", "StrProperty"}, {"name", "NameProperty"}, {"text", "TextProperty"},
		{"object</Script/Test.Thing>", "ObjectProperty"}, {"weak_object</Script/Test.Thing>", "WeakObjectProperty"},
		{"lazy_object</Script/Test.Thing>", "LazyObjectProperty"}, {"soft_object</Script/Test.Thing>", "SoftObjectProperty"},
		{"class</Script/Test.Thing>", "ClassProperty"}, {"soft_class</Script/Test.Thing>", "SoftClassProperty"},
		{"interface</Script/Test.Thing>", "InterfaceProperty"}, {"object</Game/BP_Nowhere.BP_Nowhere_C>", "ObjectProperty"},
		{"struct</Game/Reflection.Point>", "StructProperty"}, {"byte</Game/Reflection.EColour>", "ByteProperty"},
		{"enum</Game/Reflection.EColour>", "EnumProperty"}, {"array<struct</Script/Test.Pair>>", "ArrayProperty"},
		{"set<name>", "SetProperty"}, {"map<name,array<object</Script/Test.Thing>>>", "MapProperty"},
		{"delegate", "DelegateProperty"}, {"multicast_delegate", "MulticastDelegateProperty"},
		{"field_path", "FieldPathProperty"},
		{"array<array<array<array<array<array<array<array<array<array<array<array<array<array<array<int>>>>>>>>>>>>>>>",
			"ArrayProperty"}};
	for (const auto& [Text, Class] : Types)
	{
		FString Error;
		const TUniquePtr<FProperty> Property = MakeProperty(Text, "P", Error);
		ASSERT_TRUE(Property) << Text << ": " << *Error;
		EXPECT_STREQ(*Property->GetClass()->GetName(), Class) << Text;
		EXPECT_STREQ(*Property->GetTypeText(), Text);
	}
	FString Error;
	EXPECT_STREQ(*MakeProperty(" map< name , array<int> > ", "P", Error)->GetTypeText(), "map<name,array<int>>")
		<< "spaces do not matter";
}

TEST_F(Reflection, TellsWhatIsWrongWithATypeText)
{
	Make<UEnum>(UEnum::StaticClass(), "EColour");
	const TCase<> Cases[] = {
		{"empty", "", "a type is missing"},
		{"unknown word", "integer", "'integer' is not a type"},
		{"words have one spelling", "Int", "'Int' is not a type"},
		{"container without element", "array", "'array' is not a type"},
		{"", "array<>", "a type is missing"},
		{"open bracket", "array<int", "a '>' is missing"},
		{"text behind", "int>", "'>' follows the type"},
		{"", "array<int> int", "'int' follows the type"},
		{"too few types", "map<int>", "a map has two types, the key's and the value's"},
		{"too many types", "map<int,int,int>", "a '>' is missing"},
		{"no type with brackets", "int<int>", "'int' is not a type that takes types or classes in <>"},
		{"a path is a full one", "object<Actor>", "'Actor' is not the full path of a class"},
		{"", "object<>", "'' is not the full path of a class"},
		{"an object inside another is no class", "object</Game/A.A:B>", "'/Game/A.A:B' is not the full path of a class"},
		{"unknown class", "object</Script/Test.Nobody>", "there is no class /Script/Test.Nobody"},
		{"a structure is no class", "class</Script/Test.Pair>", "there is no class /Script/Test.Pair"},
		{"unknown structure", "struct</Script/Test.Nobody>", "there is no structure /Script/Test.Nobody"},
		{"of a package that does not exist", "struct</Game/S_Nowhere.S_Nowhere>",
			"there is no structure /Game/S_Nowhere.S_Nowhere"},
		{"a class is no structure", "struct</Script/Test.Thing>", "there is no structure /Script/Test.Thing"},
		{"unknown enumeration", "byte</Script/Test.ENobody>", "there is no enumeration /Script/Test.ENobody"},
		{"inside others too", "map<name,array<enum</Script/Test.ENobody>>>", "there is no enumeration /Script/Test.ENobody"},
		{"17 levels",
			"array<array<array<array<array<array<array<array<array<array<array<array<array<array<array<array<int>>>>>>>>>>>>>>>>",
			"types are nested more than 16 levels deep"},
	};
	for (const auto& Case : Traced(Cases))
	{
		FString Error;
		EXPECT_FALSE(MakeProperty(Case.Given, "P", Error)) << Case.Given;
		EXPECT_TRUE(Error.EndsWith(FString(": ") + Case.Expected)) << Case.Given << " gave " << *Error;
	}
	FString Error;
	const std::string Deep(1000000, '<');
	EXPECT_FALSE(MakeProperty("array" + Deep, "P", Error));
	EXPECT_LT(Error.Len(), 300) << "a long text is not repeated as a whole";
}

TEST_F(Reflection, ListsPropertiesOwnFirst)
{
	auto* const Top = MakeStruct("Top", {{"int", "A"}, {"int", "B"}});
	auto* const Middle = MakeStruct("Middle", {{"int", "C"}});
	auto* const Empty = MakeStruct("Empty", {});
	auto* const Bottom = MakeStruct("Bottom", {{"int", "D"}, {"int", "E"}});
	EXPECT_TRUE(Middle->SetSuperStruct(Top));
	EXPECT_TRUE(Empty->SetSuperStruct(Middle));
	EXPECT_TRUE(Bottom->SetSuperStruct(Empty));
	Bottom->FindOwnProperty("D")->SetDeprecated(true);
	Top->FindOwnProperty("B")->SetDeprecated(true);
	Bottom->Link();
	EXPECT_EQ(Names(*Bottom), "D E C A B");
	EXPECT_EQ(Names(*Bottom, {.bIncludeSuper = false}), "D E");
	EXPECT_EQ(Names(*Bottom, {.bIncludeDeprecated = false}), "E C A");
	EXPECT_EQ(Names(*Empty, {.bIncludeSuper = false}), "");
	EXPECT_EQ(Bottom->FindPropertyByName("a")->GetOwnerStruct(), Top) << "names ignore case";
	EXPECT_EQ(Bottom->FindPropertyByName("F"), nullptr);
	EXPECT_TRUE(Bottom->IsChildOf(Top));
	EXPECT_FALSE(Top->IsChildOf(Bottom));
}

TEST_F(Reflection, ReflectsNativeMembers)
{
	std::string Types;
	for (const FProperty* Property : PropertiesOf(*UTestThing::StaticClass()))
		Types += std::string(*Property->GetName()) + ":" + *Property->GetTypeText() + " ";
	EXPECT_EQ(Types,
		"Count:int Scale:float Title:string bOpen:bool Level:byte Next:object</Script/Test.Thing> "
		"Soft:soft_object</Script/Test.Thing> "
		"Kind:class</Script/CoreObject.Object> Pair:struct</Script/Test.Pair> Pairs:array<struct</Script/Test.Pair>> ");

	const auto* const Defaults = UTestThing::StaticClass()->GetDefaultObject<UTestThing>();
	const FProperty* const Level = UTestThing::StaticClass()->FindPropertyByName("Level");
	EXPECT_EQ(Level->ContainerPtrToValuePtr<uint8>(Defaults), &Defaults->Level);
	EXPECT_EQ(UTestThing::StaticClass()->GetStructPathName().ToString(), "/Script/Test.Thing");
	EXPECT_EQ(FindClass("Class'/script/test.THING'"), UTestThing::StaticClass())
		<< "paths ignore case and may have the export form";
	EXPECT_EQ(FindClass("/Script/Test.Pair"), nullptr) << "a structure is no class";
	EXPECT_EQ(Make(UTestNothing::StaticClass(), "N"), nullptr) << "abstract";
	EXPECT_TRUE(UTestNothing::StaticClass()->GetDefaultObject()) << "abstract classes have defaults too";
}

TEST_F(Reflection, InheritsDefaultsThroughNativeAndDeclaredClasses)
{
	auto* const Declared = Make<UClass>(UClass::StaticClass(), "Declared");
	Declared->SetSuperStruct(UTestThing::StaticClass());
	AddProperties(*Declared, {{"int", "Extra"}, {"array<string>", "Names"}});
	Declared->Link();
	auto* const Child = Make<UClass>(UClass::StaticClass(), "Child");
	Child->SetSuperStruct(Declared);
	AddProperties(*Child, {{"string", "Note"}});
	Child->Link();

	const FJsonDocument Document = []
	{
		FJsonDocument Parsed;
		Parsed.Parse(R"({"Extra":41,"Names":["a","b"],"Title":"declared","Pair":{"Key":"k"}})");
		return Parsed;
	}();
	FPropertyReader Reader(Package, Document, "test", Faults.get());
	Reader.ReadProperties(*Declared, Declared->GetDefaultObject(), Document.Root(), nullptr);

	for (UClass* Class : {Declared, Child})
	{
		const auto* const Object = Make<UTestThing>(Class, Class == Child ? "OfChild" : "OfDeclared");
		EXPECT_EQ(GetInt(Object, "Extra"), 41);
		EXPECT_EQ(Object->Title, "declared") << "a declared class changes what a native one says";
		EXPECT_EQ(Object->Count, 3) << "and leaves the rest";
		EXPECT_EQ(Object->Pair.Key, FName("k"));
		ASSERT_EQ(Object->Pair.Values.Num(), 1);
		const auto* const Names = CastField<FArrayProperty>(Class->FindPropertyByName("Names"));
		ASSERT_EQ(Names->Num(Names->ContainerPtrToValuePtr<void>(Object)), 2);
	}
	EXPECT_EQ(Make<UTestThing>(UTestThing::StaticClass(), "Plain")->Title, "untitled");
	EXPECT_EQ(RenderFaults(*Faults), "");
}

TEST_F(Reflection, GivesStructuresTheirDeclaredDefaults)
{
	FJsonDocument Document;
	Document.Parse(
		R"([{"name":"X","type":"int","default":7},{"name":"Y","type":"string","default":"why"},{"name":"Z","type":"int"}])");
	FPropertyReader Reader(Package, Document, "test", Faults.get());
	auto* const Point = Make<UScriptStruct>(UScriptStruct::StaticClass(), "Point");
	auto* const Line =
		MakeStruct("Line", {{"struct</Game/Reflection.Point>", "From"}, {"map<int,struct</Game/Reflection.Point>>", "Others"}});
	Line->SetSuperStruct(FTestPair::StaticStruct());
	DeclareAlone(Reader, *Point, Document.Root());
	Line->Link();

	std::vector<std::byte> Storage(static_cast<std::size_t>(Line->GetPropertiesSize()));
	Line->InitializeStruct(Storage.data());
	const FProperty* const From = Line->FindPropertyByName("From");
	const auto* const PointValue = From->ContainerPtrToValuePtr<std::byte>(Storage.data());
	EXPECT_EQ(*Point->FindPropertyByName("X")->ContainerPtrToValuePtr<int32>(PointValue), 7);
	EXPECT_EQ(*Point->FindPropertyByName("Y")->ContainerPtrToValuePtr<FString>(PointValue), "why");
	EXPECT_EQ(*Point->FindPropertyByName("Z")->ContainerPtrToValuePtr<int32>(PointValue), 0);
	EXPECT_EQ(reinterpret_cast<const FTestPair*>(Storage.data())->Values.Num(), 1) << "the native parent's part is constructed";
	Line->DestroyStruct(Storage.data());
}

TEST_F(Reflection, DoesNotReadWhatCannotBeLaidOut)
{
	auto* const Self = MakeStruct("Self", {{"int", "A"}});
	AddProperties(*Self, {{"struct</Game/Reflection.Self>", "Direct"}, {"array<struct</Game/Reflection.Self>>", "Elements"}});
	auto* const Left = MakeStruct("Left", {{"int", "A"}});
	auto* const Right = MakeStruct("Right", {{"struct</Game/Reflection.Left>", "L"}, {"int", "B"}});
	AddProperties(*Left, {{"struct</Game/Reflection.Right>", "R"}});
	auto* const Orphan = Make<UClass>(UClass::StaticClass(), "Orphan");
	AddProperties(*Orphan, {{"int", "A"}});
	const struct
	{
		const char* Why;
		UStruct* Struct;
		const char* Names;
		const char* Fault;
	} Cases[] = {
		{"inside itself by value, which elements of an array are not", Self, "A Direct Elements",
			"values of property 'Direct' of type struct</Game/Reflection.Self> are not read: parents and values lead in a ring: "
			"/Game/Reflection.Self -> /Game/Reflection.Self"},
		{"two inside each other", Left, "A R",
			"values of property 'R' of type struct</Game/Reflection.Right> are not read: parents and values lead in a ring: "
			"/Game/Reflection.Left -> /Game/Reflection.Right -> /Game/Reflection.Left"},
		{"and the other, which was linked with it", Right, "L B",
			"values of property 'L' of type struct</Game/Reflection.Left> are not read: parents and values lead in a ring: "
			"/Game/Reflection.Left -> /Game/Reflection.Right -> /Game/Reflection.Left"},
		{"a class without a parent derives from Object", Orphan, "A", ""},
	};
	for (const auto& Case : Traced(Cases))
	{
		TArray<FLinkFault> Told;
		Case.Struct->Link(&Told);
		EXPECT_EQ(Names(*Case.Struct), Case.Names);
		EXPECT_EQ(Told.Num(), *Case.Fault ? 1 : 0);
		EXPECT_EQ(Told.IsEmpty() ? FString() : Told[0].Text, Case.Fault);
	}
	EXPECT_EQ(Orphan->GetSuperClass(), UObject::StaticClass());
	EXPECT_EQ(Self->AddProperty(MakeUnique<FIntProperty>("Late")), nullptr) << "the layout is settled";
	EXPECT_FALSE(Self->SetSuperStruct(FTestPair::StaticStruct()));
}

TEST_F(Reflection, BoundsWhatStructuresAskFor)
{
	// Each level holds the one before twice: 2^30 bytes without a bound.
	FString Previous = "int";
	TArray<FLinkFault> Told;
	for (int32 Level = 0; Level < 30; ++Level)
	{
		const FString Name = "Level" + FString::FromInt(Level);
		auto* const Struct = MakeStruct(*Name, {{*Previous, "A"}, {*Previous, "B"}});
		Struct->Link(&Told);
		EXPECT_LE(Struct->GetPropertiesSize(), MaxInstanceBytes);
		Previous = "struct</Game/Reflection." + Name + ">";
	}
	EXPECT_GT(Told.Num(), 0);

	// Parents and structures inside each other, linked from the far end, are cut at some depth instead of exhausting the stack.
	constexpr int32 Count = 20000;
	UScriptStruct* Last = nullptr;
	std::vector<UScriptStruct*> Parents;
	for (int32 Index = 0; Index < Count; ++Index)
	{
		Parents.push_back(Make<UScriptStruct>(UScriptStruct::StaticClass(), *("P" + FString::FromInt(Index))));
		auto* const Nested = Make<UScriptStruct>(UScriptStruct::StaticClass(), *("N" + FString::FromInt(Index)));
		if (Last)
			Nested->AddProperty(MakeUnique<FStructProperty>("Held", *Last));
		Last = Nested;
	}
	for (int32 Index = Count; --Index > 0;)
		EXPECT_TRUE(Parents[static_cast<std::size_t>(Index)]->SetSuperStruct(Parents[static_cast<std::size_t>(Index - 1)]));
	Last->Link();
	Parents.back()->Link();
	EXPECT_TRUE(Last->IsLinked());
	int32 Depth = 0;
	for (const UStruct* Struct = Parents.back(); Struct; Struct = Struct->GetSuperStruct())
		++Depth;
	EXPECT_LE(Depth, MaxStructDepth + 1);
}

TEST_F(Reflection, CutsRingsOfParentsEverywhere)
{
	auto* const Outside = MakeStruct("Outside", {});
	auto* const A = MakeStruct("A", {});
	auto* const B = MakeStruct("B", {});
	auto* const C = MakeStruct("C", {});
	Outside->SetSuperStruct(B);
	A->SetSuperStruct(B);
	B->SetSuperStruct(C);
	C->SetSuperStruct(A);
	Outside->Link();
	for (const UStruct* Member : {A, B, C})
		EXPECT_EQ(Member->GetSuperStruct(), nullptr) << *Member->GetName();
	EXPECT_EQ(Outside->GetSuperStruct(), B);
	TArray<FLinkFault> Told;
	C->Link(&Told);
	ASSERT_EQ(Told.Num(), 1);
	EXPECT_EQ(Told[0].Text,
		"the parent /Game/Reflection.A is left out: parents and values lead in a ring: "
		"/Game/Reflection.A -> /Game/Reflection.B -> /Game/Reflection.C -> /Game/Reflection.A");
}

TEST_F(Reflection, KeepsObjectsInOrderBelowTheirOuters)
{
	UObject* const B = Make(UTestThing::StaticClass(), "B");
	Make(UTestThing::StaticClass(), "A");
	UObject* const Second = Make(UTestThing::StaticClass(), "Second", B);
	Make(UTestThing::StaticClass(), "First", B);
	Make(UTestThing::StaticClass(), "Deep", Second);
	EXPECT_EQ(List(Package), "B Thing\nB:Second Thing\nB:Second.Deep Thing\nB:First Thing\nA Thing");
	TArray<UObject*> Direct;
	GetObjectsWithOuter(B, Direct, false);
	EXPECT_EQ(Direct.Num(), 2);
	EXPECT_EQ(Package->FindInside("b:SECOND.deep")->GetPathName(), "/Game/Reflection.B:Second.Deep");
	EXPECT_EQ(Package->FindInside(""), nullptr);
	EXPECT_EQ(StaticFindObject(nullptr, "/Game/Reflection"), Package);
	EXPECT_EQ(StaticFindObject(UClass::StaticClass(), "/Game/Reflection.B"), nullptr) << "of another class";
	EXPECT_EQ(Package->FindInside("B:Second.Deep")->GetPackage(), Package);

	const struct
	{
		const char* Why;
		UObject* Refused;
	} Cases[] = {
		{"the name is taken, whatever its case", NewObject(UTestThing::StaticClass(), Package, "b")},
		{"no name", NewObject(UTestThing::StaticClass(), Package, "")},
		{"nowhere", NewObject(UTestThing::StaticClass(), nullptr, "X")},
		{"inside a default object", NewObject(UTestThing::StaticClass(), UTestThing::StaticClass()->GetDefaultObject(), "X")},
		{"packages are not made like that", NewObject(UPackage::StaticClass(), Package, "X")},
		{"class not linked", NewObject(Make<UClass>(UClass::StaticClass(), "Unlinked"), Package, "X")},
	};
	for (const auto& Case : Traced(Cases))
		EXPECT_EQ(Case.Refused, nullptr);
}

TEST_F(Reflection, WalksDeepTreesWithoutRecursion)
{
	constexpr int32 Depth = 200000;
	UObject* Object = Package;
	for (int32 Level = 0; Level < Depth; ++Level)
		Object = NewObject(UTestNode::StaticClass(), Object, "N");
	EXPECT_EQ(Object->GetPackage(), Package);
	EXPECT_EQ(Object->GetPathName().NumBytes(), 16 + 2 * Depth);
	TArray<UObject*> All;
	GetObjectsWithOuter(Package, All, true);
	EXPECT_EQ(All.Num(), Depth);
	EXPECT_EQ(All.Last(), Object);
}

TEST_F(Reflection, ResolvesReferencesAnewAfterUnloading)
{
	static_assert(sizeof(FObjectPtr) == 24);
	FFile& File = Add("/Game/Target", R"({"path":"T","class":"/Script/Test.Node"},{"path":"T:Sub","class":"/Script/Test.Node"})");
	const TObjectPtr<UTestNode> Asset(FSoftObjectPath("/Game/Target.T"));
	const FObjectPtr Sub(FSoftObjectPath("/Game/Target.T:Sub"));
	const TObjectPtr<UTestThing> OfOtherClass(FSoftObjectPath("/Game/Target.T"));
	EXPECT_EQ(Asset.GetIfLoaded(), nullptr);
	EXPECT_EQ(File.NumReads, 0) << "asking for what is in memory loads nothing";
	ASSERT_TRUE(Asset.Get());
	EXPECT_EQ(Asset->GetPathName(), "/Game/Target.T");
	EXPECT_EQ(Sub.GetIfLoaded(), Asset->GetPackage()->FindInside("T:Sub"));
	EXPECT_EQ(OfOtherClass.Get(), nullptr);
	EXPECT_FALSE(OfOtherClass.IsNull());
	const FObjectPtr Direct(Asset.Get());
	EXPECT_EQ(Direct, Asset);
	EXPECT_EQ(Direct.GetFName(), FName("T"));
	EXPECT_EQ(Sub.GetFName(), FName("Sub"));

	UnloadAllLoadedPackages();
	NewObject(UTestThing::StaticClass(), Package, "TakesTheFreedPlace");
	EXPECT_EQ(Asset.GetIfLoaded(), nullptr);
	EXPECT_EQ(Direct.Get(), nullptr) << "made from an object, not from a path";
	EXPECT_TRUE(Asset.Get());
	EXPECT_EQ(File.NumReads, 2);

	EXPECT_TRUE(FObjectPtr().IsNull());
	EXPECT_EQ(FObjectPtr(FSoftObjectPath("/Game/Target")).Get(), nullptr) << "a package alone names no object";
	EXPECT_EQ(FObjectPtr(FSoftObjectPath("/Script/Test.Nobody")).Get(), nullptr);
}

TEST_F(Reflection, KeepsTypesThatSurvivorsNeed)
{
	UPackage* const Types = FindPackage("/Game/Types", true);
	auto* const Inner = static_cast<UScriptStruct*>(NewObject(UScriptStruct::StaticClass(), Types, "Inner"));
	AddProperties(*Inner, {{"string", "Text"}});
	Inner->Link();
	auto* const Parent = static_cast<UClass*>(NewObject(UClass::StaticClass(), Types, "Parent"));
	AddProperties(*Parent, {{"array<struct</Game/Types.Inner>>", "Inners"}, {"int", "Number"}});
	Parent->Link();
	auto* const Child = static_cast<UClass*>(NewObject(UClass::StaticClass(), Types, "Child"));
	Child->SetSuperStruct(Parent);
	Child->Link();
	FJsonDocument Document;
	Document.Parse(R"({"Number":5,"Inners":[{"Text":"long enough to be allocated on its own"}]})");
	FPropertyReader Reader(Package, Document, "test", nullptr);
	UObject* const Survivor = Make(Child, "Survivor");
	Reader.ReadProperties(*Child, Survivor, Document.Root(), nullptr);
	Reader.ReadProperties(*Child, Child->GetDefaultObject(), Document.Root(), nullptr);

	UnloadPackage(Types);
	EXPECT_EQ(FindClass("/Game/Types.Child"), nullptr) << "its name is free";
	EXPECT_EQ(GetInt(Survivor, "Number"), 5) << "its values are not";
	EXPECT_EQ(Survivor->GetClass()->GetName(), "Child");
	int32 NumNamedChild = 0;
	ForEachClass([&NumNamedChild](UClass& Class) { NumNamedChild += Class.GetName() == "Child"; });
	EXPECT_EQ(NumNamedChild, 1);
	DestroyObjects({Survivor});
	UnloadPackage(FindPackage("/Game/Empty", true));
	NumNamedChild = 0;
	ForEachClass([&NumNamedChild](UClass& Class) { NumNamedChild += Class.GetName() == "Child"; });
	EXPECT_EQ(NumNamedChild, 0) << "the last object took them along";
}

TEST_F(Reflection, DestroysTypesThatReferToEachOther)
{
	UPackage* const Types = FindPackage("/Game/Types", true);
	auto* const A = static_cast<UScriptStruct*>(NewObject(UScriptStruct::StaticClass(), Types, "A"));
	auto* const B = static_cast<UScriptStruct*>(NewObject(UScriptStruct::StaticClass(), Types, "B"));
	AddProperties(*A, {{"array<struct</Game/Types.B>>", "Bs"}, {"array<struct</Game/Types.A>>", "As"}});
	AddProperties(*B, {{"map<int,struct</Game/Types.A>>", "As"}});
	A->Link();
	B->Link();
	FJsonDocument Document;
	Document.Parse(R"([{"Bs":[{"As":[[1,{"As":[{},{}]}]]}]}])");
	FPropertyReader Reader(Package, Document, "test", Faults.get());
	ASSERT_TRUE(A->ReadDefault(*A->FindOwnProperty("As"), Document.Root(), Reader));
	const FObjectPtr WasA(A);
	DestroyObjects({B, A, Types, nullptr});
	EXPECT_EQ(WasA.Get(), nullptr);
	EXPECT_EQ(FindPackage("/Game/Types"), nullptr);
	EXPECT_EQ(RenderFaults(*Faults), "");
}

TEST_F(Reflection, LetsNativeClassesHaveTheirNames)
{
	UPackage* const Native = FindPackage("/Script/Test", true);
	auto* const Declared = static_cast<UClass*>(NewObject(UClass::StaticClass(), Native, "Late"));
	Declared->SetSuperStruct(UTestThing::StaticClass());
	Declared->Link();
	UObject* const Object = Make(Declared, "Object");
	UClass* const Late = RegisterPlainClass("/Script/Test.Late", UTestThing::StaticClass());
	EXPECT_EQ(FindClass("/Script/Test.Late"), Late);
	EXPECT_EQ(RegisterPlainClass("/Script/Test.Late", UTestThing::StaticClass()), Late) << "once is enough";
	EXPECT_EQ(Object->GetClass(), Declared);
	EXPECT_EQ(Make<UTestThing>(Late, "OfLate")->Count, 3);
	DestroyObjects({Object, Declared});
	EXPECT_EQ(FindClass("/Script/Test.Late"), Late) << "the declared one does not take the name with it";
}

TEST(ObjectPath, ReadsWhatIsAPath)
{
	const struct
	{
		const char* Why;
		const char* Text;
		const char* Full;	  // "" for no path
		const char* TopLevel; // "" for no path directly in a package
	} Cases[] = {
		{"asset", "/Game/A.A", "/Game/A.A", "/Game/A.A"},
		{"inside an asset", "/Game/A.A:Sub.Deeper", "/Game/A.A:Sub.Deeper", ""},
		{"a package alone", "/Game/A", "/Game/A", ""},
		{"export form", "Class'/Script/Engine.Actor'", "/Script/Engine.Actor", ""},
		{"export form with the class's path", "/Script/Engine.Actor'/Game/A.A'", "/Game/A.A", ""},
		{"quotes in names", "/Game/It's.It's", "/Game/It's.It's", "/Game/It's.It's"},
		{"", "/Game/Its'.Its'", "/Game/Its'.Its'", "/Game/Its'.Its'"},
		{"", "/Game/Its'/A.A'", "/Game/Its'/A.A'", "/Game/Its'/A.A'"},
		{"", "/Game/Its'/A'.A':B'", "/Game/Its'/A'.A':B'", ""},
		{"quotes in names in export form", "Class'/Game/It's.It's_C'", "/Game/It's.It's_C", ""},
		{"", "Class'/Game/Its'/A'.A''", "/Game/Its'/A'.A'", ""},
		{"", "/Game/It's.It's_C'/Game/Its'/A'.A''", "/Game/Its'/A'.A'", ""},
		{"a package in export form", "Package'/Game/A'", "/Game/A", ""},
		{"unfinished export forms", "Class'", "", ""},
		{"", "Class''", "", ""},
		{"", "'/Game/A.A", "", ""},
		{"empty", "", "", ""},
		{"no leading slash", "Game/A.A", "", ""},
		{"no package", "/", "", ""},
		{"", "/.A", "", ""},
		{"no asset", "/Game/A.", "", ""},
		{"no object behind the colon", "/Game/A.A:", "", ""},
		{"colon without asset", "/Game/A:Sub", "", ""},
		{"two dots", "/Game/A.A.B", "", ""},
		{"letters beyond ASCII", "/Game/Ä.Ä", "/Game/Ä.Ä", "/Game/Ä.Ä"},
	};
	for (const auto& Case : Traced(Cases))
	{
		const FSoftObjectPath Path{FStringView(Case.Text)};
		EXPECT_STREQ(*Path.ToString(), Case.Full);
		EXPECT_EQ(Path.IsNull(), *Case.Full == '\0') << Case.Text;
		EXPECT_STREQ(*FTopLevelAssetPath{FStringView(Case.Text)}.ToString(), Case.TopLevel);
	}
	EXPECT_EQ(FSoftObjectPath("/Game/A.A:sub"), FSoftObjectPath("/game/a.a:SUB"));
}
