#include "Quellar/AssetSearchTypes.h"

#include <algorithm>
#include <limits>

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
	int32 NumOfKind = 0;
	for (FAssetHit& Hit : Result.Hits)
	{
		const bool bSameKind = Hit.Kind == Kind;
		if (bSameKind && Hit.Name == Name && Hit.Container == Container)
		{
			Hit.Count += std::min(Times, std::numeric_limits<int32>::max() - Hit.Count);
			return;
		}
		NumOfKind += bSameKind ? 1 : 0;
	}
	if (HasReachedCap(NumOfKind, Params.MaxHitsPerKind))
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
