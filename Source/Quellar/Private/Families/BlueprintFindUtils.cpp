#include "Quellar/Families/BlueprintFindUtils.h"

#include "BlueprintSearch/FindInBlueprintSearchManager.h"
#include "Core/Threads/StopToken.h"
#include "Core/Threads/Tasks.h"

#include <exception>
#include <functional>
#include <stop_token>

namespace
{
constexpr double PollingSeconds = 0.1;
constexpr int32 PollingPriority = 1;

double GetSeconds()
{
	return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}
}

/** Looks at one search until it has ended. */
class FBlueprintFindUtils::FPollingRunnable final : public FRunnable
{
public:
	/** On the thread that makes the search: its stop token counts. */
	FPollingRunnable(FBlueprintFindUtils* InAdapter, const TSharedPtr<FStreamSearch>& InSearch)
		: Adapter(InAdapter)
		, Search(InSearch)
		, OnStopRequest(GetStopToken(),
			  [Weak = std::weak_ptr(InSearch)]
			  {
				  if (const auto Stopped = Weak.lock())
					  Stopped->Stop();
			  })
	{
	}

	uint32 Run() override
	{
		try
		{
			Poll();
		}
		catch (...) // out of memory: the game thread's loop handles it
		{
			AsyncTask(ENamedThreads::GameThread, [Failure = std::current_exception()] { std::rethrow_exception(Failure); });
		}
		Search.reset();
		return 0;
	}

	void Stop() override
	{
		RequestStop();
		Adapter->ReleasePolling();
	}

	/** Sets the flag alone. */
	void RequestStop() { StopFlag.exchange(1); }
	bool IsStopped() const { return StopFlag != 0; }

private:
	void Poll()
	{
		double LastTime = GetSeconds();
		while (!IsStopped())
		{
			const double Time = GetSeconds();
			if (Adapter->UpdateSearchResults(Time, static_cast<float>(Time - LastTime)) == EActiveTimerReturnType::Stop)
				break;
			LastTime = Time;
			Search->WaitForCompletion(PollingSeconds);
		}
	}

	FBlueprintFindUtils* const Adapter;
	TSharedPtr<FStreamSearch> Search; // the polling thread's
	std::atomic<int32> StopFlag = 0;
	const std::stop_callback<std::function<void()>> OnStopRequest;
};

FBlueprintFindUtils& FBlueprintFindUtils::Get()
{
	static FBlueprintFindUtils Utils;
	return Utils;
}

FBlueprintFindUtils::FBlueprintFindUtils()
{
	FFindInBlueprintSearchManager::Get(); // the destructor needs it: what is made first goes last
}

FBlueprintFindUtils::~FBlueprintFindUtils()
{
	EndSearch(); // too late for a callback
	OnCancelCacheAll();
}

void FBlueprintFindUtils::MakeSearchQuery(
	FString SearchString, const FStreamSearchOptions& Options, FOnBlueprintSearchComplete Callback)
{
	checkGameThread();
	{
		const std::lock_guard Guard(Lock);
		MinimumVersionRequirement = Options.MinimumVersion;
	}
	ClearResults();
	if (SearchString.IsEmpty())
		return;
	EndSearch();
	LaunchStreamThread(SearchString, Options, std::move(Callback));
}

void FBlueprintFindUtils::LaunchStreamThread(
	const FString& SearchString, const FStreamSearchOptions& Options, FOnBlueprintSearchComplete Callback)
{
	const auto Search = MakeShared<FStreamSearch>(SearchString, Options);
	{
		const std::lock_guard Guard(Lock);
		SearchValue = FText::FromString(SearchString);
		StreamSearch = Search;
		OnSearchComplete = std::move(Callback);
		PollingRunnable = MakeShared<FPollingRunnable>(this, Search);
		PollingThread = FRunnableThread::Create(PollingRunnable.get(), "BlueprintSearchPolling", 0, PollingPriority);
		if (PollingThread)
			return;
	}
	Search->EnsureCompletion(); // no more threads to be had: wait here instead
	UpdateSearchResults(GetSeconds(), 0);
}

void FBlueprintFindUtils::Abandon()
{
	const auto [Search, Callback] = EndSearch();
	if (!Search)
		return;
	TArray<TSharedPtr<FImaginaryFiBData>> Found;
	Search->GetFilteredImaginaryResults(Found);
	std::stop_source Abandoned;
	Abandoned.request_stop();
	const FStopScope Scope(Abandoned.get_token());
	Callback.ExecuteIfBound(Found);
}

std::pair<TSharedPtr<FStreamSearch>, FOnBlueprintSearchComplete> FBlueprintFindUtils::EndSearch()
{
	std::pair<TSharedPtr<FStreamSearch>, FOnBlueprintSearchComplete> Ended; // let go of outside the lock: it may do anything
	{
		const std::lock_guard Guard(Lock);
		Ended = {std::move(StreamSearch), std::exchange(OnSearchComplete, {})};
	}
	if (Ended.first)
	{
		Ended.first->Stop();
		Ended.first->EnsureCompletion();
	}
	ReleasePolling();
	return Ended;
}

/** Waits for the polling thread, which must not wait for the lock meanwhile. */
void FBlueprintFindUtils::ReleasePolling()
{
	TSharedPtr<FPollingRunnable> Runnable;
	TSharedPtr<FRunnableThread> Thread;
	{
		const std::lock_guard Guard(Lock);
		Runnable = std::move(PollingRunnable);
		Thread = std::move(PollingThread);
	}
	if (Runnable)
		Runnable->RequestStop();
	Thread.reset();
}

TSharedPtr<FStreamSearch> FBlueprintFindUtils::GetStreamSearch() const
{
	const std::lock_guard Guard(Lock);
	return StreamSearch;
}

bool FBlueprintFindUtils::IsSearchInProgress() const
{
	const TSharedPtr<FStreamSearch> Search = GetStreamSearch();
	return Search && !Search->IsComplete();
}

TOptional<float> FBlueprintFindUtils::GetPercentCompleteSearch() const
{
	const TSharedPtr<FStreamSearch> Search = GetStreamSearch();
	return Search ? Search->GetPercentComplete() : 0.0f;
}

void FBlueprintFindUtils::ClearResults()
{
	TArray<TSharedPtr<FFindInBlueprintsResult>> Dropped; // freed outside the lock
	const std::lock_guard Guard(Lock);
	std::swap(Dropped, ItemsFound);
}

int32 FBlueprintFindUtils::GetLastSearchedVersion() const
{
	const std::lock_guard Guard(Lock);
	return LastSearchedFiBVersion;
}

void FBlueprintFindUtils::OnCancelCacheAll()
{
	FFindInBlueprintSearchManager& Manager = FFindInBlueprintSearchManager::Get();
	if (Manager.IsUnindexedCacheInProgress())
		Manager.CancelCacheAll(nullptr);
}

EActiveTimerReturnType FBlueprintFindUtils::UpdateSearchResults(double, float)
{
	const std::lock_guard UpdateGuard(UpdateLock);
	const TSharedPtr<FStreamSearch> Search = GetStreamSearch();
	if (!Search)
		return EActiveTimerReturnType::Stop;
	if (!Search->IsComplete())
		return EActiveTimerReturnType::Continue;

	auto Found = MakeShared<TArray<TSharedPtr<FImaginaryFiBData>>>();
	TArray<TSharedPtr<FFindInBlueprintsResult>> Items;
	Search->GetFilteredImaginaryResults(*Found);
	Search->GetFilteredItems(Items);
	Search->EnsureCompletion();

	const std::lock_guard Guard(Lock);
	if (StreamSearch != Search) // another one has taken its place
		return EActiveTimerReturnType::Stop;
	ItemsFound = std::move(Items);
	LastSearchedFiBVersion = Search->GetSearchedVersion();
	StreamSearch.reset();
	if (PollingRunnable)
		PollingRunnable->RequestStop();
	AsyncTask(
		ENamedThreads::GameThread, [Callback = std::exchange(OnSearchComplete, {}), Found] { Callback.ExecuteIfBound(*Found); });
	return EActiveTimerReturnType::Stop;
}
