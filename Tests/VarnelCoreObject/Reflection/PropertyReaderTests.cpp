#include "PackageFixture.h"
#include "Support/Cases.h"
#include "Support/Seed.h"

#include <functional>
#include <random>
#include <string>

namespace
{
/** A value as short text: numbers, 'texts', references as paths, [elements], {Member:value ...}. */
std::string Render(const FProperty& Property, const void* Value)
{
	if (const auto* const Str = CastField<FStrProperty>(&Property))
		return "'" + Str->GetPropertyValue(Value).ToStdString() + "'";
	if (const auto* const Name = CastField<FNameProperty>(&Property))
		return Name->GetPropertyValue(Value).ToString().ToStdString();
	if (const auto* const Text = CastField<FTextProperty>(&Property))
		return "\"" + Text->GetPropertyValue(Value).ToString().ToStdString() + "\"";
	if (const auto* const Bool = CastField<FBoolProperty>(&Property))
		return Bool->GetPropertyValue(Value) ? "true" : "false";
	if (const auto* const UInt64 = CastField<FUInt64Property>(&Property))
		return std::to_string(UInt64->GetPropertyValue(Value));
	if (const auto* const Number = CastField<FNumericProperty>(&Property))
		return *(Number->IsInteger() ? FString::FromInt(Number->GetSignedIntPropertyValue(Value))
									 : FString::SanitizeFloat(Number->GetFloatingPointPropertyValue(Value)));
	if (const auto* const Enum = CastField<FEnumProperty>(&Property))
		return std::to_string(Enum->GetPropertyValue(Value));
	if (Property.HasAnyCastFlags(EFieldCast::ObjectBase | EFieldCast::Interface))
		return static_cast<const FObjectPropertyBase&>(Property).GetPropertyValue(Value).GetPath().ToString().ToStdString();
	std::string Out;
	if (const auto* const Struct = CastField<FStructProperty>(&Property))
	{
		for (const FProperty* Member : PropertiesOf(Struct->GetStruct()))
			Out += (Out.empty() ? "" : " ") + Member->GetName().ToStdString() + ":" +
				Render(*Member, Member->ContainerPtrToValuePtr<void>(Value));
		return "{" + Out + "}";
	}
	const auto* const Map = CastField<FMapProperty>(&Property);
	if (!Map && !Property.HasAnyCastFlags(EFieldCast::Array | EFieldCast::Set))
		return "-";
	const auto& Container = static_cast<const FContainerProperty&>(Property);
	for (int32 Index = 0; Index < Container.Num(Value); ++Index)
	{
		const void* const Element = Container.GetElement(Value, Index);
		Out += Out.empty() ? "" : " ";
		Out += Map ? Render(Map->GetKeyProperty(), Element) + "=" +
				Render(Map->GetValueProperty(), static_cast<const FPairProperty&>(Map->GetInner()).ValueOf(Element))
				   : Render(Container.GetInner(), Element);
	}
	return "[" + Out + "]";
}

/** One instance of a structure. */
class FInstance
{
public:
	explicit FInstance(const UScriptStruct& InStruct)
		: Struct(InStruct)
		, Storage(static_cast<std::size_t>(Struct.GetPropertiesSize()))
	{
		Struct.InitializeStruct(Storage.data());
	}
	~FInstance() { Struct.DestroyStruct(Storage.data()); }
	FInstance(const FInstance&) = delete;
	FInstance& operator=(const FInstance&) = delete;
	void* Get() { return Storage.data(); }
	std::string RenderMember(const char* Name)
	{
		const FProperty* const Member = Struct.FindPropertyByName(Name);
		return Member ? Render(*Member, Member->ContainerPtrToValuePtr<void>(Storage.data())) : "no such property";
	}

private:
	const UScriptStruct& Struct;
	std::vector<std::byte> Storage;
};

/** Reads values into structures of the package /Game/Values. */
class PropertyReading : public FPackageFiles
{
protected:
	PropertyReading()
	{
		auto* const Colour = static_cast<UEnum*>(NewObject(UEnum::StaticClass(), Package, "EColour"));
		Colour->SetEntries(
			{{"EColour::Red", FText(), 0}, {"EColour::Green", FText(), 1}, {"EColour::EColour_MAX", FText(), 300}});
		Declare("Point", R"([{"name":"X","type":"int"},{"name":"Y","type":"int","default":9},{"name":"Tag","type":"name"}])");
		NewObject(UTestNode::StaticClass(), Package, "Node");
		NewObject(UTestNode::StaticClass(), Package->FindInside("Node"), "Sub");
	}
	~PropertyReading() override { UnloadPackage(Package); }

	UScriptStruct& Declare(const char* Name, const std::string& Declarations)
	{
		auto* const Struct = static_cast<UScriptStruct*>(NewObject(UScriptStruct::StaticClass(), Package, Name));
		Document.Parse(Declarations, {.MaxDepth = Json::MaxPackageDepth, .StopBefore = {}});
		FPropertyReader Reader(Package, Document, "test", &Faults);
		DeclareAlone(Reader, *Struct, Document.Root());
		return *Struct;
	}
	/** The faults of reading a JSON object into an instance. */
	std::string Read(FInstance& Instance, const UScriptStruct& Struct, const std::string& Text)
	{
		FDiagnosticSink Told;
		EXPECT_TRUE(Document.Parse(Text, {.MaxDepth = Json::MaxPackageDepth, .StopBefore = {}})) << Text;
		FPropertyReader Reader(Package, Document, "test", &Told);
		Reader.ReadProperties(Struct, Instance.Get(), Document.Root(), nullptr);
		Reader.ReportMissingObjects();
		return RenderFaults(Told);
	}

	UPackage* Package = FindPackage("/Game/Values", true);
	FJsonDocument Document;
};

std::string Quote(const std::string& Text)
{
	return '"' + Text + '"';
}
}

TEST_F(PropertyReading, ReadsEachTypeFromItsJson)
{
	const struct
	{
		const char* Why;
		const char* Type;
		const char* Json;
		const char* Value;
		const char* Fault; // at the "^", or at the value where there is none
	} Cases[] = {
		{"ends of the ranges", "int8", "-128", "-128", ""},
		{"", "int8", "128", "0", "error property-range"},
		{"", "byte", "255", "255", ""},
		{"", "byte", "256", "0", "error property-range"},
		{"", "byte", "-1", "0", "error property-range"},
		{"", "int16", "-32769", "0", "error property-range"},
		{"", "uint16", "65535", "65535", ""},
		{"", "int", "2147483647", "2147483647", ""},
		{"", "int", "2147483648", "0", "error property-range"},
		{"", "uint32", "4294967295", "4294967295", ""},
		{"", "int64", "-9223372036854775808", "-9223372036854775808", ""},
		{"just beyond int64 there is no such number", "int64", "1e19", "0", "error property-range"},
		{"", "uint64", "9223372036854775808", "9223372036854775808", ""},
		{"the highest number is read although doubles cannot tell it from the next", "uint64", "18446744073709551615",
			"18446744073709551615", ""},
		{"", "uint64", "1.9e19", "0", "error property-range"},
		{"whole numbers may be written with a fraction", "int", "3.0", "3", ""},
		{"others are none", "int", "3.5", "0", "error property-type"},
		{"", "float", "0.25", "0.25", ""},
		{"", "float", "-7", "-7.0", ""},
		{"", "float", "1e39", "0.0", "error property-range"},
		{"", "double", "1e39", "999999999999999939709166371603178586112.0", ""},
		{"numbers are not read from texts", "int", R"("3")", "0", "error property-type"},
		{"nor from bools", "float", "true", "0.0", "error property-type"},
		{"", "int", "null", "0", "error property-type"},
		{"", "bool", "true", "true", ""},
		{"", "bool", "1", "false", "error property-type"},
		{"", "bool", R"("true")", "false", "error property-type"},
		{"", "string", R"("a \u00e4")", "'a ä'", ""},
		{"", "string", "3", "''", "error property-type"},
		{"", "name", R"("Key")", "Key", ""},
		{"", "name", "null", "None", "error property-type"},
		{"", "text", R"("shown")", R"("shown")", ""},
		{"text may be an object", "text", R"({"text":"shown","key":"k"})", R"("shown")", ""},
		{"", "text", R"({"Text":"shown"})", R"("")", "error property-type"},
		{"", "text", "[]", R"("")", "error property-type"},
		{"enumerators by name", "enum</Game/Values.EColour>", R"("Green")", "1", ""},
		{"whatever the case", "byte</Game/Values.EColour>", R"("green")", "1", ""},
		{"with the enumeration in front", "byte</Game/Values.EColour>", R"("EColour::Green")", "1", ""},
		{"of another enumeration", "byte</Game/Values.EColour>", R"("EColor::Green")", "0", "error unknown-enumerator"},
		{"unknown", "enum</Game/Values.EColour>", R"("Blue")", "0", "error unknown-enumerator"},
		{"", "enum</Game/Values.EColour>", R"("")", "0", "error unknown-enumerator"},
		{"by number", "enum</Game/Values.EColour>", "300", "300", ""},
		{"the enumerator does not fit a byte", "byte</Game/Values.EColour>", R"("EColour_MAX")", "0", "error property-range"},
		{"", "enum</Game/Values.EColour>", "true", "0", "error property-type"},
		{"structures merge", "struct</Game/Values.Point>", R"({"X":1})", "{X:1 Y:9 Tag:None}", ""},
		{"member names ignore case", "struct</Game/Values.Point>", R"({"x":1,"TAG":"t"})", "{X:1 Y:9 Tag:t}", ""},
		{"", "struct</Game/Values.Point>", R"([1,2])", "{X:0 Y:9 Tag:None}", "error property-type"},
		{"unknown member, the rest is read", "struct</Game/Values.Point>", R"({^"Z":3,"X":1})", "{X:1 Y:9 Tag:None}",
			"warning unknown-property"},
		{"a repeated member counts last", "struct</Game/Values.Point>", R"({"X":1,"X":2})", "{X:2 Y:9 Tag:None}", ""},
		{"and only there", "struct</Game/Values.Point>", R"({"X":"no","X":2})", "{X:2 Y:9 Tag:None}", ""},
		{"", "array<int>", "[3,1,2]", "[3 1 2]", ""},
		{"", "array<int>", "[]", "[]", ""},
		{"elements keep their places", "array<int>", R"([3,^"x",2])", "[3 0 2]", "error property-type"},
		{"", "array<int>", "{}", "[]", "error property-type"},
		{"", "array<int>", "3", "[]", "error property-type"},
		{"", "array<struct</Game/Values.Point>>", R"([{},{"Y":1}])", "[{X:0 Y:9 Tag:None} {X:0 Y:1 Tag:None}]", ""},
		{"", "array<array<string>>", R"([["a"],[],["b","c"]])", "[['a'] [] ['b' 'c']]", ""},
		{"", "set<name>", R"(["a","b"])", "[a b]", ""},
		{"repeated values are dropped; names ignore case", "set<name>", R"(["a","b",^"A"])", "[a b]", "warning repeated-value"},
		{"", "set<string>", R"(["a",^"A"])", "['a']", "warning repeated-value"},
		{"faulty elements too", "set<int>", R"([1,^"x",2])", "[1 2]", "error property-type"},
		{"", "set<struct</Game/Values.Point>>", R"([{"X":1},{"X":2},^{"X":1,"Y":9}])", "[{X:1 Y:9 Tag:None} {X:2 Y:9 Tag:None}]",
			"warning repeated-value"},
		{"", "set<array<int>>", "[[1],[1,2],^[1]]", "[[1] [1 2]]", "warning repeated-value"},
		{"map as an object", "map<name,int>", R"({"a":1,"b":2})", "[a=1 b=2]", ""},
		{"map as pairs", "map<int,string>", R"([[1,"a"],[2,"b"]])", "[1='a' 2='b']", ""},
		{"", "map<string,int>", R"([["a",1]])", "['a'=1]", ""},
		{"enumerators are text", "map<enum</Game/Values.EColour>,int>", R"({"Red":1,"Green":2})", "[0=1 1=2]", ""},
		{"", "map<enum</Game/Values.EColour>,int>", R"({"Red":1,"Blue":^2})", "[0=1]", "error property-type"},
		{"numbers are not", "map<int,int>", R"({"1":1})", "[]", "error property-type"},
		{"later values count, keys keep their place", "map<name,int>", R"({"a":1,"b":2,"A":^3})", "[a=3 b=2]",
			"warning repeated-value"},
		{"no pair", "map<int,int>", "[[1,2],^[3],[4,5]]", "[1=2 4=5]", "error property-type"},
		{"", "map<int,int>", "[[1,2],^7]", "[1=2]", "error property-type"},
		{"a pair with a fault is dropped", "map<int,int>", R"([[1,2],[3,^"x"]])", "[1=2]", "error property-type"},
		{"", "map<struct</Game/Values.Point>,array<name>>", R"([[{"X":1},["a"]]])", "[{X:1 Y:9 Tag:None}=[a]]", ""},
		{"null is no reference", "object</Script/Test.Node>", "null", "", ""},
		{"path inside the package", "object</Script/Test.Node>", R"("Node:Sub")", "/Game/Values.Node:Sub", ""},
		{"full path", "object</Script/Test.Node>", R"("/Game/Values.Node")", "/Game/Values.Node", ""},
		{"export form", "object</Script/Test.Node>", R"("Node'/Game/Values.Node'")", "/Game/Values.Node", ""},
		{"of other packages nothing is checked before it is needed", "soft_object</Script/Test.Node>", R"("/Game/Nowhere.N:S")",
			"/Game/Nowhere.N:S", ""},
		{"below /Script it is", "object</Script/Test.Node>", R"("/Script/Test.Nobody")", "", "error bad-reference"},
		{"no such object in the package", "object</Script/Test.Node>", R"("Node:Other")", "/Game/Values.Node:Other",
			"error bad-reference"},
		{"object of another class", "object</Script/Test.Node>", R"("EColour")", "", "error bad-reference"},
		{"a package is no object", "object</Script/Test.Node>", R"("/Game/Values")", "", "error bad-reference"},
		{"no path at all", "object</Script/Test.Node>", R"("a/b")", "", "error bad-reference"},
		{"", "object</Script/Test.Node>", R"("")", "", "error bad-reference"},
		{"", "object</Script/Test.Node>", "{}", "", "error property-type"},
		{"class references", "class</Script/Test.Node>", R"("/Script/Test.Node")", "/Script/Test.Node", ""},
		{"to a class that does not derive", "class</Script/Test.Node>", R"("/Script/CoreObject.Object")", "",
			"error bad-reference"},
		{"to an object", "soft_class</Script/Test.Node>", R"("Node")", "", "error bad-reference"},
		{"", "interface</Script/Test.Node>", R"("Node")", "/Game/Values.Node", ""},
		{"empty slots stay", "array<object</Script/Test.Node>>", R"(["Node",null])", "[/Game/Values.Node ]", ""},
		{"values that are not read are no faults", "delegate", R"({"any":"thing"})", "-", ""},
	};
	int32 Number = 0;
	for (const auto& Case : Cases)
	{
		SCOPED_TRACE(std::string(Case.Type) + " from " + Case.Json + ": " + Case.Why);
		const std::string Name = "S" + std::to_string(++Number);
		const UScriptStruct& Struct = Declare(Name.c_str(), R"([{"name":"P","type":")" + std::string(Case.Type) + R"("}])");
		FInstance Instance(Struct);
		std::string Json = Case.Json;
		if (*Case.Fault && Json.find('^') == std::string::npos)
			Json = "^" + Json;
		const FMarkedText Text(R"({"P":)" + Json + "}");
		EXPECT_EQ(Read(Instance, Struct, Text.GetText()), Text.Place(Case.Fault));
		EXPECT_EQ(Instance.RenderMember("P"), Case.Value);
	}
	EXPECT_EQ(RenderFaults(Faults), "") << "of the declarations";
}

TEST_F(PropertyReading, KeepsWhatWasThereWhereAValueDoesNotFit)
{
	const UScriptStruct& Struct =
		Declare("S", R"([{"name":"N","type":"int","default":5},{"name":"T","type":"string","default":"t"},
		{"name":"A","type":"array<int>","default":[1,2]},{"name":"E","type":"enum</Game/Values.EColour>","default":"Green"},
		{"name":"P","type":"struct</Game/Values.Point>","default":{"X":4}}])");
	FInstance Instance(Struct);
	Read(Instance, Struct, R"({"N":1e10,"T":false,"A":"x","E":"Blue","P":{"Y":"x","Tag":"t"}})");
	EXPECT_EQ(Instance.RenderMember("N"), "5");
	EXPECT_EQ(Instance.RenderMember("T"), "'t'");
	EXPECT_EQ(Instance.RenderMember("A"), "[1 2]");
	EXPECT_EQ(Instance.RenderMember("E"), "1");
	EXPECT_EQ(Instance.RenderMember("P"), "{X:4 Y:9 Tag:t}");
	Read(Instance, Struct, R"({"A":[3]})");
	EXPECT_EQ(Instance.RenderMember("A"), "[3]") << "arrays are replaced";
}

TEST_F(PropertyReading, ReportsFaultyDeclarations)
{
	const struct
	{
		const char* Why;
		const char* Declarations;
		const char* Names;
		const char* Faults;
	} Cases[] = {
		{"nothing wrong", R"([{"name":"A","type":"int","authored":"The A","deprecated":true,"default":1}])", "A", ""},
		{"no list", R"(^{})", "", "error declaration"},
		{"an element that is none", R"([^1,{"name":"A","type":"int"}])", "A", "error declaration"},
		{"no name", R"([^{"type":"int"}])", "", "error declaration"},
		{"empty name", R"([{"name":^"","type":"int"}])", "", "error declaration"},
		{"no type", R"([^{"name":"A"}])", "", "error declaration"},
		{"unknown type", R"([{"name":"A","type":^"integer"},{"name":"B","type":"int"}])", "AB", "warning unknown-type"},
		{"repeated name, in another case", R"([{"name":"A","type":"int"},{"name":^"a","type":"bool"}])", "A",
			"error repeated-property"},
		{"a parent's name", R"([{"name":^"tag","type":"int"}])", "", "error repeated-property"},
		{"default of another type", R"([{"name":"A","type":"int","default":^"x"}])", "A", "error property-type"},
		{"remarks of another type", R"([{"name":"A","type":"int","authored":^1,"deprecated":^"yes"}])", "A",
			"error declaration\nerror declaration"},
		{"unknown key", R"([{"name":"A",^"kind":1,"type":"int"}])", "A", "warning unknown-key"},
		{"inside itself", R"([{"name":^"A","type":"struct</Game/Values.S>"},{"name":"B","type":"int"}])", "AB",
			"error value-cycle"},
	};
	for (const auto& Case : Traced(Cases))
	{
		const FMarkedText Text(Case.Declarations);
		auto* const Struct = static_cast<UScriptStruct*>(NewObject(UScriptStruct::StaticClass(), Package, "S"));
		Struct->SetSuperStruct(Cast<UScriptStruct>(Package->FindInside("Point")));
		FDiagnosticSink Told;
		ASSERT_TRUE(Document.Parse(Text.GetText()));
		FPropertyReader Reader(Package, Document, "test", &Told);
		DeclareAlone(Reader, *Struct, Document.Root());
		EXPECT_EQ(RenderFaults(Told), Text.Place(Case.Faults));
		std::string Names;
		for (const FProperty* Property : PropertiesOf(*Struct, {.bIncludeSuper = false}))
			Names += *Property->GetName();
		EXPECT_EQ(Names, Case.Names);
		DestroyObjects({Struct});
	}
}

TEST_F(PropertyReading, MakesEnumerationsWithAMaximum)
{
	const FMarkedText Text(
		R"([{"name":"A","display":"An A"},{"name":"B"},^1,{"name":^"a"},{"name":"E_X_max"},{"name":"C","display":^3},^{"display":"D"}])");
	ASSERT_TRUE(Document.Parse(Text.GetText()));
	std::string Entries;
	for (const UEnum::FEntry& Entry : FPropertyReader(Package, Document, "test", &Faults).ReadEnumEntries(Document.Root(), "E_X"))
		Entries += *(Entry.Name.ToString() + "=" + FString::FromInt(Entry.Value) + " '" + Entry.DisplayName.ToString() + "' ");
	EXPECT_EQ(Entries, "E_X::A=0 'An A' E_X::B=1 'B' E_X::E_X_max=2 'E_X_max' E_X::C=3 'C' E_X::E_X_MAX=4 'E_X_MAX' ")
		<< "the maximum follows, though an entry is called like it";
	EXPECT_EQ(
		RenderFaults(Faults), Text.Place("error declaration\nwarning repeated-entry\nerror declaration\nerror declaration"));
}

/** Random values for random types: nothing may crash or leak, what was read can be copied, and copies are identical. */
TEST_F(PropertyReading, SurvivesAnything)
{
	std::mt19937 Random(GetSeed());
	const auto Below = [&Random](std::size_t End) { return std::uniform_int_distribution<std::size_t>(0, End - 1)(Random); };
	const std::function<std::string(int32)> MakeType = [&](int32 Depth) -> std::string
	{
		const char* const Plain[] = {"int", "uint64", "float", "bool", "string", "name", "text", "byte", "delegate",
			"byte</Game/Values.EColour>", "enum</Game/Values.EColour>", "struct</Game/Values.Point>", "object</Script/Test.Node>",
			"class</Script/Test.Node>"};
		switch (Depth > 3 ? 9 : Below(8))
		{
			case 0:
				return "array<" + MakeType(Depth + 1) + ">";
			case 1:
				return "set<" + MakeType(Depth + 1) + ">";
			case 2:
				return "map<" + MakeType(Depth + 1) + "," + MakeType(Depth + 1) + ">";
			default:
				return Plain[Below(std::size(Plain))];
		}
	};
	const std::function<std::string(int32)> MakeValue = [&](int32 Depth) -> std::string
	{
		const char* const Plain[] = {"null", "true", "0", "1", "-1", "1e30", "2.5", R"("a")", R"("A")", R"("Red")", R"("Node")",
			R"("")", "{}", "[]", R"({"X":1})", R"({"text":"t"})", R"([1,2])", R"("/Script/Test.Node")"};
		std::string Out;
		switch (Depth > 4 ? 9 : Below(6))
		{
			case 0:
			case 1:
				for (std::size_t Count = Below(5); Count > 0; --Count)
					Out += MakeValue(Depth + 1) + (Count > 1 ? "," : "");
				return "[" + Out + "]";
			case 2:
				for (std::size_t Count = Below(5); Count > 0; --Count)
					Out += Quote(std::string(1, static_cast<char>('a' + Below(4)))) + ":" + MakeValue(Depth + 1) +
						(Count > 1 ? "," : "");
				return "{" + Out + "}";
			default:
				return Plain[Below(std::size(Plain))];
		}
	};
	for (int32 Round = 0; Round < 3000; ++Round)
	{
		const std::string Type = MakeType(0);
		UScriptStruct& Struct = Declare("S",
			R"([{"name":"P","type":)" + Quote(Type) + R"(,"default":)" + MakeValue(0) + R"(},{"name":"Q","type":"string"}])");
		{
			FInstance Read1(Struct);
			FInstance Copy(Struct);
			Read(Read1, Struct, R"({"P":)" + MakeValue(0) + R"(,"Q":"q"})");
			Struct.CopyStruct(Copy.Get(), Read1.Get());
			const FStructProperty Whole("Whole", Struct);
			EXPECT_TRUE(Whole.Identical(Copy.Get(), Read1.Get())) << Type;
			EXPECT_EQ(Whole.HashValue(Copy.Get()), Whole.HashValue(Read1.Get())) << Type;
			EXPECT_EQ(Copy.RenderMember("P"), Read1.RenderMember("P")) << Type;
		}
		DestroyObjects({&Struct});
	}
}

TEST_F(PropertyReading, StopsTellingAfterAWhile)
{
	const UScriptStruct& Struct = Declare("S", R"([{"name":"A","type":"array<int>"}])");
	std::string Text = R"({"A":[)";
	for (int32 Count = 0; Count < 5000; ++Count)
		Text += "false,";
	FInstance Instance(Struct);
	const std::string Told = Read(Instance, Struct, Text + "7]}");
	EXPECT_EQ(std::count(Told.begin(), Told.end(), '\n'), 100);
	EXPECT_NE(Told.find("~ warning more-faults"), std::string::npos);
	EXPECT_TRUE(Instance.RenderMember("A").ends_with(" 7]")) << "and reads on";
}

// Values that a simple hash, or a table by remainders, puts into one place: this would take longer than a test may.
TEST_F(PropertyReading, KeepsManyElementsApart)
{
	constexpr int32 Count = 40000;
	Declare("Two", R"([{"name":"A","type":"int64"},{"name":"B","type":"int64"}])");
	const auto Number = [](int64 Index) { return std::to_string(Index); };
	const auto Two = [&](int64 Index) { return R"({"A":)" + Number(Index) + R"(,"B":)" + Number(-31 * Index) + "}"; };
	const struct
	{
		const char* Type;
		std::function<std::string(int64)> Element;
	} Cases[] = {
		{"set<struct</Game/Values.Two>>", Two},
		{"map<struct</Game/Values.Two>,int>", [&](int64 Index) { return "[" + Two(Index) + ",1]"; }},
		{"set<int64>", [&](int64 Index) { return Number(85229 * Index); }},
		{"set<uint64>", [&](int64 Index) { return Number(Index << 32); }},
		{"set<double>", [&](int64 Index) { return Number(Index) + "e6"; }},
		{"set<array<int64>>", [&](int64 Index) { return "[" + Number(Index) + "," + Number(-31 * Index) + "]"; }},
		{"set<map<int64,int64>>", [&](int64 Index) { return "[[" + Number(Index) + "," + Number(-31 * Index) + "]]"; }},
		{"set<object</Script/Test.Node>>", [&](int64 Index) { return Quote("/Game/P" + Number(Index) + ".A"); }},
		{"set<text>", [&](int64 Index) { return Quote("T" + Number(Index)); }},
	};
	for (const auto& Case : Cases)
	{
		SCOPED_TRACE(Case.Type);
		const UScriptStruct& Holder = Declare((std::string("Holder") + std::to_string(&Case - Cases)).c_str(),
			R"([{"name":"P","type":")" + std::string(Case.Type) + R"("}])");
		std::string Elements;
		for (int64 Index = 0; Index < Count; ++Index)
			Elements += (Index > 0 ? "," : "") + Case.Element(Index);
		FInstance Instance(Holder);
		EXPECT_EQ(Read(Instance, Holder, R"({"P":[)" + Elements + "]}"), "");
		const auto& Container = static_cast<const FContainerProperty&>(*Holder.FindPropertyByName("P"));
		EXPECT_EQ(Container.Num(Container.ContainerPtrToValuePtr<void>(Instance.Get())), Count);
	}
}

TEST_F(PropertyReading, BoundsTheMemoryOfValues)
{
	std::string Members;
	for (int32 Index = 0; Index < 1000; ++Index)
		Members += std::string(Index ? "," : "") + R"({"name":"M)" + std::to_string(Index) + R"(","type":"string"})";
	Declare("Large", "[" + Members + "]");
	const UScriptStruct& Struct =
		Declare("S", R"([{"name":"A","type":"array<struct</Game/Values.Large>>"},{"name":"B","type":"int"}])");
	std::string Text = R"({"A":[)";
	for (int32 Count = 0; Count < 20000; ++Count)
		Text += "{},";
	FInstance Instance(Struct);
	EXPECT_EQ(Read(Instance, Struct, Text + R"({}],"B":3})"), "1:6 error property-size");
	EXPECT_EQ(Instance.RenderMember("A"), "[]");
	EXPECT_EQ(Instance.RenderMember("B"), "3");
}
