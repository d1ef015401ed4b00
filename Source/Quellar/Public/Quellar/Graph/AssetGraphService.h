#pragma once

#include "Core/Base/Containers.h"
#include "Core/Base/Map.h"
#include "Core/Text/String.h"

/** Which links are followed: to what an asset needs, to what needs it, or each by itself. */
enum class EAssetGraphDirection : uint8
{
	Dependencies = 0,
	Referencers = 1,
	Both = 2,
};

/** What is to be explored; the defaults are those of the tool. */
struct FExploreAssetGraphParams
{
	EAssetGraphDirection Direction = EAssetGraphDirection::Dependencies;
	FString AssetPath;			 // any form that AssetPathUtils::NormalizeToPackageName takes
	int32 Depth = 1;			 // levels, clamped to 1..2
	int32 MaxNodes = 150;		 // relations recorded per direction, at least 1
	int32 MaxFanoutPerNode = 50; // a package below the root with more neighbours is not walked through; at least 1
	bool bHighSignalOnly = true; // see AssetPathUtils::IsHighSignalKind
};

/** A package that was reached, and what was reached from it. */
struct FAssetRelation
{
	FString Path; // long package name, "/Game/UI/W_Menu"
	FString Kind; // asset type, see AssetTypeFromClassName
	FString Type; // "Runtime" or "Editor"
	TArray<FAssetRelation> Relations;
};

/** Numbers of relations at every depth. */
struct FAssetGraphSummary
{
	int32 Total = 0;
	TMap<FString, int32> ByKind;
	TMap<FString, int32> ByType;
};

/** Packages next to what was walked that are not among the relations of a direction; each counts once. */
struct FAssetGraphLeftOut
{
	TMap<FString, int32> LowSignalByKind; // see AssetPathUtils::IsHighSignalKind
	int32 NumExcluded = 0;				  // by the settings
	int32 NumHidden = 0;				  // all of their assets are registry-filtered
	int32 NumHubs = 0;					  // relations that were not walked through, having too many neighbours
	TArray<FString> Missing;			  // dependencies that do not exist, long package names in the order of discovery
	bool bOverBudget = false;			  // more relations qualify
};

/** What was reached. Owns everything. */
struct FExploreAssetGraphResult
{
	FString Root;	   // long package name; empty when the path could not be normalised
	FString Direction; // "Dependencies", "Referencers" or "Both"; empty like Root

	// One direction; empty for Both
	TArray<FAssetRelation> Relations;
	FAssetGraphSummary Summary;
	FAssetGraphLeftOut LeftOut;

	// Both
	TArray<FAssetRelation> DependencyRelations;
	FAssetGraphSummary DependencySummary;
	FAssetGraphLeftOut DependencyLeftOut;
	TArray<FAssetRelation> ReferencerRelations;
	FAssetGraphSummary ReferencerSummary;
	FAssetGraphLeftOut ReferencerLeftOut;

	bool bTruncated = false; // a relation that qualifies was left out, because MaxNodes was reached
};

/** Walks the registry's package dependency graph. Loads nothing. Game thread. */
class UAssetGraphService
{
public:
	/**
	 * Breadth first from the asset's package, at most two levels, along its dependencies, its referencers or both (each with a
	 * budget of its own). Left out, and not walked through: packages without an asset, excluded paths, and kinds without much
	 * signal unless they are asked for. A package found from two others of one level is listed under both. Siblings come out in
	 * reverse order of discovery. An unknown package has no relations.
	 */
	static void ExploreGraph(const FExploreAssetGraphParams& Params, FExploreAssetGraphResult& Result);
};
