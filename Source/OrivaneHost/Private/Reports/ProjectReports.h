#pragma once

#include "AssetRegistry/PackageGraph.h"
#include "Core/Base/Map.h"

#include <vector>

/** One line of a report; which members are set depends on the report. */
struct FReportRow
{
	FString Path;			// long package name
	FString Kind;			// asset type; "" for a package without visible assets
	FString From;			// package that refers to Path
	FString Via;			// package through which Path is reached, itself a row before this one, or the start
	FString Type;			// "Runtime" or "Editor"
	FString Problem;		// "missing" or "no assets"
	FString File;			// of From, relative to the project where it lies there
	int32 Line = 0;			// in File; 0: not known
	int32 Depth = -1;		// links from the start
	int32 Group = 0;		// number of the cycle or way, from 1 on
	int32 GroupSize = 0;	// packages in the cycle
	bool bSoft = false;		// a reference that does not load its target
	bool bExcluded = false; // lies in a folder or plugin that the settings exclude
};

/** What a report found. */
struct FReport
{
	FString Sentence;			 // all that matters, in one; no full stop
	TMap<FString, int64> Totals; // exact, by name
	TMap<FString, TMap<FString, int64>> KindCounts;
	TArray<FReportRow> Rows;
	int64 NumRows = 0;	   // listed or not
	TArray<FString> Notes; // what was not looked at; no full stops
};

/**
 * Answers about the whole dependency graph. Each is linear in it but for sorting what is listed: rows in registry order where
 * nothing else is said, at most MaxRows of them. After a stop the answer means nothing. Game thread, the project is open.
 */
namespace ProjectReports
{
using FNode = FPackageGraphView::FNode;

/** References to packages that do not exist or have no assets, by the lists of dependencies; native code never is missing. What
 * leads to engine content that is not opened is noted instead. */
FReport FindBrokenReferences(const FPackageGraphView& Graph, int32 MaxRows);
/** Assets of the project (not of the engine) that no chain of links from a root reaches. Hidden ones do not count. */
FReport FindUnusedAssets(const FPackageGraphView& Graph, const std::vector<FNode>& Roots, int32 MaxRows);
/** Groups of packages that lead to one another, the smallest first, with all links inside; a shortest ring through the group's
 * first package comes first. */
FReport FindCycles(const FPackageGraphView& Graph, int32 MaxRows);
/** Everything that refers to the package over any number of links, nearest first: at run time, then what the editor adds. */
FReport FindImpact(const FPackageGraphView& Graph, FNode Package, int32 MaxRows);
/** The shortest ways along dependencies, a package a row; those back from To where there are none. One way is always given
 * whole, others as far as they fit. */
FReport FindWays(const FPackageGraphView& Graph, FNode From, FNode To, int32 MaxRows);
}
