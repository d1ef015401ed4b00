#include "Console/ConsoleSearchDocument.h"

#include "Core/Json/Json.h"
#include "Quellar/Families/AssetFamily.h"

namespace
{
FAssetFamily::FDocumentEntry GetEntryShape(const FString& AssetType)
{
	const FAssetFamily* Family = FindAssetFamily(AssetType);
	return Family ? Family->DocumentEntry : FAssetFamily::FDocumentEntry();
}

FString GetAssetType(const FAssetResult& Asset)
{
	// A material that was not loaded has no class of its own.
	return Asset.AssetClass.IsEmpty() ? FString("Material") : GetAssetTypeGroup(Asset.AssetClass);
}

/** Hits by kind, in the order in which kinds are first met. */
using FCounts = TMap<FString, int32>;

void Count(const FAssetResult& Asset, FCounts& Out)
{
	for (const FAssetHit& Hit : Asset.Hits)
		++Out.FindOrAdd(Hit.Kind);
}

FCounts Count(const TArray<const FAssetResult*>& Assets)
{
	FCounts Counts;
	for (const FAssetResult* Asset : Assets)
		Count(*Asset, Counts);
	return Counts;
}

TSharedPtr<FJsonObject> MakeCounts(const FCounts& Counts)
{
	auto Json = MakeShared<FJsonObject>();
	for (const auto& [Kind, Number] : Counts)
		Json->SetNumberField(Kind, Number);
	return Json;
}

/** Hits of one kind together, kinds as they are first met, by name within a kind. */
TArray<FAssetHit> SortHits(const TArray<FAssetHit>& Hits)
{
	TMap<FString, int32> Ranks;
	for (const FAssetHit& Hit : Hits)
	{
		if (!Ranks.Contains(Hit.Kind))
			Ranks.Add(Hit.Kind, Ranks.Num());
	}
	TArray<FAssetHit> Sorted = Hits;
	Sorted.StableSort(
		[&](const FAssetHit& A, const FAssetHit& B)
		{
			const int32 RankA = *Ranks.Find(A.Kind);
			const int32 RankB = *Ranks.Find(B.Kind);
			return RankA != RankB ? RankA < RankB : A.Name < B.Name;
		});
	return Sorted;
}

FJsonArray MakeHits(const TArray<FAssetHit>& Hits, bool bContainer)
{
	FJsonArray Array;
	for (const FAssetHit& Hit : SortHits(Hits))
	{
		auto Json = MakeShared<FJsonObject>();
		Json->SetStringField("kind", Hit.Kind);
		Json->SetStringField("name", Hit.Name);
		if (bContainer)
			Json->SetStringField("container", Hit.Container);
		Json->SetNumberField("count", Hit.Count);
		Array.Add(Json);
	}
	return Array;
}

TSharedPtr<FJsonObject> MakeEntry(const FAssetResult& Asset)
{
	auto Json = MakeShared<FJsonObject>();
	Json->SetStringField("asset_path", Asset.AssetPath);
	Json->SetStringField("class", Asset.AssetClass);
	Json->SetBoolField("truncated", Asset.bTruncated);
	return Json;
}

TSharedPtr<FJsonObject> MakeDetailedEntry(const FAssetResult& Asset, FAssetFamily::FDocumentEntry Shape)
{
	auto Json = MakeEntry(Asset);
	if (Shape.bCounts)
		Json->SetObjectField("counts", MakeCounts(Count({&Asset})));
	Json->SetArrayField("hits", MakeHits(Asset.Hits, Shape.bContainer));
	return Json;
}

TSharedPtr<FJsonObject> MakeSummaryEntry(const FAssetResult& Asset)
{
	auto Json = MakeEntry(Asset);
	Json->SetStringField("asset_type", GetAssetType(Asset));
	Json->SetObjectField("total_hits", MakeCounts(Count({&Asset})));
	return Json;
}

void SetTotals(FJsonObject& Json, const TArray<const FAssetResult*>& Assets)
{
	Json.SetNumberField("total_results", Assets.Num());
	Json.SetObjectField("total_hits", MakeCounts(Count(Assets)));
}

/** One member for each asset type, in ascending order. */
TSharedPtr<FJsonObject> MakeGroups(const TArray<const FAssetResult*>& Assets, EConsoleSearchForm Form)
{
	TMap<FString, TArray<const FAssetResult*>> Groups;
	for (const FAssetResult* Asset : Assets)
		Groups.FindOrAdd(GetAssetType(*Asset)).Add(Asset);
	TArray<FString> Types;
	for (const auto& [Type, Members] : Groups)
		Types.Add(Type);
	Types.StableSort([](const FString& A, const FString& B) { return A < B; });

	auto Json = MakeShared<FJsonObject>();
	for (const FString& Type : Types)
	{
		const TArray<const FAssetResult*>& Members = *Groups.Find(Type);
		auto Group = MakeShared<FJsonObject>();
		SetTotals(*Group, Members);
		FJsonArray Entries;
		for (const FAssetResult* Asset : Members)
			Entries.Add(MakeDetailedEntry(*Asset, GetEntryShape(Type)));
		if (Form == EConsoleSearchForm::Detailed)
			Group->SetArrayField("results", std::move(Entries));
		Json->SetObjectField(Type, Group);
	}
	return Json;
}

TSharedPtr<FJsonObject> MakeSummary(const TArray<const FAssetResult*>& Assets)
{
	int32 NumHits = 0;
	for (const FAssetResult* Asset : Assets)
		NumHits += Asset->Hits.Num();
	auto Json = MakeShared<FJsonObject>();
	Json->SetNumberField("total_results", Assets.Num());
	Json->SetNumberField("count", NumHits);
	return Json;
}
}

FString WriteConsoleSearchDocument(const FAssetSearchResult& Result, EConsoleSearchForm Form)
{
	TArray<const FAssetResult*> Assets;
	bool bTruncated = Result.bTruncated;
	for (const FAssetResult& Asset : Result.Results)
	{
		Assets.Add(&Asset);
		bTruncated |= Asset.bTruncated;
	}
	Assets.StableSort([](const FAssetResult* A, const FAssetResult* B) { return A->AssetPath < B->AssetPath; });

	FJsonObject Json;
	SetTotals(Json, Assets);
	Json.SetBoolField("truncated", bTruncated);
	if (Form == EConsoleSearchForm::Summary)
	{
		Json.SetObjectField("summary", MakeSummary(Assets));
		FJsonArray Entries;
		for (const FAssetResult* Asset : Assets)
			Entries.Add(MakeSummaryEntry(*Asset));
		Json.SetArrayField("results", std::move(Entries));
	}
	Json.SetObjectField("asset_type", MakeGroups(Assets, Form));
	return Json::WritePretty(Json) + "\n";
}
