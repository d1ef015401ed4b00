#include "Quellar/BlueprintFindUtils.h"

#include "BlueprintIndex/FindInBlueprintSearchManager.h"
#include "Core/Tasks.h"

namespace
{
constexpr double PollingSeconds = 0.1;
// Most searches take less than it takes to start a thread: this long the first look waits, so that it need not come twice.
constexpr double ShortSearchSeconds = 0.005;
constexpr int32 PollingPriority = 1;

double GetSeconds()
{
	return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}
}

class FBlueprintFindUtils::FPollingRunnable final : public FRunnable
{
public:
	explicit FPollingRunnable(FBlueprintFindUtils* InAdapter) : Adapter(InAdapter) {}

	bool Init() override
	{
		if (const TSharedPtr<FStreamSearch> Search = Adapter->GetStreamSearch())
			Search->WaitForCompletion(ShortSearchSeconds);
		return true;
	}

	uint32 Run() override
	{
		double LastTime = GetSeconds();
		while (!IsStopped())
		{
			const double Time = GetSeconds();
			Adapter->UpdateSearchResults(Time, static_cast<float>(Time - LastTime));
			LastTime = Time;
			Pause();
		}
		return 0;
	}

	void Stop() override
	{
		RequestStop();
		Adapter->ReleasePolling();
	}

	/** Sets the flag alone. */
	void RequestStop()
	{
		const std::lock_guard Guard(PauseLock);
		StopFlag.exchange(1);
		PauseEnded.notify_all();
	}
	bool IsStopped() const { return StopFlag != 0; }

private:
	void Pause()
	{
		std::unique_lock Guard(PauseLock);
		PauseEnded.wait_for(Guard, std::chrono::duration<double>(PollingSeconds), [this] { return IsStopped(); });
	}

	FBlueprintFindUtils* const Adapter;
	std::atomic<int32> StopFlag = 0;
	std::mutex PauseLock;
	std::condition_variable PauseEnded;
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
	Abandon();
	OnCancelCacheAll();
}

void FBlueprintFindUtils::MakeSearchQuery(
	FString SearchString, const FStreamSearchOptions& Options, FOnBlueprintSearchComplete Callback)
{
	{
		const std::lock_guard Guard(Lock);
		MinimumVersionRequirement = Options.MinimumVersion;
	}
	ClearResults();
	if (SearchString.IsEmpty())
		return;
	Abandon();
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
		PollingRunnable = MakeShared<FPollingRunnable>(this);
		PollingThread = FRunnableThread::Create(PollingRunnable.get(), "BlueprintSearchPolling", 0, PollingPriority);
		if (PollingThread)
			return;
	}
	Search->EnsureCompletion(); // no more threads to be had: somebody must look
	UpdateSearchResults(GetSeconds(), 0);
}

void FBlueprintFindUtils::Abandon()
{
	TSharedPtr<FStreamSearch> Search;
	FOnBlueprintSearchComplete Callback; // let go of outside the lock: what it holds may do anything
	{
		const std::lock_guard Guard(Lock);
		Search = std::move(StreamSearch);
		Callback = std::exchange(OnSearchComplete, {});
	}
	if (Search)
	{
		Search->Stop();
		Search->EnsureCompletion();
	}
	ReleasePolling();
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
	for (const TSharedPtr<FImaginaryFiBData>& Blueprint : *Found)
	{
		if (GetStreamSearch() != Search) // another one has taken its place
			return EActiveTimerReturnType::Stop;
		Blueprint->ExpandAllChildren();
	}
	Search->EnsureCompletion();

	const std::lock_guard Guard(Lock);
	if (StreamSearch != Search)
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
