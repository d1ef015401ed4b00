#include "RegistryFixture.h"

#include "Core/Files/File.h"

#include <charconv>
#include <sstream>

namespace
{
/** The text up to the separator, which is taken away with it. */
std::string_view TakeWord(std::string_view& Line, char Separator = ' ')
{
	const std::size_t End = Line.find(Separator);
	const std::string_view Word = Line.substr(0, End);
	Line.remove_prefix(End == std::string_view::npos ? Line.size() : End + 1);
	return Word;
}

class FLineReader final : public IPackageReader
{
public:
	explicit FLineReader(std::atomic<int32>& InNumRead) : NumRead(InNumRead) {}

	bool ReadHeader(std::string& Bytes, const FString& FileName, FPackageHeader& Out, FDiagnosticSink* Diagnostics) override
	{
		++NumRead;
		Out.Reset();
		for (std::string_view Rest = Bytes; !Rest.empty();)
		{
			std::string_view Line = TakeWord(Rest, '\n');
			if (Line.starts_with("odd "))
				Report(Line.substr(4), FileName, Diagnostics);
			if (ReadLine(TakeWord(Line), Line, Out))
				continue;
			if (Diagnostics)
				Diagnostics->Add({.File = FileName, .Text = "no package", .Rule = "bad-line"});
			return false;
		}
		return true;
	}
	void ParseBody(std::string&) override {}
	TUniquePtr<IPackageBody> OpenBody(const FString&, UPackage&, FDiagnosticSink*) override { return nullptr; }
	bool VisitObjects(const FString&, UPackage*, FDiagnosticSink*, const FStoredObjectVisit&) override { return false; }

private:
	static void Report(std::string_view Line, const FString& FileName, FDiagnosticSink* Diagnostics)
	{
		const auto TakeNumber = [&Line] { return std::stoi(std::string(TakeWord(Line))); };
		const int32 Row = TakeNumber();
		const int32 Column = TakeNumber();
		if (Diagnostics)
			Diagnostics->Add({FileName, Row, Column, EDiagnosticSeverity::Warning, FString(Line), "odd"});
	}
	static bool ReadLine(std::string_view Word, std::string_view Line, FPackageHeader& Out)
	{
		if (Word == "asset")
			ReadAsset(Line, Out);
		else if (Word == "tag")
			ReadTag(Line, Out);
		else if (Word == "needs")
			ReadDependency(Line, Out);
		else if (Word == "entry")
			ReadEntry(Line, Out);
		return Word != "bad";
	}
	static void ReadAsset(std::string_view Line, FPackageHeader& Out)
	{
		FPackageHeader::FAsset& Asset = Out.Assets.emplace_back();
		Asset.Name = TakeWord(Line);
		Asset.Class = TakeWord(Line);
		Asset.FirstTag = static_cast<uint32>(Out.Tags.size());
		while (!Line.empty())
		{
			const std::string_view Word = TakeWord(Line);
			Asset.bRegistryFiltered |= Word == "filtered";
			if (Word.starts_with("in="))
				Asset.Outer = Word.substr(3);
		}
	}
	static void ReadTag(std::string_view Line, FPackageHeader& Out)
	{
		const std::string_view Key = TakeWord(Line, '=');
		Out.Tags.push_back({Key, Line});
		++Out.Assets.back().NumTags;
	}
	static void ReadDependency(std::string_view Line, FPackageHeader& Out)
	{
		FPackageHeader::FDependency& Dependency = Out.Dependencies.emplace_back();
		Dependency.Package = TakeWord(Line);
		Dependency.Flags = EDependencyFlags::Hard | EDependencyFlags::Game;
		while (!Line.empty())
			Dependency.Flags &= static_cast<uint8>(TakeWord(Line) == "soft" ? ~EDependencyFlags::Hard : ~EDependencyFlags::Game);
	}
	static void ReadEntry(std::string_view Line, FPackageHeader& Out)
	{
		FPackageHeader::FIndexEntry& Entry = Out.IndexEntries.emplace_back();
		const std::string_view Depth = TakeWord(Line);
		std::from_chars(Depth.data(), Depth.data() + Depth.size(), Entry.Depth);
		Entry.Category = TakeWord(Line, '|');
		Entry.Text = TakeWord(Line, '|');
		Entry.Comment = Line;
	}

	std::atomic<int32>& NumRead;
};

std::string Join(const std::vector<std::string>& Words)
{
	std::string Joined;
	for (const std::string& Word : Words)
		Joined += (Joined.empty() ? "" : " ") + Word;
	return Joined;
}

std::string RenderNeighbours(bool bKnown, const TArray<FPackageDependency>& Neighbours)
{
	std::vector<std::string> Words;
	for (const FPackageDependency& Neighbour : Neighbours)
	{
		const bool bHard = (Neighbour.Flags & EDependencyFlags::Hard) != 0;
		const bool bGame = (Neighbour.Flags & EDependencyFlags::Game) != 0;
		Words.push_back(
			std::string(Neighbour.PackageName.View()) + (bHard ? "(hard" : "(soft") + (bGame ? " game)" : " editor)"));
	}
	return bKnown ? Join(Words) : "unknown";
}
}

TUniquePtr<IPackageReader> FLineSource::MakeReader() const
{
	return MakeUnique<FLineReader>(NumRead);
}

void FRegistryProject::SetClassParents(const FClassParents& ChildAndParent)
{
	TArray<std::pair<FTopLevelAssetPath, FTopLevelAssetPath>> Paths;
	for (const auto& [Child, Parent] : ChildAndParent)
		Paths.Add({FTopLevelAssetPath(Child), FTopLevelAssetPath(Parent)});
	Registry.SetClassParents(Paths);
	Parents = Paths;
}

FRegistryScanOptions FRegistryProject::MakeOptions() const
{
	FRegistryScanOptions Options;
	Options.Roots.Add({"/Game", Folder.Path("Content") + "/"});
	Options.Roots.Append(ExtraRoots);
	Options.Sources.Add(&Source);
	Options.ProjectFolder = Folder.Path() + "/";
	Options.FoldAt = FoldAt;
	Options.CacheFolders.Add(Folder.Path("Intermediate") + "/");
	return Options;
}

FRegistryScanReport FRegistryProject::ScanAll(int32 NumThreads)
{
	FRegistryScanOptions Options = MakeOptions();
	Options.Cache = ERegistryCache::Ignore;
	Options.NumThreads = NumThreads;
	return Scan(Options);
}

FRegistryScanReport FRegistryProject::ScanCached()
{
	return Scan(MakeOptions());
}

FRegistryScanReport FRegistryProject::Scan(FRegistryScanOptions Options)
{
	FDiagnosticSink Sink;
	Options.Diagnostics = &Sink;
	FRegistryScanReport Report;
	EXPECT_TRUE(Registry.Scan(Options, Report));
	Faults.clear();
	for (const FDiagnostic& Diagnostic : Sink.GetSorted())
		Faults += Diagnostic.Rule == "odd" ? Diagnostic.ToString().ToStdString() + "\n"
										   : Diagnostic.File.ToStdString() + " [" + Diagnostic.Rule.ToStdString() + "]\n";
	return Report;
}

FRegistryScanReport FRegistryProject::Update(const std::vector<std::string>& Files, const std::vector<std::string>& Folders)
{
	FRegistryScanReport Report;
	EXPECT_NE(Registry.Update(MakeOptions(), Files, Folders, Report), ERegistryUpdate::Stopped);
	return Report;
}

FRegistryProject::FFresh::FFresh(const FRegistryProject& Project)
{
	FRegistryScanOptions Options = Project.MakeOptions();
	Options.Cache = ERegistryCache::Ignore;
	Registry.SetClassParents(Project.Parents);
	FRegistryScanReport Report;
	EXPECT_TRUE(Registry.Scan(Options, Report));
}

std::string FRegistryProject::Dump() const
{
	std::string Text;
	Registry.Dump([&Text](FStringView Line) { Text.append(Line) += '\n'; });
	return Text;
}

std::string FRegistryProject::GetFaults() const
{
	return Faults;
}

std::string RenderAssets(const TArray<FAssetData>& Assets)
{
	std::vector<std::string> Paths;
	for (const FAssetData& Asset : Assets)
		Paths.push_back(Asset.GetObjectPathString().ToStdString());
	return Join(Paths);
}

std::string RenderAssets(const FAssetRegistry& Registry, const FARFilter& Filter, bool bSkipFiltered)
{
	TArray<FAssetData> Assets;
	Registry.GetAssets(Filter, Assets, bSkipFiltered);
	return RenderAssets(Assets);
}

std::string RenderDependencies(const IAssetRegistry& Registry, const char* Package)
{
	TArray<FPackageDependency> Neighbours;
	const bool bKnown = Registry.GetDependencies(Package, Neighbours);
	EXPECT_EQ(Registry.GetNumDependencies(Package), Neighbours.Num());
	return RenderNeighbours(bKnown, Neighbours);
}

std::string RenderReferencers(const IAssetRegistry& Registry, const char* Package)
{
	TArray<FPackageDependency> Neighbours;
	const bool bKnown = Registry.GetReferencers(Package, Neighbours);
	EXPECT_EQ(Registry.GetNumReferencers(Package), Neighbours.Num());
	return RenderNeighbours(bKnown, Neighbours);
}

std::string RenderClasses(const TArray<FTopLevelAssetPath>& Classes)
{
	std::vector<std::string> Paths;
	for (const FTopLevelAssetPath& Class : Classes)
		Paths.push_back(Class.ToString().ToStdString());
	return Join(Paths);
}
