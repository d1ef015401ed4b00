#include "PackageFixture.h"
#include "Support/Cases.h"

namespace
{
/** An element of a package's list of objects. */
std::string ObjectOf(const std::string& Class, const std::string& Path, const std::string& Properties = "")
{
	return R"({"path":")" + Path + R"(","class":")" + Class + R"(","properties":{)" + Properties + "}}";
}

std::string Node(const std::string& Path, const std::string& Properties = "")
{
	return ObjectOf("/Script/Test.Node", Path, Properties);
}

/** A node whose path is expected to be at fault. */
std::string FaultyNode(const std::string& Path)
{
	return R"({"path":^")" + Path + R"(","class":"/Script/Test.Node"})";
}

std::string DeepPath(int32 NumSegments)
{
	std::string Path = "A:B";
	for (int32 Segment = 2; Segment < NumSegments; ++Segment)
		Path += ".C";
	return Path;
}

UClass* GetAbstractNodeClass()
{
	static UClass* const Class = TClassBuilder<UTestNode>("/Script/Test.AbstractNode", UObject::StaticClass()).Abstract().Build();
	return Class;
}

class VassetBody : public FPackageFiles
{
};
}

TEST_F(VassetBody, ListsObjectsInFileOrder)
{
	AddBlueprint("/Game/BP_Foreign", "/Script/Test.Node");
	const TCase<std::string> Cases[] = {
		{"siblings in file order, what lies inside behind its outer",
			Node("B") + "," + Node("A") + "," + Node("B:Y") + "," + Node("B:X") + "," + Node("B:Y.Z"),
			"B Node\nB:Y Node\nB:Y.Z Node\nB:X Node\nA Node"},
		{"an outer may follow what it holds", Node("A:X.Deep") + "," + Node("A:X") + "," + Node("A"),
			"A Node\nA:X Node\nA:X.Deep Node"},
		{"classes that have to be loaded do not change the order",
			Node("M") + "," + ObjectOf("/Game/BP_Foreign.BP_Foreign_C", "M:First") + "," + Node("M:Second") + "," +
				ObjectOf("/Game/BP_Foreign.BP_Foreign_C", "M:Third") + "," + Node("M:First.Inner"),
			"M Node\nM:First BP_Foreign_C\nM:First.Inner Node\nM:Second Node\nM:Third BP_Foreign_C"},
		{"nor do classes that the package itself makes",
			ObjectOf("/Game/P.BP_Own_C", "One") + "," +
				ObjectOf("/Script/Engine.Blueprint", "BP_Own", R"("ParentClass":"/Script/Test.Node")") + "," +
				ObjectOf("/game/p.bp_own_c", "Two"),
			"BP_Own_C Class\nOne BP_Own_C\nBP_Own Blueprint\nTwo BP_Own_C"},
	};
	for (const auto& Case : Traced(Cases))
	{
		Add("/Game/P", Case.Given);
		EXPECT_EQ(List(LoadPackage("/Game/P")), Case.Expected);
		UnloadAllLoadedPackages();
	}
	EXPECT_EQ(RenderFaults(Faults), "");
}

TEST_F(VassetBody, FillsObjectsOnceAllAreThere)
{
	Add("/Game/P",
		Node("A", R"("Link":"B:Inner","Children":["B",null,"/Game/P.B:Inner"],"Number":41)") + "," +
			Node("B", R"("Number":42,"Link":"A")") + "," + Node("B:Inner"));
	const auto* const A = LoadObject<UTestNode>("/Game/P.A");
	const auto* const B = LoadObject<UTestNode>("/Game/P.B");
	const auto* const Inner = LoadObject<UTestNode>("/Game/P.B:Inner");
	ASSERT_TRUE(A && B && Inner);
	EXPECT_EQ(A->Number, 41);
	EXPECT_EQ(B->Number, 42);
	EXPECT_EQ(Inner->Number, 7) << "the native default";
	EXPECT_EQ(A->Link.Get(), Inner);
	EXPECT_EQ(B->Link.Get(), A);
	ASSERT_EQ(A->Children.Num(), 3);
	EXPECT_EQ(A->Children[0].Get(), B);
	EXPECT_TRUE(A->Children[1].IsNull());
	EXPECT_EQ(A->Children[2].Get(), Inner);
	EXPECT_LT(0, A->PostLoadPlace);
	EXPECT_LT(A->PostLoadPlace, B->PostLoadPlace);
	EXPECT_LT(B->PostLoadPlace, Inner->PostLoadPlace);
	EXPECT_EQ(RenderFaults(Faults), "");
}

TEST_F(VassetBody, LeavesOutFaultyObjectsAlone)
{
	ASSERT_TRUE(GetAbstractNodeClass()->IsAbstract());
	const struct
	{
		const char* Why;
		std::string Objects; // with marks
		const char* Listed;
		const char* Faults;
	} Cases[] = {
		{"no object", "^7," + Node("A"), "A Node", "error wrong-type"},
		{"no path", R"(^{"class":"/Script/Test.Node"})", "", "error missing-path"},
		{"no class", R"(^{"path":"A"})", "", "error missing-class"},
		{"paths that are none",
			FaultyNode("") + "," + FaultyNode("A.B") + "," + FaultyNode("A:") + "," + FaultyNode("/Game/P.A") + "," +
				FaultyNode("A:B:C"),
			"", "error bad-path\nerror bad-path\nerror bad-path\nerror bad-path\nerror bad-path"},
		{"a path that is too deep", FaultyNode(DeepPath(257)) + "," + Node("A"), "A Node", "error bad-path"},
		{"a class path that is none", R"({"path":"A","class":^"Node"})", "", "error bad-class"},
		{"a class that nobody declares, and what lies inside",
			R"({"path":"A","class":^"/Script/Test.Unknown"},)" + FaultyNode("A:B"), "",
			"warning unknown-class\nerror missing-outer"},
		{"a class that is abstract", R"({"path":"A","class":^"/Script/Test.AbstractNode"},)" + Node("B"), "B Node",
			"error abstract-class"},
		{"objects that only the program makes",
			R"({"path":"A","class":^"/Script/CoreObject.Class"},{"path":"B","class":^"/Script/CoreObject.Package"})", "",
			"error bad-class\nerror abstract-class"},
		{"a path twice, but for case", Node("A") + "," + FaultyNode("a"), "A Node", "error repeated-path"},
		{"no outer", FaultyNode("A:B") + "," + Node("C"), "C Node", "error missing-outer"},
		{"properties that are none", R"({"path":"A","class":"/Script/Test.Node","properties":^[]})", "A Node",
			"error wrong-type"},
		{"keys unknown and repeated", R"({"path":"A","class":"/Script/Test.Node",^"x":0,"properties":{"Number":1,^"Number":2}})",
			"A Node", "warning unknown-key\nwarning repeated-key"},
		{"no properties at all", R"({"path":"A","class":"/Script/Test.Node"})", "A Node", ""},
		{"no properties where a class depends on them", R"({"path":"BP","class":"/Script/Engine.Blueprint"})",
			"BP Blueprint\nBP_C Class", "1:1 error no-parent"},
	};
	for (const auto& Case : Traced(Cases))
	{
		const FMarkedText Marked(Add("/Game/P", Case.Objects).Text);
		Files["/Game/P"].Text = Marked.GetText();
		FDiagnosticSink Sink;
		SetLoadDiagnostics(&Sink);
		EXPECT_EQ(List(LoadPackage("/Game/P")), Case.Listed);
		EXPECT_EQ(RenderFaults(Sink), Marked.Place(Case.Faults));
		UnloadAllLoadedPackages();
	}
}

/** What the registry's scan and the loader report together must hold each fault once. */
TEST_F(VassetBody, ReportsWhatTheHeaderHasNotSeen)
{
	const std::string Head = R"({"varnel_package":1,"assets":[],"dependencies":[],"blueprint_index":[])";
	const struct
	{
		const char* Why;
		std::string Text; // with marks
		const char* Faults;
	} Cases[] = {
		{"before the body", Head + R"(,^"x":0,^"assets":[],"objects":[]})", "warning unknown-key\nwarning repeated-key"},
		{"in the body", Head + R"(,"objects":[{^"x":0,"path":"A",^"path":"A","class":"/Script/Test.Node"}]})",
			"warning unknown-key\nwarning repeated-key"},
		{"behind the body", Head + R"(,"objects":[],^"x":0,^"assets":[]})", "warning unknown-key\nwarning repeated-key"},
		{"behind a body that the header is read past", R"({"objects":[],^"x":0,"varnel_package":1,^^"x":0})",
			"warning unknown-key\nwarning unknown-key\nwarning repeated-key"},
		{"bad bytes before the body",
			R"({"varnel_package":1,"assets":[],"dependencies":[],"blueprint_index":[],"x)"
			"\xFF"
			R"(":0,"objects":[]})",
			"~ warning invalid-utf8\n1:72 warning unknown-key"},
		{"bad bytes in the body", Head + ",\"objects\":[{^\"x\":\"\xFF\",\"path\":\"A\",\"class\":\"/Script/Test.Node\"}]}",
			"~ warning invalid-utf8\nwarning unknown-key"},
	};
	const TUniquePtr<IPackageReader> Reader = GetVassetPackageSource().MakeReader();
	for (const auto& Case : Traced(Cases))
	{
		UPackage* const Package = FindPackage("/Game/Scratch", true);
		const FMarkedText Marked(Case.Text);
		std::string Bytes = Marked.GetText();
		FPackageHeader Header;
		FDiagnosticSink Sink;
		EXPECT_TRUE(Reader->ReadHeader(Bytes, "P.vasset", Header, &Sink));
		Reader->ParseBody(Bytes);
		EXPECT_TRUE(ReadBody(*Reader, "P.vasset", *Package, &Sink));
		EXPECT_EQ(RenderFaults(Sink), Marked.Place(Case.Faults));
		UnloadPackage(Package);
	}
}

TEST_F(VassetBody, LeavesNothingBehindAMalformedBody)
{
	const char* const Texts[] = {
		R"({"varnel_package":1,"objects":[)",
		R"({"varnel_package":1,"objects":{}})",
		R"({"varnel_package":2,"objects":[]})",
		R"([])",
		"",
	};
	const TUniquePtr<IPackageReader> Reader = GetVassetPackageSource().MakeReader();
	UPackage* const Package = FindPackage("/Game/Scratch", true);
	for (const char* Text : Texts)
	{
		std::string Bytes = Text;
		FDiagnosticSink Sink;
		Reader->ParseBody(Bytes);
		EXPECT_FALSE(ReadBody(*Reader, "P.vasset", *Package, &Sink)) << Text;
		EXPECT_EQ(Sink.NumErrors(), 1) << Text;
	}
	EXPECT_EQ(List(Package), "");
	UnloadPackage(Package);
}
