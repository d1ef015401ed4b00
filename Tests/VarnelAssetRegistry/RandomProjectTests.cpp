#include "Core/Text/Unicode.h"
#include "RegistryFixture.h"
#include "Support/Seed.h"

#include <algorithm>
#include <map>
#include <random>
#include <set>
#include <sstream>

namespace
{
/** A package as the test knows it. */
struct FModelPackage
{
	struct FAsset
	{
		std::string Name;
		std::string Class;
		bool bFiltered = false;
	};
	struct FEdge
	{
		std::string Target;
		uint8 Flags = 0;
	};
	std::string Path; // below Content/
	std::vector<FAsset> Assets;
	std::vector<FEdge> Edges;
	std::string Blueprint; // lines of one, or none

	std::string GetLongName() const { return "/Game/" + Path; }
};

/** The slow and obvious answers. Packages stand in registry order. */
struct FModel
{
	std::vector<FModelPackage> Packages;
	std::map<std::string, std::string> Parents; // of classes

	bool DerivesFrom(std::string Class, const std::string& Base) const
	{
		for (std::size_t Step = 0; Step <= Parents.size(); ++Step)
		{
			if (Class == Base)
				return true;
			const auto Parent = Parents.find(Class);
			if (Parent == Parents.end())
				return false;
			Class = Parent->second;
		}
		return false;
	}
	std::string FindByClassAndFolder(const std::string& Base, const std::string& Folder) const
	{
		std::string Found;
		for (const FModelPackage& Package : Packages)
		{
			for (const FModelPackage::FAsset& Asset : Package.Assets)
			{
				const bool bInFolder = Unicode::Fold(Package.GetLongName()).starts_with(Unicode::Fold(Folder) + "/");
				if (!Asset.bFiltered && bInFolder && DerivesFrom(Asset.Class, Base))
					Found += (Found.empty() ? "" : " ") + Package.GetLongName() + "." + Asset.Name;
			}
		}
		return Found;
	}
	std::string FindReferencers(const std::string& Target) const
	{
		std::string Found;
		for (const FModelPackage& Package : Packages)
		{
			for (const FModelPackage::FEdge& Edge : Package.Edges)
			{
				if (!Unicode::EqualsFolded(Edge.Target, Target))
					continue;
				Found += (Found.empty() ? "" : " ") + Package.GetLongName() +
					((Edge.Flags & EDependencyFlags::Hard) != 0 ? "(hard" : "(soft") +
					((Edge.Flags & EDependencyFlags::Game) != 0 ? " game)" : " editor)");
			}
		}
		return Found;
	}
};

class FRandomProject
{
public:
	/** Without mixed case, a name is spelled one way wherever it stands. */
	explicit FRandomProject(uint32 Seed, bool bInMixedCase = true) : Random(Seed), bMixedCase(bInMixedCase) {}

	FModel Make()
	{
		FModel Model;
		std::set<std::string> Taken;
		for (uint32 Index = Pick(60); Index > 0; --Index)
		{
			FModelPackage Package;
			Package.Path = bMixedCase ? MakePath() : Unicode::Fold(MakePath());
			if (Taken.insert(Unicode::Fold(Package.Path)).second)
				Model.Packages.push_back(std::move(Package));
		}
		std::sort(Model.Packages.begin(), Model.Packages.end(),
			[](const FModelPackage& A, const FModelPackage& B) { return Unicode::CompareFolded(A.Path, B.Path) < 0; });
		for (FModelPackage& Package : Model.Packages)
			Fill(Package, Model);
		for (int32 Class = 1; Class < NumClasses; ++Class)
			Model.Parents["/Script/Engine.C" + std::to_string(Class)] =
				"/Script/Engine.C" + std::to_string(Pick(static_cast<uint32>(Class)));
		return Model;
	}
	/** Changes some packages, drops some, adds some. */
	void Change(FModel& Model)
	{
		FModel Other = Make();
		std::vector<FModelPackage> Kept;
		for (FModelPackage& Package : Model.Packages)
		{
			if (Pick(4) == 0)
				Fill(Package, Model);
			if (Pick(5) != 0)
				Kept.push_back(Package);
		}
		for (FModelPackage& Package : Other.Packages)
		{
			const auto HasName = [&Package](const FModelPackage& Old) { return Unicode::EqualsFolded(Old.Path, Package.Path); };
			if (Pick(3) == 0 && std::none_of(Kept.begin(), Kept.end(), HasName))
				Kept.push_back(Package);
		}
		std::sort(Kept.begin(), Kept.end(),
			[](const FModelPackage& A, const FModelPackage& B) { return Unicode::CompareFolded(A.Path, B.Path) < 0; });
		Model.Packages = std::move(Kept);
	}
	/** The same for one or two packages. */
	void ChangeFew(FModel& Model)
	{
		for (uint32 Index = 1 + Pick(2); Index > 0; --Index)
		{
			const uint32 Choice = Pick(4);
			const uint32 At = Model.Packages.empty() ? 0 : Pick(static_cast<uint32>(Model.Packages.size()));
			if (Choice == 0 && Model.Packages.size() > 1)
				Model.Packages.erase(Model.Packages.begin() + At);
			else if (Choice == 1 && !Model.Packages.empty())
				Fill(Model.Packages[At], Model);
			else
				Add(Model);
		}
	}
	uint32 Pick(uint32 Below) { return static_cast<uint32>(Random() % Below); }

	static constexpr int32 NumClasses = 9;

private:
	void Add(FModel& Model)
	{
		FModelPackage Package;
		Package.Path = bMixedCase ? MakePath() : Unicode::Fold(MakePath());
		const auto ComesBefore = [](const FModelPackage& A, const FModelPackage& B)
		{ return Unicode::CompareFolded(A.Path, B.Path) < 0; };
		const auto Place = std::lower_bound(Model.Packages.begin(), Model.Packages.end(), Package, ComesBefore);
		if (Place != Model.Packages.end() && Unicode::EqualsFolded(Place->Path, Package.Path))
			return;
		Fill(*Model.Packages.insert(Place, Package), Model);
	}
	std::string MakePath()
	{
		static const char* const Words[] = {
			"a", "A", "b", "Ab", "aB", "_", "Z", "\u00c4", "\u00e4", "\u0416", "\u0436", "-", "Long_Name_Beyond_Sixteen", "0"};
		std::string Path = Words[Pick(std::size(Words))];
		while (Pick(3) != 0)
			Path += (Pick(2) == 0 ? "/" : "") + std::string(Words[Pick(std::size(Words))]);
		return Path;
	}
	std::string MakeTarget(const FModel& Model)
	{
		static const char* const Dangling[] = {"/Game/Gone", "/game/gone", "/Script/Engine", "/Script/ENGINE"};
		if (Pick(4) == 0)
			return Dangling[Pick(bMixedCase ? std::size(Dangling) : 1)];
		const std::string Name = Model.Packages[Pick(static_cast<uint32>(Model.Packages.size()))].GetLongName();
		return bMixedCase && Pick(4) == 0 ? Unicode::Fold(Name) : Name;
	}
	/** Mostly its class is its package's own and has a parent; some share a class, or lead to one another. */
	std::string MakeBlueprint(const FModelPackage& Package, const FModel& Model)
	{
		static const char* const Texts[] = {"Health", "Set Health", "Door", "\u0414\u0432\u0435\u0440\u044c", "tick"};
		const auto PickText = [this] { return std::string(Texts[Pick(std::size(Texts))]); };
		const auto NameClass = [](const FModelPackage& Owner) { return Owner.GetLongName() + ".BP_C"; };
		const FModelPackage& Other = Model.Packages[Pick(static_cast<uint32>(Model.Packages.size()))];
		const std::string Parent =
			Pick(3) == 0 ? NameClass(Other) : "/Script/Engine.C" + std::to_string(Pick(static_cast<uint32>(NumClasses)));
		std::string Lines = "asset BP /Script/Engine." + std::string(Pick(8) == 0 ? "Texture" : "Blueprint") + "\n" +
			"tag GeneratedClass=" + NameClass(Pick(12) == 0 ? Other : Package) + "\ntag ParentClass=" + Parent + "\n";
		for (uint32 Index = Pick(4); Index > 0; --Index)
			Lines += "entry " + std::to_string(Pick(2)) + " " + PickText() + "|" + PickText() + "|" + PickText() + "\n";
		return Lines;
	}
	void Fill(FModelPackage& Package, const FModel& Model)
	{
		Package.Blueprint = Pick(3) == 0 ? MakeBlueprint(Package, Model) : "";
		Package.Assets.clear();
		Package.Edges.clear();
		for (uint32 Index = Pick(4); Index > 0; --Index)
			Package.Assets.push_back(
				{"Asset" + std::to_string(Index), "/Script/Engine.C" + std::to_string(Pick(NumClasses)), Pick(5) == 0});
		std::set<std::string> Taken;
		for (uint32 Index = Pick(6); Index > 0; --Index)
		{
			const std::string Target = MakeTarget(Model);
			if (Taken.insert(Unicode::Fold(Target)).second)
				Package.Edges.push_back({Target, static_cast<uint8>(Pick(4))});
		}
	}

	std::mt19937 Random;
	const bool bMixedCase;
};

std::string MakeLines(const FModelPackage& Package)
{
	std::string Lines;
	for (const FModelPackage::FAsset& Asset : Package.Assets)
		Lines += "asset " + Asset.Name + " " + Asset.Class + (Asset.bFiltered ? " filtered\n" : "\n") +
			"tag Name=" + Package.Path + "\n";
	for (const FModelPackage::FEdge& Edge : Package.Edges)
		Lines += "needs " + Edge.Target + ((Edge.Flags & EDependencyFlags::Hard) == 0 ? " soft" : "") +
			((Edge.Flags & EDependencyFlags::Game) == 0 ? " editor\n" : "\n");
	return Lines + Package.Blueprint;
}

/** Makes the folder hold what the model says; files that are right already stay as they are. The files that are not. */
std::vector<std::string> Write(const FModel& Model, const FRegistryProject& Project)
{
	std::vector<std::string> Changed;
	std::set<std::string> Wanted;
	for (const FModelPackage& Package : Model.Packages)
	{
		const std::string File = "Content/" + Package.Path + ".line";
		Wanted.insert(*Project.Folder.Path(File));
		if (Project.Folder.Read(File) != MakeLines(Package) || !std::filesystem::exists(*Project.Folder.Path(File)))
		{
			Project.Folder.Write(File, MakeLines(Package));
			Changed.push_back(*Project.Folder.Path(File));
		}
	}
	Project.Folder.MakeFolder("Content");
	std::vector<std::filesystem::path> Gone;
	for (const auto& Entry : std::filesystem::recursive_directory_iterator(*Project.Folder.Path("Content")))
	{
		if (Entry.is_regular_file() && !Wanted.contains(Entry.path().string()))
			Gone.push_back(Entry.path());
	}
	for (const std::filesystem::path& File : Gone)
	{
		std::filesystem::remove(File);
		Changed.push_back(File.string());
	}
	return Changed;
}

void SetParents(const FModel& Model, FRegistryProject& Project)
{
	FRegistryProject::FClassParents Parents;
	for (const auto& [Child, Parent] : Model.Parents)
		Parents.push_back({Child.c_str(), Parent.c_str()});
	Project.SetClassParents(Parents);
}

void Compare(const FModel& Model, const FRegistryProject& Project)
{
	for (int32 Class = 0; Class < FRandomProject::NumClasses; ++Class)
	{
		const std::string Base = "/Script/Engine.C" + std::to_string(Class);
		for (const char* Folder : {"/Game", "/Game/a", "/Game/\u00c4", "/game/AB"})
		{
			const FARFilter Filter{.PackagePaths = {Folder},
				.ClassPaths = {FTopLevelAssetPath(Base)},
				.bRecursiveClasses = true,
				.bRecursivePaths = true};
			EXPECT_EQ(RenderAssets(Project.Registry, Filter), Model.FindByClassAndFolder(Base, Folder))
				<< Base << " in " << Folder;
		}
	}
	for (const FModelPackage& Package : Model.Packages)
		EXPECT_EQ(
			RenderReferencers(Project.Registry, Package.GetLongName().c_str()), Model.FindReferencers(Package.GetLongName()))
			<< Package.Path;
}
}

TEST(RandomProject, AnswersAsTheModelDoes)
{
	for (uint32 Seed = GetSeed(1), End = Seed + 25; Seed != End && !testing::Test::HasFailure(); ++Seed)
	{
		SCOPED_TRACE("seed " + std::to_string(Seed));
		FRandomProject Generator(Seed);
		const FModel Model = Generator.Make();
		FRegistryProject Project;
		Write(Model, Project);
		SetParents(Model, Project);
		Project.ScanAll(static_cast<int32>(Seed % 4));
		EXPECT_EQ(Project.GetFaults(), "");
		Compare(Model, Project);
	}
}

TEST(RandomProject, UpdatesEqualReadingAnew)
{
	for (uint32 Seed = GetSeed(100), End = Seed + 8; Seed != End && !testing::Test::HasFailure(); ++Seed)
	{
		FRandomProject Generator(Seed);
		FModel Model = Generator.Make();
		FRegistryProject Project;
		SetParents(Model, Project);
		for (int32 Step = 0; Step < 6; ++Step)
		{
			SCOPED_TRACE("seed " + std::to_string(Seed) + ", step " + std::to_string(Step));
			Write(Model, Project);
			Project.ScanCached();
			const std::string Updated = Project.Dump();
			Compare(Model, Project);
			Project.ScanAll();
			EXPECT_EQ(Updated, Project.Dump());
			Generator.Change(Model);
		}
	}
}

namespace
{
/** What the registry says to every kind of question, so that two of them can be compared. */
std::string RenderAnswers(const FAssetRegistry& Registry, const FModel& Model)
{
	std::string Out = "counts " + std::to_string(Registry.NumPackages()) + " " + std::to_string(Registry.NumAssets()) + " " +
		std::to_string(Registry.NumDependencies()) + "\nall " + RenderAssets(Registry, {}, false) + "\n";
	for (const FName Package : Registry.ListPackages())
		Out += "package " + Package.ToString().ToStdString() + "\n";
	for (const auto& [Class, Num] : Registry.CountAssetsByClass())
		Out += "class " + Class.ToString().ToStdString() + " " + std::to_string(Num) + "\n";
	std::set<std::string> Names = {"/Game/Gone", "/Script/Engine", "/Game/Never"};
	for (const FModelPackage& Package : Model.Packages)
		Names.insert(Package.GetLongName());
	const FPackageGraphView Graph = Registry.GetPackageGraph();
	for (const std::string& Name : Names)
	{
		const IPackageSource* Source = nullptr;
		Out += Name + " needs " + RenderDependencies(Registry, Name.c_str()) + ", for " +
			RenderReferencers(Registry, Name.c_str()) + ", found " + Registry.FindPackage(Name).ToString().ToStdString() +
			", in " + Registry.GetPackageFileName(FName(Name.c_str()), Source).ToStdString() + ", assets";
		const FPackageGraphView::FNode Node = Graph.FindNode(FName(Name.c_str()));
		const auto Assets = Node == FPackageGraphView::NoNode ? FPackageGraphView::FAssetRange() : Graph.GetAssets(Node);
		for (uint32 Asset = Assets.Begin; Asset < Assets.End; ++Asset)
			Out += " " + std::string(Graph.GetAssetName(Asset)) + ":" + Graph.GetAssetClass(Asset).ToString().ToStdString();
		Out += "\n";
	}
	std::vector<std::string> Classes = {"/Script/Engine.C0", "/Script/Engine.C4", "/Script/Engine.Blueprint"};
	for (const FModelPackage& Package : Model.Packages)
		Classes.push_back(Package.GetLongName() + ".BP_C");
	for (const std::string& Class : Classes)
	{
		TArray<FTopLevelAssetPath> Found;
		Registry.GetAncestorClasses(FTopLevelAssetPath(Class), Found);
		Out += Class + " below " + RenderClasses(Found) + "\n";
		for (const char* Folder : {"/Game", "/Game/a", "/Game/b"})
			Out += RenderAssets(Registry,
					   {.PackagePaths = {Folder},
						   .ClassPaths = {FTopLevelAssetPath(Class)},
						   .bRecursiveClasses = true,
						   .bRecursivePaths = true}) +
				"\n";
	}
	const FAssetPathView Paths = Registry.GetAssetPaths();
	for (const char* Text : {"a", "/game/a", "asset1", "b.asset2", "_", "bp"})
	{
		Out += "paths " + std::string(Text) + ":";
		Paths.Find({.Text = Text},
			[&](FAssetPathView::FRange Range)
			{
				while (Range.Begin < Range.End)
				{
					const int32 End = Paths.FindEndOfFolder(Range);
					const std::string Folder(Paths.GetFolderPath(Paths.GetFolder(Range.Begin)));
					for (; Range.Begin < End; ++Range.Begin)
					{
						Out += " [" + Folder + "]";
						FString Path;
						Paths.AppendObjectPath(Range.Begin, Path);
						Out +=
							" " + Path.ToStdString() + Paths.GetClassPath(Paths.GetClass(Range.Begin)).ToString().ToStdString();
					}
				}
			});
		Out += "\n";
	}
	const FBlueprintIndexView Index = Registry.GetBlueprintIndex();
	for (const char* Value : {"health", "o", "\u0434\u0432", "tick", ""})
	{
		std::map<std::pair<uint64, uint32>, std::string> Found; // by place of the Blueprint and entry
		for (const uint32 Text : Index.FindTexts(Value))
		{
			const auto [Numbers, First] = Index.GetUses(Text);
			for (const uint32 Number : Numbers)
			{
				const int32 Blueprint = Index.FindBlueprint(First + Number);
				const auto Entry = Index.GetEntry(static_cast<int32>(First + Number));
				if (!Index.IsHidden(Blueprint))
					Found[{Index.GetOrder(Blueprint), First + Number}] =
						Index.GetBlueprint(Blueprint).GetObjectPathString().ToStdString() + "/" +
						std::string(Index.GetText(Entry.Category)) + "/" + std::string(Index.GetText(Entry.Text)) +
						std::to_string(Entry.Depth);
			}
		}
		Out += "entries " + std::string(Value) + ":";
		for (const auto& [Place, Text] : Found)
			Out += " " + Text;
		Out += "\n";
	}
	return Out;
}

/** Does what a model does not know to the files of some package: a file that is none, one of the same name, a folder moved away.
 * What has changed. */
struct FNoise
{
	std::vector<std::string> Files;
	std::vector<std::string> Folders;
};
FNoise MakeNoise(FRandomProject& Generator, const FModel& Model, const FRegistryProject& Project)
{
	if (Model.Packages.empty())
		return {};
	const std::string& Path = Model.Packages[Generator.Pick(static_cast<uint32>(Model.Packages.size()))].Path;
	const std::string Content = *Project.Folder.Path("Content") + std::string("/");
	switch (Generator.Pick(12))
	{
		case 0:
			Project.Folder.Write("Content/" + Path + ".LINE", "asset Twin /Script/Engine.C1\n");
			return {{Content + Path + ".LINE"}, {}};
		case 1:
			Project.Folder.Write("Content/" + Path + ".line", "bad\n");
			return {{Content + Path + ".line"}, {}};
		case 2:
			Project.Folder.Write("Content/" + Path + "_bad.LINE", "bad\n");
			return {{Content + Path + "_bad.LINE"}, {}};
		case 3:
		{
			const std::string Folder = Path.substr(0, Path.find('/'));
			if (Folder == Path || std::filesystem::exists(Content + "moved"))
				return {};
			std::filesystem::rename(Content + Folder, Content + "moved");
			return {{}, {Content + Folder + "/", Content + "moved/"}};
		}
		default:
			return {};
	}
}

/** Shows the first line that differs. */
void ExpectSameLines(const std::string& Found, const std::string& Expected)
{
	std::istringstream FoundLines(Found);
	std::istringstream ExpectedLines(Expected);
	for (std::string FoundLine, ExpectedLine; FoundLine == ExpectedLine;)
	{
		const bool bMore = !std::getline(ExpectedLines, ExpectedLine).fail();
		ASSERT_EQ(!std::getline(FoundLines, FoundLine).fail(), bMore);
		ASSERT_EQ(FoundLine, ExpectedLine);
		if (!bMore)
			return;
	}
}
}

TEST(RandomProject, OverlaysAnswerAsNewScansDo)
{
	int32 NumOverlays = 0;
	for (uint32 Seed = GetSeed(200), End = Seed + 30; Seed != End && !testing::Test::HasFailure(); ++Seed)
	{
		FRandomProject Generator(Seed, Seed % 4 == 0);
		FModel Model = Generator.Make();
		FRegistryProject Project;
		Project.FoldAt = Seed % 3 == 0 ? 3 : 512;
		SetParents(Model, Project);
		Write(Model, Project);
		Project.ScanCached();
		for (int32 Step = 0; Step < 12 && !testing::Test::HasFailure(); ++Step)
		{
			SCOPED_TRACE("seed " + std::to_string(Seed) + ", step " + std::to_string(Step));
			Generator.ChangeFew(Model);
			std::vector<std::string> Changed = Write(Model, Project);
			const FNoise Noise = MakeNoise(Generator, Model, Project);
			Changed.insert(Changed.end(), Noise.Files.begin(), Noise.Files.end());
			const FRegistryScanReport Report = Project.Update(Changed, Noise.Folders);
			NumOverlays += Report.NumFiles < static_cast<int32>(Model.Packages.size()) ? 1 : 0;
			FRegistryProject::FFresh Fresh(Project);
			ExpectSameLines(RenderAnswers(Project.Registry, Model), RenderAnswers(Fresh.Registry, Model));
		}
	}
	EXPECT_GT(NumOverlays, 100) << "of 360 updates; the others listed everything";
}
