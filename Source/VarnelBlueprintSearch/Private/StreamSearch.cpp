#include "BlueprintSearch/StreamSearch.h"

#include "BlueprintSearch/FindInBlueprintSearchManager.h"
#include "IndexMatches.h"

FStreamSearch::FStreamSearch(const FString& InSearchValue, const FStreamSearchOptions& InOptions)
	: SearchValue(InSearchValue)
	, Options(InOptions)
	, BlueprintIndex(FFindInBlueprintSearchManager::Get().GetIndex())
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
	try
	{
		if (Options.MinimumVersion <= BlueprintIndexVersion)
			Matches = FindIndexMatches(BlueprintIndex, SearchValue, *Progress);
	}
	catch (...)
	{
		Failure = std::current_exception();
	}
	SearchSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - Start).count();
	const std::lock_guard Guard(Lock);
	bComplete = true;
	Completed.notify_all();
	return 0;
}

void FStreamSearch::GetFilteredItems(TArray<TSharedPtr<FFindInBlueprintsResult>>& OutItems) const
{
	checkf(bComplete, "results are read when the search has ended");
	OutItems.Reserve(OutItems.Num() + NumResults());
	for (int32 Index = 0; Index < NumResults(); ++Index)
		OutItems.Add(Matches->Results[static_cast<std::size_t>(Index)].GetSharedResult());
}

void FStreamSearch::GetFilteredImaginaryResults(TArray<TSharedPtr<FImaginaryFiBData>>& OutResults) const
{
	checkf(bComplete, "results are read when the search has ended");
	OutResults.Reserve(OutResults.Num() + NumResults());
	for (int32 Index = 0; Index < NumResults(); ++Index)
		OutResults.Add(TSharedPtr<FImaginaryFiBData>(Matches, &Matches->Results[static_cast<std::size_t>(Index)]));
}

int32 FStreamSearch::NumResults() const
{
	if (Failure)
		std::rethrow_exception(Failure);
	return Matches ? static_cast<int32>(Matches->Blueprints.size()) : 0;
}
