#include "Project/Project.h"
#include "Support/Seed.h"
#include "Support/TestProject.h"

#include <cstdlib>
#include <random>
#include <set>

namespace
{
constexpr const char* ObjectFamilies[] = {"BehaviorTree", "Blackboard", "Enum", "Struct", "DataAsset", "DataTable", "EnvQuery"};

/** A project from the generator, with everything that designers do to assets in it. */
class FRandomProject
{
public:
	explicit FRandomProject(uint32 Seed)
	{
		const std::string Command = std::string(MAKE_PROJECT) + " '" + Folder.GetRoot() +
			"/P' --assets 500 --text-files 20 --seed " + std::to_string(Seed) +
			" --families BehaviorTree,Blackboard,Enum,Struct,DataAsset,DataTable,EnvQuery,Blueprint > /dev/null 2>&1";
		EXPECT_EQ(std::system(Command.c_str()), 0) << Command;
		FDiagnosticSink Diagnostics;
		FString Error;
		FProjectOptions Options;
		Options.Path = Folder.Path("P");
		Options.Cache = ERegistryCache::Ignore;
		EXPECT_TRUE(FProject::Open(Options, Diagnostics, Error)) << *Error;
	}

	static FAssetSearchResult Search(const FAssetSearchParams& Params)
	{
		FAssetSearchResult Found;
		int32 NumReports = 0;
		UAssetSearchService::Get().AssetSearch(Params,
			[&](const FAssetSearchResult& Result)
			{
				Found = Result;
				++NumReports;
			});
		EXPECT_EQ(NumReports, 1);
		return Found;
	}

private:
	FScratchFolder Folder;
	FHeadlessEngine Engine;
};

FAssetSearchParams MakeWideParams(const std::string& Family, FString Term)
{
	FAssetSearchParams Params;
	Params.Term = std::move(Term);
	Params.IncludeAssetFamilies = {Family};
	Params.MaxHitsPerKind = Params.MaxTotalHits = Params.MaxHitsPerAssetType = 1'000'000;
	return Params;
}

/** Every hit as one text, counts left out. */
std::set<std::string> CollectHits(const FAssetSearchResult& Result)
{
	std::set<std::string> Hits;
	for (const FAssetResult& Asset : Result.Results)
		for (const FAssetHit& Hit : Asset.Hits)
			Hits.insert(Asset.AssetPath.ToStdString() + " " + *Hit.Kind + " " + *Hit.Container + " " + Hit.Name.ToStdString());
	return Hits;
}

bool IsPartOf(const std::set<std::string>& Small, const std::set<std::string>& Large)
{
	// The asset's own name is a hit of the last resort: where less matches, it may come in.
	return std::all_of(Small.begin(), Small.end(),
		[&Large](const std::string& Hit) { return Large.contains(Hit) || Hit.find(" AssetName ") != std::string::npos; });
}

void ExpectSound(const FAssetSearchResult& Result, const FAssetSearchParams& Params)
{
	int64 NumHits = 0;
	for (int32 Index = 0; Index < Result.Results.Num(); ++Index)
	{
		const FAssetResult& Asset = Result.Results[Index];
		EXPECT_TRUE(Index == 0 || Result.Results[Index - 1].AssetPath < Asset.AssetPath) << "paths ascend";
		EXPECT_GT(Asset.Hits.Num(), 0);
		NumHits += Asset.Hits.Num();
		std::map<std::string, int32> NumOfKind;
		for (const FAssetHit& Hit : Asset.Hits)
		{
			const bool bJoined = Hit.Kind == "ColumnName"; // name and type are matched one by one, then joined
			EXPECT_TRUE(bJoined || OrivaneSearchUtils::TermMatches(Hit.Name, Params)) << *Hit.Kind << " " << *Hit.Name;
			EXPECT_LE(++NumOfKind[Hit.Kind.ToStdString()], std::max(Params.MaxHitsPerKind, 1));
			EXPECT_TRUE(Hit.Kind != "AssetName" || Asset.Hits.Num() == 1) << "a last resort";
			EXPECT_GE(Hit.Count, 1);
		}
	}
	EXPECT_LE(NumHits, std::max(Params.MaxTotalHits, 1));
}

/** Parts of what the family can find, so that most searches find something. */
std::vector<FString> PickTerms(const std::string& Family, std::mt19937& Random)
{
	std::vector<FString> Terms = {"", "zzqqxx"};
	const std::set<std::string> All = CollectHits(FRandomProject::Search(MakeWideParams(Family, "")));
	EXPECT_GT(All.size(), 20u) << Family;
	const std::vector<std::string> Hits(All.begin(), All.end());
	for (int32 Left = 6; Left > 0 && !Hits.empty(); --Left)
	{
		const FString Hit = FString(Hits[Random() % Hits.size()]);
		const int32 Length = 1 + static_cast<int32>(Random() % 8);
		Terms.push_back(Hit.Mid(std::max(0, Hit.Len() - Length - static_cast<int32>(Random() % 4)), Length));
	}
	return Terms;
}
}

TEST(ObjectFamilies, KeepTheirPromisesOnAnyProject)
{
	for (uint32 Seed = GetSeed(11), End = Seed + 3; Seed != End; ++Seed)
	{
		SCOPED_TRACE("seed " + std::to_string(Seed));
		const FRandomProject Project(Seed);
		std::mt19937 Random(Seed);
		for (const char* Family : ObjectFamilies)
		{
			for (const FString& Term : PickTerms(Family, Random))
			{
				SCOPED_TRACE(std::string(Family) + " '" + *Term + "'");
				const FAssetSearchParams Wide = MakeWideParams(Family, Term);
				const FAssetSearchResult Found = FRandomProject::Search(Wide);
				ExpectSound(Found, Wide);
				EXPECT_EQ(Render(FRandomProject::Search(Wide)), Render(Found)) << "the same again";

				FAssetSearchParams Tight = Wide;
				Tight.MaxHitsPerKind = static_cast<int32>(Random() % 4);
				Tight.MaxTotalHits = static_cast<int32>(1 + Random() % 30);
				const FAssetSearchResult Capped = FRandomProject::Search(Tight);
				ExpectSound(Capped, Tight);
				EXPECT_TRUE(IsPartOf(CollectHits(Capped), CollectHits(Found)));

				FAssetSearchParams Strict = Wide;
				Strict.bCaseSensitive = true;
				EXPECT_TRUE(IsPartOf(CollectHits(FRandomProject::Search(Strict)), CollectHits(Found)));
				Strict.bExact = true;
				const FAssetSearchResult Exact = FRandomProject::Search(Strict);
				ExpectSound(Exact, Strict);
				EXPECT_TRUE(IsPartOf(CollectHits(Exact), CollectHits(Found)));
			}
		}
	}
}
