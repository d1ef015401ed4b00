#include "BlueprintIndex/StreamSearch.h"

#include "BlueprintIndex/FindInBlueprintSearchManager.h"
#include "IndexMatches.h"

FStreamSearch::FStreamSearch(const FString& InSearchValue, const FStreamSearchOptions& InOptions)
	: SearchValue(InSearchValue)
	, Options(InOptions)
	, Index(FFindInBlueprintSearchManager::Get().GetIndex())
	, Progress(MakeUnique<FSearchProgress>())
{
	Thread = FRunnableThread::Create(this, "BlueprintStreamSearch");
	if (!Thread)
		Run();
}

FStreamSearch::~FStreamSearch()
{
	Thread.reset();
}

float FStreamSearch::GetPercentComplete() const
{
	return bComplete ? 1.0f : Progress->Done.load();
}

void FStreamSearch::Stop()
{
	Progress->bStop = true;
}

void FStreamSearch::EnsureCompletion()
{
	std::unique_lock Guard(Lock);
	Completed.wait(Guard, [this] { return bComplete.load(); });
}

bool FStreamSearch::WaitForCompletion(double Seconds)
{
	std::unique_lock Guard(Lock);
	return Completed.wait_for(Guard, std::chrono::duration<double>(Seconds), [this] { return bComplete.load(); });
}

uint32 FStreamSearch::Run()
{
	const auto Start = std::chrono::steady_clock::now();
	if (Options.MinimumVersion <= BlueprintIndexVersion)
		FindResults();
	SearchSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - Start).count();
	const std::lock_guard Guard(Lock);
	bComplete = true;
	Completed.notify_all();
	return 0;
}

void FStreamSearch::FindResults()
{
	const auto Matches = MakeShared<FIndexMatches>(FindIndexMatches(Index, SearchValue, *Progress));
	const std::span<const uint32> Entries = Matches->Entries;
	Results.Reserve(static_cast<int32>(Matches->Blueprints.size()));
	for (std::size_t Blueprint = 0; Blueprint < Matches->Blueprints.size() && !Progress->bStop; ++Blueprint)
	{
		const std::size_t First = Matches->FirstEntries[Blueprint];
		Results.Add(MakeShared<FImaginaryFiBData>(Index, Matches->Blueprints[Blueprint],
			Entries.subspan(First, Matches->FirstEntries[Blueprint + 1] - First), Matches));
	}
	if (Progress->bStop)
		Results.Empty();
}

void FStreamSearch::GetFilteredItems(TArray<TSharedPtr<FFindInBlueprintsResult>>& OutItems) const
{
	checkf(bComplete, "results are read when the search has ended");
	for (const TSharedPtr<FImaginaryFiBData>& Result : Results)
		OutItems.Add(Result->GetSharedResult());
}

void FStreamSearch::GetFilteredImaginaryResults(TArray<TSharedPtr<FImaginaryFiBData>>& OutResults) const
{
	checkf(bComplete, "results are read when the search has ended");
	OutResults.Append(Results);
}
