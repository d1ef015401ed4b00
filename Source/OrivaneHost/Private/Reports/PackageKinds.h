#pragma once

#include "AssetRegistry/PackageGraph.h"
#include "Core/Base/Map.h"

#include <vector>

/** Asset types of packages, each class looked at once. A view of the graph must outlive it. */
class FPackageKinds
{
public:
	explicit FPackageKinds(const FPackageGraphView& InGraph) : Graph(InGraph), Kinds(InGraph.NumClasses()) {}

	/** "" for a package without visible assets. */
	FString Get(FPackageGraphView::FNode Package);

private:
	friend class FKindCount;
	const FString& GetOfClass(uint32 Class);

	const FPackageGraphView& Graph;
	std::vector<FString> Kinds; // by class; "" as long as nobody has asked
};

/** Counts packages by kind, cheaply enough for millions. */
class FKindCount
{
public:
	explicit FKindCount(const FPackageGraphView& InGraph) : Graph(InGraph), NumByClass(InGraph.NumClasses()) {}

	/** False for a package without visible assets, which counts for nothing. */
	bool Add(FPackageGraphView::FNode Package);
	/** The most frequent first. */
	TMap<FString, int64> Get(FPackageKinds& Kinds) const;

private:
	const FPackageGraphView& Graph;
	std::vector<int64> NumByClass;
};

/** Moves the first Num packages in registry order to the front, in that order; linear for few. */
void PutFirst(const FPackageGraphView& Graph, std::vector<FPackageGraphView::FNode>& Packages, int32 Num);
/** Registry order: by long name without regard to case, ties in byte order. */
bool IsBefore(const FPackageGraphView& Graph, FPackageGraphView::FNode A, FPackageGraphView::FNode B);
/** "Runtime" or "Editor", by EDependencyFlags. */
FString DescribeLinkType(uint8 Flags);
/** "1 asset", "2 assets" */
FString CountThings(int64 Number, const char* One, const char* Several);
