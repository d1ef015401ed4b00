#include "AllocationCount.h"
#include "DiagnosticText.h"

#include "Core/Files/File.h"
#include "CoreObject/Objects/PackageName.h"
#include "CoreObject/Packages/PackageSource.h"
#include "CoreObject/Reflection/Class.h"
#include "Support/Cases.h"

#include <gtest/gtest.h>
#include <random>
#include <span>

namespace
{
const FString FileName = "/nowhere/Lantern/Content/Maps/L_Harbour.vasset";

/** Assets as "Name Class (outer) hidden {Key=Value}", dependencies as "-> /Game/A HG", index entries as "| Category Text #
 * Comment", indented. */
std::string Render(const FPackageHeader& Header)
{
	std::string Out;
	const auto AddLine = [&Out](const std::string& Line) { Out += (Out.empty() ? "" : "\n") + Line; };
	for (const FPackageHeader::FAsset& Asset : Header.Assets)
	{
		std::string Line = std::string(Asset.Name) + " " + std::string(Asset.Class);
		Line += Asset.Outer.empty() ? "" : " (" + std::string(Asset.Outer) + ")";
		Line += Asset.bRegistryFiltered ? " hidden" : "";
		for (uint32 Tag = Asset.FirstTag; Tag < Asset.FirstTag + Asset.NumTags; ++Tag)
			Line += " {" + std::string(Header.Tags[Tag].Key) + "=" + std::string(Header.Tags[Tag].Value) + "}";
		AddLine(Line);
	}
	for (const FPackageHeader::FDependency& Dependency : Header.Dependencies)
		AddLine("-> " + std::string(Dependency.Package) + " " + (Dependency.Flags & EDependencyFlags::Hard ? "H" : "") +
			(Dependency.Flags & EDependencyFlags::Game ? "G" : ""));
	for (const FPackageHeader::FIndexEntry& Entry : Header.IndexEntries)
		AddLine("|" + std::string(Entry.Depth + 1, ' ') + std::string(Entry.Category) + " " + std::string(Entry.Text) +
			(Entry.Comment.empty() ? "" : " # " + std::string(Entry.Comment)));
	return Out;
}

struct FHeaderReading
{
	std::string Header; // "-" where the file is skipped
	std::string Faults;
};

FHeaderReading ReadHeader(IPackageReader& Reader, std::string Text)
{
	FPackageHeader Header;
	FDiagnosticSink Sink;
	const bool bRead = Reader.ReadHeader(Text, FileName, Header, &Sink);
	return {bRead ? Render(Header) : "-", RenderFaults(Sink)};
}

struct FHeaderCase
{
	const char* Why;
	std::string Text; // with marks
	const char* Header;
	const char* Faults;
};

void CheckHeaders(std::span<const FHeaderCase> Cases)
{
	const TUniquePtr<IPackageReader> Reader = GetVassetPackageSource().MakeReader(); // one for all: nothing may stick
	for (const FHeaderCase& Case : Traced(Cases))
	{
		const FMarkedText Marked(Case.Text);
		const FHeaderReading Read = ReadHeader(*Reader, Marked.GetText());
		EXPECT_EQ(Read.Header, Case.Header);
		EXPECT_EQ(Read.Faults, Marked.Place(Case.Faults));
	}
}

/** A package with the given members of the header's lists. */
std::string Package(const std::string& Assets, const std::string& Dependencies = "", const std::string& Index = "")
{
	return R"({"varnel_package":1,"assets":[)" + Assets + R"(],"dependencies":[)" + Dependencies + R"(],"blueprint_index":[)" +
		Index + R"(],"objects":[]})";
}

std::string Asset(const std::string& Members)
{
	return Package("{" + Members + "}");
}

constexpr const char* Guard = R"({"name":"BT_Guard","class":"/Script/Engine.BehaviorTree"})";
constexpr const char* GuardLine = "BT_Guard /Script/Engine.BehaviorTree";
}

TEST(VassetHeader, ReadsAllRecords)
{
	const FHeaderCase Cases[] = {
		{"everything at once, body unread",
			R"({
				"varnel_package": 1,
				"assets": [ { "name": "BP_Lamp", "class": "/Script/Engine.Blueprint", "tags": { "ParentClass": "/Script/Engine.Actor", "Über": "\u00e4\n" } },
					{ "registry_filtered": true, "class": "/Script/Engine.World", "name": "L Порт" } ],
				"dependencies": [ { "package": "/Game/A" }, { "package": "/Game/B", "hard": false }, { "package": "/Game/C", "game": false } ],
				"blueprint_index": [ { "category": "Graph", "text": "EventGraph", "children": [
					{ "category": "Node", "text": "Unlock", "comment": "once", "children": [ { "category": "Pin", "text": "Target" } ] } ] },
					{ "category": "Var", "text": "" } ],
				"objects": [ { "never": looked at } ] })",
			"BP_Lamp /Script/Engine.Blueprint {ParentClass=/Script/Engine.Actor} {Über=ä\n}\n"
			"L Порт /Script/Engine.World hidden\n"
			"-> /Game/A HG\n-> /Game/B G\n-> /Game/C H\n"
			"| Graph EventGraph\n|  Node Unlock # once\n|   Pin Target\n| Var ",
			""},
		{"no list but the version", R"({"varnel_package":1})", "", ""},
		{"a version with a fraction of nothing", R"({"varnel_package":1.0})", "", ""},
		{"the body first: nothing of the header is lost",
			R"({"objects":[{"path":"BT_Guard"}],"blueprint_index":[],"dependencies":[{"package":"/Game/A"}],"assets":[)" +
				std::string(Guard) + R"(],"varnel_package":1})",
			"BT_Guard /Script/Engine.BehaviorTree\n-> /Game/A HG", ""},
		{"one member behind the body",
			R"({"varnel_package":1,"assets":[],"blueprint_index":[],"objects":[],"dependencies":[{"package":"/Game/A"}]})",
			"-> /Game/A HG", ""},
		{"a text that reads like the body's key",
			Asset(R"("name":"A","class":"/S/E.B","tags":{"objects":"\"objects\"","x":"objects"})"),
			"A /S/E.B {objects=\"objects\"} {x=objects}", ""},
		{"byte-order mark", "\xEF\xBB\xBF" + Package(Guard), GuardLine, ""},
		{"an asset inside another object of the package",
			Asset(R"("name":"MI","class":"/S/E.M","outer":"/game/maps/l_harbour.L_Harbour:Level.Wall")"),
			"MI /S/E.M (/game/maps/l_harbour.L_Harbour:Level.Wall)", ""},
	};
	FPackageName::MountRoot("/Game", "/nowhere/Lantern/Content/");
	CheckHeaders(Cases);
	FPackageName::UnmountAll();
}

TEST(VassetHeader, SkipsFilesThatSayNothing)
{
	const FHeaderCase Cases[] = {
		{"empty file", "^", "-", "error json-syntax"},
		{"no object", "^[1]", "-", "error wrong-type"},
		{"no version", R"(^{"assets":[]})", "-", "error package-version"},
		{"a version to come", "{\n \"varnel_package\": ^2}", "-", "error package-version"},
		{"the version as a text", R"({"varnel_package":^"1"})", "-", "error package-version"},
		{"a fault before the body", R"({"varnel_package":1,"assets":[^}],"objects":[]})", "-", "error json-syntax"},
		{"cut in the header", R"({"varnel_package":1,"assets":[{"name":^"A)", "-", "error json-syntax"},
		{"a broken body before the header", R"({"objects":[^}],"varnel_package":1})", "-", "error json-syntax"},
		{"nested without end", R"({"varnel_package":1,"x":)" + std::string(255, '[') + "^[[[", "-", "error json-syntax"},
	};
	CheckHeaders(Cases);
}

TEST(VassetHeader, StandsWhereTheBodyIsBroken)
{
	const std::string Head =
		R"({"varnel_package":1,"assets":[)" + std::string(Guard) + R"(],"dependencies":[],"blueprint_index":[],"objects":)";
	const std::string HeadWithoutIndex =
		R"({"varnel_package":1,"assets":[)" + std::string(Guard) + R"(],"dependencies":[],"objects":)";
	const FHeaderCase Cases[] = {
		{"cut inside a text", Head + R"([{"path":"BT_)", GuardLine, ""},
		{"cut behind the key", Head, GuardLine, ""},
		{"no JSON at all", Head + "\x01\xFF\"", GuardLine, ""},
		{"a fault in the body, found while looking for the rest of the header", HeadWithoutIndex + "[^}]}", GuardLine,
			"error json-syntax"},
	};
	CheckHeaders(Cases);
}

TEST(VassetHeader, LeavesOutFaultyAssetsAlone)
{
	const FHeaderCase Cases[] = {
		{"no list of assets", R"({"varnel_package":1,"assets":^{},"dependencies":[{"package":"/Game/A"}]})", "-> /Game/A HG",
			"error wrong-type"},
		{"no object in the list", Package("^7," + std::string(Guard)), GuardLine, "error wrong-type"},
		{"no name", Package(R"(^{"class":"/S/E.B"})"), "", "error missing-name"},
		{"no class", Package(R"(^{"name":"A"})"), "", "error missing-class"},
		{"a name that is no text", Asset(R"("name":^1,"class":"/S/E.B")"), "", "error wrong-type"},
		{"an empty name", Asset(R"("name":^"","class":"/S/E.B")"), "", "error bad-name"},
		{"the name of nothing", Asset(R"("name":^"nOnE","class":"/S/E.B")"), "", "error bad-name"},
		{"a dot in the name", Asset(R"("name":^"A.B","class":"/S/E.B")"), "", "error bad-name"},
		{"a line break in the name", Asset(R"("name":^"A\nB","class":"/S/E.B")"), "", "error bad-name"},
		{"a class without its package", Asset(R"("name":"A","class":^"Blueprint")"), "", "error bad-class"},
		{"a class inside an object", Asset(R"("name":"A","class":^"/S/E.B:C")"), "", "error bad-class"},
		{"an outer in another package", Asset(R"("name":"A","class":"/S/E.B","outer":^"/Game/Maps/L_Other.L_Other")"), "",
			"error bad-outer"},
		{"an outer that is a package", Asset(R"("name":"A","class":"/S/E.B","outer":^"/Game/Maps/L_Harbour")"), "",
			"error bad-outer"},
		{"an outer that is no text", Asset(R"("name":"A","class":"/S/E.B","outer":^[])"), "", "error wrong-type"},
		{"tags that are none leave the asset", Asset(R"("name":"A","class":"/S/E.B","registry_filtered":^1,"tags":^[1])"),
			"A /S/E.B", "error wrong-type\nerror wrong-type"},
		{"a tag that is no text leaves the others", Asset(R"("name":"A","class":"/S/E.B","tags":{"x":^1,"y":"2"})"),
			"A /S/E.B {y=2}", "error wrong-type"},
		{"the same name twice, but for case", Package(R"({"name":"A","class":"/S/E.B"},{"name":^"a","class":"/S/E.C"})"),
			"A /S/E.B", "error repeated-asset"},
		{"a skipped asset takes no name", Package(R"({"name":"A","class":^"B"},{"name":"A","class":"/S/E.C"})"), "A /S/E.C",
			"error bad-class"},
		{"the same name inside another object is another asset",
			Package(R"({"name":"A","class":"/S/E.B"},{"name":"A","class":"/S/E.B","outer":"/Game/Maps/L_Harbour.A"})"),
			"A /S/E.B\nA /S/E.B (/Game/Maps/L_Harbour.A)", ""},
		{"repeated keys keep the last value in the first place",
			Asset(R"("name":"B",^"name":"A","class":"/S/E.B","tags":{"x":"1","y":"2",^"x":"3"})"), "A /S/E.B {x=3} {y=2}",
			"warning repeated-key\nwarning repeated-key"},
		{"bytes that are no UTF-8", Asset("\"name\":\"A\xFF\",\"class\":\"/S/E.B\""), "A\xEF\xBF\xBD /S/E.B",
			"~ warning invalid-utf8"},
	};
	CheckHeaders(Cases);
}

TEST(VassetHeader, LeavesOutOtherFaultyRecordsAlone)
{
	const FHeaderCase Cases[] = {
		{"dependencies that name no package",
			Package("", R"({"package":^"/Game/A.A"},{"package":^"A"},^{"hard":true},{"package":"/Game/B","hard":^1})"),
			"-> /Game/B HG", "error bad-package\nerror bad-package\nerror missing-package\nerror wrong-type"},
		{"a dependency listed twice is one edge with the flags of both",
			Package("", R"({"package":"/Game/A","hard":false},{"package":"/Game/B"},{"package":^"/game/a","game":false})"),
			"-> /Game/A HG\n-> /Game/B HG", "warning repeated-dependency"},
		{"an entry without its text goes with its children",
			Package(R"({"name":"A","class":"/Script/Engine.Blueprint"})", "",
				R"(^{"category":"Var","children":[{"category":"Var","text":"x"}]},^{"text":"y"},{"category":"Var","text":"z","comment":^3})"),
			"A /Script/Engine.Blueprint\n| Var z", "error missing-text\nerror missing-category\nerror wrong-type"},
		{"an index without a Blueprint is reported and kept",
			R"({"varnel_package":1,"assets":[)" + std::string(Guard) + R"(],^"blueprint_index":[{"category":"Var","text":"x"}]})",
			"BT_Guard /Script/Engine.BehaviorTree\n| Var x", "warning index-without-blueprint"},
		{"unknown keys at every level",
			R"({"varnel_package":1,^"a":0,"assets":[{"name":"A","class":"/Script/Engine.WidgetBlueprint",^"b":0}],)"
			R"("dependencies":[{"package":"/Game/A",^"c":0}],"blueprint_index":[{"category":"","text":"",^"d":0}],"objects":[]})",
			"A /Script/Engine.WidgetBlueprint\n-> /Game/A HG\n|  ",
			"warning unknown-key\nwarning unknown-key\nwarning unknown-key\nwarning unknown-key"},
		{"keys repeated behind and in a body that is read on the way to the header",
			R"({"objects":[{"a":1,^"a":2}],"assets":[],"varnel_package":1,^"assets":[]})", "",
			"warning repeated-key\nwarning repeated-key"},
	};
	CheckHeaders(Cases);
}

TEST(VassetHeader, KnowsEachFileByItsOwnName)
{
	FPackageName::MountRoot("/Game", "/nowhere/Lantern/Content/");
	const std::string Text = Asset(R"("name":"MI","class":"/S/E.M","outer":"/Game/Maps/L_Harbour.L_Harbour")");
	const TUniquePtr<IPackageReader> Reader = GetVassetPackageSource().MakeReader();
	for (const bool bOwn : {true, false, true})
	{
		std::string Bytes = Text;
		FPackageHeader Header;
		EXPECT_TRUE(Reader->ReadHeader(
			Bytes, bOwn ? FileName : FString("/nowhere/Lantern/Content/Old/L_Harbour.vasset"), Header, nullptr));
		EXPECT_EQ(Header.Assets.size(), bOwn ? 1u : 0u);
	}
	FPackageName::UnmountAll();
}

TEST(VassetHeader, StopsListingFaultsOfHopelessFiles)
{
	std::string Assets;
	for (int32 Index = 0; Index < 1000; ++Index)
		Assets += std::string(Index > 0 ? "," : "") + "7";
	const TUniquePtr<IPackageReader> Reader = GetVassetPackageSource().MakeReader();
	const std::string Faults = ReadHeader(*Reader, Package(Assets)).Faults;
	EXPECT_EQ(std::count(Faults.begin(), Faults.end(), '\n'), 100);
	EXPECT_NE(Faults.find("warning more-faults"), std::string::npos);
}

TEST(VassetHeader, ReadsFileAfterFileWithoutAllocating)
{
	const std::string Files[] = {
		Package(
			R"({"name":"BP_A","class":"/Script/Engine.Blueprint","tags":{"ParentClass":"/Script/Engine.Actor","Text":"\u00e4"}})",
			R"({"package":"/Game/A"},{"package":"/Game/B"},{"package":"/Game/A"})",
			R"({"category":"Var","text":"A variable with a long name of its own"})"),
		R"({"objects":[{"path":"A"}],)" + Package(Guard).substr(1),
	};
	const TUniquePtr<IPackageReader> Reader = GetVassetPackageSource().MakeReader();
	FPackageHeader Header;
	std::string Bytes;
	const auto ReadAll = [&]
	{
		int32 NumRead = 0;
		for (const std::string& File : Files)
		{
			Bytes.reserve(File.size() + Reader->GetPadding());
			Bytes = File;
			NumRead += Reader->ReadHeader(Bytes, FileName, Header, nullptr);
		}
		return NumRead;
	};
	ReadAll();
	const int64 NumBefore = GetNumAllocations();
	const int32 NumRead = ReadAll();
	EXPECT_EQ(GetNumAllocations() - NumBefore, 0);
	EXPECT_EQ(NumRead, 2);
}
