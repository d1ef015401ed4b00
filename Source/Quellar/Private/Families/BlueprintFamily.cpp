#include "Core/Base/Map.h"
#include "Core/Threads/StopToken.h"
#include "Core/Threads/Tasks.h"
#include "CoreObject/Objects/PackageName.h"
#include "Engine/WidgetBlueprint.h"
#include "Families/FamilyScan.h"
#include "Quellar/Families/AssetFamily.h"
#include "Quellar/Families/BlueprintFindUtils.h"

namespace
{
constexpr FStreamSearchOptions QueryOptions = {.QueryFilter = 10, .MinimumVersion = 3};
constexpr const char* WidgetTreeContainer = "WidgetTree";

/** Folders of generated assets, as they stand inside a package path. That ends without a slash: what lies in folders below these
 * is left out, what lies directly in one is not. Both this and the third spelling are intended. */
constexpr const char* GeneratedFolders[] = {"/intermediate/", "/deriveddatacache/", "/developered/", "/__trash__/"};

const TSet<FString>& GetWidgetKinds()
{
	static const TSet<FString> Kinds = {"Widget", "WidgetClass", "WidgetAnimation"};
	return Kinds;
}

bool IsInGeneratedFolder(const FAssetData& Asset)
{
	const FString Path = Asset.PackagePath.ToString();
	return std::any_of(std::begin(GeneratedFolders), std::end(GeneratedFolders),
		[&Path](const char* Folder) { return Path.Contains(Folder, ESearchCase::IgnoreCase); });
}

/** The widget Blueprints that are read for their widgets, in the order of reading. */
TArray<FAssetData> ListWidgetBlueprints()
{
	TArray<FAssetData> Assets = OrivaneAssetRegistryUtils::FindAssetsByClasses({UWidgetBlueprint::StaticClass()}, true);
	Assets.RemoveAll([](const FAssetData& Asset) { return IsInGeneratedFolder(Asset) || !IsInScope(Asset); });
	return Assets;
}

/** All Blueprints that are found by their names. */
TArray<FAssetData> ListBlueprints()
{
	TArray<FAssetData> Assets = OrivaneAssetRegistryUtils::FindAssetsByClasses(
		{UBlueprint::StaticClass(), UWidgetBlueprint::StaticClass(), UAnimBlueprint::StaticClass()}, false);
	Assets.RemoveAll(IsInGeneratedFolder);
	return Assets;
}

/** Results by their Blueprint's object path, in the order in which they were first asked for. */
class FResultsByPath
{
public:
	FAssetResult& FindOrAdd(const FString& Path)
	{
		if (const int32* const Place = Places.Find(Path))
			return Results[*Place];
		Places.Add(Path, Results.Num());
		return Results.Emplace_GetRef();
	}
	/** Those with hits, appended. Once. */
	void MoveTo(TArray<FAssetResult>& OutResults)
	{
		for (FAssetResult& Result : Results)
		{
			if (!Result.Hits.IsEmpty())
				OutResults.Add(std::move(Result));
		}
	}

private:
	TArray<FAssetResult> Results;
	TMap<FString, int32> Places;
};

/** One search of the family, from the query to the report. It goes on in posted tasks, under the stop token it began with. */
class FBlueprintSearch : public std::enable_shared_from_this<FBlueprintSearch>
{
public:
	FBlueprintSearch(const FAssetSearchParams& InParams, FOnAssetSearchComplete InOnDone)
		: Params(InParams)
		, OnDone(std::move(InOnDone))
	{
	}

	void Start()
	{
		FBlueprintFindUtils::Get().MakeSearchQuery(Params.Term, QueryOptions,
			[This = shared_from_this()](TArray<TSharedPtr<FImaginaryFiBData>>& Blueprints)
			{
				const bool bAbandoned = IsStopRequested();
				This->ReadIndex(Blueprints);
				if (bAbandoned)
					This->Report();
				else
					AsyncTask(ENamedThreads::GameThread, [This] { This->Finish(); });
			});
	}

private:
	void ReadIndex(const TArray<TSharedPtr<FImaginaryFiBData>>& Blueprints);
	bool ConvertEntry(const FFindInBlueprintsResult& Entry, const FString& Name, const FString& Container, FAssetResult& Result);
	void Finish();
	void Report();
	void ReadWidgets();
	void ReadWidgetBlueprint(const UWidgetBlueprint& Blueprint, FHitSink& Hits) const;
	void ReadNames();
	static FAssetResult MakeResult(const FAssetData& Asset);
	bool IsFull() const { return IsStopRequested() || OrivaneSearchUtils::HasReachedCap(TotalHits, Params.MaxTotalHits); }

	const FAssetSearchParams Params;
	const FOnAssetSearchComplete OnDone;
	const std::stop_token StopToken = GetStopToken();
	int32 TotalHits = 0; // of the index and of widgets; names do not count
	bool bNamesEndedEarly = false;
	TArray<FUnreadFile> Unread; // of the packages with widgets
	FResultsByPath IndexResults;
	FResultsByPath ObjectResults; // those with widgets, then those found by their names alone
};

/** The Blueprints come with the delivery rather than from GetItemsFound: a query made since then may be filling that list. */
void FBlueprintSearch::ReadIndex(const TArray<TSharedPtr<FImaginaryFiBData>>& Blueprints)
{
	const FStopScope Scope(StopToken);
	const FAssetSearchParams PathParams{.Term = Params.PathContains, .bCaseSensitive = Params.bCaseSensitive};
	for (const TSharedPtr<FImaginaryFiBData>& Blueprint : Blueprints)
	{
		const FString Path = Blueprint ? Blueprint->GetResult().GetDisplayString() : FString();
		if (Path.IsEmpty() || !OrivaneSearchUtils::TermMatches(Path, PathParams))
			continue;
		FAssetResult& Result = IndexResults.FindOrAdd(Path);
		if (Result.AssetPath.IsEmpty())
		{
			Result.AssetPath = FPackageName::ObjectPathToPackageName(Path);
			Result.AssetClass = "Blueprint";
		}
		if (!ConvertEntry(Blueprint->GetResult(), Path, FString(), Result))
			return;
	}
}

/** The entry, then what lies below it. False when the hit cap ends the pass. */
bool FBlueprintSearch::ConvertEntry(
	const FFindInBlueprintsResult& Entry, const FString& Name, const FString& Container, FAssetResult& Result)
{
	if (IsFull())
		return false;
	OrivaneSearchUtils::AppendHitWithCaps(Result, Entry.GetCategory(), Name, Container, Params, TotalHits);
	for (const FFindInBlueprintsResult& Child : Entry.GetChildren())
	{
		if (!ConvertEntry(Child, Child.GetDisplayString(), Name, Result))
			return false;
	}
	return true;
}

void FBlueprintSearch::Finish()
{
	const FStopScope Scope(StopToken);
	ReadWidgets();
	ReadNames();
	Report();
}

void FBlueprintSearch::Report()
{
	const FStopScope Scope(StopToken);
	FAssetSearchResult Found{.Unread = std::move(Unread), .bEndedEarly = IsFull() || bNamesEndedEarly};
	IndexResults.MoveTo(Found.Results);
	ObjectResults.MoveTo(Found.Results);
	OnDone.ExecuteIfBound(Found);
}

void FBlueprintSearch::ReadWidgets()
{
	if (!Params.IncludeKinds.IsEmpty() && !OrivaneSearchUtils::DoesKindSetContainAny(Params.IncludeKinds, GetWidgetKinds()))
		return;
	FAssetScan Scan("WidgetBlueprint", ETextOrigin::Package, ListWidgetBlueprints, Params);
	while (!IsFull() && Scan.Next())
	{
		const FAssetData& Asset = Scan.GetAsset();
		const auto Read = [&](FAssetResult&, FHitSink& Hits)
		{
			if (const auto* Blueprint = Cast<UWidgetBlueprint>(ResolveAssetObject(Asset, ELoad::IfMissing)))
				ReadWidgetBlueprint(*Blueprint, Hits);
		};
		if (!Scan.MayHaveHits(Read))
			continue;
		FAssetResult Result = MakeResult(Asset);
		FHitSink Hits(Result, Params, TotalHits);
		Read(Result, Hits);
		Scan.AddIfUnread(Unread);
		if (Hits.HasHits())
			ObjectResults.FindOrAdd(Asset.GetObjectPathString()) = std::move(Result);
	}
}

void FBlueprintSearch::ReadWidgetBlueprint(const UWidgetBlueprint& Blueprint, FHitSink& Hits) const
{
	TArray<UWidget*> Widgets;
	if (const UWidgetTree* Tree = Blueprint.WidgetTree)
		Tree->GetAllWidgets(Widgets);
	for (const UWidget* Widget : Widgets)
	{
		Hits.Add("Widget", Widget->GetName(), WidgetTreeContainer);
		Hits.Add("WidgetClass", Widget->GetClass()->GetName(), WidgetTreeContainer);
		if (Hits.IsFull())
			return;
	}
	for (const UWidgetAnimation* Animation : Blueprint.Animations)
	{
		if (Animation)
			Hits.Add("WidgetAnimation", Animation->GetName(), WidgetTreeContainer);
		if (Hits.IsFull())
			return;
	}
}

void FBlueprintSearch::ReadNames()
{
	int32 NumReported = 0;
	FAssetScan Scan("Blueprint names", ETextOrigin::Record, ListBlueprints, Params);
	while (Scan.Next())
	{
		const FAssetData& Asset = Scan.GetAsset();
		const FString Name = Asset.AssetName.ToString();
		const auto Read = [&Name](FAssetResult&, FHitSink& Hits) { Hits.Add("AssetName", Name, ""); };
		if (!Scan.MayHaveHits(Read) || !OrivaneSearchUtils::TermMatches(Name, Params))
			continue;
		FAssetResult& Result = ObjectResults.FindOrAdd(Asset.GetObjectPathString());
		if (Result.Hits.IsEmpty())
			Result = MakeResult(Asset);
		int32 NoHitsYet = 0; // this pass is capped by its assets, not by the hits of the search
		OrivaneSearchUtils::AppendHitWithCaps(Result, "AssetName", Name, "", Params, NoHitsYet);
		bNamesEndedEarly = OrivaneSearchUtils::HasReachedCap(++NumReported, Params.MaxTotalHits);
		if (bNamesEndedEarly)
			return;
	}
}

FAssetResult FBlueprintSearch::MakeResult(const FAssetData& Asset)
{
	return {
		.AssetPath = Asset.GetSoftObjectPath().ToString(), .AssetClass = AssetTypeFromClassName(Asset.AssetClassPath.AssetName)};
}
}

/**
 * What the index lists of Blueprints, the widgets and animations of widget Blueprints, and the names of all Blueprints. Loads
 * widget Blueprints. OnDone is executed once, later, on the game thread; never for an empty term, which the index does not search
 * for, and never when another search takes this one's place.
 */
void SearchBlueprints(const FAssetSearchParams& Params, FOnAssetSearchComplete OnDone)
{
	MakeShared<FBlueprintSearch>(Params, std::move(OnDone))->Start();
}
