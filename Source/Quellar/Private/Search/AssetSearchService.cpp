#include "Quellar/Search/AssetSearchService.h"

#include "Assets/AssetTypeGroup.h"
#include "Core/Threads/StopToken.h"
#include "Families/BehaviorTreeFamily.h"
#include "Families/BlackboardFamily.h"
#include "Families/BlueprintFamily.h"
#include "Families/DataAssetFamily.h"
#include "Families/DataTableFamily.h"
#include "Families/EnumFamily.h"
#include "Families/EnvQueryFamily.h"
#include "Families/MaterialFamily.h"
#include "Families/NiagaraFamily.h"
#include "Families/StructFamily.h"
#include "Families/TextFamily.h"
#include "Quellar/Assets/AssetRegistryUtils.h"

#include <algorithm>
#include <mutex>

namespace
{
constexpr int32 DefaultMaxAssets = 200; // where the total cap is below 1

struct FFamily
{
	const char* Name;
	void (*Search)(const FAssetSearchParams&, FOnAssetSearchComplete);
};

// Searched in this order; with a per-type cap, who comes first gets in.
constexpr FFamily Families[] = {
	{"Blueprint", SearchBlueprints},
	{"Text", SearchTextFiles},
	{"BehaviorTree", SearchBehaviorTrees},
	{"Blackboard", SearchBlackboards},
	{"Enum", SearchEnums},
	{"Struct", SearchStructs},
	{"DataAsset", SearchDataAssets},
	{"DataTable", SearchDataTables},
	{"EnvQuery", SearchEnvQueries},
	{"NiagaraSystem", SearchNiagaraSystems},
	{"Material", SearchMaterials},
};

struct FFamilySearchTask
{
	FString FamilyName;
	TDelegate<void(FOnAssetSearchComplete)> Run;
};

/** What the family completions of one search share. */
class FAssetSearchAggregate
{
public:
	FAssetSearchAggregate(const FAssetSearchParams& Params, int32 NumFamilies, FOnAssetSearchComplete InOnComplete)
		: MaxPerAssetType(std::max(Params.MaxHitsPerAssetType, 1))
		, MaxTotal(Params.MaxTotalHits > 0 ? Params.MaxTotalHits : DefaultMaxAssets)
		, PendingFamilies(NumFamilies)
		, OnComplete(std::move(InOnComplete))
	{
	}

	/** Takes one family's report; after the last one the caller's delegate runs, still under the lock. */
	void Merge(const FAssetSearchResult& Report)
	{
		std::lock_guard Guard(Lock);
		for (const FAssetResult& Result : Report.Results)
			Admit(Result);
		bTruncated |= Results.Num() > MaxTotal;
		if (--PendingFamilies == 0)
			Finish();
	}

	void FinishWithoutFamilies()
	{
		std::lock_guard Guard(Lock);
		Finish();
	}

private:
	void Admit(const FAssetResult& Result)
	{
		int32& Count = CountPerAssetType.FindOrAdd(GetAssetTypeGroup(Result.AssetClass));
		if (Count >= MaxPerAssetType)
		{
			bTruncated = true;
			return;
		}
		++Count;
		Results.Add(Result);
	}

	void Finish()
	{
		Results.StableSort([](const FAssetResult& A, const FAssetResult& B) { return A.AssetPath < B.AssetPath; });
		if (Results.Num() > MaxTotal)
		{
			Results.SetNum(MaxTotal);
			bTruncated = true;
		}
		OnComplete.ExecuteIfBound({.Results = std::move(Results), .bTruncated = bTruncated});
	}

	const int32 MaxPerAssetType;
	const int32 MaxTotal;
	std::mutex Lock; // guards everything below
	TArray<FAssetResult> Results;
	TMap<FString, int32> CountPerAssetType;
	int32 PendingFamilies;
	bool bTruncated = false;
	FOnAssetSearchComplete OnComplete;
};

TArray<FFamilySearchTask> MakeTasks(const FAssetSearchParams& Params)
{
	TArray<FFamilySearchTask> Tasks;
	for (const FFamily& Family : Families)
	{
		const FString Name = Family.Name;
		if (Params.IncludeAssetFamilies.IsEmpty() || Params.IncludeAssetFamilies.Contains(Name))
			Tasks.Add(
				{Name, [Params, Search = Family.Search](FOnAssetSearchComplete OnDone) { Search(Params, std::move(OnDone)); }});
	}
	return Tasks;
}
}

UAssetSearchService& UAssetSearchService::Get()
{
	static UAssetSearchService Service;
	return Service;
}

TArray<FString> UAssetSearchService::GetFamilyNames()
{
	TArray<FString> Names;
	for (const FFamily& Family : Families)
		Names.Add(Family.Name);
	return Names;
}

void UAssetSearchService::AssetSearch(const FAssetSearchParams& Params, FOnAssetSearchComplete OnComplete)
{
	if (!OrivaneAssetRegistryUtils::GetAssetRegistry())
	{
		OnComplete.ExecuteIfBound({});
		return;
	}
	const TArray<FFamilySearchTask> Tasks = MakeTasks(Params);
	const auto Aggregate = MakeShared<FAssetSearchAggregate>(Params, Tasks.Num(), std::move(OnComplete));
	if (Tasks.IsEmpty())
		Aggregate->FinishWithoutFamilies();
	for (const FFamilySearchTask& Task : Tasks)
	{
		if (IsStopRequested())
			Aggregate->Merge({});
		else
			Task.Run.Execute([Aggregate](const FAssetSearchResult& Report) { Aggregate->Merge(Report); });
	}
}
