#include "Core/Threads/StopToken.h"
#include "Reports/PackageKinds.h"
#include "Reports/PackageReach.h"
#include "Reports/ProjectReports.h"

namespace
{
using FSteps = std::vector<FPackageReach::FStep>;

void AddRows(
	const FPackageGraphView& Graph, const FSteps& Steps, const char* Type, FPackageKinds& Kinds, int32 MaxRows, FReport& Report)
{
	FKindCount Count(Graph);
	int64 Number = 0;
	for (const FPackageReach::FStep& Step : Steps)
	{
		if (Step.Depth == 0)
			continue;
		if (IsStopRequested())
			return;
		++Number;
		Count.Add(Step.Node);
		if (Report.Rows.Num() < MaxRows)
			Report.Rows.Add({.Path = Graph.GetPackageName(Step.Node),
				.Kind = Kinds.Get(Step.Node),
				.Via = Graph.GetPackageName(Step.Via),
				.Type = Type,
				.Depth = Step.Depth});
	}
	Report.NumRows += Number;
	Report.Totals.Add(FString(Type).ToLower(), Number);
	Report.KindCounts.Add(FString(Type).ToLower() + "_by_kind", Count.Get(Kinds));
}
}

FReport ProjectReports::FindImpact(const FPackageGraphView& Graph, FNode Package, int32 MaxRows)
{
	FReport Report;
	FPackageKinds Kinds(Graph);
	const FPackageReach Reach = FindReach(Graph, {Package}, EReach::Referencers);
	AddRows(Graph, Reach.Runtime, "Runtime", Kinds, MaxRows, Report);
	AddRows(Graph, Reach.Editor, "Editor", Kinds, MaxRows, Report);
	if (IsStopRequested())
		return Report;
	Report.Sentence = FString("A change of ") + Graph.GetPackageName(Package) + " reaches " +
		CountThings(Report.NumRows, "package", "packages") + ": " + FString::FromInt(*Report.Totals.Find("runtime")) +
		" at run time, " + FString::FromInt(*Report.Totals.Find("editor")) + " in the editor alone";
	return Report;
}
