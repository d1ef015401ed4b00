#include "Quellar/Families/BlueprintFindUtils.h"

#include "Core/Threads/StopToken.h"
#include "Core/Threads/Tasks.h"
#include "Project/Project.h"
#include "Support/Seed.h"
#include "Support/TestProject.h"

#include <random>

namespace
{
using FResults = TArray<TSharedPtr<FImaginaryFiBData>>;

/** A Blueprint with that many variables "Health0", "Health1", ... */
void AddBlueprint(FTestProject& Project, const std::string& Name, int32 NumVariables)
{
	std::string Entries;
	for (int32 Index = 0; Index < NumVariables; ++Index)
		Entries += (Index ? "," : "") + (R"({"category":"Var","text":"Health)" + std::to_string(Index)) + "\"}";
	Project.Blueprint("/Game/" + Name, Entries);
}

/** Makes queries and keeps what came back, in order: the term, then the number of Blueprints. */
class FQueries
{
public:
	void Make(const std::string& Term)
	{
		FBlueprintFindUtils::Get().MakeSearchQuery(FString(Term), {.QueryFilter = 10, .MinimumVersion = 3},
			[this, Term](FResults& Found)
			{
				EXPECT_TRUE(FGameThread::Get().IsGameThread());
				Answers += (Answers.empty() ? "" : " ") + Term + ":" + std::to_string(Found.Num());
				++NumAnswers;
			});
	}
	/** Runs the game thread until one more callback has been executed. */
	bool Wait()
	{
		const int32 Before = NumAnswers;
		return FGameThread::Get().RunUntil([&] { return NumAnswers > Before; }, std::chrono::seconds(60));
	}
	std::string Take() { return std::exchange(Answers, {}); }

private:
	std::string Answers;
	int32 NumAnswers = 0;
};
}

TEST(BlueprintFindUtils, AnswersOnceOnTheGameThread)
{
	FTestProject Project;
	AddBlueprint(Project, "BP_A", 3);
	AddBlueprint(Project, "BP_B", 1);
	Project.Open();
	FBlueprintFindUtils& Utils = FBlueprintFindUtils::Get();
	FQueries Queries;
	EXPECT_FALSE(Utils.IsSearchInProgress());
	EXPECT_EQ(Utils.GetPercentCompleteSearch(), 0.0f);

	Queries.Make("health2");
	ASSERT_TRUE(Queries.Wait());
	EXPECT_FALSE(Utils.IsSearchInProgress());
	ASSERT_EQ(Utils.GetItemsFound().Num(), 1);
	EXPECT_EQ(Utils.GetItemsFound()[0]->GetDisplayString(), FString("/Game/BP_A.BP_A"));
	const auto Lines = Utils.GetItemsFound()[0]->GetChildren();
	ASSERT_NE(Lines.begin(), Lines.end());
	EXPECT_EQ((*Lines.begin()).GetDisplayString(), FString("Health2"));
	EXPECT_EQ(Utils.GetLastSearchedVersion(), BlueprintIndexVersion);

	Queries.Make("absent");
	ASSERT_TRUE(Queries.Wait()) << "also when nothing is found";
	EXPECT_TRUE(Utils.GetItemsFound().IsEmpty()) << "a new query forgets";
	Queries.Make("health");
	ASSERT_TRUE(Queries.Wait());
	EXPECT_EQ(Queries.Take(), "health2:1 absent:0 health:2");
	EXPECT_EQ(FGameThread::Get().Pump(), 0);
	Utils.ClearResults();
	EXPECT_TRUE(Utils.GetItemsFound().IsEmpty());
}

TEST(BlueprintFindUtils, AnEmptyTermStartsNothing)
{
	FTestProject Project;
	AddBlueprint(Project, "BP_A", 3);
	Project.Open();
	FQueries Queries;
	Queries.Make("health");
	ASSERT_TRUE(Queries.Wait());
	Queries.Make("");
	EXPECT_FALSE(FBlueprintFindUtils::Get().IsSearchInProgress());
	EXPECT_TRUE(FBlueprintFindUtils::Get().GetItemsFound().IsEmpty());
	Queries.Make("health0");
	Queries.Make(""); // does not disturb the one under way
	ASSERT_TRUE(Queries.Wait());
	EXPECT_EQ(Queries.Take(), "health:1 health0:1");
}

TEST(BlueprintFindUtils, IsLookedAtUntilItsSearchHasEnded)
{
	FTestProject Project;
	AddBlueprint(Project, "BP_A", 100000);
	Project.Open();
	const auto Look = [] { return FBlueprintFindUtils::Get().UpdateSearchResults(0, 0); };
	FQueries Queries;
	EXPECT_EQ(Look(), EActiveTimerReturnType::Stop) << "nothing to look at";
	bool bContinued = false;
	for (int32 Round = 0; Round < 20 && !bContinued; ++Round) // a search may have ended before the first look, not every time
	{
		Queries.Make("health");
		while (FBlueprintFindUtils::Get().IsSearchInProgress())
			bContinued |= Look() == EActiveTimerReturnType::Continue;
		EXPECT_EQ(Look(), EActiveTimerReturnType::Stop);
		ASSERT_TRUE(Queries.Wait());
	}
	EXPECT_TRUE(bContinued);
}

TEST(BlueprintFindUtils, ASupersededQueryNeverHearsBack)
{
	FTestProject Project;
	AddBlueprint(Project, "BP_A", 50000);
	Project.Open();
	FQueries Queries;
	// The first may have been complete before the second came, on a machine that sleeps at the wrong moment; not every time.
	std::string Answers;
	for (int32 Round = 0; Round < 20 && Answers != "health0:1"; ++Round)
	{
		Queries.Make("health");
		Queries.Make("health0");
		while (Queries.Wait() && (Answers = Queries.Take()).find("health0") == std::string::npos)
		{
		}
	}
	EXPECT_EQ(Answers, "health0:1");
	EXPECT_FALSE(FGameThread::Get().RunUntil([] { return false; }, std::chrono::milliseconds(150)));
	EXPECT_EQ(Queries.Take(), "") << "nor later";
}

TEST(BlueprintFindUtils, AnAbandonedQueryIsAnsweredAtOnce)
{
	FTestProject Project;
	AddBlueprint(Project, "BP_A", 1000);
	Project.Open();
	FBlueprintFindUtils& Utils = FBlueprintFindUtils::Get();
	for (const bool bHasEnded : {false, true})
	{
		FQueries Queries;
		Queries.Make("health");
		while (bHasEnded && Utils.IsSearchInProgress())
			std::this_thread::yield();
		Utils.Abandon();
		FGameThread::Get().Pump();
		EXPECT_TRUE(Queries.Take().starts_with("health:")) << "with what was found until then";
		EXPECT_EQ(FGameThread::Get().Pump(), 0);
	}
	std::stop_source Source;
	FQueries Queries;
	{
		const FStopScope Scope(Source.get_token());
		Queries.Make("health");
	}
	Source.request_stop();
	EXPECT_TRUE(Queries.Wait()) << "a stopped one too, as if it had ended";
}

TEST(BlueprintFindUtils, GoesAwayInTheMiddleOfASearch)
{
	using FClock = std::chrono::steady_clock;
	FClock::time_point Start;
	{
		FTestProject Project;
		AddBlueprint(Project, "BP_A", 100000);
		Project.Open();
		FQueries Queries;
		Queries.Make("health");
		Start = FClock::now();
	}
	EXPECT_LT(FClock::now() - Start, std::chrono::seconds(1));
	EXPECT_FALSE(FBlueprintFindUtils::Get().IsSearchInProgress());
}

TEST(BlueprintFindUtils, TakesWhateverHappensMeanwhile)
{
	std::mt19937 Random(GetSeed());
	FTestProject Project;
	AddBlueprint(Project, "BP_A", 20000);
	for (int32 Index = 0; Index < 50; ++Index)
		AddBlueprint(Project, "BP_" + std::to_string(Index), 20);
	Project.Open();
	FBlueprintFindUtils& Utils = FBlueprintFindUtils::Get();
	std::jthread Watcher(
		[&Utils](std::stop_token Stop)
		{
			while (!Stop.stop_requested())
			{
				EXPECT_GE(Utils.GetPercentCompleteSearch(), Utils.IsSearchInProgress() ? 0.0f : -1.0f);
				std::this_thread::yield();
			}
		});
	FQueries Queries;
	for (int32 Step = 0; Step < 300; ++Step)
	{
		switch (Random() % 8)
		{
			case 0:
				Utils.Abandon();
				break;
			case 1:
				Utils.UpdateSearchResults(0, 0);
				break;
			case 2:
				FGameThread::Get().Pump();
				break;
			case 3:
				Utils.ClearResults();
				break;
			case 4:
				Utils.OnCancelCacheAll();
				Project.Open(); // the registry is replaced under the search
				break;
			default:
				Queries.Make(Random() % 2 ? "health" : "health1");
				break;
		}
	}
	Queries.Take();
	Queries.Make("health19");
	while (Queries.Wait() && Queries.Take() != "health19:51")
	{
	}
	EXPECT_EQ(Utils.GetItemsFound().Num(), 51);
}
