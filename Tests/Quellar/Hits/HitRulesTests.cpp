#include "Quellar/Hits/AssetSearchTypes.h"
#include "Support/Cases.h"

#include <gtest/gtest.h>

using namespace OrivaneSearchUtils;

TEST(HitRules, MatchesTheTerm)
{
	const struct
	{
		const char* Why;
		const char* Term;
		bool bExact;
		bool bCaseSensitive;
		const char* Text;
		bool bExpected;
	} Cases[] = {
		{"an empty term matches everything", "", false, false, "Health", true},
		{"an empty term matches in exact mode too", "", true, true, "Health", true},
		{"contains, any case", "Health", false, false, "maxhealth", true},
		{"contains, same case", "Health", false, true, "MaxHealth", true},
		{"contains, other case", "Health", false, true, "maxhealth", false},
		{"exact, any case", "Health", true, false, "health", true},
		{"exact, same case only", "Health", true, true, "health", false},
		{"exact is the whole text", "Health", true, false, "Health2", false},
		{"an empty text equals no term", "Health", true, false, "", false},
		{"case is folded beyond ASCII", "\xC3\xA4rger", false, false, "\xC3\x84RGER", true},
		{"a sharp s is not two letters", "strasse", true, false,
			"stra\xC3\x9F"
			"e",
			false},
	};
	for (const auto& Case : Traced(Cases))
	{
		FAssetSearchParams Params;
		Params.Term = Case.Term;
		Params.bExact = Case.bExact;
		Params.bCaseSensitive = Case.bCaseSensitive;
		EXPECT_EQ(TermMatches(Case.Text, Params), Case.bExpected);
	}
}

TEST(HitRules, RepeatedElementsAreCountedAndNeverCapped)
{
	FAssetSearchParams Params;
	Params.MaxHitsPerKind = 1;
	Params.MaxTotalHits = 1;
	FAssetResult Result;
	int32 TotalHits = 0;
	AppendHitWithCaps(Result, "Node", "Set Health", "Graph", Params, TotalHits);
	AppendHitWithCaps(Result, "node", "SET HEALTH", "graph", Params, TotalHits);
	AppendHitWithCaps(Result, "Node", "Set Health", "Graph", Params, TotalHits);
	ASSERT_EQ(Result.Hits.Num(), 1);
	EXPECT_EQ(Result.Hits[0].Count, 3);
	EXPECT_EQ(TotalHits, 1);
	EXPECT_FALSE(Result.bTruncated);
}

// Beyond a few hits they are found through an index.
TEST(HitRules, ManyHitsAreKeptApartAndCounted)
{
	constexpr int32 NumNames = 1000;
	FAssetSearchParams Params;
	Params.MaxHitsPerKind = NumNames;
	Params.MaxTotalHits = INT32_MAX;
	FAssetResult Result;
	int32 TotalHits = 0;
	const auto AddAll = [&]
	{
		for (int32 Name = 0; Name < NumNames; ++Name)
			for (const char* Kind : {"Var", "Node"})
				AppendHitWithCaps(Result, Kind, FString::FromInt(Name), Name % 2 ? "Graph" : "", Params, TotalHits);
	};
	AddAll();
	Result = FAssetResult(Result); // a copy goes on counting
	AddAll();
	AppendHitWithCaps(Result, "NODE", "one more", "", Params, TotalHits);
	EXPECT_TRUE(Result.bTruncated);
	EXPECT_EQ(TotalHits, 2 * NumNames);
	ASSERT_EQ(Result.Hits.Num(), 2 * NumNames);
	for (int32 Place = 0; Place < Result.Hits.Num(); ++Place)
	{
		EXPECT_EQ(Result.Hits[Place].Name.ToInt(), Place / 2);
		EXPECT_EQ(Result.Hits[Place].Count, 2);
	}
}

TEST(HitRules, AnotherContainerIsAnotherHit)
{
	const FAssetSearchParams Params{.MaxHitsPerKind = 2};
	FAssetResult Result;
	int32 TotalHits = 0;
	for (const char* Container : {"Graph", "", "GRAPH", "Other"})
		AppendHitWithCaps(Result, "Node", "Set Health", Container, Params, TotalHits);
	ASSERT_EQ(Result.Hits.Num(), 2);
	EXPECT_EQ(Result.Hits[0].Count, 2);
	EXPECT_EQ(Result.Hits[1].Count, 1);
	EXPECT_TRUE(Result.bTruncated) << "a third container weighs on the cap of its kind";
}

TEST(HitRules, CapsPerKindAndInTotal)
{
	const struct
	{
		const char* Why;
		int32 MaxPerKind;
		int32 MaxTotal;
		int32 NumOtherKind;
		int32 ExpectedHits;
		bool bExpectedTruncated;
	} Cases[] = {
		{"a third hit of a kind is refused and marks the asset", 2, 200, 0, 2, true},
		{"other kinds have their own cap", 2, 200, 1, 3, true},
		{"the total cap refuses without a mark", 10, 2, 1, 2, false},
		{"a cap of zero acts as one", 10, 0, 1, 1, false},
		{"a negative cap acts as one", -5, 200, 0, 1, true},
	};
	for (const auto& Case : Traced(Cases))
	{
		FAssetSearchParams Params;
		Params.MaxHitsPerKind = Case.MaxPerKind;
		Params.MaxTotalHits = Case.MaxTotal;
		FAssetResult Result;
		int32 TotalHits = 0;
		for (const char* Name : {"A", "B", "C"})
			AppendHitWithCaps(Result, "Variable", Name, "", Params, TotalHits);
		for (int32 Index = 0; Index < Case.NumOtherKind; ++Index)
			AppendHitWithCaps(Result, "Node", FString::FromInt(Index), "", Params, TotalHits);
		EXPECT_EQ(Result.Hits.Num(), Case.ExpectedHits);
		EXPECT_EQ(TotalHits, Case.ExpectedHits);
		EXPECT_EQ(Result.bTruncated, Case.bExpectedTruncated);
	}
}

TEST(HitRules, OnlyTheNameIsMatched)
{
	FAssetSearchParams Params;
	Params.Term = "Health";
	FAssetResult Result;
	int32 TotalHits = 0;
	AppendIfTermMatches(Result, "Health", "Stamina", "Health", Params, TotalHits);
	EXPECT_TRUE(Result.Hits.IsEmpty());
	AppendIfTermMatches(Result, "Variable", "MaxHealth", "", Params, TotalHits);
	EXPECT_EQ(Result.Hits.Num(), 1);
}

TEST(HitRules, KindSetsIgnoreCase)
{
	const TSet<FString> Kinds = {"Widget", "WidgetClass"};
	EXPECT_TRUE(DoesKindSetContainAny({"Node", "widgetclass"}, Kinds));
	EXPECT_FALSE(DoesKindSetContainAny({"Node"}, Kinds));
	EXPECT_FALSE(DoesKindSetContainAny({}, Kinds));
}
