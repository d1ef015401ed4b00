#pragma once

#include "BlueprintSearch/StreamSearch.h"
#include "Core/Base/ActiveTimer.h"
#include "Core/Base/Delegate.h"

#include <atomic>
#include <utility>

/** Executed once, on the game thread, with one element for each Blueprint that matched. When a search
 * is abandoned, inside of Abandon and with a stop requested, see Core/StopToken.h: work that was to go on later does not. */
using FOnBlueprintSearchComplete = TDelegate<void(TArray<TSharedPtr<FImaginaryFiBData>>&)>;

/**
 * The module's way to the Blueprint index: one search at a time, in the background. A polling thread, which its end wakes, hands
 * what was found to the game thread. A search that is made while another one runs takes its place: the earlier one's callback is
 * never executed. A stop of the work that made the search ends it early, with nothing found.
 *
 * Game thread, but for UpdateSearchResults; what asks about the search may be called from any thread.
 */
class FBlueprintFindUtils
{
public:
	static FBlueprintFindUtils& Get();
	~FBlueprintFindUtils();
	FBlueprintFindUtils(const FBlueprintFindUtils&) = delete;
	FBlueprintFindUtils& operator=(const FBlueprintFindUtils&) = delete;

	/**
	 * Forgets what was found before and searches for SearchString. An empty one starts nothing, and Callback is never executed:
	 * callers must not wait for it.
	 */
	void MakeSearchQuery(FString SearchString, const FStreamSearchOptions& Options, FOnBlueprintSearchComplete Callback);
	/** Ends the search, should there be one, waits for its threads, and executes its callback with what was found so far. */
	void Abandon();

	/** A search exists and has not ended. Kept for callers. */
	bool IsSearchInProgress() const;
	/** From 0 to 1, 0 without a search; always set. Kept for callers. */
	TOptional<float> GetPercentCompleteSearch() const;
	/** The Blueprints that the last search found. Written by the polling thread: to be read when the callback has been executed
	 * and no other search been made. Kept for callers. */
	const TArray<TSharedPtr<FFindInBlueprintsResult>>& GetItemsFound() const { return ItemsFound; }
	void ClearResults();
	/** The version of the index that the last completed search saw; 0 before. Kept for callers. */
	int32 GetLastSearchedVersion() const;
	/** Makes a run that indexes changed files end soon. */
	void OnCancelCacheAll();

	/** One look at the search: when it has ended, collects what was found and posts the callback to the game thread. Continue
	 * while it runs. The polling thread calls this; tests may. */
	EActiveTimerReturnType UpdateSearchResults(double CurrentTime, float DeltaTime);

private:
	class FPollingRunnable;

	FBlueprintFindUtils();
	void LaunchStreamThread(
		const FString& SearchString, const FStreamSearchOptions& Options, FOnBlueprintSearchComplete Callback);
	/** Ends the search and waits for its threads; both are null without one. */
	std::pair<TSharedPtr<FStreamSearch>, FOnBlueprintSearchComplete> EndSearch();
	void ReleasePolling();
	TSharedPtr<FStreamSearch> GetStreamSearch() const;

	std::mutex UpdateLock;	 // held during a look at the search
	mutable std::mutex Lock; // guards what follows; never held while waiting for a thread
	TArray<TSharedPtr<FFindInBlueprintsResult>> ItemsFound;
	FText SearchValue;
	TSharedPtr<FStreamSearch> StreamSearch; // null when none is running
	FOnBlueprintSearchComplete OnSearchComplete;
	int32 LastSearchedFiBVersion = 0;
	int32 MinimumVersionRequirement = 3;
	TSharedPtr<FRunnableThread> PollingThread;
	TSharedPtr<FPollingRunnable> PollingRunnable;
};
