#pragma once

#include "Core/Base/Containers.h"
#include "Core/Base/Delegate.h"
#include "Core/Text/String.h"

class FJsonObject;
template <class TKey>
class TSet;

/** One match inside one asset. */
struct FAssetHit
{
	FString Kind;					// such as "ColumnName"; each family has its own
	FString Name;					// the matched element
	FString Container;				// where inside the asset; may be empty
	int32 Count = 1;				// how often the same kind, name and container were met
	TSharedPtr<FJsonObject> Anchor; // kept for callers; no family sets it
};

/**
 * Finds a hit of one result without a look at all others. Follows hits that are added; a copy of the result starts with an empty
 * one, which is filled when it is first asked.
 */
class FAssetHitIndex
{
public:
	FAssetHitIndex();
	~FAssetHitIndex();
	FAssetHitIndex(const FAssetHitIndex&);
	FAssetHitIndex& operator=(const FAssetHitIndex&);
	FAssetHitIndex(FAssetHitIndex&&) noexcept;
	FAssetHitIndex& operator=(FAssetHitIndex&&) noexcept;

	/** Place of the hit of that kind, name and container, without regard to case; INDEX_NONE when there is none. */
	int32 Find(const TArray<FAssetHit>& Hits, const FString& Kind, const FString& Name, const FString& Container);
	/** Hits of that kind, without regard to case. */
	int32 CountOfKind(const TArray<FAssetHit>& Hits, const FString& Kind);

private:
	struct FTables;
	FTables& Update(const TArray<FAssetHit>& Hits);
	TUniquePtr<FTables> Tables; // null while a look at every hit is faster
};

/** One asset with its hits, in order of first appearance. */
struct FAssetResult
{
	FString AssetPath;
	FString AssetClass;
	bool bTruncated = false; // a hit was refused because its kind had reached the per-kind cap
	TArray<FAssetHit> Hits;
	FAssetHitIndex Index; // of Hits, kept by OrivaneSearchUtils
};

/** What is searched, and how much of it is reported. Caps below 1 act as 1, but for MaxTotalHits, whose zero means 200
 * assets. */
struct FAssetSearchParams
{
	FString Term; // empty matches everything
	bool bExact = false;
	bool bCaseSensitive = false;
	TArray<FString> IncludeAssetFamilies;  // empty: all
	TArray<FString> IncludeKinds;		   // empty: all
	FString PathContains;				   // empty: no filter
	TArray<FString> IncludeTextExtensions; // kept for callers, without effect here: the settings say what is a text file
	int32 MaxHitsPerKind = 10;
	int32 MaxTotalHits = 200;
	bool bPreferEditorIndex = true; // kept for callers, without effect here: there is one index
	int32 MaxHitsPerAssetType = 25;
};

/** What a search would have read and could not, so that it may hold more than was found. */
struct FUnreadFile
{
	enum class EReason : uint8
	{
		Unreadable,
		TooLarge,	// above FFileHelper::MaxTextFileBytes
		Unloadable, // a package whose body is faulty, or whose file cannot be read
	};

	FString Path; // of a text file, relative to the project; of a folder, with a slash at the end; long package name
	EReason Reason = EReason::Unreadable;
};

/** Assets with their hits: of a family in the order in which it found them, of a whole search in ascending path order. */
struct FAssetSearchResult
{
	TArray<FAssetResult> Results;
	bool bTruncated = false;	// an asset was dropped by the per-asset-type cap or the total cap
	TArray<FUnreadFile> Unread; // of a whole search: ascending, each once; of a stopped search and behind a cap not all
};

/** A sentence for people that tells how many there are and names the first; "" for none. */
FString DescribeUnread(const TArray<FUnreadFile>& Unread);

/** Executed exactly once with what a search, or one family of it, found. */
using FOnAssetSearchComplete = TDelegate<void(const FAssetSearchResult&)>;

/** The one rule by which every family matches texts and appends hits. */
namespace OrivaneSearchUtils
{
/** Contains or equals, by the search's mode and case; an empty term matches every text. */
bool TermMatches(const FString& Text, const FAssetSearchParams& Params);
/** A counter has reached a cap; caps below 1 act as 1. */
bool HasReachedCap(int32 Count, int32 Cap);
/** AppendHitWithCaps when Name matches the term; kind and container are not matched. */
void AppendIfTermMatches(FAssetResult& Result, const FString& Kind, const FString& Name, const FString& Container,
	const FAssetSearchParams& Params, int32& TotalHits, int32 Times = 1);
/**
 * Appends without matching. A hit that is there already is counted up instead and never weighs on a cap; over the per-kind cap
 * the asset is marked truncated; over the total cap nothing happens.
 * Times, at least 1, is the number of calls this one replaces; counts end at the largest int32.
 */
void AppendHitWithCaps(FAssetResult& Result, const FString& Kind, const FString& Name, const FString& Container,
	const FAssetSearchParams& Params, int32& TotalHits, int32 Times = 1);
bool DoesKindSetContainAny(const TArray<FString>& Kinds, const TSet<FString>& KindSet);
}
