#include "Core/Files/File.h"
#include "Core/Json/Json.h"
#include "Core/Text/Unicode.h"
#include "Core/Threads/StopToken.h"
#include "CoreObject/Objects/PackageName.h"
#include "CoreObject/Packages/PackageSource.h"
#include "Project/Project.h"
#include "Reports/PackageKinds.h"
#include "Reports/ProjectReports.h"

#include <algorithm>

namespace
{
using FNode = FPackageGraphView::FNode;

constexpr int32 MaxFilesRead = 1000; // for line numbers; further rows do without
constexpr uint64 MaxFileBytes = 4 * 1024 * 1024;

bool LiesBelow(FStringView PackageName, FStringView Root)
{
	return Unicode::SkipFoldedPrefix(PackageName, Root);
}

bool IsBroken(const FPackageGraphView& Graph, FNode Package)
{
	const FPackageGraphView::FAssetRange Assets = Graph.GetAssets(Package);
	return Assets.Begin == Assets.End && Graph.GetReferencers(Package).Num() > 0 &&
		!LiesBelow(Graph.GetPackageName(Package), "/Script/");
}

bool IsEngineOpen()
{
	return FPackageName::GetMountPoints().ContainsByPredicate([](const auto& Mount) { return Mount.Root == "/Engine"; });
}

/** Line of the first mention of a package in a file of text; 0 without one. */
int32 FindLine(const FString& File, const FString& Package)
{
	const FString Path = File.StartsWith("/") ? File : FPaths::Combine(FPaths::ProjectDir(), File);
	std::string Text;
	if (File.IsEmpty() || FFileHelper::LoadFileToBytes(Text, Path, MaxFileBytes) != EFileRead::Ok)
		return 0;
	std::string Quoted;
	Json::AppendQuoted(Quoted, Package.View());
	const std::size_t Place = Text.find(Quoted);
	return Place == std::string::npos
		? 0
		: 1 + static_cast<int32>(std::count(Text.begin(), Text.begin() + std::ptrdiff_t(Place), '\n'));
}

void AddRows(const FPackageGraphView& Graph, FNode Broken, int32 MaxRows, FReport& Report)
{
	const auto Referencers = Graph.GetReferencers(Broken);
	for (std::size_t Index = 0; Index < Referencers.Nodes.size() && Report.Rows.Num() < MaxRows; ++Index)
	{
		const uint8 Flags = Referencers.Flags[Index];
		FReportRow Row{.Path = Graph.GetPackageName(Broken),
			.From = Graph.GetPackageName(Referencers.Nodes[Index]),
			.Type = DescribeLinkType(Flags),
			.Problem = Graph.HasFile(Broken) ? "no assets" : "missing",
			.bSoft = (Flags & EDependencyFlags::Hard) == 0};
		Row.File = FProject::GetPackageFileName(Row.From);
		if (Report.Rows.Num() < MaxFilesRead && !IsStopRequested())
			Row.Line = FindLine(Row.File, Row.Path);
		Report.Rows.Add(std::move(Row));
	}
}
}

FReport ProjectReports::FindBrokenReferences(const FPackageGraphView& Graph, int32 MaxRows)
{
	FReport Report;
	const bool bEngine = IsEngineOpen();
	int64 NumToEngine = 0;
	std::vector<FNode> Broken;
	for (FNode Package = 0; Package < Graph.NumNodes() && !IsStopRequested(); ++Package)
	{
		if (!IsBroken(Graph, Package))
			continue;
		const bool bToEngine = !bEngine && LiesBelow(Graph.GetPackageName(Package), "/Engine/");
		(bToEngine ? NumToEngine : Report.NumRows) += Graph.GetReferencers(Package).Num();
		if (!bToEngine)
			Broken.push_back(Package);
	}
	PutFirst(Graph, Broken, MaxRows);
	for (const FNode Package : Broken)
	{
		if (Report.Rows.Num() >= MaxRows)
			break;
		AddRows(Graph, Package, MaxRows, Report);
	}
	Report.Totals.Add("references", Report.NumRows);
	Report.Totals.Add("targets", std::ssize(Broken));
	Report.Sentence = CountThings(Report.NumRows, "broken reference", "broken references") + " to " +
		CountThings(std::ssize(Broken), "package", "packages");
	if (NumToEngine > 0)
		Report.Notes.Add(CountThings(NumToEngine, "reference", "references") + " to engine content, which is not opened");
	return Report;
}
