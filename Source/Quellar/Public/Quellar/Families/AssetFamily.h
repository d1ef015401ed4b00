#pragma once

#include "Core/Text/Name.h"
#include "Quellar/Hits/AssetSearchTypes.h"

class UClass;

/**
 * A family of assets: one row of the table in AssetFamily.cpp, which says all that is said of a family outside of its own file.
 * Immutable; any thread.
 */
struct FAssetFamily
{
	/** Reports what matches through OnDone, executed exactly once: before it returns, unless the family says otherwise. Game
	 * thread. */
	using FSearch = void(const FAssetSearchParams& Params, FOnAssetSearchComplete OnDone);

	/** One asset type of the family. */
	struct FType
	{
		const char* Name;		  // as AssetTypeFromClassName says it
		const char* Color;		  // fill in drawings, "#rrggbb"; dark text is readable on it
		TArray<FName> ClassNames; // of the classes that have this type
	};

	/** The console command that searches this family alone. */
	struct FConsoleCommand
	{
		const char* Name;
		const char* File; // of the document it writes, below Saved/Quellar
		const char* Help;
		TArray<FString> ExtraWords = {"kinds="}; // besides those that all search commands understand
	};

	/** What the entries of its assets carry in the documents of the console. */
	struct FDocumentEntry
	{
		bool bCounts = false;	// hits by kind
		bool bContainer = true; // of each hit; left out where it would only repeat the kind
	};

	const char* Name; // as in FAssetSearchParams::IncludeAssetFamilies
	FSearch* Search;
	TArray<UClass* (*)()> Classes; // their assets, and those of derived classes, are the family; empty: it is not about assets
	TArray<FType> Types;
	TArray<const char*> GroupedClasses; // asset classes of results that count as Name under the cap per type, besides Name itself
	FConsoleCommand Command;
	FDocumentEntry DocumentEntry = {};
};

/** All families, in the order in which they are searched: with a cap per asset type, who comes first gets in. */
const TArray<FAssetFamily>& GetAssetFamilies();
/** The family with exactly this name, in its own spelling; null when there is none. */
const FAssetFamily* FindAssetFamily(const FString& Name);
/** The names that FAssetSearchParams::IncludeAssetFamilies may hold, in the order of the families. */
TArray<FString> GetAssetFamilyNames();

/** Short asset type of an asset's class, such as "Blackboard" for BlackboardData; "uasset" for classes without one. Case is
 * ignored. */
FString AssetTypeFromClassName(FName ClassName);
/** Fill of an asset type's nodes in drawings, "#rrggbb"; grey for types without a color of their own. Case is ignored. */
FString GetAssetTypeColor(const FString& AssetType);
/**
 * Under what the cap per asset type counts a result of this asset class: the three Blueprint classes are "Blueprint", "TextFile"
 * is "Text", a class that shares its group with no other is its own. Compared exactly, unlike family names: the classes are our
 * own spellings.
 */
FString GetAssetTypeGroup(const FString& AssetClass);
