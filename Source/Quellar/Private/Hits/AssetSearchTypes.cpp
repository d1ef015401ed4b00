#include "Quellar/Hits/AssetSearchTypes.h"

#include "Core/Base/Map.h"
#include "Core/Base/SeededHash.h"
#include "Core/Files/File.h"

#include <algorithm>
#include <limits>

namespace
{
constexpr int32 WorthAnIndex = 16;	// hits; a look at fewer is faster
constexpr int32 MaxNamedUnread = 3; // files

FString DescribeReason(FUnreadFile::EReason Reason)
{
	switch (Reason)
	{
		case FUnreadFile::EReason::TooLarge:
			return FString::Printf("larger than %d MiB", static_cast<int>(FFileHelper::MaxTextFileBytes >> 20));
		case FUnreadFile::EReason::Unloadable:
			return "cannot be loaded";
		case FUnreadFile::EReason::Unreadable:
			break;
	}
	return "cannot be read";
}

bool IsSame(const FAssetHit& Hit, const FString& Kind, const FString& Name, const FString& Container)
{
	return Hit.Kind == Kind && Hit.Name == Name && Hit.Container == Container;
}

uint64 HashHit(const FString& Kind, const FString& Name, const FString& Container)
{
	return SeededHash::MixHash(SeededHash::MixHash(GetTypeHash(Kind), GetTypeHash(Name)), GetTypeHash(Container));
}
}

struct FAssetHitIndex::FTables
{
	TMap<uint64, int32> LastByHash;	  // place of the last hit with the hash
	TArray<int32> PreviousOfSameHash; // by place; INDEX_NONE after the first
	TMap<FString, int32> NumOfKind;
};

FAssetHitIndex::FAssetHitIndex() = default;
FAssetHitIndex::~FAssetHitIndex() = default;
FAssetHitIndex::FAssetHitIndex(FAssetHitIndex&&) noexcept = default;
FAssetHitIndex& FAssetHitIndex::operator=(FAssetHitIndex&&) noexcept = default;

FAssetHitIndex::FAssetHitIndex(const FAssetHitIndex&)
{
}

FAssetHitIndex& FAssetHitIndex::operator=(const FAssetHitIndex&)
{
	Tables.reset();
	return *this;
}

/** Takes in what was added since the last call. */
FAssetHitIndex::FTables& FAssetHitIndex::Update(const TArray<FAssetHit>& Hits)
{
	if (!Tables)
		Tables = MakeUnique<FTables>();
	for (int32 Place = Tables->PreviousOfSameHash.Num(); Place < Hits.Num(); ++Place)
	{
		const FAssetHit& Hit = Hits[Place];
		const uint64 Hash = HashHit(Hit.Kind, Hit.Name, Hit.Container);
		const int32* const Previous = Tables->LastByHash.Find(Hash);
		Tables->PreviousOfSameHash.Add(Previous ? *Previous : INDEX_NONE);
		Tables->LastByHash.Add(Hash, Place);
		++Tables->NumOfKind.FindOrAdd(Hit.Kind);
	}
	return *Tables;
}

int32 FAssetHitIndex::Find(const TArray<FAssetHit>& Hits, const FString& Kind, const FString& Name, const FString& Container)
{
	if (Hits.Num() < WorthAnIndex)
	{
		const FAssetHit* const Found =
			Hits.FindByPredicate([&](const FAssetHit& Hit) { return IsSame(Hit, Kind, Name, Container); });
		return Found ? static_cast<int32>(Found - Hits.GetData()) : INDEX_NONE;
	}
	const FTables& Current = Update(Hits);
	const int32* const Last = Current.LastByHash.Find(HashHit(Kind, Name, Container));
	int32 Place = Last ? *Last : INDEX_NONE;
	while (Place != INDEX_NONE && !IsSame(Hits[Place], Kind, Name, Container))
		Place = Current.PreviousOfSameHash[Place];
	return Place;
}

int32 FAssetHitIndex::CountOfKind(const TArray<FAssetHit>& Hits, const FString& Kind)
{
	if (Hits.Num() < WorthAnIndex)
		return static_cast<int32>(
			std::count_if(Hits.begin(), Hits.end(), [&Kind](const FAssetHit& Hit) { return Hit.Kind == Kind; }));
	const int32* const Num = Update(Hits).NumOfKind.Find(Kind);
	return Num ? *Num : 0;
}

FString DescribeUnread(const TArray<FUnreadFile>& Unread)
{
	if (Unread.IsEmpty())
		return {};
	TArray<FString> Names;
	for (int32 Index = 0; Index < std::min(Unread.Num(), MaxNamedUnread); ++Index)
		Names.Add(Unread[Index].Path + " (" + DescribeReason(Unread[Index].Reason) + ")");
	return FString::FromInt(Unread.Num()) + " file(s) or folder(s) could not be searched: " + FString::Join(Names, ", ") +
		(Unread.Num() > MaxNamedUnread ? ", ..." : "") + "; orivane check names all";
}

namespace OrivaneSearchUtils
{
bool TermMatches(const FString& Text, const FAssetSearchParams& Params)
{
	if (Params.Term.IsEmpty())
		return true;
	const ESearchCase Case = Params.bCaseSensitive ? ESearchCase::CaseSensitive : ESearchCase::IgnoreCase;
	return Params.bExact ? Text.Equals(Params.Term, Case) : Text.Contains(Params.Term, Case);
}

bool HasReachedCap(int32 Count, int32 Cap)
{
	return Count >= std::max(Cap, 1);
}

void AppendIfTermMatches(FAssetResult& Result, const FString& Kind, const FString& Name, const FString& Container,
	const FAssetSearchParams& Params, int32& TotalHits, int32 Times)
{
	if (TermMatches(Name, Params))
		AppendHitWithCaps(Result, Kind, Name, Container, Params, TotalHits, Times);
}

void AppendHitWithCaps(FAssetResult& Result, const FString& Kind, const FString& Name, const FString& Container,
	const FAssetSearchParams& Params, int32& TotalHits, int32 Times)
{
	if (const int32 Known = Result.Index.Find(Result.Hits, Kind, Name, Container); Known != INDEX_NONE)
	{
		int32& Count = Result.Hits[Known].Count;
		Count += std::min(Times, std::numeric_limits<int32>::max() - Count);
		return;
	}
	if (HasReachedCap(Result.Index.CountOfKind(Result.Hits, Kind), Params.MaxHitsPerKind))
	{
		Result.bTruncated = true;
		return;
	}
	if (HasReachedCap(TotalHits, Params.MaxTotalHits))
		return;
	Result.Hits.Add({.Kind = Kind, .Name = Name, .Container = Container, .Count = Times, .Anchor = nullptr});
	++TotalHits;
}

bool DoesKindSetContainAny(const TArray<FString>& Kinds, const TSet<FString>& KindSet)
{
	return Kinds.ContainsByPredicate([&](const FString& Kind) { return KindSet.Contains(Kind); });
}
}
