#include "Core/Text/Unicode.h"
#include "RegistryFixture.h"
#include "Support/Seed.h"

#include <algorithm>
#include <map>
#include <random>
#include <set>

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
	explicit FRandomProject(uint32 Seed) : Random(Seed) {}

	FModel Make()
	{
		FModel Model;
		std::set<std::string> Taken;
		for (uint32 Index = Pick(60); Index > 0; --Index)
		{
			FModelPackage Package;
			Package.Path = MakePath();
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
	uint32 Pick(uint32 Below) { return static_cast<uint32>(Random() % Below); }

	static constexpr int32 NumClasses = 9;

private:
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
			return Dangling[Pick(std::size(Dangling))];
		const std::string Name = Model.Packages[Pick(static_cast<uint32>(Model.Packages.size()))].GetLongName();
		return Pick(4) == 0 ? Unicode::Fold(Name) : Name;
	}
	void Fill(FModelPackage& Package, const FModel& Model)
	{
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
	return Lines;
}

/** Makes the folder hold what the model says; files that are right already stay as they are. */
void Write(const FModel& Model, const FRegistryProject& Project)
{
	std::set<std::string> Wanted;
	for (const FModelPackage& Package : Model.Packages)
	{
		const std::string File = "Content/" + Package.Path + ".line";
		Wanted.insert(*Project.Folder.Path(File));
		if (Project.Folder.Read(File) != MakeLines(Package) || !std::filesystem::exists(*Project.Folder.Path(File)))
			Project.Folder.Write(File, MakeLines(Package));
	}
	Project.Folder.MakeFolder("Content");
	std::vector<std::filesystem::path> Gone;
	for (const auto& Entry : std::filesystem::recursive_directory_iterator(*Project.Folder.Path("Content")))
	{
		if (Entry.is_regular_file() && !Wanted.contains(Entry.path().string()))
			Gone.push_back(Entry.path());
	}
	for (const std::filesystem::path& File : Gone)
		std::filesystem::remove(File);
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
