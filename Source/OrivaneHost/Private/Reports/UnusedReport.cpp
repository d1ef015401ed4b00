#include "Core/Threads/StopToken.h"
#include "Quellar/Assets/AssetPathUtils.h"
#include "Quellar/Assets/OrivaneFindUtils.h"
#include "Reports/PackageKinds.h"
#include "Reports/PackageReach.h"
#include "Reports/ProjectReports.h"

namespace
{
using FNode = FPackageGraphView::FNode;

constexpr FStringView EngineRoot = "/Engine/";

/** Folders that the settings exclude, each compared once: the rule is costly for millions of paths. */
class FExcludedFolders
{
public:
	explicit FExcludedFolders(const FPackageGraphView& InGraph) : Graph(InGraph), Known(InGraph.NumFolders()) {}

	bool Holds(FNode Package)
	{
		const uint32 Folder = Graph.GetFolderNumber(Graph.GetAssets(Package).Begin);
		if (Known[Folder] == EKnown::Unasked)
			Known[Folder] = FOrivaneFindUtils::ShouldExcludeFilePath(FString(Graph.GetFolderPath(Folder)) + "/.") // a file in it
				? EKnown::Excluded
				: EKnown::Included;
		return Known[Folder] == EKnown::Excluded;
	}

private:
	enum class EKnown : uint8
	{
		Unasked,
		Included,
		Excluded,
	};

	const FPackageGraphView& Graph;
	std::vector<EKnown> Known;
};

/** Packages with visible assets. */
int64 CountAssets(const FPackageGraphView& Graph, const std::vector<FPackageReach::FStep>& Steps)
{
	int64 Number = 0;
	for (const FPackageReach::FStep& Step : Steps)
		Number += AssetPathUtils::FindRepresentativeAsset(Graph, Step.Node) ? 1 : 0;
	return Number;
}
}

FReport ProjectReports::FindUnusedAssets(const FPackageGraphView& Graph, const std::vector<FNode>& Roots, int32 MaxRows)
{
	FReport Report;
	const FPackageReach Reach = FindReach(Graph, Roots, EReach::Dependencies);
	std::vector<bool> Used(Graph.NumNodes());
	for (const auto* Steps : {&Reach.Runtime, &Reach.Editor})
		for (const FPackageReach::FStep& Step : *Steps)
			Used[Step.Node] = true;

	FExcludedFolders Excluded(Graph);
	FKindCount Count(Graph);
	std::vector<FNode> Unused;
	int64 NumExcluded = 0;
	for (FNode Package = 0; Package < Graph.NumNodes() && !IsStopRequested(); ++Package)
	{
		if (Used[Package] || Graph.GetPackageName(Package).starts_with(EngineRoot) || !Count.Add(Package))
			continue;
		Unused.push_back(Package);
		NumExcluded += Excluded.Holds(Package) ? 1 : 0;
	}
	Report.NumRows = std::ssize(Unused);
	PutFirst(Graph, Unused, MaxRows);
	FPackageKinds Kinds(Graph);
	for (std::size_t Index = 0; Index < Unused.size() && Report.Rows.Num() < MaxRows; ++Index)
		Report.Rows.Add({.Path = Graph.GetPackageName(Unused[Index]),
			.Kind = Kinds.Get(Unused[Index]),
			.bExcluded = Excluded.Holds(Unused[Index])});

	const int64 NumEditor = CountAssets(Graph, Reach.Editor);
	Report.Totals.Add("unused", Report.NumRows);
	Report.Totals.Add("excluded", NumExcluded);
	Report.Totals.Add("editor_only", NumEditor);
	Report.Totals.Add("roots", std::ssize(Roots));
	Report.KindCounts.Add("by_kind", Count.Get(Kinds));
	Report.Sentence = CountThings(Report.NumRows, "asset is", "assets are") + " reached from none of " +
		CountThings(std::ssize(Roots), "root", "roots") + ", " + FString::FromInt(NumExcluded) +
		" of them in excluded folders; " + FString::FromInt(NumEditor) + " more are reached by editor links alone";
	return Report;
}
