#include "CoreObject/Objects/PackageName.h"
#include "PackageFixture.h"
#include "Support/Seed.h"

#include <random>
#include <set>

namespace
{
constexpr int32 NumRounds = 4000; // of each package

const std::string Packages[] = {
	R"({
  "varnel_package": 1,
  "assets": [ { "name": "M", "class": "/Script/Test.Node", "tags": { "A": "\u00fc\ud83d\ude00", "B": "" } },
    { "name": "BP", "class": "/Script/Engine.Blueprint", "registry_filtered": true },
    { "name": "Inner", "class": "/Script/Test.Node", "outer": "/Game/Fuzz.M" } ],
  "dependencies": [ { "package": "/Game/A", "hard": true }, { "package": "/Game/B", "game": false } ],
  "blueprint_index": [ { "category": "Graph", "text": "G", "children": [ { "category": "Node", "text": "N", "comment": "c" } ] } ],
  "objects": [
    { "path": "M", "class": "/Script/Test.Node", "properties": { "Number": 12, "Link": "M:Inner", "Children": [ "M:Inner", null ] } },
    { "path": "M:Inner", "class": "/Script/Test.Node", "properties": {} },
    { "path": "BP", "class": "/Script/Engine.Blueprint", "properties": { "ParentClass": "/Script/Test.Node",
      "NewVariables": [ { "name": "V", "type": "map<name,array<int>>", "default": [ [ "k", [ 1, 2 ] ] ] }, { "name": "R", "type": "object</Script/Test.Node>" } ] } },
    { "path": "M:Own", "class": "/Game/Fuzz.BP_C", "properties": { "V": { "x": [ -1 ] }, "R": "BP" } } ]
})",
	R"({"objects":[{"path":"A","class":"/Script/Test.Node"}],"dependencies":[{"package":"/Game/A"}],"assets":[{"class":"/S/E.C","name":"A"}],"varnel_package":1})",
};

/** One to four small damages of the bytes from Begin on. */
std::string Damage(std::string Bytes, std::size_t Begin, std::mt19937& Random)
{
	constexpr std::string_view Telling = "{}[]\",:\\/.0-e'\0\xFF\xC3\n";
	for (uint32 Count = 1 + Random() % 4; Count > 0 && Bytes.size() > Begin; --Count)
	{
		const std::size_t At = Begin + Random() % (Bytes.size() - Begin);
		const std::size_t Length = 1 + Random() % 12;
		switch (Random() % 6)
		{
			case 0:
				Bytes[At] = static_cast<char>(static_cast<uint8>(Bytes[At]) ^ (1u << Random() % 8));
				break;
			case 1:
				Bytes[At] = Telling[Random() % Telling.size()];
				break;
			case 2:
				Bytes.insert(At, 1, Telling[Random() % Telling.size()]);
				break;
			case 3:
				Bytes.erase(At, Length);
				break;
			case 4:
				Bytes.insert(At, Bytes.substr(Begin + Random() % (Bytes.size() - Begin), 4 * Length));
				break;
			default:
				if (Random() % 4 == 0)
					Bytes.resize(At);
		}
	}
	return Bytes;
}

/** What must hold for every header that is read, whatever the file. */
void ExpectSane(const FPackageHeader& Header)
{
	std::set<std::pair<std::string, std::string>> Assets;
	for (const FPackageHeader::FAsset& Asset : Header.Assets)
	{
		EXPECT_FALSE(Asset.Name.empty());
		EXPECT_EQ(Asset.Name.find_first_of(std::string_view(".:/\\'\"\0\n", 8)), std::string_view::npos) << Asset.Name;
		EXPECT_TRUE(FTopLevelAssetPath(Asset.Class).IsValid()) << Asset.Class;
		EXPECT_TRUE(Asset.Outer.empty() || FSoftObjectPath(Asset.Outer).IsValid()) << Asset.Outer;
		EXPECT_LE(std::size_t{Asset.FirstTag} + Asset.NumTags, Header.Tags.size());
		EXPECT_TRUE(Assets.emplace(*FString(Asset.Outer).ToLower(), *FString(Asset.Name).ToLower()).second) << Asset.Name;
	}
	std::set<std::string> Dependencies;
	for (const FPackageHeader::FDependency& Dependency : Header.Dependencies)
	{
		EXPECT_TRUE(FPackageName::IsValidLongPackageName(Dependency.Package)) << Dependency.Package;
		EXPECT_TRUE(Dependencies.insert(*FString(Dependency.Package).ToLower()).second) << Dependency.Package;
	}
	uint32 MaxDepth = 0;
	for (const FPackageHeader::FIndexEntry& Entry : Header.IndexEntries)
	{
		EXPECT_LE(Entry.Depth, MaxDepth);
		MaxDepth = Entry.Depth + 1;
	}
}

std::string Print(const FPackageHeader& Header)
{
	std::string Out;
	const auto Add = [&Out](std::string_view Text) { Out.append(Text).push_back('\n'); };
	for (const FPackageHeader::FAsset& Asset : Header.Assets)
		(Add(Asset.Outer), Add(Asset.Name), Add(Asset.Class),
			Add(std::to_string(Asset.NumTags) + (Asset.bRegistryFiltered ? " hidden" : "")));
	for (const FPackageHeader::FTag& Tag : Header.Tags)
		(Add(Tag.Key), Add(Tag.Value));
	for (const FPackageHeader::FDependency& Dependency : Header.Dependencies)
		(Add(Dependency.Package), Add(std::to_string(Dependency.Flags)));
	for (const FPackageHeader::FIndexEntry& Entry : Header.IndexEntries)
		(Add(Entry.Category), Add(Entry.Text), Add(Entry.Comment), Add(std::to_string(Entry.Depth)));
	return Out;
}

class VassetFuzz : public FPackageFiles
{
protected:
	/** The printed header, "-" for a file that is skipped. */
	std::string ReadHeader(std::string Bytes, FDiagnosticSink* Sink)
	{
		FPackageHeader Header;
		const bool bRead = Reader->ReadHeader(Bytes, "Fuzz.vasset", Header, Sink);
		ExpectSane(Header);
		EXPECT_TRUE(bRead || Print(Header).empty());
		return bRead ? Print(Header) : "-";
	}
	/** False where the body is malformed; the package must then be empty, and it is gone afterwards. */
	bool ReadBody(std::string Bytes)
	{
		UPackage* const Package = FindPackage("/Game/Fuzz", true);
		FDiagnosticSink Sink;
		Reader->ParseBody(Bytes);
		const bool bRead = ::ReadBody(*Reader, "Fuzz.vasset", *Package, &Sink);
		EXPECT_TRUE(bRead || List(Package).empty());
		EXPECT_TRUE(bRead || Sink.NumErrors() > 0);
		UnloadPackage(Package);
		return bRead;
	}

	const TUniquePtr<IPackageReader> Reader = GetVassetPackageSource().MakeReader(); // one for all: damage must not stick
};
}

TEST_F(VassetFuzz, SurvivesDamageAnywhere)
{
	std::mt19937 Random(GetSeed(20240611));
	int32 NumHeaders = 0;
	int32 NumBodies = 0;
	for (const std::string& Package : Packages)
	{
		const std::string Intact = ReadHeader(Package, nullptr);
		EXPECT_NE(Intact, "-");
		EXPECT_TRUE(ReadBody(Package));
		for (int32 Round = 0; Round < NumRounds && !HasFailure(); ++Round)
		{
			const std::string Damaged = Damage(Package, 0, Random);
			SCOPED_TRACE("round " + std::to_string(Round) + ":\n" + Damaged);
			FDiagnosticSink Sink;
			const std::string Header = ReadHeader(Damaged, &Sink);
			EXPECT_EQ(Header, ReadHeader(Damaged, nullptr)) << "the answer depends on whether somebody listens";
			EXPECT_TRUE(Header != "-" || Sink.NumErrors() > 0) << "skipped in silence";
			NumHeaders += Header != "-";
			NumBodies += ReadBody(Damaged);
		}
		EXPECT_EQ(ReadHeader(Package, nullptr), Intact);
	}
	EXPECT_GT(NumHeaders, NumRounds / 2) << "too few damages leave something to look at";
	EXPECT_GT(NumBodies, NumRounds / 8);
}

TEST_F(VassetFuzz, DamagedBodiesLeaveTheHeaderStanding)
{
	std::mt19937 Random(GetSeed(20240611));
	const std::string& Package = Packages[0];
	const std::size_t Body = Package.find("\"objects\"") + std::string_view("\"objects\"").size();
	const std::string Intact = ReadHeader(Package, nullptr);
	for (int32 Round = 0; Round < NumRounds && !HasFailure(); ++Round)
	{
		const std::string Damaged = Damage(Package, Body, Random);
		SCOPED_TRACE("round " + std::to_string(Round) + ":\n" + Damaged);
		FDiagnosticSink Sink;
		EXPECT_EQ(ReadHeader(Damaged, &Sink), Intact);
		EXPECT_EQ(RenderFaults(Sink), "");
	}
}
