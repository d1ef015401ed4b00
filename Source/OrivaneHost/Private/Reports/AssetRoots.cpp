#include "Reports/AssetRoots.h"

#include "Core/Files/File.h"
#include "Core/Program/Config.h"
#include "CoreObject/Objects/PackageName.h"
#include "OrivaneToolkit/AssetOperationBase.h"
#include "Project/ProjectRegistry.h"
#include "Quellar/Assets/AssetPathUtils.h"

#include <algorithm>

namespace
{
using FNode = FPackageGraphView::FNode;

constexpr const char* RootClasses[] = {"/Script/Engine.World", "/Script/Engine.PrimaryDataAsset"};

void Add(const FPackageGraphView& Graph, const TArray<FName>& Packages, std::vector<FNode>& Roots)
{
	for (const FName Package : Packages)
		Roots.push_back(Graph.FindNode(Package));
}

/** What looks like a package or object path in a value such as (Level="/Game/Maps/L_Start.L_Start",...). */
void AddMentions(const FPackageGraphView& Graph, const FString& Value, std::vector<FNode>& Roots)
{
	constexpr FStringView Ends = "\"'(),;= \t";
	const FStringView Text = Value.View();
	for (std::size_t Start = Text.find('/'); Start != FStringView::npos;)
	{
		const std::size_t End = std::min(Text.find_first_of(Ends, Start), Text.size());
		const FString Package = FPackageName::ObjectPathToPackageName(Text.substr(Start, End - Start));
		if (const FName Name = GetProjectRegistry().FindPackage(Package); !Name.IsNone())
			Roots.push_back(Graph.FindNode(Name));
		Start = Text.find('/', End);
	}
}

void AddMentionsOfFile(const FPackageGraphView& Graph, const FString& File, std::vector<FNode>& Roots)
{
	FString Text;
	if (!FFileHelper::LoadFileToString(Text, File))
		return;
	const FConfigFile Config = FConfigFile::Parse(Text, File, nullptr);
	for (const auto& [Section, Lines] : Config.GetSections())
	{
		for (const FConfigLine& Line : Lines)
			AddMentions(Graph, Line.Value, Roots);
	}
}

void DropRepeated(std::vector<FNode>& Roots)
{
	std::sort(Roots.begin(), Roots.end());
	Roots.erase(std::unique(Roots.begin(), Roots.end()), Roots.end());
}
}

std::vector<FNode> AssetRoots::FindDefault(const FPackageGraphView& Graph)
{
	FARFilter Filter{.bRecursiveClasses = true};
	for (const char* const Class : RootClasses)
		Filter.ClassPaths.Add(FTopLevelAssetPath(Class));
	std::vector<FNode> Roots;
	Add(Graph, ListProjectPackages(Filter), Roots);
	TArray<FString> Files;
	IFileManager::Get().FindFilesRecursive(Files, FPaths::Combine(FPaths::ProjectDir(), "Config"), "*.ini");
	for (const FString& File : Files)
		AddMentionsOfFile(Graph, File, Roots);
	DropRepeated(Roots);
	return Roots;
}

bool AssetRoots::AddNamed(const FPackageGraphView& Graph, const FString& Path, std::vector<FNode>& Roots)
{
	const std::size_t NumRoots = Roots.size();
	if (Path.View().size() > FPackageName::MaxLongPackageNameBytes)
		return false;
	if (Path.EndsWith("/"))
	{
		const FName Folder(Path.View().substr(0, Path.View().size() - 1));
		Add(Graph, ListProjectPackages({.PackagePaths = {Folder}, .bRecursivePaths = true}), Roots);
	}
	else if (FName Package; FAssetOperationBase::AssetExists(Path) && AssetPathUtils::NormalizeToPackageName(Path, Package))
		Add(Graph, {Package}, Roots);
	const bool bFound = Roots.size() > NumRoots;
	DropRepeated(Roots);
	return bFound;
}
