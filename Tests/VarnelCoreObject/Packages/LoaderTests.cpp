#include "PackageFixture.h"
#include "Support/Cases.h"

namespace
{
const std::string OneNode = R"({"path":"A","class":"/Script/Test.Node"},{"path":"A:Sub","class":"/Script/Test.Node"})";

std::string IntVariable(const std::string& Name, int32 Default)
{
	return R"({"name":")" + Name + R"(","type":"int","default":)" + std::to_string(Default) + "}";
}

std::string Repeat(const std::string& Text, int32 Count)
{
	std::string Out;
	for (int32 Left = Count; Left > 0; --Left)
		Out += Text;
	return Out;
}

class Loader : public FPackageFixture
{
};
}

TEST_F(Loader, FindsObjectsByAnySpellingOfTheirPath)
{
	FFile& File = Add("/Game/A", OneNode);
	Add("/Game/B", R"({"path":"B","class":"/Script/Engine.Blueprint","properties":{"ParentClass":"/Script/Test.Node"}})");
	const struct
	{
		const char* Why;
		UClass* Class;
		const char* Path;
		const char* Found; // path, "" for null
	} Cases[] = {
		{"other case than the project's", nullptr, "/gAmE/a.a:SUB", "/Game/A.A:Sub"},
		{"asset", UTestNode::StaticClass(), "/Game/A.A", "/Game/A.A"},
		{"export form", nullptr, "Node'/Game/A.A'", "/Game/A.A"},
		{"package alone", nullptr, "/Game/A", "/Game/A"},
		{"of another class", UTestBlueprint::StaticClass(), "/Game/A.A", ""},
		{"of a parent class", UObject::StaticClass(), "/Game/A.A", "/Game/A.A"},
		{"no such object", nullptr, "/Game/A.B", ""},
		{"no such sub-object", nullptr, "/Game/A.A:None", ""},
		{"no such package", nullptr, "/Game/C.C", ""},
		{"generated class", UClass::StaticClass(), "/Game/B.B_C", "/Game/B.B_C"},
		{"built-in class", UClass::StaticClass(), "/Script/Test.Node", "/Script/Test.Node"},
		{"no such built-in class", UClass::StaticClass(), "/Script/Test.Unknown", ""},
		{"no path", nullptr, "A", ""},
		{"nothing", nullptr, "", ""},
		{"a root", nullptr, "/", ""},
	};
	for (const auto& Case : Traced(Cases))
	{
		const UObject* const Object = StaticLoadObject(Case.Class, nullptr, Case.Path);
		EXPECT_EQ(Object ? Object->GetPathName().ToStdString() : "", Case.Found);
	}
	EXPECT_EQ(File.NumReads, 1);
	UObject* const A = StaticLoadObject(nullptr, LoadPackage("/Game/A"), "A");
	EXPECT_EQ(StaticLoadObject(nullptr, A, "Sub"), LoadObject<UTestNode>("/Game/A.A:Sub"));
	EXPECT_EQ(StaticLoadObject(nullptr, A, "Sub.Deeper"), nullptr);
}

TEST_F(Loader, RemembersFailedLoadsUntilPackagesAreUnloaded)
{
	const struct
	{
		const char* Why;
		std::string Text;
		EFileRead Outcome;
		const char* Fault;
	} Cases[] = {
		{"broken body", R"({"varnel_package":1,"objects":[)", EFileRead::Ok, "1:32 error json-syntax"},
		{"too many values", R"({"varnel_package":1,"objects":[)" + Repeat("0,", 3 << 20) + "0]}", EFileRead::Ok,
			"1:6291482 error too-many-values"},
		{"gone", "", EFileRead::Missing, "~ error missing-file"},
		{"unreadable", "", EFileRead::Unreadable, "~ error unreadable-file"},
		{"a byte beyond 64 MiB", std::string((std::size_t{64} << 20) + 1, ' '), EFileRead::Ok, "~ error too-large"},
	};
	for (const auto& Case : Traced(Cases))
	{
		FDiagnosticSink Sink;
		SetLoadDiagnostics(&Sink);
		FFile& File = Files["/Game/Bad"];
		File.Text = Case.Text;
		File.Outcome = Case.Outcome;
		File.NumReads = 0;
		EXPECT_EQ(LoadPackage("/Game/Bad"), nullptr);
		EXPECT_EQ(LoadPackage("/game/bad"), nullptr);
		EXPECT_EQ(FindPackage("/Game/Bad"), nullptr);
		EXPECT_EQ(File.NumReads, 1);
		EXPECT_EQ(RenderFaults(Sink), Case.Fault);

		Add("/Game/Bad", OneNode).Outcome = EFileRead::Ok;
		UnloadAllLoadedPackages();
		EXPECT_NE(LoadPackage("/Game/Bad"), nullptr);
		UnloadAllLoadedPackages();
	}
}

TEST_F(Loader, TellsOfMissingPackagesAndObjectsOnce)
{
	Add("/Game/A", OneNode);
	for (int32 Round = 0; Round < 2; ++Round)
	{
		EXPECT_EQ(LoadObject<UObject>("/Game/Missing.Missing"), nullptr);
		EXPECT_EQ(LoadObject<UObject>("/Game/A.Missing"), nullptr);
	}
	EXPECT_EQ(RenderFaults(*Faults), "~ warning no-such-object\n~ warning no-such-package");
}

TEST_F(Loader, PutsPackagesWithoutFilesAsTheyAre)
{
	UPackage* const Made = FindPackage("/Temp/Made", true);
	NewObject(UTestNode::StaticClass(), Made, "A");
	EXPECT_EQ(LoadPackage("/temp/made"), Made);
	EXPECT_NE(LoadObject<UTestNode>("/Temp/Made.A"), nullptr);
	UnloadAllLoadedPackages();
	EXPECT_EQ(FindPackage("/Temp/Made"), Made) << "it was not loaded from a file";
	UnloadPackage(Made);
	EXPECT_EQ(LoadPackage(FName()), nullptr);
}

TEST_F(Loader, LoadsTheClassesThatObjectsNeed)
{
	AddBlueprint("/Game/BP_Base", "/Script/Test.Node", IntVariable("Speed", 3) + "," + IntVariable("Height", 4));
	AddBlueprint("/Game/BP_Child", "/Game/BP_Base.BP_Base_C", IntVariable("Depth", 5));
	Add("/Game/Map",
		R"({"path":"Map","class":"/Script/Test.Node"},
		{"path":"Map:Actor","class":"/Game/BP_Child.BP_Child_C","properties":{"Height":40,"Number":70}},
		{"path":"Map:Other","class":"/Game/BP_Gone.BP_Gone_C"})");
	const UObject* const Actor = LoadObject<UTestNode>("/Game/Map.Map:Actor");
	ASSERT_NE(Actor, nullptr);
	EXPECT_EQ(GetInt(Actor, "Speed"), 3);
	EXPECT_EQ(GetInt(Actor, "Height"), 40);
	EXPECT_EQ(GetInt(Actor, "Depth"), 5);
	EXPECT_EQ(GetInt(Actor, "Number"), 70);
	EXPECT_EQ(RenderFaults(*Faults), "~ warning no-such-package\n3:31 warning unknown-class");
}

TEST_F(Loader, LoadsNothingForReferences)
{
	FFile& Other = Add("/Game/Other", R"({"path":"Other","class":"/Script/Test.Node"})");
	Add("/Game/A", R"({"path":"A","class":"/Script/Test.Node","properties":{"Link":"/Game/Other.Other"}})");
	const auto* const A = LoadObject<UTestNode>("/Game/A.A");
	ASSERT_NE(A, nullptr);
	EXPECT_EQ(Other.NumReads, 0);
	EXPECT_NE(A->Link.Get(), nullptr);
	EXPECT_EQ(Other.NumReads, 1);
}

TEST_F(Loader, EndsCyclesOfPackages)
{
	const std::string FriendOfB = R"(,{"path":"Friend","class":"/Game/BP_B.BP_B_C","properties":{"Number":1}})";
	const std::string FriendOfA = R"(,{"path":"Friend","class":"/Game/BP_A.BP_A_C","properties":{"Number":2}})";
	AddBlueprint("/Game/BP_A", "/Script/Test.Node", IntVariable("OfA", 10), FriendOfB);
	AddBlueprint("/Game/BP_B", "/Script/Test.Node", IntVariable("OfB", 20), FriendOfA);
	EXPECT_EQ(GetInt(LoadObject<UTestNode>("/Game/BP_A.Friend"), "OfB"), 20) << "each holds an object of the other's class";
	EXPECT_EQ(GetInt(LoadObject<UTestNode>("/Game/BP_B.Friend"), "OfA"), 10);
	EXPECT_EQ(RenderFaults(*Faults), "");

	const FFile& X = AddBlueprint("/Game/BP_X", "/Game/BP_Y.BP_Y_C");
	const FFile& Y = AddBlueprint("/Game/BP_Y", "/Game/BP_X.BP_X_C");
	EXPECT_NE(LoadPackage("/Game/BP_X"), nullptr) << "each is the other's parent";
	EXPECT_EQ(FindClass("/Game/BP_X.BP_X_C")->GetSuperClass(), UObject::StaticClass());
	EXPECT_EQ(FindClass("/Game/BP_Y.BP_Y_C")->GetSuperClass(), UObject::StaticClass());
	EXPECT_EQ(X.NumReads, 1);
	EXPECT_EQ(Y.NumReads, 1);
	EXPECT_EQ(RenderFaults(*Faults), "1:161 error parent-cycle\n1:161 error parent-cycle");
}

/** Every package needs the class of the next: the stack must hold, and where the line of parents is cut must not depend on the
 * package that was loaded first. */
TEST_F(Loader, LoadsLongChainsOfPackages)
{
	constexpr int32 NumPackages = 5000;
	const auto NameOf = [](int32 Index) { return "BP_" + std::to_string(Index); };
	for (int32 Index = 0; Index < NumPackages; ++Index)
	{
		const std::string Next = NameOf(Index + 1);
		const std::string Parent =
			Index + 1 < NumPackages ? "/Game/" + Next + "." + Next + "_C" : std::string("/Script/Test.Node");
		AddBlueprint("/Game/" + NameOf(Index), Parent);
	}
	const auto CountParents = [&NameOf](int32 Index)
	{
		const std::string Path = "/Game/" + NameOf(Index) + "." + NameOf(Index) + "_C";
		int32 NumParents = -1;
		for (const UStruct* Class = LoadObject<UClass>(Path); Class; Class = Class->GetSuperStruct())
			++NumParents;
		return NumParents;
	};
	std::vector<int32> FromTheFirst;
	for (int32 Index = 0; Index < NumPackages; Index += 7)
		FromTheFirst.push_back(CountParents(Index));
	EXPECT_EQ(*std::max_element(FromTheFirst.begin(), FromTheFirst.end()), MaxStructDepth);
	EXPECT_NE(RenderFaults(*Faults).find("error too-deep"), std::string::npos);

	UnloadAllLoadedPackages();
	std::vector<int32> FromTheLast;
	for (int32 Index = (NumPackages - 1) / 7 * 7; Index >= 0; Index -= 7)
		FromTheLast.insert(FromTheLast.begin(), CountParents(Index));
	EXPECT_EQ(FromTheFirst, FromTheLast);
}

/** Objects of classes whose packages hold objects of further classes: filling waits rather than going ever deeper. */
TEST_F(Loader, FillsLongChainsOfPackages)
{
	constexpr int32 NumPackages = 5000;
	for (int32 Index = 0; Index < NumPackages; ++Index)
	{
		const std::string Next = "BP_" + std::to_string(Index + 1);
		const std::string Inner = R"(,{"path":"Inner","class":"/Game/)" + Next + "." + Next + R"(_C","properties":{"Number":5}})";
		AddBlueprint("/Game/BP_" + std::to_string(Index), "/Script/Test.Node", IntVariable("Own", Index),
			Index + 1 < NumPackages ? Inner : "");
	}
	LoadPackage("/Game/BP_0");
	for (const int32 Index : {0, 20, NumPackages - 2})
	{
		const FString Path = "/Game/BP_" + FString::FromInt(Index) + ".Inner";
		const UObject* const Inner = StaticFindObject(UTestNode::StaticClass(), Path);
		EXPECT_EQ(GetInt(Inner, "Number"), 5) << Index;
		EXPECT_EQ(GetInt(Inner, "Own"), Index + 1);
		EXPECT_TRUE(Inner && Inner->GetPackage()->IsFullyLoaded());
	}
	EXPECT_EQ(RenderFaults(*Faults), "");
}

TEST_F(Loader, UnloadsEverythingItLoaded)
{
	AddBlueprint(
		"/Game/BP_Base", "/Script/Test.Node", IntVariable("Speed", 3), R"(,{"path":"Own","class":"/Game/BP_Base.BP_Base_C"})");
	AddBlueprint("/Game/BP_Child", "/Game/BP_Base.BP_Base_C");
	Add("/Game/Map", R"({"path":"Actor","class":"/Game/BP_Child.BP_Child_C","properties":{"Link":"/Game/BP_Base.Own"}})");
	for (int32 Round = 0; Round < 2; ++Round)
	{
		const FObjectPtr Actor(FSoftObjectPath("/Game/Map.Actor"));
		const auto* const Node = Cast<UTestNode>(Actor.Get());
		ASSERT_NE(Node, nullptr);
		ASSERT_NE(Node->Link.Get(), nullptr);
		UnloadAllLoadedPackages();
		EXPECT_EQ(Actor.GetIfLoaded(), nullptr);
		EXPECT_EQ(FindPackage("/Game/Map"), nullptr);
		EXPECT_EQ(FindClass("/Game/BP_Base.BP_Base_C"), nullptr);
		EXPECT_NE(FindClass("/Script/Test.Node"), nullptr);
	}
	SetPackageLocator(nullptr);
	EXPECT_EQ(LoadPackage("/Game/Map"), nullptr);
}
