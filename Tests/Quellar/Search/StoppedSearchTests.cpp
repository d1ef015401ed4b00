#include "Core/Threads/StopToken.h"
#include "Core/Threads/Tasks.h"
#include "CoreObject/Objects/ReferenceListener.h"
#include "CoreObject/Packages/Loader.h"
#include "Quellar/Families/AssetFamily.h"
#include "Quellar/Graph/AssetGraphService.h"
#include "Quellar/Paths/AssetPathSearchTypes.h"
#include "Support/TestProject.h"

namespace
{
/** Trees that refer to a blackboard of another package, and a text file. */
void Describe(FTestProject& Project)
{
	for (int32 Index = 0; Index < 20; ++Index)
		Project.Asset("/Game/BT_" + std::to_string(Index), "BehaviorTree").Set("BlackboardAsset", R"("/Game/BB_Guard.BB_Guard")");
	Project.Links("/Game/L_Map", {"L_Map Blueprint"}, {"/Game/BT_1", "/Game/BT_2"});
	Project.File("Docs/Guard.txt", "Guard");
	Project.Open();
}
}

TEST(StoppedSearch, LoadsNothingMore)
{
	FTestProject Project;
	Describe(Project);
	std::stop_source Source;
	int32 NumLoaded = 0;
	SetReferenceListener(
		[&](const FForeignReference&)
		{
			++NumLoaded;
			Source.request_stop();
		});
	{
		const FStopScope Scope(Source.get_token());
		Project.Search("BehaviorTree", "BT_");
	}
	SetReferenceListener(nullptr);
	EXPECT_EQ(NumLoaded, 1) << "the one in the middle of which it was stopped";
	EXPECT_EQ(Project.Search("BehaviorTree", "BT_").Results.Num(), 20);
}

TEST(StoppedSearch, ReportsOnceAndFindsNothing)
{
	FTestProject Project;
	Describe(Project);
	const struct
	{
		const char* Family;
		const char* Term;
	} Cases[] = {
		{"BehaviorTree", "BT_"},
		{"Text", "Guard"},
		{"Blueprint", "L_Map"},
	};
	for (const bool bStopped : {false, true})
	{
		std::stop_source Source;
		const FStopScope Scope(Source.get_token());
		if (bStopped)
			Source.request_stop();
		for (const auto& Case : Cases)
		{
			SCOPED_TRACE(Case.Family);
			int32 NumReports = 0;
			int32 NumFound = 0;
			FindAssetFamily(Case.Family)
				->Search(MakeParams(Case.Family, Case.Term),
					[&](const FAssetSearchResult& Found)
					{
						++NumReports;
						NumFound = Found.Results.Num();
					});
			EXPECT_TRUE(FGameThread::Get().RunUntil([&] { return NumReports > 0; }, std::chrono::seconds(60)));
			EXPECT_EQ(NumReports, 1);
			EXPECT_EQ(NumFound == 0, bStopped);
		}

		FAssetPathSearchParams Paths;
		Paths.Term = "BT_";
		FAssetPathSearchResult Found;
		UAssetSearchService::Get().AssetPathSearch(Paths, Found);
		EXPECT_EQ(Found.Files.IsEmpty(), bStopped);

		FExploreAssetGraphParams Graph;
		Graph.AssetPath = "/Game/L_Map";
		FExploreAssetGraphResult Explored;
		UAssetGraphService::ExploreGraph(Graph, Explored);
		EXPECT_EQ(Explored.Relations.IsEmpty(), bStopped);
	}
}
